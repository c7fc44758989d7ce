// Multi-rule sorting: SortByRules, the keep-sorting it stores, and the
// recursive re-sort of child models.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"

#include <QtCore/QPointer>
#include <QtCore/QScopedPointer>
#include <QtTest/QtTest>

using namespace TestSupport;

namespace {

const int kValueRole = ValueItem::ValueRole;
const int kGroupRole = ValueItem::GroupRole;

QStringList idList(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QVariantMap rule(const QVariant& roleName, const QVariant& ascending = QVariant())
{
    QVariantMap map;
    map.insert(QStringLiteral("RoleName"), roleName);
    if (ascending.isValid())
        map.insert(QStringLiteral("Ascending"), ascending);
    return map;
}

ValueItem* valueItem(const QString& id, const QString& name, const QVariant& value = QVariant(),
                     const QVariant& group = QVariant(), QObject* childModel = nullptr)
{
    auto* item = new ValueItem(id, name, value, childModel);
    if (group.isValid())
        item->setExtra(kGroupRole, group);
    return item;
}

XOLATreeModel* newModel(int flags = 0)
{
    return createModel(flags, extendedRoleNames());
}

// Records the notices of several models in one sequence, each tagged with the
// model's name, so the order between parent and children can be checked.
void recordInto(QStringList* log, const QString& tag, QAbstractItemModel* model)
{
    QObject::connect(model, &QAbstractItemModel::dataChanged, model,
                     [log, tag](const QModelIndex& tl, const QModelIndex& br) {
                         *log << QStringLiteral("%1:dataChanged(%2,%3)").arg(tag).arg(tl.row()).arg(br.row());
                     });
    QObject::connect(model, &QAbstractItemModel::layoutChanged, model,
                     [log, tag]() { *log << tag + QStringLiteral(":layoutChanged()"); });
    QObject::connect(model, &QAbstractItemModel::modelReset, model,
                     [log, tag]() { *log << tag + QStringLiteral(":modelReset()"); });
}

// root: r1 "b" (child c1), r2 "a" (child c2)
// c1:   c11 "y" (child g1), c12 "x"
// g1:   g11 "n", g12 "m"
// c2:   c21 "q", c22 "p"
struct Tree
{
    explicit Tree(int rootFlags, int childFlags = 0)
    {
        g1 = newModel(childFlags);
        appendEach(g1, {valueItem("g11", "n"), valueItem("g12", "m")});
        c1 = newModel(childFlags);
        appendEach(c1, {valueItem("c11", "y", QVariant(), QVariant(), g1), valueItem("c12", "x")});
        c2 = newModel(childFlags);
        appendEach(c2, {valueItem("c21", "q"), valueItem("c22", "p")});
        root.reset(newModel(rootFlags));
        appendEach(root.data(),
                   {valueItem("r1", "b", QVariant(), QVariant(), c1), valueItem("r2", "a", QVariant(), QVariant(), c2)});
    }
    ~Tree()
    {
        // Models that keep removed items alive leave them to us.
        QList<XOLATreeItem*> orphans;
        for (XOLATreeModel* model : {root.data(), c1.data(), c2.data(), g1.data()}) {
            if (model && (model->flags() & 2))
                orphans += *model->GetModelItemList();
        }
        root.reset();
        // Parents before children: a parent's removal still reads its children.
        delete c1;
        delete c2;
        delete g1;
        qDeleteAll(orphans);
    }

    QPointer<XOLATreeModel> g1;
    QPointer<XOLATreeModel> c1;
    QPointer<XOLATreeModel> c2;
    QScopedPointer<XOLATreeModel> root;
};

} // namespace

class TestSortByRules : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void ordersRows_data();
    void ordersRows();
    void emitsOneDataChanged();
    void emptyModelStillEmits();
    void emptyRuleListReversesAtEachCall();
    void fullyTiedRowsReverseAtEachCall();
    void usesQVariantOrderForStrings();
    void storesRulesAndFlag();
    void keepSortingReSortsAfterInsertion();
    void keepSortingFlipsTiesAtEachInsertion();
    void unknownFlagKeepsSortingWithoutRecursion();
    void recursiveSortGoesThroughThreeLevels();
    void recursiveKeepSortingAfterInsertion();
    void keptRemovedItemsLeaveChildrenAlone();
    void childThatKeepsRemovedItemsStopsTheRecursion();
    void childThatIsNoModelIsSkipped();
    void childLeadingBackToItsParentIsSortedOnce();
    void flagOneDoesNotRecurse();
};

