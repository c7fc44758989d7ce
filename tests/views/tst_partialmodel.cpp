#include "PartialModel.h"
#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtTest/QtTest>

#include <memory>

using namespace TestSupport;

namespace {

using ModelPtr = std::unique_ptr<XOLATreeModel>;

QStringList rowIds(int first, int count)
{
    QStringList result;
    for (int i = first; i < first + count; ++i)
        result << QStringLiteral("r%1").arg(i);
    return result;
}

XOLATreeModel* makeSource(int rows)
{
    XOLATreeModel* source = createModel(0, extendedRoleNames());
    appendEach(source, items(rowIds(0, rows)));
    return source;
}

//! The model's window, with a size of count.
PartialModel* window(IXOLATreeModel* model, int count)
{
    return ModelTesters::watch(qobject_cast<PartialModel*>(model->GetPartialModel(count)));
}

//! Ids of the rows the window shows, read through data().
QStringList shownIds(const PartialModel* partial)
{
    QStringList result;
    for (int row = 0; row < partial->rowCount(); ++row)
        result << partial->data(partial->index(row, 0), XOLATreeItem::IdRole).toString();
    return result;
}

QString changed(int first, int last)
{
    return QStringLiteral("dataChanged(%1,%2)").arg(first).arg(last);
}

QStringList inserted(int first, int last)
{
    return {QStringLiteral("rowsAboutToBeInserted(%1,%2)").arg(first).arg(last),
            QStringLiteral("rowsInserted(%1,%2)").arg(first).arg(last)};
}

QStringList removed(int first, int last)
{
    return {QStringLiteral("rowsAboutToBeRemoved(%1,%2)").arg(first).arg(last),
            QStringLiteral("rowsRemoved(%1,%2)").arg(first).arg(last)};
}

const QStringList windowReset({"modelAboutToBeReset()", "modelReset()", "rowCountChanged()"});
const QString countChanged = QStringLiteral("rowCountChanged()");

} // namespace

