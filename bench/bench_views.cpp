// Grouped, paged and windowed views. Qt has no grouping model: the group view is
// compared with what QML code does for ListView sections, a
// QSortFilterProxyModel sorted by the group key, and with grouping the same
// items in a QHash (the limit). Paging and window moves are compared with a
// QSortFilterProxyModel that keeps a row range.

#include "BenchSupport.h"
#include "BenchTiming.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

namespace bench {

namespace {

constexpr int kPageRows = 50;
constexpr int kWindowStep = 20;

// ---- grouping by a role with 1,000 keys --------------------------------------------

void groupXola(benchmark::State& state, int n, double& total, int& iterations)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    QSet<QString> keys;
    for (const Row& row : rows(n))
        keys.insert(row.group);
    for (auto _ : state) {
        Stopwatch watch;
        QObject* view = model->GetGroupModel(int(GroupRole));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (qobject_cast<IXOLATreeModel*>(view)->rowCount() != keys.size())
            state.SkipWithError("group view holds the wrong groups");
        delete view;
        flushDeferredDeletes();
    }
    destroyModel(model);
}

// Sections in QML: rows sorted by the key, so that equal keys are adjacent.
// Setting up the sort is what compares with building a group view.
void groupProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    RowListModel list(rows(n));
    bool checked = false;
    for (auto _ : state) {
        QScopedPointer<QSortFilterProxyModel> proxy(new QSortFilterProxyModel);
        const double t = timedProxySort(*proxy, list, int(GroupRole));
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (proxy->rowCount() != n) {
            state.SkipWithError("proxy lost rows");
        } else if (!checked) {
            checked = true;
            QString previous;
            for (int row = 0; row < n; ++row) {
                const QString key = proxy->index(row, 0).data(int(GroupRole)).toString();
                if (key < previous) {
                    state.SkipWithError("proxy rows not sorted by group");
                    break;
                }
                previous = key;
            }
        }
    }
}

void groupHash(benchmark::State& state, int n, double& total, int& iterations)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    const QList<XOLATreeItem*> items = *model->GetModelItemList();
    for (auto _ : state) {
        Stopwatch watch;
        QHash<QString, QVector<XOLATreeItem*>> groups;
        QVector<QString> order;
        for (XOLATreeItem* item : items) {
            const QString key = item->getData(int(GroupRole)).toString();
            auto it = groups.find(key);
            if (it == groups.end()) {
                order.append(key);
                it = groups.insert(key, {});
            }
            it->append(item);
        }
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        benchmark::DoNotOptimize(order.data());
    }
    destroyModel(model);
}

// ---- reading the rows a view shows, as a bound ListView would --------------------------

int readRows(const QAbstractItemModel* view)
{
    int length = 0;
    const int count = view->rowCount();
    for (int row = 0; row < count; ++row)
        length += view->data(view->index(row, 0), TextRole).toString().size();
    return length;
}

// ---- page flips: 50 rows per page, pages visited in a scattered order -------------------

void pagingXola(benchmark::State& state, int n, double& total, int& iterations)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    auto* view = qobject_cast<IXOLATreeModel*>(model->GetPagingModel(kPageRows));
    const int pages = view->totalPage();
    int page = 0;
    for (auto _ : state) {
        page = (page + 7919) % pages;
        Stopwatch watch;
        view->setPage(page);
        const int length = readRows(view);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (view->page() != page || length != kPageRows * 8)
            state.SkipWithError("paging view shows the wrong page");
    }
    delete view;
    destroyModel(model);
}

void pagingProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    RowListModel list(rows(n));
    RowRangeProxy proxy;
    proxy.setSourceModel(&list);
    proxy.setRange(0, kPageRows);
    proxy.rowCount();
    const int pages = n / kPageRows;
    int page = 0;
    for (auto _ : state) {
        page = (page + 7919) % pages;
        Stopwatch watch;
        proxy.setRange(page * kPageRows, kPageRows);
        const int length = readRows(&proxy);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (length != kPageRows * 8)
            state.SkipWithError("proxy shows the wrong page");
    }
}

// ---- window moves: a 50-row window moved by 20 rows (partly overlapping) ---------------

void windowXola(benchmark::State& state, int n, double& total, int& iterations)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    auto* window = qobject_cast<QAbstractItemModel*>(model->GetPartialModel(kPageRows));
    int first = 0;
    for (auto _ : state) {
        first = (first + kWindowStep) % (n - kPageRows);
        Stopwatch watch;
        model->SetFirstPartialModelRow(first);
        const int length = readRows(window);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (model->FirstPartialModelRow() != first || length != kPageRows * 8)
            state.SkipWithError("window shows the wrong rows");
    }
    destroyModel(model);
}

void windowProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    RowListModel list(rows(n));
    RowRangeProxy proxy;
    proxy.setSourceModel(&list);
    proxy.setRange(0, kPageRows);
    proxy.rowCount();
    int first = 0;
    for (auto _ : state) {
        first = (first + kWindowStep) % (n - kPageRows);
        Stopwatch watch;
        proxy.setRange(first, kPageRows);
        const int length = readRows(&proxy);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (length != kPageRows * 8)
            state.SkipWithError("proxy shows the wrong rows");
    }
}

} // namespace

void registerViewBenchmarks()
{
    registerSizes("group:xola", groupXola);
    registerSizes("group:QSortFilterProxyModel", groupProxy);
    registerSizes("group:QHash", groupHash);
    // A flip or move is cheap: many per measurement, whatever the row count.
    const int manyMoves = 100000000;
    registerSizes("paging_flip:xola", pagingXola, manyMoves);
    registerSizes("paging_flip:QSortFilterProxyModel", pagingProxy, manyMoves);
    registerSizes("window_move:xola", windowXola, manyMoves);
    registerSizes("window_move:QSortFilterProxyModel", windowProxy, manyMoves);
}

} // namespace bench
