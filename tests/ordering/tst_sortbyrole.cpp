// Sorting by one role: SortByRole, SortByRoleAndKeep and the keep-sorting state
// that insertions consult afterwards.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"

#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QScopedPointer>
#include <QtCore/QTime>
#include <QtCore/QtNumeric>
#include <QtTest/QtTest>

using namespace TestSupport;

namespace {

const int kValueRole = ValueItem::ValueRole;

// An item that also answers role 0, the role that unknown role names fall back to.
class RoleZeroItem : public XOLATreeItem
{
public:
    RoleZeroItem(const QString& id, const QVariant& roleZeroValue)
        : XOLATreeItem(id, id)
        , m_roleZeroValue(roleZeroValue)
    {
    }
    QVariant getData(int role) const override
    {
        return role == 0 ? m_roleZeroValue : XOLATreeItem::getData(role);
    }

private:
    QVariant m_roleZeroValue;
};

// A model whose rows are ValueItems "i0", "i1"... holding the given values.
XOLATreeModel* modelWithValues(const QVariantList& values, int flags = 0, PF_COPY_ITEM copy = nullptr)
{
    XOLATreeModel* model = createModel(flags, extendedRoleNames(), copy);
    appendEach(model, valueItems(values));
    return model;
}

QStringList idList(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

PF_LESS_THAN constantLess(bool answer)
{
    return [answer](const QVariant&, const QVariant&) { return answer; };
}

} // namespace

class TestSortByRole : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void ordersRows_data();
    void ordersRows();
    void nameFormResolvesRole();
    void unknownRoleNameSortsByRoleZero();
    void sortsFixedRoles();
    void emitsOneDataChangedOnly();
    void emptyModelEmitsNothingAndKeepsFlag();
    void callerLessThan_data();
    void callerLessThan();
    void callerLessThanSeesValuesOnly();

    void sortAndKeepStoresRule();
    void sortAndKeepOnEmptyModelSwitchesOn();
    void sortAndKeepOfRoleWithoutName();
    void sortAndKeepForgetsCallerLessThan();
    void sortByRoleEndsKeepSorting();
    void keepSortingAfterInsertion_data();
    void keepSortingAfterInsertion();
    void keepSortingDescendingAfterEachAppend();
};

