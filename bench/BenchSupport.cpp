#include "BenchSupport.h"
#include "BenchTiming.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QMap>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace bench {

const char* const kNeedle = "ab";

namespace {

uint64_t splitmix64(uint64_t x)
{
    x += 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

QString letters(uint64_t bits)
{
    // 8 letters from a-h and A-H: about one row in nine holds "ab" in any case.
    static const char alphabet[] = "abcdefghABCDEFGH";
    QString text(8, Qt::Uninitialized);
    for (int k = 0; k < 8; ++k) {
        text[k] = QLatin1Char(alphabet[bits & 15u]);
        bits >>= 4;
    }
    return text;
}

} // namespace

QHash<int, QByteArray> roleNames()
{
    return {{XOLATreeItem::IdRole, "idRole"},
            {XOLATreeItem::NameRole, "nameRole"},
            {XOLATreeItem::ChildModelRole, "childModelRole"},
            {ValueRole, "valueRole"},
            {TextRole, "textRole"},
            {GroupRole, "groupRole"}};
}

Row makeRow(int i, uint64_t seed)
{
    const uint64_t r = splitmix64(uint64_t(i) * 2654435761u + seed);
    Row row;
    row.id = QStringLiteral("id-%1").arg(i);
    row.name = QStringLiteral("name-%1").arg(i);
    row.value = int(r % 1000000007u);
    row.text = letters(splitmix64(r));
    row.group = QStringLiteral("group-%1").arg(int((r >> 40) % kGroupKeys));
    return row;
}

QString alternateText(int i)
{
    return letters(splitmix64(uint64_t(i) ^ 0x5DEECE66Dull));
}

const QVector<Row>& rows(int n)
{
    static std::map<int, QVector<Row>> cache;
    auto it = cache.find(n);
    if (it == cache.end()) {
        QVector<Row> data;
        data.reserve(n);
        for (int i = 0; i < n; ++i)
            data.append(makeRow(i));
        it = cache.emplace(n, std::move(data)).first;
    }
    return it->second;
}

// ---- the library's side -------------------------------------------------------

BenchItem::BenchItem(const Row& row, QObject* childModel)
    : XOLATreeItem(row.id, row.name, childModel)
    , m_value(row.value)
    , m_text(row.text)
    , m_group(row.group)
{
}

QVariant BenchItem::getData(int role) const
{
    switch (role) {
    case ValueRole:
        return m_value;
    case TextRole:
        return m_text;
    case GroupRole:
        return m_group;
    default:
        return XOLATreeItem::getData(role);
    }
}

QVariant BenchItem::getData(const QString& roleName) const
{
    if (roleName == QLatin1String("valueRole"))
        return m_value;
    if (roleName == QLatin1String("textRole"))
        return m_text;
    if (roleName == QLatin1String("groupRole"))
        return m_group;
    return XOLATreeItem::getData(roleName);
}

void BenchItem::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    emit valueChanged();
}

XOLATreeModel* createModel(int flags)
{
    IXOLATreeModel* model = nullptr;
    if (!CreateXOLATreeModel(&model, nullptr, roleNames(), flags, nullptr, nullptr))
        return nullptr;
    return static_cast<XOLATreeModel*>(model);
}

void destroyModel(XOLATreeModel* model)
{
    IXOLATreeModel* base = model;
    DeleteXOLATreeModel(&base);
    flushDeferredDeletes();
}

QList<XOLATreeItem*> makeItems(const QVector<Row>& data, int first, int count)
{
    if (count < 0)
        count = data.size() - first;
    QList<XOLATreeItem*> items;
    items.reserve(count);
    for (int i = first; i < first + count; ++i)
        items.append(new BenchItem(data.at(i)));
    return items;
}

void flushDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // Only a pass over every event type compacts the thread's posted-event
    // list; without it the delivered entries pile up over a long run and every
    // later post, removal and flush walks them.
    QCoreApplication::sendPostedEvents();
}

QVariantList substringRules()
{
    QVariantMap rule;
    rule.insert(QStringLiteral("RoleName"), QStringLiteral("textRole"));
    rule.insert(QStringLiteral("Rule"), int(IXOLATreeModel::InsensitiveSubStr));
    rule.insert(QStringLiteral("Value"), QString::fromLatin1(kNeedle));
    return {rule};
}

// ---- Qt peers ---------------------------------------------------------------------

namespace {
QVariant rowData(const Row& row, int role)
{
    switch (role) {
    case XOLATreeItem::IdRole:
        return row.id;
    case XOLATreeItem::NameRole:
        return row.name;
    case ValueRole:
        return row.value;
    case TextRole:
        return row.text;
    case GroupRole:
        return row.group;
    default:
        return QVariant();
    }
}
} // namespace

RowListModel::RowListModel(QVector<Row> data, QObject* parent)
    : QAbstractListModel(parent)
    , m_rows(std::move(data))
{
}

int RowListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant RowListModel::data(const QModelIndex& index, int role) const
{
    const int row = index.row();
    if (row < 0 || row >= m_rows.size())
        return QVariant();
    return rowData(m_rows.at(row), role);
}

