#include "SoakRun.h"

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "NoticeBalance.h"
#include "PagingModelImp.h"
#include "PartialModel.h"
#include "QtMessages.h"
#include "SoakItem.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QEventLoop>
#include <QtCore/QItemSelectionModel>
#include <QtCore/QMetaObject>
#include <QtCore/QSet>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QSysInfo>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickView>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Where --inject-leak drops its blocks, so that the compiler keeps them.
void* volatile g_leakSink = nullptr;

const int ValueRole = ValueItem::ValueRole;
const int GroupRole = ValueItem::GroupRole;
const int kThreads = 4;
//! How many of its own ids a worker remembers for removals and changes. Bounded,
//! so that the bookkeeping does not grow with the run.
const size_t kRememberedIds = 512;
//! No worker operation finishing for this long means the run is stuck.
const qint64 kStallMs = 180000;

#if defined(__SANITIZE_ADDRESS__)
#define XOLA_SOAK_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define XOLA_SOAK_ASAN 1
#endif
#endif

#if defined(XOLA_SOAK_ASAN)
// The sanitizer's allocator keeps freed memory in quarantine and adds shadow
// memory: resident memory says nothing about leaks there (LeakSanitizer does).
const bool kMemoryJudged = false;
#else
const bool kMemoryJudged = true;
#endif

QString mib(long kib)
{
    if (kib < 0)
        return QStringLiteral("n/a");
    return QString::number(double(kib) / 1024.0, 'f', 1) + QStringLiteral(" MiB");
}

QVariantMap rule(const QString& role, int how, const QVariant& value)
{
    return QVariantMap{{QStringLiteral("RoleName"), role}, {QStringLiteral("Rule"), how}, {QStringLiteral("Value"), value}};
}

QVariantMap sortRule(const QString& role, bool ascending)
{
    return QVariantMap{{QStringLiteral("RoleName"), role}, {QStringLiteral("Ascending"), ascending}};
}

QString idsOf(const IXOLATreeModel* model, int limit = 8)
{
    QStringList ids;
    for (int row = 0; row < model->rowCount() && row < limit; ++row)
        ids << model->FindItemID(row);
    if (model->rowCount() > limit)
        ids << QStringLiteral("...");
    return ids.join(QLatin1Char(','));
}

} // namespace

SoakRun::SoakRun(const SoakOptions& options)
    : m_options(options)
    , m_qtVersion(QString::fromLatin1(qVersion()))
    , m_ownerRandom(options.seed)
{
    m_samples.reserve(20000);
}

SoakRun::~SoakRun()
{
    teardown();
}

const char* SoakRun::workerOpName(int op)
{
    switch (op) {
    case Append: return "AppendItem";
    case Insert: return "InsertItem (carried over as an append)";
    case AppendList: return "AppendItemsList";
    case PrependList: return "PrependItemsList on the model's thread";
    case PrependRefused: return "PrependItem / PrependItemsList from the worker (refused)";
    case RemoveById: return "RemoveOne(id)";
    case RemoveRange: return "Remove(rowH, rowT)";
    case Replace: return "ReplaceItemsList";
    case RemoveAll: return "RemoveAll";
    case ChangeValue: return "value change on the model's thread";
    default: return "?";
    }
}

// ---- set-up ------------------------------------------------------------------------------

void SoakRun::build()
{
    // The predicate of the user-defined filter view: valueRole at least "min".
    PF_MATCH_ITEM match = [](const QObject* object, const QVariant& ruleValue) {
        auto* item = qobject_cast<const XOLATreeItem*>(object);
        return item && item->getData(ValueRole).toInt() >= ruleValue.toMap().value(QStringLiteral("min")).toInt();
    };
    // Option bits 0: the model owns its items, and every id is new. The run
    // keeps to operations after which every view stays equal to a rebuild:
    // no PrependItem on the model's thread (announced at the old end), no
    // MoveRow (a reset the group view only forwards), no in-place swap
    // (ReplaceItemsListEx connects nothing), no merging of equal ids, no
    // changes of ids, and no mutations of the views themselves.
    m_model = TestSupport::createModel(0, TestSupport::extendedRoleNames(), nullptr, match);

    // Start near the target size, so that the warm-up is not spent filling.
    QList<XOLATreeItem*> seed;
    for (int i = 0; i < m_options.targetRows; ++i)
        seed << new SoakItem(QStringLiteral("o-%1").arg(i), QStringLiteral("n%1").arg(i % 100), (i * 37) % 100,
                             QStringLiteral("g%1").arg(i % 8));
    m_model->AppendItemsList(seed);
    m_modelRows = m_model->rowCount();

    m_filter = qobject_cast<FilterModelImp*>(m_model->GetFilterModel({rule(QStringLiteral("valueRole"), IXOLATreeModel::Ge, 50)}, true, 0));
    m_predicate = qobject_cast<FilterModelImp*>(
        m_model->GetFilterModelByUserDefinedRules(QVariantMap{{QStringLiteral("min"), m_predicateMin}}, IXOLATreeModel::POS_HEAD));
    m_group = qobject_cast<GroupModelImp*>(m_model->GetGroupModel(QStringLiteral("groupRole"), true));
    m_paging = qobject_cast<PagingModelImp*>(m_model->GetPagingModel(uint(m_pageSize)));
    m_partial = qobject_cast<PartialModel*>(m_model->GetPartialModel(m_windowSize));
    // The views are made for a QML engine to own; these belong to the soak, and
    // two of them are shown to the engine, which must not collect them.
    for (QObject* view : {static_cast<QObject*>(m_filter), static_cast<QObject*>(m_predicate), static_cast<QObject*>(m_group),
                          static_cast<QObject*>(m_paging)})
        QQmlEngine::setObjectOwnership(view, QQmlEngine::CppOwnership);

    m_proxy = new QSortFilterProxyModel;
    m_proxy->setDynamicSortFilter(true);
    m_proxy->setSourceModel(m_filter);
    m_proxy->setFilterRole(XOLATreeItem::NameRole);
    m_proxyFilter = QStringLiteral("1");
    m_proxy->setFilterFixedString(m_proxyFilter);
    m_proxy->setSortRole(ValueRole);
    m_proxy->sort(0, Qt::AscendingOrder);

    m_selection = new QItemSelectionModel(m_model);

    const QList<QPair<QAbstractItemModel*, QString>> watched{
        {m_model, QStringLiteral("model")},           {m_filter, QStringLiteral("filter view")},
        {m_predicate, QStringLiteral("predicate filter view")}, {m_group, QStringLiteral("group view")},
        {m_paging, QStringLiteral("paging view")},    {m_partial, QStringLiteral("partial window")},
        {m_proxy, QStringLiteral("QSortFilterProxyModel")}};
    QThread* const owner = QThread::currentThread();
    for (const auto& w : watched) {
        m_balances << new NoticeBalance(w.first, w.second);
        if (w.first == m_partial)
            m_partialBalance = m_balances.last();
        auto onOwner = [this, owner]() {
            if (QThread::currentThread() != owner)
                ++m_foreignNotices;
        };
        connect(w.first, &QAbstractItemModel::rowsAboutToBeInserted, this, onOwner, Qt::DirectConnection);
        connect(w.first, &QAbstractItemModel::rowsAboutToBeRemoved, this, onOwner, Qt::DirectConnection);
        connect(w.first, &QAbstractItemModel::dataChanged, this, onOwner, Qt::DirectConnection);
        connect(w.first, &QAbstractItemModel::modelAboutToBeReset, this, onOwner, Qt::DirectConnection);
        connect(w.first, &QAbstractItemModel::layoutAboutToBeChanged, this, onOwner, Qt::DirectConnection);
    }
    // The workers steer the model's size by this count; only this thread reads the model.
    auto recount = [this]() {
        const int rows = m_model->rowCount();
        m_modelRows = rows;
        m_peakRows = std::max<long>(m_peakRows, rows);
    };
    connect(m_model, &QAbstractItemModel::rowsInserted, this, recount, Qt::DirectConnection);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, recount, Qt::DirectConnection);
    connect(m_model, &QAbstractItemModel::modelReset, this, recount, Qt::DirectConnection);
    connect(m_model, &IXOLATreeModel::rowCountChanged, this, recount, Qt::DirectConnection);

    m_view = new QQuickView;
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    m_view->resize(600, 480);
    m_view->rootContext()->setContextProperty(QStringLiteral("soakModel"), m_model);
    m_view->rootContext()->setContextProperty(QStringLiteral("soakFilter"), m_filter);
    m_view->rootContext()->setContextProperty(QStringLiteral("soakPage"), m_paging);
    m_view->setSource(QUrl(QStringLiteral("qrc:/soak/Soak.qml")));
    if (m_view->status() != QQuickView::Ready) {
        QStringList errors;
        for (const QQmlError& error : m_view->errors())
            errors << error.toString();
        check(QStringLiteral("the QML view loads"), false, errors.join(QLatin1String("; ")));
    }
    m_view->show();
    QElapsedTimer exposed;
    exposed.start();
    while (!m_view->isExposed() && exposed.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    if (!m_view->isExposed())
        m_notes << QStringLiteral("the QQuickView was never exposed; the lists were laid out by grabWindow() only");
    settle();
}

