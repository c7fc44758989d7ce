// Removal, moves and change notification: RemoveAll, RemoveOne (by id and by
// item), Remove (ids and rows), MoveRow and EmitValueChange.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <climits>
#include <memory>

using namespace TestSupport;

namespace {

const int KeepRemoved = XOLATreeModel::KeepRemovedItemsOption;

XOLATreeItem* at(const IXOLATreeModel* model, int row)
{
    return qobject_cast<XOLATreeItem*>(model->FindItem(row));
}

//! Deletes the model, and the rows it still lists when it keeps removed items.
struct ModelDeleter {
    void operator()(XOLATreeModel* model) const
    {
        QList<XOLATreeItem*> listed;
        if (model->flags() & KeepRemoved) {
            for (int row = 0; row < model->rowCount(); ++row)
                listed << at(model, row);
        }
        delete model;
        qDeleteAll(listed);
    }
};

using ModelPtr = std::unique_ptr<XOLATreeModel, ModelDeleter>;

ModelPtr modelWith(const QStringList& rowIds, int flags = 0)
{
    ModelPtr model(createModel(flags));
    if (model && !rowIds.isEmpty())
        appendEach(model.get(), items(rowIds));
    return model;
}

QString range(const char* name, int first, int last)
{
    return QStringLiteral("%1(%2,%3)").arg(QLatin1String(name)).arg(first).arg(last);
}

QStringList removed(int first, int last)
{
    return {range("rowsAboutToBeRemoved", first, last), range("rowsRemoved", first, last)};
}

QString dataChanged(int first, int last)
{
    return range("dataChanged", first, last);
}

QList<QObject*> objects(const IXOLATreeModel* model)
{
    QList<QObject*> result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->FindItem(row);
    return result;
}

QList<QPointer<XOLATreeItem>> guards(const IXOLATreeModel* model)
{
    QList<QPointer<XOLATreeItem>> result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << QPointer<XOLATreeItem>(at(model, row));
    return result;
}

int alive(const QList<QPointer<XOLATreeItem>>& list)
{
    int count = 0;
    for (const auto& guard : list)
        count += guard.isNull() ? 0 : 1;
    return count;
}

void deleteAll(const QList<QPointer<XOLATreeItem>>& list)
{
    for (const auto& guard : list)
        delete guard.data();
}

//! A model with rows a, b, c, d, e where c holds a child model with rows g1, g2.
struct TreeFixture {
    explicit TreeFixture(int flags)
        : model(modelWith({}, flags))
    {
        child = createModel();
        appendEach(child, items({"g1", "g2"}));
        childGuard = child;
        childRows = guards(child);
        appendEach(model.get(), {item("a"), item("b"), item("c", child), item("d"), item("e")});
    }
    ~TreeFixture()
    {
        model.reset();
        flushDeferredDeletes();
        delete childGuard.data();
        flushDeferredDeletes();
    }

    ModelPtr model;
    XOLATreeModel* child = nullptr;
    QPointer<XOLATreeModel> childGuard;
    QList<QPointer<XOLATreeItem>> childRows;
};

} // namespace

