#include "ModelTesters.h"
#include "PartialModel.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

using namespace TestSupport;

class TestXOLATreeModel : public ModelTesterSuite
{
    Q_OBJECT

private:
    // A three-level tree:
    //   r0 (child: c0 [g0], c1)   r1   r2 (child: c2 [g1 (child: x)])   r3   r4   r5 (child: dup-holder)
    struct Tree {
        XOLATreeModel* root = nullptr;
        QList<XOLATreeModel*> owned;
        ~Tree() { delete root; qDeleteAll(owned); }
    };

    XOLATreeModel* model(const QStringList& ids, Tree& tree)
    {
        XOLATreeModel* m = createModel();
        tree.owned << m;
        appendEach(m, items(ids));
        return m;
    }

private slots:
    void rowCountAndData()
    {
        Tree t;
        XOLATreeModel* m = model({"a", "b", "c"}, t);
        QCOMPARE(m->rowCount(), 3);
        QCOMPARE(m->rowCount(m->index(1)), 3); // the parent is ignored
        QCOMPARE(m->data(m->index(1), XOLATreeItem::IdRole), QVariant("b"));
        QCOMPARE(m->data(m->index(0), XOLATreeItem::NameRole), QVariant("name-a"));
        // Rows outside the list give an invalid value.
        QVERIFY(!m->data(m->index(-1), XOLATreeItem::IdRole).isValid());
        QVERIFY(!m->data(m->index(3), XOLATreeItem::IdRole).isValid());
        QVERIFY(!m->data(QModelIndex(), XOLATreeItem::IdRole).isValid());
        const QVariantMap whole = m->data(m->index(2), XOLATreeItem::JsonValueRole).toMap();
        QCOMPARE(whole.value("idRole"), QVariant("c"));
        QCOMPARE(whole.keys(), QStringList({"childModelRole", "idRole", "nameRole"}));
    }

    void dataUsesTheItemsOwnRoles()
    {
        Tree t;
        XOLATreeModel* m = createModel(0, extendedRoleNames());
        t.owned << m;
        m->AppendItem(new ValueItem("v", "V", 42));
        QCOMPARE(m->data(m->index(0), ValueItem::ValueRole), QVariant(42));
    }

    void roleNames_defaultsWhenEmpty()
    {
        Tree t;
        XOLATreeModel* m = model({}, t);
        const QHash<int, QByteArray> expected{{257, "idRole"}, {258, "nameRole"}, {259, "childModelRole"}};
        QCOMPARE(m->roleNames(), expected);
    }

    void roleNames_givenHashUnchanged()
    {
        const QHash<int, QByteArray> given{{258, "title"}, {300, "extra"}};
        XOLATreeModel* m = createModel(0, given);
        QCOMPARE(m->roleNames(), given);
        delete m;
    }

