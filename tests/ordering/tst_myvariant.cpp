// Comparable values: MyVariant (the single-role sort key and the filter operand)
// and MyVariantEx (the multi-rule sort key).

#include "MyVariant.h"
#include "MyVariantEx.h"
#include "TestSupport.h"

#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QTime>
#include <QtCore/QUrl>
#include <QtQml/QJSEngine>
#include <QtQml/QJSValue>
#include <QtTest/QtTest>

#include <memory>

namespace {

const QString kSeparator = QStringLiteral("{F185B90B-D31F-48AF-ABC6-4C516C125083}");

// Stands in for the root object of a QML comparison file: a two-argument method
// that answers with a QVariant.
class Comparer : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE QVariant less(const QVariant& a, const QVariant& b)
    {
        calls << qMakePair(a, b);
        return a.toInt() < b.toInt();
    }
    Q_INVOKABLE QVariant answerText(const QVariant&, const QVariant&) { return QStringLiteral("yes"); }
    Q_INVOKABLE void noAnswer(const QVariant&, const QVariant&) {}

    QList<QPair<QVariant, QVariant>> calls;
};

QVariantMap rule(const QVariant& roleName, const QVariant& ascending = QVariant())
{
    QVariantMap map;
    map.insert(QStringLiteral("RoleName"), roleName);
    if (ascending.isValid())
        map.insert(QStringLiteral("Ascending"), ascending);
    return map;
}

} // namespace

class TestMyVariant : public QObject
{
    Q_OBJECT

private slots:
    void builtInComparison_data();
    void builtInComparison();
    void descendingNegatesComparableResults_data();
    void descendingNegatesComparableResults();
    void valuesWithoutOrderAreNeverLessOrGreater_data();
    void valuesWithoutOrderAreNeverLessOrGreater();
    void lessThanFunctionWinsAndIsNegatedWhenDescending();
    void greaterAsksTheFunctionWithSwappedOperands();
    void lessThanFunctionAppliesToValuesWithoutOrder();
    void qmlObjectMethodCompares();
    void qmlObjectMissingMethodAnswersFalseBeforeDirection();
    void qmlObjectNeedsObjectAndName();
    void scriptFunctionCompares();
    void scriptFunctionThatThrowsAnswersWithItsError();
    void scriptEngineWithoutFunctionUsesBuiltIn();
    void copiesCompareAlike();
    void toStringJoinsStringLists_data();
    void toStringJoinsStringLists();

    void compareVariantsIsQVariantOrder_data();
    void compareVariantsIsQVariantOrder();
    void resolveRoleFirstMatchElseZero();
    void rulesOrderItems_data();
    void rulesOrderItems();
    void tiesAreFalseBothWays();
    void nullValueSkipsRule();
    void malformedRulesAreSkipped();
    void resolvedRulesCompareLikeRuleList();
    void copyConstructorCopiesRulesAndNames();
};

// ---- MyVariant ------------------------------------------------------------------