// ---- the workers -------------------------------------------------------------------------

void SoakRun::workerLoop(int thread, long operations)
{
    std::mt19937 random(m_options.seed * 7919u + quint32(thread) * 104729u + 17u);
    auto below = [&random](long n) { return n < 2 ? 0 : int(random() % quint32(n)); };
    int serial = 0;
    std::vector<QString> own;
    own.reserve(kRememberedIds);
    auto remember = [&](const QString& id) {
        if (own.size() < kRememberedIds)
            own.push_back(id);
        else
            own[size_t(below(long(own.size())))] = id;
    };
    auto forget = [&](size_t at) {
        own[at] = own.back();
        own.pop_back();
    };
    auto make = [&]() {
        const QString id = QStringLiteral("w%1-%2").arg(thread).arg(serial++);
        auto* item = new SoakItem(id, QStringLiteral("n%1").arg(below(100)), below(100), QStringLiteral("g%1").arg(below(8)));
        remember(id);
        return item;
    };
    XOLATreeModel* const model = m_model;
    QThread* const modelThread = model->thread();
    const int target = m_options.targetRows;

    for (long i = 0; i < operations; ++i) {
        const int rows = m_modelRows.load();
        // Growing and shrinking operations are weighted to keep the model near
        // its target size, so that memory is compared at a like size.
        const int growPercent = rows < target * 3 / 4 ? 85 : rows > target * 5 / 4 ? 15 : 50;
        const int roll = below(10000);
        WorkerOp op;
        if (roll < 10)
            op = Replace; // 0.1 %
        else if (roll < 12)
            op = RemoveAll; // 0.02 %
        else if (roll < 2000)
            op = ChangeValue; // ~20 %
        else if (roll < 2200)
            op = PrependRefused; // 2 %
        else if (below(100) < growPercent) {
            const int k = below(100);
            op = k < 45 ? Append : k < 60 ? Insert : k < 85 ? AppendList : PrependList;
        } else {
            op = below(100) < 70 ? RemoveById : RemoveRange;
        }
        OpCounter& counter = m_workerOps[size_t(op)];
        ++counter.runs;
        bool effective = false;
        bool unexpected = false;
        switch (op) {
        case Append:
            effective = model->AppendItem(make());
            unexpected = !effective;
            break;
        case Insert:
            // From another thread the row is dropped and the item appended.
            effective = model->InsertItem(below(rows + 10) - 5, make());
            unexpected = !effective;
            break;
        case AppendList: {
            QList<XOLATreeItem*> list;
            for (int n = 1 + below(8); n > 0; --n)
                list << (below(10) == 0 ? nullptr : make()); // null elements are skipped
            effective = model->AppendItemsList(list);
            unexpected = !effective;
            break;
        }
        case PrependList: {
            // A prepend is not carried across threads: the host carries it
            // itself, handing over items it moved to the model's thread first
            // (the way the routed calls do) so that their deletion later runs
            // there.
            QList<XOLATreeItem*> list;
            for (int n = 1 + below(4); n > 0; --n) {
                SoakItem* item = make();
                item->moveToThread(modelThread);
                list << item;
            }
            QMetaObject::invokeMethod(model, [&]() { effective = model->PrependItemsList(list); }, Qt::BlockingQueuedConnection);
            unexpected = !effective;
            break;
        }
        case PrependRefused: {
            // From another thread a prepend fails and the item stays the caller's.
            auto* item = new SoakItem(QStringLiteral("refused"), QStringLiteral("n0"), 0, QStringLiteral("g0"));
            const bool listed = below(2) == 0 ? model->PrependItem(item) : model->PrependItemsList({item});
            unexpected = listed || item->thread() != QThread::currentThread();
            if (!listed)
                delete item;
            break;
        }
        case RemoveById: {
            if (own.empty() || below(20) == 0) {
                // An id that was never listed: nothing to remove.
                unexpected = model->RemoveOne(QStringLiteral("never-%1").arg(thread));
                break;
            }
            const size_t at = size_t(below(long(own.size())));
            const QString id = own[at];
            forget(at);
            // False when another worker's range removal or replacement took it.
            effective = model->RemoveOne(id);
            break;
        }
        case RemoveRange: {
            const int first = below(std::max(rows, 1));
            // A range that reaches past the end by now is refused.
            effective = model->Remove(first, first + below(4));
            break;
        }
        case Replace: {
            QList<XOLATreeItem*> list;
            for (int n = target * 3 / 4 + below(target / 2 + 1); n > 0; --n)
                list << make();
            effective = model->ReplaceItemsList(list);
            unexpected = !effective;
            break;
        }
        case RemoveAll:
            model->RemoveAll();
            effective = true;
            break;
        case ChangeValue: {
            if (own.empty())
                break;
            const size_t at = size_t(below(long(own.size())));
            const QString id = own[at];
            const int what = below(4);
            const int value = below(100);
            bool found = false;
            // Items and their values belong to the model's thread, where the
            // views read them: the change is made there.
            QMetaObject::invokeMethod(model, [&]() {
                auto* item = qobject_cast<ValueItem*>(model->FindItem(id, false));
                if (!item || model->FindItemRow(id) < 0)
                    return;
                found = true;
                if (what < 2)
                    item->setExtra(ValueRole, value);
                else if (what == 2)
                    item->setExtra(GroupRole, QStringLiteral("g%1").arg(value % 8));
                else
                    item->setData(int(XOLATreeItem::NameRole), QStringLiteral("n%1").arg(value));
            }, Qt::BlockingQueuedConnection);
            effective = found;
            if (!found)
                forget(at);
            break;
        }
        default:
            break;
        }
        if (m_options.injectedLeak > 0) {
            void* block = std::malloc(size_t(m_options.injectedLeak));
            if (block)
                std::memset(block, 0xa5, size_t(m_options.injectedLeak));
            g_leakSink = block;
        }
        if (effective)
            ++counter.effective;
        if (unexpected)
            ++counter.unexpected;
        ++m_done;
    }
}

