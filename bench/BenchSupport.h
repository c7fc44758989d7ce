#ifndef BENCH_BENCHSUPPORT_H
#define BENCH_BENCHSUPPORT_H

// Shared pieces of the benchmark suite: the row data, the library's item with
// extra roles, and the Qt models the library is compared with.

#include "XOLATreeModel.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QAbstractListModel>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <cstdint>

class QStandardItem;

namespace bench {

//! Extra roles, numbered after the item's fixed ones.
enum ExtraRoles {
    ValueRole = XOLATreeItem::LastRole + 1, // 261, int, random
    TextRole,                               // 262, string of 8 letters from a-h / A-H
    GroupRole                               // 263, string, 1,000 distinct values
};

constexpr int kGroupKeys = 1000;

//! Role names shared by the library's models and the Qt models.
QHash<int, QByteArray> roleNames();

//! One row's data, as a host would hold it before loading.
struct Row
{
    QString id;
    QString name;
    int value = 0;
    QString text;
    QString group;
};

//! Deterministic rows: row i is the same in every run and every process.
Row makeRow(int i, uint64_t seed = 0);
//! A second text for row i, used to change every row's value.
QString alternateText(int i);

//! The rows for n, made once per process and shared by the benchmarks.
const QVector<Row>& rows(int n);

/*!
 * A row object with the three extra roles, written the way hosts write theirs:
 * both getData forms are overridden.
 */
class BenchItem : public XOLATreeItem
{
    Q_OBJECT
public:
    BenchItem(const Row& row, QObject* childModel = nullptr);

    QVariant getData(int role) const override;
    QVariant getData(const QString& roleName) const override;

    int value() const { return m_value; }
    const QString& text() const { return m_text; }
    const QString& group() const { return m_group; }

    //! Changes the text role and signals the change.
    void setText(const QString& text);

private:
    int m_value;
    QString m_text;
    QString m_group;
};

//! A model made through the entry point with the bench role names.
XOLATreeModel* createModel(int flags = 0);
void destroyModel(XOLATreeModel* model);
QList<XOLATreeItem*> makeItems(const QVector<Row>& data, int first = 0, int count = -1);
//! Runs the deletions that removed items and views handed to deleteLater().
void flushDeferredDeletes();

//! The filter used by every filtering benchmark: textRole contains "ab", any case.
QVariantList substringRules();
extern const char* const kNeedle;

// ---- Qt peers ---------------------------------------------------------------

//! A QStandardItemModel row with the same roles as a BenchItem.
QStandardItem* makeStandardItem(const Row& row);

//! A plain list model over a vector of rows: the model a Qt developer would write.
class RowListModel : public QAbstractListModel
{
public:
    explicit RowListModel(QVector<Row> data = {}, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void append(const Row& row);
    void setText(int row, const QString& text);

private:
    QVector<Row> m_rows;
};

//! Two levels: parents with child rows, the shape of the library's item trees.
struct TreeNode
{
    Row row;
    QVector<Row> children;
};

class RowTreeModel : public QAbstractItemModel
{
public:
    explicit RowTreeModel(QVector<TreeNode> nodes, QObject* parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    QVector<TreeNode> m_nodes;
};

//! The tree used by the recursive filtering benchmarks: n rows in all, as
//! n / 10 parents holding 9 children each.
QVector<TreeNode> makeTree(int n);

//! Sorts by groupRole ascending, then valueRole descending.
class TwoKeyProxy : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
};

//! Sets proxy over source sorted by role and times the sort alone (thread CPU
//! seconds): Qt's answer to the library's sorts and to its group view.
double timedProxySort(QSortFilterProxyModel& proxy, QAbstractItemModel& source, int role);

//! Shows the source rows first .. first + count - 1: paging and windows done
//! with Qt's own proxy.
class RowRangeProxy : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setRange(int first, int count);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    int m_first = 0;
    int m_count = 0;
};

// ---- run configuration ---------------------------------------------------------

struct Config
{
    int maxRows = 1000000;
    //! Projected seconds above which a size is not run.
    double budgetSeconds = 40.0;
};

Config& config();

//! Row counts to measure, ascending, up to the configured maximum.
QVector<int> sizes();

//! Iterations for one measurement at n rows (fewer for more rows).
int iterationsFor(int n, int workPerIteration = 300000);

void registerLoadBenchmarks();
void registerSortBenchmarks();
void registerFilterBenchmarks();
void registerViewBenchmarks();
void registerMemoryBenchmarks();
void registerFloorBenchmarks();
//! Resident bytes that n floor rows (plain QObject rows) add, made in this process.
qint64 floorResidentBytes(int n, qint64 (*residentBytes)());

//! Child-process entry for the memory measurements; returns the exit code.
int runMemoryProbe(const QString& probe);

} // namespace bench

#endif // BENCH_BENCHSUPPORT_H