void TestMyVariant::builtInComparison_data()
{
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QVariant>("right");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");

    const QDate d1(2020, 1, 2), d2(2021, 6, 1);
    const QTime t1(9, 30), t2(10, 0);
    const QDateTime dt1(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC), dt2(QDate(2020, 1, 1), QTime(10, 0), Qt::UTC);

    // The right value is converted to the left value's type.
    QTest::newRow("int < numeric string") << QVariant(3) << QVariant("10") << true << false;
    QTest::newRow("string < int compares as text") << QVariant("3") << QVariant(10) << false << true;
    QTest::newRow("int vs word converts to 0") << QVariant(5) << QVariant("abc") << false << true;
    QTest::newRow("word vs int compares as text") << QVariant("abc") << QVariant(5) << false << true;
    QTest::newRow("int equal") << QVariant(4) << QVariant(4) << false << false;
    QTest::newRow("int negative") << QVariant(-4) << QVariant(2) << true << false;

    QTest::newRow("double") << QVariant(1.5) << QVariant(2.25) << true << false;
    QTest::newRow("double vs string") << QVariant(1.5) << QVariant("2.25") << true << false;
    QTest::newRow("string vs double") << QVariant("10.5") << QVariant(2.25) << true << false;
    QTest::newRow("double vs int") << QVariant(2.5) << QVariant(3) << true << false;
    QTest::newRow("int vs double rounds") << QVariant(3) << QVariant(2.4) << false << true;
    QTest::newRow("int vs double equal after rounding") << QVariant(2) << QVariant(2.4) << false << false;

    QTest::newRow("bool false < true") << QVariant(false) << QVariant(true) << true << false;
    QTest::newRow("bool true > false") << QVariant(true) << QVariant(false) << false << true;
    QTest::newRow("bool equal") << QVariant(true) << QVariant(true) << false << false;
    QTest::newRow("bool vs int") << QVariant(false) << QVariant(7) << true << false;
    QTest::newRow("bool vs string") << QVariant(true) << QVariant("false") << false << true;
    QTest::newRow("int vs bool") << QVariant(0) << QVariant(true) << true << false;

    QTest::newRow("char") << QVariant(QChar('a')) << QVariant(QChar('b')) << true << false;
    QTest::newRow("char vs int code") << QVariant(QChar('A')) << QVariant(66) << true << false;
    QTest::newRow("int vs char code") << QVariant(67) << QVariant(QChar('B')) << false << true;
    QTest::newRow("char vs string converts to null char") << QVariant(QChar('a')) << QVariant("b") << false << true;
    QTest::newRow("string vs char") << QVariant("b") << QVariant(QChar('a')) << false << true;

    QTest::newRow("string case-sensitive") << QVariant("B") << QVariant("a") << true << false;
    QTest::newRow("string by code unit") << QVariant("a") << QVariant("ab") << true << false;

    QTest::newRow("uint") << QVariant(1u) << QVariant(4000000000u) << true << false;
    QTest::newRow("uint vs -1 converts to max") << QVariant(4294967295u) << QVariant(-1) << false << false;
    QTest::newRow("-1 vs uint max converts to -1") << QVariant(-1) << QVariant(4294967295u) << false << false;
    QTest::newRow("uint vs int") << QVariant(3u) << QVariant(5) << true << false;
    QTest::newRow("ulonglong max vs int") << QVariant(Q_UINT64_C(18446744073709551615)) << QVariant(1) << false << true;
    QTest::newRow("int vs ulonglong max") << QVariant(1) << QVariant(Q_UINT64_C(18446744073709551615)) << false << true;
    QTest::newRow("ulonglong vs string") << QVariant(Q_UINT64_C(10)) << QVariant("9") << false << true;
    QTest::newRow("longlong") << QVariant(Q_INT64_C(1) << 40) << QVariant(5) << false << true;
    QTest::newRow("longlong negative") << QVariant(-(Q_INT64_C(1) << 40)) << QVariant(Q_INT64_C(5)) << true << false;

    QTest::newRow("date") << QVariant(d1) << QVariant(d2) << true << false;
    QTest::newRow("date vs ISO string") << QVariant(d1) << QVariant("2020-01-03") << true << false;
    QTest::newRow("ISO string vs date compares text") << QVariant("2020-01-03") << QVariant(d1) << false << true;
    QTest::newRow("date vs int is a null date") << QVariant(d1) << QVariant(5) << false << true;

    QTest::newRow("time") << QVariant(t1) << QVariant(t2) << true << false;
    QTest::newRow("time vs string") << QVariant(t2) << QVariant("11:00:00") << true << false;
    QTest::newRow("time vs word is a null time") << QVariant(t1) << QVariant("abc") << false << true;

    QTest::newRow("datetime") << QVariant(dt1) << QVariant(dt2) << true << false;
    QTest::newRow("datetime vs ISO string") << QVariant(dt2) << QVariant("2020-01-01T05:00:00Z") << false << true;
    QTest::newRow("datetime equal") << QVariant(dt1) << QVariant(dt1) << false << false;

    QTest::newRow("bytearray") << QVariant(QByteArray("abc")) << QVariant(QByteArray("abd")) << true << false;
    QTest::newRow("bytearray with inner zero") << QVariant(QByteArray("ab")) << QVariant(QByteArray("ab\0", 3)) << true << false;
    QTest::newRow("bytearray vs string") << QVariant(QByteArray("b")) << QVariant("a") << false << true;
    QTest::newRow("bytearray vs int") << QVariant(QByteArray("2")) << QVariant(10) << false << true;

    QTest::newRow("string vs time compares text") << QVariant("09:00") << QVariant(t2) << true << false;
    QTest::newRow("string vs datetime compares text") << QVariant("2020-01-01T11") << QVariant(dt2) << false << true;
    QTest::newRow("string vs bytearray") << QVariant("b") << QVariant(QByteArray("c")) << true << false;
    QTest::newRow("string vs bool") << QVariant("false") << QVariant(true) << true << false;
    QTest::newRow("double vs bool") << QVariant(0.5) << QVariant(true) << true << false;
    QTest::newRow("string vs uint") << QVariant("7") << QVariant(10u) << false << true;
    QTest::newRow("uint vs string") << QVariant(7u) << QVariant("10") << true << false;
    QTest::newRow("ulonglong vs negative int wraps") << QVariant(Q_UINT64_C(5)) << QVariant(-1) << true << false;
    QTest::newRow("char vs bool") << QVariant(QChar('a')) << QVariant(true) << false << true;
    QTest::newRow("string vs string list") << QVariant("b") << QVariant(QStringList{"a"}) << false << true;
    QTest::newRow("string vs map is text vs empty") << QVariant("a") << QVariant(QVariantMap{{"k", 1}}) << false << true;
    QTest::newRow("int vs invalid converts to 0") << QVariant(1) << QVariant() << false << true;
}

