#ifndef GROUPMODELIMP_H
#define GROUPMODELIMP_H

#include "XOLATreeModel.h"

#include <QtCore/QMap>
#include <QtCore/QPair>
#include <QtCore/QPointer>

/*!
 * Groups a source model's items by the text of one role. Each row is a group
 * item (id and name are the key) whose child model holds the source's own items
 * of that group, in source order. Groups appear in order of first appearance.
 */
class GroupModelImp : public XOLATreeModel
{
    Q_OBJECT

public:
    GroupModelImp(IXOLATreeModel* source, int role, bool keepSortWithSource);
    ~GroupModelImp() override;

    bool UpdateGroupRole(int role) override;
    bool UpdateGroupRole(const QString& roleName) override;

    QObject* GetGroupChildModel(const QString& key);
    bool AddOneToGroupChildModel(int sourceRow, const QString& key, XOLATreeItem* item);
    bool RemoveOneFromGroupChildModel(int sourceRow, const QString& key, const QString& itemId);
    void GenGroupModel(int role);

    IXOLATreeModel* sourceModel() const { return m_sourceModel.data(); }
    int groupRole() const { return m_groupRole; }
    bool keepSortWithSource() const { return m_keepSortWithSource; }
    QMap<int, QPair<QString, QVariant>> rowGroups() const { return m_rowGroups; }

public slots:
    void SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void SourceModelItemAddedHandler(const QModelIndex& parent, int start, int end);
    void SourceModelItemRemovedHandler(const QModelIndex& parent, int start, int end);
    void SourceModelAllItemRemovedHandler();

private:
    XOLATreeModel* newMemberModel();
    XOLATreeItem* newGroupItem(const QString& key, XOLATreeModel* members);
    XOLATreeModel* memberModelOf(const QString& key) const;

    QPointer<IXOLATreeModel> m_sourceModel;
    bool m_keepSortWithSource = false;
    int m_groupRole = -1;
    QMap<int, QPair<QString, QVariant>> m_rowGroups;
};

#endif // GROUPMODELIMP_H
