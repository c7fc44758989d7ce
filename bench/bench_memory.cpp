// Resident memory per row, each measurement in a fresh process:
// /proc/self/statm is read before and after the rows are made and listed, or,
// for a filter view, before and after the view is built over rows already
// listed.

#include "BenchSupport.h"
#include "BenchTiming.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtGui/QStandardItem>
#include <QtGui/QStandardItemModel>

#include <cstdio>
#include <unistd.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace bench {

namespace {

qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    if (fields.size() < 2)
        return -1;
    return fields.at(1).toLongLong() * qint64(sysconf(_SC_PAGESIZE));
}

// Makes n rows, their strings included, and lists them in one call.
void appendNewRows(XOLATreeModel* model, int n)
{
    QList<XOLATreeItem*> items;
    items.reserve(n);
    for (int i = 0; i < n; ++i)
        items.append(new BenchItem(makeRow(i)));
    model->AppendItemsList(items);
}

// The rows are made inside the measured region, so their strings count.
qint64 loadXola(int n)
{
    XOLATreeModel* model = createModel();
    const qint64 before = residentBytes();
    appendNewRows(model, n);
    const qint64 after = residentBytes();
    if (model->rowCount() != n)
        return -1;
    return after - before;
}

qint64 loadStandard(int n)
{
    QStandardItemModel model;
    model.setItemRoleNames(roleNames());
    const qint64 before = residentBytes();
    {
        QList<QStandardItem*> items;
        items.reserve(n);
        for (int i = 0; i < n; ++i)
            items.append(makeStandardItem(makeRow(i)));
        model.invisibleRootItem()->appendRows(items);
    }
    const qint64 after = residentBytes();
    if (model.rowCount() != n)
        return -1;
    return after - before;
}

qint64 loadList(int n)
{
    RowListModel* model = nullptr;
    const qint64 before = residentBytes();
    {
        QVector<Row> data;
        data.reserve(n);
        for (int i = 0; i < n; ++i)
            data.append(makeRow(i));
        model = new RowListModel(std::move(data));
    }
    const qint64 after = residentBytes();
    const int count = model->rowCount();
    delete model;
    return count == n ? after - before : -1;
}

// Every row passes, so the view lists all n rows: SubStr with an empty text is
// found in every value, and the rule is still read for each row.
QVariantList everyRowRules()
{
    QVariantMap rule;
    rule.insert(QStringLiteral("RoleName"), QStringLiteral("textRole"));
    rule.insert(QStringLiteral("Rule"), int(IXOLATreeModel::SubStr));
    rule.insert(QStringLiteral("Value"), QString());
    return {rule};
}

// What a filter view adds over a model already loaded: only the view is built
// inside the measured region.
qint64 filterView(int n)
{
    XOLATreeModel* model = createModel();
    appendNewRows(model, n);
    const QVariantList rules = everyRowRules();
#if defined(__GLIBC__)
    // Loading freed its temporaries (the item list, the rows' scratch
    // strings) into pages that stay resident; the view would reuse them and
    // seem smaller than it is. Handing free pages back first makes every page
    // the view touches count.
    malloc_trim(0);
#endif
    const qint64 before = residentBytes();
    QObject* view = model->GetFilterModel(rules);
    const qint64 after = residentBytes();
    const IXOLATreeModel* listed = qobject_cast<IXOLATreeModel*>(view);
    if (model->rowCount() != n || !listed || listed->rowCount() != n)
        return -1;
    return after - before;
}

void measure(benchmark::State& state, const QString& kind)
{
    const int n = int(state.range(0));
    double bytesPerRow = -1;
    for (auto _ : state) {
        Stopwatch watch;
        QProcess probe;
        probe.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--memory-probe=%1:%2").arg(kind).arg(n)});
        probe.waitForFinished(-1);
        const QByteArray out = probe.readAllStandardOutput().trimmed();
        bool ok = false;
        const qint64 bytes = out.toLongLong(&ok);
        state.SetIterationTime(watch.seconds());
        if (!ok || bytes < 0 || probe.exitCode() != 0) {
            state.SkipWithError("memory probe failed");
            continue;
        }
        bytesPerRow = double(bytes) / n;
    }
    state.counters["rows"] = n;
    state.counters["bytes_per_row"] = bytesPerRow;
}

} // namespace

int runMemoryProbe(const QString& probe)
{
    const QStringList parts = probe.split(QLatin1Char(':'));
    if (parts.size() != 2)
        return 2;
    const int n = parts.at(1).toInt();
    qint64 bytes = -1;
    if (parts.at(0) == QLatin1String("xola"))
        bytes = loadXola(n);
    else if (parts.at(0) == QLatin1String("QStandardItemModel"))
        bytes = loadStandard(n);
    else if (parts.at(0) == QLatin1String("RowListModel"))
        bytes = loadList(n);
    else if (parts.at(0) == QLatin1String("floor"))
        bytes = floorResidentBytes(n, residentBytes);
    else if (parts.at(0) == QLatin1String("filter_view"))
        bytes = filterView(n);
    else
        return 2;
    std::printf("%lld\n", static_cast<long long>(bytes));
    std::fflush(stdout);
    // The process ends here; tearing a million rows down is not measured.
    std::_Exit(bytes < 0 ? 1 : 0);
}

void registerMemoryBenchmarks()
{
    // Every size: the per-row figures are compared at each of them, and at
    // the small ones the model's fixed costs show.
    for (const char* kind : {"xola", "QStandardItemModel", "RowListModel", "floor", "filter_view"}) {
        const QString name = QString::fromLatin1(kind);
        auto* family = benchmark::RegisterBenchmark((std::string("memory:") + kind).c_str(),
                                                    [name](benchmark::State& state) { measure(state, name); });
        for (int n : sizes())
            family->Arg(n);
        family->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
    }
}

} // namespace bench
