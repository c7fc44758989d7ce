#include "PagingModelImp.h"
#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

#include <memory>

using namespace TestSupport;

namespace {

using ModelPtr = std::unique_ptr<XOLATreeModel>;
using PagingPtr = std::unique_ptr<PagingModelImp>;

QStringList rowIds(int first, int count)
{
    QStringList result;
    for (int i = first; i < first + count; ++i)
        result << QStringLiteral("r%1").arg(i);
    return result;
}

//! A source with rows r0..r<n-1>; items are named "name-r<i>".
XOLATreeModel* makeSource(int rows, int flags = 0)
{
    XOLATreeModel* source = createModel(flags, extendedRoleNames());
    appendEach(source, items(rowIds(0, rows)));
    return source;
}

PagingModelImp* pagingView(IXOLATreeModel* source, uint perPage)
{
    return ModelTesters::watch(qobject_cast<PagingModelImp*>(source->GetPagingModel(perPage)));
}

QStringList dataNames(const QAbstractItemModel* model)
{
    QStringList result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->data(model->index(row, 0), XOLATreeItem::NameRole).toString();
    return result;
}

QStringList inserted(int first, int last)
{
    return {QStringLiteral("rowsAboutToBeInserted(%1,%2)").arg(first).arg(last),
            QStringLiteral("rowsInserted(%1,%2)").arg(first).arg(last), QStringLiteral("rowCountChanged()")};
}

QStringList removed(int first, int last)
{
    return {QStringLiteral("rowsAboutToBeRemoved(%1,%2)").arg(first).arg(last),
            QStringLiteral("rowsRemoved(%1,%2)").arg(first).arg(last), QStringLiteral("rowCountChanged()")};
}

QString changed(int first, int last)
{
    return QStringLiteral("dataChanged(%1,%2)").arg(first).arg(last);
}

} // namespace