    void get_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("keys");
        QTest::newRow("-1") << -1 << QStringList();
        QTest::newRow("3") << 3 << QStringList();
        QTest::newRow("0") << 0 << QStringList({"childModelRole", "idRole", "nameRole"});
    }

    void get()
    {
        QFETCH(int, row);
        QFETCH(QStringList, keys);
        Tree t;
        XOLATreeModel* m = model({"a", "b", "c"}, t);
        const QVariantMap map = m->get(row);
        QCOMPARE(map.keys(), keys);
        if (!keys.isEmpty()) {
            QCOMPARE(map.value("idRole"), QVariant("a"));
            QCOMPARE(map.value("nameRole"), QVariant("name-a"));
        }
    }

    void get_extraRoleNamesAppearAsKeys()
    {
        XOLATreeModel* m = createModel(0, extendedRoleNames());
        m->AppendItem(item("p")); // a plain item knows only the fixed names
        m->AppendItem(new ValueItem("v", "V", 7));
        const QVariantMap plain = m->get(0);
        QCOMPARE(plain.size(), 6);
        QVERIFY(plain.contains("valueRole"));
        QVERIFY(!plain.value("valueRole").isValid());
        QCOMPARE(m->get(1).value("valueRole"), QVariant(7));
        delete m;
    }

    void findItem_byRow()
    {
        Tree t;
        XOLATreeModel* m = model({"a", "b"}, t);
        QCOMPARE(qobject_cast<XOLATreeItem*>(m->FindItem(1))->id(), QStringLiteral("b"));
        QCOMPARE(m->FindItem(2), static_cast<QObject*>(nullptr));
        QCOMPARE(m->FindItem(-1), static_cast<QObject*>(nullptr));
        QCOMPARE(m->FindItemID(0), QStringLiteral("a"));
        QCOMPARE(m->FindItemID(99), QString());
        QCOMPARE(m->FindItemID(-5), QString());
        QCOMPARE(m->FindItemRow("b"), 1);
        QCOMPARE(m->FindItemRow("zz"), -1);
        QCOMPARE(m->FindItemRow(QString()), -1);
    }

    void findItemRow_firstOfEqualIds()
    {
        // With duplicates allowed the map points at the newest, the row scan at the first.
        Tree t;
        XOLATreeModel* m = model({"a", "x", "b", "x"}, t);
        QCOMPARE(m->FindItemRow("x"), 1);
        QCOMPARE(m->FindItem("x", false), m->FindItem(3));
    }

    void findItem_descendsIntoChildren()
    {
        // Given a three-level tree with "deep" only in a grandchild model and
        // "twice" in the children of rows 2 and 5.
        Tree t;
        XOLATreeModel* grand = model({"deep"}, t);
        XOLATreeModel* child2 = createModel();
        t.owned << child2;
        child2->AppendItem(new XOLATreeItem("c2", "C2", grand));
        child2->AppendItem(item("twice"));
        XOLATreeModel* child5 = model({"twice", "c5"}, t);
        XOLATreeModel* root = createModel();
        t.owned << root;
        appendEach(root, items({"r0", "r1"}));
        root->AppendItem(new XOLATreeItem("r2", "R2", child2));
        appendEach(root, items({"r3", "r4"}));
        root->AppendItem(new XOLATreeItem("r5", "R5", child5));

        QCOMPARE(root->FindItem("deep", false), static_cast<QObject*>(nullptr));
        QCOMPARE(root->FindItem("deep"), static_cast<QObject*>(nullptr)); // the default does not descend
        QCOMPARE(root->FindItem("deep", true), grand->FindItem(0));
        QCOMPARE(root->FindItem("twice", true), child2->FindItem(1));
        QCOMPARE(root->FindItem("nowhere", true), static_cast<QObject*>(nullptr));
        QCOMPARE(root->FindItem("r3", true), root->FindItem(3));

        QCOMPARE(root->FindItemValueEx("deep", XOLATreeItem::NameRole, true), QVariant("name-deep"));
        QCOMPARE(root->FindItemValueEx("deep", QStringLiteral("nameRole"), true), QVariant("name-deep"));
        QVERIFY(!root->FindItemValueEx("deep", XOLATreeItem::NameRole, false).isValid());
        QVERIFY(!root->FindItemValue("deep", XOLATreeItem::NameRole).isValid());

        // GetAllIDs lists depth first, pre-order, and appends without clearing.
        QList<QString> ids{"already"};
        root->GetAllIDs(ids, true);
        QCOMPARE(QStringList(ids), QStringList({"already", "r0", "r1", "r2", "c2", "deep", "twice", "r3", "r4", "r5",
                                                "twice", "c5"}));
        QList<QString> flat{"x"};
        root->GetAllIDs(flat, false);
        QCOMPARE(QStringList(flat), QStringList({"x", "r0", "r1", "r2", "r3", "r4", "r5"}));
        // Removing the rows disposes of the child models with their items.
        QPointer<XOLATreeModel> grandGuard(grand), child2Guard(child2), child5Guard(child5);
        root->RemoveAll();
        flushDeferredDeletes();
        QVERIFY(grandGuard.isNull() && child2Guard.isNull() && child5Guard.isNull());
        t.owned = {root};
    }

    void findItemValue_family_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("row,role") << "row,role" << QVariant("name-b");
        QTest::newRow("row,name") << "row,name" << QVariant("name-b");
        QTest::newRow("id,role") << "id,role" << QVariant("name-b");
        QTest::newRow("id,name") << "id,name" << QVariant("name-b");
        QTest::newRow("badrow,role") << "badrow,role" << QVariant();
        QTest::newRow("badrow,name") << "badrow,name" << QVariant();
        QTest::newRow("badid,role") << "badid,role" << QVariant();
        QTest::newRow("badid,name") << "badid,name" << QVariant();
        QTest::newRow("row,unknownname") << "row,unknownname" << QVariant();
        QTest::newRow("row,role0") << "row,role0" << QVariant();
    }

    void findItemValue_family()
    {
        QFETCH(QString, call);
        QFETCH(QVariant, expected);
        Tree t;
        XOLATreeModel* m = model({"a", "b"}, t);
        const QString nameRole = QStringLiteral("nameRole");
        QVariant got;
        if (call == "row,role") got = m->FindItemValue(1, int(XOLATreeItem::NameRole));
        else if (call == "row,name") got = m->FindItemValue(1, nameRole);
        else if (call == "id,role") got = m->FindItemValue(QStringLiteral("b"), int(XOLATreeItem::NameRole));
        else if (call == "id,name") got = m->FindItemValue(QStringLiteral("b"), nameRole);
        else if (call == "badrow,role") got = m->FindItemValue(7, int(XOLATreeItem::NameRole));
        else if (call == "badrow,name") got = m->FindItemValue(-1, nameRole);
        else if (call == "badid,role") got = m->FindItemValue(QStringLiteral("zz"), int(XOLATreeItem::NameRole));
        else if (call == "badid,name") got = m->FindItemValue(QStringLiteral("zz"), nameRole);
        else if (call == "row,unknownname") got = m->FindItemValue(1, QStringLiteral("valueRole"));
        else if (call == "row,role0") got = m->FindItemValue(1, 0);
        QCOMPARE(got.isValid(), expected.isValid());
        QCOMPARE(got, expected);
    }

    void clear_removesEverything()
    {
        Tree t;
        XOLATreeModel* m = model({"a", "b"}, t);
        SignalLog log(m);
        m->clear();
        QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()",
                                          "rowCountChanged()"}));
        QCOMPARE(m->rowCount(), 0);
    }

    void partialDelegation()
    {
        // The window announces the rows of a new size after the change, and, left
        // at row 3, counts below zero as the model empties on its way out.
        ModelTesters::expect({ModelTesters::WindowRowsAfterChange, ModelTesters::WindowNegativeCount});
        Tree t;
        XOLATreeModel* m = model({"a", "b", "c", "d", "e"}, t);
        auto* window = ModelTesters::watch(qobject_cast<PartialModel*>(m->GetPartialModel(2)));
        QVERIFY(window);
        QCOMPARE(window, m->GetPartialModel(2)); // always the model's own window
        QCOMPARE(window->rowCount(), 2);
        QCOMPARE(QQmlEngine::objectOwnership(window), QQmlEngine::CppOwnership);
        SignalLog log(m);
        m->SetFirstPartialModelRow(1);
        QCOMPARE(m->FirstPartialModelRow(), 1);
        QCOMPARE(log.take(), QStringList({"firstPartialModelRowChanged()"}));
        // Emitted also when the row does not change.
        m->SetFirstPartialModelRow(1);
        QCOMPARE(log.take(), QStringList({"firstPartialModelRowChanged()"}));
        QCOMPARE(m->property("firstPartialModelRow").toInt(), 1);
        QVERIFY(m->setProperty("firstPartialModelRow", 3));
        QCOMPARE(window->data(window->index(0), XOLATreeItem::IdRole), QVariant("d"));
        m->SetPartialModelCount(1);
        QCOMPARE(window->rowCount(), 1);
    }

    void pagingDefaults()
    {
        Tree t;
        XOLATreeModel* m = model({"a"}, t);
        QCOMPARE(m->page(), -1);
        QCOMPARE(m->totalPage(), 0);
        SignalLog log(m);
        m->setPage(2);
        QVERIFY(m->setProperty("page", 4));
        QCOMPARE(m->page(), -1);
        QCOMPARE(m->property("page").toInt(), -1);
        QCOMPARE(m->property("totalPage").toInt(), 0);
        QCOMPARE(log.take(), QStringList());
    }

    void trivialDefaults()
    {
        Tree t;
        XOLATreeModel* m = model({"a"}, t);
        QVERIFY(!m->UpdateGroupRole(257));
        QVERIFY(!m->UpdateGroupRole(QStringLiteral("idRole")));
        QVERIFY(!m->UpdateFilterRules());
        QVERIFY(!m->UpdateUserDefinedFilterRules());
        QCOMPARE(m->GetModelItemList()->size(), 1);
        QCOMPARE(m->GetModelItemList()->at(0)->id(), QStringLiteral("a"));
    }

    void countProperty()
    {
        Tree t;
        XOLATreeModel* m = model({"a", "b"}, t);
        QCOMPARE(m->property("count").toInt(), 2);
    }

    void noArgumentModelIsLimited()
    {
        XOLATreeModel m;
        ModelTesters::watch(&m);
        QVERIFY(m.roleNames().isEmpty());
        QCOMPARE(m.GetPartialModel(3), static_cast<QObject*>(nullptr));
        QCOMPARE(m.FirstPartialModelRow(), 0);
        QCOMPARE(m.flags(), 0);
        QVERIFY(m.AppendItem(item("a")));
        QCOMPARE(m.rowCount(), 1);
        QVERIFY(m.get(0).isEmpty()); // no role names, no keys
    }
};

QTEST_MAIN(TestXOLATreeModel)
#include "tst_xolatreemodel.moc"
