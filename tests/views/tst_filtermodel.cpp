// The filter view: construction, live following of its source with the whole
// notice sequences the view sends, rebuilds, child views and the Find family.

#include "FilterModelImp.h"
#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QPointer>
#include <QtCore/QScopedPointer>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

using TestSupport::ids;

namespace {

QVariantMap rule(const QString& roleName, int op, const QVariant& value)
{
    return {{"RoleName", roleName}, {"Rule", op}, {"Value", value}};
}

//! The rules most tests use: valueRole above 10.
QVariantList aboveTen()
{
    return {rule("valueRole", IXOLATreeModel::Gt, 10)};
}

ValueItem* valueItem(const QString& id, const QVariant& value, QObject* childModel = nullptr)
{
    return new ValueItem(id, QStringLiteral("name-") + id, value, childModel);
}

XOLATreeModel* newSource(int flags = 0, PF_MATCH_ITEM match = nullptr)
{
    return TestSupport::createModel(flags, TestSupport::extendedRoleNames(), nullptr, match);
}

//! a 20, b 5, c 30, d 1: a view of "above ten" lists a and c.
XOLATreeModel* standardSource(int flags = 0, PF_MATCH_ITEM match = nullptr)
{
    XOLATreeModel* source = newSource(flags, match);
    TestSupport::appendEach(source, {valueItem("a", 20), valueItem("b", 5), valueItem("c", 30), valueItem("d", 1)});
    return source;
}

FilterModelImp* filterOf(IXOLATreeModel* source, const QVariantList& rules = aboveTen(), bool orAllRules = true,
                         int newItemPos = IXOLATreeModel::POS_TAIL)
{
    return ModelTesters::watch(qobject_cast<FilterModelImp*>(source->GetFilterModel(rules, orAllRules, newItemPos)));
}

ValueItem* sourceItem(IXOLATreeModel* source, const QString& id)
{
    return qobject_cast<ValueItem*>(source->FindItem(id, true));
}

void setValue(IXOLATreeModel* source, const QString& id, const QVariant& value)
{
    sourceItem(source, id)->setExtra(ValueItem::ValueRole, value);
}

//! Changes a value without any notice, for tests that announce changes themselves.
void setValueSilently(IXOLATreeModel* source, const QString& id, const QVariant& value)
{
    ValueItem* item = sourceItem(source, id);
    const bool blocked = item->blockSignals(true);
    item->setExtra(ValueItem::ValueRole, value);
    item->blockSignals(blocked);
}

const QStringList kNoNotices;

//! Appends items that never pass "above ten", so that a change over the whole
//! source covers many rows.
void appendFailingFiller(XOLATreeModel* source, int count)
{
    QList<XOLATreeItem*> filler;
    for (int i = 0; i < count; ++i)
        filler << valueItem(QStringLiteral("f%1").arg(i), 0);
    TestSupport::appendEach(source, filler);
}

void addPaddingRows()
{
    QTest::addColumn<int>("padding");
    // A few changed rows are followed item by item, many against one snapshot
    // of the view; both must send the same notices.
    QTest::newRow("few rows") << 0;
    QTest::newRow("many rows") << 200;
}

} // namespace

class TestFilterModel : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void construction_withoutArgumentsListsEverything();
    void construction_listsPassingItemsInSourceOrder();
    void construction_withoutSource();

    void sourceAppendItem_data();
    void sourceAppendItem();
    void sourceInsertItem_data();
    void sourceInsertItem();
    void sourcePrependItem_readsTheAnnouncedRow();
    void sourceAppendItemsList_data();
    void sourceAppendItemsList();
    void sourcePrependItemsList();
    void sourceReplaceItemsList();
    void sourceReplaceInPlace_viewDropsDeletedItems();
    void sourceRemoveOne_data();
    void sourceRemoveOne();
    void sourceRemoveIdList();
    void sourceRemoveRange();
    void sourceRemoveRange_keepingRemovedItemsIsNotAnnouncedById();
    void sourceRemoveAll();
    void sourceClearEmptiesView();
    void sourceRemoveAll_emptyViewStaysSilent();

    void valueChange_data();
    void valueChange();
    void valueChange_lastRowLeaves();
    void wholeRangeChange_removalsThenOneInsertion_data();
    void wholeRangeChange_removalsThenOneInsertion();
    void wholeRangeChange_eachRemovalNamesItsCurrentRow_data();
    void wholeRangeChange_eachRemovalNamesItsCurrentRow();
    void wholeRangeChange_listenerChangingTheViewMeanwhile();
    void wholeRangeChange_enteredItemReportsItsRowOnce();
    void rebuild_changedItemReportsItsRowOnce();

    void childModelChange_entersAndLeaves_data();
    void childModelChange_entersAndLeaves();
    void childModelChange_itemAddedLaterIsFollowed();
    void childModelChange_itemLeftBySourceIsIgnored();

    void keepSorting_onTheView();

    void updateFilterRules_sameRulesDoNothing();
    void updateFilterRules_rebuild_data();
    void updateFilterRules_rebuild();
    void updateFilterRules_plainModelRefuses();

    void userDefined_predicateFromConstruction();
    void userDefined_sameValueDoesNothing();
    void userDefined_withoutMatchFunctionListsEverything();

    void data_childModelRoleMakesNewChildViews();
    void data_otherRolesAndInvalidRows();
    void findFamily_answersFromOwnRows();

    void resetAndLayoutAreForwarded();
    void viewsNeverDeleteSourceItems();
    void filterOfFilter();
    void sourceDeletedBeforeView();

    void benchmark_wholeRangeChange();
};

// ---- construction -------------------------------------------------------------------

void TestFilterModel::construction_withoutArgumentsListsEverything()
{
    // Given a source with four rows
    QScopedPointer<XOLATreeModel> source(standardSource());
    // When a view is made with no arguments
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(qobject_cast<FilterModelImp*>(source->GetFilterModel())));
    // Then it lists every item, in source order, the same objects
    QVERIFY(view);
    QCOMPARE(ids(view.data()), QStringList({"a", "b", "c", "d"}));
    for (int row = 0; row < 4; ++row)
        QCOMPARE(view->FindItem(row), source->FindItem(row));
    QCOMPARE(view->filterRules(), QVariantList());
    QCOMPARE(view->orAllRules(), true);
    QCOMPARE(view->newItemPos(), int(IXOLATreeModel::POS_TAIL));
    QCOMPARE(view->flags(), 3);
    QCOMPARE(view->roleNames(), source->roleNames());
    QCOMPARE(view->parent(), static_cast<QObject*>(nullptr));
    QCOMPARE(QQmlEngine::objectOwnership(view.data()), QQmlEngine::JavaScriptOwnership);
    QCOMPARE(view->sourceModel(), static_cast<IXOLATreeModel*>(source.data()));
}

