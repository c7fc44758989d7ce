#ifndef XOLATREEMODEL_H
#define XOLATREEMODEL_H

#include "IXOLATreeModel.h"
#include "XOLATreeItem.h"
#include "XOLATreeModelGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>

#include <memory>

class XOLATreeModelPrivate;

/*!
 * The library's list model: rows are XOLATreeItem objects in display order,
 * indexed by id. QML binds views to it or to the views it makes
 * (GetFilterModel, GetGroupModel, GetPagingModel, GetPartialModel).
 *
 * Option bits (the flags argument):
 *  - 1: the model is handed to the QML engine (JavaScriptOwnership);
 *  - 2: removed items are left alive (the caller keeps them);
 *  - 4: an inserted item whose id is already listed is merged into the listed one.
 *
 * Mutations called from a thread other than the constructing one are carried to
 * the model's thread and the caller waits, so that thread must run an event loop.
 * Items created on another thread and handed over by such a call are moved to the
 * model's thread first.
 */
class XOLATREEMODEL_EXPORT XOLATreeModel : public IXOLATreeModel
{
    Q_OBJECT

public:
    enum Option { JavaScriptOwnershipOption = 1, KeepRemovedItemsOption = 2, MergeDuplicatesOption = 4 };

    //! Used when QML instantiates the registered type; a limited model without
    //! role names, partial view or cross-thread routing.
    XOLATreeModel();
    XOLATreeModel(QObject* parent, const QHash<int, QByteArray>& roleNames, int flags,
                  PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc);
    ~XOLATreeModel() override;

    // QAbstractItemModel
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // IXOLATreeModel
    QString FindItemID(int row) const override;
    int FindItemRow(const QString& id) const override;
    QVariant FindItemValue(int row, int role) const override;
    QVariant FindItemValue(int row, const QString& roleName) const override;
    QVariant FindItemValue(const QString& id, int role) const override;
    QVariant FindItemValue(const QString& id, const QString& roleName) const override;
    QVariant FindItemValueEx(const QString& id, int role, bool includeChildModel) const override;
    QVariant FindItemValueEx(const QString& id, const QString& roleName, bool includeChildModel) const override;
    void GetAllIDs(QList<QString>& ids, bool includeChildModel) override;
    void SetPartialModelCount(int count) override;
    QObject* GetPartialModel(int count) override;
    void SortByRole(int role, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) override;
    void SortByRole(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) override;
    void SortByRoleAndKeep(int role, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) override;
    void SortByRoleAndKeep(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) override;
    void SortByRoleByQMLFunction(int role, bool ascending, QString fileName, QString compareFunctionName) override;
    void SortByRoleByQMLFunction(const QString& roleName, bool ascending, QString fileName, QString compareFunctionName) override;
    void SortByRoleByScriptFunction(int role, bool ascending, QString fileName, QString compareFunctionName) override;
    void SortByRoleByScriptFunction(const QString& roleName, bool ascending, QString fileName, QString compareFunctionName) override;
    void SortByRules(const QVariantList& rules, int flag = 0) override;
    void MoveRow(int sourceRowIndex, int destinationRowIndex) override;
    QVariantMap get(int index) override;
    void clear() override;
    bool InsertItem(int row, XOLATreeItem* item) override;
    bool AppendItem(XOLATreeItem* item) override;
    bool AppendItemsList(QList<XOLATreeItem*> itemList) override;
    bool PrependItem(XOLATreeItem* item) override;
    bool PrependItemsList(QList<XOLATreeItem*> itemList) override;
    bool ReplaceItemsList(QList<XOLATreeItem*> itemList) override;
    QObject* FindItem(int row) const override;
    QObject* FindItem(const QString& id, bool includeChildModel = false) const override;
    void RemoveAll() override;
    bool RemoveOne(const QString& id) override;
    bool Remove(const QStringList& idList) override;
    bool Remove(int rowH, int rowT) override;
    int FirstPartialModelRow() const override;
    void SetFirstPartialModelRow(int row) override;
    void ClearAllSourceContainer() override;
    QObject* GetGroupModel(int role, bool keepSortWithSource = false) override;
    QObject* GetGroupModel(const QString& roleName, bool keepSortWithSource = false) override;
    bool UpdateGroupRole(int role) override;
    bool UpdateGroupRole(const QString& roleName) override;
    QObject* GetFilterModel(QVariantList filterRules = QVariantList(), bool orAllRules = true, int newItemPos = 0) override;
    bool UpdateFilterRules(QVariantList filterRules = QVariantList(), bool orAllRules = true) override;
    QObject* GetFilterModelByUserDefinedRules(QVariant filterRules = QVariant(), int newItemPos = 0) override;
    bool UpdateUserDefinedFilterRules(QVariant filterRules = QVariant()) override;
    QObject* GetPagingModel(uint numPerPage) override;
    int page() const override;
    void setPage(int page) override;
    int totalPage() const override;
    QList<XOLATreeItem*>* GetModelItemList() override;

    // Host-side building blocks (not routed across threads, not visible to QML).
    bool ReplaceItemsListEx(QList<XOLATreeItem*> itemList);
    void CopyItem(XOLATreeItem* source, XOLATreeItem* destination);
    void HandleDuplicatedItem(XOLATreeItem* source, XOLATreeItem* destination);
    void KeepSortingCheck();
    void RemoveOne(XOLATreeItem* item);

    //! The option bits given at construction. (The item flags of an index stay
    //! reachable under the same name.)
    int flags() const;
    using IXOLATreeModel::flags;
    //! The keep-sorting mode in force (a SortFlagColne value) and its rules.
    int sortFlag() const;
    QVariantList sortRules() const;

public slots:
    void EmitValueChange();

protected:
    // Everything the model holds lives behind this pointer, so that the layout
    // hosts compile against stays the same when the model's state changes.
    // Derived views of the library reach their rows through it.
    const std::unique_ptr<XOLATreeModelPrivate> d_ptr;

private:
    Q_DISABLE_COPY(XOLATreeModel)
};

extern "C" {
//! Creates a model with the full constructor; false (and *model untouched) on any failure.
XOLATREEMODEL_EXPORT bool CreateXOLATreeModel(IXOLATreeModel** model, QObject* parent,
                                              const QHash<int, QByteArray>& roleNames, int flags,
                                              PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc);
//! Deletes a model made by CreateXOLATreeModel and nulls the caller's pointer.
XOLATREEMODEL_EXPORT bool DeleteXOLATreeModel(IXOLATreeModel** model);
}

#endif // XOLATREEMODEL_H
