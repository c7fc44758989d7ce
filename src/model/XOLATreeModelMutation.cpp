// Insertion, list loading, removal, moves and change notification.
//
// Views and QML delegates depend on the exact order of the notices sent here;
// each operation sends them from one place.

#include "XOLATreeModel.h"

#include "ItemWatch.h"
#include "RowIndex.h"
#include "XOLATreeModelWorker.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QSet>
#include <QtCore/QThread>

namespace {
// The row a list loader is merging into, per thread: bulk loads announce no
// data change for merged rows, only single-item merges do.
thread_local const QObject* t_quietModel = nullptr;
thread_local const QObject* t_quietItem = nullptr;

class QuietMerge
{
public:
    QuietMerge(const QObject* model, const QObject* item)
        : m_model(t_quietModel)
        , m_item(t_quietItem)
    {
        t_quietModel = model;
        t_quietItem = item;
    }
    ~QuietMerge()
    {
        t_quietModel = m_model;
        t_quietItem = m_item;
    }
    QuietMerge(const QuietMerge&) = delete;
    QuietMerge& operator=(const QuietMerge&) = delete;

private:
    const QObject* m_model;
    const QObject* m_item;
};
} // namespace

// ---- threads ---------------------------------------------------------------

bool XOLATreeModel::isForeignThread() const
{
    // A model made by QML records no owner thread and never routes.
    return m_ownerThreadId && m_worker && QThread::currentThreadId() != m_ownerThreadId;
}

void XOLATreeModel::adoptForeignItem(XOLATreeItem* item) const
{
    // An item made on the calling thread would otherwise keep that thread's
    // affinity: its deleteLater and its queued signals would go to a thread that
    // may never run them. Only the owning thread may move an object.
    if (item && !item->parent() && item->thread() == QThread::currentThread() && item->thread() != thread())
        item->moveToThread(thread());
}

bool XOLATreeModel::forwardToWorker(const char* method, QGenericReturnArgument result, QGenericArgument arg0,
                                    QGenericArgument arg1)
{
    // A name the worker does not have fails as a failed invocation would, but
    // without Qt's warning.
    const QMetaObject* mo = m_worker->metaObject();
    bool known = false;
    for (int i = mo->methodOffset(); i < mo->methodCount() && !known; ++i)
        known = mo->method(i).name() == method;
    if (!known)
        return false;
    return QMetaObject::invokeMethod(m_worker.data(), method, Qt::BlockingQueuedConnection, result, arg0, arg1);
}

// ---- row index ---------------------------------------------------------------

void XOLATreeModel::itemsReordered() const
{
    if (m_rowIndex)
        m_rowIndex->invalidate();
}

int XOLATreeModel::rowOfItem(const QObject* object, bool confirmMiss) const
{
    if (!object)
        return -1;
    if (!m_rowIndex)
        m_rowIndex.reset(new RowIndex);
    if (m_rowIndex->isValidFor(m_items.size())) {
        const int row = m_rowIndex->find(object);
        // A miss is confirmed by a rebuild when asked: a host may have put the
        // object in place through GetModelItemList() since the index was built.
        if (row < 0 && !confirmMiss)
            return -1;
        if (row >= 0 && row < m_items.size() && m_items.at(row) == object)
            return row;
        // The rows were rearranged in place (through GetModelItemList()): rebuild.
    }
    m_rowIndex->rebuild(m_items);
    return m_rowIndex->find(object);
}

void XOLATreeModel::itemAppended(const XOLATreeItem* item) const
{
    // Appends keep a valid index valid, so loading one item at a time with
    // duplicate checks stays linear.
    if (m_rowIndex)
        m_rowIndex->appended(item, m_items.size());
}

void XOLATreeModel::itemRemovedAt(int row, const XOLATreeItem* item) const
{
    // Single removals keep the index valid too: views drop rows one by one as
    // their items stop passing, and each change would otherwise rebuild it.
    if (m_rowIndex)
        m_rowIndex->removed(row, item, m_items.size());
}

int XOLATreeModel::listedRow(const XOLATreeItem* item) const
{
    const int row = rowOfItem(item, false);
    if (row >= 0 || !item)
        return row;
    // A miss is confirmed by a scan, cheaper than rebuilding the index for an
    // item that is usually not there.
    return m_items.indexOf(const_cast<XOLATreeItem*>(item));
}

