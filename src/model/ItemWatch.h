#ifndef ITEMWATCH_H
#define ITEMWATCH_H

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVarLengthArray>

class XOLATreeItem;
class XOLATreeModel;

/*!
 * The models of one thread that list items they do not own: views, a group's
 * member models, models that keep removed items (option 2). The owner of such an
 * item may delete it at any time: a source disposing of a row its views were
 * told about by an id they do not resolve, an in-place swap deleting the old rows
 * at once, a host deleting an item it was handed back. The item's destructor
 * then takes the item out of every model here before it goes, so that no model
 * is left holding a deleted item.
 *
 * One watch per thread, like the models and items it serves; no locks.
 */
class ItemWatch
{
public:
    ItemWatch() = default;
    ~ItemWatch();
    ItemWatch(const ItemWatch&) = delete;
    ItemWatch& operator=(const ItemWatch&) = delete;

    //! The watch of the calling thread, or null once that thread's watch is gone
    //! (objects deleted while the thread ends).
    static ItemWatch* local();
    //! Called by an item's destructor: every model holding it lets it go.
    static void itemDestroyed(const XOLATreeItem* item, const QString& id);

    //! holder lists item without owning it (once per pair, however often called).
    void hold(const XOLATreeItem* item, XOLATreeModel* holder);
    void release(const XOLATreeItem* item, XOLATreeModel* holder);
    //! The models that hold item, which is being deleted; the item is forgotten.
    QVarLengthArray<XOLATreeModel*, 2> takeHolders(const XOLATreeItem* item);
    //! Called when the watch's thread ends: its models must not call it again.
    void detachHolders();

private:
    QHash<const XOLATreeItem*, QVarLengthArray<XOLATreeModel*, 2>> m_holders;
};

#endif // ITEMWATCH_H
