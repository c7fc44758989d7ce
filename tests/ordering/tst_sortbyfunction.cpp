// Sorting with a comparison written in a QML file (a method of its root object)
// or in a script file (a global function).

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"

#include <QtCore/QScopedPointer>
#include <QtTest/QtTest>

using namespace TestSupport;

namespace {

const int kValueRole = ValueItem::ValueRole;

QString compareFile(const char* name)
{
    return QStringLiteral(XOLA_COMPARE_DIR "/") + QLatin1String(name);
}

QStringList idList(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

XOLATreeModel* modelWithValues(const QVariantList& values)
{
    XOLATreeModel* model = createModel(0, extendedRoleNames());
    appendEach(model, valueItems(values));
    return model;
}

const QStringList kQmlSortLog{"dataChanged(0,3)", "layoutChanged()"};
const QStringList kScriptSortLog{"dataChanged(0,3)", "layoutChanged()", "modelReset()"};

} // namespace

class TestSortByFunction : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void initTestCase();
    void qmlFunction_data();
    void qmlFunction();
    void qmlNameForm();
    void qmlEmptyNamesDoNothing();
    void qmlOnEmptyModelStillEmits();
    void qmlLeavesKeepSortingAlone();

    void scriptFunction_data();
    void scriptFunction();
    void scriptNameForm();
    void scriptUnknownRoleNameReadsRoleZero();
    void scriptMissingFileDoesNothing();
    void scriptErrorValueDoesNothing();
    void scriptEmptyNamesDoNothing();
    void scriptOnEmptyModelStillEmits();
    void scriptOnEmptyModelWithMissingFileDoesNothing();
    void scriptLeavesKeepSortingAlone();
};

void TestSortByFunction::initTestCase()
{
    QVERIFY(QFile::exists(compareFile("less.qml")));
    QVERIFY(QFile::exists(compareFile("less.js")));
}

void TestSortByFunction::qmlFunction_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("function");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("expected");

    // Rows: i0 = 3, i1 = 1, i2 = (none), i3 = 2
    QTest::newRow("less ascending") << "less.qml" << "less" << true << idList("i1 i3 i0 i2");
    QTest::newRow("less descending") << "less.qml" << "less" << false << idList("i0 i3 i1 i2");
    QTest::newRow("greater ascending") << "less.qml" << "greater" << true << idList("i0 i3 i1 i2");
    QTest::newRow("always true ascending keeps") << "less.qml" << "always" << true << idList("i0 i1 i3 i2");
    QTest::newRow("always true descending reverses") << "less.qml" << "always" << false << idList("i3 i1 i0 i2");
    // A missing file or one with errors leaves the built-in comparison.
    QTest::newRow("missing file ascending") << "missing.qml" << "less" << true << idList("i1 i3 i0 i2");
    QTest::newRow("missing file descending") << "missing.qml" << "less" << false << idList("i0 i3 i1 i2");
    QTest::newRow("syntax error") << "syntaxerror.qml" << "less" << true << idList("i1 i3 i0 i2");
    // A missing method, or one that throws, answers false to everything.
    QTest::newRow("missing function ascending reverses") << "less.qml" << "nothing" << true << idList("i3 i1 i0 i2");
    QTest::newRow("missing function descending keeps") << "less.qml" << "nothing" << false << idList("i0 i1 i3 i2");
    QTest::newRow("throwing function ascending reverses") << "less.qml" << "fails" << true << idList("i3 i1 i0 i2");
    QTest::newRow("throwing function descending keeps") << "less.qml" << "fails" << false << idList("i0 i1 i3 i2");
}

void TestSortByFunction::qmlFunction()
{
    QFETCH(QString, file);
    QFETCH(QString, function);
    QFETCH(bool, ascending);
    QFETCH(QStringList, expected);
    ModelTesters::expect(ModelTesters::FunctionSortLoneLayout);

    // Given
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, QVariant(), 2}));
    SignalLog log(model.data());
    // When
    model->SortByRoleByQMLFunction(kValueRole, ascending, compareFile(file.toLatin1().constData()), function);
    // Then
    QCOMPARE(ids(model.data()), expected);
    QCOMPARE(log.take(), kQmlSortLog);
}