// ---- disposal -----------------------------------------------------------------

void XOLATreeModel::disposeChildModel(QObject* childModel, bool disconnectChild)
{
    if (!childModel)
        return;
    if (auto* child = qobject_cast<IXOLATreeModel*>(childModel))
        child->RemoveAll();
    if (disconnectChild)
        QObject::disconnect(childModel, nullptr, nullptr, nullptr);
    childModel->deleteLater();
}

void XOLATreeModel::disposeItem(XOLATreeItem* item)
{
    if (!item)
        return;
    QObject::disconnect(item, nullptr, nullptr, nullptr);
    item->deleteLater();
}

void XOLATreeModel::connectItem(XOLATreeItem* item)
{
    // A functor that knows its item: EmitValueChange() would have to ask
    // sender(), which walks every connection of the model in Qt 5 and makes a
    // change of every row quadratic. The effect is the same.
    QObject::connect(item, &XOLATreeItem::valueChanged, this, [this, item]() { valueChangedFrom(item); },
                     Qt::AutoConnection);
    holdItem(item);
}

void XOLATreeModel::disconnectItem(XOLATreeItem* item)
{
    if (item)
        QObject::disconnect(item, &XOLATreeItem::valueChanged, this, nullptr);
}

// ---- items this model lists without owning them ----------------------------------

void XOLATreeModel::holdItem(XOLATreeItem* item)
{
    if (!item || !keepsRemovedItems())
        return;
    if (!m_watch) {
        m_watch = ItemWatch::local();
        if (!m_watch)
            return;
    }
    // One lookup: the set grows only for an item not held yet.
    const int held = m_heldItems.size();
    m_heldItems.insert(item);
    if (m_heldItems.size() != held)
        m_watch->hold(item, this);
}

void XOLATreeModel::releaseUnlisted(XOLATreeItem* item)
{
    // The row index answers "not listed" without a scan; it follows every
    // removal that leads here.
    if (!m_watch || !m_heldItems.contains(item) || rowOfItem(item, false) >= 0)
        return;
    m_heldItems.remove(item);
    m_watch->release(item, this);
}

void XOLATreeModel::releaseAllItems()
{
    if (m_watch) {
        for (const XOLATreeItem* item : qAsConst(m_heldItems))
            m_watch->release(item, this);
    }
    m_heldItems.clear();
}

void XOLATreeModel::watchDetached()
{
    m_watch = nullptr;
    m_heldItems.clear();
}

void XOLATreeModel::forgetDeletedItem(const XOLATreeItem* item, const QString& id)
{
    // Called from the item's destructor: only its address is used. Whoever owns
    // the item deleted it without this model hearing of it by a row or an id it
    // could resolve (an in-place swap, equal or changed ids, rows it was never
    // told about); its rows go with the notices a removal by id sends.
    m_heldItems.remove(item);
    auto* listed = const_cast<XOLATreeItem*>(item);
    bool removed = false;
    for (int row = m_items.indexOf(listed); row >= 0; row = m_items.indexOf(listed)) {
        beginRemoveRows(QModelIndex(), row, row);
        m_items.removeAt(row);
        itemsReordered();
        endRemoveRows();
        removed = true;
    }
    for (auto it = m_itemMap.begin(); it != m_itemMap.end();) {
        if (it.value() == item)
            it = m_itemMap.erase(it);
        else
            ++it;
    }
    itemsReordered();
    if (removed) {
        emit itemsRemoved(QStringList{id});
        emit rowCountChanged();
    }
}

void XOLATreeModel::unindex(XOLATreeItem* item)
{
    const QString id = item->id();
    const bool indexedUnderId = m_itemMap.value(id) == item;
    // Every entry under the item's id goes, as documented, also one naming
    // another item with the same id.
    m_itemMap.remove(id);
    if (indexedUnderId)
        return;
    // Indexed under an id it no longer has: that entry must not outlive it.
    for (auto it = m_itemMap.begin(); it != m_itemMap.end();) {
        if (it.value() == item)
            it = m_itemMap.erase(it);
        else
            ++it;
    }
}