void TestMyVariant::builtInComparison()
{
    QFETCH(QVariant, left);
    QFETCH(QVariant, right);
    QFETCH(bool, less);
    QFETCH(bool, greater);

    QCOMPARE(MyVariant(left) < MyVariant(right), less);
    QCOMPARE(MyVariant(left) > MyVariant(right), greater);
    // The right operand's own direction and function are not consulted.
    QCOMPARE(MyVariant(left) < MyVariant(right, false, [](const QVariant&, const QVariant&) { return true; }), less);
    QVERIFY(MyVariant(left).usesBuiltInComparison());
}

void TestMyVariant::descendingNegatesComparableResults_data()
{
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QVariant>("right");
    QTest::newRow("equal ints") << QVariant(5) << QVariant(5);
    QTest::newRow("smaller int") << QVariant(1) << QVariant(5);
    QTest::newRow("greater string") << QVariant("b") << QVariant("a");
    QTest::newRow("equal dates") << QVariant(QDate(2000, 1, 1)) << QVariant(QDate(2000, 1, 1));
    QTest::newRow("mixed") << QVariant(3) << QVariant("10");
}

void TestMyVariant::descendingNegatesComparableResults()
{
    QFETCH(QVariant, left);
    QFETCH(QVariant, right);

    const bool less = MyVariant(left) < MyVariant(right);
    const bool greater = MyVariant(left) > MyVariant(right);
    QCOMPARE(MyVariant(left, false, PF_LESS_THAN()) < MyVariant(right), !less);
    QCOMPARE(MyVariant(left, false, PF_LESS_THAN()) > MyVariant(right), !greater);
}

void TestMyVariant::valuesWithoutOrderAreNeverLessOrGreater_data()
{
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QVariant>("right");
    QTest::newRow("lists") << QVariant(QVariantList{1, 2}) << QVariant(QVariantList{3});
    QTest::newRow("lists reversed") << QVariant(QVariantList{3}) << QVariant(QVariantList{1, 2});
    QTest::newRow("equal lists") << QVariant(QVariantList{1}) << QVariant(QVariantList{1});
    QTest::newRow("string lists") << QVariant(QStringList{"a"}) << QVariant(QStringList{"b"});
    QTest::newRow("string list vs string") << QVariant(QStringList{"a"}) << QVariant("b");
    QTest::newRow("maps") << QVariant(QVariantMap{{"a", 1}}) << QVariant(QVariantMap{{"b", 2}});
    QTest::newRow("map vs int") << QVariant(QVariantMap{{"a", 1}}) << QVariant(3);
    QTest::newRow("invalid vs int") << QVariant() << QVariant(1);
    QTest::newRow("invalid vs invalid") << QVariant() << QVariant();
    QTest::newRow("url") << QVariant(QUrl("http://a")) << QVariant(QUrl("http://b"));
    QTest::newRow("float is not one of the ordered types") << QVariant::fromValue(1.0f) << QVariant::fromValue(2.0f);
}

