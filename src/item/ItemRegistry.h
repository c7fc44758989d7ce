#ifndef ITEMREGISTRY_H
#define ITEMREGISTRY_H

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVarLengthArray>

#include <vector>

class XOLATreeItem;

/*!
 * Something that lists items it does not own and must let go of an item
 * before the item is gone. Models implement it; the item layer knows nothing
 * more of them.
 */
class ItemLifetimeObserver
{
public:
    //! The item is being deleted (only its address and its last id are usable).
    virtual void itemDestroyed(const XOLATreeItem* item, const QString& id) = 0;
    //! The registry of the observer's thread is gone (the thread ends): it must
    //! not be called again.
    virtual void registryDetached() = 0;

protected:
    ~ItemLifetimeObserver() = default;
};

/*!
 * The observers of one thread that list items they do not own: views, a
 * group's member models, models that keep removed items (option 2). The owner
 * of such an item may delete it at any time: a source disposing of a row its
 * views were told about by an id they do not resolve, an in-place swap deleting
 * the old rows at once, a host deleting an item it was handed back. The item's
 * destructor then tells every observer holding it before it goes, so that none
 * is left holding a deleted item.
 *
 * One registry per thread, like the models and items it serves; no locks.
 */
class ItemRegistry
{
public:
    ItemRegistry() = default;
    ~ItemRegistry();
    ItemRegistry(const ItemRegistry&) = delete;
    ItemRegistry& operator=(const ItemRegistry&) = delete;

    //! The registry of the calling thread, or null once that thread's registry
    //! is gone (objects deleted while the thread ends).
    static ItemRegistry* local();
    //! Called by an item's destructor: every observer holding it lets it go.
    static void itemDestroyed(const XOLATreeItem* item, const QString& id);

    //! observer lists item without owning it (once per pair, however often called).
    void hold(const XOLATreeItem* item, ItemLifetimeObserver* observer);
    void release(const XOLATreeItem* item, ItemLifetimeObserver* observer);
    //! The observer is being destroyed: it is not told of items any more, also
    //! of an item whose deletion is being announced right now.
    void observerGone(ItemLifetimeObserver* observer);

private:
    using Observers = QVarLengthArray<ItemLifetimeObserver*, 2>;
    void announce(const XOLATreeItem* item, const QString& id);
    //! Called when the registry's thread ends: its observers must not call it again.
    void detachObservers();

    QHash<const XOLATreeItem*, Observers> m_observers;
    // The observers being told of deletions right now (innermost last): one of
    // them may delete another while it is told.
    std::vector<Observers*> m_announcing;
};

#endif // ITEMREGISTRY_H
