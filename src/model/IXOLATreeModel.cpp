#include "IXOLATreeModel.h"

IXOLATreeModel::IXOLATreeModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

IXOLATreeModel::~IXOLATreeModel() = default;
