#include "RowStore.h"

#include "RowNotices.h"
#include "XOLATreeItem.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QVector>

RowStore::RowStore(QAbstractItemModel& model)
    : m_model(model)
{
}

QString RowStore::itemId(const XOLATreeItem* item)
{
    return item->id();
}

// ---- reading ---------------------------------------------------------------------

int RowStore::rowOf(const QObject* object, bool confirmMiss) const
{
    if (!object)
        return -1;
    if (m_rowIndex.isValidFor(m_items.size())) {
        const int row = m_rowIndex.find(object);
        // A miss is confirmed by a rebuild when asked: a host may have put the
        // object in place through GetModelItemList() since the index was built.
        if (row < 0 && !confirmMiss)
            return -1;
        if (row >= 0 && row < m_items.size() && m_items.at(row) == object)
            return row;
        // The rows were rearranged in place (through GetModelItemList()): rebuild.
    }
    m_rowIndex.rebuild(m_items);
    return m_rowIndex.find(object);
}

int RowStore::listedRow(const XOLATreeItem* item) const
{
    const int row = rowOf(item, false);
    if (row >= 0 || !item || !m_handedToHost)
        return row;
    // The index follows every change made here, so its miss is the answer.
    // Rows handed to a host may have been changed behind its back since: a
    // miss is then confirmed by a scan, cheaper than rebuilding the index for
    // an item that is usually not there.
    return m_items.indexOf(const_cast<XOLATreeItem*>(item));
}

QList<XOLATreeItem*>* RowStore::handToHost()
{
    // The caller may rearrange the rows through this pointer, now or later.
    m_handedToHost = true;
    rowsRearranged();
    return &m_items;
}

// ---- the id index ---------------------------------------------------------------------

void RowStore::unindex(XOLATreeItem* item)
{
    const QString id = item->id();
    const bool indexedUnderId = m_itemMap.value(id) == item;
    // Every entry under the item's id goes, as documented, also one naming
    // another item with the same id.
    m_itemMap.remove(id);
    if (!indexedUnderId)
        dropEntriesOf(item);
}

void RowStore::dropEntriesOf(const XOLATreeItem* item)
{
    for (auto it = m_itemMap.begin(); it != m_itemMap.end();) {
        if (it.value() == item)
            it = m_itemMap.erase(it);
        else
            ++it;
    }
}

// ---- changes announced by Qt's protocol ------------------------------------------------------

void RowStore::insert(int row, XOLATreeItem* item)
{
    RowNotices::beginInsert(m_model, row, row);
    m_items.insert(row, item);
    indexId(item);
    rowsRearranged();
    RowNotices::endInsert(m_model);
}

void RowStore::append(XOLATreeItem* item)
{
    const int row = m_items.size();
    RowNotices::beginInsert(m_model, row, row);
    m_items.append(item);
    indexId(item);
    // Appends keep a valid index valid, so loading one item at a time with
    // duplicate checks stays linear.
    m_rowIndex.appended(item, m_items.size());
    RowNotices::endInsert(m_model);
}

void RowStore::removeAt(int row, bool unindexItem)
{
    XOLATreeItem* item = m_items.at(row);
    RowNotices::beginRemove(m_model, row, row);
    m_items.removeAt(row);
    if (unindexItem)
        unindex(item);
    // Single removals keep the index valid too: views drop rows one by one as
    // their items stop passing, and each change would otherwise rebuild it.
    m_rowIndex.removed(row, item, m_items.size());
    RowNotices::endRemove(m_model);
}

void RowStore::removeRange(int first, int last, const std::function<void()>& whileAnnounced)
{
    RowNotices::beginRemove(m_model, first, last);
    if (whileAnnounced)
        whileAnnounced();
    m_items.erase(m_items.begin() + first, m_items.begin() + last + 1);
    rowsRearranged();
    RowNotices::endRemove(m_model);
}