void TestFilterModel::construction_listsPassingItemsInSourceOrder()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    QCOMPARE(view->rowCount(), 2);
    // Every call makes a new view
    QScopedPointer<FilterModelImp> second(filterOf(source.data()));
    QVERIFY(second.data() != view.data());
    QCOMPARE(ids(second.data()), QStringList({"a", "c"}));
}

void TestFilterModel::construction_withoutSource()
{
    // A view without a source is empty, has the default role names, and all its
    // operations are harmless.
    FilterModelImp view(nullptr, aboveTen(), true, IXOLATreeModel::POS_TAIL);
    ModelTesters::watch(&view);
    QCOMPARE(view.rowCount(), 0);
    QCOMPARE(view.roleNames().size(), 3);
    QCOMPARE(view.ReGenFilterModel(), false);
    QCOMPARE(view.UpdateFilterRules({}, true), false);
    SignalLog log(&view);
    view.SourceModelItemAddedHandler(QModelIndex(), 0, 3);
    view.SourceModelDataChangedHandler(QModelIndex(), QModelIndex());
    view.SourceModelItemsRemovedHandler({"a"});
    view.SourceModelItemRemovedHandler("a");
    view.SourceModelAllItemRemovedHandler();
    view.ChildModelValueChangedHandler();
    QCOMPARE(log.take(), kNoNotices);
    QVERIFY(!view.data(view.index(0, 0), XOLATreeItem::IdRole).isValid());
}

// ---- following insertions ---------------------------------------------------------------

void TestFilterModel::sourceAppendItem_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("value");
    QTest::addColumn<QStringList>("notices");
    QTest::addColumn<QStringList>("viewIds");
    QTest::addColumn<ModelTesters::Departures>("departures");

    const QStringList atTail = {"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "rowCountChanged()"};
    const QStringList atHead = {"rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)", "rowCountChanged()"};
    QTest::newRow("tail, passes") << int(IXOLATreeModel::POS_TAIL) << 50 << atTail << QStringList({"a", "c", "x"})
        << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("tail, fails") << int(IXOLATreeModel::POS_TAIL) << 3 << kNoNotices << QStringList({"a", "c"})
        << ModelTesters::Departures();
    QTest::newRow("head, passes") << int(IXOLATreeModel::POS_HEAD) << 50 << atHead << QStringList({"x", "a", "c"})
        << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("head, fails") << int(IXOLATreeModel::POS_HEAD) << 3 << kNoNotices << QStringList({"a", "c"})
        << ModelTesters::Departures();
    QTest::newRow("unknown position drops it") << 5 << 50 << kNoNotices << QStringList({"a", "c"})
        << ModelTesters::Departures();
}

void TestFilterModel::sourceAppendItem()
{
    QFETCH(int, position);
    QFETCH(int, value);
    QFETCH(QStringList, notices);
    QFETCH(QStringList, viewIds);
    QFETCH(ModelTesters::Departures, departures);
    ModelTesters::expect(departures);

    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), aboveTen(), true, position));
    SignalLog log(view.data());
    // When the source appends x
    QVERIFY(source->AppendItem(valueItem("x", value)));
    // Then
    QCOMPARE(log.take(), notices);
    QCOMPARE(ids(view.data()), viewIds);
}

void TestFilterModel::sourceInsertItem_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QStringList>("notices");
    QTest::addColumn<QStringList>("viewIds");
    QTest::newRow("tail") << int(IXOLATreeModel::POS_TAIL)
        << QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "rowCountChanged()"})
        << QStringList({"a", "c", "x"});
    QTest::newRow("head") << int(IXOLATreeModel::POS_HEAD)
        << QStringList({"rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)", "rowCountChanged()"})
        << QStringList({"x", "a", "c"});
}

void TestFilterModel::sourceInsertItem()
{
    QFETCH(int, position);
    QFETCH(QStringList, notices);
    QFETCH(QStringList, viewIds);
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);

    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), aboveTen(), true, position));
    SignalLog log(view.data());
    // When x is inserted between a and b: the view places it by its own position,
    // not by the source row
    QVERIFY(source->InsertItem(1, valueItem("x", 50)));
    // Then
    QCOMPARE(log.take(), notices);
    QCOMPARE(ids(view.data()), viewIds);
}

void TestFilterModel::sourcePrependItem_readsTheAnnouncedRow()
{
    // The prepend is announced at the old end; the rebuild at the end lists x.
    ModelTesters::expect({ModelTesters::PrependAtOldEnd, ModelTesters::FilterEntryAfterChange});
    // Given a source whose last row e passes, and a view of a, c, e
    QScopedPointer<XOLATreeModel> source(standardSource());
    source->AppendItem(valueItem("e", 40));
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "e"}));
    SignalLog log(view.data());
    // When the source prepends x: a single prepend is announced at the old end,
    // so the view is told of row 5, which holds e
    QVERIFY(source->PrependItem(valueItem("x", 50)));
    // Then e is not listed a second time and the view is unchanged
    QCOMPARE(log.take(), kNoNotices);
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "e"}));
    // A rebuild lists x in its source place
    QVERIFY(view->UpdateFilterRules(aboveTen(), false));
    QCOMPARE(ids(view.data()), QStringList({"x", "a", "c", "e"}));
}

void TestFilterModel::sourceAppendItemsList_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QList<int>>("values");
    QTest::addColumn<QStringList>("notices");
    QTest::addColumn<QStringList>("viewIds");
    QTest::addColumn<ModelTesters::Departures>("departures");

    QTest::newRow("tail") << int(IXOLATreeModel::POS_TAIL) << QList<int>({40, 2, 60})
        << QStringList({"rowsAboutToBeInserted(2,3)", "rowsInserted(2,3)", "rowCountChanged()"})
        << QStringList({"a", "c", "x0", "x2"})
        << ModelTesters::Departures{ModelTesters::ListLoadAfterChange, ModelTesters::FilterEntryAfterChange};
    // Added at source rows 4..6; the passing ones go to the top in source order.
    QTest::newRow("head") << int(IXOLATreeModel::POS_HEAD) << QList<int>({40, 2, 60})
        << QStringList({"rowsAboutToBeInserted(0,1)", "rowsInserted(0,1)", "rowCountChanged()"})
        << QStringList({"x0", "x2", "a", "c"})
        << ModelTesters::Departures{ModelTesters::ListLoadAfterChange, ModelTesters::FilterEntryAfterChange};
    QTest::newRow("none passes") << int(IXOLATreeModel::POS_TAIL) << QList<int>({1, 2, 3})
        << kNoNotices << QStringList({"a", "c"}) << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
    QTest::newRow("unknown position drops them") << -1 << QList<int>({40, 60}) << kNoNotices << QStringList({"a", "c"})
        << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
}

