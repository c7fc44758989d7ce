#include "IXOLATreeModel.h"

//! Holds nothing yet; see the reserved pointer in the interface.
class IXOLATreeModelPrivate
{
};

IXOLATreeModel::IXOLATreeModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

IXOLATreeModel::~IXOLATreeModel() = default;
