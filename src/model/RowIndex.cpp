#include "RowIndex.h"

#include "XOLATreeItem.h"

void RowIndex::rebuild(const QList<XOLATreeItem*>& rows)
{
    const int n = rows.size();
    m_slots.clear();
    m_slots.reserve(n);
    m_hasDuplicates = false;
    // Visited from the end so that the first row holding a pointer wins.
    for (int row = n - 1; row >= 0; --row) {
        auto it = m_slots.find(rows.at(row));
        if (it == m_slots.end()) {
            m_slots.insert(rows.at(row), row);
        } else {
            it.value() = row;
            m_hasDuplicates = true;
        }
    }
    // Room for appends, so that loading item by item does not rebuild often.
    m_removed.fill(0, n + n / 2 + 17);
    m_slotCount = n;
    m_rowCount = n;
    m_valid = true;
}

int RowIndex::removedBefore(int slot) const
{
    int count = 0;
    for (int i = slot; i > 0; i -= i & -i)
        count += m_removed.at(i);
    return count;
}

int RowIndex::find(const QObject* object) const
{
    const auto it = m_slots.constFind(object);
    if (it == m_slots.constEnd())
        return -1;
    return it.value() - removedBefore(it.value());
}

void RowIndex::appended(const QObject* object, int rowCount)
{
    if (!m_valid || m_rowCount != rowCount - 1 || m_slotCount + 1 >= m_removed.size()) {
        m_valid = false;
        return;
    }
    const int slot = m_slotCount++;
    if (m_slots.contains(object))
        m_hasDuplicates = true;
    else
        m_slots.insert(object, slot);
    m_rowCount = rowCount;
}

void RowIndex::removed(int row, const QObject* object, int rowCount)
{
    if (!m_valid || m_rowCount != rowCount + 1 || m_hasDuplicates) {
        m_valid = false;
        return;
    }
    const auto it = m_slots.find(object);
    if (it == m_slots.end() || it.value() - removedBefore(it.value()) != row) {
        m_valid = false;
        return;
    }
    for (int i = it.value() + 1; i < m_removed.size(); i += i & -i)
        ++m_removed[i];
    m_slots.erase(it);
    m_rowCount = rowCount;
}