void TestFilterModel::sourceAppendItemsList()
{
    QFETCH(int, position);
    QFETCH(QList<int>, values);
    QFETCH(QStringList, notices);
    QFETCH(QStringList, viewIds);
    QFETCH(ModelTesters::Departures, departures);
    ModelTesters::expect(departures);

    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), aboveTen(), true, position));
    SignalLog log(view.data());
    QList<XOLATreeItem*> list;
    for (int i = 0; i < values.size(); ++i)
        list << valueItem(QStringLiteral("x%1").arg(i), values.at(i));
    QVERIFY(source->AppendItemsList(list));
    QCOMPARE(log.take(), notices);
    QCOMPARE(ids(view.data()), viewIds);
}

void TestFilterModel::sourcePrependItemsList()
{
    ModelTesters::expect({ModelTesters::ListLoadAfterChange, ModelTesters::FilterEntryAfterChange});
    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    // When the source prepends three items, two of which pass
    QVERIFY(source->PrependItemsList({valueItem("e", 40), valueItem("f", 2), valueItem("g", 60)}));
    // Then the view appends them (its own position is the tail)
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(2,3)", "rowsInserted(2,3)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "e", "g"}));
}

void TestFilterModel::sourceReplaceItemsList()
{
    ModelTesters::expect({ModelTesters::ListLoadAfterChange, ModelTesters::FilterEntryAfterChange});
    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QPointer<XOLATreeItem> oldA = sourceItem(source.data(), "a");
    SignalLog log(view.data());
    // When the source's content is replaced
    QVERIFY(source->ReplaceItemsList({valueItem("p", 11), valueItem("q", 9)}));
    // Then the view sees everything go, then the new passing item arrive
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()",
                                      "rowCountChanged()", "rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)",
                                      "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"p"}));
    // The old items were the source's to delete, and the view no longer lists them
    TestSupport::flushDeferredDeletes();
    QVERIFY(oldA.isNull());
    QCOMPARE(ids(view.data()), QStringList({"p"}));
}

void TestFilterModel::sourceReplaceInPlace_viewDropsDeletedItems()
{
    ModelTesters::expect({ModelTesters::ListLoadAfterChange, ModelTesters::FilterEntryAfterChange});
    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    // When the source swaps its content in place, deleting its old items at once
    QVERIFY(source->ReplaceItemsListEx({valueItem("p", 11), valueItem("q", 9)}));
    // Then the view lets a and c go as they are deleted, and takes p from the
    // source's report of changed data
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(a)", "rowCountChanged()",
                                      "rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(c)", "rowCountChanged()",
                                      "rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)", "dataChanged(0,0)"}));
    QCOMPARE(ids(view.data()), QStringList({"p"}));
}

// ---- following removals --------------------------------------------------------------------

void TestFilterModel::sourceRemoveOne_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QStringList>("notices");
    QTest::addColumn<QStringList>("viewIds");
    QTest::newRow("listed") << "c"
        << QStringList({"rowsAboutToBeRemoved(1,1)", "rowsRemoved(1,1)", "itemsRemoved(c)", "rowCountChanged()"})
        << QStringList({"a"});
    // The source announces it by id; the view's list removal reports the count anyway.
    QTest::newRow("not listed by the view") << "b" << QStringList({"rowCountChanged()"}) << QStringList({"a", "c"});
    QTest::newRow("unknown to the source") << "zz" << kNoNotices << QStringList({"a", "c"});
}

void TestFilterModel::sourceRemoveOne()
{
    QFETCH(QString, id);
    QFETCH(QStringList, notices);
    QFETCH(QStringList, viewIds);

    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    source->RemoveOne(id);
    QCOMPARE(log.take(), notices);
    QCOMPARE(ids(view.data()), viewIds);
}

void TestFilterModel::sourceRemoveIdList()
{
    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QList<QPointer<XOLATreeItem>> removed;
    for (const QString& id : QStringList({"a", "b", "c"}))
        removed << QPointer<XOLATreeItem>(sourceItem(source.data(), id));
    SignalLog log(view.data());
    // When the source removes a, zz (unknown), b and c
    QVERIFY(source->Remove(QStringList({"a", "zz", "b", "c"})));
    // Then the view removes the two it lists, one notice pair each, then reports the ids
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "rowsAboutToBeRemoved(0,0)",
                                      "rowsRemoved(0,0)", "itemsRemoved(a,c)", "rowCountChanged()"}));
    QCOMPARE(view->rowCount(), 0);
    // The removed items are the caller's now; nobody deleted them
    TestSupport::flushDeferredDeletes();
    for (const QPointer<XOLATreeItem>& item : removed) {
        QVERIFY(!item.isNull());
        delete item.data();
    }
}

void TestFilterModel::sourceRemoveRange()
{
    // Given a view of a, c
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    // When source rows 1..2 (b, c) are removed
    QVERIFY(source->Remove(1, 2));
    // Then the view follows the ids announced
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(1,1)", "rowsRemoved(1,1)", "itemsRemoved(c)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"a"}));
}

void TestFilterModel::sourceRemoveRange_keepingRemovedItemsIsNotAnnouncedById()
{
    // Given a source that keeps removed items alive: its range removal names no ids
    QScopedPointer<XOLATreeModel> source(standardSource(XOLATreeModel::KeepRemovedItemsOption));
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QPointer<XOLATreeItem> a = sourceItem(source.data(), "a");
    QPointer<XOLATreeItem> b = sourceItem(source.data(), "b");
    QPointer<XOLATreeItem> c = sourceItem(source.data(), "c");
    QPointer<XOLATreeItem> d = sourceItem(source.data(), "d");
    SignalLog log(view.data());
    // When rows 1..2 are removed
    QVERIFY(source->Remove(1, 2));
    // Then the view hears nothing it follows and keeps its rows
    QCOMPARE(log.take(), kNoNotices);
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    view.reset();
    source.reset();
    // The source kept every item alive, also those still listed: they are ours.
    delete a.data();
    delete b.data();
    delete c.data();
    delete d.data();
}

