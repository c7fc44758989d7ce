#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

using namespace TestSupport;

class TestEntryPoints : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void create_nullOutPointerFails()
    {
        QVERIFY(!CreateXOLATreeModel(nullptr, nullptr, {}, 0, nullptr, nullptr));
    }

    void create_emptyRoleNamesGivesDefaults()
    {
        IXOLATreeModel* model = nullptr;
        QVERIFY(CreateXOLATreeModel(&model, nullptr, {}, 0, nullptr, nullptr));
        ModelTesters::watch(model);
        QVERIFY(model);
        const QHash<int, QByteArray> expected{{257, "idRole"}, {258, "nameRole"}, {259, "childModelRole"}};
        QCOMPARE(model->roleNames(), expected);
        QVERIFY(qobject_cast<XOLATreeModel*>(model));
        QVERIFY(DeleteXOLATreeModel(&model));
    }

    void create_parentIsSet()
    {
        QObject parent;
        IXOLATreeModel* model = nullptr;
        QVERIFY(CreateXOLATreeModel(&model, &parent, {}, 0, nullptr, nullptr));
        ModelTesters::watch(model);
        QCOMPARE(model->parent(), &parent);
        QPointer<QObject> guard(model);
        // Deleted with its parent.
    }

    void delete_onceThenFalse()
    {
        IXOLATreeModel* model = nullptr;
        QVERIFY(CreateXOLATreeModel(&model, nullptr, {}, 0, nullptr, nullptr));
        ModelTesters::watch(model);
        QPointer<QObject> guard(model);
        QVERIFY(DeleteXOLATreeModel(&model));
        QCOMPARE(model, static_cast<IXOLATreeModel*>(nullptr));
        QVERIFY(guard.isNull());
        QVERIFY(!DeleteXOLATreeModel(&model));
        QVERIFY(!DeleteXOLATreeModel(nullptr));
    }

    void delete_removesRowsFirst()
    {
        IXOLATreeModel* model = nullptr;
        QVERIFY(CreateXOLATreeModel(&model, nullptr, {}, 0, nullptr, nullptr));
        ModelTesters::watch(model);
        auto* m = static_cast<XOLATreeModel*>(model);
        appendEach(m, items({"a", "b"}));
        QPointer<XOLATreeItem> a(m->GetModelItemList()->at(0));
        QStringList seen;
        connect(m, &IXOLATreeModel::allItemRemoved, this, [&seen]() { seen << "allItemRemoved"; });
        connect(m, &QAbstractItemModel::rowsRemoved, this, [&seen](const QModelIndex&, int f, int l) {
            seen << QStringLiteral("rowsRemoved(%1,%2)").arg(f).arg(l); });
        QVERIFY(DeleteXOLATreeModel(&model));
        QCOMPARE(seen, QStringList({"rowsRemoved(0,1)", "allItemRemoved"}));
        flushDeferredDeletes();
        QVERIFY(a.isNull());
    }

    void delete_keepsItemsWithOptionTwo()
    {
        IXOLATreeModel* model = nullptr;
        QVERIFY(CreateXOLATreeModel(&model, nullptr, {}, 2, nullptr, nullptr));
        ModelTesters::watch(model);
        XOLATreeItem* a = item("a");
        static_cast<XOLATreeModel*>(model)->AppendItem(a);
        QPointer<XOLATreeItem> guard(a);
        QVERIFY(DeleteXOLATreeModel(&model));
        flushDeferredDeletes();
        QVERIFY(!guard.isNull());
        delete a;
    }

    void ownership_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("ownership");
        QTest::newRow("0") << 0 << int(QQmlEngine::CppOwnership);
        QTest::newRow("1") << 1 << int(QQmlEngine::JavaScriptOwnership);
        QTest::newRow("2") << 2 << int(QQmlEngine::CppOwnership);
        QTest::newRow("3") << 3 << int(QQmlEngine::JavaScriptOwnership);
        QTest::newRow("5") << 5 << int(QQmlEngine::JavaScriptOwnership);
    }

    void ownership()
    {
        QFETCH(int, flags);
        QFETCH(int, ownership);
        IXOLATreeModel* model = nullptr;
        QVERIFY(CreateXOLATreeModel(&model, nullptr, {}, flags, nullptr, nullptr));
        ModelTesters::watch(model);
        QCOMPARE(int(QQmlEngine::objectOwnership(model)), ownership);
        QCOMPARE(static_cast<XOLATreeModel*>(model)->flags(), flags);
        DeleteXOLATreeModel(&model);
    }

    void viewOwnership()
    {
        XOLATreeModel* m = createModel();
        appendEach(m, items({"a", "b"}));
        QObject* filter = ModelTesters::watch(m->GetFilterModel());
        QObject* user = ModelTesters::watch(m->GetFilterModelByUserDefinedRules());
        QObject* paging = ModelTesters::watch(m->GetPagingModel(1));
        QObject* group = ModelTesters::watch(m->GetGroupModel(257));
        for (QObject* view : {filter, user, paging, group}) {
            QVERIFY(view);
            QCOMPARE(view->parent(), static_cast<QObject*>(nullptr));
            QCOMPARE(QQmlEngine::objectOwnership(view), QQmlEngine::JavaScriptOwnership);
        }
        QCOMPARE(static_cast<XOLATreeModel*>(filter)->flags(), 3);
        QCOMPARE(static_cast<XOLATreeModel*>(paging)->flags(), 3);
        QCOMPARE(static_cast<XOLATreeModel*>(group)->flags(), 1);
        QObject* second = ModelTesters::watch(m->GetFilterModel());
        QVERIFY(second != filter); // a new view per call
        delete second;
        delete filter;
        delete user;
        delete paging;
        delete group;
        QObject* partial = ModelTesters::watch(m->GetPartialModel(1));
        QCOMPARE(QQmlEngine::objectOwnership(partial), QQmlEngine::CppOwnership);
        delete m;
    }

    void itemOwnership()
    {
        XOLATreeItem item(QStringLiteral("a"), QStringLiteral("A"), nullptr);
        QCOMPARE(QQmlEngine::objectOwnership(&item), QQmlEngine::CppOwnership);
    }

    void qmlTypeRegistered()
    {
        XOLATreeModel* m = createModel();
        QVERIFY(qmlTypeId("com.xolasys.ixolatreemodel", 1, 0, "IXOLATreeModel") >= 0);
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQml 2.15\nimport com.xolasys.ixolatreemodel 1.0\n"
                          "IXOLATreeModel { property int filterEnum: IXOLATreeModel.InsensitiveSubStr;"
                          " property int sortEnum: IXOLATreeModel.KeepSorting; property int posEnum: IXOLATreeModel.POS_HEAD }",
                          QUrl());
        QScopedPointer<QObject> object(ModelTesters::watch(component.create()));
        QVERIFY2(object, qPrintable(component.errorString()));
        QVERIFY(qobject_cast<XOLATreeModel*>(object.data()));
        QCOMPARE(object->property("filterEnum").toInt(), 7);
        QCOMPARE(object->property("sortEnum").toInt(), 1);
        QCOMPARE(object->property("posEnum").toInt(), 1);
        QCOMPARE(object->property("count").toInt(), 0);
        QCOMPARE(object->property("page").toInt(), -1);
        QCOMPARE(object->property("totalPage").toInt(), 0);
        delete m;
    }

    void metaObject_signalsInOrder()
    {
        const QMetaObject& mo = IXOLATreeModel::staticMetaObject;
        QStringList signalList;
        for (int i = mo.methodOffset(); i < mo.methodCount(); ++i) {
            if (mo.method(i).methodType() == QMetaMethod::Signal)
                signalList << QString::fromLatin1(mo.method(i).methodSignature());
        }
        QCOMPARE(signalList, QStringList({"rowCountChanged()", "firstPartialModelRowChanged()",
                                          "itemsRemoved(QStringList)", "allItemRemoved()", "filterModelChanged()",
                                          "pageChanged(int)", "totalPageChanged(int)"}));
    }

    void metaObject_properties()
    {
        const QMetaObject& mo = XOLATreeModel::staticMetaObject;
        struct P { const char* name; bool writable; const char* notify; };
        const P expected[] = {{"firstPartialModelRow", true, "firstPartialModelRowChanged()"},
                              {"count", false, "rowCountChanged()"},
                              {"page", true, "pageChanged(int)"},
                              {"totalPage", false, "totalPageChanged(int)"}};
        for (const P& p : expected) {
            const int index = mo.indexOfProperty(p.name);
            QVERIFY2(index >= 0, p.name);
            const QMetaProperty prop = mo.property(index);
            QCOMPARE(prop.typeName(), "int");
            QCOMPARE(prop.isWritable(), p.writable);
            QCOMPARE(QByteArray(prop.notifySignal().methodSignature()), QByteArray(p.notify));
        }
    }

    void metaObject_enums()
    {
        const QMetaObject& mo = XOLATreeModel::staticMetaObject;
        const QMetaEnum filter = mo.enumerator(mo.indexOfEnumerator("FilterRuleColne"));
        QVERIFY(filter.isValid());
        QCOMPARE(filter.keyCount(), 8);
        const char* filterKeys[] = {"Eq", "Ne", "Ge", "Gt", "Le", "Lt", "SubStr", "InsensitiveSubStr"};
        for (int i = 0; i < 8; ++i)
            QCOMPARE(filter.keyToValue(filterKeys[i]), i);
        const QMetaEnum sort = mo.enumerator(mo.indexOfEnumerator("SortFlagColne"));
        QCOMPARE(sort.keyCount(), 3);
        QCOMPARE(sort.keyToValue("None"), 0);
        QCOMPARE(sort.keyToValue("KeepSorting"), 1);
        QCOMPARE(sort.keyToValue("RecursiveKeepSorting"), 2);
        const QMetaEnum pos = mo.enumerator(mo.indexOfEnumerator("NewItemAddedPosition"));
        QCOMPARE(pos.keyCount(), 2);
        QCOMPARE(pos.keyToValue("POS_TAIL"), 0);
        QCOMPARE(pos.keyToValue("POS_HEAD"), 1);
    }

    void metaObject_invokablesAndArities_data()
    {
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<bool>("present");
        const char* present[] = {
            "FindItemID(int)", "FindItemRow(QString)", "FindItemValue(int,int)", "FindItemValue(int,QString)",
            "FindItemValue(QString,int)", "FindItemValue(QString,QString)", "FindItemValueEx(QString,int,bool)",
            "FindItemValueEx(QString,QString,bool)", "GetAllIDs(QList<QString>&,bool)", "SetPartialModelCount(int)",
            "GetPartialModel(int)", "SortByRole(int,bool)", "SortByRole(int,bool,PF_LESS_THAN)",
            "SortByRole(QString,bool)", "SortByRoleAndKeep(int,bool)", "SortByRoleAndKeep(QString,bool)",
            "SortByRoleByQMLFunction(int,bool,QString,QString)", "SortByRoleByQMLFunction(QString,bool,QString,QString)",
            "SortByRoleByScriptFunction(int,bool,QString,QString)",
            "SortByRoleByScriptFunction(QString,bool,QString,QString)", "SortByRules(QVariantList)",
            "SortByRules(QVariantList,int)", "MoveRow(int,int)", "get(int)", "clear()", "FindItem(int)",
            "FindItem(QString)", "FindItem(QString,bool)", "RemoveAll()", "RemoveOne(QString)",
            "Remove(QStringList)", "Remove(int,int)", "GetGroupModel(int)", "GetGroupModel(int,bool)",
            "GetGroupModel(QString)", "GetGroupModel(QString,bool)", "UpdateGroupRole(int)",
            "UpdateGroupRole(QString)", "GetFilterModel()", "GetFilterModel(QVariantList)",
            "GetFilterModel(QVariantList,bool)", "GetFilterModel(QVariantList,bool,int)", "UpdateFilterRules()",
            "UpdateFilterRules(QVariantList)", "UpdateFilterRules(QVariantList,bool)",
            "GetFilterModelByUserDefinedRules()", "GetFilterModelByUserDefinedRules(QVariant)",
            "GetFilterModelByUserDefinedRules(QVariant,int)", "UpdateUserDefinedFilterRules()",
            "UpdateUserDefinedFilterRules(QVariant)", "GetPagingModel(uint)", "EmitValueChange()"};
        for (const char* s : present)
            QTest::newRow(s) << QByteArray(s) << true;
        const char* absent[] = {"InsertItem(int,XOLATreeItem*)", "AppendItem(XOLATreeItem*)",
                                "AppendItemsList(QList<XOLATreeItem*>)", "PrependItem(XOLATreeItem*)",
                                "ReplaceItemsList(QList<XOLATreeItem*>)", "ClearAllSourceContainer()",
                                "GetModelItemList()", "FirstPartialModelRow()", "SetFirstPartialModelRow(int)",
                                "page()", "setPage(int)", "totalPage()", "GetPagingModel()"};
        for (const char* s : absent)
            QTest::newRow(s) << QByteArray(s) << false;
    }

    void metaObject_invokablesAndArities()
    {
        QFETCH(QByteArray, signature);
        QFETCH(bool, present);
        const QMetaObject& mo = XOLATreeModel::staticMetaObject;
        QCOMPARE(mo.indexOfMethod(signature.constData()) >= 0, present);
    }

    void shortArities_reachTheVirtualFullForm()
    {
        // FindItem(id) from the meta-object does not search child models.
        XOLATreeModel* child = createModel();
        child->AppendItem(item("deep"));
        XOLATreeModel* m = createModel();
        m->AppendItem(new XOLATreeItem("p", "P", child));
        QObject* found = reinterpret_cast<QObject*>(1);
        QVERIFY(QMetaObject::invokeMethod(m, "FindItem", Q_RETURN_ARG(QObject*, found), Q_ARG(QString, "deep")));
        QCOMPARE(found, static_cast<QObject*>(nullptr));
        QVERIFY(QMetaObject::invokeMethod(m, "FindItem", Q_RETURN_ARG(QObject*, found), Q_ARG(QString, "deep"),
                                          Q_ARG(bool, true)));
        QCOMPARE(found, child->FindItem(0));
        QVariantList rules{QVariantMap{{"RoleName", "nameRole"}, {"Ascending", true}}};
        QVERIFY(QMetaObject::invokeMethod(m, "SortByRules", Q_ARG(QVariantList, rules)));
        QCOMPARE(m->sortFlag(), 0);
        delete m;
    }
};

QTEST_MAIN(TestEntryPoints)
#include "tst_entrypoints.moc"