QHash<int, QByteArray> RowListModel::roleNames() const
{
    return bench::roleNames();
}

void RowListModel::append(const Row& row)
{
    const int n = m_rows.size();
    beginInsertRows(QModelIndex(), n, n);
    m_rows.append(row);
    endInsertRows();
}

void RowListModel::setText(int row, const QString& text)
{
    m_rows[row].text = text;
    const QModelIndex idx = index(row);
    emit dataChanged(idx, idx, {TextRole});
}

RowTreeModel::RowTreeModel(QVector<TreeNode> nodes, QObject* parent)
    : QAbstractItemModel(parent)
    , m_nodes(std::move(nodes))
{
}

// Top-level rows carry internal id 0, children the parent's row + 1.
QModelIndex RowTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column != 0)
        return QModelIndex();
    if (!parent.isValid())
        return row < m_nodes.size() ? createIndex(row, 0, quintptr(0)) : QModelIndex();
    if (parent.internalId() != 0)
        return QModelIndex();
    return row < m_nodes.at(parent.row()).children.size() ? createIndex(row, 0, quintptr(parent.row() + 1))
                                                           : QModelIndex();
}

QModelIndex RowTreeModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return QModelIndex();
    return createIndex(int(child.internalId() - 1), 0, quintptr(0));
}

int RowTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return m_nodes.size();
    if (parent.internalId() != 0)
        return 0;
    return m_nodes.at(parent.row()).children.size();
}

int RowTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant RowTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    if (index.internalId() == 0)
        return rowData(m_nodes.at(index.row()).row, role);
    return rowData(m_nodes.at(int(index.internalId() - 1)).children.at(index.row()), role);
}

QHash<int, QByteArray> RowTreeModel::roleNames() const
{
    return bench::roleNames();
}

QVector<TreeNode> makeTree(int n)
{
    const QVector<Row>& data = rows(n);
    QVector<TreeNode> nodes;
    nodes.reserve(n / 10);
    for (int i = 0; i + 9 < n; i += 10) {
        TreeNode node;
        node.row = data.at(i);
        for (int k = 1; k < 10; ++k)
            node.children.append(data.at(i + k));
        nodes.append(std::move(node));
    }
    return nodes;
}

bool TwoKeyProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const QString leftGroup = left.data(GroupRole).toString();
    const QString rightGroup = right.data(GroupRole).toString();
    if (leftGroup != rightGroup)
        return leftGroup < rightGroup;
    return left.data(ValueRole).toInt() > right.data(ValueRole).toInt();
}

void RowRangeProxy::setRange(int first, int count)
{
    m_first = first;
    m_count = count;
    invalidateFilter();
}

bool RowRangeProxy::filterAcceptsRow(int sourceRow, const QModelIndex&) const
{
    return sourceRow >= m_first && sourceRow < m_first + m_count;
}

// ---- configuration and timing -------------------------------------------------------

Config& config()
{
    static Config value;
    return value;
}

QVector<int> sizes()
{
    QVector<int> result;
    for (int n : {1000, 10000, 100000, 1000000}) {
        if (n <= config().maxRows)
            result.append(n);
    }
    return result;
}

int iterationsFor(int n, int workPerIteration)
{
    return std::max(1, std::min(100, workPerIteration / std::max(1, n)));
}

namespace {
std::map<std::string, std::vector<std::pair<int, double>>>& timings()
{
    static std::map<std::string, std::vector<std::pair<int, double>>> value;
    return value;
}
} // namespace

void recordTime(const std::string& family, int n, double secondsPerIteration)
{
    auto& points = timings()[family];
    for (auto& point : points) {
        if (point.first == n) {
            point.second = secondsPerIteration;
            return;
        }
    }
    points.emplace_back(n, secondsPerIteration);
    std::sort(points.begin(), points.end());
}

bool skipOverBudget(benchmark::State& state, const std::string& family, int n)
{
    const auto it = timings().find(family);
    if (it == timings().end() || it->second.empty())
        return false;
    const auto& points = it->second;
    const auto& last = points.back();
    if (last.first >= n)
        return false;
    // Growth measured over the two largest sizes so far (at least linear).
    double slope = 1.2;
    if (points.size() >= 2) {
        const auto& before = points[points.size() - 2];
        if (before.second > 0 && last.second > 0)
            slope = std::log(last.second / before.second) / std::log(double(last.first) / before.first);
    }
    slope = std::max(1.0, std::min(3.0, slope));
    const double projected = last.second * std::pow(double(n) / last.first, slope) * double(state.max_iterations);
    if (projected <= config().budgetSeconds)
        return false;
    const std::string message = "skipped: projected " + std::to_string(int(projected)) + " s (growth n^"
        + std::to_string(slope).substr(0, 4) + ")";
    state.SkipWithError(message.c_str());
    return true;
}

double timedProxySort(QSortFilterProxyModel& proxy, QAbstractItemModel& source, int role)
{
    proxy.setSortRole(role);
    proxy.setSourceModel(&source);
    Stopwatch watch;
    proxy.sort(0, Qt::AscendingOrder);
    return watch.seconds();
}

} // namespace bench