void TestSortByFunction::qmlNameForm()
{
    ModelTesters::expect(ModelTesters::FunctionSortLoneLayout);
    QScopedPointer<XOLATreeModel> model(modelWithValues({"b", "c", "a", "b"}));
    SignalLog log(model.data());
    model->SortByRoleByQMLFunction(QStringLiteral("valueRole"), true, compareFile("less.qml"), QStringLiteral("less"));
    QCOMPARE(ids(model.data()), idList("i2 i3 i0 i1"));
    QCOMPARE(log.take(), kQmlSortLog);
}

void TestSortByFunction::qmlEmptyNamesDoNothing()
{
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    SignalLog log(model.data());
    model->SortByRoleByQMLFunction(kValueRole, true, QString(), QStringLiteral("less"));
    model->SortByRoleByQMLFunction(kValueRole, true, compareFile("less.qml"), QString());
    model->SortByRoleByQMLFunction(QStringLiteral("valueRole"), true, compareFile("less.qml"), QString());
    QVERIFY(log.take().isEmpty());
    QCOMPARE(ids(model.data()), idList("i0 i1 i2 i3"));
}

void TestSortByFunction::qmlOnEmptyModelStillEmits()
{
    ModelTesters::expect({ModelTesters::FunctionSortLoneLayout, ModelTesters::EmptySortDataChanged});
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    SignalLog log(model.data());
    model->SortByRoleByQMLFunction(kValueRole, true, compareFile("less.qml"), QStringLiteral("less"));
    QCOMPARE(log.take(), QStringList({"dataChanged(-1,-1)", "layoutChanged()"}));
    model->SortByRoleByQMLFunction(kValueRole, true, compareFile("missing.qml"), QStringLiteral("less"));
    QCOMPARE(log.take(), QStringList({"dataChanged(-1,-1)", "layoutChanged()"}));
}

void TestSortByFunction::qmlLeavesKeepSortingAlone()
{
    ModelTesters::expect(ModelTesters::FunctionSortLoneLayout);
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    model->SortByRoleAndKeep(kValueRole, true);
    const QVariantList rules = model->sortRules();
    model->SortByRoleByQMLFunction(kValueRole, false, compareFile("less.qml"), QStringLiteral("less"));
    QCOMPARE(values(model.data(), kValueRole), QStringList({"3", "2", "1", "0"}));
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::KeepSorting));
    QCOMPARE(model->sortRules(), rules);
    // The stored rule still applies at the next insertion.
    model->AppendItem(new ValueItem("x", "x", 5));
    QCOMPARE(values(model.data(), kValueRole), QStringList({"0", "1", "2", "3", "5"}));
}

void TestSortByFunction::scriptFunction_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("function");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("expected");

    // Rows: i0 = 3, i1 = 1, i2 = (none), i3 = 2
    QTest::newRow("less ascending") << "less.js" << "less" << true << idList("i1 i3 i0 i2");
    QTest::newRow("less descending") << "less.js" << "less" << false << idList("i0 i3 i1 i2");
    QTest::newRow("greater ascending orders from greatest") << "greater.js" << "greater" << true << idList("i0 i3 i1 i2");
    QTest::newRow("greater descending") << "greater.js" << "greater" << false << idList("i1 i3 i0 i2");
    // An undefined function answers undefined, i.e. false: the sort goes on.
    QTest::newRow("missing function ascending reverses") << "less.js" << "nothing" << true << idList("i3 i1 i0 i2");
    QTest::newRow("missing function descending keeps") << "less.js" << "nothing" << false << idList("i0 i1 i3 i2");
    QTest::newRow("syntax error ascending reverses") << "syntaxerror.js" << "less" << true << idList("i3 i1 i0 i2");
    QTest::newRow("syntax error descending keeps") << "syntaxerror.js" << "less" << false << idList("i0 i1 i3 i2");
    // A thrown error is the call's answer, and an object reads as true.
    QTest::newRow("throwing function ascending keeps") << "throws.js" << "fails" << true << idList("i0 i1 i3 i2");
    QTest::newRow("throwing function descending reverses") << "throws.js" << "fails" << false << idList("i3 i1 i0 i2");
}

void TestSortByFunction::scriptFunction()
{
    QFETCH(QString, file);
    QFETCH(QString, function);
    QFETCH(bool, ascending);
    QFETCH(QStringList, expected);
    ModelTesters::expect({ModelTesters::FunctionSortLoneLayout, ModelTesters::ScriptSortLoneReset});

    // Given
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, QVariant(), 2}));
    SignalLog log(model.data());
    // When
    model->SortByRoleByScriptFunction(kValueRole, ascending, compareFile(file.toLatin1().constData()), function);
    // Then: a reset end with no reset begin
    QCOMPARE(ids(model.data()), expected);
    QCOMPARE(log.take(), kScriptSortLog);
}

