// Removal and moves.
//
// Views and QML delegates depend on the exact order of the notices sent here.

#include "XOLATreeModel.h"

#include "XOLATreeModelPrivate.h"

void XOLATreeModel::RemoveAll()
{
    if (d_ptr->isForeignThread()) {
        d_ptr->onModelThread([&] { RemoveAll(); });
        return;
    }
    // A child model that leads back to this model must not recurse forever.
    if (!d_ptr->hasRows() || d_ptr->m_removingAll)
        return;
    d_ptr->m_removingAll = true;
    RowStore& rows = d_ptr->rows();
    rows.removeAll([this, &rows] {
        if (!d_ptr->keepsRemovedItems()) {
            for (XOLATreeItem* item : rows.items()) {
                if (!item)
                    continue;
                // Items are not disconnected here, unlike the other removals.
                QObject* childModel = item->childModel();
                if (childModel && childModel != this)
                    XOLATreeModelPrivate::disposeChildModel(childModel, false);
                item->deleteLater();
            }
        }
        d_ptr->releaseAllItems();
    });
    d_ptr->m_removingAll = false;
    emit allItemRemoved();
    emit rowCountChanged();
}

void XOLATreeModel::RemoveOne(XOLATreeItem* item)
{
    RowStore& rows = d_ptr->rows();
    // An item this model does not list is left alone: there is no row to announce.
    if (rows.listedRow(item) < 0)
        return;
    // The child model goes first, so views of it see its rows go while the
    // item is still listed here.
    if (!d_ptr->keepsRemovedItems() && item->childModel() && item->childModel() != this)
        XOLATreeModelPrivate::disposeChildModel(item->childModel(), true);
    const int row = rows.listedRow(item);
    if (row < 0)
        return;
    rows.removeAt(row, true);
    d_ptr->releaseUnlisted(item);
}

bool XOLATreeModel::RemoveOne(const QString& id)
{
    if (d_ptr->isForeignThread())
        return d_ptr->onModelThread([&] { return RemoveOne(id); });
    auto* item = qobject_cast<XOLATreeItem*>(FindItem(id, false));
    // An id whose item is no longer listed (a stale entry) answers as unknown.
    if (!item || d_ptr->rows().listedRow(item) < 0)
        return false;
    RemoveOne(item);
    emit itemsRemoved(QStringList{id});
    emit rowCountChanged();
    if (!d_ptr->keepsRemovedItems())
        XOLATreeModelPrivate::disposeItem(item);
    return true;
}

bool XOLATreeModel::Remove(const QStringList& idList)
{
    QStringList removed;
    for (const QString& id : idList) {
        auto* item = qobject_cast<XOLATreeItem*>(FindItem(id, false));
        if (!item || d_ptr->rows().listedRow(item) < 0)
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
    if (d_ptr->isForeignThread())
        return d_ptr->onModelThread([&] { return Remove(rowH, rowT); });
    RowStore& rows = d_ptr->rows();
    // A range that is not wholly inside the rows is refused: nothing is announced.
    if (rowH < 0 || rowT < rowH || rowT >= rows.count())
        return false;
    QList<XOLATreeItem*> removedItems;
    QStringList removedIds;
    rows.removeRange(rowH, rowT, [&] {
        if (d_ptr->keepsRemovedItems())
            return;
        for (int row = rowH; row <= rowT; ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(FindItem(row));
            if (!item)
                continue;
            removedItems << item;
            removedIds << item->id();
            if (item->childModel() && item->childModel() != this)
                XOLATreeModelPrivate::disposeChildModel(item->childModel(), true);
        }
    });
    if (!removedIds.isEmpty())
        emit itemsRemoved(removedIds);
    emit rowCountChanged();
    // With removed items kept alive nothing was collected, so their ids stay in
    // the index; kept as is for existing hosts.
    for (XOLATreeItem* item : qAsConst(removedItems)) {
        rows.unindex(item);
        if (!d_ptr->keepsRemovedItems())
            XOLATreeModelPrivate::disposeItem(item);
    }
    return true;
}

void XOLATreeModel::MoveRow(int sourceRowIndex, int destinationRowIndex)
{
    if (d_ptr->isForeignThread()) {
        d_ptr->onModelThread([&] { MoveRow(sourceRowIndex, destinationRowIndex); });
        return;
    }
    RowStore& rows = d_ptr->rows();
    // Rows outside the list are refused: there is nothing to move.
    const int n = rows.count();
    if (sourceRowIndex < 0 || sourceRowIndex >= n || destinationRowIndex < 0 || destinationRowIndex >= n)
        return;
    rows.moveAsReset(sourceRowIndex, destinationRowIndex);
}
