#include "XOLATreeModel.h"

#include "PartialModel.h"
#include "RoleNames.h"
#include "RowIndex.h"
#include "XOLATreeModelWorker.h"

#include <QtCore/QThread>
#include <QtQml/QQmlEngine>
#include <QtQml/qqml.h>

namespace {
int registerQmlType()
{
    // The element is named after the interface although the class is the model:
    // QML documents import it under that name.
    return qmlRegisterType<XOLATreeModel>("com.xolasys.ixolatreemodel", 1, 0, "IXOLATreeModel");
}

QHash<int, QByteArray> defaultRoleNames()
{
    return {{XOLATreeItem::IdRole, "idRole"},
            {XOLATreeItem::NameRole, "nameRole"},
            {XOLATreeItem::ChildModelRole, "childModelRole"}};
}
} // namespace

XOLATreeModel::XOLATreeModel()
    : IXOLATreeModel(nullptr)
{
    static const int typeId = registerQmlType();
    Q_UNUSED(typeId)
}

XOLATreeModel::XOLATreeModel(QObject* parent, const QHash<int, QByteArray>& roleNames, int flags,
                             PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc)
    : IXOLATreeModel(parent)
    , m_flags(flags)
    , m_copyItemFunc(std::move(copyItemFunc))
    , m_matchItemFunc(std::move(matchItemFunc))
{
    static const int typeId = registerQmlType();
    Q_UNUSED(typeId)
    QQmlEngine::setObjectOwnership(this, (flags & JavaScriptOwnershipOption) ? QQmlEngine::JavaScriptOwnership
                                                                             : QQmlEngine::CppOwnership);
    m_roleNames = roleNames.isEmpty() ? defaultRoleNames() : roleNames;
    m_partialModel = QSharedPointer<PartialModel>(new PartialModel(this, this));
    m_ownerThreadId = QThread::currentThreadId();
    m_worker = QSharedPointer<XOLATreeModelWorker>(new XOLATreeModelWorker(this));
}

XOLATreeModel::~XOLATreeModel()
{
    // Whatever thread deletes the model, its rows go here and now: the worker is
    // about to die with it.
    m_ownerThreadId = nullptr;
    // Non-virtual on purpose: views and QML see every row go before the model dies.
    XOLATreeModel::RemoveAll();
    // Index entries left by range removals that keep their items are watched too.
    releaseAllItems();
    m_sortRules.clear();
    m_worker.reset();
    m_partialModel.reset();
}

int XOLATreeModel::rowCount(const QModelIndex& /*parent*/) const
{
    return m_items.size();
}

QVariant XOLATreeModel::data(const QModelIndex& index, int role) const
{
    const int row = index.row();
    if (row < 0 || row >= m_items.size())
        return QVariant();
    XOLATreeItem* item = m_items.at(row);
    return item ? item->getData(role) : QVariant();
}

QHash<int, QByteArray> XOLATreeModel::roleNames() const
{
    return m_roleNames;
}

int XOLATreeModel::roleForName(const QString& roleName) const
{
    return ::roleForName(roleNames(), roleName);
}

QObject* XOLATreeModel::FindItem(int row) const
{
    if (row < 0 || row >= m_items.size())
        return nullptr;
    return m_items.at(row);
}

QObject* XOLATreeModel::FindItem(const QString& id, bool includeChildModel) const
{
    if (XOLATreeItem* found = m_itemMap.value(id, nullptr))
        return found;
    if (m_itemMap.contains(id))
        return nullptr; // a null entry answers as not found
    if (!includeChildModel)
        return nullptr;
    // Depth first, in row order: the first match wins.
    for (XOLATreeItem* item : m_items) {
        if (!item)
            continue;
        if (auto* child = qobject_cast<IXOLATreeModel*>(item->childModel())) {
            if (QObject* found = child->FindItem(id, true))
                return found;
        }
    }
    return nullptr;
}

QString XOLATreeModel::FindItemID(int row) const
{
    auto* item = qobject_cast<XOLATreeItem*>(FindItem(row));
    return item ? item->id() : QString();
}

