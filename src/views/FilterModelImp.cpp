#include "FilterModelImp.h"

// Placeholder bodies; filled in by the filter work.
FilterModelImp::FilterModelImp(IXOLATreeModel* source, const QList<QVariant>& filterRules, bool orAllRules, int newItemPos)
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(), 3, nullptr, nullptr)
    , m_sourceModel(source), m_filterRules(filterRules), m_orAllRules(orAllRules), m_newItemPos(newItemPos) {}
FilterModelImp::FilterModelImp(IXOLATreeModel* source, PF_MATCH_ITEM rule, const QVariant& ruleValue, int newItemPos)
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(), 3, nullptr, nullptr)
    , m_sourceModel(source), m_ruleValue(ruleValue), m_userDefinedRule(rule), m_newItemPos(newItemPos) {}
FilterModelImp::~FilterModelImp() = default;
QVariant FilterModelImp::data(const QModelIndex& index, int role) const { return XOLATreeModel::data(index, role); }
QString FilterModelImp::FindItemID(int row) const { return XOLATreeModel::FindItemID(row); }
int FilterModelImp::FindItemRow(const QString& id) const { return XOLATreeModel::FindItemRow(id); }
QVariant FilterModelImp::FindItemValue(int row, int role) const { return XOLATreeModel::FindItemValue(row, role); }
QVariant FilterModelImp::FindItemValue(int row, const QString& roleName) const { return XOLATreeModel::FindItemValue(row, roleName); }
QVariant FilterModelImp::FindItemValue(const QString& id, int role) const { return XOLATreeModel::FindItemValue(id, role); }
QVariant FilterModelImp::FindItemValue(const QString& id, const QString& roleName) const { return XOLATreeModel::FindItemValue(id, roleName); }
QVariant FilterModelImp::FindItemValueEx(const QString& id, int role, bool f) const { return XOLATreeModel::FindItemValueEx(id, role, f); }
QVariant FilterModelImp::FindItemValueEx(const QString& id, const QString& roleName, bool f) const { return XOLATreeModel::FindItemValueEx(id, roleName, f); }
QObject* FilterModelImp::FindItem(int row) const { return XOLATreeModel::FindItem(row); }
QObject* FilterModelImp::FindItem(const QString& id, bool f) const { return XOLATreeModel::FindItem(id, f); }
bool FilterModelImp::UpdateFilterRules(QVariantList, bool) { return false; }
bool FilterModelImp::UpdateUserDefinedFilterRules(QVariant) { return false; }
bool FilterModelImp::MatchRule(const XOLATreeItem*, const QList<QVariant>&, bool) { return false; }
bool FilterModelImp::IsMatchRule(const XOLATreeItem*) { return false; }
bool FilterModelImp::ReGenFilterModel() { return false; }
QObject* FilterModelImp::FindChildModel(XOLATreeItem*) const { return nullptr; }
void FilterModelImp::SourceModelDataChangedHandler(const QModelIndex&, const QModelIndex&) {}
void FilterModelImp::SourceModelItemAddedHandler(const QModelIndex&, int, int) {}
void FilterModelImp::SourceModelItemRemovedHandler(const QString&) {}
void FilterModelImp::SourceModelItemsRemovedHandler(const QStringList&) {}
void FilterModelImp::SourceModelAllItemRemovedHandler() {}
void FilterModelImp::ChildModelValueChangedHandler() {}
void FilterModelImp::Initial() {}
