#include "ItemWatch.h"

#include "XOLATreeModel.h"

#include <QtCore/QPointer>

namespace {
// Trivially destructible, so it can still be read while the thread's watch is
// being destroyed or after.
thread_local bool t_watchGone = false;
} // namespace

ItemWatch::~ItemWatch()
{
    detachHolders();
    t_watchGone = true;
}

ItemWatch* ItemWatch::local()
{
    if (t_watchGone)
        return nullptr;
    thread_local ItemWatch watch;
    return &watch;
}

void ItemWatch::itemDestroyed(const XOLATreeItem* item, const QString& id)
{
    ItemWatch* watch = local();
    if (!watch)
        return;
    const QVarLengthArray<XOLATreeModel*, 2> holders = watch->takeHolders(item);
    if (holders.isEmpty())
        return;
    // A listener of one holder may delete another.
    QVarLengthArray<QPointer<XOLATreeModel>, 2> guarded;
    for (XOLATreeModel* holder : holders)
        guarded.append(holder);
    for (const QPointer<XOLATreeModel>& holder : guarded) {
        if (holder)
            holder->forgetDeletedItem(item, id);
    }
}

void ItemWatch::hold(const XOLATreeItem* item, XOLATreeModel* holder)
{
    QVarLengthArray<XOLATreeModel*, 2>& holders = m_holders[item];
    if (!holders.contains(holder))
        holders.append(holder);
}

void ItemWatch::release(const XOLATreeItem* item, XOLATreeModel* holder)
{
    auto it = m_holders.find(item);
    if (it == m_holders.end())
        return;
    QVarLengthArray<XOLATreeModel*, 2>& holders = it.value();
    for (int i = 0; i < holders.size(); ++i) {
        if (holders.at(i) == holder) {
            holders.remove(i);
            break;
        }
    }
    if (holders.isEmpty())
        m_holders.erase(it);
}

QVarLengthArray<XOLATreeModel*, 2> ItemWatch::takeHolders(const XOLATreeItem* item)
{
    if (m_holders.isEmpty())
        return {};
    return m_holders.take(item);
}

void ItemWatch::detachHolders()
{
    // Models that outlive their thread keep their rows but stop watching.
    for (auto it = m_holders.constBegin(); it != m_holders.constEnd(); ++it) {
        for (XOLATreeModel* holder : it.value())
            holder->watchDetached();
    }
    m_holders.clear();
}