class TestRemoval : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    // ---- RemoveAll ------------------------------------------------------------------

    void removeAll_emptyModelSendsNothing()
    {
        ModelPtr model = modelWith({});
        SignalLog log(model.get());
        model->RemoveAll();
        model->clear();
        QCOMPARE(log.take(), QStringList());
    }

    void removeAll_data()
    {
        QTest::addColumn<bool>("viaClear");
        QTest::newRow("RemoveAll") << false;
        QTest::newRow("clear") << true;
    }

    void removeAll()
    {
        QFETCH(bool, viaClear);
        // Given rows a..e, c holding a child model
        TreeFixture f(0);
        const auto rows = guards(f.model.get());
        SignalLog log(f.model.get());
        SignalLog childLog(f.child);
        ItemSignalLog cLog(at(f.model.get(), 2));
        // When
        if (viaClear)
            f.model->clear();
        else
            f.model->RemoveAll();
        // Then
        QCOMPARE(log.take(), removed(0, 4) << "allItemRemoved()" << "rowCountChanged()");
        QCOMPARE(childLog.take(), removed(0, 1) << "allItemRemoved()" << "rowCountChanged()");
        QCOMPARE(cLog.take(), QStringList({"childModelValueChanged()"}));
        QCOMPARE(f.model->rowCount(), 0);
        QCOMPARE(f.model->FindItem("a"), nullptr);
        QCOMPARE(f.model->FindItemRow("a"), -1);
        // Nothing is disconnected here, only handed to the event loop.
        emit f.child->rowCountChanged();
        QCOMPARE(childLog.take(), QStringList({"rowCountChanged()"}));
        QCOMPARE(alive(rows), 5);
        QVERIFY(!f.childGuard.isNull());
        flushDeferredDeletes();
        QCOMPARE(alive(rows), 0);
        QVERIFY(f.childGuard.isNull());
        QCOMPARE(alive(f.childRows), 0);
    }

    void removeAll_keepingRemovedItems()
    {
        TreeFixture f(KeepRemoved);
        const auto rows = guards(f.model.get());
        SignalLog log(f.model.get());
        SignalLog childLog(f.child);
        f.model->RemoveAll();
        QCOMPARE(log.take(), removed(0, 4) << "allItemRemoved()" << "rowCountChanged()");
        QCOMPARE(childLog.take(), QStringList());
        flushDeferredDeletes();
        QCOMPARE(alive(rows), 5);
        QVERIFY(!f.childGuard.isNull());
        QCOMPARE(ids(f.child), QStringList({"g1", "g2"}));
        deleteAll(rows);
    }

    void destroyingTheModelRemovesEveryRowFirst()
    {
        XOLATreeModel* model = createModel();
        appendEach(model, items({"a", "b"}));
        const auto rows = guards(model);
        SignalLog log(model);
        delete model;
        QCOMPARE(log.take(), removed(0, 1) << "allItemRemoved()" << "rowCountChanged()");
        QCOMPARE(alive(rows), 2);
        flushDeferredDeletes();
        QCOMPARE(alive(rows), 0);
    }

    // ---- RemoveOne by id -------------------------------------------------------------

    void removeOne_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<QString>("id");
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("first") << 0 << "a" << 0 << QStringList({"b", "c"});
        QTest::newRow("middle") << 0 << "b" << 1 << QStringList({"a", "c"});
        QTest::newRow("last") << 0 << "c" << 2 << QStringList({"a", "b"});
        QTest::newRow("middle, keeping removed items") << KeepRemoved << "b" << 1 << QStringList({"a", "c"});
    }

    void removeOne()
    {
        QFETCH(int, flags);
        QFETCH(QString, id);
        QFETCH(int, row);
        QFETCH(QStringList, after);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"}, flags);
        XOLATreeItem* target = at(model.get(), row);
        QPointer<XOLATreeItem> guard(target);
        SignalLog log(model.get());
        ItemSignalLog itemLog(target);
        // When
        QVERIFY(model->RemoveOne(id));
        // Then
        QCOMPARE(log.take(), removed(row, row) << QString("itemsRemoved(%1)").arg(id) << "rowCountChanged()");
        QCOMPARE(ids(model.get()), after);
        QCOMPARE(model->FindItem(id), nullptr);
        QCOMPARE(model->FindItemRow(id), -1);
        // A removed item no longer reaches the model's views.
        target->SetName("renamed");
        QCOMPARE(log.take(), QStringList());
        if (flags & KeepRemoved) {
            // Left alive and connected.
            QCOMPARE(itemLog.take(), QStringList({"valueChanged()"}));
            flushDeferredDeletes();
            QVERIFY(!guard.isNull());
            delete target;
        } else {
            // Disconnected from everything and deleted later.
            QCOMPARE(itemLog.take(), QStringList());
            QVERIFY(!guard.isNull());
            flushDeferredDeletes();
            QVERIFY(guard.isNull());
        }
    }

    void removeOne_disposesTheChildModel()
    {
        // Given
        TreeFixture f(0);
        SignalLog log(f.model.get());
        SignalLog childLog(f.child);
        QStringList order;
        QObject context; // ends both connections before order goes
        connect(f.child, &XOLATreeModel::allItemRemoved, &context, [&] { order << "child emptied"; });
        connect(f.model.get(), &QAbstractItemModel::rowsAboutToBeRemoved, &context, [&] { order << "row leaves"; });
        // When
        QVERIFY(f.model->RemoveOne("c"));
        // Then the child is emptied first, then disconnected, then deleted later.
        QCOMPARE(order, QStringList({"child emptied", "row leaves"}));
        QCOMPARE(childLog.take(), removed(0, 1) << "allItemRemoved()" << "rowCountChanged()");
        QCOMPARE(log.take(), removed(2, 2) << "itemsRemoved(c)" << "rowCountChanged()");
        emit f.child->rowCountChanged();
        QCOMPARE(childLog.take(), QStringList());
        QVERIFY(!f.childGuard.isNull());
        flushDeferredDeletes();
        QVERIFY(f.childGuard.isNull());
        QCOMPARE(alive(f.childRows), 0);
        QCOMPARE(ids(f.model.get()), QStringList({"a", "b", "d", "e"}));
    }

    void removeOne_keepsTheChildModelWhenKeepingRemovedItems()
    {
        TreeFixture f(KeepRemoved);
        XOLATreeItem* c = at(f.model.get(), 2);
        SignalLog childLog(f.child);
        QVERIFY(f.model->RemoveOne("c"));
        QCOMPARE(childLog.take(), QStringList());
        flushDeferredDeletes();
        QVERIFY(!f.childGuard.isNull());
        QCOMPARE(ids(f.child), QStringList({"g1", "g2"}));
        delete c;
    }

    void removeOne_unknownId()
    {
        ModelPtr model = modelWith({"a", "b"});
        SignalLog log(model.get());
        QVERIFY(!model->RemoveOne("zz"));
        QVERIFY(!model->RemoveOne(QString()));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "b"}));
    }

    void removeOne_idOfAnItemNoLongerListed()
    {
        // Given a stale id left behind by a row removal that keeps items
        ModelPtr model = modelWith({"a", "b", "c"}, KeepRemoved);
        const auto rows = guards(model.get());
        QVERIFY(model->Remove(1, 1));
        QCOMPARE(model->FindItem("b"), rows.at(1).data());
        SignalLog log(model.get());
        // When / Then it answers as unknown
        QVERIFY(!model->RemoveOne("b"));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "c"}));
        delete rows.at(1).data();
    }

    void removeOne_looksOnlyAtItsOwnRows()
    {
        // Ids held by child models are not this model's rows.
        TreeFixture f(0);
        SignalLog log(f.model.get());
        QVERIFY(!f.model->RemoveOne("g1"));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(f.child), QStringList({"g1", "g2"}));
    }

    // ---- RemoveOne by item -------------------------------------------------------------

    void removeOne_item()
    {
        // Given
        TreeFixture f(0);
        XOLATreeItem* c = at(f.model.get(), 2);
        QPointer<XOLATreeItem> guard(c);
        SignalLog log(f.model.get());
        // When
        f.model->RemoveOne(c);
        // Then only the row removal is announced and the item is left alive;
        // its child model is disposed of.
        QCOMPARE(log.take(), removed(2, 2));
        QCOMPARE(ids(f.model.get()), QStringList({"a", "b", "d", "e"}));
        QCOMPARE(f.model->FindItem("c"), nullptr);
        flushDeferredDeletes();
        QVERIFY(!guard.isNull());
        QVERIFY(f.childGuard.isNull());
        delete c;
    }

    void removeOne_itemNotListed()
    {
        ModelPtr model = modelWith({"a", "b"});
        SignalLog log(model.get());
        XOLATreeItem* stranger = item("a");
        model->RemoveOne(stranger);
        model->RemoveOne(static_cast<XOLATreeItem*>(nullptr));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "b"}));
        QVERIFY(model->FindItem("a") != stranger);
        QCOMPARE(model->FindItemRow("a"), 0);
        delete stranger;
    }

    // ---- Remove by ids ------------------------------------------------------------------

    void removeIds_data()
    {
        QTest::addColumn<int>("flags");
        QTest::newRow("owning") << 0;
        QTest::newRow("keeping removed items") << KeepRemoved;
    }

    void removeIds()
    {
        QFETCH(int, flags);
        // Given
        ModelPtr model = modelWith({"a", "b", "c", "d"}, flags);
        XOLATreeItem* a = at(model.get(), 0);
        XOLATreeItem* b = at(model.get(), 1);
        QPointer<XOLATreeItem> aGuard(a);
        QPointer<XOLATreeItem> bGuard(b);
        SignalLog log(model.get());
        ItemSignalLog aLog(a);
        // When
        QVERIFY(model->Remove(QStringList({"a", "zz", "b"})));
        // Then
        QCOMPARE(log.take(), removed(0, 0) + removed(0, 0) << "itemsRemoved(a,b)" << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"c", "d"}));
        QCOMPARE(model->FindItem("a"), nullptr);
        QCOMPARE(model->FindItem("b"), nullptr);
        // The items are handed back alive, whatever the options; changes of
        // theirs no longer reach the model.
        flushDeferredDeletes();
        QVERIFY(!aGuard.isNull());
        QVERIFY(!bGuard.isNull());
        a->SetName("renamed");
        QCOMPARE(aLog.take(), QStringList({"valueChanged()"}));
        QCOMPARE(log.take(), QStringList());
        delete a;
        delete b;
    }

    void removeIds_disposesChildModels()
    {
        TreeFixture f(0);
        XOLATreeItem* c = at(f.model.get(), 2);
        ItemSignalLog cLog(c);
        SignalLog childLog(f.child);
        QVERIFY(f.model->Remove(QStringList({"c"})));
        QCOMPARE(childLog.take(), removed(0, 1) << "allItemRemoved()" << "rowCountChanged()");
        // The child was disconnected: the item hears nothing more of it.
        QCOMPARE(cLog.take(), QStringList({"childModelValueChanged()"}));
        emit f.child->dataChanged(QModelIndex(), QModelIndex());
        QCOMPARE(cLog.take(), QStringList());
        flushDeferredDeletes();
        QVERIFY(f.childGuard.isNull());
        delete c;
    }

    void removeIds_nothingFound_data()
    {
        QTest::addColumn<QStringList>("idList");
        QTest::newRow("unknown ids") << QStringList({"zz", "yy"});
        QTest::newRow("empty list") << QStringList();
    }

    void removeIds_nothingFound()
    {
        QFETCH(QStringList, idList);
        ModelPtr model = modelWith({"a", "b"});
        SignalLog log(model.get());
        QVERIFY(model->Remove(idList));
        QCOMPARE(log.take(), QStringList({"rowCountChanged()"}));
        QCOMPARE(ids(model.get()), QStringList({"a", "b"}));
    }

    void removeIds_repeatedId()
    {
        ModelPtr model = modelWith({"a", "b"});
        XOLATreeItem* a = at(model.get(), 0);
        SignalLog log(model.get());
        QVERIFY(model->Remove(QStringList({"a", "a"})));
        QCOMPARE(log.take(), removed(0, 0) << "itemsRemoved(a)" << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"b"}));
        delete a;
    }

    void removeIds_staleIdIsSkipped()
    {
        ModelPtr model = modelWith({"a", "b", "c"}, KeepRemoved);
        const auto rows = guards(model.get());
        QVERIFY(model->Remove(0, 0));
        SignalLog log(model.get());
        QVERIFY(model->Remove(QStringList({"a", "c"})));
        QCOMPARE(log.take(), removed(1, 1) << "itemsRemoved(c)" << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"b"}));
        delete rows.at(0).data();
        delete rows.at(2).data();
    }

    // ---- Remove by rows ------------------------------------------------------------------

    void removeRows_data()
    {
        QTest::addColumn<int>("rowH");
        QTest::addColumn<int>("rowT");
        QTest::addColumn<QStringList>("gone");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("1..3") << 1 << 3 << QStringList({"b", "c", "d"}) << QStringList({"a", "e"});
        QTest::newRow("0..0") << 0 << 0 << QStringList({"a"}) << QStringList({"b", "c", "d", "e"});
        QTest::newRow("4..4") << 4 << 4 << QStringList({"e"}) << QStringList({"a", "b", "c", "d"});
        QTest::newRow("0..4") << 0 << 4 << QStringList({"a", "b", "c", "d", "e"}) << QStringList();
    }

    void removeRows()
    {
        QFETCH(int, rowH);
        QFETCH(int, rowT);
        QFETCH(QStringList, gone);
        QFETCH(QStringList, after);
        // Given rows a..e, c holding a child model
        TreeFixture f(0);
        QList<QPointer<XOLATreeItem>> goneItems;
        for (int row = rowH; row <= rowT; ++row)
            goneItems << QPointer<XOLATreeItem>(at(f.model.get(), row));
        SignalLog log(f.model.get());
        // When
        QVERIFY(f.model->Remove(rowH, rowT));
        // Then
        QCOMPARE(log.take(), removed(rowH, rowT) << QString("itemsRemoved(%1)").arg(gone.join(','))
                                                 << "rowCountChanged()");
        QCOMPARE(ids(f.model.get()), after);
        for (const QString& id : gone)
            QCOMPARE(f.model->FindItem(id), nullptr);
        QCOMPARE(alive(goneItems), gone.size());
        flushDeferredDeletes();
        QCOMPARE(alive(goneItems), 0);
        QCOMPARE(f.childGuard.isNull(), gone.contains("c"));
    }

    void removeRows_keepingRemovedItems()
    {
        // Given
        TreeFixture f(KeepRemoved);
        const auto rows = guards(f.model.get());
        SignalLog log(f.model.get());
        SignalLog childLog(f.child);
        // When
        QVERIFY(f.model->Remove(1, 3));
        // Then no ids are reported and the ids stay in the index.
        QCOMPARE(log.take(), removed(1, 3) << "rowCountChanged()");
        QCOMPARE(childLog.take(), QStringList());
        QCOMPARE(ids(f.model.get()), QStringList({"a", "e"}));
        QCOMPARE(f.model->FindItem("b"), rows.at(1).data());
        QCOMPARE(f.model->FindItemRow("b"), -1);
        flushDeferredDeletes();
        QCOMPARE(alive(rows), 5);
        QVERIFY(!f.childGuard.isNull());
        deleteAll(rows.mid(1, 3));
    }

    void removeRows_outOfRangeIsRefused_data()
    {
        QTest::addColumn<int>("rowH");
        QTest::addColumn<int>("rowT");
        QTest::newRow("-1..0") << -1 << 0;
        QTest::newRow("-3..-1") << -3 << -1;
        QTest::newRow("0..5") << 0 << 5;
        QTest::newRow("3..5") << 3 << 5;
        QTest::newRow("5..5") << 5 << 5;
        QTest::newRow("2..1") << 2 << 1;
        QTest::newRow("INT_MIN..INT_MAX") << INT_MIN << INT_MAX;
    }

    void removeRows_outOfRangeIsRefused()
    {
        QFETCH(int, rowH);
        QFETCH(int, rowT);
        ModelPtr model = modelWith({"a", "b", "c", "d", "e"});
        const QList<QObject*> before = objects(model.get());
        SignalLog log(model.get());
        QVERIFY(!model->Remove(rowH, rowT));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(objects(model.get()), before);
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c", "d", "e"}));
        for (int row = 0; row < before.size(); ++row) {
            QCOMPARE(model->FindItem(model->FindItemID(row)), before.at(row));
            QCOMPARE(model->FindItemRow(model->FindItemID(row)), row);
        }
        flushDeferredDeletes();
        QCOMPARE(alive(guards(model.get())), 5);
    }

    void removeRows_onEmptyModel()
    {
        ModelPtr model = modelWith({});
        SignalLog log(model.get());
        QVERIFY(!model->Remove(0, 0));
        QCOMPARE(log.take(), QStringList());
    }

    // ---- MoveRow ------------------------------------------------------------------------

    void moveRow_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("0 to 2") << 0 << 2 << QStringList({"b", "c", "a"});
        QTest::newRow("2 to 0") << 2 << 0 << QStringList({"c", "a", "b"});
        QTest::newRow("0 to 1") << 0 << 1 << QStringList({"b", "a", "c"});
        QTest::newRow("1 to 1") << 1 << 1 << QStringList({"a", "b", "c"});
    }

    void moveRow()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QStringList, after);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"});
        XOLATreeItem* moved = at(model.get(), from);
        SignalLog log(model.get());
        // When
        model->MoveRow(from, to);
        // Then views see a reset, not a move, and no count.
        QCOMPARE(log.take(), QStringList({"modelAboutToBeReset()", "modelReset()"}));
        QCOMPARE(ids(model.get()), after);
        QCOMPARE(model->FindItem(to), moved);
        QCOMPARE(model->FindItem(moved->id()), moved);
        QCOMPARE(model->FindItemRow(moved->id()), to);
        // The moved item's changes name its new row.
        moved->SetName("renamed");
        QCOMPARE(log.take(), QStringList({dataChanged(to, to)}));
    }

    void moveRow_outOfRangeIsRefused_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::newRow("-1 to 0") << -1 << 0;
        QTest::newRow("0 to -1") << 0 << -1;
        QTest::newRow("3 to 0") << 3 << 0;
        QTest::newRow("0 to 3") << 0 << 3;
        QTest::newRow("INT_MAX to INT_MIN") << INT_MAX << INT_MIN;
    }

    void moveRow_outOfRangeIsRefused()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        ModelPtr model = modelWith({"a", "b", "c"});
        const QList<QObject*> before = objects(model.get());
        SignalLog log(model.get());
        model->MoveRow(from, to);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(objects(model.get()), before);
        QCOMPARE(model->FindItemRow("c"), 2);
    }

    void moveRow_onEmptyModel()
    {
        ModelPtr model = modelWith({});
        SignalLog log(model.get());
        model->MoveRow(0, 0);
        QCOMPARE(log.take(), QStringList());
    }

    // ---- EmitValueChange -------------------------------------------------------------------

    void valueChange_followsTheRowThroughChanges()
    {
        ModelPtr model = modelWith({"a", "b", "c", "d"});
        XOLATreeItem* b = at(model.get(), 1);
        XOLATreeItem* d = at(model.get(), 3);
        SignalLog log(model.get());

        d->SetName("1");
        QCOMPARE(log.take(), QStringList({dataChanged(3, 3)}));

        QVERIFY(model->RemoveOne("a"));
        log.clear();
        d->SetName("2");
        QCOMPARE(log.take(), QStringList({dataChanged(2, 2)}));

        QVERIFY(model->InsertItem(0, item("x")));
        ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        QVERIFY(model->PrependItem(item("y")));
        log.clear();
        d->SetName("3");
        QCOMPARE(log.take(), QStringList({dataChanged(4, 4)}));

        QVERIFY(model->Remove(0, 1));
        log.clear();
        d->SetName("4");
        QCOMPARE(log.take(), QStringList({dataChanged(2, 2)}));

        QVERIFY(model->Remove(QStringList({"b"})));
        log.clear();
        d->SetName("5");
        QCOMPARE(log.take(), QStringList({dataChanged(1, 1)}));
        delete b; // handed back by the removal by id
    }

    void valueChange_rowsFollowedThroughLongRunsOfRemovalsAndAppends()
    {
        // Given 40 rows, then many single removals (by id and by row) and
        // appends; half way through, one object is listed a second time
        QStringList start;
        for (int i = 0; i < 40; ++i)
            start << QStringLiteral("r%1").arg(i);
        ModelPtr model = modelWith(start);
        XOLATreeItem* twice = at(model.get(), 5);
        SignalLog log(model.get());
        uint state = 7;
        auto next = [&state](int bound) {
            state = state * 1103515245u + 12345u;
            return int((state >> 8) % uint(bound));
        };
        int added = 0;
        for (int step = 0; step < 300; ++step) {
            if (step == 150)
                QVERIFY(model->AppendItem(twice));
            const int count = model->rowCount();
            const int choice = next(4);
            if (choice == 0 && count > 2) {
                XOLATreeItem* victim = at(model.get(), next(count));
                if (victim != twice)
                    QVERIFY(model->RemoveOne(victim->id()));
            } else if (choice == 1 && count > 2) {
                const int row = next(count);
                if (at(model.get(), row) != twice)
                    QVERIFY(model->Remove(row, row));
            } else {
                QVERIFY(model->AppendItem(item(QStringLiteral("n%1").arg(added++))));
            }
            log.clear();
            // When any listed item changes
            const int row = next(model->rowCount());
            XOLATreeItem* changed = at(model.get(), row);
            int first = 0;
            while (at(model.get(), first) != changed)
                ++first;
            changed->SetName(QStringLiteral("s%1").arg(step));
            // Then its first row is the one announced, once per time it was listed.
            QStringList expected({dataChanged(first, first)});
            if (changed == twice && step >= 150)
                expected << dataChanged(first, first);
            QCOMPARE(log.take(), expected);
        }
    }

    void valueChange_eachChangeIsOneNotice()
    {
        ModelPtr model = modelWith({"a", "b"});
        XOLATreeItem* b = at(model.get(), 1);
        SignalLog log(model.get());
        QVariantMap json = b->jsonValue();
        json.insert("idRole", "b2");
        json.insert("nameRole", "B2");
        json.insert("free", 1);
        b->SetJsonValue(json); // id, name, then the map itself
        QCOMPARE(log.take(), QStringList({dataChanged(1, 1), dataChanged(1, 1), dataChanged(1, 1)}));
        b->SetName("B2"); // unchanged
        QCOMPARE(log.take(), QStringList());
    }

    void valueChange_withoutSenderDoesNothing()
    {
        ModelPtr model = modelWith({"a"});
        SignalLog log(model.get());
        model->EmitValueChange();
        QCOMPARE(log.take(), QStringList());
    }

    void valueChange_rowsRearrangedThroughTheListPointer()
    {
        // Given rows a, b, c, and b taken out while staying connected
        ModelPtr model = modelWith({"a", "b", "c"});
        XOLATreeItem* a = at(model.get(), 0);
        XOLATreeItem* b = at(model.get(), 1);
        XOLATreeItem* c = at(model.get(), 2);
        QVERIFY(model->Remove(QStringList({"b"})));
        QList<XOLATreeItem*>* list = model->GetModelItemList();
        SignalLog log(model.get());
        // When a host swaps rows through the list pointer
        list->swapItemsAt(0, 1);
        c->SetName("c1");
        a->SetName("a1");
        // Then changes name the rows as they now stand.
        QCOMPARE(log.take(), QStringList({dataChanged(0, 0), dataChanged(1, 1)}));
        // When b is put back in a's place
        list->replace(1, b);
        b->SetName("b1");
        QCOMPARE(log.take(), QStringList({dataChanged(1, 1)}));
        a->SetName("a2");
        QCOMPARE(log.take(), QStringList());
        delete a;
    }

    void valueChange_childModelChangesAreNotRowChanges()
    {
        // A child model's own changes travel by the item's other signal.
        TreeFixture f(0);
        SignalLog log(f.model.get());
        f.child->AppendItem(item("g3"));
        QCOMPARE(log.take(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestRemoval)

#include "tst_removal.moc"