class TestPagingModel : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void pages_data()
    {
        QTest::addColumn<int>("sourceRows");
        QTest::addColumn<uint>("perPage");
        QTest::addColumn<int>("totalPage");
        QTest::addColumn<QList<int>>("rowsPerPage");
        QTest::addColumn<ModelTesters::Departures>("departures");
        QTest::newRow("25 rows, 10 per page") << 25 << 10u << 3 << QList<int>({10, 10, 5})
            << ModelTesters::Departures{ModelTesters::PagingRowsAfterChange};
        QTest::newRow("20 rows, 10 per page") << 20 << 10u << 2 << QList<int>({10, 10}) << ModelTesters::Departures();
        QTest::newRow("5 rows, 10 per page") << 5 << 10u << 1 << QList<int>({5}) << ModelTesters::Departures();
        QTest::newRow("empty source") << 0 << 10u << 0 << QList<int>({0}) << ModelTesters::Departures();
        QTest::newRow("one per page") << 3 << 1u << 3 << QList<int>({1, 1, 1}) << ModelTesters::Departures();
        QTest::newRow("0 per page means one page") << 25 << 0u << 1 << QList<int>({25}) << ModelTesters::Departures();
    }

    void pages()
    {
        QFETCH(int, sourceRows);
        QFETCH(uint, perPage);
        QFETCH(int, totalPage);
        QFETCH(QList<int>, rowsPerPage);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        ModelPtr source(makeSource(sourceRows));
        PagingPtr view(pagingView(source.get(), perPage));
        QVERIFY(view);
        QCOMPARE(view->totalPage(), totalPage);
        QCOMPARE(view->property("totalPage").toInt(), totalPage);
        QCOMPARE(view->LastPage(), qMax(totalPage - 1, 0));
        const uint stored = perPage == 0 ? 4294967295u : perPage;
        QCOMPARE(view->numPerPage(), stored);
        int first = 0;
        for (int page = 0; page < rowsPerPage.size(); ++page) {
            view->setPage(page);
            QCOMPARE(view->page(), page);
            QCOMPARE(view->IsLastPage(), page == rowsPerPage.size() - 1);
            QCOMPARE(view->rowCount(), rowsPerPage.at(page));
            QCOMPARE(ids(view.get()), rowIds(first, rowsPerPage.at(page)));
            QCOMPARE(dataNames(view.get()), rowIds(first, rowsPerPage.at(page)).replaceInStrings("r", "name-r"));
            first += rowsPerPage.at(page);
        }
    }

    void viewIsBuiltAsDocumented()
    {
        ModelPtr source(makeSource(3));
        PagingPtr view(pagingView(source.get(), 2));
        QCOMPARE(view->parent(), static_cast<QObject*>(nullptr));
        QCOMPARE(view->flags(), 3);
        QCOMPARE(QQmlEngine::objectOwnership(view.get()), QQmlEngine::JavaScriptOwnership);
        QCOMPARE(view->roleNames(), source->roleNames());
        QCOMPARE(view->sourceModel(), static_cast<IXOLATreeModel*>(source.get()));
        QCOMPARE(view->page(), 0);
        QCOMPARE(view->totalPage(), 2);
        // A new view on every call
        PagingPtr other(pagingView(source.get(), 2));
        QVERIFY(other.get() != view.get());
        // The view keeps no rows of its own
        QCOMPARE(view->GetModelItemList()->size(), 0);
        view.reset();
        QCOMPARE(ids(source.get()), rowIds(0, 3));
    }

    void emptySource()
    {
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(makeSource(0));
        PagingPtr view(pagingView(source.get(), 10));
        QCOMPARE(view->totalPage(), 0);
        QCOMPARE(view->LastPage(), 0);
        QVERIFY(view->IsLastPage());
        QCOMPARE(view->rowCount(), 0);
        QVERIFY(!view->data(view->index(0, 0), XOLATreeItem::IdRole).isValid());
        SignalLog log(view.get());
        // The page is already 0
        view->setPage(0);
        QCOMPARE(log.take(), QStringList());
        // The first row makes the first page
        source->AppendItem(item(QStringLiteral("r0")));
        QCOMPARE(log.take(), QStringList({"totalPageChanged(1)", changed(0, 0)}) + inserted(0, 0));
        QCOMPARE(ids(view.get()), QStringList({"r0"}));
    }

    void setPageSignals()
    {
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        // Given 25 rows at 10 per page, on page 0
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        SignalLog log(view.get());
        // When moving to the short last page, the rows are refreshed before the count shrinks
        view->setPage(2);
        QCOMPARE(log.take(), QStringList({"pageChanged(2)", changed(0, 4)}) + removed(5, 9));
        QCOMPARE(ids(view.get()), rowIds(20, 5));
        // Back to a full page, the count grows
        view->setPage(1);
        QCOMPARE(log.take(), QStringList({"pageChanged(1)", changed(0, 9)}) + inserted(5, 9));
        QCOMPARE(ids(view.get()), rowIds(10, 10));
        // Between full pages only the rows change
        view->setPage(0);
        QCOMPARE(log.take(), QStringList({"pageChanged(0)", changed(0, 9)}));
        QCOMPARE(ids(view.get()), rowIds(0, 10));
    }

    void pagePropertyFromQmlSide()
    {
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        SignalLog log(view.get());
        QVERIFY(view->setProperty("page", 2));
        QCOMPARE(view->property("page").toInt(), 2);
        QCOMPARE(view->property("count").toInt(), 5);
        QCOMPARE(log.take().first(), QStringLiteral("pageChanged(2)"));
        // totalPage is read-only
        QVERIFY(!view->setProperty("totalPage", 7));
        QCOMPARE(view->totalPage(), 3);
    }

    void setPageIgnored_data()
    {
        QTest::addColumn<int>("page");
        QTest::newRow("same page") << 1;
        QTest::newRow("negative") << -1;
        QTest::newRow("past the last page") << 3;
        QTest::newRow("far past the last page") << 5;
    }

    void setPageIgnored()
    {
        QFETCH(int, page);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        view->setPage(1);
        SignalLog log(view.get());
        view->setPage(page);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(view->page(), 1);
    }

    void sourceShrinksUnderThePage_data()
    {
        QTest::addColumn<int>("startPage");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<int>("expectedPage");
        QTest::addColumn<QStringList>("expectedIds");
        QTest::addColumn<ModelTesters::Departures>("departures");
        // 25 rows at 10 per page.
        QTest::newRow("last page removed")
            << 2 << "Remove 20..24" << (QStringList({"totalPageChanged(2)", "pageChanged(1)", changed(0, 9)}) + inserted(5, 9))
            << 1 << rowIds(10, 10) << ModelTesters::Departures{ModelTesters::PagingRowsAfterChange};
        QTest::newRow("removal from the previous page on")
            << 2 << "Remove 15..24"
            << QStringList({"totalPageChanged(2)", "pageChanged(1)", changed(0, 4), changed(0, 4)}) << 1
            << rowIds(10, 5) << ModelTesters::Departures{ModelTesters::PagingRowsAfterChange};
        QTest::newRow("everything removed")
            << 2 << "RemoveAll"
            << (QStringList({"totalPageChanged(0)", "pageChanged(0)", changed(0, 0)}) + removed(0, 4) + QStringList(changed(0, 0)))
            << 0 << QStringList()
            << ModelTesters::Departures{ModelTesters::PagingRowsAfterChange, ModelTesters::PagingRefreshesEmptyPage};
        QTest::newRow("one row of an earlier page")
            << 2 << "RemoveOne r0" << (QStringList(changed(0, 3)) + removed(4, 4)) << 2 << rowIds(21, 4)
            << ModelTesters::Departures{ModelTesters::PagingRowsAfterChange};
        QTest::newRow("rows of a later page") << 0 << "Remove 20..24" << QStringList({"totalPageChanged(2)"}) << 0
                                              << rowIds(0, 10) << ModelTesters::Departures();
        QTest::newRow("one row of the current page")
            << 1 << "RemoveOne r12" << QStringList(changed(0, 9)) << 1
            << (rowIds(10, 2) + rowIds(13, 8)) << ModelTesters::Departures();
    }

    void sourceShrinksUnderThePage()
    {
        QFETCH(int, startPage);
        QFETCH(QString, operation);
        QFETCH(QStringList, expectedLog);
        QFETCH(int, expectedPage);
        QFETCH(QStringList, expectedIds);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        view->setPage(startPage);
        SignalLog log(view.get());
        if (operation == QLatin1String("Remove 20..24"))
            QVERIFY(source->Remove(20, 24));
        else if (operation == QLatin1String("Remove 15..24"))
            QVERIFY(source->Remove(15, 24));
        else if (operation == QLatin1String("RemoveAll"))
            source->RemoveAll();
        else
            QVERIFY(source->RemoveOne(operation.mid(10)));
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(view->page(), expectedPage);
        QCOMPARE(ids(view.get()), expectedIds);
    }

    void sourceGrows_data()
    {
        QTest::addColumn<int>("startPage");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedIds");
        QTest::addColumn<ModelTesters::Departures>("departures");
        // 25 rows at 10 per page.
        QTest::newRow("appended past the current page")
            << 0 << "append 6" << QStringList({"totalPageChanged(4)"}) << rowIds(0, 10)
            << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
        QTest::newRow("appended to the current page")
            << 2 << "append 1" << (QStringList(changed(0, 5)) + inserted(5, 5)) << rowIds(20, 6)
            << ModelTesters::Departures{ModelTesters::PagingRowsAfterChange};
        QTest::newRow("appended, filling the page and opening a new one")
            << 2 << "append 6" << (QStringList({"totalPageChanged(4)", changed(0, 9)}) + inserted(5, 9)) << rowIds(20, 10)
            << ModelTesters::Departures{ModelTesters::ListLoadAfterChange, ModelTesters::PagingRowsAfterChange};
        QTest::newRow("inserted on an earlier page")
            << 1 << "insert at 0" << QStringList(changed(0, 9)) << (rowIds(9, 10)) << ModelTesters::Departures();
    }

    void sourceGrows()
    {
        QFETCH(int, startPage);
        QFETCH(QString, operation);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedIds);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        view->setPage(startPage);
        SignalLog log(view.get());
        if (operation == QLatin1String("append 1"))
            source->AppendItem(item(QStringLiteral("r25")));
        else if (operation == QLatin1String("append 6"))
            source->AppendItemsList(items(rowIds(25, 6)));
        else
            QVERIFY(source->InsertItem(0, item(QStringLiteral("x"))));
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(ids(view.get()), expectedIds);
    }

    void sourceDataChanges_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("top");
        QTest::addColumn<int>("bottom");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::newRow("inside the page") << 1 << 12 << 12 << QStringList(changed(2, 2));
        QTest::newRow("before the page") << 1 << 3 << 9 << QStringList();
        QTest::newRow("after the page") << 1 << 20 << 24 << QStringList();
        QTest::newRow("across the page's start") << 1 << 5 << 14 << QStringList(changed(0, 4));
        QTest::newRow("across the page's end") << 0 << 5 << 14 << QStringList(changed(5, 9));
        QTest::newRow("over the whole source") << 2 << 0 << 24 << QStringList(changed(0, 4));
        QTest::newRow("reversed range") << 1 << 14 << 12 << QStringList();
    }

    void sourceDataChanges()
    {
        QFETCH(int, page);
        QFETCH(int, top);
        QFETCH(int, bottom);
        QFETCH(QStringList, expectedLog);
        // Page 2 is the short last one: the move announces its fewer rows after it.
        if (page == 2)
            ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        view->setPage(page);
        SignalLog log(view.get());
        view->SourceModelDataChangedHandler(source->index(top, 0), source->index(bottom, 0));
        QCOMPARE(log.take(), expectedLog);
    }

    void itemChangeReachesItsPage()
    {
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        view->setPage(1);
        SignalLog log(view.get());
        qobject_cast<XOLATreeItem*>(source->FindItem(13))->SetName(QStringLiteral("thirteen"));
        QCOMPARE(log.take(), QStringList(changed(3, 3)));
        QCOMPARE(view->data(view->index(3, 0), XOLATreeItem::NameRole).toString(), QStringLiteral("thirteen"));
        qobject_cast<XOLATreeItem*>(source->FindItem(3))->SetName(QStringLiteral("three"));
        QCOMPARE(log.take(), QStringList());
    }

    void findFamily()
    {
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        for (int page = 0; page < 3; ++page) {
            view->setPage(page);
            // The position within a page, whatever page is shown
            QCOMPARE(view->FindItemRow(QStringLiteral("r23")), 3);
            QCOMPARE(view->FindItemRow(QStringLiteral("r7")), 7);
            // An unknown id: 4294967295 modulo the page size
            QCOMPARE(view->FindItemRow(QStringLiteral("nope")), 5);
            // Ids are found in the whole source
            QCOMPARE(view->FindItem(QStringLiteral("r23")), source->FindItem(23));
            QCOMPARE(view->FindItemValue(QStringLiteral("r4"), int(XOLATreeItem::NameRole)).toString(),
                     QStringLiteral("name-r4"));
            QCOMPARE(view->FindItemValue(QStringLiteral("r4"), QStringLiteral("nameRole")).toString(),
                     QStringLiteral("name-r4"));
            QCOMPARE(view->FindItemValueEx(QStringLiteral("r14"), int(XOLATreeItem::IdRole), false).toString(),
                     QStringLiteral("r14"));
            QCOMPARE(view->FindItemValueEx(QStringLiteral("r14"), QStringLiteral("idRole"), true).toString(),
                     QStringLiteral("r14"));
            // Rows go through the page
            QCOMPARE(view->FindItem(2), source->FindItem(page * 10 + 2));
            QCOMPARE(view->FindItemID(2), QStringLiteral("r%1").arg(page * 10 + 2));
            QCOMPARE(view->FindItemValue(2, int(XOLATreeItem::NameRole)).toString(),
                     QStringLiteral("name-r%1").arg(page * 10 + 2));
            QCOMPARE(view->FindItemValue(2, QStringLiteral("nameRole")).toString(),
                     QStringLiteral("name-r%1").arg(page * 10 + 2));
            QCOMPARE(view->get(1).value(QStringLiteral("idRole")).toString(), QStringLiteral("r%1").arg(page * 10 + 1));
        }
        // No check against the page's rows: row 7 of the short last page is the source's row 27, which does not exist
        QCOMPARE(view->FindItem(7), static_cast<QObject*>(nullptr));
        QCOMPARE(view->FindItemID(7), QString());
        QVERIFY(!view->FindItemValue(7, int(XOLATreeItem::IdRole)).isValid());
        QVERIFY(!view->data(view->index(5, 0), XOLATreeItem::IdRole).isValid());
        QVERIFY(!view->FindItemValue(QStringLiteral("nope"), int(XOLATreeItem::IdRole)).isValid());
        // Row lookups past a page reach into the next one
        view->setPage(0);
        QCOMPARE(view->FindItemID(12), QStringLiteral("r12"));
        QVERIFY(!view->data(view->index(-1, 0), XOLATreeItem::IdRole).isValid());
    }

    void oneUnboundedPage()
    {
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(makeSource(5));
        PagingPtr view(pagingView(source.get(), 0));
        QCOMPARE(view->numPerPage(), 4294967295u);
        QCOMPARE(view->totalPage(), 1);
        QCOMPARE(view->rowCount(), 5);
        QCOMPARE(view->FindItemRow(QStringLiteral("r3")), 3);
        QCOMPARE(view->FindItemRow(QStringLiteral("nope")), 0);
        SignalLog log(view.get());
        source->AppendItem(item(QStringLiteral("r5")));
        QCOMPARE(log.take(), QStringList(changed(0, 5)) + inserted(5, 5));
        QCOMPARE(ids(view.get()), rowIds(0, 6));
        view->setPage(1);
        QCOMPARE(view->page(), 0);
    }

    void withoutSource()
    {
        PagingPtr view(ModelTesters::watch(new PagingModelImp(nullptr, 10)));
        QCOMPARE(view->totalPage(), 0);
        QCOMPARE(view->rowCount(), 0);
        QCOMPARE(view->FindItemRow(QStringLiteral("a")), -1);
        QCOMPARE(view->FindItem(0), static_cast<QObject*>(nullptr));
        QCOMPARE(view->FindItem(QStringLiteral("a")), static_cast<QObject*>(nullptr));
        QCOMPARE(view->FindItemID(0), QString());
        QVERIFY(!view->data(view->index(0, 0), XOLATreeItem::IdRole).isValid());
        SignalLog log(view.get());
        view->setPage(1);
        QCOMPARE(log.take(), QStringList());
    }

    void removedHandlerIsForHostsThatConnectIt()
    {
        // The view follows removals through its count handler only
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(makeSource(25));
        PagingPtr view(pagingView(source.get(), 10));
        view->setPage(2);
        SignalLog log(view.get());
        // A host-connected handler resets the view for a removal on an earlier page
        view->SourceModelItemRemovedHandler(QModelIndex(), 3, 3);
        QCOMPARE(log.take(), QStringList({"modelAboutToBeReset()", "modelReset()", "rowCountChanged()"}));
        // and does nothing else for one on the current page
        view->SourceModelItemRemovedHandler(QModelIndex(), 21, 21);
        QCOMPARE(log.take(), QStringList());
    }

    void resetAndLayoutAreRelayed()
    {
        ModelTesters::expect(ModelTesters::ViewsForwardLoneEnds);
        ModelPtr source(makeSource(5));
        PagingPtr view(pagingView(source.get(), 2));
        SignalLog log(view.get());
        source->MoveRow(0, 4);
        QCOMPARE(log.take(), QStringList({"modelReset()"}));
        QCOMPARE(ids(view.get()), QStringList({"r1", "r2"}));
        QVERIFY(QMetaObject::invokeMethod(source.get(), "layoutAboutToBeChanged"));
        QVERIFY(QMetaObject::invokeMethod(source.get(), "layoutChanged"));
        QCOMPARE(log.take(), QStringList({"layoutChanged()"}));
    }

    void pagingOfAFilterView()
    {
        ModelTesters::expect({ModelTesters::PagingRowsAfterChange, ModelTesters::FilterEntryAfterChange});
        // Given a predicate view letting through ids that start with the rule value
        auto match = [](const QObject* object, const QVariant& rule) {
            auto* item = qobject_cast<const XOLATreeItem*>(object);
            return item && item->id().startsWith(rule.toString());
        };
        ModelPtr source(createModel(0, extendedRoleNames(), nullptr, match));
        appendEach(source.get(), items({"a0", "b0", "a1", "a2", "b1", "a3", "a4"}));
        std::unique_ptr<XOLATreeModel> filter(
            ModelTesters::watch(qobject_cast<XOLATreeModel*>(source->GetFilterModelByUserDefinedRules(QVariant("a")))));
        QVERIFY(filter);
        QCOMPARE(ids(filter.get()), QStringList({"a0", "a1", "a2", "a3", "a4"}));
        // When it is paged by 2
        PagingPtr view(pagingView(filter.get(), 2));
        QCOMPARE(view->totalPage(), 3);
        view->setPage(2);
        QCOMPARE(ids(view.get()), QStringList({"a4"}));
        SignalLog log(view.get());
        // Then rows passing the filter later extend the pages
        source->AppendItem(item(QStringLiteral("a5")));
        QCOMPARE(log.take(), QStringList(changed(0, 1)) + inserted(1, 1));
        QCOMPARE(ids(view.get()), QStringList({"a4", "a5"}));
        source->AppendItem(item(QStringLiteral("a6")));
        QCOMPARE(log.take(), QStringList({"totalPageChanged(4)"}));
        // and removals through the filter pull the page back (removal by id list
        // hands the items back to the caller)
        std::unique_ptr<QObject> a5(source->FindItem(QStringLiteral("a5")));
        std::unique_ptr<QObject> a6(source->FindItem(QStringLiteral("a6")));
        QVERIFY(source->Remove(QStringList({"a5", "a6"})));
        QCOMPARE(view->totalPage(), 3);
        QCOMPARE(view->page(), 2);
        QCOMPARE(ids(view.get()), QStringList({"a4"}));
        QVERIFY(source->RemoveOne(QStringLiteral("a4")));
        QCOMPARE(view->totalPage(), 2);
        QCOMPARE(view->page(), 1);
        QCOMPARE(ids(view.get()), QStringList({"a2", "a3"}));
        view.reset();
        filter.reset();
    }

    void pagingOfAGroupView()
    {
        // The groups of a group view page like any rows
        ModelTesters::expect(ModelTesters::PagingRowsAfterChange);
        ModelPtr source(createModel(0, extendedRoleNames()));
        QList<XOLATreeItem*> list;
        for (int i = 0; i < 7; ++i) {
            auto* member = new ValueItem(QStringLiteral("m%1").arg(i), QStringLiteral("n%1").arg(i));
            member->setExtra(ValueItem::GroupRole, QStringLiteral("g%1").arg(i % 5));
            list << member;
        }
        appendEach(source.get(), list);
        std::unique_ptr<XOLATreeModel> groups(
            ModelTesters::watch(qobject_cast<XOLATreeModel*>(source->GetGroupModel(ValueItem::GroupRole))));
        PagingPtr view(pagingView(groups.get(), 2));
        QCOMPARE(view->totalPage(), 3);
        view->setPage(2);
        QCOMPARE(ids(view.get()), QStringList({"g4"}));
        SignalLog log(view.get());
        auto* member = new ValueItem(QStringLiteral("m7"), QStringLiteral("n7"));
        member->setExtra(ValueItem::GroupRole, QStringLiteral("g5"));
        source->AppendItem(member);
        QCOMPARE(log.take(), QStringList(changed(0, 1)) + inserted(1, 1));
        QCOMPARE(ids(view.get()), QStringList({"g4", "g5"}));
        view.reset();
        groups.reset();
    }
};

QTEST_GUILESS_MAIN(TestPagingModel)

#include "tst_pagingmodel.moc"