void TestSortByRules::ordersRows_data()
{
    QTest::addColumn<QVariantList>("rules");
    QTest::addColumn<QStringList>("expected");

    // Rows: id name value group
    //       a  "b"  1     -
    //       b  "a"  2     x
    //       c  "c"  1     y
    //       d  "a"  1     x
    //       e  "d"  2     -
    QTest::newRow("name ascending") << QVariantList{rule("nameRole", true)} << idList("d b a c e");
    // Ties are strict both ways, so tied rows come out reversed in both directions.
    QTest::newRow("name descending") << QVariantList{rule("nameRole", false)} << idList("e c a d b");
    QTest::newRow("missing Ascending sorts descending") << QVariantList{rule("nameRole")} << idList("e c a d b");
    QTest::newRow("value ascending then name descending")
        << QVariantList{rule("valueRole", true), rule("nameRole", false)} << idList("c a d e b");
    QTest::newRow("value descending then name ascending")
        << QVariantList{rule("valueRole", false), rule("nameRole", true)} << idList("b e d a c");
    QTest::newRow("role name as bytes") << QVariantList{rule(QByteArray("nameRole"), true)} << idList("d b a c e");
    QTest::newRow("malformed rules skipped")
        << QVariantList{QVariant(3), QVariantMap(), QVariant("nameRole"), rule("nameRole", true)} << idList("d b a c e");
    // Unknown role names read role 0, which has no value: every row ties.
    QTest::newRow("unknown role ties everything") << QVariantList{rule("noSuchRole", true)} << idList("e d c b a");
    QTest::newRow("unknown role then name")
        << QVariantList{rule("noSuchRole", true), rule("nameRole", true)} << idList("d b a c e");
    // Rows without a group are ordered by the next rule alone.
    QTest::newRow("all rows without text, then name") << QVariantList{rule("textRole", true), rule("nameRole", true)}
                                                      << idList("d b a c e");
}

void TestSortByRules::ordersRows()
{
    QFETCH(QVariantList, rules);
    QFETCH(QStringList, expected);

    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), {valueItem("a", "b", 1), valueItem("b", "a", 2, "x"), valueItem("c", "c", 1, "y"),
                              valueItem("d", "a", 1, "x"), valueItem("e", "d", 2)});
    model->SortByRules(rules);
    QCOMPARE(ids(model.data()), expected);
}

void TestSortByRules::emitsOneDataChanged()
{
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), {valueItem("1", "b"), valueItem("2", "a"), valueItem("3", "c")});
    SignalLog log(model.data());
    model->SortByRules({rule("nameRole", true)});
    QCOMPARE(ids(model.data()), idList("2 1 3"));
    QCOMPARE(log.take(), QStringList({"dataChanged(0,2)"}));
}

void TestSortByRules::emptyModelStillEmits()
{
    ModelTesters::expect(ModelTesters::EmptySortDataChanged);
    QScopedPointer<XOLATreeModel> model(newModel());
    SignalLog log(model.data());
    model->SortByRules({rule("nameRole", true)}, 1);
    // The range is empty: both ends are invalid indexes.
    QCOMPARE(log.take(), QStringList({"dataChanged(-1,-1)"}));
    QCOMPARE(model->sortFlag(), 1);
}

void TestSortByRules::emptyRuleListReversesAtEachCall()
{
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), items({"A", "B", "C"}));
    SignalLog log(model.data());
    model->SortByRules({});
    QCOMPARE(ids(model.data()), idList("C B A"));
    model->SortByRules({});
    QCOMPARE(ids(model.data()), idList("A B C"));
    QCOMPARE(log.take(), QStringList({"dataChanged(0,2)", "dataChanged(0,2)"}));
}

void TestSortByRules::fullyTiedRowsReverseAtEachCall()
{
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), {valueItem("a", "same", 1, "g"), valueItem("b", "same", 1, "g"),
                              valueItem("c", "same", 1, "g"), valueItem("d", "same", 1, "g")});
    for (bool ascending : {true, false}) {
        const QVariantList rules{rule("valueRole", ascending), rule("groupRole", !ascending), rule("nameRole", ascending)};
        model->SortByRules(rules);
        QCOMPARE(ids(model.data()), idList("d c b a"));
        model->SortByRules(rules);
        QCOMPARE(ids(model.data()), idList("a b c d"));
    }
}

void TestSortByRules::usesQVariantOrderForStrings()
{
    // The rule comparison ignores case where the single-role sort does not.
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), {valueItem("1", "a"), valueItem("2", "B")});
    model->SortByRole(QStringLiteral("nameRole"), true);
    QCOMPARE(ids(model.data()), idList("2 1"));
    model->SortByRules({rule("nameRole", true)});
    QCOMPARE(ids(model.data()), idList("1 2"));
}