void TestMyVariant::valuesWithoutOrderAreNeverLessOrGreater()
{
    QFETCH(QVariant, left);
    QFETCH(QVariant, right);

    for (bool ascending : {true, false}) {
        const MyVariant l(left, ascending, PF_LESS_THAN());
        const MyVariant r(right, ascending, PF_LESS_THAN());
        // Only the left value's type counts: the right one may be ordered.
        QVERIFY(!(l < r));
        QVERIFY(!(l > r));
    }
}

void TestMyVariant::lessThanFunctionWinsAndIsNegatedWhenDescending()
{
    const PF_LESS_THAN alwaysTrue = [](const QVariant&, const QVariant&) { return true; };
    const PF_LESS_THAN alwaysFalse = [](const QVariant&, const QVariant&) { return false; };

    QVERIFY(MyVariant(5, true, alwaysTrue) < MyVariant(1));
    QVERIFY(MyVariant(1, true, alwaysTrue) < MyVariant(5));
    QVERIFY(!(MyVariant(5, false, alwaysTrue) < MyVariant(1)));
    QVERIFY(!(MyVariant(1, false, alwaysTrue) < MyVariant(5)));
    QVERIFY(!(MyVariant(1, true, alwaysFalse) < MyVariant(5)));
    QVERIFY(MyVariant(1, false, alwaysFalse) < MyVariant(5));
    QVERIFY(!MyVariant(1, true, alwaysTrue).usesBuiltInComparison());
}

void TestMyVariant::greaterAsksTheFunctionWithSwappedOperands()
{
    QList<QPair<QVariant, QVariant>> calls;
    const PF_LESS_THAN recordingLess = [&calls](const QVariant& a, const QVariant& b) {
        calls << qMakePair(a, b);
        return a.toInt() < b.toInt();
    };

    QVERIFY(MyVariant(1, true, recordingLess) < MyVariant(2));
    QVERIFY(!(MyVariant(1, true, recordingLess) > MyVariant(2)));
    QVERIFY(MyVariant(3, true, recordingLess) > MyVariant(2));
    QVERIFY(!(MyVariant(3, false, recordingLess) > MyVariant(2)));
    QCOMPARE(calls.size(), 4);
    QCOMPARE(calls.at(0), qMakePair(QVariant(1), QVariant(2)));
    QCOMPARE(calls.at(1), qMakePair(QVariant(2), QVariant(1)));
    QCOMPARE(calls.at(2), qMakePair(QVariant(2), QVariant(3)));
}

void TestMyVariant::lessThanFunctionAppliesToValuesWithoutOrder()
{
    // The caller's function decides also for types the built-in comparison
    // cannot order, and the direction then applies.
    const PF_LESS_THAN bySize = [](const QVariant& a, const QVariant& b) {
        return a.toList().size() < b.toList().size();
    };
    const QVariant shortList = QVariantList{1};
    const QVariant longList = QVariantList{1, 2};
    QVERIFY(MyVariant(shortList, true, bySize) < MyVariant(longList));
    QVERIFY(!(MyVariant(shortList, false, bySize) < MyVariant(longList)));
    QVERIFY(MyVariant(shortList, false, bySize) < MyVariant(shortList));
}

