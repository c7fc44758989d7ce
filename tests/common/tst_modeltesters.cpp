// The model testers every model and view suite attaches (ModelTesters): each
// departure is what the testers find for an operation that makes it, with the
// same expectations on Qt 5 and Qt 6; a case fails when it makes a departure it
// did not declare, when a declared departure never shows, and when another
// departure, or another kind of model, stands in for the declared one.

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "ModelTesters.h"
#include "PagingModelImp.h"
#include "PartialModel.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace TestSupport;

namespace {

const int ValueRole = ValueItem::ValueRole;
const int GroupRole = ValueItem::GroupRole;
const int TextRole = ValueItem::TextRole;

ValueItem* member(const QString& id, int value, const QString& group)
{
    auto* item = new ValueItem(id, QStringLiteral("name-") + id, value);
    item->setExtra(GroupRole, group);
    item->setExtra(TextRole, value % 2 ? QStringLiteral("odd") : QStringLiteral("even"));
    return item;
}

//! A source of rows i0..i<n-1> (value i, groups x, y, z in turn), filled one
//! row at a time, and the views a row of the tables asks for. Made while a case
//! is open, the source is watched; the views are watched by watch().
struct World
{
    explicit World(int rows)
    {
        source.reset(createModel(0, extendedRoleNames()));
        const char* groups[] = {"x", "y", "z"};
        for (int i = 0; i < rows; ++i)
            source->AppendItem(member(QStringLiteral("i%1").arg(i), i, QString::fromLatin1(groups[i % 3])));
    }
    ~World()
    {
        filter.reset();
        group.reset();
        paging.reset();
        source.reset();
        flushDeferredDeletes();
    }

    FilterModelImp* filterAboveTwo()
    {
        const QVariantList rules{QVariantMap{{"RoleName", "valueRole"}, {"Rule", IXOLATreeModel::Gt}, {"Value", 2}}};
        filter.reset(ModelTesters::watch(qobject_cast<FilterModelImp*>(source->GetFilterModel(rules))));
        return filter.get();
    }
    GroupModelImp* groupByGroup()
    {
        group.reset(ModelTesters::watch(qobject_cast<GroupModelImp*>(source->GetGroupModel(GroupRole))));
        return group.get();
    }
    PagingModelImp* pagesOf(uint perPage)
    {
        paging.reset(ModelTesters::watch(qobject_cast<PagingModelImp*>(source->GetPagingModel(perPage))));
        return paging.get();
    }
    PartialModel* window(int count) { return ModelTesters::watch(qobject_cast<PartialModel*>(source->GetPartialModel(count))); }

    std::unique_ptr<XOLATreeModel> source;
    std::unique_ptr<FilterModelImp> filter;
    std::unique_ptr<GroupModelImp> group;
    std::unique_ptr<PagingModelImp> paging;
};

using Operation = std::function<void(World&)>;

QString compareFile(const char* name)
{
    return QStringLiteral(XOLA_TEST_DATA_DIR) + QStringLiteral("/compare/") + QLatin1String(name);
}

//! Runs the operation in a case of its own that declares the departures; what
//! finishCase() answers.
QString runCase(int rows, const Operation& given, const Operation& operation, const ModelTesters::Departures& declared)
{
    ModelTesters::startCase();
    World world(rows);
    given(world);
    ModelTesters::expect(declared);
    operation(world);
    // The case ends before its models go, so that tearing them down is no part of it.
    return ModelTesters::finishCase();
}

const Operation nothing = [](World&) {};

} // namespace

Q_DECLARE_METATYPE(Operation)

//! Cases the way the suites write them (init() and cleanup()), run in a process
//! of their own by TestModelTesters::failingCasesFailTheirSuite: two of them
//! fail.
class FailingCases : public QObject
{
    Q_OBJECT

private slots:
    void init() { ModelTesters::startCase(); }
    void cleanup()
    {
        flushDeferredDeletes();
        const QString findings = ModelTesters::finishCase();
        QVERIFY2(findings.isEmpty(), qPrintable(findings));
    }

    void undeclaredDeparture()
    {
        std::unique_ptr<XOLATreeModel> model(createModel());
        appendEach(model.get(), items({"a", "b", "c"}));
        QVERIFY(model->PrependItem(item("p")));
    }