void SoakRun::makeThreads()
{
    const long perThread = m_options.operations / kThreads;
    long rest = m_options.operations % kThreads;
    for (int t = 0; t < kThreads; ++t) {
        const long count = perThread + (rest-- > 0 ? 1 : 0);
        m_threads.emplace_back(QThread::create([this, t, count]() { workerLoop(t, count); }));
        m_threads.back()->setObjectName(QStringLiteral("soak worker %1").arg(t));
    }
}

// ---- the owner thread --------------------------------------------------------------------

void SoakRun::ownerTick()
{
    ++m_ownerTicks;
    auto below = [this](int n) { return n < 2 ? 0 : int(m_ownerRandom() % quint32(n)); };
    static const QStringList roles{QStringLiteral("nameRole"), QStringLiteral("valueRole"), QStringLiteral("groupRole"),
                                   QStringLiteral("idRole")};
    const int n = m_model->rowCount();
    const int pick = below(100);
    QString name;
    if (pick < 8) {
        name = QStringLiteral("SortByRole");
        m_model->SortByRole(roles.at(below(roles.size())), below(2) == 0);
    } else if (pick < 12) {
        name = QStringLiteral("SortByRoleAndKeep");
        m_model->SortByRoleAndKeep(roles.at(below(roles.size())), below(2) == 0);
    } else if (pick < 20) {
        // Flag 0 sorts once; 1 keeps sorting; 2 keeps sorting down the tree.
        const int flag = below(3);
        name = QStringLiteral("SortByRules, flag %1").arg(flag);
        m_model->SortByRules({sortRule(roles.at(below(3)), below(2) == 0), sortRule(QStringLiteral("idRole"), below(2) == 0)}, flag);
    } else if (pick < 28) {
        name = QStringLiteral("UpdateFilterRules");
        QVariantList rules;
        switch (below(4)) {
        case 0: rules << rule(QStringLiteral("valueRole"), IXOLATreeModel::Ge, below(100)); break;
        case 1: rules << rule(QStringLiteral("nameRole"), IXOLATreeModel::InsensitiveSubStr, QString::number(below(10))); break;
        case 2:
            rules << rule(QStringLiteral("valueRole"), IXOLATreeModel::Lt, below(100))
                  << rule(QStringLiteral("groupRole"), IXOLATreeModel::Eq, QStringLiteral("g%1").arg(below(8)));
            break;
        default:
            rules << rule(QStringLiteral("groupRole"), IXOLATreeModel::Ne, QStringLiteral("g%1").arg(below(8)))
                  << rule(QStringLiteral("nameRole"), IXOLATreeModel::SubStr, QStringLiteral("n%1").arg(below(10)));
            break;
        }
        m_filter->UpdateFilterRules(rules, below(2) == 0);
    } else if (pick < 33) {
        name = QStringLiteral("UpdateUserDefinedFilterRules");
        m_predicateMin = below(100);
        m_predicate->UpdateUserDefinedFilterRules(QVariantMap{{QStringLiteral("min"), m_predicateMin}});
    } else if (pick < 41) {
        name = QStringLiteral("setPage");
        m_paging->setPage(below(std::max(1, m_paging->totalPage())));
    } else if (pick < 45) {
        name = QStringLiteral("UpdateGroupRole");
        static const QStringList groupRoles{QStringLiteral("groupRole"), QStringLiteral("valueRole"), QStringLiteral("nameRole")};
        m_group->UpdateGroupRole(groupRoles.at(below(groupRoles.size())));
    } else if (pick < 55) {
        name = QStringLiteral("SetFirstPartialModelRow");
        // A worker may have shrunk the source under the window's first row; the
        // window then counts zero or fewer rows and, by design, names rows below
        // zero when scrolled back in. Its books start afresh after such a scroll.
        const bool pastTheEnd = m_partial->rowCount() < 0;
        if (pastTheEnd)
            m_heldProblems << m_partialBalance->takeProblems();
        m_model->SetFirstPartialModelRow(below(std::max(1, n - m_windowSize / 2)));
        if (pastTheEnd) {
            ++m_windowPastTheEnd;
            m_partialBalance->takeProblems();
            m_partialBalance->resync();
        }
    } else if (pick < 65) {
        name = QStringLiteral("select rows");
        if (n > 0) {
            const int first = below(n);
            const int last = std::min(n - 1, first + below(5));
            const QItemSelection rows(m_model->index(first, 0), m_model->index(last, 0));
            const int how = below(10);
            if (how == 0)
                m_selection->clearSelection();
            else
                m_selection->select(rows, (how < 4 ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Select)
                                              | QItemSelectionModel::Rows);
            m_selection->setCurrentIndex(m_model->index(first, 0), QItemSelectionModel::NoUpdate);
        }
    } else if (pick < 70) {
        name = QStringLiteral("proxy filter and sort");
        static const QStringList strings{QString(), QStringLiteral("1"), QStringLiteral("n2"), QStringLiteral("5")};
        m_proxyFilter = strings.at(below(strings.size()));
        m_proxy->setFilterFixedString(m_proxyFilter);
        m_proxy->sort(0, below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
    } else if (pick < 82) {
        name = QStringLiteral("scroll a ListView");
        if (QQuickItem* root = m_view->rootObject())
            QMetaObject::invokeMethod(root, "scroll", Q_ARG(QVariant, below(3)), Q_ARG(QVariant, below(1 << 20)));
    } else {
        // Reads, as bindings and delegates do.
        name = QStringLiteral("reads");
        for (IXOLATreeModel* m : {static_cast<IXOLATreeModel*>(m_model), static_cast<IXOLATreeModel*>(m_filter),
                                  static_cast<IXOLATreeModel*>(m_predicate), static_cast<IXOLATreeModel*>(m_group),
                                  static_cast<IXOLATreeModel*>(m_paging)}) {
            const int rows = m->rowCount();
            if (rows > 0) {
                const int row = below(rows);
                m->get(row);
                m->FindItemRow(m->FindItemID(row));
            }
        }
        for (int row = 0; row < m_partial->rowCount(); ++row)
            m_partial->data(m_partial->index(row, 0), XOLATreeItem::IdRole);
        for (int row = 0; row < std::min(10, m_proxy->rowCount()); ++row)
            m_proxy->data(m_proxy->index(row, 0), XOLATreeItem::NameRole);
    }
    ++m_ownerOps[name];
    if (m_minRowsAfterFill < 0 || n < m_minRowsAfterFill)
        m_minRowsAfterFill = n;
}

void SoakRun::sampleMemory()
{
    m_samples.push_back({m_done.load(), ResidentMemory::currentKiB(), ResidentMemory::heapInUseKiB(), ResidentMemory::heapHeldKiB()});
}

void SoakRun::watchdog()
{
    const long done = m_done.load();
    const qint64 now = m_clock.elapsed();
    if (done != m_lastProgress) {
        m_lastProgress = done;
        m_lastProgressAt = now;
        return;
    }
    if (now - m_lastProgressAt < kStallMs)
        return;
    // The workers wait on the model's thread, so no progress for this long
    // means a deadlock: nothing can be torn down safely any more.
    m_stalled = true;
    std::fprintf(stderr, "xola_soak: no worker operation finished for %lld s (%ld of %ld done): stuck\n",
                 static_cast<long long>(kStallMs / 1000), done, m_options.operations);
    std::fflush(stderr);
    std::_Exit(3);
}

void SoakRun::settle(bool layOut)
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // Polishes and renders the window now: the ListViews lay out and make the
    // delegates for the current rows.
    if (!layOut || !m_view)
        return;
    m_view->grabWindow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// ---- the run -----------------------------------------------------------------------------

void SoakRun::run()
{
    m_startKiB = ResidentMemory::currentKiB();
    build();
    m_samples.push_back({0, ResidentMemory::currentKiB(), ResidentMemory::heapInUseKiB(), ResidentMemory::heapHeldKiB()});

    QEventLoop loop;
    int finished = 0;
    m_clock.start();
    m_ownerTimer = new QTimer(this);
    m_ownerTimer->setInterval(2);
    connect(m_ownerTimer, &QTimer::timeout, this, [this]() { ownerTick(); });
    m_sampleTimer = new QTimer(this);
    m_sampleTimer->setInterval(100);
    connect(m_sampleTimer, &QTimer::timeout, this, [this]() { sampleMemory(); });
    m_watchdogTimer = new QTimer(this);
    m_watchdogTimer->setInterval(1000);
    connect(m_watchdogTimer, &QTimer::timeout, this, [this]() { watchdog(); });

    makeThreads();
    for (auto& thread : m_threads) {
        connect(thread.get(), &QThread::finished, &loop, [&]() {
            if (++finished == kThreads)
                loop.quit();
        }, Qt::QueuedConnection);
    }
    for (auto& thread : m_threads)
        thread->start();
    m_ownerTimer->start();
    m_sampleTimer->start();
    m_watchdogTimer->start();
    loop.exec();
    m_wallMs = m_clock.elapsed();
    m_ownerTimer->stop();
    m_sampleTimer->stop();
    m_watchdogTimer->stop();
    for (auto& thread : m_threads)
        thread->wait();

    // Measured before the lists are laid out for the checks: that grabs the
    // window into an image, which the run itself never does.
    settle(false);
    m_finalKiB = ResidentMemory::currentKiB();
    m_samples.push_back({m_done.load(), m_finalKiB, ResidentMemory::heapInUseKiB(), ResidentMemory::heapHeldKiB()});
    verifyEverything();
    const long listed = m_model->rowCount();
    teardown();
    const long left = SoakItem::alive();
    check(QStringLiteral("every item deleted after the teardown"), left == 0,
          QStringLiteral("%1 items made, %2 listed at the end, %3 still alive after the model was deleted")
              .arg(SoakItem::made()).arg(listed).arg(left));
    m_teardownKiB = ResidentMemory::currentKiB();
}

void SoakRun::teardown()
{
    // The clients first (the QML lists, the proxy, the selection), then the
    // views, then the model, which deletes its rows and its partial window.
    if (!m_model)
        return;
    if (m_view && m_view->rootObject())
        m_delegatesMade = m_view->rootObject()->property("delegatesMade").toLongLong();
    delete m_view;
    m_view = nullptr;
    delete m_proxy;
    m_proxy = nullptr;
    delete m_selection;
    m_selection = nullptr;
    delete m_filter;
    delete m_predicate;
    delete m_group;
    delete m_paging;
    m_filter = m_predicate = nullptr;
    m_group = nullptr;
    m_paging = nullptr;
    m_partial = nullptr;
    m_balances.clear(); // children of the models
    delete m_model;
    m_model = nullptr;
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

// ---- checks ------------------------------------------------------------------------------

void SoakRun::check(const QString& name, bool ok, const QString& detail)
{
    m_checks << Check{name, ok, detail};
}

void SoakRun::verifyEverything()
{
    long unexpected = 0;
    QStringList unexpectedKinds;
    for (int op = 0; op < WorkerOpCount; ++op) {
        const long u = m_workerOps[size_t(op)].unexpected.load();
        unexpected += u;
        if (u)
            unexpectedKinds << QStringLiteral("%1: %2").arg(QLatin1String(workerOpName(op))).arg(u);
    }
    check(QStringLiteral("all worker operations done"), m_done.load() == m_options.operations && !m_stalled,
          QStringLiteral("%1 of %2").arg(m_done.load()).arg(m_options.operations));
    check(QStringLiteral("routed calls answered as documented"), unexpected == 0,
          unexpected ? unexpectedKinds.join(QLatin1String("; ")) : QStringLiteral("appends and loads listed, prepends from a worker refused"));
    check(QStringLiteral("every notice sent on the GUI thread"), m_foreignNotices.load() == 0,
          QStringLiteral("%1 from another thread").arg(m_foreignNotices.load()));

    auto verdict = [this](const QString& name, const QString& problem, const QString& fine) {
        check(name, problem.isEmpty(), problem.isEmpty() ? fine : problem);
    };
    verdict(QStringLiteral("model: rows, lookups and items agree"), checkModel(),
            QStringLiteral("%1 rows, each item alive, listed once and on the model's thread").arg(m_model->rowCount()));
    verdict(QStringLiteral("filter view equals a rebuild"), checkFilter(m_filter, false),
            QStringLiteral("%1 rows, the same items as a new view with its rules").arg(m_filter->rowCount()));
    verdict(QStringLiteral("predicate filter view equals a rebuild"), checkFilter(m_predicate, true),
            QStringLiteral("%1 rows, the same items as a new view with its value").arg(m_predicate->rowCount()));
    verdict(QStringLiteral("group view equals a regrouping"), checkGroup(),
            QStringLiteral("%1 groups; groups and members in the same order as a new group view").arg(m_group->rowCount()));
    verdict(QStringLiteral("paging view equals a rebuild"), checkPaging(),
            QStringLiteral("page %1 of %2, %3 rows, the same rows in the same order as a new paging view")
                .arg(m_paging->page()).arg(m_paging->totalPage()).arg(m_paging->rowCount()));
    verdict(QStringLiteral("partial window equals a rebuild"), checkPartial(),
            QStringLiteral("first row %1, %2 rows, the same rows as a new window").arg(m_model->FirstPartialModelRow()).arg(m_partial->rowCount()));
    verdict(QStringLiteral("QSortFilterProxyModel equals a new proxy"), checkProxy(),
            QStringLiteral("%1 rows, same items, same sort keys in the same order").arg(m_proxy->rowCount()));
    verdict(QStringLiteral("selection holds only valid rows"), checkSelection(),
            QStringLiteral("%1 rows selected, all inside the model").arg(m_selection->selectedRows().size()));
    QString listDetail;
    const QString listProblem = checkLists(&listDetail);
    verdict(QStringLiteral("ListViews show the rows of their models"), listProblem, listDetail);
    verdict(QStringLiteral("begin and end notices balanced"), checkBalances(),
            QStringLiteral("%1 models and views, every begin closed by its end, announced counts equal rowCount() (the partial window's books restarted after %2 scrolls back from past the end of a shrunk source)").arg(m_balances.size()).arg(m_windowPastTheEnd));

    m_memory = ResidentMemory::judge(m_startKiB, m_samples, m_options.warmUpOperations(),
                                     m_finalKiB, kMemoryJudged);
    if (!m_memory.judged) {
        check(QStringLiteral("resident memory within the bound"), true,
              QStringLiteral("not judged under AddressSanitizer (its quarantine keeps freed memory resident); LeakSanitizer judges leaks"));
    } else {
        check(QStringLiteral("resident memory within the bound"), m_memory.withinBound,
              QStringLiteral("peak after warm-up %1, final %2, bound %3 (warm-up peak %4 + %5)")
                  .arg(mib(m_memory.peakAfterWarmUpKiB), mib(m_memory.finalKiB), mib(m_memory.boundKiB),
                       mib(m_memory.warmUpPeakKiB), mib(ResidentMemory::allowanceKiB(m_memory.warmUpPeakKiB))));
    }
    if (m_memory.heapFinalKiB >= 0) {
        const QString slope = QStringLiteral("%1 bytes per operation after the warm-up").arg(m_memory.heapSlopeBytesPerOperation, 0, 'f', 1);
        check(QStringLiteral("heap in use does not grow"), m_memory.heapWithinLimit,
              m_memory.heapJudged ? QStringLiteral("%1, limit %2").arg(slope).arg(ResidentMemory::heapSlopeLimit(), 0, 'f', 0)
                                  : QStringLiteral("%1; reported, not judged: fewer than %2 operations after the warm-up")
                                        .arg(slope).arg(ResidentMemory::heapSlopeMinOperations()));
    }
}

QString SoakRun::checkModel()
{
    const int n = m_model->rowCount();
    QList<QString> all;
    m_model->GetAllIDs(all, false);
    if (all.size() != n)
        return QStringLiteral("GetAllIDs gives %1 ids for %2 rows").arg(all.size()).arg(n);
    QSet<QString> seen;
    for (int row = 0; row < n; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_model->FindItem(row));
        if (!item)
            return QStringLiteral("row %1 has no item").arg(row);
        const QString id = item->id();
        if (seen.contains(id))
            return QStringLiteral("id %1 listed twice").arg(id);
        seen.insert(id);
        if (all.at(row) != id || m_model->FindItemID(row) != id)
            return QStringLiteral("row %1: ids disagree ('%2', '%3', item '%4')").arg(row).arg(all.at(row), m_model->FindItemID(row), id);
        if (m_model->FindItemRow(id) != row)
            return QStringLiteral("FindItemRow('%1') is %2, not %3").arg(id).arg(m_model->FindItemRow(id)).arg(row);
        if (m_model->FindItem(id, false) != item)
            return QStringLiteral("FindItem('%1') is not the item of row %2").arg(id).arg(row);
        if (m_model->data(m_model->index(row, 0), XOLATreeItem::IdRole).toString() != id)
            return QStringLiteral("data() of row %1 disagrees with its item").arg(row);
        if (item->thread() != m_model->thread())
            return QStringLiteral("item %1 lives on another thread than the model").arg(id);
    }
    // Every item the model let go of was deleted (the deferred deletions ran in settle()).
    if (SoakItem::alive() != n)
        return QStringLiteral("%1 items alive, %2 listed").arg(SoakItem::alive()).arg(n);
    return QString();
}

QString SoakRun::checkFilter(FilterModelImp* live, bool predicate)
{
    // The rows a filter view lists are exact as a set; their order is the
    // source's at the view's last rebuild with later rows added at one end,
    // so the order is not compared.
    std::unique_ptr<FilterModelImp> rebuilt(qobject_cast<FilterModelImp*>(
        predicate ? m_model->GetFilterModelByUserDefinedRules(QVariantMap{{QStringLiteral("min"), m_predicateMin}}, live->newItemPos())
                  : m_model->GetFilterModel(live->filterRules(), live->orAllRules(), live->newItemPos())));
    QSet<const QObject*> expected;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_model->FindItem(row));
        if (live->IsMatchRule(item))
            expected.insert(item);
    }
    QSet<const QObject*> rebuiltRows;
    for (int row = 0; row < rebuilt->rowCount(); ++row)
        rebuiltRows.insert(rebuilt->FindItem(row));
    QSet<const QObject*> actual;
    for (int row = 0; row < live->rowCount(); ++row) {
        const QObject* item = live->FindItem(row);
        if (actual.contains(item))
            return QStringLiteral("row %1 (%2) listed twice").arg(row).arg(live->FindItemID(row));
        actual.insert(item);
    }
    if (rebuiltRows != expected)
        return QStringLiteral("a new view lists %1 rows, the source has %2 that pass").arg(rebuiltRows.size()).arg(expected.size());
    if (actual != expected) {
        return QStringLiteral("lists %1 rows [%2], a rebuild %3; %4 missing, %5 extra")
            .arg(actual.size()).arg(idsOf(live)).arg(expected.size())
            .arg((expected - actual).size()).arg((actual - expected).size());
    }
    return QString();
}

