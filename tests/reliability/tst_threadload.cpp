// Threads under load: four threads mutate one model through the operations that
// are carried to the model's thread (AppendItem, InsertItem, AppendItemsList,
// ReplaceItemsList, ReplaceItemsListEx, RemoveOne, Remove(rowH, rowT), MoveRow,
// RemoveAll, and the prepends that fail from another thread) while a filter
// view, a group view, a paging view and the partial window are attached, and
// the owner thread, running its event loop as documented, mutates, sorts and
// reads as well. 10,000 operations from the threads; then the final state must
// be consistent, every notice must have come on the owner thread, and nothing
// may deadlock.

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "NoticeBalance.h"
#include "PagingModelImp.h"
#include "PartialModel.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QMutex>
#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <atomic>
#include <memory>
#include <random>
#include <vector>

using namespace TestSupport;

namespace {

const int ValueRole = ValueItem::ValueRole;
const int GroupRole = ValueItem::GroupRole;
const int kThreads = 4;
const int kOperationsPerThread = 2500;

ValueItem* newItem(const QString& id, int value)
{
    auto* item = new ValueItem(id, QStringLiteral("name-") + id, value);
    item->setExtra(GroupRole, QStringLiteral("g%1").arg(value % 5));
    return item;
}

//! Every item made anywhere, guarded, so that the end can tell which are alive.
class Registry
{
public:
    void add(XOLATreeItem* item)
    {
        QMutexLocker lock(&m_mutex);
        m_items.emplace_back(item);
    }
    //! Read once every thread has finished.
    const std::vector<QPointer<XOLATreeItem>>& items() const { return m_items; }

private:
    QMutex m_mutex;
    std::vector<QPointer<XOLATreeItem>> m_items;
};

//! What one thread does: routed operations only, with arguments of any quality.
void mutate(XOLATreeModel* model, int thread, Registry& registry, std::atomic<int>& done, std::atomic<int>& succeeded)
{
    std::mt19937 random(1000u + quint32(thread));
    auto below = [&random](int n) { return int(random() % quint32(n)); };
    int serial = 0;
    auto make = [&]() {
        XOLATreeItem* item = newItem(QStringLiteral("t%1-%2").arg(thread).arg(serial++), below(10));
        registry.add(item);
        return item;
    };
    auto someId = [&]() { return QStringLiteral("t%1-%2").arg(below(kThreads)).arg(serial > 0 ? below(serial) : 0); };
    for (int i = 0; i < kOperationsPerThread; ++i) {
        const int what = below(100);
        bool ok = false;
        if (what < 30) {
            ok = model->AppendItem(make());
        } else if (what < 38) {
            ok = model->InsertItem(below(40) - 5, make()); // carried over as an append
        } else if (what < 48) {
            QList<XOLATreeItem*> list;
            for (int n = below(5); n >= 0; --n)
                list << (below(8) == 0 ? nullptr : make());
            ok = model->AppendItemsList(list);
        } else if (what < 53) {
            // Prepending is owner-thread only: it fails here and the item stays ours.
            std::unique_ptr<XOLATreeItem> item(newItem(QStringLiteral("p"), 0));
            ok = !model->PrependItem(item.get()) && !model->PrependItemsList({item.get()});
        } else if (what < 70) {
            model->RemoveOne(someId());
            ok = true;
        } else if (what < 82) {
            const int first = below(60) - 5;
            model->Remove(first, first + below(4));
            ok = true;
        } else if (what < 95) {
            model->MoveRow(below(60) - 5, below(60) - 5);
            ok = true;
        } else if (what < 97) {
            ok = model->ReplaceItemsListEx({make(), nullptr, make(), make()});
        } else if (what < 99) {
            ok = model->ReplaceItemsList({make(), make()});
        } else {
            model->RemoveAll();
            ok = true;
        }
        if (ok)
            ++succeeded;
        ++done;
    }
}

} // namespace

class TestThreadLoad : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { flushDeferredDeletes(); }
    void routedOperationsUnderLoad_data();
    void routedOperationsUnderLoad();
};

void TestThreadLoad::routedOperationsUnderLoad_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("owning its items") << 0;
    QTest::newRow("merging duplicates") << int(XOLATreeModel::MergeDuplicatesOption);
}

