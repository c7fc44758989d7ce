#include "PartialModel.h"

#include "IXOLATreeModel.h"
#include "MetaConnect.h"
#include "RowNotices.h"

#include <QtCore/QMetaMethod>

PartialModel::PartialModel(QObject* sourceModel, QObject* parent)
    : QAbstractListModel(parent)
    , m_sourceModel(sourceModel)
{
    if (!sourceModel)
        return;
    MetaConnect::connect(sourceModel, "modelReset()", this, "modelReset()");
    MetaConnect::connect(sourceModel, "dataChanged(QModelIndex,QModelIndex)",
                         this, "SourceModelDataChangedHandler(QModelIndex,QModelIndex)");
    MetaConnect::connect(sourceModel, "rowsInserted(QModelIndex,int,int)",
                         this, "SourceModelCountChangedHandler(QModelIndex,int,int)");
    MetaConnect::connect(sourceModel, "rowsRemoved(QModelIndex,int,int)",
                         this, "SourceModelCountChangedHandler(QModelIndex,int,int)");
    MetaConnect::connect(sourceModel, "layoutChanged()", this, "layoutChanged()");
}

PartialModel::PartialModel(QObject* sourceModel, QObject* parent, RelayedBySource)
    : QAbstractListModel(parent)
    , m_sourceModel(sourceModel)
{
}

PartialModel::~PartialModel() = default;

void PartialModel::followSourceReset()
{
    // modelReset() cannot be emitted from outside the model class; invoking the
    // signal emits it exactly as a signal-to-signal connection would.
    static const QMetaMethod reset = QMetaMethod::fromSignal(&QAbstractItemModel::modelReset);
    reset.invoke(this, Qt::DirectConnection);
}

void PartialModel::followSourceLayoutChange()
{
    emit layoutChanged();
}

IXOLATreeModel* PartialModel::source() const
{
    // A source that is not a model (or is gone) acts as no source.
    return qobject_cast<IXOLATreeModel*>(m_sourceModel.data());
}

int PartialModel::shown() const
{
    const IXOLATreeModel* model = source();
    if (!model)
        return m_count;
    // Signed on purpose: it may be 0 or negative when the first row lies past the end.
    return qMin(m_count, model->rowCount() - m_firstRow);
}

int PartialModel::rowCount(const QModelIndex& /*parent*/) const
{
    return shown();
}

int PartialModel::GetPartialModelCount() const
{
    return shown();
}

int PartialModel::GetFirstPartialModelRow() const
{
    return m_firstRow;
}

QVariant PartialModel::data(const QModelIndex& index, int role) const
{
    const IXOLATreeModel* model = source();
    const int row = index.row();
    if (!model || row < 0 || row >= shown())
        return QVariant();
    return model->FindItemValue(m_firstRow + row, role);
}

QHash<int, QByteArray> PartialModel::roleNames() const
{
    const IXOLATreeModel* model = source();
    return model ? model->roleNames() : QHash<int, QByteArray>();
}

QVariantMap PartialModel::get(int row)
{
    IXOLATreeModel* model = source();
    // Answers in source terms, also past the window's end.
    return model ? model->get(row + m_firstRow) : QVariantMap();
}

int PartialModel::FindItemRow(QString id)
{
    const IXOLATreeModel* model = source();
    // The row in the source, not in the window.
    return model ? model->FindItemRow(id) : -1;
}

void PartialModel::SetFirstPartialModelRow(int row)
{
    const IXOLATreeModel* model = source();
    if (row == m_firstRow || !model)
        return;
    const int oldShown = shown();
    if (row >= model->rowCount())
        row = model->rowCount() - 1;
    m_firstRow = row < 0 ? 0 : row;
    const int now = shown();
    // Row 0 is named even when nothing is shown.
    emit dataChanged(createIndex(0, 0), createIndex(now < 1 ? 0 : now - 1, 0));
    const int newShown = shown();
    if (newShown == oldShown)
        return;
    // The window already shows the new rows; the notice brings the count in line.
    if (oldShown < newShown)
        RowNotices::announceInsertedAfterChange(*this, oldShown, newShown - 1);
    else
        RowNotices::announceRemovedAfterChange(*this, newShown, oldShown - 1);
    emit rowCountChanged();
}

void PartialModel::SetPartialModelCount(int count)
{
    // The whole window is announced as removed and inserted again, also when
    // the size is unchanged: delegates are rebuilt from scratch.
    const int before = shown();
    if (before >= 1)
        RowNotices::announceRemovedAfterChange(*this, 0, before - 1);
    if (count < 1) {
        m_count = 0;
        return;
    }
    m_count = count;
    const int after = shown();
    if (source() && after < 1) {
        // One row is announced although none is shown; kept for existing hosts.
        RowNotices::announceInsertedAfterChange(*this, 0, 0);
        return;
    }
    RowNotices::announceInsertedAfterChange(*this, 0, after - 1);
}

void PartialModel::SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    const int top = topLeft.row();
    const int bottom = bottomRight.row();
    const int visible = shown();
    if (top >= visible + m_firstRow || bottom < m_firstRow || top > bottom)
        return;
    for (int r = top; r <= bottom; ++r) {
        const int rel = r - m_firstRow;
        // The upper bound adds the first row on purpose (the same bound as above,
        // in source terms); existing hosts see those rows reported, under their
        // window row numbers past the shown rows.
        if (rel < 0 || rel >= visible + m_firstRow)
            continue;
        emit dataChanged(createIndex(rel, 0), createIndex(rel, 0));
    }
}

void PartialModel::SourceModelCountChangedHandler(const QModelIndex& /*parent*/, int start, int /*end*/)
{
    if (shown() + m_firstRow >= start) {
        RowNotices::reset(*this);
        emit rowCountChanged();
    }
}