// ---- single items ---------------------------------------------------------------

void XOLATreeModel::CopyItem(XOLATreeItem* source, XOLATreeItem* destination)
{
    if (!source || !destination)
        return;
    const QList<int> roles = roleNames().keys();
    for (int role : roles)
        destination->setData(role, source->getData(role));
}

void XOLATreeModel::HandleDuplicatedItem(XOLATreeItem* source, XOLATreeItem* destination)
{
    if (!source || !destination)
        return;
    if (m_copyItemFunc)
        m_copyItemFunc(source, destination);
    else
        CopyItem(source, destination);
}

void XOLATreeModel::mergeDuplicate(XOLATreeItem* incoming, XOLATreeItem* existing)
{
    HandleDuplicatedItem(incoming, existing);
}

void XOLATreeModel::KeepSortingCheck()
{
    if (m_sortFlag != None)
        SortByRules(m_sortRules, m_sortFlag);
}

bool XOLATreeModel::InsertItem(int row, XOLATreeItem* item)
{
    if (isForeignThread()) {
        // The row is dropped on purpose: from another thread an insert is an append.
        adoptForeignItem(item);
        bool result = false;
        forwardToWorker("AppendItem", Q_RETURN_ARG(bool, result), Q_ARG(QVariant, XOLATreeModelWorker::toVariant(item)));
        return result;
    }
    if (!item)
        return false;
    if (mergesDuplicates() && m_itemMap.contains(item->id()))
        return false; // refused; the caller keeps the item
    // Rows outside 0..count are refused (the caller keeps the item): there is
    // no row to announce for them.
    if (row < 0 || row > m_items.size())
        return false;
    connectItem(item);
    beginInsertRows(QModelIndex(), row, row);
    m_items.insert(row, item);
    m_itemMap.insert(item->id(), item);
    itemsReordered();
    endInsertRows();
    KeepSortingCheck();
    emit rowCountChanged();
    return true;
}

bool XOLATreeModel::AppendItem(XOLATreeItem* item)
{
    if (!item)
        return false;
    if (isForeignThread()) {
        adoptForeignItem(item);
        bool result = false;
        forwardToWorker("AppendItem", Q_RETURN_ARG(bool, result), Q_ARG(QVariant, XOLATreeModelWorker::toVariant(item)));
        return result;
    }
    const QString id = item->id();
    if (mergesDuplicates() && m_itemMap.contains(id)) {
        XOLATreeItem* existing = m_itemMap.value(id);
        // An object that is already listed (under this id or, after a change of
        // its id, under another) is never merged away nor deleted: that would
        // leave a dangling row.
        if (existing == item || rowOfItem(item, false) >= 0)
            return false;
        if (existing)
            mergeDuplicate(item, existing);
        const int row = FindItemRow(id);
        emit dataChanged(index(row, 0), index(row, 0));
        delete item;
        KeepSortingCheck();
        // Emitted although the count is unchanged: hosts re-read the count on
        // every append.
        emit rowCountChanged();
        return true;
    }
    connectItem(item);
    const int n = m_items.size();
    beginInsertRows(QModelIndex(), n, n);
    m_items.append(item);
    m_itemMap.insert(id, item);
    itemAppended(item);
    endInsertRows();
    KeepSortingCheck();
    emit rowCountChanged();
    return true;
}

bool XOLATreeModel::PrependItem(XOLATreeItem* item)
{
    if (!item)
        return false;
    if (isForeignThread()) {
        // The worker has no prepend: from another thread a prepend fails.
        bool result = false;
        forwardToWorker("PrependItem", Q_RETURN_ARG(bool, result), Q_ARG(QVariant, XOLATreeModelWorker::toVariant(item)));
        return result;
    }
    const QString id = item->id();
    if (mergesDuplicates() && m_itemMap.contains(id)) {
        XOLATreeItem* existing = m_itemMap.value(id);
        if (existing == item || rowOfItem(item, false) >= 0)
            return false; // already listed: neither merged away nor deleted
        if (existing)
            mergeDuplicate(item, existing);
        const int row = FindItemRow(id);
        emit dataChanged(index(row, 0), index(row, 0));
        delete item;
        KeepSortingCheck();
        return true;
    }
    connectItem(item);
    const int n = m_items.size();
    // Announced at the old end while the item goes to the front: existing hosts
    // rely on the announced row being the old end.
    beginInsertRows(QModelIndex(), n, n);
    m_items.prepend(item);
    m_itemMap.insert(id, item);
    itemsReordered();
    endInsertRows();
    KeepSortingCheck();
    emit rowCountChanged();
    return true;
}