void TestSortByRole::ordersRows_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("expected");

    const QVariant none;
    const QVariantList threeOneTwo{3, 1, 2};
    QTest::newRow("3 1 2 ascending") << threeOneTwo << true << idList("i1 i2 i0");
    QTest::newRow("3 1 2 descending") << threeOneTwo << false << idList("i0 i2 i1");

    // Equal values: reversed when ascending, kept when descending.
    const QVariantList allFive{5, 5, 5};
    QTest::newRow("equal ascending reverses") << allFive << true << idList("i2 i1 i0");
    QTest::newRow("equal descending keeps") << allFive << false << idList("i0 i1 i2");
    const QVariantList pairs{2, 1, 2, 1};
    QTest::newRow("ties ascending") << pairs << true << idList("i3 i1 i2 i0");
    QTest::newRow("ties descending") << pairs << false << idList("i0 i2 i1 i3");
    const QVariantList strings{"b", "a", "b", "a", "b"};
    QTest::newRow("string ties ascending") << strings << true << idList("i3 i1 i4 i2 i0");
    QTest::newRow("string ties descending") << strings << false << idList("i0 i2 i4 i1 i3");

    // Rows without a value go last, in their previous order, in both directions.
    const QVariantList withHole{2, none, 1};
    QTest::newRow("missing value ascending") << withHole << true << idList("i2 i0 i1");
    QTest::newRow("missing value descending") << withHole << false << idList("i0 i2 i1");
    const QVariantList holes{none, 3, none, 1};
    QTest::newRow("missing values ascending") << holes << true << idList("i3 i1 i0 i2");
    QTest::newRow("missing values descending") << holes << false << idList("i1 i3 i0 i2");
    QTest::newRow("all missing ascending") << QVariantList{none, none} << true << idList("i0 i1");
    QTest::newRow("all missing descending") << QVariantList{none, none} << false << idList("i0 i1");
    QTest::newRow("single row") << QVariantList{1} << true << idList("i0");

    // Typed orders.
    QTest::newRow("strings case-sensitive") << QVariantList{"b", "B", "a"} << true << idList("i1 i2 i0");
    QTest::newRow("bools ascending") << QVariantList{true, false, true} << true << idList("i1 i2 i0");
    QTest::newRow("bools descending") << QVariantList{true, false, true} << false << idList("i0 i2 i1");
    QTest::newRow("doubles") << QVariantList{2.5, -1.0, 2.25} << true << idList("i1 i2 i0");
    QTest::newRow("uints") << QVariantList{4000000000u, 1u, 70000u} << true << idList("i1 i2 i0");
    QTest::newRow("longlongs") << QVariantList{Q_INT64_C(1) << 40, -5LL, 0LL} << false << idList("i0 i2 i1");
    QTest::newRow("ulonglongs") << QVariantList{Q_UINT64_C(18446744073709551615), Q_UINT64_C(1)} << true << idList("i1 i0");
    QTest::newRow("chars") << QVariantList{QChar('z'), QChar('A'), QChar('a')} << true << idList("i1 i2 i0");
    QTest::newRow("bytearrays") << QVariantList{QByteArray("ab\0", 3), QByteArray("b"), QByteArray("ab")} << true
                                << idList("i2 i0 i1");
    QTest::newRow("dates") << QVariantList{QDate(2021, 1, 1), QDate(1999, 5, 5), QDate(2020, 2, 2)} << true
                           << idList("i1 i2 i0");
    QTest::newRow("times") << QVariantList{QTime(12, 0), QTime(8, 0), QTime(23, 59)} << false << idList("i2 i0 i1");
    QTest::newRow("datetimes")
        << QVariantList{QDateTime(QDate(2020, 1, 1), QTime(10, 0), Qt::UTC), QDateTime(QDate(2020, 1, 1), QTime(9, 0), Qt::UTC),
                        QDateTime(QDate(2020, 1, 1), QTime(10, 0), Qt::UTC)}
        << true << idList("i1 i2 i0");

    // Mixed types compare in the terms of the value already placed.
    QTest::newRow("int then strings ascending") << QVariantList{3, "10", "abc"} << true << idList("i2 i0 i1");
    QTest::newRow("int then strings descending") << QVariantList{3, "10", "abc"} << false << idList("i1 i0 i2");
    QTest::newRow("string then int ascending") << QVariantList{"3", 10} << true << idList("i1 i0");
    QTest::newRow("int then string ascending") << QVariantList{3, "10"} << true << idList("i0 i1");

    // Values without an order never compare less: each row goes in front.
    const QVariantList lists{QVariantList{1}, QVariantList{2}, QVariantList{0}};
    QTest::newRow("lists ascending") << lists << true << idList("i2 i1 i0");
    QTest::newRow("lists descending") << lists << false << idList("i2 i1 i0");
    const QVariantList maps{QVariantMap{{"a", 1}}, QVariantMap{{"b", 1}}};
    QTest::newRow("maps descending") << maps << false << idList("i1 i0");

    // NaN is neither less nor greater than anything.
    QTest::newRow("doubles with NaN") << QVariantList{1.0, qQNaN(), 0.5} << true << idList("i2 i1 i0");
}

void TestSortByRole::ordersRows()
{
    QFETCH(QVariantList, values);
    QFETCH(bool, ascending);
    QFETCH(QStringList, expected);

    // Given
    QScopedPointer<XOLATreeModel> model(modelWithValues(values));
    // When
    model->SortByRole(kValueRole, ascending);
    // Then
    QCOMPARE(ids(model.data()), expected);
    // A second sort starts from the new order: ties flip again when ascending.
    QScopedPointer<XOLATreeModel> again(modelWithValues(values));
    again->SortByRole(QStringLiteral("valueRole"), ascending);
    QCOMPARE(ids(again.data()), expected);
}

void TestSortByRole::nameFormResolvesRole()
{
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2}));
    SignalLog log(model.data());
    model->SortByRole(QStringLiteral("valueRole"), false);
    QCOMPARE(ids(model.data()), idList("i0 i2 i1"));
    QCOMPARE(log.take(), QStringList({"dataChanged(0,2)"}));
}

void TestSortByRole::unknownRoleNameSortsByRoleZero()
{
    // Given rows that answer role 0 with 2, 3, 1
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    appendEach(model.data(), {new RoleZeroItem("a", 2), new RoleZeroItem("b", 3), new RoleZeroItem("c", 1)});
    // When sorting by a name that no role has
    model->SortByRole(QStringLiteral("noSuchRole"), true);
    // Then role 0 decides
    QCOMPARE(ids(model.data()), idList("c a b"));
    model->SortByRole(QStringLiteral("noSuchRole"), false);
    QCOMPARE(ids(model.data()), idList("b a c"));

    // Plain items have no value for role 0: nothing moves.
    QScopedPointer<XOLATreeModel> plain(createModel());
    appendEach(plain.data(), items({"x", "y", "z"}));
    plain->SortByRole(QStringLiteral("NameRole"), true);
    QCOMPARE(ids(plain.data()), idList("x y z"));
}

