// A host puts a model it filled from C++ into a QML context; documents read it.

#include "ModelTesters.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

using namespace TestSupport;

class TestQmlHost : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void documentReadsTheHostsModel()
    {
        // Given a model filled by the host
        XOLATreeModel* model = createModel(0, extendedRoleNames());
        model->AppendItem(new ValueItem("a", "Alpha", 10));
        model->AppendItem(new ValueItem("b", "Beta", 20));
        model->AppendItem(new ValueItem("c", "Gamma", 30));
        QQmlEngine engine;
        engine.rootContext()->setContextProperty(QStringLiteral("treeModel"), model);
        // When a document reads it
        QQmlComponent component(&engine);
        component.setData("import QtQml 2.15\n"
                          "QtObject {\n"
                          "  property int count: treeModel.count\n"
                          "  property string firstId: treeModel.get(0).idRole\n"
                          "  property string secondName: treeModel.get(1).nameRole\n"
                          "  property var thirdValue: treeModel.get(2).valueRole\n"
                          "  property string byId: treeModel.FindItemValue('b', 'nameRole')\n"
                          "  property var byRow: treeModel.FindItemValue(2, 261)\n"
                          "  property int rowOfC: treeModel.FindItemRow('c')\n"
                          "  property int missing: treeModel.FindItemRow('zz')\n"
                          "  property bool noItem: treeModel.FindItem(9) === null\n"
                          "  property string itemName: treeModel.FindItem('a').getData('nameRole')\n"
                          "}",
                          QUrl());
        QScopedPointer<QObject> object(component.create());
        QVERIFY2(object, qPrintable(component.errorString()));
        // Then
        QCOMPARE(object->property("count").toInt(), 3);
        QCOMPARE(object->property("firstId").toString(), QStringLiteral("a"));
        QCOMPARE(object->property("secondName").toString(), QStringLiteral("Beta"));
        QCOMPARE(object->property("thirdValue").toInt(), 30);
        QCOMPARE(object->property("byId").toString(), QStringLiteral("Beta"));
        QCOMPARE(object->property("byRow").toInt(), 30);
        QCOMPARE(object->property("rowOfC").toInt(), 2);
        QCOMPARE(object->property("missing").toInt(), -1);
        QVERIFY(object->property("noItem").toBool());
        QCOMPARE(object->property("itemName").toString(), QStringLiteral("Alpha"));
        // The count binding follows the host's changes.
        model->AppendItem(new ValueItem("d", "Delta", 40));
        QCOMPARE(object->property("count").toInt(), 4);
        object.reset();
        // Items handed to QML stay the host's.
        QPointer<QObject> a(model->FindItem(0));
        engine.collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!a.isNull());
        delete model;
    }
};

QTEST_MAIN(TestQmlHost)
#include "tst_qmlhost.moc"
