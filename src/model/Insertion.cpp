// Single items: admission, insertion, duplicate merging, keep-sorting after an
// insertion, and the change notification of listed items.
//
// Views and QML delegates depend on the exact order of the notices sent here.

#include "XOLATreeModel.h"

#include "XOLATreeModelPrivate.h"

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

// ---- admission and merging -------------------------------------------------------------

XOLATreeModelPrivate::Admission XOLATreeModelPrivate::admit(XOLATreeItem* item, ListedId listedId,
                                                            XOLATreeItem** existing) const
{
    const QString id = item->id();
    if (!mergesDuplicates() || !rows().hasId(id))
        return Admission::Insert;
    if (listedId == ListedId::Refuse)
        return Admission::Refuse;
    *existing = rows().byId(id);
    // An object that is already listed (under this id or, after a change of
    // its id, under another) is never merged away nor deleted: that would
    // leave a dangling row.
    if (*existing == item || rows().rowOf(item, false) >= 0)
        return Admission::Refuse;
    return Admission::MergeInto;
}

bool XOLATreeModelPrivate::addSingle(XOLATreeItem* item, Placement placement)
{
    XOLATreeItem* existing = nullptr;
    switch (admit(item, ListedId::Merge, &existing)) {
    case Admission::Refuse:
        return false;
    case Admission::MergeInto: {
        const QString id = item->id();
        if (existing)
            q_ptr->HandleDuplicatedItem(item, existing);
        const int row = q_ptr->FindItemRow(id);
        rows().rowsChanged(row, row);
        delete item;
        q_ptr->KeepSortingCheck();
        // Emitted by AppendItem although the count is unchanged: hosts re-read
        // the count on every append.
        if (placement == Placement::Append)
            emit q_ptr->rowCountChanged();
        return true;
    }
    case Admission::Insert:
        break;
    }
    connectItem(item);
    if (placement == Placement::Append)
        rows().append(item);
    else
        rows().prependAnnouncedAtOldEnd(item);
    q_ptr->KeepSortingCheck();
    emit q_ptr->rowCountChanged();
    return true;
}

bool XOLATreeModelPrivate::admitForLoading(XOLATreeItem* item)
{
    XOLATreeItem* existing = nullptr;
    switch (admit(item, ListedId::Merge, &existing)) {
    case Admission::Refuse:
        return false; // already listed: neither merged away nor deleted
    case Admission::MergeInto:
        // No dataChanged for merged rows in bulk loads, unlike AppendItem:
        // neither a notice of its own nor one echoed from the merged item's change.
        if (existing) {
            const QuietMerge quiet(q_ptr, existing);
            q_ptr->HandleDuplicatedItem(item, existing);
        }
        delete item;
        return false;
    case Admission::Insert:
        break;
    }
    connectItem(item);
    return true;
}

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
    if (d_ptr->m_copyItemFunc)
        d_ptr->m_copyItemFunc(source, destination);
    else
        CopyItem(source, destination);
}

void XOLATreeModel::KeepSortingCheck()
{
    if (d_ptr->m_sortFlag != None)
        SortByRules(d_ptr->m_sortRules, d_ptr->m_sortFlag);
}

// ---- single insertions -------------------------------------------------------------------

bool XOLATreeModel::InsertItem(int row, XOLATreeItem* item)
{
    if (d_ptr->isForeignThread())
        return d_ptr->insertFromForeignThread(item);
    if (!item)
        return false;
    XOLATreeItem* existing = nullptr;
    if (d_ptr->admit(item, XOLATreeModelPrivate::ListedId::Refuse, &existing) != XOLATreeModelPrivate::Admission::Insert)
        return false; // refused; the caller keeps the item
    // Rows outside 0..count are refused (the caller keeps the item): there is
    // no row to announce for them.
    if (row < 0 || row > d_ptr->rows().count())
        return false;
    d_ptr->connectItem(item);
    d_ptr->rows().insert(row, item);
    KeepSortingCheck();
    emit rowCountChanged();
    return true;
}

bool XOLATreeModel::AppendItem(XOLATreeItem* item)
{
    if (!item)
        return false;
    if (d_ptr->isForeignThread()) {
        d_ptr->adoptForeignItem(item);
        return d_ptr->onModelThread([&] { return AppendItem(item); });
    }
    return d_ptr->addSingle(item, XOLATreeModelPrivate::Placement::Append);
}

bool XOLATreeModel::PrependItem(XOLATreeItem* item)
{
    if (!item)
        return false;
    if (d_ptr->isForeignThread())
        return d_ptr->prependFromForeignThread();
    return d_ptr->addSingle(item, XOLATreeModelPrivate::Placement::PrependAnnouncedAtOldEnd);
}

// ---- change notification ----------------------------------------------------------------

void XOLATreeModel::EmitValueChange()
{
    d_ptr->valueChangedFrom(sender());
}

void XOLATreeModelPrivate::valueChangedFrom(const QObject* object)
{
    if (q_ptr == t_quietModel && object == t_quietItem)
        return;
    const int row = rows().rowOf(object);
    if (q_ptr->index(row, 0).isValid())
        rows().rowsChanged(row, row);
}