class TestPartialModel : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    // A window left past row 0 when its source goes counts below zero while the
    // source empties on its way out: the cases that leave it there declare
    // WindowNegativeCount for that alone.
    void windowOverTheSource()
    {
        ModelTesters::expect(ModelTesters::WindowRowsAfterChange);
        // Given a source of 10 rows and its (still empty) window
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 0);
        QVERIFY(partial);
        QCOMPARE(partial->rowCount(), 0);
        SignalLog log(partial);
        // When the window is given a size of 4
        QCOMPARE(source->GetPartialModel(4), static_cast<QObject*>(partial));
        // Then four rows are announced (without a count notice) and shown from row 0
        QCOMPARE(log.take(), inserted(0, 3));
        QCOMPARE(partial->rowCount(), 4);
        QCOMPARE(partial->GetPartialModelCount(), 4);
        QCOMPARE(partial->property("count").toInt(), 4);
        QCOMPARE(partial->data(partial->index(3, 0), XOLATreeItem::NameRole).toString(), QStringLiteral("name-r3"));
        QCOMPARE(shownIds(partial), rowIds(0, 4));
        QCOMPARE(partial->roleNames(), source->roleNames());
        QCOMPARE(partial->parent(), static_cast<QObject*>(source.get()));
        QCOMPARE(source->FirstPartialModelRow(), 0);
    }

    void firstRow_data()
    {
        QTest::addColumn<int>("startRow");
        QTest::addColumn<int>("newRow");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<int>("expectedFirst");
        QTest::addColumn<QStringList>("expectedIds");
        QTest::addColumn<ModelTesters::Departures>("departures");
        // 10 source rows, window of 4.
        QTest::newRow("within the source") << 0 << 2 << QStringList(changed(0, 3)) << 2 << rowIds(2, 4)
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
        QTest::newRow("near the end") << 0 << 8 << (QStringList(changed(0, 1)) + removed(2, 3) << countChanged) << 8
                                      << rowIds(8, 2)
            << ModelTesters::Departures{ModelTesters::WindowRowsAfterChange, ModelTesters::WindowNegativeCount};
        QTest::newRow("past the end clamps to the last row")
            << 0 << 50 << (QStringList(changed(0, 0)) + removed(1, 3) << countChanged) << 9 << rowIds(9, 1)
            << ModelTesters::Departures{ModelTesters::WindowRowsAfterChange, ModelTesters::WindowNegativeCount};
        QTest::newRow("negative clamps to 0") << 8 << -3 << (QStringList(changed(0, 3)) + inserted(2, 3) << countChanged)
                                              << 0 << rowIds(0, 4)
            << ModelTesters::Departures{ModelTesters::WindowRowsAfterChange};
        QTest::newRow("the current row") << 3 << 3 << QStringList() << 3 << rowIds(3, 4)
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
    }

    void firstRow()
    {
        QFETCH(int, startRow);
        QFETCH(int, newRow);
        QFETCH(QStringList, expectedLog);
        QFETCH(int, expectedFirst);
        QFETCH(QStringList, expectedIds);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(startRow);
        SignalLog log(partial);
        SignalLog sourceLog(source.get());
        source->SetFirstPartialModelRow(newRow);
        QCOMPARE(log.take(), expectedLog);
        // The model announces the row in every case
        QCOMPARE(sourceLog.take(), QStringList({"firstPartialModelRowChanged()"}));
        QCOMPARE(source->FirstPartialModelRow(), expectedFirst);
        QCOMPARE(partial->GetFirstPartialModelRow(), expectedFirst);
        QCOMPARE(shownIds(partial), expectedIds);
    }

    void firstRowOnAnEmptySource()
    {
        ModelTesters::expect(ModelTesters::WindowChangesPastItsRows);
        ModelPtr source(makeSource(0));
        PartialModel* partial = window(source.get(), 4);
        SignalLog log(partial);
        // Clamped back to row 0; the refresh still names row 0
        source->SetFirstPartialModelRow(5);
        QCOMPARE(log.take(), QStringList(changed(0, 0)));
        QCOMPARE(source->FirstPartialModelRow(), 0);
        QCOMPARE(partial->rowCount(), 0);
    }

    void firstRowAsAProperty()
    {
        ModelTesters::expect(ModelTesters::WindowNegativeCount);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        QVERIFY(source->setProperty("firstPartialModelRow", 5));
        QCOMPARE(source->property("firstPartialModelRow").toInt(), 5);
        QCOMPARE(shownIds(partial), rowIds(5, 4));
    }

    void count_data()
    {
        QTest::addColumn<int>("newCount");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedIds");
        // 10 source rows, window of 4 from row 0; the whole window is announced
        // as removed and inserted again, without a count notice.
        QTest::newRow("zero") << 0 << removed(0, 3) << QStringList();
        QTest::newRow("negative") << -2 << removed(0, 3) << QStringList();
        QTest::newRow("same size") << 4 << (removed(0, 3) + inserted(0, 3)) << rowIds(0, 4);
        QTest::newRow("larger") << 6 << (removed(0, 3) + inserted(0, 5)) << rowIds(0, 6);
        QTest::newRow("larger than the source") << 20 << (removed(0, 3) + inserted(0, 9)) << rowIds(0, 10);
    }

    void count()
    {
        QFETCH(int, newCount);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedIds);
        ModelTesters::expect(ModelTesters::WindowRowsAfterChange);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        SignalLog log(partial);
        source->SetPartialModelCount(newCount);
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(shownIds(partial), expectedIds);
    }

    void countWhileTheFirstRowIsPastTheEnd()
    {
        ModelTesters::expect({ModelTesters::WindowRowsAfterChange, ModelTesters::WindowNegativeCount});
        // Given a window whose first row the shrinking source left behind
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(8);
        QVERIFY(source->Remove(3, 9));
        QCOMPARE(partial->rowCount(), -5);
        SignalLog log(partial);
        // When a new size is given, one row is announced although none is shown
        source->GetPartialModel(5);
        QCOMPARE(log.take(), inserted(0, 0));
        QCOMPARE(partial->rowCount(), -5);
        QCOMPARE(shownIds(partial), QStringList());
        QVERIFY(!partial->data(partial->index(0, 0), XOLATreeItem::IdRole).isValid());
    }

    void sourceInsertions_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedIds");
        // 10 source rows, window of 4 over source rows 3..6.
        QTest::newRow("before the window") << 0 << windowReset << QStringList({"r2", "r3", "r4", "r5"});
        QTest::newRow("inside the window") << 5 << windowReset << QStringList({"r3", "r4", "x", "r5"});
        QTest::newRow("at the window's end") << 7 << windowReset << rowIds(3, 4);
        QTest::newRow("after the window") << 8 << QStringList() << rowIds(3, 4);
        QTest::newRow("appended") << 10 << QStringList() << rowIds(3, 4);
    }

    void sourceInsertions()
    {
        QFETCH(int, row);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedIds);
        ModelTesters::expect(ModelTesters::WindowNegativeCount);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(3);
        SignalLog log(partial);
        QVERIFY(source->InsertItem(row, item(QStringLiteral("x"))));
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(shownIds(partial), expectedIds);
    }

    void sourceRemovals_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedIds");
        // 10 source rows, window of 4.
        QTest::newRow("inside the window") << 3 << "r4" << windowReset << QStringList({"r3", "r5", "r6", "r7"});
        QTest::newRow("after the window") << 3 << "r9" << QStringList() << rowIds(3, 4);
        QTest::newRow("under a window at the end") << 6 << "r9" << windowReset << rowIds(6, 3);
    }

    void sourceRemovals()
    {
        QFETCH(int, first);
        QFETCH(QString, id);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedIds);
        ModelTesters::expect(ModelTesters::WindowNegativeCount);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(first);
        SignalLog log(partial);
        QVERIFY(source->RemoveOne(id));
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(shownIds(partial), expectedIds);
        // The window keeps its first row
        QCOMPARE(source->FirstPartialModelRow(), first);
    }

    void sourceClearedUnderTheWindow()
    {
        ModelTesters::expect({ModelTesters::WindowNegativeCount, ModelTesters::ListLoadAfterChange});
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(3);
        SignalLog log(partial);
        source->RemoveAll();
        QCOMPARE(log.take(), windowReset);
        QCOMPARE(shownIds(partial), QStringList());
        // Refilled, the window shows from its old first row again
        source->AppendItemsList(items(rowIds(0, 10)));
        QCOMPARE(log.take(), windowReset);
        QCOMPARE(shownIds(partial), rowIds(3, 4));
    }

    void sourceDataChanges_data()
    {
        QTest::addColumn<int>("top");
        QTest::addColumn<int>("bottom");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<ModelTesters::Departures>("departures");
        // 10 source rows, window of 4 over source rows 2..5: one notice per row.
        QTest::newRow("inside") << 3 << 3 << QStringList(changed(1, 1))
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
        QTest::newRow("before") << 0 << 1 << QStringList()
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
        QTest::newRow("after") << 6 << 9 << QStringList()
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
        QTest::newRow("across the start") << 0 << 3 << QStringList({changed(0, 0), changed(1, 1)})
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
        QTest::newRow("reversed") << 5 << 3 << QStringList()
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount};
        // Rows just past the window are reported under window rows 4 and 5.
        QTest::newRow("across the end") << 3 << 7
                                        << QStringList({changed(1, 1), changed(2, 2), changed(3, 3), changed(4, 4),
                                                        changed(5, 5)})
            << ModelTesters::Departures{ModelTesters::WindowNegativeCount, ModelTesters::WindowChangesPastItsRows};
    }

    void sourceDataChanges()
    {
        QFETCH(int, top);
        QFETCH(int, bottom);
        QFETCH(QStringList, expectedLog);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(2);
        SignalLog log(partial);
        partial->SourceModelDataChangedHandler(source->index(top, 0), source->index(bottom, 0));
        QCOMPARE(log.take(), expectedLog);
    }

    void itemChangeReachesTheWindow()
    {
        ModelTesters::expect(ModelTesters::WindowNegativeCount);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(2);
        SignalLog log(partial);
        qobject_cast<XOLATreeItem*>(source->FindItem(4))->SetName(QStringLiteral("four"));
        QCOMPARE(log.take(), QStringList(changed(2, 2)));
        QCOMPARE(partial->data(partial->index(2, 0), XOLATreeItem::NameRole).toString(), QStringLiteral("four"));
        qobject_cast<XOLATreeItem*>(source->FindItem(0))->SetName(QStringLiteral("zero"));
        QCOMPARE(log.take(), QStringList());
    }

    void lookupsAnswerInSourceTerms()
    {
        ModelTesters::expect(ModelTesters::WindowNegativeCount);
        ModelPtr source(makeSource(10));
        PartialModel* partial = window(source.get(), 4);
        source->SetFirstPartialModelRow(2);
        // FindItemRow gives the source's row
        QCOMPARE(partial->FindItemRow(QStringLiteral("r7")), 7);
        QCOMPARE(partial->FindItemRow(QStringLiteral("r3")), 3);
        QCOMPARE(partial->FindItemRow(QStringLiteral("nope")), -1);
        // get() is shifted by the first row but not bounded by the window
        QCOMPARE(partial->get(0).value(QStringLiteral("idRole")).toString(), QStringLiteral("r2"));
        QCOMPARE(partial->get(6).value(QStringLiteral("idRole")).toString(), QStringLiteral("r8"));
        QVERIFY(partial->get(8).isEmpty());
        // data() is bounded by the window
        QVERIFY(!partial->data(partial->index(4, 0), XOLATreeItem::IdRole).isValid());
    }

    void withoutSource()
    {
        ModelTesters::expect(ModelTesters::WindowRowsAfterChange);
        PartialModel partial(nullptr, nullptr);
        ModelTesters::watch(&partial);
        SignalLog log(&partial);
        QCOMPARE(partial.rowCount(), 0);
        partial.SetPartialModelCount(3);
        QCOMPARE(log.take(), inserted(0, 2));
        QCOMPARE(partial.rowCount(), 3);
        QVERIFY(!partial.data(partial.index(0, 0), XOLATreeItem::IdRole).isValid());
        QVERIFY(partial.get(0).isEmpty());
        QCOMPARE(partial.FindItemRow(QStringLiteral("a")), -1);
        partial.SetFirstPartialModelRow(2);
        QCOMPARE(partial.GetFirstPartialModelRow(), 0);
        QCOMPARE(log.take(), QStringList());
        partial.SetPartialModelCount(0);
        QCOMPARE(log.take(), removed(0, 2));
    }

    void resetAndLayoutAreRelayed()
    {
        ModelTesters::expect(ModelTesters::ViewsForwardLoneEnds);
        ModelPtr source(makeSource(5));
        PartialModel* partial = window(source.get(), 2);
        SignalLog log(partial);
        source->MoveRow(0, 4);
        QCOMPARE(log.take(), QStringList({"modelReset()"}));
        QCOMPARE(shownIds(partial), QStringList({"r1", "r2"}));
        QVERIFY(QMetaObject::invokeMethod(source.get(), "layoutAboutToBeChanged"));
        QVERIFY(QMetaObject::invokeMethod(source.get(), "layoutChanged"));
        QCOMPARE(log.take(), QStringList({"layoutChanged()"}));
    }

    void windowOverAPagingView()
    {
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        // Given page 1 of 25 rows at 10 per page, and a window of 3 from its row 2
        ModelPtr source(makeSource(25));
        std::unique_ptr<XOLATreeModel> paging(
            ModelTesters::watch(qobject_cast<XOLATreeModel*>(source->GetPagingModel(10))));
        paging->setPage(1);
        PartialModel* partial = window(paging.get(), 3);
        paging->SetFirstPartialModelRow(2);
        QCOMPARE(shownIds(partial), rowIds(12, 3));
        SignalLog log(partial);
        // When the page moves to the short last page
        paging->setPage(2);
        // Then the window relays the page's refresh row by row, then resets for its shrinking
        QCOMPARE(log.take(), QStringList({changed(0, 0), changed(1, 1), changed(2, 2)}) + windowReset);
        QCOMPARE(shownIds(partial), rowIds(22, 3));
        partial = nullptr;
        paging.reset();
    }

    void windowOverAGroupView()
    {
        ModelTesters::expect(ModelTesters::WindowNegativeCount);
        ModelPtr source(createModel(0, extendedRoleNames()));
        QList<XOLATreeItem*> list;
        for (int i = 0; i < 6; ++i) {
            auto* member = new ValueItem(QStringLiteral("m%1").arg(i), QStringLiteral("n%1").arg(i));
            member->setExtra(ValueItem::GroupRole, QStringLiteral("g%1").arg(i));
            list << member;
        }
        appendEach(source.get(), list);
        std::unique_ptr<XOLATreeModel> groups(
            ModelTesters::watch(qobject_cast<XOLATreeModel*>(source->GetGroupModel(ValueItem::GroupRole))));
        PartialModel* partial = window(groups.get(), 2);
        groups->SetFirstPartialModelRow(3);
        QCOMPARE(shownIds(partial), QStringList({"g3", "g4"}));
        SignalLog log(partial);
        // A group leaving before the window resets it
        QVERIFY(source->RemoveOne(QStringLiteral("m0")));
        QCOMPARE(log.take(), windowReset);
        QCOMPARE(shownIds(partial), QStringList({"g4", "g5"}));
        groups.reset();
    }

    void windowOverAFilterView()
    {
        ModelTesters::expect({ModelTesters::FilterEntryAfterChange, ModelTesters::WindowNegativeCount});
        auto match = [](const QObject* object, const QVariant& rule) {
            auto* item = qobject_cast<const XOLATreeItem*>(object);
            return item && item->id().startsWith(rule.toString());
        };
        ModelPtr source(createModel(0, extendedRoleNames(), nullptr, match));
        appendEach(source.get(), items({"a0", "b0", "a1", "a2", "b1", "a3"}));
        std::unique_ptr<XOLATreeModel> filter(
            ModelTesters::watch(qobject_cast<XOLATreeModel*>(source->GetFilterModelByUserDefinedRules(QVariant("a")))));
        QVERIFY(filter);
        PartialModel* partial = window(filter.get(), 2);
        filter->SetFirstPartialModelRow(1);
        QCOMPARE(shownIds(partial), QStringList({"a1", "a2"}));
        SignalLog log(partial);
        // A passing item appended to the source lands after the window
        source->AppendItem(item(QStringLiteral("a4")));
        QCOMPARE(log.take(), QStringList());
        // A removal inside the window resets it
        QVERIFY(source->RemoveOne(QStringLiteral("a1")));
        QCOMPARE(log.take(), windowReset);
        QCOMPARE(shownIds(partial), QStringList({"a2", "a3"}));
        filter.reset();
    }
};

QTEST_GUILESS_MAIN(TestPartialModel)

#include "tst_partialmodel.moc"