void TestFilterModel::sourceRemoveAll()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    source->RemoveAll();
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()", "rowCountChanged()"}));
    QCOMPARE(view->rowCount(), 0);
}

void TestFilterModel::sourceClearEmptiesView()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    source->clear();
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()", "rowCountChanged()"}));
    QCOMPARE(view->rowCount(), 0);
}

void TestFilterModel::sourceRemoveAll_emptyViewStaysSilent()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), {rule("valueRole", IXOLATreeModel::Gt, 1000)}));
    QCOMPARE(view->rowCount(), 0);
    SignalLog log(view.data());
    source->RemoveAll();
    QCOMPARE(log.take(), kNoNotices);
}

// ---- following value changes ---------------------------------------------------------------

void TestFilterModel::valueChange_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("value");
    QTest::addColumn<QStringList>("notices");
    QTest::addColumn<QStringList>("viewIds");
    QTest::addColumn<ModelTesters::Departures>("departures");

    const int tail = IXOLATreeModel::POS_TAIL;
    const QStringList enters = {"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "dataChanged(0,2)"};
    QTest::newRow("enters") << tail << "b" << 50 << enters << QStringList({"a", "c", "b"})
        << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("enters at the bottom also for POS_HEAD") << int(IXOLATreeModel::POS_HEAD) << "b" << 50 << enters
                                                            << QStringList({"a", "c", "b"})
        << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("leaves") << tail << "a" << 1
        << QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(a)", "rowCountChanged()", "dataChanged(0,0)"})
        << QStringList({"c"}) << ModelTesters::Departures();
    // Reported by the view's own connection to the item.
    QTest::newRow("stays in") << tail << "c" << 40 << QStringList({"dataChanged(1,1)"}) << QStringList({"a", "c"})
        << ModelTesters::Departures();
    QTest::newRow("stays out") << tail << "d" << 2 << QStringList({"dataChanged(0,1)"}) << QStringList({"a", "c"})
        << ModelTesters::Departures();
}

void TestFilterModel::valueChange()
{
    QFETCH(int, position);
    QFETCH(QString, id);
    QFETCH(int, value);
    QFETCH(QStringList, notices);
    QFETCH(QStringList, viewIds);
    QFETCH(ModelTesters::Departures, departures);
    ModelTesters::expect(departures);

    // Given a view of a 20, c 30 over a 20, b 5, c 30, d 1
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), aboveTen(), true, position));
    SignalLog log(view.data());
    // When one item's value changes
    setValue(source.data(), id, value);
    // Then
    QCOMPARE(log.take(), notices);
    QCOMPARE(ids(view.data()), viewIds);
}

void TestFilterModel::valueChange_lastRowLeaves()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    // Given a view of c alone
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), {rule("valueRole", IXOLATreeModel::Gt, 25)}));
    SignalLog log(view.data());
    // When c leaves, an empty view reports no data change
    setValue(source.data(), "c", 0);
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(c)", "rowCountChanged()"}));
    QCOMPARE(view->rowCount(), 0);
    // And when it comes back it is announced with the whole view's data
    setValue(source.data(), "c", 26);
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)", "dataChanged(0,0)"}));
    QCOMPARE(ids(view.data()), QStringList({"c"}));
}

void TestFilterModel::wholeRangeChange_removalsThenOneInsertion_data()
{
    addPaddingRows();
}

void TestFilterModel::wholeRangeChange_removalsThenOneInsertion()
{
    QFETCH(int, padding);
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    // Given a view of a, c, and values changed without notice: a leaves, b and d enter
    QScopedPointer<XOLATreeModel> source(standardSource());
    appendFailingFiller(source.data(), padding);
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    setValueSilently(source.data(), "a", 1);
    setValueSilently(source.data(), "b", 50);
    setValueSilently(source.data(), "d", 60);
    SignalLog log(view.data());
    // When the source reports a change of all its rows
    emit source->dataChanged(source->index(0, 0), source->index(source->rowCount() - 1, 0));
    // Then a is removed, then b and d arrive in one insertion; c still passing
    // means no whole-view data change
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(a)",
                                      "rowCountChanged()", "rowsAboutToBeInserted(1,2)", "rowsInserted(1,2)"}));
    QCOMPARE(ids(view.data()), QStringList({"c", "b", "d"}));
    // A partial range holding a listed, passing item: its own connection reports it
    emit source->dataChanged(source->index(1, 0), source->index(2, 0));
    QCOMPARE(log.take(), kNoNotices);
    // A range of items that neither pass nor are listed: the whole view is reported
    emit source->dataChanged(source->index(0, 0), source->index(0, 0));
    QCOMPARE(log.take(), QStringList({"dataChanged(0,2)"}));
}

void TestFilterModel::wholeRangeChange_eachRemovalNamesItsCurrentRow_data()
{
    addPaddingRows();
}

void TestFilterModel::wholeRangeChange_eachRemovalNamesItsCurrentRow()
{
    QFETCH(int, padding);
    // Given a view of a, c, e, g, i over a..i
    QScopedPointer<XOLATreeModel> source(newSource());
    QList<XOLATreeItem*> list;
    const QStringList all = {"a", "b", "c", "d", "e", "f", "g", "h", "i"};
    for (int i = 0; i < all.size(); ++i)
        list << valueItem(all.at(i), i % 2 ? 1 : 20);
    TestSupport::appendEach(source.data(), list);
    appendFailingFiller(source.data(), padding);
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "e", "g", "i"}));
    // And c, g and i no longer passing, unannounced
    for (const QString& id : QStringList({"c", "g", "i"}))
        setValueSilently(source.data(), id, 0);
    SignalLog log(view.data());
    // When the whole source is reported changed
    emit source->dataChanged(source->index(0, 0), source->index(source->rowCount() - 1, 0));
    // Then each removal names the row the item holds at that moment
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(1,1)", "rowsRemoved(1,1)", "itemsRemoved(c)", "rowCountChanged()",
                                      "rowsAboutToBeRemoved(2,2)", "rowsRemoved(2,2)", "itemsRemoved(g)", "rowCountChanged()",
                                      "rowsAboutToBeRemoved(2,2)", "rowsRemoved(2,2)", "itemsRemoved(i)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"a", "e"}));
}

