// A small host: builds a tree of items, hands the model to a QML document and
// prints what the document reads through the model's invokable surface.

#include <XOLATreeModel.h>

#include <QtCore/QCoreApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);

    // A model with the default role names (idRole, nameRole, childModelRole).
    IXOLATreeModel* root = nullptr;
    IXOLATreeModel* fruit = nullptr;
    if (!CreateXOLATreeModel(&root, nullptr, {}, 0, nullptr, nullptr)
        || !CreateXOLATreeModel(&fruit, nullptr, {}, 0, nullptr, nullptr))
        return 1;

    // Children first: an item's child model makes the list a tree.
    fruit->AppendItemsList({new XOLATreeItem(QStringLiteral("apple"), QStringLiteral("Apple")),
                            new XOLATreeItem(QStringLiteral("pear"), QStringLiteral("Pear")),
                            new XOLATreeItem(QStringLiteral("fig"), QStringLiteral("Fig"))});
    root->AppendItem(new XOLATreeItem(QStringLiteral("fruit"), QStringLiteral("Fruit"), fruit));
    root->AppendItem(new XOLATreeItem(QStringLiteral("bread"), QStringLiteral("Bread")));
    root->AppendItem(new XOLATreeItem(QStringLiteral("cheese"), QStringLiteral("Cheese")));

    QQmlEngine engine;
    engine.rootContext()->setContextProperty(QStringLiteral("treeModel"), root);
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/hello.qml")));
    QObject* document = component.create();
    if (!document) {
        std::fprintf(stderr, "%s\n", qPrintable(component.errorString()));
        return 1;
    }
    for (const QVariant& line : document->property("report").toList())
        std::printf("%s\n", qPrintable(line.toString()));
    delete document;

    // Deleting the root removes its rows; the child model goes with its item.
    DeleteXOLATreeModel(&root);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