// ---- lists ----------------------------------------------------------------------

bool XOLATreeModel::AppendItemsList(QList<XOLATreeItem*> itemList)
{
    if (itemList.isEmpty())
        return true;
    if (isForeignThread()) {
        for (XOLATreeItem* item : qAsConst(itemList))
            adoptForeignItem(item);
        bool result = false;
        forwardToWorker("AppendItemsList", Q_RETURN_ARG(bool, result),
                        Q_ARG(QVariantList, XOLATreeModelWorker::toVariantList(itemList)));
        return result;
    }
    const int first = m_items.size();
    int added = 0;
    m_items.reserve(first + itemList.size());
    for (XOLATreeItem* item : qAsConst(itemList)) {
        if (!item)
            continue;
        const QString id = item->id();
        if (mergesDuplicates() && m_itemMap.contains(id)) {
            // No dataChanged for merged rows here, unlike AppendItem: neither a
            // notice of its own nor one echoed from the merged item's change.
            XOLATreeItem* existing = m_itemMap.value(id);
            if (existing == item || rowOfItem(item, false) >= 0)
                continue; // already listed: neither merged away nor deleted
            if (existing) {
                const QuietMerge quiet(this, existing);
                mergeDuplicate(item, existing);
            }
            delete item;
            continue;
        }
        connectItem(item);
        m_items.append(item);
        m_itemMap.insert(id, item);
        itemAppended(item);
        ++added;
    }
    if (added > 0) {
        // The notice follows the change: the rows are already listed when views
        // hear of them, as existing hosts expect from a bulk load.
        beginInsertRows(QModelIndex(), first, first + added - 1);
        endInsertRows();
        KeepSortingCheck();
        emit rowCountChanged();
    } else {
        KeepSortingCheck();
    }
    return true;
}

bool XOLATreeModel::PrependItemsList(QList<XOLATreeItem*> itemList)
{
    if (isForeignThread()) {
        bool result = false;
        forwardToWorker("PrependItemsList", Q_RETURN_ARG(bool, result),
                        Q_ARG(QVariantList, XOLATreeModelWorker::toVariantList(itemList)));
        return result;
    }
    QList<XOLATreeItem*> added;
    // Visited from the end so the new rows keep the list's order at the head; of
    // two equal ids the later one is listed.
    for (int i = itemList.size() - 1; i >= 0; --i) {
        XOLATreeItem* item = itemList.at(i);
        if (!item)
            continue;
        const QString id = item->id();
        if (mergesDuplicates() && m_itemMap.contains(id)) {
            XOLATreeItem* existing = m_itemMap.value(id);
            if (existing == item || rowOfItem(item, false) >= 0)
                continue; // already listed: neither merged away nor deleted
            if (existing) {
                const QuietMerge quiet(this, existing);
                mergeDuplicate(item, existing);
            }
            delete item;
            continue;
        }
        connectItem(item);
        added.prepend(item);
        m_itemMap.insert(id, item);
    }
    if (!added.isEmpty()) {
        m_items = added + m_items;
        itemsReordered();
        beginInsertRows(QModelIndex(), 0, added.size() - 1);
        endInsertRows();
        KeepSortingCheck();
        emit rowCountChanged();
    } else {
        KeepSortingCheck();
    }
    return true;
}

bool XOLATreeModel::ReplaceItemsList(QList<XOLATreeItem*> itemList)
{
    if (isForeignThread()) {
        for (XOLATreeItem* item : qAsConst(itemList))
            adoptForeignItem(item);
        bool result = false;
        forwardToWorker("ReplaceItemsList", Q_RETURN_ARG(bool, result),
                        Q_ARG(QVariantList, XOLATreeModelWorker::toVariantList(itemList)));
        return result;
    }
    RemoveAll();
    return AppendItemsList(itemList);
}