void TestMyVariant::qmlObjectMethodCompares()
{
    Comparer comparer;
    QVERIFY(MyVariant(1, true, &comparer, QStringLiteral("less")) < MyVariant(2));
    QVERIFY(!(MyVariant(2, true, &comparer, QStringLiteral("less")) < MyVariant(1)));
    QVERIFY(!(MyVariant(1, false, &comparer, QStringLiteral("less")) < MyVariant(2)));
    QVERIFY(MyVariant(2, true, &comparer, QStringLiteral("less")) > MyVariant(1));
    QCOMPARE(comparer.calls.size(), 4);
    // This value first, the other second; swapped for the greater test.
    QCOMPARE(comparer.calls.at(0), qMakePair(QVariant(1), QVariant(2)));
    QCOMPARE(comparer.calls.at(3), qMakePair(QVariant(1), QVariant(2)));
    // Any answer is read with toBool.
    QVERIFY(MyVariant(9, true, &comparer, QStringLiteral("answerText")) < MyVariant(1));
    QVERIFY(!MyVariant(9, true, &comparer, QStringLiteral("less")).usesBuiltInComparison());
}

void TestMyVariant::qmlObjectMissingMethodAnswersFalseBeforeDirection()
{
    Comparer comparer;
    // A missing method, or one with nothing to answer, yields an invalid value,
    // i.e. false, and the direction still applies to it.
    QVERIFY(!(MyVariant(1, true, &comparer, QStringLiteral("nothing")) < MyVariant(2)));
    QVERIFY(MyVariant(1, false, &comparer, QStringLiteral("nothing")) < MyVariant(2));
    QVERIFY(!(MyVariant(1, true, &comparer, QStringLiteral("noAnswer")) < MyVariant(2)));
    QVERIFY(!(MyVariant(QVariantList(), true, &comparer, QStringLiteral("nothing")) > MyVariant(2)));
    QVERIFY(comparer.calls.isEmpty());
}

void TestMyVariant::qmlObjectNeedsObjectAndName()
{
    Comparer comparer;
    // Without a name or without an object the built-in comparison is used.
    QVERIFY(MyVariant(1, true, &comparer, QString()) < MyVariant(2));
    QVERIFY(MyVariant(1, true, &comparer, QString()).usesBuiltInComparison());
    QVERIFY(MyVariant(1, true, static_cast<QObject*>(nullptr), QStringLiteral("less")) < MyVariant(2));
    QVERIFY(!(MyVariant(QVariantList(), false, &comparer, QString()) < MyVariant(2)));
    QVERIFY(comparer.calls.isEmpty());
}

void TestMyVariant::scriptFunctionCompares()
{
    QJSEngine engine;
    engine.evaluate(QStringLiteral("var calls = []; function less(a, b) { calls.push([a, b]); return a < b; }"));
    QJSValue function = engine.globalObject().property(QStringLiteral("less"));
    QVERIFY(function.isCallable());

    QVERIFY(MyVariant(1, true, &engine, &function) < MyVariant(2));
    QVERIFY(!(MyVariant(1, false, &engine, &function) < MyVariant(2)));
    QVERIFY(MyVariant(QStringLiteral("b"), true, &engine, &function) > MyVariant(QStringLiteral("a")));
    QVERIFY(!(MyVariant(QStringLiteral("b"), false, &engine, &function) > MyVariant(QStringLiteral("a"))));
    QCOMPARE(engine.evaluate(QStringLiteral("JSON.stringify(calls)")).toString(),
             QStringLiteral("[[1,2],[1,2],[\"a\",\"b\"],[\"a\",\"b\"]]"));
    QVERIFY(!MyVariant(1, true, &engine, &function).usesBuiltInComparison());
}

void TestMyVariant::scriptFunctionThatThrowsAnswersWithItsError()
{
    QJSEngine engine;
    engine.evaluate(QStringLiteral("function boom(a, b) { throw new Error('no'); }"));
    QJSValue boom = engine.globalObject().property(QStringLiteral("boom"));
    QJSValue missing = engine.globalObject().property(QStringLiteral("missing"));
    // The error object is what the call answers, and an object reads as true.
    QVERIFY(MyVariant(1, true, &engine, &boom) < MyVariant(2));
    QVERIFY(!(MyVariant(1, false, &engine, &boom) < MyVariant(2)));
    // Calling undefined answers undefined, i.e. false.
    QVERIFY(!(MyVariant(1, true, &engine, &missing) < MyVariant(2)));
    QVERIFY(MyVariant(1, false, &engine, &missing) < MyVariant(2));
}