void TestSortByFunction::scriptNameForm()
{
    ModelTesters::expect({ModelTesters::FunctionSortLoneLayout, ModelTesters::ScriptSortLoneReset});
    QScopedPointer<XOLATreeModel> model(modelWithValues({"b", "c", "a", "b"}));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(QStringLiteral("valueRole"), false, compareFile("less.js"), QStringLiteral("less"));
    QCOMPARE(ids(model.data()), idList("i1 i0 i3 i2"));
    QCOMPARE(log.take(), kScriptSortLog);
}

void TestSortByFunction::scriptUnknownRoleNameReadsRoleZero()
{
    ModelTesters::expect({ModelTesters::FunctionSortLoneLayout, ModelTesters::ScriptSortLoneReset});
    // No row has a value for role 0: every row keeps its place.
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(QStringLiteral("noSuchRole"), true, compareFile("less.js"), QStringLiteral("less"));
    QCOMPARE(ids(model.data()), idList("i0 i1 i2 i3"));
    QCOMPARE(log.take(), kScriptSortLog);
}

void TestSortByFunction::scriptMissingFileDoesNothing()
{
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(kValueRole, true, compareFile("missing.js"), QStringLiteral("less"));
    model->SortByRoleByScriptFunction(QStringLiteral("valueRole"), true, compareFile("missing.js"), QStringLiteral("less"));
    QVERIFY(log.take().isEmpty());
    QCOMPARE(ids(model.data()), idList("i0 i1 i2 i3"));
}

void TestSortByFunction::scriptErrorValueDoesNothing()
{
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(kValueRole, true, compareFile("errorvalue.js"), QStringLiteral("less"));
    QVERIFY(log.take().isEmpty());
    QCOMPARE(ids(model.data()), idList("i0 i1 i2 i3"));
}

void TestSortByFunction::scriptEmptyNamesDoNothing()
{
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(kValueRole, true, QString(), QStringLiteral("less"));
    model->SortByRoleByScriptFunction(kValueRole, true, compareFile("less.js"), QString());
    QVERIFY(log.take().isEmpty());
    QCOMPARE(ids(model.data()), idList("i0 i1 i2 i3"));
}

void TestSortByFunction::scriptOnEmptyModelStillEmits()
{
    ModelTesters::expect({ModelTesters::FunctionSortLoneLayout, ModelTesters::ScriptSortLoneReset,
                          ModelTesters::EmptySortDataChanged});
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(kValueRole, true, compareFile("less.js"), QStringLiteral("less"));
    QCOMPARE(log.take(), QStringList({"dataChanged(-1,-1)", "layoutChanged()", "modelReset()"}));
}

void TestSortByFunction::scriptOnEmptyModelWithMissingFileDoesNothing()
{
    QScopedPointer<XOLATreeModel> model(createModel(0, extendedRoleNames()));
    SignalLog log(model.data());
    model->SortByRoleByScriptFunction(kValueRole, true, compareFile("missing.js"), QStringLiteral("less"));
    QVERIFY(log.take().isEmpty());
}

void TestSortByFunction::scriptLeavesKeepSortingAlone()
{
    ModelTesters::expect({ModelTesters::FunctionSortLoneLayout, ModelTesters::ScriptSortLoneReset});
    QScopedPointer<XOLATreeModel> model(modelWithValues({3, 1, 2, 0}));
    model->SortByRoleAndKeep(kValueRole, false);
    model->SortByRoleByScriptFunction(kValueRole, true, compareFile("less.js"), QStringLiteral("less"));
    QCOMPARE(values(model.data(), kValueRole), QStringList({"0", "1", "2", "3"}));
    QCOMPARE(model->sortFlag(), int(IXOLATreeModel::KeepSorting));
    model->AppendItem(new ValueItem("x", "x", 5));
    QCOMPARE(values(model.data(), kValueRole), QStringList({"5", "3", "2", "1", "0"}));
}

QTEST_GUILESS_MAIN(TestSortByFunction)

#include "tst_sortbyfunction.moc"
