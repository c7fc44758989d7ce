// A host that knows the library only through its installed package.
#include <XOLATreeModel.h>

#include <QtCore/QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    IXOLATreeModel* model = nullptr;
    if (!CreateXOLATreeModel(&model, nullptr, {}, 0, nullptr, nullptr))
        return 1;
    auto* tree = static_cast<XOLATreeModel*>(model);
    tree->AppendItem(new XOLATreeItem(QStringLiteral("a"), QStringLiteral("Alpha")));
    tree->AppendItem(new XOLATreeItem(QStringLiteral("b"), QStringLiteral("Beta")));
    const bool ok = model->rowCount() == 2 && model->FindItemID(1) == QStringLiteral("b")
        && model->FindItemValue(QStringLiteral("a"), QStringLiteral("nameRole")).toString() == QStringLiteral("Alpha");
    std::printf("consumer read %d rows: %s\n", model->rowCount(), ok ? "ok" : "WRONG");
    DeleteXOLATreeModel(&model);
    return ok && model == nullptr ? 0 : 2;
}
