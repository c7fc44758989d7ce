// Mutations called from other threads: they are carried to the model's thread
// by the worker, the caller waits, and every notice comes on the model's thread.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"
#include "XOLATreeModelPrivate.h"
#include "XOLATreeModelWorker.h"

#include <QtCore/QEventLoop>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <array>
#include <functional>
#include <memory>
#include <vector>

using namespace TestSupport;

namespace {

using ModelPtr = std::unique_ptr<XOLATreeModel>;

const int MergeDuplicates = XOLATreeModel::MergeDuplicatesOption;

ModelPtr modelWith(const QStringList& rowIds, int flags = 0)
{
    ModelPtr model(createModel(flags));
    if (model && !rowIds.isEmpty())
        appendEach(model.get(), items(rowIds));
    return model;
}

//! Gives tests the model's worker.
class WorkerAccess : public XOLATreeModel
{
public:
    using XOLATreeModel::XOLATreeModel;
    XOLATreeModelWorker* worker() const { return d_ptr->worker(); }
};

/*!
 * Runs each body on a thread of its own while this thread runs an event loop,
 * as a host's GUI thread does; returns once every thread has finished.
 */
bool runInThreads(const QList<std::function<void()>>& bodies, int timeoutMs = 20000)
{
    std::vector<std::unique_ptr<QThread>> threads;
    QEventLoop loop;
    int running = bodies.size();
    for (const auto& body : bodies) {
        threads.emplace_back(QThread::create(body));
        QObject::connect(threads.back().get(), &QThread::finished, &loop, [&] {
            if (--running == 0)
                loop.quit();
        }, Qt::QueuedConnection);
    }
    bool timedOut = false;
    QTimer::singleShot(timeoutMs, &loop, [&] {
        timedOut = true;
        loop.quit();
    });
    for (auto& thread : threads)
        thread->start();
    if (running > 0)
        loop.exec();
    // A thread that is still blocked needs this thread's events to finish.
    for (auto& thread : threads) {
        while (!thread->wait(10))
            QCoreApplication::processEvents();
    }
    return !timedOut;
}

bool runInThread(const std::function<void()>& body)
{
    return runInThreads({body});
}

QString range(const char* name, int first, int last)
{
    return QStringLiteral("%1(%2,%3)").arg(QLatin1String(name)).arg(first).arg(last);
}

QStringList inserted(int first, int last)
{
    return {range("rowsAboutToBeInserted", first, last), range("rowsInserted", first, last)};
}

QStringList removed(int first, int last)
{
    return {range("rowsAboutToBeRemoved", first, last), range("rowsRemoved", first, last)};
}

QString dataChanged(int first, int last)
{
    return range("dataChanged", first, last);
}

QVariant pointerVariant(XOLATreeItem* item)
{
    return QVariant::fromValue(static_cast<void*>(item));
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
        result << QPointer<XOLATreeItem>(qobject_cast<XOLATreeItem*>(model->FindItem(row)));
    return result;
}

int alive(const QList<QPointer<XOLATreeItem>>& list)
{
    int count = 0;
    for (const auto& guard : list)
        count += guard.isNull() ? 0 : 1;
    return count;
}

} // namespace

