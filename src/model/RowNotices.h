#ifndef ROWNOTICES_H
#define ROWNOTICES_H

#include <QtCore/QVector>

class QAbstractItemModel;

/*!
 * Every row notice the library sends goes through these functions: the models'
 * row store and the windows over other models (the partial window, the paging
 * view) call them instead of the protocol functions of QAbstractItemModel.
 *
 * Views and delegates depend on the exact notices; the few places where they
 * depart from Qt's usual protocol on purpose are the functions in the second
 * group, each named after what it does.
 */
namespace RowNotices {

// ---- Qt's protocol -----------------------------------------------------------
void beginInsert(QAbstractItemModel& model, int first, int last);
void endInsert(QAbstractItemModel& model);
void beginRemove(QAbstractItemModel& model, int first, int last);
void endRemove(QAbstractItemModel& model);
void beginReset(QAbstractItemModel& model);
void endReset(QAbstractItemModel& model);
//! A reset with nothing changed in between: views read every row again.
void reset(QAbstractItemModel& model);
//! Persistent indexes (selections, QPersistentModelIndex) follow their rows to
//! new places; newRowOf[r] is the row now holding what row r held. Sends nothing.
//! True when some persistent index (a selection, a QPersistentModelIndex) is open.
bool hasPersistentRows(const QAbstractItemModel& model);
void movePersistentRows(QAbstractItemModel& model, const QVector<int>& newRowOf);

// ---- deliberate departures that hosts rely on ---------------------------------
//! Rows first..last are already in place; their insertion is announced now
//! (bulk loads and rows entering a view or a window).
void announceInsertedAfterChange(QAbstractItemModel& model, int first, int last);
//! Rows first..last are already gone; their removal is announced now.
void announceRemovedAfterChange(QAbstractItemModel& model, int first, int last);
//! endResetModel() with no beginResetModel() before it (after a sort by a
//! script function, hosts refresh their delegates on modelReset).
void unpairedResetEnd(QAbstractItemModel& model);
//! layoutChanged() with no layoutAboutToBeChanged() before it (after a sort by
//! a QML or script function, hosts re-read the rows on layoutChanged alone).
void layoutChangedWithoutAboutToBe(QAbstractItemModel& model);

} // namespace RowNotices

#endif // ROWNOTICES_H