bool XOLATreeModel::ReplaceItemsListEx(QList<XOLATreeItem*> itemList)
{
    if (isForeignThread()) {
        for (XOLATreeItem* item : qAsConst(itemList))
            adoptForeignItem(item);
        bool result = false;
        forwardToWorker("ReplaceItemsListEx", Q_RETURN_ARG(bool, result),
                        Q_ARG(QVariantList, XOLATreeModelWorker::toVariantList(itemList)));
        return result;
    }
    // Null elements are dropped: a row without an item has nothing to show.
    itemList.removeAll(nullptr);
    const int oldCount = m_items.size();
    if (keepsRemovedItems()) {
        m_items.clear();
        m_itemMap.clear();
        releaseAllItems();
    } else {
        // Items that stay listed are spared, or the new rows would dangle.
        clearContainers(itemList);
    }
    m_items = itemList;
    for (XOLATreeItem* item : qAsConst(itemList)) {
        m_itemMap.insert(item->id(), item);
        holdItem(item);
    }
    itemsReordered();
    const int newCount = m_items.size();
    // Lighter than the other loaders on purpose: items are not connected and no
    // keep-sorting runs; the notices follow the change.
    if (newCount != oldCount) {
        if (newCount < oldCount) {
            beginRemoveRows(QModelIndex(), newCount, oldCount - 1);
            endRemoveRows();
        } else {
            beginInsertRows(QModelIndex(), oldCount, newCount - 1);
            endInsertRows();
        }
        emit rowCountChanged();
    }
    if (newCount != 0)
        emit dataChanged(index(0, 0), index(m_items.size() - 1, 0));
    return true;
}

void XOLATreeModel::ClearAllSourceContainer()
{
    clearContainers({});
}

void XOLATreeModel::clearContainers(const QList<XOLATreeItem*>& spare)
{
    if (m_items.isEmpty())
        return;
    // Deleted here and now, whatever option 2 says: nothing to watch any more.
    releaseAllItems();
    QSet<QObject*> keep;
    for (XOLATreeItem* item : spare) {
        keep.insert(item);
        if (item->childModel())
            keep.insert(item->childModel());
    }
    // Each object is deleted once, also when it is listed twice or shared.
    QSet<QObject*> deleted;
    const QList<XOLATreeItem*> items = m_items;
    for (XOLATreeItem* item : items) {
        if (!item || deleted.contains(item))
            continue;
        const bool spared = keep.contains(item);
        QObject* childModel = item->childModel();
        if (!spared && childModel && childModel != this && !keep.contains(childModel) && !deleted.contains(childModel)) {
            if (auto* child = qobject_cast<IXOLATreeModel*>(childModel))
                child->ClearAllSourceContainer();
            deleted.insert(childModel);
            delete childModel;
        }
        m_items.removeOne(item);
        if (m_itemMap.value(item->id()) == item)
            m_itemMap.remove(item->id());
        if (!spared) {
            deleted.insert(item);
            delete item;
        }
    }
    m_items.clear();
    m_itemMap.clear();
    itemsReordered();
}

// ---- removal ---------------------------------------------------------------------

void XOLATreeModel::RemoveAll()
{
    if (isForeignThread()) {
        forwardToWorker("RemoveAll", QGenericReturnArgument());
        return;
    }
    // A child model that leads back to this model must not recurse forever.
    if (m_items.isEmpty() || m_removingAll)
        return;
    m_removingAll = true;
    beginRemoveRows(QModelIndex(), 0, m_items.size() - 1);
    if (!keepsRemovedItems()) {
        for (XOLATreeItem* item : qAsConst(m_items)) {
            if (!item)
                continue;
            // Items are not disconnected here, unlike the other removals.
            QObject* childModel = item->childModel();
            if (childModel && childModel != this)
                disposeChildModel(childModel, false);
            item->deleteLater();
        }
    }
    m_items.clear();
    m_itemMap.clear();
    releaseAllItems();
    itemsReordered();
    endRemoveRows();
    m_removingAll = false;
    emit allItemRemoved();
    emit rowCountChanged();
}

