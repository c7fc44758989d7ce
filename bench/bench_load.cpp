// Loading, removing and replacing whole lists, against QStandardItemModel rows
// carrying the same roles.

#include "BenchSupport.h"
#include "BenchTiming.h"

#include <QtGui/QStandardItem>
#include <QtGui/QStandardItemModel>

namespace bench {

QStandardItem* makeStandardItem(const Row& row)
{
    auto* item = new QStandardItem;
    item->setData(row.id, XOLATreeItem::IdRole);
    item->setData(row.name, XOLATreeItem::NameRole);
    item->setData(row.value, ValueRole);
    item->setData(row.text, TextRole);
    item->setData(row.group, GroupRole);
    return item;
}

namespace {

QList<QStandardItem*> makeStandardItems(const QVector<Row>& data)
{
    QList<QStandardItem*> items;
    items.reserve(data.size());
    for (const Row& row : data)
        items.append(makeStandardItem(row));
    return items;
}

// Items made and listed: what a host pays to show n rows.
void loadXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        XOLATreeModel* model = createModel();
        Stopwatch watch;
        model->AppendItemsList(makeItems(data));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        destroyModel(model);
    }
}

void loadStandard(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        QStandardItemModel model;
        model.setItemRoleNames(roleNames());
        Stopwatch watch;
        model.invisibleRootItem()->appendRows(makeStandardItems(data));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
    }
}

// The list operation alone, items already made.
void appendXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        XOLATreeModel* model = createModel();
        const QList<XOLATreeItem*> items = makeItems(data);
        Stopwatch watch;
        model->AppendItemsList(items);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        destroyModel(model);
    }
}

void appendStandard(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        QStandardItemModel model;
        model.setItemRoleNames(roleNames());
        const QList<QStandardItem*> items = makeStandardItems(data);
        Stopwatch watch;
        model.invisibleRootItem()->appendRows(items);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
    }
}

// Every row removed and every item deleted (the deferred deletions included).
void removeAllXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        XOLATreeModel* model = createModel();
        model->AppendItemsList(makeItems(data));
        Stopwatch watch;
        model->RemoveAll();
        flushDeferredDeletes();
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        destroyModel(model);
    }
}

void removeAllStandard(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        QStandardItemModel model;
        model.setItemRoleNames(roleNames());
        model.invisibleRootItem()->appendRows(makeStandardItems(data));
        Stopwatch watch;
        model.removeRows(0, model.rowCount());
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
    }
}

// n rows swapped for n new ones; the old items are deleted.
void replaceXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        XOLATreeModel* model = createModel();
        model->AppendItemsList(makeItems(data));
        const QList<XOLATreeItem*> replacement = makeItems(data);
        Stopwatch watch;
        model->ReplaceItemsListEx(replacement);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        destroyModel(model);
    }
}

void replaceStandard(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<Row>& data = rows(n);
    for (auto _ : state) {
        QStandardItemModel model;
        model.setItemRoleNames(roleNames());
        model.invisibleRootItem()->appendRows(makeStandardItems(data));
        const QList<QStandardItem*> replacement = makeStandardItems(data);
        Stopwatch watch;
        model.removeRows(0, model.rowCount());
        model.invisibleRootItem()->appendRows(replacement);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
    }
}

} // namespace

void registerLoadBenchmarks()
{
    registerSizes("load:xola", loadXola);
    registerSizes("load:QStandardItemModel", loadStandard);
    registerSizes("append_prebuilt:xola", appendXola);
    registerSizes("append_prebuilt:QStandardItemModel", appendStandard);
    registerSizes("remove_all:xola", removeAllXola);
    registerSizes("remove_all:QStandardItemModel", removeAllStandard);
    registerSizes("replace_ex:xola", replaceXola);
    registerSizes("replace_ex:QStandardItemModel", replaceStandard);
}

} // namespace bench
