// Sorting by one role (int and string) and by two rules, against
// QSortFilterProxyModel over an equivalent list model, and against
// std::stable_sort over keys extracted beforehand (the limit).

#include "BenchSupport.h"
#include "BenchTiming.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace bench {

namespace {

QVariantList twoRules()
{
    QVariantMap first;
    first.insert(QStringLiteral("RoleName"), QStringLiteral("groupRole"));
    first.insert(QStringLiteral("Ascending"), true);
    QVariantMap second;
    second.insert(QStringLiteral("RoleName"), QStringLiteral("valueRole"));
    second.insert(QStringLiteral("Ascending"), false);
    return {first, second};
}

const BenchItem* benchItem(const XOLATreeItem* item)
{
    return static_cast<const BenchItem*>(item);
}

// True when the model's rows are in the order the benchmark asked for.
bool isOrdered(XOLATreeModel* model, int role)
{
    const QList<XOLATreeItem*>& items = *model->GetModelItemList();
    for (int i = 1; i < items.size(); ++i) {
        const BenchItem* a = benchItem(items.at(i - 1));
        const BenchItem* b = benchItem(items.at(i));
        switch (role) {
        case ValueRole:
            if (b->value() < a->value())
                return false;
            break;
        case TextRole:
            if (b->text() < a->text())
                return false;
            break;
        default:
            if (b->group() < a->group() || (b->group() == a->group() && b->value() > a->value()))
                return false;
        }
    }
    return true;
}

// role: ValueRole or TextRole for SortByRole, 0 for the two-rule sort.
void sortXola(benchmark::State& state, int n, double& total, int& iterations, int role)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    const QList<XOLATreeItem*> original = *model->GetModelItemList();
    const QVariantList rules = twoRules();
    bool checked = false;
    for (auto _ : state) {
        // Back to the unsorted order, as views rearranging their source do.
        *model->GetModelItemList() = original;
        Stopwatch watch;
        if (role)
            model->SortByRole(role, true);
        else
            model->SortByRules(rules, 0);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (!checked) {
            checked = true;
            if (!isOrdered(model, role))
                state.SkipWithError("rows not in the expected order");
        }
    }
    destroyModel(model);
}

void sortProxy(benchmark::State& state, int n, double& total, int& iterations, int role)
{
    RowListModel list(rows(n));
    for (auto _ : state) {
        QScopedPointer<QSortFilterProxyModel> proxy(role ? new QSortFilterProxyModel : new TwoKeyProxy);
        const double t = timedProxySort(*proxy, list, role ? role : int(GroupRole));
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (proxy->rowCount() != n)
            state.SkipWithError("proxy lost rows");
    }
}

template <typename Key, typename Extract, typename Less>
void stableSortKeys(benchmark::State& state, int n, double& total, int& iterations, Extract extract, Less less)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    std::vector<std::pair<Key, XOLATreeItem*>> keys;
    keys.reserve(size_t(n));
    for (XOLATreeItem* item : qAsConst(*model->GetModelItemList()))
        keys.emplace_back(extract(benchItem(item)), item);
    for (auto _ : state) {
        std::vector<std::pair<Key, XOLATreeItem*>> work = keys;
        Stopwatch watch;
        std::stable_sort(work.begin(), work.end(),
                         [&less](const std::pair<Key, XOLATreeItem*>& a, const std::pair<Key, XOLATreeItem*>& b) {
                             return less(a.first, b.first);
                         });
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        benchmark::DoNotOptimize(work.data());
    }
    destroyModel(model);
}

// Keep-sorting: one insertion re-sorts every row, by design.
constexpr int kKeepSortedInsertions = 5;

void keepSortedAppendXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n + 1000);
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(data, 0, n));
    model->SortByRoleAndKeep(int(ValueRole), true);
    int next = n;
    for (auto _ : state) {
        const QList<XOLATreeItem*> items = makeItems(data, next, kKeepSortedInsertions);
        next = n + (next - n + kKeepSortedInsertions) % 900;
        Stopwatch watch;
        for (XOLATreeItem* item : items)
            model->AppendItem(item);
        const double t = watch.seconds() / kKeepSortedInsertions;
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        // Back to n rows, outside the measurement.
        QStringList ids;
        for (XOLATreeItem* item : items)
            ids << item->id();
        model->Remove(ids);
        qDeleteAll(items);
    }
    destroyModel(model);
}

void keepSortedAppendProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n + 1000);
    for (auto _ : state) {
        RowListModel list(data.mid(0, n));
        QSortFilterProxyModel proxy;
        proxy.setSortRole(ValueRole);
        proxy.setDynamicSortFilter(true);
        proxy.setSourceModel(&list);
        proxy.sort(0, Qt::AscendingOrder);
        Stopwatch watch;
        for (int k = 0; k < kKeepSortedInsertions; ++k)
            list.append(data.at(n + k));
        const double t = watch.seconds() / kKeepSortedInsertions;
        state.SetIterationTime(t);
        total += t;
        ++iterations;
    }
}

} // namespace

void registerSortBenchmarks()
{
    registerSizes("sort_int:xola", [](benchmark::State& s, int n, double& t, int& i) { sortXola(s, n, t, i, ValueRole); });
    registerSizes("sort_int:QSortFilterProxyModel",
                  [](benchmark::State& s, int n, double& t, int& i) { sortProxy(s, n, t, i, ValueRole); });
    registerSizes("sort_int:std::stable_sort", [](benchmark::State& s, int n, double& t, int& i) {
        stableSortKeys<int>(s, n, t, i, [](const BenchItem* item) { return item->value(); }, std::less<int>());
    });

    registerSizes("sort_string:xola", [](benchmark::State& s, int n, double& t, int& i) { sortXola(s, n, t, i, TextRole); });
    registerSizes("sort_string:QSortFilterProxyModel",
                  [](benchmark::State& s, int n, double& t, int& i) { sortProxy(s, n, t, i, TextRole); });
    registerSizes("sort_string:std::stable_sort", [](benchmark::State& s, int n, double& t, int& i) {
        stableSortKeys<QString>(s, n, t, i, [](const BenchItem* item) { return item->text(); },
                                [](const QString& a, const QString& b) { return a < b; });
    });

    registerSizes("sort_rules2:xola", [](benchmark::State& s, int n, double& t, int& i) { sortXola(s, n, t, i, 0); });
    registerSizes("sort_rules2:QSortFilterProxyModel",
                  [](benchmark::State& s, int n, double& t, int& i) { sortProxy(s, n, t, i, 0); });
    registerSizes("sort_rules2:std::stable_sort", [](benchmark::State& s, int n, double& t, int& i) {
        stableSortKeys<std::pair<QString, int>>(
            s, n, t, i, [](const BenchItem* item) { return std::make_pair(item->group(), item->value()); },
            [](const std::pair<QString, int>& a, const std::pair<QString, int>& b) {
                return a.first != b.first ? a.first < b.first : a.second > b.second;
            });
    });

    registerSizes("keep_sorted_append:xola", keepSortedAppendXola, 100000);
    registerSizes("keep_sorted_append:QSortFilterProxyModel", keepSortedAppendProxy, 100000);
}

} // namespace bench