void XOLATreeModel::RemoveOne(XOLATreeItem* item)
{
    // An item this model does not list is left alone: there is no row to announce.
    if (listedRow(item) < 0)
        return;
    // The child model goes first, so views of it see its rows go while the
    // item is still listed here.
    if (!keepsRemovedItems() && item->childModel() && item->childModel() != this)
        disposeChildModel(item->childModel(), true);
    const int row = listedRow(item);
    if (row < 0)
        return;
    beginRemoveRows(QModelIndex(), row, row);
    m_items.removeAt(row);
    unindex(item);
    itemRemovedAt(row, item);
    endRemoveRows();
    releaseUnlisted(item);
}

bool XOLATreeModel::RemoveOne(const QString& id)
{
    if (isForeignThread()) {
        bool result = false;
        forwardToWorker("RemoveOne", Q_RETURN_ARG(bool, result), Q_ARG(QString, id));
        return result;
    }
    auto* item = qobject_cast<XOLATreeItem*>(FindItem(id, false));
    // An id whose item is no longer listed (a stale entry) answers as unknown.
    if (!item || listedRow(item) < 0)
        return false;
    RemoveOne(item);
    emit itemsRemoved(QStringList{id});
    emit rowCountChanged();
    if (!keepsRemovedItems())
        disposeItem(item);
    return true;
}

bool XOLATreeModel::Remove(const QStringList& idList)
{
    QStringList removed;
    for (const QString& id : idList) {
        auto* item = qobject_cast<XOLATreeItem*>(FindItem(id, false));
        if (!item || listedRow(item) < 0)
            continue;
        RemoveOne(item);
        removed << id;
    }
    if (!removed.isEmpty())
        emit itemsRemoved(removed);
    emit rowCountChanged();
    // The removed items are handed back to the caller, whatever the options say:
    // existing hosts move them to another model.
    return true;
}

bool XOLATreeModel::Remove(int rowH, int rowT)
{
    if (isForeignThread()) {
        bool result = false;
        forwardToWorker("Remove", Q_RETURN_ARG(bool, result), Q_ARG(int, rowH), Q_ARG(int, rowT));
        return result;
    }
    // A range that is not wholly inside the rows is refused: nothing is announced.
    if (rowH < 0 || rowT < rowH || rowT >= m_items.size())
        return false;
    beginRemoveRows(QModelIndex(), rowH, rowT);
    QList<XOLATreeItem*> removedItems;
    QStringList removedIds;
    if (!keepsRemovedItems()) {
        for (int row = rowH; row <= rowT; ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(FindItem(row));
            if (!item)
                continue;
            removedItems << item;
            removedIds << item->id();
            if (item->childModel() && item->childModel() != this)
                disposeChildModel(item->childModel(), true);
        }
    }
    m_items.erase(m_items.begin() + rowH, m_items.begin() + rowT + 1);
    itemsReordered();
    endRemoveRows();
    if (!removedIds.isEmpty())
        emit itemsRemoved(removedIds);
    emit rowCountChanged();
    // With removed items kept alive nothing was collected, so their ids stay in
    // the index; kept as is for existing hosts.
    for (XOLATreeItem* item : qAsConst(removedItems)) {
        unindex(item);
        if (!keepsRemovedItems())
            disposeItem(item);
    }
    return true;
}

void XOLATreeModel::MoveRow(int sourceRowIndex, int destinationRowIndex)
{
    if (isForeignThread()) {
        forwardToWorker("MoveRow", QGenericReturnArgument(), Q_ARG(int, sourceRowIndex), Q_ARG(int, destinationRowIndex));
        return;
    }
    // Rows outside the list are refused: there is nothing to move.
    const int n = m_items.size();
    if (sourceRowIndex < 0 || sourceRowIndex >= n || destinationRowIndex < 0 || destinationRowIndex >= n)
        return;
    // Views see a reset, not a row move.
    beginResetModel();
    m_items.move(sourceRowIndex, destinationRowIndex);
    itemsReordered();
    endResetModel();
}

void XOLATreeModel::EmitValueChange()
{
    valueChangedFrom(sender());
}

void XOLATreeModel::valueChangedFrom(const QObject* object)
{
    if (this == t_quietModel && object == t_quietItem)
        return;
    const int row = rowOfItem(object);
    const QModelIndex idx = index(row, 0);
    if (idx.isValid())
        emit dataChanged(idx, idx);
}
