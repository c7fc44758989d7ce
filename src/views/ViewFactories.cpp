// The model's factories for its derived views. Every call makes a new,
// parentless view; the QML engine owns it (built with option bit 1).

#include "XOLATreeModel.h"

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "PagingModelImp.h"
#include "VariantRules.h"
#include "XOLATreeModelPrivate.h"

QObject* XOLATreeModel::GetFilterModel(QVariantList filterRules, bool orAllRules, int newItemPos)
{
    return new FilterModelImp(this, VariantRules::listArgument(filterRules), orAllRules, newItemPos);
}

QObject* XOLATreeModel::GetFilterModelByUserDefinedRules(QVariant filterRules, int newItemPos)
{
    return new FilterModelImp(this, d_ptr->m_matchItemFunc, filterRules, newItemPos);
}

QObject* XOLATreeModel::GetGroupModel(int role, bool keepSortWithSource)
{
    return new GroupModelImp(this, role, keepSortWithSource);
}

QObject* XOLATreeModel::GetGroupModel(const QString& roleName, bool keepSortWithSource)
{
    return new GroupModelImp(this, d_ptr->roleForName(roleName), keepSortWithSource);
}

QObject* XOLATreeModel::GetPagingModel(uint numPerPage)
{
    return new PagingModelImp(this, numPerPage);
}