    void declaredDepartureThatDoesNotHappen()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        std::unique_ptr<XOLATreeModel> model(createModel());
        appendEach(model.get(), items({"a", "b", "c"}));
    }

    void declaredDeparture()
    {
        ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        std::unique_ptr<XOLATreeModel> model(createModel());
        appendEach(model.get(), items({"a", "b", "c"}));
        QVERIFY(model->PrependItem(item("p")));
    }

    void standardProtocol()
    {
        std::unique_ptr<XOLATreeModel> model(createModel());
        appendEach(model.get(), items({"a", "b", "c"}));
        QVERIFY(model->InsertItem(0, item("p")));
        QVERIFY(model->RemoveOne(QStringLiteral("b")));
    }
};

class TestModelTesters : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        // A case left open by a failed check ends here.
        if (ModelTesters::caseOpen())
            ModelTesters::finishCase();
        flushDeferredDeletes();
    }

    void everyDepartureIsFoundAndCanBeDeclared_data();
    void everyDepartureIsFoundAndCanBeDeclared();
    void standardOperationsFindNothing();
    void declaredDepartureThatDoesNotHappenFails();
    void anotherDepartureDoesNotStandIn();
    void departureOfAnotherKindOfModelDoesNotStandIn();
    void pairingIsCheckedTheSameOnEveryQt();
    void modelsMayGoBeforeTheCaseEnds();
    void nothingIsWatchedOutsideACase();
    void failingCasesFailTheirSuite();
};

void TestModelTesters::everyDepartureIsFoundAndCanBeDeclared_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<Operation>("given");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<ModelTesters::Departures>("departures");

    using D = ModelTesters::Departures;
    QTest::newRow("prepend onto three rows")
        << 3 << nothing << Operation([](World& w) { w.source->PrependItem(member("p", 0, "x")); })
        << D{ModelTesters::PrependAtOldEnd};
    QTest::newRow("list append")
        << 3 << nothing << Operation([](World& w) { w.source->AppendItemsList({member("p", 0, "x"), member("q", 1, "x")}); })
        << D{ModelTesters::ListLoadAfterChange};
    QTest::newRow("in-place replacement by fewer rows")
        << 3 << nothing << Operation([](World& w) { w.source->ReplaceItemsListEx({member("p", 0, "x")}); })
        << D{ModelTesters::ListLoadAfterChange};
    QTest::newRow("a row enters a filter view")
        << 3 << Operation([](World& w) { w.filterAboveTwo(); })
        << Operation([](World& w) { w.source->AppendItem(member("p", 9, "x")); }) << D{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("a group view regroups")
        << 3 << Operation([](World& w) { w.groupByGroup(); })
        << Operation([](World& w) { w.group->UpdateGroupRole(TextRole); }) << D{ModelTesters::GroupRebuildAfterChange};
    QTest::newRow("a page move to the short last page")
        << 7 << Operation([](World& w) { w.pagesOf(3); }) << Operation([](World& w) { w.paging->setPage(2); })
        << D{ModelTesters::PagingRowsAfterChange};
    QTest::newRow("the rows of a page's source all go")
        << 3 << Operation([](World& w) { w.pagesOf(10); }) << Operation([](World& w) { w.source->RemoveAll(); })
        << D{ModelTesters::PagingRowsAfterChange, ModelTesters::PagingRefreshesEmptyPage};
    QTest::newRow("the window gets a new size")
        << 10 << Operation([](World& w) { w.window(4); }) << Operation([](World& w) { w.source->SetPartialModelCount(6); })
        << D{ModelTesters::WindowRowsAfterChange};
    QTest::newRow("the source shrinks under the window's first row")
        << 10 << Operation([](World& w) {
               w.source->GetPartialModel(4);
               w.source->SetFirstPartialModelRow(8);
               w.window(4);
           })
        << Operation([](World& w) { w.source->Remove(3, 9); }) << D{ModelTesters::WindowNegativeCount};
    QTest::newRow("the window of an empty source moves")
        << 0 << Operation([](World& w) { w.window(4); }) << Operation([](World& w) { w.source->SetFirstPartialModelRow(5); })
        << D{ModelTesters::WindowChangesPastItsRows};
    QTest::newRow("sort by a script function")
        << 3 << nothing << Operation([](World& w) {
               w.source->SortByRoleByScriptFunction(ValueRole, true, compareFile("greater.js"), QStringLiteral("greater"));
           })
        << D{ModelTesters::ScriptSortLoneReset, ModelTesters::FunctionSortLoneLayout};
    QTest::newRow("sort by a QML function")
        << 3 << nothing << Operation([](World& w) {
               w.source->SortByRoleByQMLFunction(ValueRole, true, compareFile("less.qml"), QStringLiteral("less"));
           })
        << D{ModelTesters::FunctionSortLoneLayout};
    QTest::newRow("sort an empty model by rules")
        << 0 << nothing << Operation([](World& w) { w.source->SortByRules({QVariantMap{{"RoleName", "nameRole"}}}); })
        << D{ModelTesters::EmptySortDataChanged};
    QTest::newRow("a move resets the source, its views pass the reset on")
        << 3 << Operation([](World& w) { w.filterAboveTwo(); }) << Operation([](World& w) { w.source->MoveRow(0, 2); })
        << D{ModelTesters::ViewsForwardLoneEnds};
}