void TestFilterModel::wholeRangeChange_listenerChangingTheViewMeanwhile()
{
    // Given a view of a, c, e over a large source, and a listener that drops c
    // from the view as soon as the view reports a removal
    QScopedPointer<XOLATreeModel> source(newSource());
    TestSupport::appendEach(source.data(),
                            {valueItem("a", 20), valueItem("b", 1), valueItem("c", 20), valueItem("d", 1), valueItem("e", 20)});
    appendFailingFiller(source.data(), 100);
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "e"}));
    bool dropped = false;
    connect(view.data(), &IXOLATreeModel::itemsRemoved, this, [&]() {
        if (!dropped) {
            dropped = true;
            view->RemoveOne("c");
        }
    });
    setValueSilently(source.data(), "a", 0);
    setValueSilently(source.data(), "e", 0);
    // When the whole source is reported changed, a and e leave
    emit source->dataChanged(source->index(0, 0), source->index(source->rowCount() - 1, 0));
    // Then e is still found and removed after the listener took c
    QVERIFY(dropped);
    QCOMPARE(view->rowCount(), 0);
}

void TestFilterModel::wholeRangeChange_enteredItemReportsItsRowOnce()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    // Given b entered through a value change
    setValue(source.data(), "b", 50);
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "b"}));
    SignalLog log(view.data());
    // When b changes again
    setValue(source.data(), "b", 70);
    // Then its row is reported once
    QCOMPARE(log.take(), QStringList({"dataChanged(2,2)"}));
    // And after leaving and entering again, still once
    setValue(source.data(), "b", 1);
    setValue(source.data(), "b", 80);
    log.clear();
    setValue(source.data(), "b", 90);
    QCOMPARE(log.take(), QStringList({"dataChanged(2,2)"}));
}

void TestFilterModel::rebuild_changedItemReportsItsRowOnce()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    // Given two rebuilds that keep c
    QVERIFY(view->UpdateFilterRules(aboveTen(), false));
    QVERIFY(view->UpdateFilterRules(aboveTen(), true));
    SignalLog log(view.data());
    // When c changes
    setValue(source.data(), "c", 31);
    // Then the view reports its row once
    QCOMPARE(log.take(), QStringList({"dataChanged(1,1)"}));
}

// ---- child models ----------------------------------------------------------------------------

void TestFilterModel::childModelChange_entersAndLeaves_data()
{
    QTest::addColumn<int>("position");
    QTest::newRow("tail") << int(IXOLATreeModel::POS_TAIL);
    QTest::newRow("head: still appended") << int(IXOLATreeModel::POS_HEAD);
}

void TestFilterModel::childModelChange_entersAndLeaves()
{
    QFETCH(int, position);

    // Given p (failing, with an empty child model) and s (passing); the source
    // disposes of the child model when it goes
    XOLATreeModel* child = newSource();
    QScopedPointer<XOLATreeModel> source(newSource());
    TestSupport::appendEach(source.data(), {valueItem("p", 0, child), valueItem("s", 50)});
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), aboveTen(), true, position));
    QCOMPARE(ids(view.data()), QStringList({"s"}));
    SignalLog log(view.data());

    // When a passing item is added to p's child model, p enters at the tail
    child->AppendItem(valueItem("k", 99));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(1,1)", "rowsInserted(1,1)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"s", "p"}));

    // When the child item changes and still passes, nothing happens
    setValue(child, "k", 98);
    QCOMPARE(log.take(), kNoNotices);

    // When it stops passing, p leaves
    setValue(child, "k", 1);
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(1,1)", "rowsRemoved(1,1)", "itemsRemoved(p)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"s"}));

    // When it passes again p comes back, and leaves once the child item is removed
    setValue(child, "k", 99);
    QCOMPARE(ids(view.data()), QStringList({"s", "p"}));
    log.clear();
    QVERIFY(child->RemoveOne("k"));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(1,1)", "rowsRemoved(1,1)", "itemsRemoved(p)", "rowCountChanged()"}));
}

void TestFilterModel::childModelChange_itemAddedLaterIsFollowed()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    // Given q, failing, appended after the view was made
    XOLATreeModel* child = newSource();
    source->AppendItem(valueItem("q", 0, child));
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    SignalLog log(view.data());
    // When q's child model gets a passing item, q enters
    child->AppendItem(valueItem("k", 99));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"a", "c", "q"}));
}

void TestFilterModel::childModelChange_itemLeftBySourceIsIgnored()
{
    // Given p with a child model, listed by the source but failing
    XOLATreeModel* child = newSource();
    QScopedPointer<XOLATreeModel> source(standardSource());
    source->AppendItem(valueItem("p", 0, child));
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QPointer<XOLATreeItem> p = sourceItem(source.data(), "p");
    // When the source lets p go (the caller keeps it) and p's child then passes
    QVERIFY(source->Remove(QStringList({"p"})));
    SignalLog log(view.data());
    child->AppendItem(valueItem("k", 99));
    // Then the view does not take p
    QCOMPARE(log.take(), kNoNotices);
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    delete p.data();
    delete child;
}

// ---- keep-sorting ------------------------------------------------------------------------------

void TestFilterModel::keepSorting_onTheView()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    // Given a view of a 20, c 30 that keeps itself sorted by value
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    view->SortByRules({QVariantMap{{"RoleName", "valueRole"}, {"Ascending", true}}}, IXOLATreeModel::KeepSorting);
    QCOMPARE(view->sortFlag(), int(IXOLATreeModel::KeepSorting));
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    SignalLog log(view.data());

    // When the source appends x 15, the view appends and re-sorts before
    // announcing its new count
    source->AppendItem(valueItem("x", 15));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "dataChanged(0,2)", "rowCountChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"x", "a", "c"}));

    // When b enters through a value change, it is sorted into place
    setValue(source.data(), "b", 25);
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(3,3)", "rowsInserted(3,3)", "dataChanged(0,3)"}));
    QCOMPARE(ids(view.data()), QStringList({"x", "a", "b", "c"}));

    // When a listed item changes, the view re-sorts, then reports the item's new row
    setValue(source.data(), "a", 40);
    QCOMPARE(log.take(), QStringList({"dataChanged(0,3)", "dataChanged(3,3)"}));
    QCOMPARE(ids(view.data()), QStringList({"x", "b", "c", "a"}));

    // The source itself is not sorted
    QCOMPARE(ids(source.data()), QStringList({"a", "b", "c", "d", "x"}));
}

