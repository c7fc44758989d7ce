#include "ItemRegistry.h"

#include <QtCore/QSet>

namespace {
// Trivially destructible, so it can still be read while the thread's registry
// is being destroyed or after.
thread_local bool t_registryGone = false;
} // namespace

ItemRegistry::~ItemRegistry()
{
    detachObservers();
    t_registryGone = true;
}

ItemRegistry* ItemRegistry::local()
{
    if (t_registryGone)
        return nullptr;
    thread_local ItemRegistry registry;
    return &registry;
}

void ItemRegistry::itemDestroyed(const XOLATreeItem* item, const QString& id)
{
    if (ItemRegistry* registry = local())
        registry->announce(item, id);
}

void ItemRegistry::announce(const XOLATreeItem* item, const QString& id)
{
    if (m_observers.isEmpty())
        return;
    const auto it = m_observers.find(item);
    if (it == m_observers.end())
        return;
    Observers observers = it.value();
    m_observers.erase(it);
    m_announcing.push_back(&observers);
    for (int i = 0; i < observers.size(); ++i) {
        // Read again each time: an observer told earlier may have deleted this one.
        if (ItemLifetimeObserver* observer = observers.at(i))
            observer->itemDestroyed(item, id);
    }
    m_announcing.pop_back();
}

void ItemRegistry::hold(const XOLATreeItem* item, ItemLifetimeObserver* observer)
{
    Observers& observers = m_observers[item];
    if (!observers.contains(observer))
        observers.append(observer);
}

void ItemRegistry::release(const XOLATreeItem* item, ItemLifetimeObserver* observer)
{
    auto it = m_observers.find(item);
    if (it == m_observers.end())
        return;
    Observers& observers = it.value();
    for (int i = 0; i < observers.size(); ++i) {
        if (observers.at(i) == observer) {
            observers.remove(i);
            break;
        }
    }
    if (observers.isEmpty())
        m_observers.erase(it);
}

void ItemRegistry::observerGone(ItemLifetimeObserver* observer)
{
    for (Observers* observers : m_announcing) {
        for (int i = 0; i < observers->size(); ++i) {
            if (observers->at(i) == observer)
                (*observers)[i] = nullptr;
        }
    }
}

void ItemRegistry::detachObservers()
{
    // Models that outlive their thread keep their rows but stop watching.
    QSet<ItemLifetimeObserver*> told;
    for (auto it = m_observers.constBegin(); it != m_observers.constEnd(); ++it) {
        for (ItemLifetimeObserver* observer : it.value()) {
            if (!told.contains(observer)) {
                told.insert(observer);
                observer->registryDetached();
            }
        }
    }
    m_observers.clear();
}