void TestMyVariant::scriptEngineWithoutFunctionUsesBuiltIn()
{
    QJSEngine engine;
    QVERIFY(MyVariant(1, true, &engine, static_cast<QJSValue*>(nullptr)) < MyVariant(2));
    QVERIFY(MyVariant(1, true, &engine, static_cast<QJSValue*>(nullptr)).usesBuiltInComparison());
}

void TestMyVariant::copiesCompareAlike()
{
    int calls = 0;
    const MyVariant original(4, false, [&calls](const QVariant& a, const QVariant& b) {
        ++calls;
        return a.toInt() < b.toInt();
    });
    const MyVariant copy = original;
    QCOMPARE(copy.value(), QVariant(4));
    QCOMPARE(copy.ascending(), false);
    QCOMPARE(copy < MyVariant(9), original < MyVariant(9));
    QCOMPARE(calls, 2);
}

void TestMyVariant::toStringJoinsStringLists_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("two entries") << QVariant(QStringList{"a", "b"}) << QStringLiteral("a") + kSeparator + QStringLiteral("b");
    QTest::newRow("three entries") << QVariant(QStringList{"x", "", "z"}) << QStringLiteral("x") + kSeparator + kSeparator + QStringLiteral("z");
    QTest::newRow("one entry") << QVariant(QStringList{"a"}) << QStringLiteral("a");
    QTest::newRow("empty list") << QVariant(QStringList()) << QString();
    QTest::newRow("int") << QVariant(7) << QStringLiteral("7");
    QTest::newRow("double") << QVariant(1.5) << QStringLiteral("1.5");
    QTest::newRow("bytearray") << QVariant(QByteArray("raw")) << QStringLiteral("raw");
    QTest::newRow("invalid") << QVariant() << QString();
}

void TestMyVariant::toStringJoinsStringLists()
{
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QCOMPARE(kSeparator.size(), 38);
    QCOMPARE(QString::fromLatin1(kStringListSeparator), kSeparator);
    QCOMPARE(MyVariant(value).toString(), text);
}

// ---- MyVariantEx ----------------------------------------------------------------

void TestMyVariant::compareVariantsIsQVariantOrder_data()
{
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QVariant>("right");
    QTest::addColumn<int>("sign");
    QTest::newRow("ints") << QVariant(1) << QVariant(2) << -1;
    QTest::newRow("ints reversed") << QVariant(2) << QVariant(1) << 1;
    QTest::newRow("equal ints") << QVariant(2) << QVariant(2) << 0;
    QTest::newRow("int and double") << QVariant(2) << QVariant(2.5) << -1;
    QTest::newRow("strings ignore case") << QVariant("a") << QVariant("B") << -1;
    QTest::newRow("strings ignore case reversed") << QVariant("b") << QVariant("A") << 1;
    QTest::newRow("equal strings") << QVariant("x") << QVariant("x") << 0;
    QTest::newRow("dates") << QVariant(QDate(2000, 1, 1)) << QVariant(QDate(2001, 1, 1)) << -1;
}

void TestMyVariant::compareVariantsIsQVariantOrder()
{
    QFETCH(QVariant, left);
    QFETCH(QVariant, right);
    QFETCH(int, sign);
    const int c = MyVariantEx::compareVariants(left, right);
    QCOMPARE(c < 0 ? -1 : (c > 0 ? 1 : 0), sign);
}

void TestMyVariant::resolveRoleFirstMatchElseZero()
{
    const QHash<int, QByteArray> names = TestSupport::extendedRoleNames();
    QCOMPARE(MyVariantEx::resolveRole(names, QStringLiteral("nameRole")), int(XOLATreeItem::NameRole));
    QCOMPARE(MyVariantEx::resolveRole(names, QStringLiteral("valueRole")), int(ValueItem::ValueRole));
    QCOMPARE(MyVariantEx::resolveRole(names, QStringLiteral("NameRole")), 0);
    QCOMPARE(MyVariantEx::resolveRole(names, QString()), 0);
    QCOMPARE(MyVariantEx::resolveRole({}, QStringLiteral("nameRole")), 0);

    // Two roles with one name: the lowest-numbered wins, whatever order the
    // table iterates in.
    QHash<int, QByteArray> twice{{301, "same"}, {300, "same"}, {299, "other"}, {302, "same"}};
    QCOMPARE(MyVariantEx::resolveRole(twice, QStringLiteral("same")), 300);
}