void TestThreadLoad::routedOperationsUnderLoad()
{
    QFETCH(int, flags);
    // Given a model on this thread with every view attached
    std::unique_ptr<XOLATreeModel> model(createModel(flags, extendedRoleNames()));
    for (int i = 0; i < 20; ++i)
        model->AppendItem(newItem(QStringLiteral("o%1").arg(i), i % 10));
    const QVariantList rules{QVariantMap{{"RoleName", "valueRole"}, {"Rule", IXOLATreeModel::Ge}, {"Value", 5}}};
    std::unique_ptr<FilterModelImp> filter(qobject_cast<FilterModelImp*>(model->GetFilterModel(rules)));
    std::unique_ptr<GroupModelImp> group(qobject_cast<GroupModelImp*>(model->GetGroupModel(GroupRole, true)));
    std::unique_ptr<PagingModelImp> paging(qobject_cast<PagingModelImp*>(model->GetPagingModel(7)));
    auto* partial = qobject_cast<PartialModel*>(model->GetPartialModel(6));
    QList<NoticeBalance*> balances{new NoticeBalance(model.get(), QStringLiteral("model")),
                                   new NoticeBalance(filter.get(), QStringLiteral("filter")),
                                   new NoticeBalance(group.get(), QStringLiteral("group")),
                                   new NoticeBalance(paging.get(), QStringLiteral("paging"))};
    // Every notice of the model and of the views must come on this thread.
    std::atomic<int> foreignNotices{0};
    QThread* const owner = QThread::currentThread();
    for (QAbstractItemModel* m : {static_cast<QAbstractItemModel*>(model.get()), static_cast<QAbstractItemModel*>(filter.get()),
                                  static_cast<QAbstractItemModel*>(group.get()), static_cast<QAbstractItemModel*>(paging.get()),
                                  static_cast<QAbstractItemModel*>(partial)}) {
        auto check = [&foreignNotices, owner]() {
            if (QThread::currentThread() != owner)
                ++foreignNotices;
        };
        connect(m, &QAbstractItemModel::rowsInserted, this, check, Qt::DirectConnection);
        connect(m, &QAbstractItemModel::rowsRemoved, this, check, Qt::DirectConnection);
        connect(m, &QAbstractItemModel::dataChanged, this, check, Qt::DirectConnection);
        connect(m, &QAbstractItemModel::modelReset, this, check, Qt::DirectConnection);
    }

    // When four threads mutate it while this thread runs its event loop and
    // mutates, sorts and reads too
    Registry registry;
    std::atomic<int> done{0};
    std::atomic<int> succeeded{0};
    std::vector<std::unique_ptr<QThread>> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(QThread::create(mutate, model.get(), t, std::ref(registry), std::ref(done), std::ref(succeeded)));

    QEventLoop loop;
    int finished = 0;
    for (auto& thread : threads) {
        connect(thread.get(), &QThread::finished, &loop, [&]() {
            if (++finished == kThreads)
                loop.quit();
        }, Qt::QueuedConnection);
    }
    std::mt19937 random(7u);
    auto below = [&random](int n) { return int(random() % quint32(n)); };
    int ownerOperations = 0;
    QTimer ownerWork;
    ownerWork.setInterval(0);
    connect(&ownerWork, &QTimer::timeout, this, [&]() {
        ++ownerOperations;
        switch (below(10)) {
        case 0:
            model->AppendItem(newItem(QStringLiteral("o%1").arg(100 + ownerOperations), below(10)));
            break;
        case 1:
            model->PrependItem(newItem(QStringLiteral("q%1").arg(ownerOperations), below(10)));
            break;
        case 2:
            if (model->rowCount() > 0)
                model->RemoveOne(model->FindItemID(below(model->rowCount())));
            break;
        case 3:
            model->SortByRules({QVariantMap{{"RoleName", "valueRole"}, {"Ascending", below(2) == 0}}}, below(2));
            break;
        case 4:
            model->SortByRole(QStringLiteral("nameRole"), below(2) == 0);
            break;
        case 5:
            if (model->rowCount() > 0) {
                if (auto* item = qobject_cast<ValueItem*>(model->FindItem(below(model->rowCount()))))
                    item->setExtra(ValueRole, below(10));
            }
            break;
        case 6:
            paging->setPage(below(paging->totalPage() + 1));
            model->SetFirstPartialModelRow(below(model->rowCount() + 2));
            break;
        default: {
            // Reading, as delegates do.
            for (QAbstractItemModel* m : {static_cast<QAbstractItemModel*>(filter.get()), static_cast<QAbstractItemModel*>(group.get()),
                                          static_cast<QAbstractItemModel*>(paging.get()), static_cast<QAbstractItemModel*>(partial)}) {
                for (int row = 0; row < m->rowCount(); ++row)
                    m->data(m->index(row, 0), XOLATreeItem::IdRole);
            }
            break;
        }
        }
    });
    bool deadlocked = false;
    QTimer::singleShot(120000, &loop, [&]() {
        deadlocked = true;
        loop.quit();
    });
    QElapsedTimer clock;
    clock.start();
    ownerWork.start();
    for (auto& thread : threads)
        thread->start();
    loop.exec();
    ownerWork.stop();
    QVERIFY2(!deadlocked, qPrintable(QStringLiteral("no progress: %1 operations done").arg(done.load())));
    for (auto& thread : threads)
        QVERIFY(thread->wait(10000));
    flushDeferredDeletes();
    qDebug("%d thread operations (%d succeeded) and %d owner operations in %lld ms", done.load(), succeeded.load(),
           ownerOperations, clock.elapsed());

    // Then all the operations ran, on this thread, and the books balance
    QCOMPARE(done.load(), kThreads * kOperationsPerThread);
    QCOMPARE(succeeded.load(), kThreads * kOperationsPerThread);
    QCOMPARE(foreignNotices.load(), 0);
    for (NoticeBalance* balance : balances) {
        QCOMPARE(balance->takeProblems(), QStringList());
        QCOMPARE(balance->openNotice(), QString());
        balance->resync(); // prepends are announced at the old end: the count stays right
    }

    // The model's rows and lookups agree, and every listed item is alive
    QList<QString> rowIds;
    model->GetAllIDs(rowIds, false);
    QCOMPARE(rowIds.size(), model->rowCount());
    QSet<const QObject*> listed;
    for (int row = 0; row < model->rowCount(); ++row) {
        QObject* item = model->FindItem(row);
        QVERIFY(item);
        listed.insert(item);
        QCOMPARE(model->FindItemID(row), rowIds.at(row));
        QCOMPARE(model->FindItemRow(rowIds.at(row)), row);
        QCOMPARE(model->FindItem(rowIds.at(row)), item);
        QCOMPARE(item->thread(), model->thread()); // handed over to the model's thread
    }
    // Items the model let go of were deleted; none was lost while listed
    int alive = 0;
    for (const QPointer<XOLATreeItem>& item : registry.items()) {
        if (item) {
            ++alive;
            QVERIFY2(listed.contains(item.data()), qPrintable(item->id()));
        }
    }
    QVERIFY(alive <= model->rowCount());

    // The views: the filter shows only passing source rows, and exactly those
    // after a rebuild; the group view is a regrouping; the paging arithmetic holds
    for (int row = 0; row < filter->rowCount(); ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(filter->FindItem(row));
        QVERIFY(listed.contains(item));
        QVERIFY(item->getData(ValueRole).toInt() >= 5);
    }
    filter->UpdateFilterRules({}, true);
    QCOMPARE(filter->rowCount(), model->rowCount());
    QStringList expectedGroups;
    {
        QStringList keys;
        QHash<QString, QStringList> members;
        for (int row = 0; row < model->rowCount(); ++row) {
            const QString key = model->FindItemValue(row, GroupRole).toString();
            if (!members.contains(key))
                keys << key;
            members[key] << model->FindItemID(row);
        }
        for (const QString& key : qAsConst(keys))
            expectedGroups << key + QLatin1Char(':') + members.value(key).join(QLatin1Char(','));
    }
    auto groupsOf = [](const GroupModelImp* view, bool sorted) {
        QStringList result;
        for (int row = 0; row < view->rowCount(); ++row) {
            auto* members = qobject_cast<XOLATreeModel*>(view->FindItemValue(row, int(XOLATreeItem::ChildModelRole)).value<QObject*>());
            QStringList list = members ? ids(members) : QStringList{QStringLiteral("<none>")};
            if (sorted)
                list.sort();
            result << view->FindItemID(row) + QLatin1Char(':') + list.join(QLatin1Char(','));
        }
        if (sorted)
            result.sort();
        return result;
    };
    auto sortedGroups = [](QStringList groups) {
        for (QString& group : groups) {
            QStringList parts = group.section(QLatin1Char(':'), 1).split(QLatin1Char(','));
            parts.sort();
            group = group.section(QLatin1Char(':'), 0, 0) + QLatin1Char(':') + parts.join(QLatin1Char(','));
        }
        groups.sort();
        return groups;
    };
    // The live groups hold the right members (a row move is a reset the view only
    // forwards, so their order may be older) ...
    QCOMPARE(groupsOf(group.get(), true), sortedGroups(expectedGroups));
    // ... and a regrouping gives the source's order.
    group->UpdateGroupRole(ValueRole);
    group->UpdateGroupRole(GroupRole);
    QCOMPARE(groupsOf(group.get(), false), expectedGroups);
    const int count = model->rowCount();
    QCOMPARE(paging->totalPage(), count / 7 + (count % 7 ? 1 : 0));
    QVERIFY(paging->page() >= 0 && paging->page() <= qMax(0, paging->totalPage() - 1));

    // And everything goes cleanly
    filter.reset();
    group.reset();
    paging.reset();
    model.reset();
    flushDeferredDeletes();
    for (const QPointer<XOLATreeItem>& item : registry.items())
        QVERIFY(item.isNull());
}

QTEST_GUILESS_MAIN(TestThreadLoad)

#include "tst_threadload.moc"