void TestSortByRole::sortsFixedRoles()
{
    QScopedPointer<XOLATreeModel> model(createModel());
    appendEach(model.data(),
               {new XOLATreeItem("2", "beta"), new XOLATreeItem("3", "alpha"), new XOLATreeItem("1", "gamma")});
    model->SortByRole(QStringLiteral("nameRole"), true);
    QCOMPARE(ids(model.data()), idList("3 2 1"));
    model->SortByRole(int(XOLATreeItem::IdRole), true);
    QCOMPARE(ids(model.data()), idList("1 2 3"));
    // The whole value map has no order: every row goes in front.
    model->SortByRole(int(XOLATreeItem::JsonValueRole), true);
    QCOMPARE(ids(model.data()), idList("3 2 1"));
}

void TestSortByRole::emitsOneDataChangedOnly()
{
    // Given
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, QVariant()}));
    SignalLog log(model.data());
    // When
    model->SortByRole(kValueRole, true);
    // Then: the whole range, no layout, reset or move notices
    QCOMPARE(log.take(), QStringList({"dataChanged(0,3)"}));
    // Also when nothing moves
    model->SortByRole(kValueRole, true, constantLess(true));
    QCOMPARE(log.take(), QStringList({"dataChanged(0,3)"}));
}

void TestSortByRole::emptyModelEmitsNothingAndKeepsFlag()
{
    // Switching keep-sorting on sorts the empty model, over an empty range.
    ModelTesters::expect(ModelTesters::EmptySortDataChanged);
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    model->SortByRules({QVariantMap{{"RoleName", "nameRole"}, {"Ascending", true}}}, 1);
    SignalLog log(model.data());
    model->SortByRole(kValueRole, true);
    model->SortByRole(QStringLiteral("valueRole"), false);
    QVERIFY(log.take().isEmpty());
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::KeepSorting));
}

void TestSortByRole::callerLessThan_data()
{
    QTest::addColumn<bool>("answer");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("expected");
    // Always true: each row goes after the others. Negated when descending.
    QTest::newRow("always true ascending keeps") << true << true << idList("i0 i1 i2 i3");
    QTest::newRow("always true descending reverses") << true << false << idList("i3 i2 i1 i0");
    QTest::newRow("always false ascending reverses") << false << true << idList("i3 i2 i1 i0");
    QTest::newRow("always false descending keeps") << false << false << idList("i0 i1 i2 i3");
}

void TestSortByRole::callerLessThan()
{
    QFETCH(bool, answer);
    QFETCH(bool, ascending);
    QFETCH(QStringList, expected);

    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 4, 1}));
    model->SortByRole(kValueRole, ascending, constantLess(answer));
    QCOMPARE(ids(model.data()), expected);
}

void TestSortByRole::callerLessThanSeesValuesOnly()
{
    // Given values ordered by a caller's rule (absolute value)
    QScopedPointer<XOLATreeModel> model(modelWithValues({-3, 1, QVariant(), -2, 4}));
    int calls = 0;
    const PF_LESS_THAN byMagnitude = [&calls](const QVariant& a, const QVariant& b) {
        ++calls;
        return qAbs(a.toInt()) < qAbs(b.toInt());
    };
    // When
    model->SortByRole(QStringLiteral("valueRole"), true, byMagnitude);
    // Then rows without a value are never handed to the function
    QCOMPARE(ids(model.data()), idList("i1 i3 i0 i4 i2"));
    QVERIFY(calls > 0);
    model->SortByRole(kValueRole, false, byMagnitude);
    QCOMPARE(ids(model.data()), idList("i4 i0 i3 i1 i2"));
}

void TestSortByRole::sortAndKeepStoresRule()
{
    // Given
    QScopedPointer<XOLATreeModel> model(createModel());
    appendEach(model.data(), {new XOLATreeItem("1", "b"), new XOLATreeItem("2", "c"), new XOLATreeItem("3", "a")});
    SignalLog log(model.data());
    // When
    model->SortByRoleAndKeep(QStringLiteral("nameRole"), false);
    // Then
    QCOMPARE(ids(model.data()), idList("2 1 3"));
    QCOMPARE(log.take(), QStringList({"dataChanged(0,2)"}));
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::KeepSorting));
    const QVariantList rules = model->sortRules();
    QCOMPARE(rules.size(), 1);
    const QVariantMap rule = rules.first().toMap();
    QCOMPARE(rule.keys(), QStringList({"Ascending", "RoleName"}));
    QCOMPARE(rule.value("RoleName").userType(), int(QMetaType::QByteArray));
    QCOMPARE(rule.value("RoleName").toByteArray(), QByteArray("nameRole"));
    QCOMPARE(rule.value("Ascending"), QVariant(false));

    // A second call replaces the rule.
    model->SortByRoleAndKeep(int(XOLATreeItem::IdRole), true);
    QCOMPARE(model->sortRules(),
             QVariantList({QVariantMap{{"RoleName", QByteArray("idRole")}, {"Ascending", true}}}));
    QCOMPARE(ids(model.data()), idList("1 2 3"));
}

