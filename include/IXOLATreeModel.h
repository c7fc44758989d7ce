#ifndef IXOLATREEMODEL_H
#define IXOLATREEMODEL_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <memory>

class IXOLATreeModelPrivate;
class XOLATreeItem;

/*!
 * The model interface. Every model operation is a virtual function so that a
 * derived view's override takes effect everywhere, also when one operation
 * calls another (FindItemValue calls FindItem, clear calls RemoveAll...).
 *
 * The order of the virtual operations is part of the binary interface that
 * hosts compile against: new operations go at the end.
 */
class XOLATREEMODEL_EXPORT IXOLATreeModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int firstPartialModelRow READ FirstPartialModelRow WRITE SetFirstPartialModelRow NOTIFY firstPartialModelRowChanged)
    Q_PROPERTY(int count READ rowCount NOTIFY rowCountChanged)
    Q_PROPERTY(int page READ page WRITE setPage NOTIFY pageChanged)
    Q_PROPERTY(int totalPage READ totalPage NOTIFY totalPageChanged)

public:
    // The enum names are spelt this way on purpose: QML documents use them.
    enum FilterRuleColne { Eq = 0, Ne = 1, Ge = 2, Gt = 3, Le = 4, Lt = 5, SubStr = 6, InsensitiveSubStr = 7 };
    Q_ENUM(FilterRuleColne)
    enum SortFlagColne { None = 0, KeepSorting = 1, RecursiveKeepSorting = 2 };
    Q_ENUM(SortFlagColne)
    enum NewItemAddedPosition { POS_TAIL = 0, POS_HEAD = 1 };
    Q_ENUM(NewItemAddedPosition)

    explicit IXOLATreeModel(QObject* parent = nullptr);
    ~IXOLATreeModel() override;

    /* 1 */ Q_INVOKABLE virtual QString FindItemID(int row) const = 0;
    /* 2 */ Q_INVOKABLE virtual int FindItemRow(const QString& id) const = 0;
    /* 3 */ Q_INVOKABLE virtual QVariant FindItemValue(int row, int role) const = 0;
    /* 4 */ Q_INVOKABLE virtual QVariant FindItemValue(int row, const QString& roleName) const = 0;
    /* 5 */ Q_INVOKABLE virtual QVariant FindItemValue(const QString& id, int role) const = 0;
    /* 6 */ Q_INVOKABLE virtual QVariant FindItemValue(const QString& id, const QString& roleName) const = 0;
    /* 7 */ Q_INVOKABLE virtual QVariant FindItemValueEx(const QString& id, int role, bool includeChildModel) const = 0;
    /* 8 */ Q_INVOKABLE virtual QVariant FindItemValueEx(const QString& id, const QString& roleName, bool includeChildModel) const = 0;
    /* 9 */ Q_INVOKABLE virtual void GetAllIDs(QList<QString>& ids, bool includeChildModel) = 0;
    /* 10 */ Q_INVOKABLE virtual void SetPartialModelCount(int count) = 0;
    /* 11 */ Q_INVOKABLE virtual QObject* GetPartialModel(int count) = 0;
    /* 12 */ Q_INVOKABLE virtual void SortByRole(int role, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /* 13 */ Q_INVOKABLE virtual void SortByRole(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /* 14 */ Q_INVOKABLE virtual void SortByRoleAndKeep(int role, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /* 15 */ Q_INVOKABLE virtual void SortByRoleAndKeep(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /* 16 */ Q_INVOKABLE virtual void SortByRoleByQMLFunction(int role, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /* 17 */ Q_INVOKABLE virtual void SortByRoleByQMLFunction(const QString& roleName, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /* 18 */ Q_INVOKABLE virtual void SortByRoleByScriptFunction(int role, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /* 19 */ Q_INVOKABLE virtual void SortByRoleByScriptFunction(const QString& roleName, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /* 20 */ Q_INVOKABLE virtual void SortByRules(const QVariantList& rules, int flag = 0) = 0;
    /* 21 */ Q_INVOKABLE virtual void MoveRow(int sourceRowIndex, int destinationRowIndex) = 0;
    /* 22 */ Q_INVOKABLE virtual QVariantMap get(int index) = 0;
    /* 23 */ Q_INVOKABLE virtual void clear() = 0;
    /* 24 */ virtual bool InsertItem(int row, XOLATreeItem* item) = 0;
    /* 25 */ virtual bool AppendItem(XOLATreeItem* item) = 0;
    /* 26 */ virtual bool AppendItemsList(QList<XOLATreeItem*> itemList) = 0;
    /* 27 */ virtual bool PrependItem(XOLATreeItem* item) = 0;
    /* 28 */ virtual bool PrependItemsList(QList<XOLATreeItem*> itemList) = 0;
    /* 29 */ virtual bool ReplaceItemsList(QList<XOLATreeItem*> itemList) = 0;
    /* 30 */ Q_INVOKABLE virtual QObject* FindItem(int row) const = 0;
    /* 31 */ Q_INVOKABLE virtual QObject* FindItem(const QString& id, bool includeChildModel = false) const = 0;
    /* 32 */ Q_INVOKABLE virtual void RemoveAll() = 0;
    /* 33 */ Q_INVOKABLE virtual bool RemoveOne(const QString& id) = 0;
    /* 34 */ Q_INVOKABLE virtual bool Remove(const QStringList& idList) = 0;
    /* 35 */ Q_INVOKABLE virtual bool Remove(int rowH, int rowT) = 0;
    /* 36 */ virtual int FirstPartialModelRow() const = 0;
    /* 37 */ virtual void SetFirstPartialModelRow(int row) = 0;
    /* 38 */ virtual void ClearAllSourceContainer() = 0;
    /* 39 */ Q_INVOKABLE virtual QObject* GetGroupModel(int role, bool keepSortWithSource = false) = 0;
    /* 40 */ Q_INVOKABLE virtual QObject* GetGroupModel(const QString& roleName, bool keepSortWithSource = false) = 0;
    /* 41 */ Q_INVOKABLE virtual bool UpdateGroupRole(int role) = 0;
    /* 42 */ Q_INVOKABLE virtual bool UpdateGroupRole(const QString& roleName) = 0;
    /* 43 */ Q_INVOKABLE virtual QObject* GetFilterModel(QVariantList filterRules = QVariantList(), bool orAllRules = true, int newItemPos = 0) = 0;
    /* 44 */ Q_INVOKABLE virtual bool UpdateFilterRules(QVariantList filterRules = QVariantList(), bool orAllRules = true) = 0;
    /* 45 */ Q_INVOKABLE virtual QObject* GetFilterModelByUserDefinedRules(QVariant filterRules = QVariant(), int newItemPos = 0) = 0;
    /* 46 */ Q_INVOKABLE virtual bool UpdateUserDefinedFilterRules(QVariant filterRules = QVariant()) = 0;
    /* 47 */ Q_INVOKABLE virtual QObject* GetPagingModel(uint numPerPage) = 0;
    /* 48 */ virtual int page() const = 0;
    /* 49 */ virtual void setPage(int page) = 0;
    /* 50 */ virtual int totalPage() const = 0;
    /* 51 */ virtual QList<XOLATreeItem*>* GetModelItemList() = 0;

signals:
    void rowCountChanged();
    void firstPartialModelRowChanged();
    void itemsRemoved(QStringList idList);
    void allItemRemoved();
    void filterModelChanged();
    void pageChanged(int page);
    void totalPageChanged(int totalPage);

private:
    Q_DISABLE_COPY(IXOLATreeModel)
    // The interface keeps no state today. The pointer reserves the one slot any
    // later state will live behind, so that adding it does not move the
    // members of classes derived from the interface.
    const std::unique_ptr<IXOLATreeModelPrivate> d_ptr;
};

#endif // IXOLATREEMODEL_H