QString SoakRun::checkGroup()
{
    std::unique_ptr<GroupModelImp> rebuilt(qobject_cast<GroupModelImp*>(m_model->GetGroupModel(m_group->groupRole(), true)));
    auto describe = [](const GroupModelImp* view) {
        QStringList groups;
        for (int row = 0; row < view->rowCount(); ++row) {
            auto* members = qobject_cast<XOLATreeModel*>(view->FindItemValue(row, int(XOLATreeItem::ChildModelRole)).value<QObject*>());
            groups << view->FindItemID(row) + QLatin1Char(':')
                          + (members ? TestSupport::ids(members).join(QLatin1Char(',')) : QStringLiteral("<no members>"));
        }
        return groups;
    };
    const QStringList live = describe(m_group);
    const QStringList expected = describe(rebuilt.get());
    if (live == expected)
        return QString();
    int first = 0;
    while (first < live.size() && first < expected.size() && live.at(first) == expected.at(first))
        ++first;
    return QStringLiteral("%1 groups, a regrouping gives %2; first difference at group %3: '%4' vs '%5'")
        .arg(live.size()).arg(expected.size()).arg(first)
        .arg(live.value(first).left(120), expected.value(first).left(120));
}

QString SoakRun::checkPaging()
{
    std::unique_ptr<PagingModelImp> rebuilt(qobject_cast<PagingModelImp*>(m_model->GetPagingModel(uint(m_pageSize))));
    rebuilt->setPage(m_paging->page());
    if (rebuilt->page() != m_paging->page() || rebuilt->totalPage() != m_paging->totalPage())
        return QStringLiteral("page %1 of %2, a new view: page %3 of %4")
            .arg(m_paging->page()).arg(m_paging->totalPage()).arg(rebuilt->page()).arg(rebuilt->totalPage());
    if (rebuilt->rowCount() != m_paging->rowCount())
        return QStringLiteral("%1 rows, a new view %2").arg(m_paging->rowCount()).arg(rebuilt->rowCount());
    for (int row = 0; row < m_paging->rowCount(); ++row) {
        if (m_paging->FindItem(row) != rebuilt->FindItem(row))
            return QStringLiteral("row %1 is %2, a new view has %3").arg(row).arg(m_paging->FindItemID(row), rebuilt->FindItemID(row));
        if (m_paging->FindItem(row) != m_model->FindItem(m_pageSize * m_paging->page() + row))
            return QStringLiteral("row %1 is not source row %2").arg(row).arg(m_pageSize * m_paging->page() + row);
    }
    return QString();
}

