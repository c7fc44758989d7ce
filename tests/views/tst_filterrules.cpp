// Rule evaluation of the filter view: the two rule formats one by one, and
// MatchRule over whole rule lists with its descent into child models.

#include "FilterModelImp.h"
#include "FilterRules.h"
#include "ModelTesters.h"
#include "MyVariant.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QScopedPointer>
#include <QtCore/QStringListModel>
#include <QtTest/QtTest>

#include <limits>

namespace {

using Rules = QVariantList;

//! A ValueItem that counts how often a rule reads it by name, so that tests can
//! see which rules were evaluated.
class CountingItem : public ValueItem
{
public:
    using ValueItem::ValueItem;
    QVariant getData(const QString& roleName) const override
    {
        ++reads;
        return ValueItem::getData(roleName);
    }
    using ValueItem::getData;
    mutable int reads = 0;
};

QVariantMap rule(const QString& roleName, const QVariant& op, const QVariant& value)
{
    return {{"RoleName", roleName}, {"Rule", op}, {"Value", value}};
}

QVariantMap subRule(const QVariant& op, const QVariant& value)
{
    return {{"Rule", op}, {"Value", value}};
}

QVariantMap ruleTwo(const QString& roleName, const QVariantList& subRules)
{
    return {{"RoleName", roleName}, {"Rules", subRules}};
}

QVariantMap ruleTwo(const QString& roleName, const QVariantList& subRules, bool orAllRules)
{
    QVariantMap map = ruleTwo(roleName, subRules);
    map.insert("OrAllRules", orAllRules);
    return map;
}

const QString kSeparator = QString::fromLatin1(kStringListSeparator);

enum Relation { Smaller, Same, Greater };

// Expected outcome of the six ordering operators (Eq, Ne, Ge, Gt, Le, Lt) when
// the item's value is smaller than, the same as, or greater than the rule's.
const bool kOrderingTruth[6][3] = {
    /* Eq */ {false, true, false},
    /* Ne */ {true, false, true},
    /* Ge */ {false, true, true},
    /* Gt */ {false, false, true},
    /* Le */ {true, true, false},
    /* Lt */ {true, false, false},
};

const char* const kOperatorNames[8] = {"Eq", "Ne", "Ge", "Gt", "Le", "Lt", "SubStr", "InsensitiveSubStr"};

} // namespace

class TestFilterRules : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void operators_formatOne_data();
    void operators_formatOne();
    void substring_data();
    void substring();
    void unknownOperators_data();
    void unknownOperators();
    void formatOne_ignoresRulesKey();
    void formatTwo_data();
    void formatTwo();
    void formatTwo_shortCircuit_data();
    void formatTwo_shortCircuit();
    void formatTwo_readsValueOncePerSubRule();
    void matchRule_lists_data();
    void matchRule_lists();
    void matchRule_topLevelShortCircuit();
    void matchRule_descendsIntoChildModels();
    void matchRule_grandchildKeepsParent();
    void matchRule_unknownOperatorFailsDescendantsToo();
    void matchRule_descentUsesViewRules();
    void matchRule_descentUsesPredicateWhenGiven();
    void matchRule_treeLeadingBackStops();
    void isMatchRule_predicateOrRules();
};

// ---- format one, ordering operators ------------------------------------------------