void TestModelTesters::everyDepartureIsFoundAndCanBeDeclared()
{
    QFETCH(int, rows);
    QFETCH(Operation, given);
    QFETCH(Operation, operation);
    QFETCH(ModelTesters::Departures, departures);
    // Declared, the departures pass
    QCOMPARE(runCase(rows, given, operation, departures), QString());
    // Undeclared, the testers' findings fail the case
    const QString undeclared = runCase(rows, given, operation, {});
    QVERIFY2(undeclared.startsWith(QLatin1String("Model testers found what the case did not declare:")),
             qPrintable(undeclared));
    // Each one is needed: with any one of them left out, the case fails
    for (ModelTesters::Departure departure : qAsConst(departures)) {
        ModelTesters::Departures others = departures;
        others.removeAll(departure);
        const QString partly = runCase(rows, given, operation, others);
        QVERIFY2(partly.startsWith(QLatin1String("Model testers found what the case did not declare:")),
                 qPrintable(ModelTesters::name(departure) + QLatin1String(": ") + partly));
    }
}

void TestModelTesters::standardOperationsFindNothing()
{
    // Given a source with every view, each watched
    const Operation views([](World& w) {
        w.filterAboveTwo();
        w.groupByGroup();
        w.pagesOf(3);
        w.window(4);
        w.source->SetFirstPartialModelRow(1);
    });
    // When operations that follow Qt's protocol run, the testers find nothing
    const QString findings = runCase(8, views, [](World& w) {
        w.source->AppendItem(member("n", 0, "x"));
        w.source->InsertItem(1, member("m", 1, "y"));
        QVERIFY(w.source->RemoveOne(QStringLiteral("i6")));
        qobject_cast<ValueItem*>(w.source->FindItem(QStringLiteral("i4")))->setExtra(ValueRole, 40);
        w.paging->setPage(1);
        w.source->SetFirstPartialModelRow(3);
    }, {});
    QCOMPARE(findings, QString());
}

void TestModelTesters::declaredDepartureThatDoesNotHappenFails()
{
    const QString findings = runCase(3, nothing, [](World& w) { w.source->AppendItem(member("p", 0, "x")); },
                                     {ModelTesters::PrependAtOldEnd});
    QCOMPARE(findings, QStringLiteral("The case declared departures the model testers did not find:\n  PrependAtOldEnd"));
}

void TestModelTesters::anotherDepartureDoesNotStandIn()
{
    // A list load declared, a single prepend made
    const QString findings = runCase(3, nothing, [](World& w) { w.source->PrependItem(member("p", 0, "x")); },
                                     {ModelTesters::ListLoadAfterChange});
    QCOMPARE(findings, QStringLiteral("Model testers found what the case did not declare:\n"
                                      "  model #1: model->data(model->index(start - 1, 0, c.parent)) == c.last"
                                      " (1 times, first at rowsInserted())\n"
                                      "The case declared departures the model testers did not find:\n"
                                      "  ListLoadAfterChange"));
}

