// Construction, options and read access.

#include "XOLATreeModel.h"

#include "RoleNames.h"
#include "XOLATreeModelPrivate.h"

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
    , d_ptr(new XOLATreeModelPrivate(this, false))
{
    static const int typeId = registerQmlType();
    Q_UNUSED(typeId)
}

XOLATreeModel::XOLATreeModel(QObject* parent, const QHash<int, QByteArray>& roleNames, int flags,
                             PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc)
    : IXOLATreeModel(parent)
    , d_ptr(new XOLATreeModelPrivate(this, true))
{
    static const int typeId = registerQmlType();
    Q_UNUSED(typeId)
    d_ptr->m_flags = flags;
    d_ptr->m_copyItemFunc = std::move(copyItemFunc);
    d_ptr->m_matchItemFunc = std::move(matchItemFunc);
    QQmlEngine::setObjectOwnership(this, (flags & JavaScriptOwnershipOption) ? QQmlEngine::JavaScriptOwnership
                                                                             : QQmlEngine::CppOwnership);
    d_ptr->m_roleNames = roleNames.isEmpty() ? defaultRoleNames() : roleNames;
    // The partial window and the worker are made when first used; the window
    // hears of every notice from now on.
    d_ptr->relayToWindow();
    d_ptr->m_ownerThreadId = QThread::currentThreadId();
}

XOLATreeModel::~XOLATreeModel()
{
    // Whatever thread deletes the model, its rows go here and now.
    d_ptr->m_ownerThreadId = nullptr;
    // Non-virtual on purpose: views and QML see every row go before the model dies.
    XOLATreeModel::RemoveAll();
    // Index entries left by range removals that keep their items are watched too.
    d_ptr->releaseAllItems();
    d_ptr->m_sortRules.clear();
}

int XOLATreeModel::flags() const
{
    return d_ptr->m_flags;
}

int XOLATreeModel::sortFlag() const
{
    return d_ptr->m_sortFlag;
}

QVariantList XOLATreeModel::sortRules() const
{
    return d_ptr->m_sortRules;
}

int XOLATreeModel::rowCount(const QModelIndex& /*parent*/) const
{
    return d_ptr->hasRows() ? d_ptr->rows().count() : 0;
}

QVariant XOLATreeModel::data(const QModelIndex& index, int role) const
{
    XOLATreeItem* item = d_ptr->rows().at(index.row());
    return item ? item->getData(role) : QVariant();
}

QHash<int, QByteArray> XOLATreeModel::roleNames() const
{
    return d_ptr->m_roleNames;
}

QObject* XOLATreeModel::FindItem(int row) const
{
    return d_ptr->rows().at(row);
}

QObject* XOLATreeModel::FindItem(const QString& id, bool includeChildModel) const
{
    const RowStore& rows = d_ptr->rows();
    if (XOLATreeItem* found = rows.byId(id))
        return found;
    if (rows.hasId(id))
        return nullptr; // a null entry answers as not found
    if (!includeChildModel)
        return nullptr;
    // Depth first, in row order: the first match wins.
    for (XOLATreeItem* item : rows.items()) {
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
    const QList<XOLATreeItem*>& items = d_ptr->items();
    for (int row = 0; row < rowCount() && row < items.size(); ++row) {
        const XOLATreeItem* item = items.at(row);
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
    const QList<XOLATreeItem*> items = d_ptr->items();
    for (XOLATreeItem* item : items) {
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
    return d_ptr->rows().handToHost();
}

int XOLATreeModelPrivate::roleForName(const QString& roleName) const
{
    return ::roleForName(q_ptr->roleNames(), roleName);
}