void TestFilterRules::operators_formatOne_data()
{
    QTest::addColumn<QVariant>("itemValue");
    QTest::addColumn<QVariant>("op");
    QTest::addColumn<QVariant>("ruleValue");
    QTest::addColumn<bool>("passes");

    struct Pair {
        const char* type;
        QVariant low;
        QVariant high;
    };
    const QList<Pair> pairs = {
        {"int", QVariant(3), QVariant(5)},
        {"double", QVariant(1.5), QVariant(2.25)},
        {"string", QVariant(QStringLiteral("apple")), QVariant(QStringLiteral("banana"))},
        {"bool", QVariant(false), QVariant(true)},
        {"date", QVariant(QDate(2020, 1, 1)), QVariant(QDate(2021, 6, 30))},
        {"datetime", QVariant(QDateTime(QDate(2020, 1, 1), QTime(8, 0))), QVariant(QDateTime(QDate(2020, 1, 1), QTime(9, 30)))},
    };
    for (const Pair& pair : pairs) {
        for (int op = IXOLATreeModel::Eq; op <= IXOLATreeModel::Lt; ++op) {
            QTest::addRow("%s smaller %s", pair.type, kOperatorNames[op])
                << pair.low << QVariant(op) << pair.high << kOrderingTruth[op][Smaller];
            QTest::addRow("%s same %s", pair.type, kOperatorNames[op])
                << pair.low << QVariant(op) << pair.low << kOrderingTruth[op][Same];
            QTest::addRow("%s greater %s", pair.type, kOperatorNames[op])
                << pair.high << QVariant(op) << pair.low << kOrderingTruth[op][Greater];
        }
    }

    // The rule's value is taken in the item value's terms.
    QTest::newRow("int item, text rule 10 is numeric: 3 < 10") << QVariant(3) << QVariant(int(IXOLATreeModel::Lt)) << QVariant("10") << true;
    QTest::newRow("text item, int rule: \"3\" > \"10\" as text") << QVariant("3") << QVariant(int(IXOLATreeModel::Gt)) << QVariant(10) << true;
    QTest::newRow("int item equals text rule 7") << QVariant(7) << QVariant(int(IXOLATreeModel::Eq)) << QVariant("7") << true;
    // Text order is by code unit: case matters and no locale is used.
    QTest::newRow("text Eq is case-sensitive") << QVariant("Apple") << QVariant(int(IXOLATreeModel::Eq)) << QVariant("apple") << false;
    QTest::newRow("upper case orders before lower case") << QVariant("Zed") << QVariant(int(IXOLATreeModel::Lt)) << QVariant("apple") << true;
    // Values that do not order count as equal.
    QTest::newRow("list values Eq") << QVariant(QVariantList{1, 2}) << QVariant(int(IXOLATreeModel::Eq)) << QVariant(QVariantList{3}) << true;
    QTest::newRow("list values Ne") << QVariant(QVariantList{1, 2}) << QVariant(int(IXOLATreeModel::Ne)) << QVariant(QVariantList{3}) << false;
    QTest::newRow("list values Ge") << QVariant(QVariantList{1}) << QVariant(int(IXOLATreeModel::Ge)) << QVariant(5) << true;
    QTest::newRow("list values Lt") << QVariant(QVariantList{1}) << QVariant(int(IXOLATreeModel::Lt)) << QVariant(5) << false;
    QTest::newRow("missing value Eq anything") << QVariant() << QVariant(int(IXOLATreeModel::Eq)) << QVariant(42) << true;
    QTest::newRow("missing value Gt anything") << QVariant() << QVariant(int(IXOLATreeModel::Gt)) << QVariant(42) << false;
    QTest::newRow("missing value Le anything") << QVariant() << QVariant(int(IXOLATreeModel::Le)) << QVariant(42) << true;
    // A rule without a value compares against the converted default.
    QTest::newRow("int item vs missing rule value is vs 0") << QVariant(1) << QVariant(int(IXOLATreeModel::Gt)) << QVariant() << true;
    // The operator is read as a number: a text that is not one is Eq.
    QTest::newRow("non-numeric operator is Eq, equal") << QVariant(4) << QVariant("x") << QVariant(4) << true;
    QTest::newRow("non-numeric operator is Eq, different") << QVariant(4) << QVariant("x") << QVariant(5) << false;
    QTest::newRow("operator given as text number") << QVariant(4) << QVariant("3") << QVariant(1) << true;
}

void TestFilterRules::operators_formatOne()
{
    QFETCH(QVariant, itemValue);
    QFETCH(QVariant, op);
    QFETCH(QVariant, ruleValue);
    QFETCH(bool, passes);

    // Given an item whose valueRole holds the value
    ValueItem item("i", "n", itemValue);
    // When a single comparison is checked, then
    QCOMPARE(DoCheckWithVersionOne(&item, rule("valueRole", op, ruleValue)), passes);
    // The same comparison as the only sub-rule of the second format
    QCOMPARE(DoCheckWithVersionTwo(&item, ruleTwo("valueRole", {subRule(op, ruleValue)}, true)), passes);
}

// ---- substring operators -------------------------------------------------------------

