#include "GroupModelImp.h"

#include "MetaConnect.h"
#include "RoleNames.h"
#include "VariantRules.h"

#include <QtCore/QHash>
#include <QtCore/QVector>

GroupModelImp::GroupModelImp(IXOLATreeModel* source, int role, bool keepSortWithSource)
    // Option 1 only: the QML engine owns the view, and group items leaving it are
    // disposed of together with their member models.
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(), JavaScriptOwnershipOption,
                    nullptr, nullptr)
    , m_sourceModel(source)
    , m_keepSortWithSource(keepSortWithSource)
    , m_groupRole(-1)
{
    if (source) {
        MetaConnect::connect(source, "modelReset()", this, "modelReset()");
        MetaConnect::connect(source, "dataChanged(QModelIndex,QModelIndex)",
                             this, "SourceModelDataChangedHandler(QModelIndex,QModelIndex)");
        MetaConnect::connect(source, "rowsInserted(QModelIndex,int,int)",
                             this, "SourceModelItemAddedHandler(QModelIndex,int,int)");
        MetaConnect::connect(source, "rowsRemoved(QModelIndex,int,int)",
                             this, "SourceModelItemRemovedHandler(QModelIndex,int,int)");
        MetaConnect::connect(source, "allItemRemoved()", this, "SourceModelAllItemRemovedHandler()");
        MetaConnect::connect(source, "layoutChanged()", this, "layoutChanged()");
    }
    UpdateGroupRole(role);
}

GroupModelImp::~GroupModelImp()
{
    m_rowGroups.clear();
}

bool GroupModelImp::UpdateGroupRole(int role)
{
    if (!m_sourceModel)
        return false;
    if (role != m_groupRole)
        GenGroupModel(role);
    return true;
}

bool GroupModelImp::UpdateGroupRole(const QString& roleName)
{
    if (!m_sourceModel)
        return false;
    // An unknown name groups by role 0 (every item in the "" group) rather than
    // failing: QML callers never check the result.
    return UpdateGroupRole(::roleForName(m_sourceModel->roleNames(), roleName));
}

XOLATreeModel* GroupModelImp::newMemberModel()
{
    // Members belong to the source, so they stay alive when they leave a group
    // (option 2). The view is the QObject parent so that member models of groups
    // still listed go with the view; a group leaving the view takes its member
    // model with it anyway.
    return new XOLATreeModel(this, m_sourceModel->roleNames(), KeepRemovedItemsOption, nullptr, nullptr);
}

XOLATreeItem* GroupModelImp::newGroupItem(const QString& key, XOLATreeModel* members)
{
    auto* group = new XOLATreeItem(key, key, members);
    // The view's own object, whatever happens to its row: removed by id list
    // (which hands items back to a caller that, from QML, cannot delete them) it
    // still goes with the view.
    group->setParent(this);
    return group;
}

XOLATreeModel* GroupModelImp::memberModelOf(const QString& key) const
{
    const QVariant child = FindItemValue(key, int(XOLATreeItem::ChildModelRole));
    return qobject_cast<XOLATreeModel*>(child.value<QObject*>());
}

QObject* GroupModelImp::GetGroupChildModel(const QString& key)
{
    if (XOLATreeModel* member = memberModelOf(key))
        return member;
    if (!m_sourceModel)
        return nullptr;
    XOLATreeModel* member = newMemberModel();
    AppendItem(newGroupItem(key, member));
    return member;
}

bool GroupModelImp::AddOneToGroupChildModel(int sourceRow, const QString& key, XOLATreeItem* item)
{
    if (!item)
        return false;
    auto* member = qobject_cast<XOLATreeModel*>(GetGroupChildModel(key));
    if (!member)
        return false;
    member->AppendItem(item);
    m_rowGroups.insert(sourceRow, qMakePair(item->id(), QVariant(key)));
    return true;
}

bool GroupModelImp::RemoveOneFromGroupChildModel(int sourceRow, const QString& key, const QString& itemId)
{
    if (!FindItem(key, false))
        return false;
    if (XOLATreeModel* member = memberModelOf(key)) {
        member->RemoveOne(itemId);
        if (member->rowCount() == 0)
            RemoveOne(key);
    }
    m_rowGroups.remove(sourceRow);
    return true;
}