void TestMyVariant::rulesOrderItems_data()
{
    QTest::addColumn<QVariantList>("rules");
    QTest::addColumn<bool>("aBeforeB"); // a < b
    QTest::addColumn<bool>("bBeforeA"); // b < a

    // a: name "alpha", value 1, group "x"; b: name "beta", value 1, group "y".
    QTest::newRow("name ascending") << QVariantList{rule("nameRole", true)} << true << false;
    QTest::newRow("name descending") << QVariantList{rule("nameRole", false)} << false << true;
    QTest::newRow("missing Ascending is descending") << QVariantList{rule("nameRole")} << false << true;
    QTest::newRow("name as bytes") << QVariantList{rule(QByteArray("nameRole"), true)} << true << false;
    QTest::newRow("tie then group descending")
        << QVariantList{rule("valueRole", true), rule("groupRole", false)} << false << true;
    QTest::newRow("tie then name ascending")
        << QVariantList{rule("valueRole", false), rule("nameRole", true)} << true << false;
    QTest::newRow("unknown role reads role 0, skipped") << QVariantList{rule("nothing", true)} << false << false;
    QTest::newRow("unknown role then name") << QVariantList{rule("nothing", true), rule("nameRole", false)} << false << true;
    QTest::newRow("empty rule list") << QVariantList() << false << false;
    QTest::newRow("Ascending as text") << QVariantList{rule("nameRole", "true")} << true << false;
}

void TestMyVariant::rulesOrderItems()
{
    QFETCH(QVariantList, rules);
    QFETCH(bool, aBeforeB);
    QFETCH(bool, bBeforeA);

    ValueItem a(QStringLiteral("a"), QStringLiteral("alpha"), 1);
    ValueItem b(QStringLiteral("b"), QStringLiteral("beta"), 1);
    a.setExtra(ValueItem::GroupRole, QStringLiteral("x"));
    b.setExtra(ValueItem::GroupRole, QStringLiteral("y"));
    const QHash<int, QByteArray> names = TestSupport::extendedRoleNames();

    QCOMPARE(MyVariantEx(&a, rules, names) < MyVariantEx(&b, rules, names), aBeforeB);
    QCOMPARE(MyVariantEx(&b, rules, names) < MyVariantEx(&a, rules, names), bBeforeA);
}

void TestMyVariant::tiesAreFalseBothWays()
{
    ValueItem a(QStringLiteral("a"), QStringLiteral("same"), 3);
    ValueItem b(QStringLiteral("b"), QStringLiteral("same"), 3);
    const QHash<int, QByteArray> names = TestSupport::extendedRoleNames();
    for (bool ascending : {true, false}) {
        const QVariantList rules{rule("nameRole", ascending), rule("valueRole", ascending)};
        QVERIFY(!(MyVariantEx(&a, rules, names) < MyVariantEx(&b, rules, names)));
        QVERIFY(!(MyVariantEx(&b, rules, names) < MyVariantEx(&a, rules, names)));
    }
    // Strings that differ only in case: QVariant's ordering calls each one
    // greater than the other, so ascending neither goes first, descending both do.
    ValueItem upper(QStringLiteral("u"), QStringLiteral("ABC"));
    ValueItem lower(QStringLiteral("l"), QStringLiteral("abc"));
    for (bool ascending : {true, false}) {
        const QVariantList byName{rule("nameRole", ascending)};
        QCOMPARE(MyVariantEx(&upper, byName, names) < MyVariantEx(&lower, byName, names), !ascending);
        QCOMPARE(MyVariantEx(&lower, byName, names) < MyVariantEx(&upper, byName, names), !ascending);
    }
}

