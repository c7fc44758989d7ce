// The floor that QObject rows set: what any model whose rows are QObjects pays
// before it does anything of its own. Each floor row is a plain QObject with
// the same strings as a library row, C++ ownership recorded for QML and one
// connection to a receiver; the rows are listed in a vector and indexed by id
// in a hash. The library's load, clear, replacement and memory are reported
// against it.
//
// Also here: a change under every parent of a tree with a filter view
// attached, which must cost linear time in total.

#include "BenchSupport.h"
#include "BenchTiming.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QVector>
#include <QtQml/QQmlEngine>

namespace bench {

namespace {

class FloorRow : public QObject
{
public:
    explicit FloorRow(const Row& row)
        : m_id(row.id)
        , m_name(row.name)
        , m_value(row.value)
        , m_text(row.text)
        , m_group(row.group)
    {
    }
    const QString& id() const { return m_id; }

private:
    QString m_id;
    QString m_name;
    int m_value;
    QString m_text;
    QString m_group;
};

struct Floor
{
    QObject receiver;
    QVector<FloorRow*> rows;
    QHash<QString, FloorRow*> byId;
};

FloorRow* makeFloorRow(const Row& row)
{
    auto* object = new FloorRow(row);
    QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
    return object;
}

void listFloorRow(Floor& floor, FloorRow* object)
{
    QObject::connect(object, &QObject::objectNameChanged, &floor.receiver, [] {});
    floor.rows.append(object);
    floor.byId.insert(object->id(), object);
}

void loadFloor(Floor& floor, const QVector<Row>& data)
{
    floor.rows.reserve(data.size());
    floor.byId.reserve(data.size());
    for (const Row& row : data)
        listFloorRow(floor, makeFloorRow(row));
}

void clearFloor(Floor& floor)
{
    for (FloorRow* row : qAsConst(floor.rows)) {
        QObject::disconnect(row, nullptr, nullptr, nullptr);
        row->deleteLater();
    }
    floor.rows.clear();
    floor.byId.clear();
    flushDeferredDeletes();
}

// Records the timed step, checks the rows the floor ended with, then clears it
// untimed for the next iteration.
void finishIteration(benchmark::State& state, const Stopwatch& watch, double& total, int& iterations,
                     Floor& floor, int n)
{
    const double t = watch.seconds();
    state.SetIterationTime(t);
    total += t;
    ++iterations;
    if (floor.rows.size() != n)
        state.SkipWithError("floor holds the wrong rows");
    clearFloor(floor);
}

void loadFloorTimed(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        Floor floor;
        Stopwatch watch;
        loadFloor(floor, data);
        finishIteration(state, watch, total, iterations, floor, n);
    }
}

void clearFloorTimed(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        Floor floor;
        loadFloor(floor, data);
        Stopwatch watch;
        clearFloor(floor);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
    }
}

// The rows of a replacement are made beforehand, as the library's are: what is
// timed is the old rows cleared away and the new ones listed.
void replaceFloorTimed(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        Floor floor;
        loadFloor(floor, data);
        QVector<FloorRow*> replacement;
        replacement.reserve(n);
        for (const Row& row : data)
            replacement.append(makeFloorRow(row));
        Stopwatch watch;
        clearFloor(floor);
        floor.rows.reserve(n);
        floor.byId.reserve(n);
        for (FloorRow* object : qAsConst(replacement))
            listFloorRow(floor, object);
        finishIteration(state, watch, total, iterations, floor, n);
    }
}

// ---- a change under every parent of a tree, with a filter view attached -------------------

void childChangeXola(benchmark::State& state, int n, double& total, int& iterations)
{
    // n parents, each with a child model holding one row.
    for (auto _ : state) {
        XOLATreeModel* root = createModel();
        QList<XOLATreeItem*> parents;
        QVector<XOLATreeModel*> children;
        parents.reserve(n);
        children.reserve(n);
        for (int i = 0; i < n; ++i) {
            XOLATreeModel* child = createModel();
            child->AppendItem(new BenchItem(makeRow(i, 7)));
            children.append(child);
            parents.append(new BenchItem(makeRow(i), child));
        }
        root->AppendItemsList(parents);
        QObject* view = root->GetFilterModel(substringRules());
        Stopwatch watch;
        for (int i = 0; i < n; ++i)
            children.at(i)->AppendItem(new BenchItem(makeRow(i, 11)));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        delete view;
        // Removing the parents disposes of their child models too.
        destroyModel(root);
        flushDeferredDeletes();
    }
}

} // namespace

qint64 floorResidentBytes(int n, qint64 (*residentBytes)())
{
    // Left alive: the probe process ends right after the measurement.
    auto* floor = new Floor;
    const qint64 before = residentBytes();
    {
        QVector<Row> data;
        data.reserve(n);
        for (int i = 0; i < n; ++i)
            data.append(makeRow(i));
        loadFloor(*floor, data);
    }
    const qint64 after = residentBytes();
    return floor->rows.size() == n ? after - before : -1;
}

void registerFloorBenchmarks()
{
    registerSizes("load:floor", loadFloorTimed);
    registerSizes("remove_all:floor", clearFloorTimed);
    registerSizes("replace_ex:floor", replaceFloorTimed);
    // Up to 100,000 parents: each has a model of its own.
    registerSizes("filter_child_change:xola", childChangeXola, 100000, 100000);
}

} // namespace bench