void TestFilterRules::substring_data()
{
    QTest::addColumn<QVariant>("itemValue");
    QTest::addColumn<int>("op");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<bool>("passes");

    const int sub = IXOLATreeModel::SubStr;
    const int isub = IXOLATreeModel::InsensitiveSubStr;
    QTest::newRow("insensitive AB in xaby") << QVariant("xaby") << isub << "AB" << true;
    QTest::newRow("sensitive AB not in xaby") << QVariant("xaby") << sub << "AB" << false;
    QTest::newRow("sensitive ab in xaby") << QVariant("xaby") << sub << "ab" << true;
    QTest::newRow("insensitive lower needle, upper text") << QVariant("XABY") << isub << "ab" << true;
    QTest::newRow("whole text") << QVariant("abc") << sub << "abc" << true;
    QTest::newRow("needle longer than text") << QVariant("ab") << sub << "abc" << false;
    QTest::newRow("empty needle, sensitive") << QVariant("anything") << sub << "" << true;
    QTest::newRow("empty needle, insensitive") << QVariant("anything") << isub << "" << true;
    QTest::newRow("empty needle, missing value") << QVariant() << sub << "" << true;
    QTest::newRow("missing value, needle") << QVariant() << sub << "a" << false;
    QTest::newRow("number as text") << QVariant(12345) << sub << "234" << true;
    QTest::newRow("double as text") << QVariant(2.5) << sub << "2.5" << true;
    QTest::newRow("bool as text") << QVariant(true) << isub << "TRU" << true;
    QTest::newRow("date as text") << QVariant(QDate(2021, 6, 30)) << sub << "2021-06" << true;

    // String lists: every entry is searched, but never across two entries.
    const QVariant list = QVariant(QStringList{"alpha", "beta"});
    QTest::newRow("list, first entry") << list << sub << "pha" << true;
    QTest::newRow("list, second entry") << list << sub << "eta" << true;
    QTest::newRow("list, insensitive entry") << list << isub << "BET" << true;
    QTest::newRow("list, across entries") << QVariant(QStringList{"xa", "by"}) << sub << "ab" << false;
    QTest::newRow("list, across entries, one char each side") << QVariant(QStringList{"xa", "by"}) << sub << "a" << true;
    QTest::newRow("list, end of one entry and start of next") << list << sub << "ab" << false;
    QTest::newRow("single-entry list") << QVariant(QStringList{"xab"}) << sub << "ab" << true;
    QTest::newRow("empty list, needle") << QVariant(QStringList{}) << sub << "a" << false;
    QTest::newRow("empty list, empty needle") << QVariant(QStringList{}) << sub << "" << true;
    // The separator's own text takes part in the search: insensitively it holds
    // "abc6", so "AB" matches any list of two or more entries.
    QTest::newRow("list, insensitive AB meets the separator") << QVariant(QStringList{"xx", "yy"}) << isub << "AB" << true;
    QTest::newRow("single entry, insensitive AB") << QVariant(QStringList{"xx"}) << isub << "AB" << false;
    QTest::newRow("list, separator text itself") << list << sub << kSeparator << true;
}

void TestFilterRules::substring()
{
    QFETCH(QVariant, itemValue);
    QFETCH(int, op);
    QFETCH(QString, needle);
    QFETCH(bool, passes);

    ValueItem item("i", "n", itemValue);
    QCOMPARE(DoCheckWithVersionOne(&item, rule("valueRole", op, needle)), passes);
    // The same comparison as the only sub-rule of the second format.
    QCOMPARE(DoCheckWithVersionTwo(&item, ruleTwo("valueRole", {subRule(op, needle)})), passes);
}

// ---- unknown operators -----------------------------------------------------------------

void TestFilterRules::unknownOperators_data()
{
    QTest::addColumn<int>("op");
    QTest::newRow("8") << 8;
    QTest::newRow("-1") << -1;
    QTest::newRow("100") << 100;
    QTest::newRow("INT_MIN") << std::numeric_limits<int>::min();
}