void RowStore::removeAll(const std::function<void()>& whileAnnounced)
{
    RowNotices::beginRemove(m_model, 0, m_items.size() - 1);
    if (whileAnnounced)
        whileAnnounced();
    m_items.clear();
    m_itemMap.clear();
    rowsRearranged();
    RowNotices::endRemove(m_model);
}

void RowStore::moveAsReset(int from, int to)
{
    // Views see a reset, not a row move.
    RowNotices::beginReset(m_model);
    m_items.move(from, to);
    rowsRearranged();
    RowNotices::endReset(m_model);
}

void RowStore::reorder(const QList<XOLATreeItem*>& order)
{
    // Selections and persistent indexes stay on their items. Each old row is
    // matched with the next unused new row of the same item, so an item listed
    // twice keeps both of its indexes.
    const QList<XOLATreeItem*> before = m_items;
    m_items = order;
    rowsRearranged();
    if (!RowNotices::hasPersistentRows(m_model))
        return;
    QHash<const XOLATreeItem*, QVector<int>> newRows;
    newRows.reserve(order.size());
    for (int row = order.size() - 1; row >= 0; --row)
        newRows[order.at(row)].append(row);
    QVector<int> newRowOf(before.size());
    for (int row = 0; row < before.size(); ++row) {
        QVector<int>& rows = newRows[before.at(row)];
        newRowOf[row] = rows.isEmpty() ? row : rows.takeLast();
    }
    RowNotices::movePersistentRows(m_model, newRowOf);
}

void RowStore::rowsChanged(int first, int last)
{
    emit m_model.dataChanged(m_model.index(first, 0), m_model.index(last, 0), QVector<int>());
}

// ---- deliberate departures ---------------------------------------------------------------------

void RowStore::prependAnnouncedAtOldEnd(XOLATreeItem* item)
{
    const int n = m_items.size();
    // Announced at the old end while the item goes to the front: existing hosts
    // rely on the announced row being the old end.
    RowNotices::beginInsert(m_model, n, n);
    m_items.prepend(item);
    indexId(item);
    rowsRearranged();
    RowNotices::endInsert(m_model);
    // The notice moved no persistent index, but every old row moved down by
    // one: selections and persistent indexes are put back on their items.
    if (RowNotices::hasPersistentRows(m_model)) {
        QVector<int> newRowOf(n + 1);
        for (int row = 0; row < n; ++row)
            newRowOf[row] = row + 1;
        newRowOf[n] = 0;
        RowNotices::movePersistentRows(m_model, newRowOf);
    }
}

void RowStore::appendQuietly(XOLATreeItem* item)
{
    m_items.append(item);
    indexId(item);
    m_rowIndex.appended(item, m_items.size());
}

void RowStore::prependQuietly(const QList<XOLATreeItem*>& items)
{
    m_items = items + m_items;
    rowsRearranged();
}

void RowStore::replaceQuietly(const QList<XOLATreeItem*>& items)
{
    m_items = items;
    rowsRearranged();
}

void RowStore::removeFirstQuietly(XOLATreeItem* item)
{
    m_items.removeOne(item);
    rowsRearranged();
}

void RowStore::clearQuietly()
{
    m_items.clear();
    m_itemMap.clear();
    rowsRearranged();
}

void RowStore::announceInsertedAfterChange(int first, int last)
{
    RowNotices::announceInsertedAfterChange(m_model, first, last);
}

void RowStore::announceRemovedAfterChange(int first, int last)
{
    RowNotices::announceRemovedAfterChange(m_model, first, last);
}

void RowStore::unpairedResetEnd()
{
    RowNotices::unpairedResetEnd(m_model);
}

void RowStore::layoutChangedWithoutAboutToBe()
{
    RowNotices::layoutChangedWithoutAboutToBe(m_model);
}

bool RowStore::removeEveryRowOf(const XOLATreeItem* item)
{
    auto* listed = const_cast<XOLATreeItem*>(item);
    bool removed = false;
    for (int row = m_items.indexOf(listed); row >= 0; row = m_items.indexOf(listed)) {
        removeAt(row, false);
        removed = true;
    }
    return removed;
}