void TestSortByRole::sortAndKeepOnEmptyModelSwitchesOn()
{
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    SignalLog log(model.data());
    model->SortByRoleAndKeep(QStringLiteral("valueRole"), true);
    QVERIFY(log.take().isEmpty());
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::KeepSorting));
    QCOMPARE(model->sortRules(),
             QVariantList({QVariantMap{{"RoleName", QByteArray("valueRole")}, {"Ascending", true}}}));

    // The first insertions are then kept in order.
    model->AppendItem(new ValueItem("a", "a", 2));
    model->AppendItem(new ValueItem("b", "b", 1));
    QCOMPARE(ids(model.data()), idList("b a"));
}

void TestSortByRole::sortAndKeepOfRoleWithoutName()
{
    QScopedPointer<XOLATreeModel> model(createModel());
    appendEach(model.data(), items({"a", "b"}));
    model->SortByRoleAndKeep(int(XOLATreeItem::JsonValueRole), true);
    const QVariantMap rule = model->sortRules().value(0).toMap();
    QCOMPARE(rule.value("RoleName").userType(), int(QMetaType::QByteArray));
    QVERIFY(rule.value("RoleName").toByteArray().isEmpty());
    QCOMPARE(model->sortFlag(), 1);
}

void TestSortByRole::sortAndKeepForgetsCallerLessThan()
{
    // Given rows sorted and kept by a caller's reversed order
    QScopedPointer<XOLATreeModel> model(modelWithValues({1, 3, 2}));
    const PF_LESS_THAN reversed = [](const QVariant& a, const QVariant& b) { return a.toInt() > b.toInt(); };
    model->SortByRoleAndKeep(kValueRole, true, reversed);
    QCOMPARE(values(model.data(), kValueRole), QStringList({"3", "2", "1"}));
    // When a row is added
    model->AppendItem(new ValueItem("x", "x", 0));
    // Then the re-sort follows the stored rule alone: ascending values
    QCOMPARE(values(model.data(), kValueRole), QStringList({"0", "1", "2", "3"}));
}

void TestSortByRole::sortByRoleEndsKeepSorting()
{
    QScopedPointer<XOLATreeModel> model(modelWithValues({2, 1}));
    model->SortByRoleAndKeep(QStringLiteral("valueRole"), true);
    const QVariantList rules = model->sortRules();
    model->SortByRole(kValueRole, false);
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::None));
    QCOMPARE(model->sortRules(), rules);
    // Insertions no longer re-sort.
    SignalLog log(model.data());
    model->AppendItem(new ValueItem("x", "x", 9));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "rowCountChanged()"}));
    QCOMPARE(ids(model.data()), idList("i0 i1 x"));
}

void TestSortByRole::keepSortingAfterInsertion_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QStringList>("expectedIds");
    QTest::addColumn<QStringList>("expectedLog");
    QTest::addColumn<ModelTesters::Departures>("departures");

    // Rows i0 = 10, i1 = 30 kept in ascending value order.
    QTest::newRow("AppendItem") << "append" << 0 << idList("i0 x i1")
                                << QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "dataChanged(0,2)", "rowCountChanged()"})
        << ModelTesters::Departures();
    QTest::newRow("InsertItem") << "insert" << 0 << idList("i0 x i1")
                                << QStringList({"rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)", "dataChanged(0,2)", "rowCountChanged()"})
        << ModelTesters::Departures();
    // A prepend is announced at the old end.
    QTest::newRow("PrependItem") << "prepend" << 0 << idList("i0 x i1")
                                 << QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "dataChanged(0,2)", "rowCountChanged()"})
        << ModelTesters::Departures{ModelTesters::PrependAtOldEnd};
    QTest::newRow("AppendItemsList") << "appendList" << 0 << idList("x i0 y i1")
                                     << QStringList({"rowsAboutToBeInserted(2,3)", "rowsInserted(2,3)", "dataChanged(0,3)", "rowCountChanged()"})
        << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
    QTest::newRow("PrependItemsList") << "prependList" << 0 << idList("x i0 y i1")
                                      << QStringList({"rowsAboutToBeInserted(0,1)", "rowsInserted(0,1)", "dataChanged(0,3)", "rowCountChanged()"})
        << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
    // With duplicates merged, i0 takes the value 40 and moves behind i1.
    QTest::newRow("AppendItem duplicate") << "appendDuplicate" << 4 << idList("i1 i0")
                                          << QStringList({"dataChanged(0,0)", "dataChanged(0,0)", "dataChanged(0,1)", "rowCountChanged()"})
        << ModelTesters::Departures();
    QTest::newRow("PrependItem duplicate") << "prependDuplicate" << 4 << idList("i1 i0")
                                           << QStringList({"dataChanged(0,0)", "dataChanged(0,0)", "dataChanged(0,1)"})
        << ModelTesters::Departures();
    // A bulk load announces no change for the rows it merges into: only the re-sort.
    QTest::newRow("AppendItemsList duplicate") << "appendListDuplicate" << 4 << idList("i1 i0")
                                               << QStringList({"dataChanged(0,1)"}) << ModelTesters::Departures();
}

