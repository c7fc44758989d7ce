// The partial window every fully constructed model offers over itself. It is
// made the first time it is used; until then the model answers as a fresh
// window would.

#include "XOLATreeModel.h"

#include "PartialModel.h"
#include "XOLATreeModelPrivate.h"

PartialModel* XOLATreeModelPrivate::window()
{
    // A model made by QML has no window.
    if (!m_fullyConstructed)
        return nullptr;
    if (!m_partialModel)
        m_partialModel = QSharedPointer<PartialModel>(new PartialModel(q_ptr, q_ptr, PartialModel::RelayedBySource()));
    return m_partialModel.data();
}

void XOLATreeModelPrivate::relayToWindow()
{
    // Connected when the model is built, before any view can connect: the
    // window reacts to each notice before the model's views do, whenever it is
    // made, as views and delegates of both expect.
    XOLATreeModel* q = q_ptr;
    QObject::connect(q, &QAbstractItemModel::modelReset, q, [this] {
        if (PartialModel* window = existingWindow())
            window->followSourceReset();
    });
    QObject::connect(q, &QAbstractItemModel::dataChanged, q,
                     [this](const QModelIndex& topLeft, const QModelIndex& bottomRight) {
                         if (PartialModel* window = existingWindow())
                             window->SourceModelDataChangedHandler(topLeft, bottomRight);
                     });
    QObject::connect(q, &QAbstractItemModel::rowsInserted, q, [this](const QModelIndex& parent, int start, int end) {
        if (PartialModel* window = existingWindow())
            window->SourceModelCountChangedHandler(parent, start, end);
    });
    QObject::connect(q, &QAbstractItemModel::rowsRemoved, q, [this](const QModelIndex& parent, int start, int end) {
        if (PartialModel* window = existingWindow())
            window->SourceModelCountChangedHandler(parent, start, end);
    });
    QObject::connect(q, &QAbstractItemModel::layoutChanged, q, [this] {
        if (PartialModel* window = existingWindow())
            window->followSourceLayoutChange();
    });
}

void XOLATreeModel::SetPartialModelCount(int count)
{
    if (PartialModel* window = d_ptr->window())
        window->SetPartialModelCount(count);
}

QObject* XOLATreeModel::GetPartialModel(int count)
{
    // A model made by QML has no window; it answers null.
    PartialModel* window = d_ptr->window();
    if (!window)
        return nullptr;
    window->SetPartialModelCount(count);
    return window;
}

int XOLATreeModel::FirstPartialModelRow() const
{
    // A window not made yet starts at row 0.
    const PartialModel* window = d_ptr->existingWindow();
    return window ? window->GetFirstPartialModelRow() : 0;
}

void XOLATreeModel::SetFirstPartialModelRow(int row)
{
    if (PartialModel* window = d_ptr->window())
        window->SetFirstPartialModelRow(row);
    // Emitted even when the row did not change: QML bindings re-read the window.
    emit firstPartialModelRowChanged();
}