void TestModelTesters::departureOfAnotherKindOfModelDoesNotStandIn()
{
    // The source's own list load is no filter view's entry, though the tester
    // makes the same complaint about both
    const QString load = runCase(3, Operation([](World& w) { w.filterAboveTwo(); }),
                                 [](World& w) { w.source->AppendItemsList({member("p", 0, "x")}); },
                                 {ModelTesters::FilterEntryAfterChange});
    QCOMPARE(load, QStringLiteral("Model testers found what the case did not declare:\n"
                                  "  model #1: model->rowCount(parent) == c.oldSize + (end - start + 1)"
                                  " (1 times, first at rowsInserted())\n"
                                  "The case declared departures the model testers did not find:\n"
                                  "  FilterEntryAfterChange"));
    // And a lone notice the model itself sends is none that its views pass on
    const QString lone = runCase(3, nothing, [](World& w) { emit w.source->layoutChanged(); },
                                 {ModelTesters::ViewsForwardLoneEnds});
    QCOMPARE(lone, QStringLiteral("Model testers found what the case did not declare:\n"
                                  "  model #1: layoutChanged() without layoutAboutToBeChanged()"
                                  " (1 times, first at layoutChanged())\n"
                                  "The case declared departures the model testers did not find:\n"
                                  "  ViewsForwardLoneEnds"));
}

void TestModelTesters::pairingIsCheckedTheSameOnEveryQt()
{
    // Qt 6's tester pairs begin and end notices, Qt 5's does not; the findings
    // are this class's own and read the same on both.
    const QString findings = runCase(3, nothing, [](World& w) {
        emit w.source->layoutAboutToBeChanged();
        emit w.source->layoutAboutToBeChanged();
        emit w.source->layoutChanged();
        QMetaObject::invokeMethod(w.source.get(), "modelReset");
    }, {});
    QCOMPARE(findings, QStringLiteral("Model testers found what the case did not declare:\n"
                                      "  model #1: layoutAboutToBeChanged() while layoutAboutToBeChanged() is open"
                                      " (1 times, first at layoutAboutToBeChanged())\n"
                                      "  model #1: modelReset() without modelAboutToBeReset()"
                                      " (1 times, first at modelReset())"));
}

void TestModelTesters::modelsMayGoBeforeTheCaseEnds()
{
    // A model and a view that go half way through take their testers with them;
    // what they sent before still counts
    ModelTesters::startCase();
    std::unique_ptr<XOLATreeModel> model(createModel());
    appendEach(model.get(), items({"a", "b"}));
    std::unique_ptr<QObject> filter(ModelTesters::watch(model->GetFilterModel()));
    model->PrependItem(item("p"));
    filter.reset();
    model.reset();
    flushDeferredDeletes();
    std::unique_ptr<XOLATreeModel> later(createModel());
    later->AppendItem(item("c"));
    ModelTesters::expect(ModelTesters::PrependAtOldEnd);
    QCOMPARE(ModelTesters::finishCase(), QString());
}

void TestModelTesters::nothingIsWatchedOutsideACase()
{
    QVERIFY(!ModelTesters::caseOpen());
    std::unique_ptr<XOLATreeModel> model(createModel());
    QCOMPARE(ModelTesters::watch(model.get()), model.get());
    model->PrependItem(item("a"));
    model->PrependItem(item("b"));
    // A case opened afterwards did not see the model
    ModelTesters::startCase();
    model->PrependItem(item("c"));
    QCOMPARE(ModelTesters::finishCase(), QString());
}

void TestModelTesters::failingCasesFailTheirSuite()
{
    // Given the cases of FailingCases, run by this same program in a process of its own
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XOLA_RUN_FAILING_CASES"), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    // When they run
    process.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(process.waitForFinished(-1));
    const QString output = QString::fromLocal8Bit(process.readAll());
    // Then the two cases the testers disagree with fail, each saying why, and the others pass
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY2(process.exitCode() == 2, qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("FAIL!  : FailingCases::undeclaredDeparture() 'findings.isEmpty()' returned FALSE. "
                                           "(Model testers found what the case did not declare:\n"
                                           "  model #1: model->data(model->index(start - 1, 0, c.parent)) == c.last")),
             qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("FAIL!  : FailingCases::declaredDepartureThatDoesNotHappen() 'findings.isEmpty()' "
                                           "returned FALSE. (The case declared departures the model testers did not find:\n"
                                           "  ListLoadAfterChange)")),
             qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("PASS   : FailingCases::declaredDeparture()")), qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("PASS   : FailingCases::standardProtocol()")), qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("Totals: 4 passed, 2 failed")), qPrintable(output));
}

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (qEnvironmentVariableIsSet("XOLA_RUN_FAILING_CASES")) {
        FailingCases cases;
        return QTest::qExec(&cases, argc, argv);
    }
    TestModelTesters test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_modeltesters.moc"