QString SoakRun::checkPartial()
{
    const int first = m_model->FirstPartialModelRow();
    const int n = m_model->rowCount();
    if (first >= n) {
        // The source shrank under the window's first row: it shows nothing.
        return m_partial->rowCount() <= 0 ? QString()
                                          : QStringLiteral("first row %1 past the end of %2 rows, yet %3 rows shown").arg(first).arg(n).arg(m_partial->rowCount());
    }
    std::unique_ptr<PartialModel> rebuilt(new PartialModel(m_model, nullptr));
    rebuilt->SetPartialModelCount(m_windowSize);
    rebuilt->SetFirstPartialModelRow(first);
    if (rebuilt->GetFirstPartialModelRow() != first)
        return QStringLiteral("a new window starts at %1, not %2").arg(rebuilt->GetFirstPartialModelRow()).arg(first);
    if (rebuilt->rowCount() != m_partial->rowCount())
        return QStringLiteral("%1 rows shown, a new window shows %2").arg(m_partial->rowCount()).arg(rebuilt->rowCount());
    for (int row = 0; row < m_partial->rowCount(); ++row) {
        const QVariant id = m_partial->data(m_partial->index(row, 0), XOLATreeItem::IdRole);
        if (id != rebuilt->data(rebuilt->index(row, 0), XOLATreeItem::IdRole) || id.toString() != m_model->FindItemID(first + row))
            return QStringLiteral("row %1 shows %2, source row %3 is %4").arg(row).arg(id.toString()).arg(first + row).arg(m_model->FindItemID(first + row));
    }
    return QString();
}

