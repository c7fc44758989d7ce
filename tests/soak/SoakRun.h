#ifndef SOAK_SOAKRUN_H
#define SOAK_SOAKRUN_H

#include "ResidentMemory.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <vector>

class FilterModelImp;
class GroupModelImp;
class NoticeBalance;
class PagingModelImp;
class PartialModel;
class QAbstractItemModel;
class QItemSelectionModel;
class QQuickView;
class QSortFilterProxyModel;
class QThread;
class QTimer;
class XOLATreeModel;

struct SoakOptions
{
    long operations = 4000;  //!< worker operations in all, shared by the four threads
    int targetRows = 1000;   //!< the size the workers keep the model near
    quint32 seed = 1;
    //! Bytes deliberately leaked per worker operation, to show that the memory
    //! checks catch a leak of that size (0 in every real run).
    int injectedLeak = 0;
    int warmUpPercent = 20;  //!< the share of operations that counts as warm-up ...
    long warmUpAtLeast = 2000; //!< ... but at least this many (at most half the run)

    //! Worker operations that count as warm-up: Qt Quick and the QML engine
    //! keep filling caches (compiled bindings, glyphs, delegate pools) for the
    //! first 1,500-2,000 operations, so a short run's 20 % would still be
    //! climbing.
    long warmUpOperations() const
    {
        const long share = operations * warmUpPercent / 100;
        return share >= warmUpAtLeast ? share : (warmUpAtLeast < operations / 2 ? warmUpAtLeast : operations / 2);
    }
};

/*!
 * One soak run: a model with every view attached and real clients on top of
 * them (a QSortFilterProxyModel, a QItemSelectionModel, QML ListViews in a
 * QQuickView), four worker threads making routed mutations and the GUI
 * thread's timer sorting, filtering, paging, regrouping and scrolling.
 *
 * run() returns when every worker operation is done and every check was made;
 * report() and markdown() describe the result, passed() judges it.
 */
class SoakRun : public QObject
{
public:
    explicit SoakRun(const SoakOptions& options);
    ~SoakRun() override;

    void run();
    bool passed() const;
    QString report() const;
    QString markdown() const;
    //! The memory samples as CSV: worker operations done, resident KiB.
    QString samplesCsv() const;

    //! What the workers do; each kind is counted.
    enum WorkerOp {
        Append,
        Insert,
        AppendList,
        PrependList,
        PrependRefused,
        RemoveById,
        RemoveRange,
        Replace,
        RemoveAll,
        ChangeValue,
        WorkerOpCount
    };

private:
    struct Check
    {
        QString name;
        bool ok;
        QString detail;
    };
    struct OpCounter
    {
        std::atomic<long> runs{0};
        std::atomic<long> effective{0}; //!< the call changed the model
        std::atomic<long> unexpected{0}; //!< an answer the contract rules out
    };

    void build();
    void makeThreads();
    void workerLoop(int thread, long operations);
    void ownerTick();
    void sampleMemory();
    void watchdog();
    //! Runs pending events and deletions; with layOut, also polishes and renders
    //! the window so that the ListViews hold delegates for their current rows.
    void settle(bool layOut = true);
    void verifyEverything();
    void teardown();
    void check(const QString& name, bool ok, const QString& detail = QString());

    QString checkModel();
    QString checkFilter(FilterModelImp* live, bool predicate);
    QString checkGroup();
    QString checkPaging();
    QString checkPartial();
    QString checkProxy();
    QString checkSelection();
    QString checkLists(QString* detail);
    QString checkBalances();

    static const char* workerOpName(int op);

    SoakOptions m_options;
    QString m_qtVersion;

    // ---- the model, its views and their clients (owner thread) ----
    XOLATreeModel* m_model = nullptr;
    FilterModelImp* m_filter = nullptr;
    FilterModelImp* m_predicate = nullptr;
    GroupModelImp* m_group = nullptr;
    PagingModelImp* m_paging = nullptr;
    PartialModel* m_partial = nullptr;
    QSortFilterProxyModel* m_proxy = nullptr;
    QString m_proxyFilter; // the proxy's fixed-string filter, for its rebuild
    QItemSelectionModel* m_selection = nullptr;
    QQuickView* m_view = nullptr;
    QList<NoticeBalance*> m_balances;
    NoticeBalance* m_partialBalance = nullptr;
    //! Problems of the partial window's books set aside before a scroll that
    //! restarts them.
    QStringList m_heldProblems;
    long m_windowPastTheEnd = 0;
    int m_windowSize = 20;
    int m_pageSize = 25;
    int m_predicateMin = 30; //!< the predicate filter view's value, as last given

    // ---- the run ----
    std::vector<std::unique_ptr<QThread>> m_threads;
    std::atomic<long> m_done{0};
    std::atomic<int> m_modelRows{0};
    std::atomic<int> m_foreignNotices{0};
    std::array<OpCounter, WorkerOpCount> m_workerOps;
    QMap<QString, long> m_ownerOps;
    long m_ownerTicks = 0;
    std::mt19937 m_ownerRandom;
    QTimer* m_ownerTimer = nullptr;
    QTimer* m_sampleTimer = nullptr;
    QTimer* m_watchdogTimer = nullptr;
    long m_lastProgress = -1;
    qint64 m_lastProgressAt = 0;
    bool m_stalled = false;
    QElapsedTimer m_clock;
    qint64 m_wallMs = 0;
    long m_peakRows = 0;
    long m_minRowsAfterFill = -1;

    // ---- memory ----
    long m_startKiB = -1;
    long m_finalKiB = -1;
    long m_teardownKiB = -1;
    std::vector<ResidentMemory::Sample> m_samples;
    ResidentMemory::Judgement m_memory;

    QList<Check> m_checks;
    QStringList m_notes;
    long m_delegatesMade = 0;
};

#endif // SOAK_SOAKRUN_H
