// Lists: appending, prepending and replacing many items at once, and emptying
// the containers on the way to deleting their items.
//
// The bulk loaders announce their rows once the rows are in place, as
// existing hosts expect from a bulk load.

#include "XOLATreeModel.h"

#include "XOLATreeModelPrivate.h"

#include <QtCore/QSet>

bool XOLATreeModel::AppendItemsList(QList<XOLATreeItem*> itemList)
{
    if (itemList.isEmpty())
        return true;
    if (d_ptr->isForeignThread()) {
        d_ptr->adoptForeignItems(itemList);
        return d_ptr->onModelThread([&] { return AppendItemsList(itemList); });
    }
    RowStore& rows = d_ptr->rows();
    const int first = rows.count();
    int added = 0;
    rows.reserve(first + itemList.size());
    for (XOLATreeItem* item : qAsConst(itemList)) {
        if (!item || !d_ptr->admitForLoading(item))
            continue;
        rows.appendQuietly(item);
        ++added;
    }
    if (added > 0) {
        rows.announceInsertedAfterChange(first, first + added - 1);
        KeepSortingCheck();
        emit rowCountChanged();
    } else {
        KeepSortingCheck();
    }
    return true;
}

bool XOLATreeModel::PrependItemsList(QList<XOLATreeItem*> itemList)
{
    if (d_ptr->isForeignThread())
        return d_ptr->prependFromForeignThread();
    RowStore& rows = d_ptr->rows();
    QList<XOLATreeItem*> added;
    // Visited from the end so the new rows keep the list's order at the head; of
    // two equal ids the later one is listed.
    for (int i = itemList.size() - 1; i >= 0; --i) {
        XOLATreeItem* item = itemList.at(i);
        if (!item || !d_ptr->admitForLoading(item))
            continue;
        added.prepend(item);
        rows.indexId(item);
    }
    if (!added.isEmpty()) {
        rows.prependQuietly(added);
        rows.announceInsertedAfterChange(0, added.size() - 1);
        KeepSortingCheck();
        emit rowCountChanged();
    } else {
        KeepSortingCheck();
    }
    return true;
}

bool XOLATreeModel::ReplaceItemsList(QList<XOLATreeItem*> itemList)
{
    if (d_ptr->isForeignThread()) {
        d_ptr->adoptForeignItems(itemList);
        return d_ptr->onModelThread([&] { return ReplaceItemsList(itemList); });
    }
    RemoveAll();
    return AppendItemsList(itemList);
}

bool XOLATreeModel::ReplaceItemsListEx(QList<XOLATreeItem*> itemList)
{
    if (d_ptr->isForeignThread()) {
        d_ptr->adoptForeignItems(itemList);
        return d_ptr->onModelThread([&] { return ReplaceItemsListEx(itemList); });
    }
    // Null elements are dropped: a row without an item has nothing to show.
    itemList.removeAll(nullptr);
    RowStore& rows = d_ptr->rows();
    const int oldCount = rows.count();
    if (d_ptr->keepsRemovedItems()) {
        rows.clearQuietly();
        d_ptr->releaseAllItems();
    } else {
        // Items that stay listed are spared, or the new rows would dangle.
        d_ptr->clearContainers(itemList);
    }
    rows.replaceQuietly(itemList);
    for (XOLATreeItem* item : qAsConst(itemList)) {
        rows.indexId(item);
        d_ptr->holdItem(item);
    }
    const int newCount = rows.count();
    // Lighter than the other loaders on purpose: items are not connected and no
    // keep-sorting runs; the notices follow the change.
    if (newCount != oldCount) {
        if (newCount < oldCount)
            rows.announceRemovedAfterChange(newCount, oldCount - 1);
        else
            rows.announceInsertedAfterChange(oldCount, newCount - 1);
        emit rowCountChanged();
    }
    if (newCount != 0)
        rows.rowsChanged(0, newCount - 1);
    return true;
}

void XOLATreeModel::ClearAllSourceContainer()
{
    d_ptr->clearContainers({});
}

void XOLATreeModelPrivate::clearContainers(const QList<XOLATreeItem*>& spare)
{
    if (!hasRows())
        return;
    RowStore& store = rows();
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
    const QList<XOLATreeItem*> items = store.items();
    for (XOLATreeItem* item : items) {
        if (!item || deleted.contains(item))
            continue;
        const bool spared = keep.contains(item);
        QObject* childModel = item->childModel();
        if (!spared && childModel && childModel != q_ptr && !keep.contains(childModel)
            && !deleted.contains(childModel)) {
            if (auto* child = qobject_cast<IXOLATreeModel*>(childModel))
                child->ClearAllSourceContainer();
            deleted.insert(childModel);
            delete childModel;
        }
        store.removeFirstQuietly(item);
        if (store.byId(item->id()) == item)
            store.unindexId(item->id());
        if (!spared) {
            deleted.insert(item);
            delete item;
        }
    }
    store.clearQuietly();
}