// ---- rule updates ------------------------------------------------------------------------------

void TestFilterModel::updateFilterRules_sameRulesDoNothing()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    // The same rules and flag: true, no rebuild
    QVERIFY(view->UpdateFilterRules(aboveTen(), true));
    QCOMPARE(log.take(), kNoNotices);
    // Equal rules built afresh are equal too
    QVERIFY(view->UpdateFilterRules({rule("valueRole", IXOLATreeModel::Gt, 10)}, true));
    QCOMPARE(log.take(), kNoNotices);
    // A different flag rebuilds once; repeating it does nothing
    QVERIFY(view->UpdateFilterRules(aboveTen(), false));
    QCOMPARE(log.take().last(), QStringLiteral("filterModelChanged()"));
    QVERIFY(view->UpdateFilterRules(aboveTen(), false));
    QCOMPARE(log.take(), kNoNotices);
}

void TestFilterModel::updateFilterRules_rebuild_data()
{
    QTest::addColumn<QVariantList>("startRules");
    QTest::addColumn<QVariantList>("newRules");
    QTest::addColumn<QStringList>("notices");
    QTest::addColumn<QStringList>("viewIds");
    QTest::addColumn<ModelTesters::Departures>("departures");

    const QVariantList nothing = {rule("valueRole", IXOLATreeModel::Gt, 1000)};
    QTest::newRow("listed rows replaced") << aboveTen() << QVariantList{rule("valueRole", IXOLATreeModel::Lt, 10)}
        << QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()", "rowCountChanged()",
                        "rowsAboutToBeInserted(0,1)", "rowsInserted(0,1)", "rowCountChanged()", "filterModelChanged()"})
        << QStringList({"b", "d"}) << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("from an empty view") << nothing << aboveTen()
        << QStringList({"rowsAboutToBeInserted(0,1)", "rowsInserted(0,1)", "rowCountChanged()", "filterModelChanged()"})
        << QStringList({"a", "c"}) << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
    QTest::newRow("to an empty view") << aboveTen() << nothing
        << QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()", "rowCountChanged()",
                        "filterModelChanged()"})
        << QStringList() << ModelTesters::Departures();
    QTest::newRow("empty list lists everything") << aboveTen() << QVariantList()
        << QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()", "rowCountChanged()",
                        "rowsAboutToBeInserted(0,3)", "rowsInserted(0,3)", "rowCountChanged()", "filterModelChanged()"})
        << QStringList({"a", "b", "c", "d"}) << ModelTesters::Departures{ModelTesters::FilterEntryAfterChange};
}

void TestFilterModel::updateFilterRules_rebuild()
{
    QFETCH(QVariantList, startRules);
    QFETCH(QVariantList, newRules);
    QFETCH(QStringList, notices);
    QFETCH(QStringList, viewIds);
    QFETCH(ModelTesters::Departures, departures);
    ModelTesters::expect(departures);

    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), startRules));
    SignalLog log(view.data());
    QVERIFY(view->UpdateFilterRules(newRules, true));
    QCOMPARE(log.take(), notices);
    QCOMPARE(ids(view.data()), viewIds);
    QCOMPARE(view->filterRules(), newRules);
}

void TestFilterModel::updateFilterRules_plainModelRefuses()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    SignalLog log(source.data());
    QVERIFY(!source->UpdateFilterRules(aboveTen(), true));
    QVERIFY(!source->UpdateUserDefinedFilterRules(QVariant(3)));
    QCOMPARE(log.take(), kNoNotices);
}

// ---- user-defined predicate ---------------------------------------------------------------------

namespace {
//! Keeps items whose valueRole is at least the rule value's "min".
bool atLeastMin(const QObject* object, const QVariant& ruleValue)
{
    auto* item = qobject_cast<const XOLATreeItem*>(object);
    return item && item->getData(ValueItem::ValueRole).toInt() >= ruleValue.toMap().value("min").toInt();
}
} // namespace

void TestFilterModel::userDefined_predicateFromConstruction()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    // Given a source made with a match function
    QScopedPointer<XOLATreeModel> source(standardSource(0, atLeastMin));
    // When a view is made with a rule value
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(qobject_cast<FilterModelImp*>(
        source->GetFilterModelByUserDefinedRules(QVariantMap{{"min", 25}}))));
    // Then the predicate decides
    QVERIFY(view);
    QCOMPARE(ids(view.data()), QStringList({"c"}));
    QCOMPARE(view->flags(), 3);
    SignalLog log(view.data());

    // And it follows the source with the same predicate
    source->AppendItem(valueItem("x", 100));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(1,1)", "rowsInserted(1,1)", "rowCountChanged()"}));
    setValue(source.data(), "a", 26);
    QCOMPARE(ids(view.data()), QStringList({"c", "x", "a"}));
    log.clear();

    // A new rule value rebuilds the view
    QVERIFY(view->UpdateUserDefinedFilterRules(QVariantMap{{"min", 100}}));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,2)", "rowsRemoved(0,2)", "allItemRemoved()", "rowCountChanged()",
                                      "rowsAboutToBeInserted(0,0)", "rowsInserted(0,0)", "rowCountChanged()",
                                      "filterModelChanged()"}));
    QCOMPARE(ids(view.data()), QStringList({"x"}));
}

void TestFilterModel::userDefined_sameValueDoesNothing()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    QScopedPointer<XOLATreeModel> source(standardSource(0, atLeastMin));
    QScopedPointer<FilterModelImp> view(ModelTesters::watch(qobject_cast<FilterModelImp*>(
        source->GetFilterModelByUserDefinedRules(QVariantMap{{"min", 25}}, IXOLATreeModel::POS_HEAD))));
    SignalLog log(view.data());
    // An equal value from native code: true, no rebuild
    QVERIFY(view->UpdateUserDefinedFilterRules(QVariantMap{{"min", 25}}));
    QCOMPARE(log.take(), kNoNotices);
    // A different one rebuilds; given again it does nothing
    QVERIFY(view->UpdateUserDefinedFilterRules(QVariantMap{{"min", 10}}));
    QCOMPARE(log.take().last(), QStringLiteral("filterModelChanged()"));
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    QVERIFY(view->UpdateUserDefinedFilterRules(QVariantMap{{"min", 10}}));
    QCOMPARE(log.take(), kNoNotices);
}