void TestSortByRules::storesRulesAndFlag()
{
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), items({"a", "b"}));
    const QVariantList rules{rule("nameRole", true), rule("idRole", false)};

    model->SortByRules(rules, 1);
    QCOMPARE(model->sortFlag(), 1);
    QCOMPARE(model->sortRules(), rules);

    // The flag defaults to None; the rules are stored all the same.
    model->SortByRules({rule("idRole", true)});
    QCOMPARE(model->sortFlag(), 0);
    QCOMPARE(model->sortRules(), QVariantList({rule("idRole", true)}));

    // Calling it with its own stored rules keeps them.
    model->SortByRules(model->sortRules(), 2);
    QCOMPARE(model->sortFlag(), 2);
    QCOMPARE(model->sortRules(), QVariantList({rule("idRole", true)}));
}

void TestSortByRules::keepSortingReSortsAfterInsertion()
{
    // Given
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), {valueItem("a", "a", 5), valueItem("b", "b", 1)});
    model->SortByRules({rule("valueRole", true)}, IXOLATreeModel::KeepSorting);
    QCOMPARE(ids(model.data()), idList("b a"));
    SignalLog log(model.data());
    // When
    model->AppendItem(valueItem("c", "c", 3));
    // Then
    QCOMPARE(ids(model.data()), idList("b c a"));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "dataChanged(0,2)", "rowCountChanged()"}));

    // A one-off sort ends it.
    model->SortByRules({rule("valueRole", false)});
    model->AppendItem(valueItem("d", "d", 4));
    QCOMPARE(ids(model.data()), idList("a c b d"));
}

void TestSortByRules::keepSortingFlipsTiesAtEachInsertion()
{
    ModelTesters::expect(ModelTesters::PrependAtOldEnd);
    QScopedPointer<XOLATreeModel> model(newModel());
    appendEach(model.data(), {valueItem("a", "a", QVariant(), "g"), valueItem("b", "b", QVariant(), "g")});
    model->SortByRules({rule("groupRole", true)}, 1);
    QCOMPARE(ids(model.data()), idList("b a"));
    model->AppendItem(valueItem("c", "c", QVariant(), "g"));
    QCOMPARE(ids(model.data()), idList("c a b"));
    model->PrependItem(valueItem("d", "d", QVariant(), "g"));
    QCOMPARE(ids(model.data()), idList("b a c d"));
    // A row with a smaller group goes first, the tied rows flip once more.
    model->AppendItem(valueItem("e", "e", QVariant(), "f"));
    QCOMPARE(ids(model.data()), idList("e d c a b"));
}

void TestSortByRules::unknownFlagKeepsSortingWithoutRecursion()
{
    Tree tree(0);
    tree.root->SortByRules({rule("nameRole", true)}, 7);
    QCOMPARE(tree.root->sortFlag(), 7);
    QCOMPARE(ids(tree.root.data()), idList("r2 r1"));
    QCOMPARE(ids(tree.c1), idList("c11 c12"));
    tree.root->AppendItem(valueItem("r0", "0"));
    QCOMPARE(ids(tree.root.data()), idList("r0 r2 r1"));
    QCOMPARE(ids(tree.c1), idList("c11 c12"));
    QCOMPARE(tree.c1->sortFlag(), 0);
}

void TestSortByRules::recursiveSortGoesThroughThreeLevels()
{
    // Given a three-level tree
    Tree tree(0);
    QStringList log;
    recordInto(&log, "root", tree.root.data());
    recordInto(&log, "c1", tree.c1);
    recordInto(&log, "c2", tree.c2);
    recordInto(&log, "g1", tree.g1);
    const QVariantList rules{rule("nameRole", true)};

    // When
    tree.root->SortByRules(rules, IXOLATreeModel::RecursiveKeepSorting);

    // Then every level is sorted, children before their parent
    QCOMPARE(ids(tree.root.data()), idList("r2 r1"));
    QCOMPARE(ids(tree.c1), idList("c12 c11"));
    QCOMPARE(ids(tree.g1), idList("g12 g11"));
    QCOMPARE(ids(tree.c2), idList("c22 c21"));
    QCOMPARE(log, QStringList({"g1:dataChanged(0,1)", "c1:dataChanged(0,1)", "c2:dataChanged(0,1)", "root:dataChanged(0,1)"}));
    // and keeps the same rules with RecursiveKeepSorting
    for (XOLATreeModel* model : {tree.c1, tree.c2, tree.g1}) {
        QCOMPARE(model->sortFlag(), int(IXOLATreeModel::RecursiveKeepSorting));
        QCOMPARE(model->sortRules(), rules);
    }
}