QString SoakRun::checkProxy()
{
    QSortFilterProxyModel rebuilt;
    rebuilt.setDynamicSortFilter(true);
    rebuilt.setSourceModel(m_filter);
    rebuilt.setFilterRole(m_proxy->filterRole());
    rebuilt.setFilterFixedString(m_proxyFilter);
    rebuilt.setSortRole(m_proxy->sortRole());
    rebuilt.sort(m_proxy->sortColumn(), m_proxy->sortOrder());
    if (rebuilt.rowCount() != m_proxy->rowCount())
        return QStringLiteral("%1 rows, a new proxy %2").arg(m_proxy->rowCount()).arg(rebuilt.rowCount());
    QStringList liveKeys, newKeys, liveIds, newIds;
    for (int row = 0; row < m_proxy->rowCount(); ++row) {
        liveKeys << m_proxy->data(m_proxy->index(row, 0), ValueRole).toString();
        newKeys << rebuilt.data(rebuilt.index(row, 0), ValueRole).toString();
        liveIds << m_proxy->data(m_proxy->index(row, 0), XOLATreeItem::IdRole).toString();
        newIds << rebuilt.data(rebuilt.index(row, 0), XOLATreeItem::IdRole).toString();
    }
    // Rows with equal keys may stand in another order: the keys must match
    // row by row, the items as a set.
    if (liveKeys != newKeys)
        return QStringLiteral("sort keys differ from a new proxy's");
    liveIds.sort();
    newIds.sort();
    if (liveIds != newIds)
        return QStringLiteral("rows differ from a new proxy's");
    return QString();
}