void GroupModelImp::GenGroupModel(int role)
{
    m_groupRole = role;
    RemoveAll();
    m_rowGroups.clear();
    if (!m_sourceModel)
        return;

    // Keyed lookup while building: a source with many keys must not cost a scan
    // of the groups per item.
    struct Members
    {
        XOLATreeModel* model;
        QList<XOLATreeItem*> items;
    };
    QHash<QString, int> groupOfKey;
    QVector<Members> members;
    QList<XOLATreeItem*> groups;
    const int sourceRows = m_sourceModel->rowCount();
    for (int row = 0; row < sourceRows; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_sourceModel->FindItem(row));
        if (!item)
            continue;
        const QString key = VariantRules::toString(item->getData(role));
        auto group = groupOfKey.find(key);
        if (group == groupOfKey.end()) {
            XOLATreeModel* member = newMemberModel();
            group = groupOfKey.insert(key, members.size());
            members.append(Members{member, {}});
            groups << newGroupItem(key, member);
        }
        members[*group].items.append(item);
        // Rows arrive in ascending order: appending at the end is the cheap insert.
        m_rowGroups.insert(m_rowGroups.constEnd(), row, qMakePair(item->id(), QVariant(key)));
    }
    // Each member model is new and not yet listed, so nothing watches it: its
    // items go in as one list. Member models never merge ids, so every item is
    // listed, in source order, exactly as one append per item would list it.
    for (const Members& member : qAsConst(members))
        member.model->AppendItemsList(member.items);
    // One notice for all groups, in order of first appearance of their key.
    AppendItemsList(groups);
}

void GroupModelImp::SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (!m_sourceModel || topLeft.row() < 0 || bottomRight.row() < 0)
        return;
    if (m_keepSortWithSource) {
        GenGroupModel(m_groupRole);
        return;
    }
    for (int row = topLeft.row(); row <= bottomRight.row(); ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_sourceModel->FindItem(row));
        if (!item)
            continue;
        const QString newKey = VariantRules::toString(item->getData(m_groupRole));
        const auto recorded = m_rowGroups.constFind(row);
        if (recorded != m_rowGroups.constEnd()) {
            const QString oldKey = VariantRules::toString(recorded->second);
            if (oldKey == newKey)
                continue;
            // The recorded id is the one the member model knows the item by.
            RemoveOneFromGroupChildModel(row, oldKey, recorded->first);
        }
        // The item goes to the end of its new group, which is created at the
        // end of the view if needed.
        AddOneToGroupChildModel(row, newKey, item);
    }
}

void GroupModelImp::SourceModelItemAddedHandler(const QModelIndex& /*parent*/, int start, int end)
{
    if (!m_sourceModel)
        return;
    if (m_keepSortWithSource) {
        GenGroupModel(m_groupRole);
        return;
    }
    if (start < 0 || end < 0)
        return;
    // Recorded rows after the insertion point are deliberately not renumbered;
    // hosts that need exact groups under insertions in the middle keep the
    // source's order, which rebuilds.
    for (int row = start; row <= end; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_sourceModel->FindItem(row));
        if (!item)
            continue;
        AddOneToGroupChildModel(row, VariantRules::toString(item->getData(m_groupRole)), item);
    }
}

void GroupModelImp::SourceModelItemRemovedHandler(const QModelIndex& /*parent*/, int start, int end)
{
    if (start < 0 || end < 0 || !m_sourceModel || start > end)
        return;
    if (m_keepSortWithSource) {
        // Rebuilding keeps the recorded rows exact for the next removal.
        GenGroupModel(m_groupRole);
        return;
    }
    // Only recorded rows are visited, so a wide removal over few records is cheap.
    QList<QPair<int, QPair<QString, QVariant>>> removed;
    for (auto it = m_rowGroups.lowerBound(start); it != m_rowGroups.end() && it.key() <= end; ++it)
        removed << qMakePair(it.key(), it.value());
    for (const auto& entry : qAsConst(removed)) {
        const QString key = VariantRules::toString(entry.second.second);
        if (FindItem(key, false)) {
            if (XOLATreeModel* member = memberModelOf(key)) {
                member->RemoveOne(entry.second.first);
                if (member->rowCount() == 0)
                    RemoveOne(key);
            }
        }
        // Rows after the removed block keep their numbers, as on insertion.
        m_rowGroups.remove(entry.first);
    }
}

void GroupModelImp::SourceModelAllItemRemovedHandler()
{
    if (!m_sourceModel)
        return;
    // The recorded rows are left to the next rebuild, which starts afresh.
    RemoveAll();
}
