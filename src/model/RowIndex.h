#ifndef ROWINDEX_H
#define ROWINDEX_H

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QVector>

class QObject;
class XOLATreeItem;

/*!
 * Finds the row of an item pointer without scanning the rows.
 *
 * Every listed pointer has a slot: its row when the index was last built, or
 * the next free slot when it was appended later. Rows taken out one at a time
 * are marked in a Fenwick tree over the slots, so the current row of a slot is
 * the slot minus the marked slots before it. Appends and single removals keep
 * the index valid in (amortized) logarithmic time; any other change of the
 * rows invalidates it and the next lookup rebuilds it from the rows.
 *
 * Only the first row holding a pointer is indexed; once a pointer is listed
 * twice, a removal invalidates the index instead of guessing which row went.
 */
class RowIndex
{
public:
    //! The rows changed in a way the index does not follow.
    void invalidate() { m_valid = false; }
    //! True when the index describes rows of this count.
    bool isValidFor(int rowCount) const { return m_valid && m_rowCount == rowCount; }
    void rebuild(const QList<XOLATreeItem*>& rows);
    //! The row the index gives for the pointer, or -1 when it is not indexed.
    int find(const QObject* object) const;
    //! One pointer was appended; rows is the list after the append.
    void appended(const QObject* object, int rowCount);
    //! The pointer at row was taken out; rowCount is the count after the removal.
    void removed(int row, const QObject* object, int rowCount);

private:
    int removedBefore(int slot) const;

    QHash<const QObject*, int> m_slots;
    // Fenwick tree (1-based) over the slots: counts slots whose row was taken out.
    QVector<int> m_removed;
    int m_slotCount = 0;
    int m_rowCount = -1;
    bool m_valid = false;
    bool m_hasDuplicates = false;
};

#endif // ROWINDEX_H