void TestFilterModel::userDefined_withoutMatchFunctionListsEverything()
{
    // A source made without a match function: the view has no predicate and an
    // empty rule list, so everything passes
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(
        ModelTesters::watch(qobject_cast<FilterModelImp*>(source->GetFilterModelByUserDefinedRules())));
    QCOMPARE(ids(view.data()), QStringList({"a", "b", "c", "d"}));
}

// ---- read access -------------------------------------------------------------------------------

void TestFilterModel::data_childModelRoleMakesNewChildViews()
{
    // The child views take in the child model's rows once listed.
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    // Given p with a child model holding k 99 and j 1, in a view of "above ten"
    // that puts new items at the head
    XOLATreeModel* child = newSource();
    TestSupport::appendEach(child, {valueItem("k", 99), valueItem("j", 1)});
    QScopedPointer<XOLATreeModel> source(newSource());
    TestSupport::appendEach(source.data(), {valueItem("p", 0, child), valueItem("s", 50)});
    QScopedPointer<FilterModelImp> view(filterOf(source.data(), aboveTen(), true, IXOLATreeModel::POS_HEAD));
    QCOMPARE(ids(view.data()), QStringList({"p", "s"}));

    // When the child model role is read twice
    const QVariant first = view->data(view->index(0, 0), XOLATreeItem::ChildModelRole);
    const QVariant second = view->data(view->index(0, 0), XOLATreeItem::ChildModelRole);
    // Then each read made a new child view with the parent's rules
    QCOMPARE(first.userType(), int(QMetaType::QObjectStar));
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QVERIFY(QMetaType::type("IXOLATreeModel*") != QMetaType::UnknownType);
#else
    QVERIFY(QMetaType::fromName("IXOLATreeModel*").isValid());
#endif
    QScopedPointer<FilterModelImp> firstView(ModelTesters::watch(qobject_cast<FilterModelImp*>(first.value<QObject*>())));
    QScopedPointer<FilterModelImp> secondView(
        ModelTesters::watch(qobject_cast<FilterModelImp*>(second.value<QObject*>())));
    QVERIFY(firstView);
    QVERIFY(secondView);
    QVERIFY(firstView.data() != secondView.data());
    QCOMPARE(ids(firstView.data()), QStringList({"k"}));
    QCOMPARE(firstView->sourceModel(), static_cast<IXOLATreeModel*>(child));
    QCOMPARE(firstView->filterRules(), aboveTen());
    QCOMPARE(firstView->newItemPos(), int(IXOLATreeModel::POS_TAIL));
    QCOMPARE(QQmlEngine::objectOwnership(firstView.data()), QQmlEngine::JavaScriptOwnership);
    // A child view follows its child model
    child->AppendItem(valueItem("m", 12));
    QCOMPARE(ids(firstView.data()), QStringList({"k", "m"}));

    // FindChildModel makes one the same way
    QScopedPointer<FilterModelImp> third(ModelTesters::watch(qobject_cast<FilterModelImp*>(
        view->FindChildModel(qobject_cast<XOLATreeItem*>(view->FindItem(0))))));
    QVERIFY(third);
    QCOMPARE(ids(third.data()), QStringList({"k", "m"}));
    // An item without a child model has none
    QVERIFY(!view->data(view->index(1, 0), XOLATreeItem::ChildModelRole).isValid());
    QCOMPARE(view->FindChildModel(qobject_cast<XOLATreeItem*>(view->FindItem(1))), static_cast<QObject*>(nullptr));
    QCOMPARE(view->FindChildModel(nullptr), static_cast<QObject*>(nullptr));
}

void TestFilterModel::data_otherRolesAndInvalidRows()
{
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QCOMPARE(view->data(view->index(1, 0), XOLATreeItem::IdRole), QVariant("c"));
    QCOMPARE(view->data(view->index(1, 0), XOLATreeItem::NameRole), QVariant("name-c"));
    QCOMPARE(view->data(view->index(1, 0), ValueItem::ValueRole), QVariant(30));
    QCOMPARE(view->data(view->index(0, 0), XOLATreeItem::JsonValueRole).toMap().value("idRole"), QVariant("a"));
    QVERIFY(!view->data(view->index(2, 0), XOLATreeItem::IdRole).isValid());
    QVERIFY(!view->data(view->index(-1, 0), XOLATreeItem::IdRole).isValid());
    QVERIFY(!view->data(view->index(0, 0), 0).isValid());
}

void TestFilterModel::findFamily_answersFromOwnRows()
{
    // Given a view of a, c over a, b, c, d; a holds a child model with k
    XOLATreeModel* child = newSource();
    child->AppendItem(valueItem("k", 1));
    QScopedPointer<XOLATreeModel> source(newSource());
    TestSupport::appendEach(source.data(),
                            {valueItem("a", 20, child), valueItem("b", 5), valueItem("c", 30), valueItem("d", 1)});
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));

    QCOMPARE(view->FindItemID(1), QStringLiteral("c"));
    QCOMPARE(view->FindItemID(2), QString());
    QCOMPARE(view->FindItemID(-1), QString());
    QCOMPARE(view->FindItemRow("c"), 1);
    QCOMPARE(view->FindItemRow("b"), -1);
    QCOMPARE(view->FindItem(0), source->FindItem(0));
    QCOMPARE(view->FindItem(2), static_cast<QObject*>(nullptr));
    QCOMPARE(view->FindItem("c"), source->FindItem("c"));
    QCOMPARE(view->FindItem("b"), static_cast<QObject*>(nullptr));
    QCOMPARE(view->FindItemValue(1, int(ValueItem::ValueRole)), QVariant(30));
    QCOMPARE(view->FindItemValue(1, QStringLiteral("valueRole")), QVariant(30));
    QCOMPARE(view->FindItemValue(3, QStringLiteral("valueRole")), QVariant());
    QCOMPARE(view->FindItemValue(QStringLiteral("c"), int(XOLATreeItem::NameRole)), QVariant("name-c"));
    QCOMPARE(view->FindItemValue(QStringLiteral("c"), QStringLiteral("nameRole")), QVariant("name-c"));
    QCOMPARE(view->FindItemValue(QStringLiteral("b"), QStringLiteral("nameRole")), QVariant());
    // Through the child models of the view's own rows
    QCOMPARE(view->FindItemValueEx(QStringLiteral("k"), int(XOLATreeItem::NameRole), true), QVariant("name-k"));
    QCOMPARE(view->FindItemValueEx(QStringLiteral("k"), QStringLiteral("nameRole"), true), QVariant("name-k"));
    QCOMPARE(view->FindItemValueEx(QStringLiteral("k"), QStringLiteral("nameRole"), false), QVariant());
    QCOMPARE(view->FindItemValueEx(QStringLiteral("b"), int(XOLATreeItem::NameRole), true), QVariant());
    QCOMPARE(view->get(1).value("idRole"), QVariant("c"));
    QStringList all;
    view->GetAllIDs(all, true);
    QCOMPARE(all, QStringList({"a", "k", "c"}));
    // The source is not consulted once the view is empty
    QVERIFY(view->UpdateFilterRules({rule("valueRole", IXOLATreeModel::Gt, 1000)}, true));
    QCOMPARE(view->FindItemRow("c"), -1);
    QCOMPARE(view->FindItemID(0), QString());
}