QString SoakRun::checkSelection()
{
    const int n = m_model->rowCount();
    const QModelIndexList indexes = m_selection->selection().indexes();
    for (const QModelIndex& index : indexes) {
        if (!index.isValid() || index.model() != m_model || index.row() < 0 || index.row() >= n)
            return QStringLiteral("a selected index outside the model (row %1 of %2)").arg(index.row()).arg(n);
        if (!index.data(XOLATreeItem::IdRole).isValid())
            return QStringLiteral("selected row %1 answers no id").arg(index.row());
    }
    const QModelIndex current = m_selection->currentIndex();
    if (current.isValid() && current.row() >= n)
        return QStringLiteral("the current index is past the end");
    return QString();
}

QString SoakRun::checkLists(QString* detail)
{
    QQuickItem* root = m_view ? m_view->rootObject() : nullptr;
    if (!root)
        return QStringLiteral("no QML root item");
    settle();
    QStringList problems;
    QStringList counts;
    for (int list = 0; list < 3; ++list) {
        QVariant result;
        QMetaObject::invokeMethod(root, "verify", Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, list));
        const QVariantMap map = result.toMap();
        for (const QVariant& p : map.value(QStringLiteral("problems")).toList())
            problems << p.toString();
        counts << QStringLiteral("%1 of %2").arg(map.value(QStringLiteral("compared")).toInt()).arg(map.value(QStringLiteral("count")).toInt());
    }
    const int alive = root->property("delegatesAlive").toInt();
    const int made = root->property("delegatesMade").toInt();
    // Each list holds what fits its height plus its cache buffer; hundreds
    // more would be delegates the lists never let go of.
    if (alive > 300)
        problems << QStringLiteral("%1 delegates alive").arg(alive);
    if (made == 0)
        problems << QStringLiteral("no delegate was ever made");
    if (!problems.isEmpty())
        return problems.mid(0, 5).join(QLatin1String("; "));
    *detail = QStringLiteral("delegates compared with their rows: %1 (model, filter view, page); %2 delegates made during the run, %3 alive")
                  .arg(counts.join(QLatin1String(", "))).arg(made).arg(alive);
    return QString();
}

QString SoakRun::checkBalances()
{
    QStringList problems = m_heldProblems;
    for (NoticeBalance* balance : qAsConst(m_balances)) {
        QAbstractItemModel* model = balance->model();
        problems << balance->takeProblems();
        const QString open = balance->openNotice();
        if (!open.isEmpty())
            problems << balance->name() + QStringLiteral(": ") + open;
        // A lone modelReset is a forwarded one on the views; the model sends
        // none in this run (no moves, no script sorts).
        if (model == m_model && balance->loneResets() > 0)
            problems << QStringLiteral("model: %1 modelReset without modelAboutToBeReset").arg(balance->loneResets());
        if (model == m_partial && model->rowCount() < 1)
            balance->resync(); // a window past the end counts zero or below by design
        if (balance->announcedCount() != model->rowCount())
            problems << QStringLiteral("%1: %2 rows announced, %3 there").arg(balance->name()).arg(balance->announcedCount()).arg(model->rowCount());
    }
    return problems.mid(0, 6).join(QLatin1String("; "));
}

bool SoakRun::passed() const
{
    for (const Check& c : m_checks) {
        if (!c.ok)
            return false;
    }
    return !m_checks.isEmpty();
}

// ---- the report --------------------------------------------------------------------------

QString SoakRun::report() const
{
    QString text;
    const double seconds = double(m_wallMs) / 1000.0;
    text += QStringLiteral("xola_soak: Qt %1, %2 worker threads, %3 worker operations, model kept near %4 rows, seed %5\n")
                .arg(m_qtVersion).arg(kThreads).arg(m_options.operations).arg(m_options.targetRows).arg(m_options.seed);
    if (m_options.injectedLeak > 0)
        text += QStringLiteral("INJECTED LEAK: %1 bytes per worker operation, on purpose\n").arg(m_options.injectedLeak);
    text += QStringLiteral("wall time %1 s, %2 worker operations/s; %3 owner operations on the GUI thread; model size %4..%5 rows\n")
                .arg(seconds, 0, 'f', 1).arg(seconds > 0 ? double(m_done.load()) / seconds : 0.0, 0, 'f', 0)
                .arg(m_ownerTicks).arg(m_minRowsAfterFill).arg(m_peakRows);
    text += QStringLiteral("worker operations (runs / changed the model):\n");
    for (int op = 0; op < WorkerOpCount; ++op) {
        const OpCounter& c = m_workerOps[size_t(op)];
        text += QStringLiteral("  %1 %2 / %3\n").arg(QLatin1String(workerOpName(op)), -58).arg(c.runs.load(), 7).arg(c.effective.load(), 7);
    }
    text += QStringLiteral("owner operations:\n");
    for (auto it = m_ownerOps.constBegin(); it != m_ownerOps.constEnd(); ++it)
        text += QStringLiteral("  %1 %2\n").arg(it.key(), -58).arg(it.value(), 7);
    text += QStringLiteral("resident memory: start %1, after warm-up (%2 operations) %3, warm-up peak %4, peak after warm-up %5, final %6, after teardown %7\n")
                .arg(mib(m_memory.startKiB)).arg(m_options.warmUpOperations())
                .arg(mib(m_memory.afterWarmUpKiB), mib(m_memory.warmUpPeakKiB), mib(m_memory.peakAfterWarmUpKiB), mib(m_memory.finalKiB), mib(m_teardownKiB));
    text += QStringLiteral("  growth after warm-up: %1 bytes per operation (least squares over %2 samples); bound: peak and final <= warm-up peak + 3 MiB + 2 %\n")
                .arg(m_memory.slopeBytesPerOperation, 0, 'f', 1).arg(m_memory.samples);
    if (m_memory.heapFinalKiB >= 0)
        text += QStringLiteral("  heap in use (malloc): after warm-up %1, final %2, growth after warm-up %3 bytes per operation\n")
                    .arg(mib(m_memory.heapAfterWarmUpKiB), mib(m_memory.heapFinalKiB))
                    .arg(m_memory.heapSlopeBytesPerOperation, 0, 'f', 1);
    text += QStringLiteral("checks:\n");
    for (const Check& c : m_checks)
        text += QStringLiteral("  [%1] %2%3\n").arg(c.ok ? QStringLiteral("PASS") : QStringLiteral("FAIL"), c.name,
                                                  c.detail.isEmpty() ? QString() : QStringLiteral(": ") + c.detail);
    for (const QString& note : m_notes)
        text += QStringLiteral("note: %1\n").arg(note);
    text += QStringLiteral("Qt warnings printed during the run: %1\n").arg(QtMessages::warnings());
    for (const QString& kind : QtMessages::summary())
        text += QStringLiteral("  %1\n").arg(kind);
    text += QStringLiteral("verdict: %1\n").arg(passed() ? QStringLiteral("PASS") : QStringLiteral("FAIL"));
    return text;
}

