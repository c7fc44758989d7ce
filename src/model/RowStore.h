#ifndef ROWSTORE_H
#define ROWSTORE_H

#include "RowIndex.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

class QAbstractItemModel;
class XOLATreeItem;

/*!
 * A model's rows: the items in display order (m_items), their index by id
 * (m_itemMap) and the row index that finds an item's row without a scan.
 *
 * It is the only code that changes them, and every row notice of a model comes
 * from here, sent in the order views rely on. Operations that add, take or
 * reorder rows call one function here and do the rest (connections, ownership,
 * the model's own signals) around it.
 */
class RowStore
{
public:
    explicit RowStore(QAbstractItemModel& model);

    // ---- reading -------------------------------------------------------------------
    const QList<XOLATreeItem*>& items() const { return m_items; }
    int count() const { return m_items.size(); }
    bool isEmpty() const { return m_items.isEmpty(); }
    //! The item at row, or null outside the rows.
    XOLATreeItem* at(int row) const { return row >= 0 && row < m_items.size() ? m_items.at(row) : nullptr; }
    const QHash<QString, XOLATreeItem*>& idIndex() const { return m_itemMap; }
    bool hasId(const QString& id) const { return m_itemMap.contains(id); }
    XOLATreeItem* byId(const QString& id) const { return m_itemMap.value(id, nullptr); }
    //! Row of the first element equal to object, or -1 (indexed). With
    //! confirmMiss false a miss in a valid index is trusted (no rebuild).
    int rowOf(const QObject* object, bool confirmMiss = true) const;
    //! Row of the first element equal to item, or -1; a miss is confirmed by a scan.
    int listedRow(const XOLATreeItem* item) const;
    //! The rows themselves, for a host that may rearrange them in place.
    QList<XOLATreeItem*>* handToHost();

    // ---- the id index ------------------------------------------------------------------
    void indexId(XOLATreeItem* item) { m_itemMap.insert(itemId(item), item); }
    void unindexId(const QString& id) { m_itemMap.remove(id); }
    //! Takes an item that is gone out of the index: the entries under its id, as
    //! documented, and any entry still naming it under an id it no longer has.
    void unindex(XOLATreeItem* item);
    //! Drops every entry naming item, under whatever id.
    void dropEntriesOf(const XOLATreeItem* item);

    // ---- changes announced by Qt's protocol ------------------------------------------------
    void insert(int row, XOLATreeItem* item);
    void append(XOLATreeItem* item);
    //! Takes the row out; with unindexItem its id entries go too, inside the notice.
    void removeAt(int row, bool unindexItem);
    //! Removes rows first..last; whileAnnounced runs after the "about to" notice,
    //! before the rows go.
    void removeRange(int first, int last, const std::function<void()>& whileAnnounced);
    //! Empties the rows and the index; whileAnnounced runs after the "about to"
    //! notice, before the rows go.
    void removeAll(const std::function<void()>& whileAnnounced);
    //! Moves one row, announced as a reset of the whole model.
    void moveAsReset(int from, int to);
    //! The same items in a new order (a sort). Persistent indexes follow their
    //! items; nothing is announced (the sort tells views itself).
    void reorder(const QList<XOLATreeItem*>& order);
    //! dataChanged for rows first..last as given (also for an empty model).
    void rowsChanged(int first, int last);

    // ---- deliberate departures that hosts rely on ---------------------------------------------
    //! The item goes to the front while its row is announced at the old end.
    void prependAnnouncedAtOldEnd(XOLATreeItem* item);
    //! Changes whose notice follows with announceInsertedAfterChange() or
    //! announceRemovedAfterChange(), or that are not announced at all (a
    //! container emptied on the way to deletion).
    void appendQuietly(XOLATreeItem* item);
    void reserve(int count) { m_items.reserve(count); }
    void prependQuietly(const QList<XOLATreeItem*>& items);
    void replaceQuietly(const QList<XOLATreeItem*>& items);
    void removeFirstQuietly(XOLATreeItem* item);
    void clearQuietly();
    void announceInsertedAfterChange(int first, int last);
    void announceRemovedAfterChange(int first, int last);
    void unpairedResetEnd();
    void layoutChangedWithoutAboutToBe();
    //! Takes out every row holding item, each with a removal notice of its own;
    //! true when there was one.
    bool removeEveryRowOf(const XOLATreeItem* item);

private:
    static QString itemId(const XOLATreeItem* item);
    void rowsRearranged() const { m_rowIndex.invalidate(); }

    QAbstractItemModel& m_model;
    QList<XOLATreeItem*> m_items;
    QHash<QString, XOLATreeItem*> m_itemMap;
    // Rebuilt on demand after any change it does not follow.
    mutable RowIndex m_rowIndex;
    // Set once the rows were handed to a host, who may change them unseen.
    bool m_handedToHost = false;
};

#endif // ROWSTORE_H
