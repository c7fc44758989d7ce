// Filtering: building a view with a case-insensitive substring rule, following
// appends and value changes with the view attached, and recursive filtering of
// a tree; against QSortFilterProxyModel doing the same work.

#include "BenchSupport.h"
#include "BenchTiming.h"

namespace bench {

namespace {

bool passes(const QString& text)
{
    return text.contains(QLatin1String(kNeedle), Qt::CaseInsensitive);
}

int expectedCount(const QVector<Row>& data, int count)
{
    int passing = 0;
    for (int i = 0; i < count; ++i)
        passing += passes(data.at(i).text) ? 1 : 0;
    return passing;
}

QSortFilterProxyModel* newSubstringProxy(QAbstractItemModel* source, bool recursive = false)
{
    auto* proxy = new QSortFilterProxyModel;
    proxy->setFilterRole(TextRole);
    proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy->setRecursiveFilteringEnabled(recursive);
    proxy->setSourceModel(source);
    return proxy;
}

IXOLATreeModel* asModel(QObject* object)
{
    return qobject_cast<IXOLATreeModel*>(object);
}

void deleteView(QObject* view)
{
    delete view;
    flushDeferredDeletes();
}

// ---- building a view -------------------------------------------------------------

void buildXola(benchmark::State& state, int n, double& total, int& iterations)
{
    XOLATreeModel* model = createModel();
    model->AppendItemsList(makeItems(rows(n)));
    const QVariantList rules = substringRules();
    const int expected = expectedCount(rows(n), n);
    for (auto _ : state) {
        Stopwatch watch;
        QObject* view = model->GetFilterModel(rules);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (asModel(view)->rowCount() != expected)
            state.SkipWithError("filter view holds the wrong rows");
        deleteView(view);
    }
    destroyModel(model);
}

void buildProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    RowListModel list(rows(n));
    const int expected = expectedCount(rows(n), n);
    for (auto _ : state) {
        QScopedPointer<QSortFilterProxyModel> proxy(newSubstringProxy(&list));
        Stopwatch watch;
        proxy->setFilterFixedString(QString::fromLatin1(kNeedle));
        const int count = proxy->rowCount();
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (count != expected)
            state.SkipWithError("proxy holds the wrong rows");
    }
}

// ---- following appends: n / 10 single appends onto n rows ----------------------------

void followAppendXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const int added = n / 10;
    const QVector<Row>& data = rows(n + added);
    const QVariantList rules = substringRules();
    const int expected = expectedCount(data, n + added);
    for (auto _ : state) {
        XOLATreeModel* model = createModel();
        model->AppendItemsList(makeItems(data, 0, n));
        QObject* view = model->GetFilterModel(rules);
        const QList<XOLATreeItem*> items = makeItems(data, n, added);
        Stopwatch watch;
        for (XOLATreeItem* item : items)
            model->AppendItem(item);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (asModel(view)->rowCount() != expected)
            state.SkipWithError("filter view holds the wrong rows");
        deleteView(view);
        destroyModel(model);
    }
}

void followAppendProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    const int added = n / 10;
    const QVector<Row>& data = rows(n + added);
    const int expected = expectedCount(data, n + added);
    for (auto _ : state) {
        RowListModel list(data.mid(0, n));
        QScopedPointer<QSortFilterProxyModel> proxy(newSubstringProxy(&list));
        proxy->setFilterFixedString(QString::fromLatin1(kNeedle));
        proxy->rowCount();
        Stopwatch watch;
        for (int i = n; i < n + added; ++i)
            list.append(data.at(i));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (proxy->rowCount() != expected)
            state.SkipWithError("proxy holds the wrong rows");
    }
}

// ---- following value changes: every row's text changes once -------------------------

QVector<QString> alternateTexts(int n)
{
    QVector<QString> texts;
    texts.reserve(n);
    for (int i = 0; i < n; ++i)
        texts.append(alternateText(i));
    return texts;
}

int expectedAfterChange(const QVector<QString>& texts)
{
    int passing = 0;
    for (const QString& text : texts)
        passing += passes(text) ? 1 : 0;
    return passing;
}

void followChangeXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<QString> texts = alternateTexts(n);
    const int expected = expectedAfterChange(texts);
    const QVariantList rules = substringRules();
    for (auto _ : state) {
        XOLATreeModel* model = createModel();
        model->AppendItemsList(makeItems(rows(n)));
        QObject* view = model->GetFilterModel(rules);
        const QList<XOLATreeItem*> items = *model->GetModelItemList();
        Stopwatch watch;
        for (int i = 0; i < n; ++i)
            static_cast<BenchItem*>(items.at(i))->setText(texts.at(i));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (asModel(view)->rowCount() != expected)
            state.SkipWithError("filter view holds the wrong rows");
        deleteView(view);
        destroyModel(model);
    }
}

void followChangeProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<QString> texts = alternateTexts(n);
    const int expected = expectedAfterChange(texts);
    for (auto _ : state) {
        RowListModel list(rows(n));
        QScopedPointer<QSortFilterProxyModel> proxy(newSubstringProxy(&list));
        proxy->setFilterFixedString(QString::fromLatin1(kNeedle));
        proxy->rowCount();
        Stopwatch watch;
        for (int i = 0; i < n; ++i)
            list.setText(i, texts.at(i));
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (proxy->rowCount() != expected)
            state.SkipWithError("proxy holds the wrong rows");
    }
}

// ---- recursive filtering of a tree: n / 10 parents with 9 children each ----------------

int expectedTreeCount(const QVector<TreeNode>& nodes)
{
    int passing = 0;
    for (const TreeNode& node : nodes) {
        bool keep = passes(node.row.text);
        for (const Row& child : node.children)
            keep = keep || passes(child.text);
        passing += keep ? 1 : 0;
    }
    return passing;
}

XOLATreeModel* makeXolaTree(const QVector<TreeNode>& nodes)
{
    XOLATreeModel* root = createModel();
    QList<XOLATreeItem*> parents;
    parents.reserve(nodes.size());
    for (const TreeNode& node : nodes) {
        XOLATreeModel* child = createModel();
        QList<XOLATreeItem*> children;
        for (const Row& row : node.children)
            children.append(new BenchItem(row));
        child->AppendItemsList(children);
        parents.append(new BenchItem(node.row, child));
    }
    root->AppendItemsList(parents);
    return root;
}

void recursiveXola(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<TreeNode> nodes = makeTree(n);
    const int expected = expectedTreeCount(nodes);
    XOLATreeModel* root = makeXolaTree(nodes);
    const QVariantList rules = substringRules();
    for (auto _ : state) {
        Stopwatch watch;
        QObject* view = root->GetFilterModel(rules);
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (asModel(view)->rowCount() != expected)
            state.SkipWithError("filter view holds the wrong rows");
        deleteView(view);
    }
    destroyModel(root);
}

void recursiveProxy(benchmark::State& state, int n, double& total, int& iterations)
{
    const QVector<TreeNode> nodes = makeTree(n);
    const int expected = expectedTreeCount(nodes);
    RowTreeModel tree(nodes);
    for (auto _ : state) {
        QScopedPointer<QSortFilterProxyModel> proxy(newSubstringProxy(&tree, true));
        Stopwatch watch;
        proxy->setFilterFixedString(QString::fromLatin1(kNeedle));
        const int count = proxy->rowCount();
        const double t = watch.seconds();
        state.SetIterationTime(t);
        total += t;
        ++iterations;
        if (count != expected)
            state.SkipWithError("proxy holds the wrong rows");
    }
}

} // namespace

void registerFilterBenchmarks()
{
    registerSizes("filter_build:xola", buildXola);
    registerSizes("filter_build:QSortFilterProxyModel", buildProxy);
    registerSizes("filter_follow_append:xola", followAppendXola, 100000);
    registerSizes("filter_follow_append:QSortFilterProxyModel", followAppendProxy, 100000);
    registerSizes("filter_follow_change:xola", followChangeXola, 100000);
    registerSizes("filter_follow_change:QSortFilterProxyModel", followChangeProxy, 100000);
    registerSizes("filter_recursive:xola", recursiveXola);
    registerSizes("filter_recursive:QSortFilterProxyModel", recursiveProxy);
}

} // namespace bench
