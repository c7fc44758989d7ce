#include "RowNotices.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QMetaMethod>

namespace {
// The protocol functions are protected members of QAbstractItemModel. Named
// through this class they may be called on any model: the row store and the
// windows serve models that are not theirs to derive from.
class Protocol : public QAbstractItemModel
{
public:
    static void beginInsert(QAbstractItemModel& m, int first, int last)
    {
        (m.*&Protocol::beginInsertRows)(QModelIndex(), first, last);
    }
    static void endInsert(QAbstractItemModel& m) { (m.*&Protocol::endInsertRows)(); }
    static void beginRemove(QAbstractItemModel& m, int first, int last)
    {
        (m.*&Protocol::beginRemoveRows)(QModelIndex(), first, last);
    }
    static void endRemove(QAbstractItemModel& m) { (m.*&Protocol::endRemoveRows)(); }
    static void beginReset(QAbstractItemModel& m) { (m.*&Protocol::beginResetModel)(); }
    static void endReset(QAbstractItemModel& m) { (m.*&Protocol::endResetModel)(); }
    static void resetInternal(QAbstractItemModel& m) { (m.*&Protocol::resetInternalData)(); }
    static QModelIndexList persistent(const QAbstractItemModel& m) { return (m.*&Protocol::persistentIndexList)(); }
    static void changePersistent(QAbstractItemModel& m, const QModelIndexList& from, const QModelIndexList& to)
    {
        (m.*&Protocol::changePersistentIndexList)(from, to);
    }
};
} // namespace

namespace RowNotices {

void beginInsert(QAbstractItemModel& model, int first, int last)
{
    Protocol::beginInsert(model, first, last);
}

void endInsert(QAbstractItemModel& model)
{
    Protocol::endInsert(model);
}

void beginRemove(QAbstractItemModel& model, int first, int last)
{
    Protocol::beginRemove(model, first, last);
}

void endRemove(QAbstractItemModel& model)
{
    Protocol::endRemove(model);
}

void beginReset(QAbstractItemModel& model)
{
    Protocol::beginReset(model);
}

void endReset(QAbstractItemModel& model)
{
    Protocol::endReset(model);
}

void reset(QAbstractItemModel& model)
{
    Protocol::beginReset(model);
    Protocol::endReset(model);
}

bool hasPersistentRows(const QAbstractItemModel& model)
{
    return !Protocol::persistent(model).isEmpty();
}

void movePersistentRows(QAbstractItemModel& model, const QVector<int>& newRowOf)
{
    const QModelIndexList from = Protocol::persistent(model);
    if (from.isEmpty())
        return;
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& index : from) {
        const int row = index.row();
        if (index.parent().isValid() || row < 0 || row >= newRowOf.size())
            to.append(index);
        else
            to.append(model.index(newRowOf.at(row), index.column()));
    }
    Protocol::changePersistent(model, from, to);
}

void announceInsertedAfterChange(QAbstractItemModel& model, int first, int last)
{
    Protocol::beginInsert(model, first, last);
    Protocol::endInsert(model);
}

void announceRemovedAfterChange(QAbstractItemModel& model, int first, int last)
{
    Protocol::beginRemove(model, first, last);
    Protocol::endRemove(model);
}

void unpairedResetEnd(QAbstractItemModel& model)
{
    // What endResetModel() sends and does, except that persistent indexes stay
    // valid: the rows were only reordered, and the indexes already follow them.
    // (Selection models still clear themselves on modelReset.)
    Protocol::resetInternal(model);
    static const QMetaMethod modelReset = QMetaMethod::fromSignal(&QAbstractItemModel::modelReset);
    modelReset.invoke(&model, Qt::DirectConnection);
}

void layoutChangedWithoutAboutToBe(QAbstractItemModel& model)
{
    emit model.layoutChanged(QList<QPersistentModelIndex>(), QAbstractItemModel::NoLayoutChangeHint);
}

} // namespace RowNotices