void TestMyVariant::nullValueSkipsRule()
{
    // a has no value for valueRole, so the second rule alone orders a and b.
    ValueItem a(QStringLiteral("a"), QStringLiteral("zulu"));
    ValueItem b(QStringLiteral("b"), QStringLiteral("alpha"), 1);
    const QHash<int, QByteArray> names = TestSupport::extendedRoleNames();
    const QVariantList rules{rule("valueRole", true), rule("nameRole", true)};
    QVERIFY(MyVariantEx(&b, rules, names) < MyVariantEx(&a, rules, names));
    QVERIFY(!(MyVariantEx(&a, rules, names) < MyVariantEx(&b, rules, names)));

    // A null string is null too.
    ValueItem c(QStringLiteral("c"), QStringLiteral("c"), QString());
    ValueItem d(QStringLiteral("d"), QStringLiteral("d"), QStringLiteral("text"));
    const QVariantList byValue{rule("valueRole", true)};
    QVERIFY(!(MyVariantEx(&c, byValue, names) < MyVariantEx(&d, byValue, names)));
    QVERIFY(!(MyVariantEx(&d, byValue, names) < MyVariantEx(&c, byValue, names)));
}

void TestMyVariant::malformedRulesAreSkipped()
{
    ValueItem a(QStringLiteral("a"), QStringLiteral("alpha"));
    ValueItem b(QStringLiteral("b"), QStringLiteral("beta"));
    const QHash<int, QByteArray> names = TestSupport::extendedRoleNames();
    const QVariantList rules{QVariant(5), QVariant(QVariantMap()), QVariant(QStringLiteral("nameRole")),
                             rule("nameRole", true)};
    QVERIFY(MyVariantEx(&a, rules, names) < MyVariantEx(&b, rules, names));
    QVERIFY(!(MyVariantEx(&b, rules, names) < MyVariantEx(&a, rules, names)));
    // A map without a role name reads role 0.
    const QVariantList noName{QVariantMap{{"Ascending", true}}};
    QVERIFY(!(MyVariantEx(&a, noName, names) < MyVariantEx(&b, noName, names)));
    QVERIFY(!(MyVariantEx(&b, noName, names) < MyVariantEx(&a, noName, names)));
}

void TestMyVariant::resolvedRulesCompareLikeRuleList()
{
    const QHash<int, QByteArray> names = TestSupport::extendedRoleNames();
    const QVariantList rules{QVariant(1), rule("valueRole", false), QVariantMap(), rule("nameRole"),
                             rule("unknown", true), rule("groupRole", true)};
    const QSharedPointer<const MyVariantEx::ResolvedRules> resolved(
        new MyVariantEx::ResolvedRules(MyVariantEx::resolveRules(rules, names)));
    QCOMPARE(resolved->size(), 4);

    std::vector<std::unique_ptr<ValueItem>> items;
    const QVariantList values{1, 2, QVariant(), 2, 1, QVariant(), 3};
    const QStringList itemNames{"a", "b", "c", "b", "a", "d", "a"};
    for (int i = 0; i < values.size(); ++i) {
        items.emplace_back(new ValueItem(QString::number(i), itemNames.at(i), values.at(i)));
        items.back()->setExtra(ValueItem::GroupRole, i % 3);
    }
    for (const auto& left : items) {
        for (const auto& right : items) {
            const bool plain = MyVariantEx(left.get(), rules, names) < MyVariantEx(right.get(), rules, names);
            const bool fast = MyVariantEx(left.get(), rules, names, resolved) < MyVariantEx(right.get(), rules, names, resolved);
            QCOMPARE(fast, plain);
        }
    }
}

void TestMyVariant::copyConstructorCopiesRulesAndNames()
{
    ValueItem a(QStringLiteral("a"), QStringLiteral("alpha"));
    ValueItem b(QStringLiteral("b"), QStringLiteral("beta"));
    const QVariantList rules{rule("nameRole", false)};
    const MyVariantEx original(&a, rules, TestSupport::extendedRoleNames());
    const MyVariantEx copy(original);
    QCOMPARE(copy.item(), &a);
    QVERIFY(MyVariantEx(&b, rules, TestSupport::extendedRoleNames()) < copy);
    QVERIFY(!(copy < MyVariantEx(&b, rules, TestSupport::extendedRoleNames())));
}

QTEST_GUILESS_MAIN(TestMyVariant)

#include "tst_myvariant.moc"