void TestFilterRules::unknownOperators()
{
    QFETCH(int, op);
    ValueItem item("i", "n", 1);
    // Even an empty needle or an equal value does not make them pass.
    QCOMPARE(DoCheckWithVersionOne(&item, rule("valueRole", op, 1)), false);
    QCOMPARE(DoCheckWithVersionOne(&item, rule("valueRole", op, "")), false);
    QCOMPARE(DoCheckWithVersionOne(&item, rule("nameRole", op, QVariant())), false);
    QCOMPARE(DoCheckWithVersionTwo(&item, ruleTwo("valueRole", {subRule(op, 1)}, true)), false);
    // In an "or" list another sub-rule can still pass.
    QCOMPARE(DoCheckWithVersionTwo(&item, ruleTwo("valueRole", {subRule(op, 1), subRule(IXOLATreeModel::Eq, 1)}, true)), true);
    // In an "and" list it fails the rule.
    QCOMPARE(DoCheckWithVersionTwo(&item, ruleTwo("valueRole", {subRule(IXOLATreeModel::Eq, 1), subRule(op, 1)}, false)), false);
}

void TestFilterRules::formatOne_ignoresRulesKey()
{
    // Given a map holding both "Rule" and "Rules"
    ValueItem item("i", "n", 5);
    QVariantMap map = rule("valueRole", IXOLATreeModel::Eq, 5);
    map.insert("Rules", QVariantList{subRule(IXOLATreeModel::Eq, 99)});
    // Then it is a single comparison and "Rules" plays no part
    QCOMPARE(DoCheckWithVersionOne(&item, map), true);
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(static_cast<FilterModelImp*>(source->GetFilterModel())));
    QCOMPARE(view->MatchRule(&item, {map}, true), true);
    map["Value"] = 6;
    QCOMPARE(view->MatchRule(&item, {map}, true), false);
}

// ---- format two ---------------------------------------------------------------------------

void TestFilterRules::formatTwo_data()
{
    QTest::addColumn<QVariant>("itemValue");
    QTest::addColumn<QVariantMap>("map");
    QTest::addColumn<bool>("passes");

    const int gt = IXOLATreeModel::Gt;
    const int lt = IXOLATreeModel::Lt;
    const QVariantList between = {subRule(gt, 1), subRule(lt, 10)};
    const QVariantList outside = {subRule(lt, 3), subRule(gt, 10)};

    QTest::newRow("and, inside") << QVariant(5) << ruleTwo("valueRole", between, false) << true;
    QTest::newRow("and, above") << QVariant(15) << ruleTwo("valueRole", between, false) << false;
    QTest::newRow("and, below") << QVariant(0) << ruleTwo("valueRole", between, false) << false;
    QTest::newRow("missing OrAllRules means and") << QVariant(15) << ruleTwo("valueRole", between) << false;
    QTest::newRow("missing OrAllRules, all pass") << QVariant(5) << ruleTwo("valueRole", between) << true;
    QTest::newRow("or, first passes") << QVariant(1) << ruleTwo("valueRole", outside, true) << true;
    QTest::newRow("or, second passes") << QVariant(15) << ruleTwo("valueRole", outside, true) << true;
    QTest::newRow("or, none passes") << QVariant(5) << ruleTwo("valueRole", outside, true) << false;
    QTest::newRow("empty sub-rules fail") << QVariant(5) << ruleTwo("valueRole", {}, true) << false;
    QTest::newRow("empty sub-rules fail with and") << QVariant(5) << ruleTwo("valueRole", {}, false) << false;
    QTest::newRow("empty map fails") << QVariant(5) << QVariantMap() << false;
    QTest::newRow("text sub-rules, insensitive or") << QVariant("Hello")
        << ruleTwo("valueRole", {subRule(IXOLATreeModel::SubStr, "xyz"), subRule(IXOLATreeModel::InsensitiveSubStr, "HELL")}, true) << true;
    QTest::newRow("sub-rule not a map reads as Eq against nothing") << QVariant(5)
        << ruleTwo("valueRole", {QVariant(3)}, true) << false;
    QTest::newRow("role read by name: nameRole") << QVariant()
        << ruleTwo("nameRole", {subRule(IXOLATreeModel::Eq, "n")}, true) << true;
}

void TestFilterRules::formatTwo()
{
    QFETCH(QVariant, itemValue);
    QFETCH(QVariantMap, map);
    QFETCH(bool, passes);
    ValueItem item("i", "n", itemValue);
    QCOMPARE(DoCheckWithVersionTwo(&item, map), passes);
}

