#include "GroupModelImp.h"

// Placeholder bodies; filled in by the group work.
GroupModelImp::GroupModelImp(IXOLATreeModel* source, int role, bool keepSortWithSource)
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(), 1, nullptr, nullptr)
    , m_sourceModel(source), m_keepSortWithSource(keepSortWithSource) { Q_UNUSED(role) }
GroupModelImp::~GroupModelImp() = default;
bool GroupModelImp::UpdateGroupRole(int) { return false; }
bool GroupModelImp::UpdateGroupRole(const QString&) { return false; }
QObject* GroupModelImp::GetGroupChildModel(const QString&) { return nullptr; }
bool GroupModelImp::AddOneToGroupChildModel(int, const QString&, XOLATreeItem*) { return false; }
bool GroupModelImp::RemoveOneFromGroupChildModel(int, const QString&, const QString&) { return false; }
void GroupModelImp::GenGroupModel(int) {}
void GroupModelImp::SourceModelDataChangedHandler(const QModelIndex&, const QModelIndex&) {}
void GroupModelImp::SourceModelItemAddedHandler(const QModelIndex&, int, int) {}
void GroupModelImp::SourceModelItemRemovedHandler(const QModelIndex&, int, int) {}
void GroupModelImp::SourceModelAllItemRemovedHandler() {}
XOLATreeModel* GroupModelImp::newMemberModel() { return nullptr; }
XOLATreeModel* GroupModelImp::memberModelOf(const QString&) const { return nullptr; }
