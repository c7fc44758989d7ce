#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

class TestXOLATreeItem : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void construction_storesFieldsAndMirrorsThem()
    {
        // Given a child model
        XOLATreeModel* child = TestSupport::createModel();
        // When an item is built with it
        XOLATreeItem item(QStringLiteral("id1"), QStringLiteral("Name"), child);
        // Then
        QCOMPARE(item.id(), QStringLiteral("id1"));
        QCOMPARE(item.name(), QStringLiteral("Name"));
        QCOMPARE(item.childModel(), static_cast<QObject*>(child));
        QCOMPARE(item.parent(), static_cast<QObject*>(nullptr));
        const QVariantMap values = item.jsonValue();
        QCOMPARE(values.keys(), QStringList({"childModelRole", "idRole", "nameRole"}));
        QCOMPARE(values.value("idRole"), QVariant("id1"));
        QCOMPARE(values.value("nameRole"), QVariant("Name"));
        QCOMPARE(values.value("childModelRole").userType(), int(QMetaType::QObjectStar));
        QCOMPARE(values.value("childModelRole").value<QObject*>(), static_cast<QObject*>(child));
        QCOMPARE(QQmlEngine::objectOwnership(&item), QQmlEngine::CppOwnership);
        delete child;
    }

    void construction_nullChildModelIsValidNullVariant()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("A"), nullptr);
        const QVariant child = item.getData(int(XOLATreeItem::ChildModelRole));
        QVERIFY(child.isValid());
        QCOMPARE(child.userType(), 39);
        QCOMPARE(child.value<QObject*>(), static_cast<QObject*>(nullptr));
        QCOMPARE(item.jsonValue().value("childModelRole").userType(), 39);
        // Nothing to relay: the item reports no child changes.
        ItemSignalLog log(&item);
        QCOMPARE(log.take(), QStringList());
    }

    void roles_enumValues()
    {
        QCOMPARE(int(XOLATreeItem::IdRole), 257);
        QCOMPARE(int(XOLATreeItem::NameRole), 258);
        QCOMPARE(int(XOLATreeItem::ChildModelRole), 259);
        QCOMPARE(int(XOLATreeItem::JsonValueRole), 260);
        QCOMPARE(int(XOLATreeItem::LastRole), 260);
        QCOMPARE(int(XOLATreeItem::IdRole), Qt::UserRole + 1);
        const QMetaEnum roles = QMetaEnum::fromType<XOLATreeItem::Roles>();
        QVERIFY(roles.isValid());
        QCOMPARE(roles.keyToValue("JsonValueRole"), 260);
    }

    void metaObject_surface()
    {
        const QMetaObject& mo = XOLATreeItem::staticMetaObject;
        const int offset = mo.methodOffset();
        QCOMPARE(QByteArray(mo.method(offset).methodSignature()), QByteArray("valueChanged()"));
        QCOMPARE(QByteArray(mo.method(offset + 1).methodSignature()), QByteArray("childModelValueChanged()"));
        QVERIFY(mo.indexOfMethod("getData(int)") >= 0);
        QVERIFY(mo.indexOfMethod("getData(QString)") >= 0);
        QVERIFY(mo.indexOfMethod("setData(int,QVariant)") >= 0);
        QVERIFY(mo.indexOfMethod("setData(QString,QVariant)") >= 0);
        QVERIFY(mo.indexOfMethod("getData(int)") < mo.indexOfMethod("getData(QString)"));
        QVERIFY(mo.indexOfMethod("getData(QString)") < mo.indexOfMethod("setData(int,QVariant)"));
    }

    void getData_byRole_data()
    {
        QTest::addColumn<int>("role");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("0") << 0 << QVariant();
        QTest::newRow("256") << 256 << QVariant();
        QTest::newRow("261") << 261 << QVariant();
        QTest::newRow("-1") << -1 << QVariant();
        QTest::newRow("id") << 257 << QVariant(QStringLiteral("a"));
        QTest::newRow("name") << 258 << QVariant(QStringLiteral("Alpha"));
    }

    void getData_byRole()
    {
        QFETCH(int, role);
        QFETCH(QVariant, expected);
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        const QVariant value = item.getData(role);
        QCOMPARE(value.isValid(), expected.isValid());
        QCOMPARE(value, expected);
    }

    void getData_jsonRoleReturnsWholeMap()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        QVariantMap map = item.jsonValue();
        map.insert(QStringLiteral("free"), 42);
        item.SetJsonValue(map);
        const QVariant whole = item.getData(260);
        QCOMPARE(whole.userType(), int(QMetaType::QVariantMap));
        const QVariantMap got = whole.toMap();
        QCOMPARE(got.value("free"), QVariant(42));
        QCOMPARE(got.value("idRole"), QVariant("a"));
        QCOMPARE(got.value("nameRole"), QVariant("Alpha"));
        QVERIFY(got.contains("childModelRole"));
    }

    void getData_byName()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        QVariantMap map = item.jsonValue();
        map.insert(QStringLiteral("free"), 42);
        item.SetJsonValue(map);
        QCOMPARE(item.getData(QStringLiteral("nameRole")), item.getData(258));
        QCOMPARE(item.getData(QStringLiteral("idRole")), QVariant("a"));
        QCOMPARE(item.getData(QStringLiteral("childModelRole")).userType(), 39);
        // Only the fixed fields have names: a free key of the map is not reachable by name.
        QVERIFY(!item.getData(QStringLiteral("free")).isValid());
        QVERIFY(!item.getData(QStringLiteral("jsonValueRole")).isValid());
        QVERIFY(!item.getData(QString()).isValid());
    }

    void setData_byRoleAndName()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        item.setData(257, QStringLiteral("b"));
        item.setData(QStringLiteral("nameRole"), QStringLiteral("Beta"));
        item.setData(261, QStringLiteral("ignored"));
        item.setData(QStringLiteral("free"), QStringLiteral("ignored"));
        item.setData(0, QStringLiteral("ignored"));
        QCOMPARE(item.id(), QStringLiteral("b"));
        QCOMPARE(item.name(), QStringLiteral("Beta"));
        QCOMPARE(log.take(), QStringList({"valueChanged()", "valueChanged()"}));
        QVERIFY(!item.jsonValue().contains("free"));
        // A wrong type converts the way QVariant does.
        item.setData(258, QVariant::fromValue(QVariantList{1, 2}));
        QCOMPARE(item.name(), QString());
        item.setData(260, QVariant(5)); // not a map: an empty map
        QCOMPARE(item.id(), QString());
    }

    void setID_emitsOnlyOnChange()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        item.SetID(QStringLiteral("a"));
        QCOMPARE(log.take(), QStringList());
        item.SetID(QStringLiteral("b"));
        QCOMPARE(log.take(), QStringList({"valueChanged()"}));
        QCOMPARE(item.jsonValue().value("idRole"), QVariant("b"));
        item.SetName(QStringLiteral("Alpha"));
        QCOMPARE(log.take(), QStringList());
        item.SetName(QStringLiteral("Beta"));
        QCOMPARE(log.take(), QStringList({"valueChanged()"}));
        QCOMPARE(item.jsonValue().value("nameRole"), QVariant("Beta"));
    }

    void setJsonValue_equalMapEmitsNothing()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        item.SetJsonValue(item.jsonValue());
        QCOMPARE(log.take(), QStringList());
    }

    void setJsonValue_freeKeyChangeEmitsOnce()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        QVariantMap map = item.jsonValue();
        map.insert(QStringLiteral("size"), 10);
        item.SetJsonValue(map);
        QCOMPARE(log.take(), QStringList({"valueChanged()"}));
        QCOMPARE(item.jsonValue().value("size"), QVariant(10));
    }

    void setJsonValue_missingIdClearsIt()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        QVariantMap map;
        map.insert(QStringLiteral("nameRole"), QStringLiteral("Alpha"));
        map.insert(QStringLiteral("childModelRole"), QVariant::fromValue<QObject*>(nullptr));
        item.SetJsonValue(map);
        // Once from the id change, once at the end.
        QCOMPARE(log.take(), QStringList({"valueChanged()", "valueChanged()"}));
        QCOMPARE(item.id(), QString());
        QVERIFY(item.jsonValue().contains("idRole"));
        QCOMPARE(item.jsonValue().value("idRole").toString(), QString());
    }

    void setJsonValue_changesEveryFieldEmitsFourTimes()
    {
        XOLATreeModel* child = TestSupport::createModel();
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        QVariantMap map;
        map.insert(QStringLiteral("idRole"), QStringLiteral("b"));
        map.insert(QStringLiteral("nameRole"), QStringLiteral("Beta"));
        map.insert(QStringLiteral("childModelRole"), QVariant::fromValue<QObject*>(child));
        item.SetJsonValue(map);
        QCOMPARE(log.take().size(), 4);
        QCOMPARE(item.id(), QStringLiteral("b"));
        QCOMPARE(item.name(), QStringLiteral("Beta"));
        QCOMPARE(item.childModel(), static_cast<QObject*>(child));
        // A map without childModelRole clears the child model.
        QVariantMap noChild;
        noChild.insert(QStringLiteral("idRole"), QStringLiteral("b"));
        noChild.insert(QStringLiteral("nameRole"), QStringLiteral("Beta"));
        item.SetJsonValue(noChild);
        QCOMPARE(item.childModel(), static_cast<QObject*>(nullptr));
        QCOMPARE(log.take().size(), 2);
        delete child;
    }

    void setChildModel_sameModelTwiceRelaysTwice()
    {
        XOLATreeModel* child = TestSupport::createModel();
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("Alpha"), nullptr);
        ItemSignalLog log(&item);
        item.SetChildModel(child);
        item.SetChildModel(child);
        QCOMPARE(log.take(), QStringList({"valueChanged()"}));
        QCOMPARE(item.jsonValue().value("childModelRole").value<QObject*>(), static_cast<QObject*>(child));
        // Every change of the child now fires the relay twice.
        child->AppendItem(TestSupport::item(QStringLiteral("c1")));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()", "childModelValueChanged()"}));
        emit child->dataChanged(child->index(0), child->index(0));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()", "childModelValueChanged()"}));
        child->RemoveOne(QStringLiteral("c1"));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()", "childModelValueChanged()"}));
        delete child;
    }

    void setChildModel_earlierModelsKeepRelaying()
    {
        XOLATreeModel* a = TestSupport::createModel();
        XOLATreeModel* b = TestSupport::createModel();
        XOLATreeItem item(QStringLiteral("x"), QStringLiteral("X"), nullptr);
        item.SetChildModel(a);
        item.SetChildModel(b);
        ItemSignalLog log(&item);
        a->AppendItem(TestSupport::item(QStringLiteral("a1")));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()"}));
        b->AppendItem(TestSupport::item(QStringLiteral("b1")));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()"}));
        // Setting null clears the field and emits, but the old connections stay.
        item.SetChildModel(nullptr);
        QCOMPARE(log.take(), QStringList({"valueChanged()"}));
        QCOMPARE(item.childModel(), static_cast<QObject*>(nullptr));
        item.SetChildModel(nullptr);
        QCOMPARE(log.take(), QStringList());
        b->AppendItem(TestSupport::item(QStringLiteral("b2")));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()"}));
        delete a;
        delete b;
    }

    void constructorConnectionsRelayChildChanges()
    {
        XOLATreeModel* child = TestSupport::createModel();
        XOLATreeItem item(QStringLiteral("x"), QStringLiteral("X"), child);
        ItemSignalLog log(&item);
        child->AppendItem(TestSupport::item(QStringLiteral("c")));
        QCOMPARE(log.take(), QStringList({"childModelValueChanged()"}));
        delete child;
    }
};

QTEST_GUILESS_MAIN(TestXOLATreeItem)
#include "tst_xolatreeitem.moc"