void TestSortByRole::keepSortingAfterInsertion()
{
    QFETCH(QString, operation);
    QFETCH(int, flags);
    QFETCH(QStringList, expectedIds);
    QFETCH(QStringList, expectedLog);
    QFETCH(ModelTesters::Departures, departures);
    ModelTesters::expect(departures);

    // Given rows i0 = 10 and i1 = 30 kept sorted by value
    const PF_COPY_ITEM copyValue = [](const QObject* source, QObject* destination) {
        static_cast<ValueItem*>(destination)->setExtra(kValueRole, static_cast<const ValueItem*>(source)->getData(kValueRole));
    };
    QScopedPointer<XOLATreeModel> model(modelWithValues({10, 30}, flags, copyValue));
    model->SortByRoleAndKeep(QStringLiteral("valueRole"), true);
    QCOMPARE(ids(model.data()), idList("i0 i1"));
    SignalLog log(model.data());

    // When
    if (operation == QLatin1String("append")) {
        QVERIFY(model->AppendItem(new ValueItem("x", "x", 20)));
    } else if (operation == QLatin1String("insert")) {
        QVERIFY(model->InsertItem(0, new ValueItem("x", "x", 20)));
    } else if (operation == QLatin1String("prepend")) {
        QVERIFY(model->PrependItem(new ValueItem("x", "x", 20)));
    } else if (operation == QLatin1String("appendList")) {
        QVERIFY(model->AppendItemsList({new ValueItem("x", "x", 5), new ValueItem("y", "y", 20)}));
    } else if (operation == QLatin1String("prependList")) {
        QVERIFY(model->PrependItemsList({new ValueItem("x", "x", 5), new ValueItem("y", "y", 20)}));
    } else if (operation == QLatin1String("appendDuplicate")) {
        QVERIFY(model->AppendItem(new ValueItem("i0", "dup", 40)));
    } else if (operation == QLatin1String("prependDuplicate")) {
        QVERIFY(model->PrependItem(new ValueItem("i0", "dup", 40)));
    } else if (operation == QLatin1String("appendListDuplicate")) {
        QVERIFY(model->AppendItemsList({new ValueItem("i0", "dup", 40)}));
    } else {
        QFAIL("unknown operation");
    }

    // Then the re-sort comes before the new count
    QCOMPARE(log.take(), expectedLog);
    QCOMPARE(ids(model.data()), expectedIds);
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::KeepSorting));
}

void TestSortByRole::keepSortingDescendingAfterEachAppend()
{
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    model->SortByRoleAndKeep(kValueRole, false);
    SignalLog log(model.data());
    const QVariantList incoming{2, 7, 1, 7, 5};
    QStringList expectedLog;
    for (int i = 0; i < incoming.size(); ++i) {
        model->AppendItem(new ValueItem(QStringLiteral("n%1").arg(i), QString(), incoming.at(i)));
        expectedLog << QStringLiteral("rowsAboutToBeInserted(%1,%1)").arg(i) << QStringLiteral("rowsInserted(%1,%1)").arg(i)
                    << QStringLiteral("dataChanged(0,%1)").arg(i) << QStringLiteral("rowCountChanged()");
    }
    QCOMPARE(log.take(), expectedLog);
    QCOMPARE(values(model.data(), kValueRole), QStringList({"7", "7", "5", "2", "1"}));
}

QTEST_GUILESS_MAIN(TestSortByRole)

#include "tst_sortbyrole.moc"