void TestFilterRules::formatTwo_shortCircuit_data()
{
    QTest::addColumn<bool>("orAllRules");
    QTest::addColumn<QVariantList>("subRules");
    QTest::addColumn<bool>("passes");
    QTest::addColumn<int>("reads");

    const QVariantMap pass = subRule(IXOLATreeModel::Eq, 5);
    const QVariantMap fail = subRule(IXOLATreeModel::Eq, 6);
    QTest::newRow("or stops at the first pass") << true << QVariantList{pass, fail, fail} << true << 1;
    QTest::newRow("or goes on past failures") << true << QVariantList{fail, fail, pass} << true << 3;
    QTest::newRow("or, all fail") << true << QVariantList{fail, fail} << false << 2;
    QTest::newRow("and stops at the first failure") << false << QVariantList{fail, pass, pass} << false << 1;
    QTest::newRow("and goes on past passes") << false << QVariantList{pass, pass, fail} << false << 3;
    QTest::newRow("and, all pass") << false << QVariantList{pass, pass} << true << 2;
}

void TestFilterRules::formatTwo_shortCircuit()
{
    QFETCH(bool, orAllRules);
    QFETCH(QVariantList, subRules);
    QFETCH(bool, passes);
    QFETCH(int, reads);

    CountingItem item("i", "n", 5);
    QCOMPARE(DoCheckWithVersionTwo(&item, ruleTwo("valueRole", subRules, orAllRules)), passes);
    QCOMPARE(item.reads, reads);
}

void TestFilterRules::formatTwo_readsValueOncePerSubRule()
{
    // The value is fetched afresh for every sub-rule evaluated, once each.
    CountingItem item("i", "n", 5);
    const QVariantMap pass = subRule(IXOLATreeModel::Ge, 0);
    DoCheckWithVersionTwo(&item, ruleTwo("valueRole", {pass, pass, pass, pass}, false));
    QCOMPARE(item.reads, 4);
    item.reads = 0;
    DoCheckWithVersionOne(&item, rule("valueRole", IXOLATreeModel::Eq, 5));
    QCOMPARE(item.reads, 1);
}

// ---- MatchRule -------------------------------------------------------------------------------

void TestFilterRules::matchRule_lists_data()
{
    QTest::addColumn<QVariantList>("rules");
    QTest::addColumn<bool>("orAllRules");
    QTest::addColumn<bool>("passes");

    const QVariantMap pass1 = rule("valueRole", IXOLATreeModel::Eq, 5);
    const QVariantMap fail1 = rule("valueRole", IXOLATreeModel::Gt, 5);
    const QVariantMap pass2 = ruleTwo("valueRole", {subRule(IXOLATreeModel::Ge, 5), subRule(IXOLATreeModel::Le, 5)}, false);
    const QVariantMap fail2 = ruleTwo("nameRole", {subRule(IXOLATreeModel::SubStr, "zz")}, true);

    QTest::newRow("empty list passes (or)") << QVariantList() << true << true;
    QTest::newRow("empty list passes (and)") << QVariantList() << false << true;
    QTest::newRow("empty-needle rule passes") << QVariantList{rule("nameRole", IXOLATreeModel::SubStr, "")} << true << true;
    QTest::newRow("single format-two rule with no sub-rules fails") << QVariantList{ruleTwo("valueRole", {})} << true << false;
    QTest::newRow("or: fail, pass") << QVariantList{fail1, pass1} << true << true;
    QTest::newRow("and: fail, pass") << QVariantList{fail1, pass1} << false << false;
    QTest::newRow("and: pass, pass") << QVariantList{pass1, pass2} << false << true;
    QTest::newRow("mixed formats, or, second passes") << QVariantList{fail2, pass1} << true << true;
    QTest::newRow("mixed formats, or, one-two pass") << QVariantList{fail1, pass2} << true << true;
    QTest::newRow("mixed formats, and, all pass") << QVariantList{pass2, pass1} << false << true;
    QTest::newRow("mixed formats, and, format two fails") << QVariantList{pass1, fail2} << false << false;
    QTest::newRow("or: none passes") << QVariantList{fail1, fail2} << true << false;
    QTest::newRow("unknown operator fails") << QVariantList{rule("nameRole", 8, 1)} << true << false;
    QTest::newRow("non-map entry is an empty format-two rule") << QVariantList{QVariant(3)} << true << false;
}