QString SoakRun::markdown() const
{
    QString md;
    const double seconds = double(m_wallMs) / 1000.0;
    md += QStringLiteral("### Qt %1: %2\n\n").arg(m_qtVersion, passed() ? QStringLiteral("PASS") : QStringLiteral("FAIL"));
    md += QStringLiteral("%1 worker operations from %2 threads, model kept near %3 rows (seed %4), on %5, %6.\n\n")
              .arg(m_options.operations).arg(kThreads).arg(m_options.targetRows).arg(m_options.seed)
              .arg(QSysInfo::prettyProductName(), QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd")));
    md += QStringLiteral("| | |\n|---|---|\n");
    md += QStringLiteral("| wall time | %1 s |\n").arg(seconds, 0, 'f', 1);
    md += QStringLiteral("| worker operations per second | %1 |\n").arg(seconds > 0 ? double(m_done.load()) / seconds : 0.0, 0, 'f', 0);
    md += QStringLiteral("| owner operations (GUI thread) | %1 |\n").arg(m_ownerTicks);
    md += QStringLiteral("| model size during the run | %1 to %2 rows |\n").arg(m_minRowsAfterFill).arg(m_peakRows);
    md += QStringLiteral("| RSS at start | %1 |\n").arg(mib(m_memory.startKiB));
    md += QStringLiteral("| RSS after warm-up (%1 operations) | %2 |\n").arg(m_options.warmUpOperations()).arg(mib(m_memory.afterWarmUpKiB));
    md += QStringLiteral("| RSS peak during warm-up | %1 |\n").arg(mib(m_memory.warmUpPeakKiB));
    md += QStringLiteral("| RSS peak after warm-up | %1 |\n").arg(mib(m_memory.peakAfterWarmUpKiB));
    md += QStringLiteral("| RSS final (before teardown) | %1 |\n").arg(mib(m_memory.finalKiB));
    md += QStringLiteral("| RSS after teardown | %1 |\n").arg(mib(m_teardownKiB));
    md += QStringLiteral("| bound (warm-up peak + 3 MiB + 2 %) | %1 |\n").arg(mib(m_memory.boundKiB));
    md += QStringLiteral("| growth after warm-up (least squares) | %1 bytes per operation |\n").arg(m_memory.slopeBytesPerOperation, 0, 'f', 1);
    if (m_memory.heapFinalKiB >= 0) {
        md += QStringLiteral("| heap in use (malloc) after warm-up / final | %1 / %2 |\n").arg(mib(m_memory.heapAfterWarmUpKiB), mib(m_memory.heapFinalKiB));
        md += QStringLiteral("| heap growth after warm-up (least squares) | %1 bytes per operation |\n").arg(m_memory.heapSlopeBytesPerOperation, 0, 'f', 1);
    }
    md += QStringLiteral("\n| worker operation | runs | changed the model |\n|---|---:|---:|\n");
    for (int op = 0; op < WorkerOpCount; ++op) {
        const OpCounter& c = m_workerOps[size_t(op)];
        md += QStringLiteral("| %1 | %2 | %3 |\n").arg(QLatin1String(workerOpName(op))).arg(c.runs.load()).arg(c.effective.load());
    }
    md += QStringLiteral("\n| owner operation | runs |\n|---|---:|\n");
    for (auto it = m_ownerOps.constBegin(); it != m_ownerOps.constEnd(); ++it)
        md += QStringLiteral("| %1 | %2 |\n").arg(it.key()).arg(it.value());
    md += QStringLiteral("\n| check | verdict | detail |\n|---|---|---|\n");
    for (const Check& c : m_checks) {
        QString detail = c.detail;
        detail.replace(QLatin1Char('|'), QLatin1String("\\|"));
        md += QStringLiteral("| %1 | %2 | %3 |\n").arg(c.name, c.ok ? QStringLiteral("pass") : QStringLiteral("**FAIL**"), detail);
    }
    for (const QString& note : m_notes)
        md += QStringLiteral("\nNote: %1.\n").arg(note);
    md += QStringLiteral("\nQt warnings printed during the run: %1.\n").arg(QtMessages::warnings());
    const QStringList kinds = QtMessages::summary();
    if (!kinds.isEmpty())
        md += QLatin1Char('\n');
    for (const QString& kind : kinds)
        md += QStringLiteral("- `%1`\n").arg(kind);
    md += QLatin1Char('\n');
    return md;
}

QString SoakRun::samplesCsv() const
{
    QString csv = QStringLiteral("operations,rss_kib,heap_in_use_kib,heap_held_kib\n");
    for (const ResidentMemory::Sample& s : m_samples)
        csv += QStringLiteral("%1,%2,%3,%4\n").arg(s.operations).arg(s.kib).arg(s.heapKiB).arg(s.heldKiB);
    return csv;
}
