#include "XOLATreeModelPrivate.h"


XOLATreeModelPrivate::XOLATreeModelPrivate(XOLATreeModel* q, bool fullyConstructed)
    : q_ptr(q)
    , m_fullyConstructed(fullyConstructed)
{
}

XOLATreeModelPrivate::~XOLATreeModelPrivate()
{
    releaseAllItems();
    // Also when the model goes while the registry is telling models of an
    // item's deletion: it must not be told of it any more.
    if (m_registry)
        m_registry->observerGone(this);
}

RowStore& XOLATreeModelPrivate::rows()
{
    if (!m_rows)
        m_rows.reset(new RowStore(*q_ptr));
    return *m_rows;
}

const RowStore& XOLATreeModelPrivate::rows() const
{
    if (!m_rows)
        m_rows.reset(new RowStore(*q_ptr));
    return *m_rows;
}

// ---- items listed without being owned ---------------------------------------------------

void XOLATreeModelPrivate::holdItem(XOLATreeItem* item)
{
    if (!item || !keepsRemovedItems())
        return;
    if (!m_registry) {
        m_registry = ItemRegistry::local();
        if (!m_registry)
            return;
    }
    // One lookup: the set grows only for an item not held yet.
    const int held = m_heldItems.size();
    m_heldItems.insert(item);
    if (m_heldItems.size() != held)
        m_registry->hold(item, this);
}

void XOLATreeModelPrivate::releaseUnlisted(XOLATreeItem* item)
{
    // The row index answers "not listed" without a scan; it follows every
    // removal that leads here.
    if (!m_registry || !m_heldItems.contains(item) || rows().rowOf(item, false) >= 0)
        return;
    m_heldItems.remove(item);
    m_registry->release(item, this);
}

void XOLATreeModelPrivate::releaseAllItems()
{
    if (m_registry) {
        for (const XOLATreeItem* item : qAsConst(m_heldItems))
            m_registry->release(item, this);
    }
    m_heldItems.clear();
}

void XOLATreeModelPrivate::registryDetached()
{
    m_registry = nullptr;
    m_heldItems.clear();
}

void XOLATreeModelPrivate::itemDestroyed(const XOLATreeItem* item, const QString& id)
{
    // Called from the item's destructor: only its address is used. Whoever owns
    // the item deleted it without this model hearing of it by a row or an id it
    // could resolve (an in-place swap, equal or changed ids, rows it was never
    // told about); its rows go with the notices a removal by id sends.
    m_heldItems.remove(item);
    RowStore& store = rows();
    const bool removed = store.removeEveryRowOf(item);
    store.dropEntriesOf(item);
    if (removed) {
        emit q_ptr->itemsRemoved(QStringList{id});
        emit q_ptr->rowCountChanged();
    }
}

// ---- connections and disposal ----------------------------------------------------------------

void XOLATreeModelPrivate::connectItem(XOLATreeItem* item)
{
    // A functor that knows its item: EmitValueChange() would have to ask
    // sender(), which walks every connection of the model in Qt 5 and makes a
    // change of every row quadratic. The effect is the same.
    QObject::connect(item, &XOLATreeItem::valueChanged, q_ptr, [this, item]() { valueChangedFrom(item); },
                     Qt::AutoConnection);
    holdItem(item);
}

void XOLATreeModelPrivate::disconnectItem(XOLATreeItem* item)
{
    if (item)
        QObject::disconnect(item, &XOLATreeItem::valueChanged, q_ptr, nullptr);
}

void XOLATreeModelPrivate::disposeChildModel(QObject* childModel, bool disconnectChild)
{
    if (!childModel)
        return;
    if (auto* child = qobject_cast<IXOLATreeModel*>(childModel))
        child->RemoveAll();
    if (disconnectChild)
        QObject::disconnect(childModel, nullptr, nullptr, nullptr);
    childModel->deleteLater();
}

void XOLATreeModelPrivate::disposeItem(XOLATreeItem* item)
{
    if (!item)
        return;
    QObject::disconnect(item, nullptr, nullptr, nullptr);
    item->deleteLater();
}