int XOLATreeModel::FindItemRow(const QString& id) const
{
    for (int row = 0; row < rowCount() && row < m_items.size(); ++row) {
        const XOLATreeItem* item = m_items.at(row);
        if (item && item->id() == id)
            return row;
    }
    return -1;
}

namespace {
template <typename Key>
QVariant valueOf(const QObject* object, const Key& role)
{
    auto* item = qobject_cast<const XOLATreeItem*>(object);
    return item ? item->getData(role) : QVariant();
}
} // namespace

QVariant XOLATreeModel::FindItemValue(int row, int role) const
{
    return valueOf(FindItem(row), role);
}

QVariant XOLATreeModel::FindItemValue(int row, const QString& roleName) const
{
    return valueOf(FindItem(row), roleName);
}

QVariant XOLATreeModel::FindItemValue(const QString& id, int role) const
{
    return valueOf(FindItem(id, false), role);
}

QVariant XOLATreeModel::FindItemValue(const QString& id, const QString& roleName) const
{
    return valueOf(FindItem(id, false), roleName);
}

QVariant XOLATreeModel::FindItemValueEx(const QString& id, int role, bool includeChildModel) const
{
    return valueOf(FindItem(id, includeChildModel), role);
}

QVariant XOLATreeModel::FindItemValueEx(const QString& id, const QString& roleName, bool includeChildModel) const
{
    return valueOf(FindItem(id, includeChildModel), roleName);
}

void XOLATreeModel::GetAllIDs(QList<QString>& ids, bool includeChildModel)
{
    // Pre-order: an item's id, then its subtree, then the next item.
    for (XOLATreeItem* item : qAsConst(m_items)) {
        if (!item)
            continue;
        ids.append(item->id());
        if (includeChildModel) {
            if (auto* child = qobject_cast<IXOLATreeModel*>(item->childModel()))
                child->GetAllIDs(ids, true);
        }
    }
}

QVariantMap XOLATreeModel::get(int index)
{
    QVariantMap result;
    auto* item = qobject_cast<XOLATreeItem*>(FindItem(index));
    if (!item)
        return result;
    const QHash<int, QByteArray> names = roleNames();
    for (auto it = names.constBegin(); it != names.constEnd(); ++it) {
        const QString name = QString::fromLatin1(it.value());
        result.insert(name, item->getData(name));
    }
    return result;
}

void XOLATreeModel::clear()
{
    RemoveAll();
}

void XOLATreeModel::SetPartialModelCount(int count)
{
    if (m_partialModel)
        m_partialModel->SetPartialModelCount(count);
}

QObject* XOLATreeModel::GetPartialModel(int count)
{
    // A model made by QML has no window; it answers null.
    if (!m_partialModel)
        return nullptr;
    m_partialModel->SetPartialModelCount(count);
    return m_partialModel.data();
}

int XOLATreeModel::FirstPartialModelRow() const
{
    return m_partialModel ? m_partialModel->GetFirstPartialModelRow() : 0;
}

void XOLATreeModel::SetFirstPartialModelRow(int row)
{
    if (m_partialModel)
        m_partialModel->SetFirstPartialModelRow(row);
    // Emitted even when the row did not change: QML bindings re-read the window.
    emit firstPartialModelRowChanged();
}

bool XOLATreeModel::UpdateGroupRole(int)
{
    return false;
}

bool XOLATreeModel::UpdateGroupRole(const QString&)
{
    return false;
}

bool XOLATreeModel::UpdateFilterRules(QVariantList, bool)
{
    return false;
}

bool XOLATreeModel::UpdateUserDefinedFilterRules(QVariant)
{
    return false;
}

int XOLATreeModel::page() const
{
    return -1; // a plain model is not paged
}

void XOLATreeModel::setPage(int)
{
}

int XOLATreeModel::totalPage() const
{
    return 0;
}

QList<XOLATreeItem*>* XOLATreeModel::GetModelItemList()
{
    // The caller may rearrange the rows through this pointer.
    itemsReordered();
    return &m_items;
}