void TestFilterRules::matchRule_lists()
{
    QFETCH(QVariantList, rules);
    QFETCH(bool, orAllRules);
    QFETCH(bool, passes);

    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    QScopedPointer<FilterModelImp> view(
        ModelTesters::watch(static_cast<FilterModelImp*>(source->GetFilterModel(rules, orAllRules))));
    ValueItem item("i", "n", 5);
    QCOMPARE(view->MatchRule(&item, rules, orAllRules), passes);
    QCOMPARE(view->IsMatchRule(&item), passes);
}

void TestFilterRules::matchRule_topLevelShortCircuit()
{
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(static_cast<FilterModelImp*>(source->GetFilterModel())));
    const QVariantList rules = {rule("valueRole", IXOLATreeModel::Eq, 6), rule("valueRole", IXOLATreeModel::Eq, 5)};

    // "and": the first rule fails, the second is never evaluated
    CountingItem item("i", "n", 5);
    QCOMPARE(view->MatchRule(&item, rules, false), false);
    QCOMPARE(item.reads, 1);
    // "or": the same list passes through its second rule
    item.reads = 0;
    QCOMPARE(view->MatchRule(&item, rules, true), true);
    QCOMPARE(item.reads, 2);
    // "or" stops at the first pass
    item.reads = 0;
    QCOMPARE(view->MatchRule(&item, {rules.at(1), rules.at(0)}, true), true);
    QCOMPARE(item.reads, 1);
}

void TestFilterRules::matchRule_descendsIntoChildModels()
{
    // Given a parent that fails the rule and a child model with one passing item
    XOLATreeModel* child = TestSupport::createModel(0, TestSupport::extendedRoleNames());
    child->AppendItem(new ValueItem("c1", "n", 1));
    child->AppendItem(new ValueItem("c2", "n", 50));
    const QVariantList rules = {rule("valueRole", IXOLATreeModel::Gt, 10)};
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    QScopedPointer<FilterModelImp> view(
        ModelTesters::watch(static_cast<FilterModelImp*>(source->GetFilterModel(rules))));
    ValueItem parent("p", "n", 0, child);

    // Then the parent passes through its child
    QVERIFY(view->MatchRule(&parent, rules, true));
    // And fails once the passing child is gone
    child->RemoveOne("c2");
    QVERIFY(!view->MatchRule(&parent, rules, true));
    // An empty child model ends the descent
    child->RemoveAll();
    QVERIFY(!view->MatchRule(&parent, rules, true));
    // As does a child that is a list model of another kind
    QStringListModel otherModel({"x", "y"});
    ValueItem odd("o", "n", 0, &otherModel);
    QVERIFY(!view->MatchRule(&odd, rules, true));
    delete child;
}

void TestFilterRules::matchRule_grandchildKeepsParent()
{
    // Given p -> q -> r, where only r passes
    XOLATreeModel* grandchild = TestSupport::createModel(0, TestSupport::extendedRoleNames());
    grandchild->AppendItem(new ValueItem("r", "n", 99));
    XOLATreeModel* child = TestSupport::createModel(0, TestSupport::extendedRoleNames());
    child->AppendItem(new ValueItem("q", "n", 1, grandchild));
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    source->AppendItem(new ValueItem("p", "n", 0, child));
    source->AppendItem(new ValueItem("s", "n", 0));

    // When a view keeps values above 10
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModel({rule("valueRole", IXOLATreeModel::Gt, 10)}))));
    // Then p is kept for its grandchild, s is not
    QCOMPARE(TestSupport::ids(view.data()), QStringList({"p"}));
}

void TestFilterRules::matchRule_unknownOperatorFailsDescendantsToo()
{
    XOLATreeModel* child = TestSupport::createModel(0, TestSupport::extendedRoleNames());
    child->AppendItem(new ValueItem("c", "n", 1));
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    source->AppendItem(new ValueItem("p", "n", 1, child));
    source->AppendItem(new ValueItem("s", "n", 1));
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModel({rule("valueRole", 8, 1)}))));
    QCOMPARE(view->rowCount(), 0);
}