class TestWorker : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    // ---- the worker itself -------------------------------------------------------------

    void workerHasExactlyTheEightSlots()
    {
        const QMetaObject& mo = XOLATreeModelWorker::staticMetaObject;
        QMap<QByteArray, QByteArray> found;
        for (int i = mo.methodOffset(); i < mo.methodCount(); ++i) {
            const QMetaMethod method = mo.method(i);
            QCOMPARE(method.methodType(), QMetaMethod::Slot);
            QCOMPARE(method.access(), QMetaMethod::Public);
            found.insert(method.methodSignature(), method.typeName());
        }
        const QMap<QByteArray, QByteArray> expected{{"MoveRow(int,int)", "void"},
                                                    {"AppendItem(QVariant)", "bool"},
                                                    {"AppendItemsList(QVariantList)", "bool"},
                                                    {"ReplaceItemsList(QVariantList)", "bool"},
                                                    {"ReplaceItemsListEx(QVariantList)", "bool"},
                                                    {"RemoveAll()", "void"},
                                                    {"RemoveOne(QString)", "bool"},
                                                    {"Remove(int,int)", "bool"}};
        QCOMPARE(found, expected);
        // The two prepends have nowhere to go.
        QCOMPARE(mo.indexOfMethod("PrependItem(QVariant)"), -1);
        QCOMPARE(mo.indexOfMethod("PrependItemsList(QVariantList)"), -1);
    }

    void workerLivesOnTheModelsThreadWithoutParent()
    {
        std::unique_ptr<WorkerAccess> model(ModelTesters::watch(new WorkerAccess(nullptr, {}, 0, nullptr, nullptr)));
        QVERIFY(model->worker());
        QCOMPARE(model->worker()->thread(), QThread::currentThread());
        QCOMPARE(model->worker()->parent(), nullptr);
    }

    void workerSlotsCallTheModel()
    {
        // The list slots reach the list loaders.
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        std::unique_ptr<WorkerAccess> model(ModelTesters::watch(new WorkerAccess(nullptr, {}, 0, nullptr, nullptr)));
        XOLATreeModelWorker* worker = model->worker();
        SignalLog log(model.get());
        XOLATreeItem* a = item("a");
        XOLATreeItem* b = item("b");
        XOLATreeItem* c = item("c");
        bool result = false;

        // AppendItem: a pointer variant is listed
        QVERIFY(QMetaObject::invokeMethod(worker, "AppendItem", Qt::DirectConnection, Q_RETURN_ARG(bool, result),
                                          Q_ARG(QVariant, pointerVariant(a))));
        QVERIFY(result);
        QCOMPARE(log.take(), inserted(0, 0) << "rowCountChanged()");

        // AppendItem: anything else reaches the model as a null item
        for (const QVariant& junk : {QVariant(), QVariant("a"), QVariant(QStringList{"x"})}) {
            result = true;
            QVERIFY(QMetaObject::invokeMethod(worker, "AppendItem", Qt::DirectConnection,
                                              Q_RETURN_ARG(bool, result), Q_ARG(QVariant, junk)));
            QVERIFY(!result);
        }
        QCOMPARE(log.take(), QStringList());

        // AppendItemsList: non-pointer elements become null entries, which are skipped
        const QVariantList list{pointerVariant(b), QVariant("junk"), QVariant(), pointerVariant(c)};
        QVERIFY(QMetaObject::invokeMethod(worker, "AppendItemsList", Qt::DirectConnection,
                                          Q_RETURN_ARG(bool, result), Q_ARG(QVariantList, list)));
        QVERIFY(result);
        QCOMPARE(log.take(), inserted(1, 2) << "rowCountChanged()");
        QCOMPARE(objects(model.get()), QList<QObject*>({a, b, c}));

        // MoveRow
        QVERIFY(QMetaObject::invokeMethod(worker, "MoveRow", Qt::DirectConnection, Q_ARG(int, 0), Q_ARG(int, 2)));
        QCOMPARE(log.take(), QStringList({"modelAboutToBeReset()", "modelReset()"}));
        QCOMPARE(ids(model.get()), QStringList({"b", "c", "a"}));

        // RemoveOne
        QVERIFY(QMetaObject::invokeMethod(worker, "RemoveOne", Qt::DirectConnection, Q_RETURN_ARG(bool, result),
                                          Q_ARG(QString, QString("c"))));
        QVERIFY(result);
        QCOMPARE(log.take(), removed(1, 1) << "itemsRemoved(c)" << "rowCountChanged()");
        QVERIFY(QMetaObject::invokeMethod(worker, "RemoveOne", Qt::DirectConnection, Q_RETURN_ARG(bool, result),
                                          Q_ARG(QString, QString("zz"))));
        QVERIFY(!result);

        // Remove(int, int)
        QVERIFY(QMetaObject::invokeMethod(worker, "Remove", Qt::DirectConnection, Q_RETURN_ARG(bool, result),
                                          Q_ARG(int, 1), Q_ARG(int, 1)));
        QVERIFY(result);
        QCOMPARE(log.take(), removed(1, 1) << "itemsRemoved(a)" << "rowCountChanged()");

        // ReplaceItemsList: removal, then the non-null elements
        XOLATreeItem* d = item("d");
        QVERIFY(QMetaObject::invokeMethod(worker, "ReplaceItemsList", Qt::DirectConnection,
                                          Q_RETURN_ARG(bool, result),
                                          Q_ARG(QVariantList, QVariantList({QVariant(7), pointerVariant(d)}))));
        QVERIFY(result);
        QCOMPARE(log.take(), removed(0, 0) << "allItemRemoved()" << "rowCountChanged()" << inserted(0, 0)
                                           << "rowCountChanged()");
        QCOMPARE(objects(model.get()), QList<QObject*>({d}));

        // ReplaceItemsListEx: a null entry is dropped
        XOLATreeItem* e = item("e");
        XOLATreeItem* f = item("f");
        QVERIFY(QMetaObject::invokeMethod(
            worker, "ReplaceItemsListEx", Qt::DirectConnection, Q_RETURN_ARG(bool, result),
            Q_ARG(QVariantList, QVariantList({pointerVariant(e), QVariant("junk"), pointerVariant(f)}))));
        QVERIFY(result);
        QCOMPARE(log.take(), inserted(1, 1) << "rowCountChanged()" << dataChanged(0, 1));
        QCOMPARE(objects(model.get()), QList<QObject*>({e, f}));

        // RemoveAll
        QVERIFY(QMetaObject::invokeMethod(worker, "RemoveAll", Qt::DirectConnection));
        QCOMPARE(log.take(), removed(0, 1) << "allItemRemoved()" << "rowCountChanged()");
        QCOMPARE(model->rowCount(), 0);
    }

    void workerWithoutModel()
    {
        XOLATreeModelWorker worker(nullptr);
        QPointer<XOLATreeItem> a(item("a"));
        QVERIFY(!worker.AppendItem(pointerVariant(a.data())));
        QVERIFY(!worker.AppendItemsList({pointerVariant(a.data())}));
        QVERIFY(!worker.ReplaceItemsList({pointerVariant(a.data())}));
        QVERIFY(!worker.ReplaceItemsListEx({pointerVariant(a.data())}));
        QVERIFY(!worker.RemoveOne("a"));
        QVERIFY(!worker.Remove(0, 0));
        worker.RemoveAll();
        worker.MoveRow(0, 1);
        flushDeferredDeletes();
        QVERIFY(!a.isNull());
        delete a.data();
    }

    // ---- insertions from another thread ---------------------------------------------------

    void appendItem_fromThread()
    {
        // Given
        ModelPtr model = modelWith({"a", "b"});
        SignalLog log(model.get());
        XOLATreeItem* made = nullptr;
        bool result = false;
        // When a thread makes an item and appends it
        QVERIFY(runInThread([&] {
            made = item("t");
            result = model->AppendItem(made);
        }));
        // Then
        QVERIFY(result);
        QCOMPARE(log.take(), inserted(2, 2) << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "t"}));
        QCOMPARE(model->FindItem("t"), made);
        QCOMPARE(model->FindItem(2), made);
        // The item now belongs to the model's thread.
        QCOMPARE(made->thread(), QThread::currentThread());
        // Its changes reach the model, made here or on another thread.
        made->SetName("here");
        QCOMPARE(log.take(), QStringList({dataChanged(2, 2)}));
        QVERIFY(runInThread([&] { made->SetName("there"); }));
        QTRY_COMPARE(log.entries(), QStringList({dataChanged(2, 2)}));
        QVERIFY(log.allOnOwnThread());
        log.clear();
        // And it is deleted when it leaves.
        QPointer<XOLATreeItem> guard(made);
        QVERIFY(model->RemoveOne("t"));
        flushDeferredDeletes();
        QVERIFY(guard.isNull());
    }

    void appendItem_nullFromThread()
    {
        ModelPtr model = modelWith({"a"});
        SignalLog log(model.get());
        bool result = true;
        QVERIFY(runInThread([&] { result = model->AppendItem(nullptr); }));
        QVERIFY(!result);
        QCOMPARE(log.take(), QStringList());
    }

    void insertItem_fromThreadAppends_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("row 0") << 0;
        QTest::newRow("row 1") << 1;
        QTest::newRow("row 5") << 5;
        QTest::newRow("row -1") << -1;
    }

    void insertItem_fromThreadAppends()
    {
        QFETCH(int, row);
        ModelPtr model = modelWith({"a", "b", "c"});
        SignalLog log(model.get());
        XOLATreeItem* made = nullptr;
        bool result = false;
        QVERIFY(runInThread([&] {
            made = item("t");
            result = model->InsertItem(row, made);
        }));
        QVERIFY(result);
        QCOMPARE(log.take(), inserted(3, 3) << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c", "t"}));
        QCOMPARE(model->FindItem(3), made);
        QCOMPARE(made->thread(), QThread::currentThread());
    }

    void insertItem_nullFromThread()
    {
        ModelPtr model = modelWith({"a"});
        SignalLog log(model.get());
        bool result = true;
        QVERIFY(runInThread([&] { result = model->InsertItem(0, nullptr); }));
        QVERIFY(!result);
        QCOMPARE(log.take(), QStringList());
    }

    void insertItem_duplicateFromThreadIsMerged()
    {
        // From another thread an insert is an append, so a duplicate is merged.
        ModelPtr model = modelWith({"a", "b"}, MergeDuplicates);
        QObject* listed = model->FindItem("b");
        SignalLog log(model.get());
        QPointer<XOLATreeItem> incoming;
        bool result = false;
        QVERIFY(runInThread([&] {
            incoming = new XOLATreeItem("b", "B2");
            result = model->InsertItem(0, incoming.data());
        }));
        QVERIFY(result);
        QVERIFY(incoming.isNull());
        QCOMPARE(log.take(), QStringList({dataChanged(1, 1), dataChanged(1, 1), "rowCountChanged()"}));
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(model->FindItem(1), listed);
        QCOMPARE(model->FindItemValue(1, int(XOLATreeItem::NameRole)).toString(), QString("B2"));
    }

    void prependFromThreadFails_data()
    {
        QTest::addColumn<bool>("asList");
        QTest::newRow("PrependItem") << false;
        QTest::newRow("PrependItemsList") << true;
    }

    void prependFromThreadFails()
    {
        QFETCH(bool, asList);
        ModelPtr model = modelWith({"a", "b"});
        const QList<QObject*> before = objects(model.get());
        SignalLog log(model.get());
        bool result = true;
        bool stillAlive = false;
        QVERIFY(runInThread([&] {
            QPointer<XOLATreeItem> made(item("p"));
            result = asList ? model->PrependItemsList({made.data()}) : model->PrependItem(made.data());
            stillAlive = !made.isNull();
            delete made.data(); // the caller keeps it
        }));
        QVERIFY(!result);
        QVERIFY(stillAlive);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(objects(model.get()), before);
        QCOMPARE(model->FindItem("p"), nullptr);
    }

    // ---- lists from another thread ------------------------------------------------------------

    void appendItemsList_fromThread()
    {
        ModelPtr model = modelWith({"a"}, MergeDuplicates);
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        SignalLog log(model.get());
        QList<XOLATreeItem*> made;
        QPointer<XOLATreeItem> duplicate;
        bool result = false;
        QVERIFY(runInThread([&] {
            made = items({"x", "y", "z"});
            duplicate = new XOLATreeItem("a", "A2");
            result = model->AppendItemsList({made.at(0), duplicate.data(), made.at(1), nullptr, made.at(2)});
        }));
        QVERIFY(result);
        QCOMPARE(log.take(), inserted(1, 3) << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QVERIFY(duplicate.isNull());
        QCOMPARE(ids(model.get()), QStringList({"a", "x", "y", "z"}));
        QCOMPARE(model->FindItemValue(0, int(XOLATreeItem::NameRole)).toString(), QString("A2"));
        for (XOLATreeItem* item : made) {
            QCOMPARE(model->FindItem(item->id()), item);
            QCOMPARE(item->thread(), QThread::currentThread());
        }
        made.at(1)->SetName("changed");
        QCOMPARE(log.take(), QStringList({dataChanged(2, 2)}));
    }

    void appendItemsList_emptyNeedsNoWorker()
    {
        // The model's thread runs no event loop here: a routed call would block.
        ModelPtr model = modelWith({"a"});
        SignalLog log(model.get());
        bool result = false;
        std::unique_ptr<QThread> thread(QThread::create([&] { result = model->AppendItemsList({}); }));
        thread->start();
        const bool finished = thread->wait(10000);
        while (!thread->wait(10))
            QCoreApplication::processEvents();
        QVERIFY(finished);
        QVERIFY(result);
        QCOMPARE(log.take(), QStringList());
        // And on the model's own thread.
        QVERIFY(model->AppendItemsList({}));
        QCOMPARE(log.take(), QStringList());
    }

    void replaceItemsList_fromThread()
    {
        ModelPtr model = modelWith({"a", "b", "c"});
        const auto old = guards(model.get());
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        SignalLog log(model.get());
        QList<XOLATreeItem*> made;
        bool result = false;
        QVERIFY(runInThread([&] {
            made = items({"x", "y"});
            result = model->ReplaceItemsList(made);
        }));
        QVERIFY(result);
        QCOMPARE(log.take(), removed(0, 2) << "allItemRemoved()" << "rowCountChanged()" << inserted(0, 1)
                                           << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(objects(model.get()), QList<QObject*>({made.at(0), made.at(1)}));
        QCOMPARE(made.at(0)->thread(), QThread::currentThread());
        flushDeferredDeletes();
        QCOMPARE(alive(old), 0);
    }

    void replaceItemsListEx_fromThread()
    {
        ModelPtr model = modelWith({"a", "b", "c"});
        const auto old = guards(model.get());
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        SignalLog log(model.get());
        QList<XOLATreeItem*> made;
        bool result = false;
        QVERIFY(runInThread([&] {
            made = items({"x", "y"});
            result = model->ReplaceItemsListEx({made.at(0), nullptr, made.at(1)});
        }));
        QVERIFY(result);
        QCOMPARE(log.take(), removed(2, 2) << "rowCountChanged()" << dataChanged(0, 1));
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(alive(old), 0); // deleted at once
        QCOMPARE(objects(model.get()), QList<QObject*>({made.at(0), made.at(1)}));
        QCOMPARE(made.at(1)->thread(), QThread::currentThread());
    }

    // ---- removals and moves from another thread ---------------------------------------------

    void removeAll_fromThread()
    {
        ModelPtr model = modelWith({"a", "b", "c"});
        const auto old = guards(model.get());
        SignalLog log(model.get());
        QVERIFY(runInThread([&] { model->RemoveAll(); }));
        QCOMPARE(log.take(), removed(0, 2) << "allItemRemoved()" << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(model->rowCount(), 0);
        // Deleted through the model's event loop, which may already have run.
        flushDeferredDeletes();
        QCOMPARE(alive(old), 0);
    }

    void removeOne_fromThread()
    {
        ModelPtr model = modelWith({"a", "b", "c"});
        QPointer<XOLATreeItem> b(qobject_cast<XOLATreeItem*>(model->FindItem("b")));
        SignalLog log(model.get());
        bool known = false;
        bool unknown = true;
        QVERIFY(runInThread([&] {
            known = model->RemoveOne("b");
            unknown = model->RemoveOne("zz");
        }));
        QVERIFY(known);
        QVERIFY(!unknown);
        QCOMPARE(log.take(), removed(1, 1) << "itemsRemoved(b)" << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(ids(model.get()), QStringList({"a", "c"}));
        flushDeferredDeletes();
        QVERIFY(b.isNull());
    }

    void removeRows_fromThread()
    {
        ModelPtr model = modelWith({"a", "b", "c", "d", "e"});
        SignalLog log(model.get());
        bool inRange = false;
        bool outOfRange = true;
        QVERIFY(runInThread([&] {
            inRange = model->Remove(1, 3);
            outOfRange = model->Remove(1, 3);
        }));
        QVERIFY(inRange);
        QVERIFY(!outOfRange);
        QCOMPARE(log.take(), removed(1, 3) << "itemsRemoved(b,c,d)" << "rowCountChanged()");
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(ids(model.get()), QStringList({"a", "e"}));
    }

    void moveRow_fromThread()
    {
        ModelPtr model = modelWith({"a", "b", "c"});
        SignalLog log(model.get());
        QVERIFY(runInThread([&] {
            model->MoveRow(0, 2);
            model->MoveRow(0, 9); // refused
        }));
        QCOMPARE(log.take(), QStringList({"modelAboutToBeReset()", "modelReset()"}));
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(ids(model.get()), QStringList({"b", "c", "a"}));
    }

    void ownThreadNeverUsesTheWorker()
    {
        // Calls made on the model's thread run at once, with no event loop.
        ModelPtr model = modelWith({"a"});
        ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        SignalLog log(model.get());
        QVERIFY(model->AppendItem(item("b")));
        QVERIFY(model->PrependItem(item("c")));
        QCOMPARE(log.take(), inserted(1, 1) << "rowCountChanged()" << inserted(2, 2) << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"c", "a", "b"}));
    }

    // ---- several threads ---------------------------------------------------------------------

    void severalThreadsAppendEveryItemOnce()
    {
        // Given
        // Enough rows for the threads to interleave many times; the model
        // tester walks every row after each append, so no more than that.
        const int threads = 4;
        const int perThread = 500;
        ModelPtr model = modelWith({});
        SignalLog log(model.get());
        // One slot per thread, never resized while the threads run.
        std::vector<QList<XOLATreeItem*>> made(threads);
        std::vector<int> failures(threads, 0);
        QList<std::function<void()>> bodies;
        for (int t = 0; t < threads; ++t) {
            bodies << [&, t] {
                for (int i = 0; i < perThread; ++i) {
                    auto* it = item(QStringLiteral("t%1-%2").arg(t).arg(i));
                    made[t] << it;
                    if (!model->AppendItem(it))
                        ++failures[t];
                }
            };
        }
        // When
        QVERIFY(runInThreads(bodies, 60000));
        // Then every item is listed exactly once, each thread's in its order.
        QVERIFY(failures == std::vector<int>(threads, 0));
        QCOMPARE(model->rowCount(), threads * perThread);
        QVERIFY(log.allOnOwnThread());
        QSet<QObject*> expected;
        for (const auto& list : made) {
            for (XOLATreeItem* it : list)
                expected.insert(it);
        }
        const QList<QObject*> listed = objects(model.get());
        QCOMPARE(QSet<QObject*>(listed.begin(), listed.end()), expected);
        QCOMPARE(expected.size(), threads * perThread);
        const QStringList listedIds = ids(model.get());
        QCOMPARE(QSet<QString>(listedIds.begin(), listedIds.end()).size(), threads * perThread);
        for (int t = 0; t < threads; ++t) {
            int previous = -1;
            for (XOLATreeItem* it : made.at(t)) {
                const int row = listed.indexOf(it);
                QVERIFY(row > previous);
                previous = row;
                QCOMPARE(model->FindItem(it->id()), it);
            }
        }
        // One insertion and one count per append, in that order.
        const QStringList entries = log.take();
        QCOMPARE(entries.size(), 3 * threads * perThread);
        for (int i = 0; i < entries.size(); i += 3) {
            const QString row = QString::number(i / 3);
            QCOMPARE(entries.at(i), QString("rowsAboutToBeInserted(%1,%1)").arg(row));
            QCOMPARE(entries.at(i + 1), QString("rowsInserted(%1,%1)").arg(row));
            QCOMPARE(entries.at(i + 2), QString("rowCountChanged()"));
        }
        // And every item goes with the model's rows.
        const auto all = guards(model.get());
        model->RemoveAll();
        flushDeferredDeletes();
        QCOMPARE(alive(all), 0);
    }

    void severalThreadsMixOperations()
    {
        // Given
        ModelPtr model = modelWith({}, MergeDuplicates);
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        SignalLog log(model.get());
        QList<std::function<void()>> bodies;
        std::array<bool, 3> ok{{true, true, true}};
        bodies << [&] {
            for (int i = 0; i < 300; ++i)
                ok[0] = model->AppendItemsList(items({QStringLiteral("l%1").arg(i)})) && ok[0];
        };
        bodies << [&] {
            for (int i = 0; i < 300; ++i)
                ok[1] = model->InsertItem(0, item(QStringLiteral("i%1").arg(i))) && ok[1];
        };
        bodies << [&] {
            // Duplicates of one id, merged into one row.
            for (int i = 0; i < 300; ++i)
                ok[2] = model->AppendItem(new XOLATreeItem("same", QString::number(i))) && ok[2];
        };
        // When
        QVERIFY(runInThreads(bodies, 60000));
        // Then
        QVERIFY(ok[0] && ok[1] && ok[2]);
        QVERIFY(log.allOnOwnThread());
        QCOMPARE(model->rowCount(), 601);
        QCOMPARE(model->FindItemValue("same", int(XOLATreeItem::NameRole)).toString(), QString("299"));
        const QStringList listedIds = ids(model.get());
        QCOMPARE(QSet<QString>(listedIds.begin(), listedIds.end()).size(), 601);
    }
};

QTEST_GUILESS_MAIN(TestWorker)

#include "tst_worker.moc"