// ---- wiring and lifetime ------------------------------------------------------------------------

void TestFilterModel::resetAndLayoutAreForwarded()
{
    ModelTesters::expect(ModelTesters::ViewsForwardLoneEnds);
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    SignalLog log(view.data());
    // A move resets the source; the view passes on the end of the reset only
    source->MoveRow(0, 1);
    QCOMPARE(log.take(), QStringList({"modelReset()"}));
    QCOMPARE(ids(view.data()), QStringList({"a", "c"}));
    emit source->layoutAboutToBeChanged();
    emit source->layoutChanged();
    QCOMPARE(log.take(), QStringList({"layoutChanged()"}));
}

void TestFilterModel::viewsNeverDeleteSourceItems()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    QScopedPointer<XOLATreeModel> source(standardSource());
    QList<QPointer<XOLATreeItem>> items;
    for (int row = 0; row < source->rowCount(); ++row)
        items << QPointer<XOLATreeItem>(qobject_cast<XOLATreeItem*>(source->FindItem(row)));

    // When a view drops items in every way it can
    FilterModelImp* view = filterOf(source.data(), QVariantList());
    QVERIFY(view->RemoveOne("a"));
    QVERIFY(view->Remove(QStringList({"b"})));
    QVERIFY(view->Remove(0, 0));
    QVERIFY(view->UpdateFilterRules(aboveTen(), true));
    QVERIFY(view->UpdateFilterRules({rule("valueRole", IXOLATreeModel::Gt, 1000)}, true));
    QVERIFY(view->UpdateFilterRules(QVariantList(), true));
    view->clear();
    delete view;
    TestSupport::flushDeferredDeletes();

    // Then every source item is alive and still listed by the source
    for (const QPointer<XOLATreeItem>& item : items)
        QVERIFY(!item.isNull());
    QCOMPARE(ids(source.data()), QStringList({"a", "b", "c", "d"}));
    // And still reports its changes to the source
    SignalLog log(source.data());
    setValue(source.data(), "b", 6);
    QCOMPARE(log.take(), QStringList({"dataChanged(1,1)"}));
}

void TestFilterModel::filterOfFilter()
{
    ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
    // Given a view of values above 10 and, over it, a view of values below 50
    QScopedPointer<XOLATreeModel> source(standardSource());
    QScopedPointer<FilterModelImp> outer(filterOf(source.data()));
    QScopedPointer<FilterModelImp> inner(filterOf(outer.data(), {rule("valueRole", IXOLATreeModel::Lt, 50)}));
    QCOMPARE(ids(inner.data()), QStringList({"a", "c"}));
    QCOMPARE(inner->sourceModel(), static_cast<IXOLATreeModel*>(outer.data()));
    SignalLog log(inner.data());

    // When the source gains x 40 and y 60, the inner view takes x only
    source->AppendItem(valueItem("x", 40));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(2,2)", "rowsInserted(2,2)", "rowCountChanged()"}));
    source->AppendItem(valueItem("y", 60));
    QCOMPARE(log.take(), kNoNotices);
    QCOMPARE(ids(outer.data()), QStringList({"a", "c", "x", "y"}));
    QCOMPARE(ids(inner.data()), QStringList({"a", "c", "x"}));

    // When d enters the outer view through a value change, it reaches the inner one
    setValue(source.data(), "d", 45);
    QCOMPARE(ids(outer.data()), QStringList({"a", "c", "x", "y", "d"}));
    QCOMPARE(ids(inner.data()), QStringList({"a", "c", "x", "d"}));

    // Removals travel through both
    log.clear();
    QVERIFY(source->RemoveOne("a"));
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(a)", "rowCountChanged()"}));
    QCOMPARE(ids(inner.data()), QStringList({"c", "x", "d"}));
    source->RemoveAll();
    QCOMPARE(inner->rowCount(), 0);
}

void TestFilterModel::sourceDeletedBeforeView()
{
    XOLATreeModel* source = standardSource();
    QScopedPointer<FilterModelImp> view(filterOf(source));
    SignalLog log(view.data());
    // When the source goes first, the view sees every row go
    delete source;
    QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,1)", "rowsRemoved(0,1)", "allItemRemoved()", "rowCountChanged()"}));
    // And is left harmless
    QCOMPARE(view->sourceModel(), static_cast<IXOLATreeModel*>(nullptr));
    QCOMPARE(view->rowCount(), 0);
    QCOMPARE(view->ReGenFilterModel(), false);
    QCOMPARE(view->UpdateFilterRules(QVariantList(), false), false);
    QVERIFY(!view->data(view->index(0, 0), XOLATreeItem::IdRole).isValid());
    QCOMPARE(log.take(), kNoNotices);
}

// ---- cost ----------------------------------------------------------------------------------------

void TestFilterModel::benchmark_wholeRangeChange()
{
    // A change reported over a large source with a view attached: one lookup per row.
    // Loaded in one list, as hosts load a large source (its rows are announced
    // once they are in).
    ModelTesters::expect(ModelTesters::ListLoadAfterChange);
    const int n = 100000;
    QScopedPointer<XOLATreeModel> source(newSource());
    QList<XOLATreeItem*> list;
    list.reserve(n);
    for (int i = 0; i < n; ++i)
        list << valueItem(QString::number(i), i % 100);
    source->AppendItemsList(list);
    QScopedPointer<FilterModelImp> view(filterOf(source.data()));
    QCOMPARE(view->rowCount(), n / 100 * 89);
    SignalLog log(view.data());
    QBENCHMARK_ONCE {
        emit source->dataChanged(source->index(0, 0), source->index(n - 1, 0));
    }
    QCOMPARE(log.take(), kNoNotices);
}

QTEST_GUILESS_MAIN(TestFilterModel)

#include "tst_filtermodel.moc"