void TestFilterRules::matchRule_descentUsesViewRules()
{
    // The descent tests children with the view's stored rules, not the list
    // handed to this call.
    XOLATreeModel* child = TestSupport::createModel(0, TestSupport::extendedRoleNames());
    child->AppendItem(new ValueItem("c", "n", 7));
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModel({rule("valueRole", IXOLATreeModel::Eq, 7)}))));
    ValueItem parent("p", "n", 0, child);
    QVERIFY(view->MatchRule(&parent, {rule("valueRole", IXOLATreeModel::Eq, 1)}, true));
    QVERIFY(view->MatchRule(&parent, {rule("valueRole", IXOLATreeModel::Eq, 1)}, false));
    // A view whose own rules the child fails does not keep the parent, although
    // the list handed in would pass the child
    QScopedPointer<FilterModelImp> other(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModel({rule("valueRole", IXOLATreeModel::Eq, 8)}))));
    QVERIFY(!other->MatchRule(&parent, {rule("valueRole", IXOLATreeModel::Eq, 7)}, true));
    delete child;
}

void TestFilterRules::matchRule_descentUsesPredicateWhenGiven()
{
    // Given a source whose match function keeps items named "keep"
    int calls = 0;
    PF_MATCH_ITEM match = [&calls](const QObject* object, const QVariant& value) {
        ++calls;
        auto* item = qobject_cast<const XOLATreeItem*>(object);
        return item && item->name() == value.toString();
    };
    XOLATreeModel* child = TestSupport::createModel(0, TestSupport::extendedRoleNames());
    child->AppendItem(new ValueItem("c", "keep", 0));
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames(), nullptr, match));
    QScopedPointer<FilterModelImp> view(
        ModelTesters::watch(static_cast<FilterModelImp*>(source->GetFilterModelByUserDefinedRules("keep"))));
    ValueItem parent("p", "other", 0, child);

    // IsMatchRule asks the predicate alone: no descent
    calls = 0;
    QVERIFY(!view->IsMatchRule(&parent));
    QCOMPARE(calls, 1);
    // MatchRule with a failing rule descends and tests the child with the predicate
    calls = 0;
    QVERIFY(view->MatchRule(&parent, {rule("nameRole", IXOLATreeModel::Eq, "nothing")}, true));
    QCOMPARE(calls, 1);
    delete child;
}

void TestFilterRules::matchRule_treeLeadingBackStops()
{
    // Given an item whose child model is the very model that lists it
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames()));
    source->AppendItem(new ValueItem("loop", "n", 0, source.data()));
    // When a view tests it against a rule it fails
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModel({rule("valueRole", IXOLATreeModel::Gt, 10)}))));
    // Then the search ends and the item is not listed
    QCOMPARE(view->rowCount(), 0);
    QVERIFY(!view->MatchRule(qobject_cast<XOLATreeItem*>(source->FindItem(0)), view->filterRules(), true));
}

void TestFilterRules::isMatchRule_predicateOrRules()
{
    QVariant seen;
    PF_MATCH_ITEM match = [&seen](const QObject*, const QVariant& value) {
        seen = value;
        return true;
    };
    QScopedPointer<XOLATreeModel> source(TestSupport::createModel(0, TestSupport::extendedRoleNames(), nullptr, match));
    ValueItem item("i", "n", 5);

    QScopedPointer<FilterModelImp> byPredicate(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModelByUserDefinedRules(QVariantMap{{"min", 3}}))));
    QVERIFY(byPredicate->IsMatchRule(&item));
    QCOMPARE(seen, QVariant(QVariantMap{{"min", 3}}));
    QCOMPARE(byPredicate->filterRules(), QVariantList());
    QCOMPARE(byPredicate->orAllRules(), false);

    QScopedPointer<FilterModelImp> byRules(ModelTesters::watch(static_cast<FilterModelImp*>(
        source->GetFilterModel({rule("valueRole", IXOLATreeModel::Gt, 10)}))));
    seen = QVariant();
    QVERIFY(!byRules->IsMatchRule(&item));
    QVERIFY(!seen.isValid());
}

QTEST_GUILESS_MAIN(TestFilterRules)

#include "tst_filterrules.moc"