void TestSortByRules::recursiveKeepSortingAfterInsertion()
{
    Tree tree(0);
    tree.root->SortByRules({rule("nameRole", false)}, IXOLATreeModel::RecursiveKeepSorting);
    QCOMPARE(ids(tree.root.data()), idList("r1 r2"));
    QCOMPARE(ids(tree.g1), idList("g11 g12"));

    // A child keeps sorting on its own...
    tree.g1->AppendItem(valueItem("g13", "z"));
    QCOMPARE(ids(tree.g1), idList("g13 g11 g12"));

    // ...and an insertion into the root re-sorts the whole tree again.
    QStringList log;
    recordInto(&log, "root", tree.root.data());
    recordInto(&log, "c1", tree.c1);
    recordInto(&log, "c2", tree.c2);
    recordInto(&log, "g1", tree.g1);
    tree.root->AppendItem(valueItem("r3", "c"));
    QCOMPARE(ids(tree.root.data()), idList("r3 r1 r2"));
    QCOMPARE(log, QStringList({"g1:dataChanged(0,2)", "c1:dataChanged(0,1)", "c2:dataChanged(0,1)", "root:dataChanged(0,2)"}));
}

void TestSortByRules::keptRemovedItemsLeaveChildrenAlone()
{
    Tree tree(2);
    SignalLog childLog(tree.c1);
    tree.root->SortByRules({rule("nameRole", true)}, IXOLATreeModel::RecursiveKeepSorting);
    QCOMPARE(ids(tree.root.data()), idList("r2 r1"));
    QCOMPARE(ids(tree.c1), idList("c11 c12"));
    QCOMPARE(ids(tree.c2), idList("c21 c22"));
    QCOMPARE(tree.c1->sortFlag(), 0);
    QVERIFY(childLog.take().isEmpty());
}

void TestSortByRules::childThatKeepsRemovedItemsStopsTheRecursion()
{
    // The children keep removed items alive: they are sorted, but do not go on
    // into their own children.
    Tree tree(0, 2);
    tree.root->SortByRules({rule("nameRole", true)}, IXOLATreeModel::RecursiveKeepSorting);
    QCOMPARE(ids(tree.c1), idList("c12 c11"));
    QCOMPARE(tree.c1->sortFlag(), 2);
    QCOMPARE(ids(tree.g1), idList("g11 g12"));
    QCOMPARE(tree.g1->sortFlag(), 0);
}

void TestSortByRules::childThatIsNoModelIsSkipped()
{
    QScopedPointer<XOLATreeModel> model(newModel());
    auto* notAModel = new QObject; // disposed of by the model with its item
    appendEach(model.data(), {valueItem("b", "b", QVariant(), QVariant(), notAModel), valueItem("a", "a")});
    model->SortByRules({rule("nameRole", true)}, 2);
    QCOMPARE(ids(model.data()), idList("a b"));
}

void TestSortByRules::childLeadingBackToItsParentIsSortedOnce()
{
    // Given outer -> c -> inner -> loop -> outer again
    QScopedPointer<XOLATreeModel> inner(newModel());
    QScopedPointer<XOLATreeModel> outer(newModel());
    XOLATreeItem* loop = valueItem("loop", "z", QVariant(), QVariant(), outer.data());
    appendEach(inner.data(), {loop, valueItem("y", "y")});
    appendEach(outer.data(), {valueItem("c", "c", QVariant(), QVariant(), inner.data()), valueItem("d", "d")});
    SignalLog outerLog(outer.data());
    SignalLog innerLog(inner.data());
    // When
    outer->SortByRules({rule("nameRole", false)}, 2);
    // Then each model is sorted once and the loop is not followed
    QCOMPARE(ids(outer.data()), idList("d c"));
    QCOMPARE(ids(inner.data()), idList("loop y"));
    QCOMPARE(outerLog.take(), QStringList({"dataChanged(0,1)"}));
    QCOMPARE(innerLog.take(), QStringList({"dataChanged(0,1)"}));
    QCOMPARE(inner->sortFlag(), 2);
    // Break the loop before the models go.
    loop->SetChildModel(nullptr);
}

void TestSortByRules::flagOneDoesNotRecurse()
{
    Tree tree(0);
    SignalLog childLog(tree.c1);
    tree.root->SortByRules({rule("nameRole", true)}, IXOLATreeModel::KeepSorting);
    QCOMPARE(ids(tree.root.data()), idList("r2 r1"));
    QCOMPARE(ids(tree.c1), idList("c11 c12"));
    QVERIFY(childLog.take().isEmpty());
}

QTEST_GUILESS_MAIN(TestSortByRules)

#include "tst_sortbyrules.moc"
