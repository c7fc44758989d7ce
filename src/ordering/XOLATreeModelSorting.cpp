#include "XOLATreeModel.h"

// Placeholder bodies; filled in by the ordering work.
void XOLATreeModel::SortByRole(int, bool, PF_LESS_THAN) {}
void XOLATreeModel::SortByRole(const QString&, bool, PF_LESS_THAN) {}
void XOLATreeModel::SortByRoleAndKeep(int, bool, PF_LESS_THAN) {}
void XOLATreeModel::SortByRoleAndKeep(const QString&, bool, PF_LESS_THAN) {}
void XOLATreeModel::SortByRoleByQMLFunction(int, bool, QString, QString) {}
void XOLATreeModel::SortByRoleByQMLFunction(const QString&, bool, QString, QString) {}
void XOLATreeModel::SortByRoleByScriptFunction(int, bool, QString, QString) {}
void XOLATreeModel::SortByRoleByScriptFunction(const QString&, bool, QString, QString) {}
void XOLATreeModel::SortByRules(const QVariantList&, int) {}
