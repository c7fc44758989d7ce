#ifndef XOLATREEMODEL_H
#define XOLATREEMODEL_H

/*!
 * \file XOLATreeModel.h
 * XOLATreeModel, the library's list model, and the C entry points
 * CreateXOLATreeModel() and DeleteXOLATreeModel(). The header a host includes.
 */

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
 *
 * \par Making one
 * Hosts make models with CreateXOLATreeModel() (or the full constructor) on
 * the thread that will own them, fill them from C++ and hand them to QML:
 * \code
 * #include <XOLATreeModel.h>
 *
 * IXOLATreeModel* model = nullptr;
 * if (!CreateXOLATreeModel(&model, nullptr, {}, XOLATreeModel::MergeDuplicatesOption, nullptr, nullptr))
 *     return 1;
 * model->AppendItemsList({new XOLATreeItem("a", "Alpha"), new XOLATreeItem("b", "Beta")});
 * engine.rootContext()->setContextProperty("treeModel", model);
 * // ... when the QML that shows it is gone
 * DeleteXOLATreeModel(&model);
 * \endcode
 * QML documents import the type "IXOLATreeModel" from the installed module
 * com.xolasys.ixolatreemodel 1.0. Without the module on the import path, the
 * first model made registers the type, so make one before loading QML that
 * imports the module.
 *
 * \par Option bits
 * See #Option and \ref behaviour_notes for their effects on each operation.
 */
class XOLATREEMODEL_EXPORT XOLATreeModel : public IXOLATreeModel
{
    Q_OBJECT

public:
    //! The option bits of the flags argument; combine them with |.
    enum Option {
        /*!
         * 1: the model gets JavaScript ownership, so a QML engine that holds
         * the only reference to it may delete it (a model with a QObject parent
         * is never collected). Without it the model has C++ ownership.
         */
        JavaScriptOwnershipOption = 1,
        /*!
         * 2: removed items, and their child models, are left alive for the
         * caller, also when the model is deleted: every item it ever listed is
         * the caller's to delete. The model watches the items it lists and drops
         * the rows of one that is deleted elsewhere. It does not sort child
         * models recursively (they belong to the host), and a range removal
         * reports no ids (see IXOLATreeModel::Remove(int, int)).
         */
        KeepRemovedItemsOption = 2,
        /*!
         * 4: an item whose id is already listed is merged into the listed one
         * by AppendItem(), PrependItem() and the bulk loaders (its data copied,
         * the offered item deleted) and refused by InsertItem(). Without it a
         * model lists items of equal ids side by side.
         */
        MergeDuplicatesOption = 4
    };

    //! Used when QML instantiates the registered type; a limited model without
    //! role names, partial view or cross-thread routing.
    /*!
     * Without role names, QML delegates and get() see no roles; hosts make their
     * models with CreateXOLATreeModel() or the full constructor instead.
     */
    XOLATreeModel();
    /*!
     * Makes a model on the calling thread, which becomes the model's thread.
     * \param parent the QObject parent, or null
     * \param roleNames the role-name table, or an empty table for the defaults
     *        {257: "idRole", 258: "nameRole", 259: "childModelRole"}. A table
     *        given replaces the defaults, so it names those three roles too.
     *        Names are what QML delegates, get(), filter rules and the by-name
     *        sorts use; a name given to several roles stands for the
     *        lowest-numbered one.
     * \param flags the option bits (#Option)
     * \param copyItemFunc how a duplicate's data is copied when merging (option
     *        4), or null for CopyItem()
     * \param matchItemFunc the match function of GetFilterModelByUserDefinedRules()
     *        views, or null
     */
    XOLATreeModel(QObject* parent, const QHash<int, QByteArray>& roleNames, int flags,
                  PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc);
    /*!
     * Removes every row first, with RemoveAll()'s notices, so that views and
     * QML see the rows go; the items are deleted later unless option 2 is set.
     * Views made of the model stop following it and stay empty.
     */
    ~XOLATreeModel() override;

    // QAbstractItemModel
    /*!
     * The number of rows; the parent is ignored (the model is a list, and its
     * tree lives in the child models of the items).
     * \param parent ignored
     */
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /*!
     * The item's value of a role (XOLATreeItem::getData(int) const), or an
     * invalid QVariant outside the rows. Views answer from the source's items;
     * a filter view answers #XOLATreeItem::ChildModelRole with a filter view of
     * the child model.
     * \param index the row
     * \param role the role number
     */
    QVariant data(const QModelIndex& index, int role) const override;
    //! The role-name table given at construction (or the defaults); views use their source's.
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

    // Host-side building blocks, not visible to QML. Only ReplaceItemsListEx is
    // carried across threads.
    /*!
     * Swaps the rows for a new list in place, lighter than ReplaceItemsList():
     * the old items (and their child models) are deleted at once, except those
     * also in the new list and except with option 2; null entries are dropped;
     * the new items are listed as they are, without duplicate merging,
     * without keep-sorting and without connecting their valueChanged()
     * (their later changes are not reported by the model).
     *
     * The notices follow the change: the difference in count is announced as
     * rows removed from or inserted at the end, then rowCountChanged() when the
     * count changed, then dataChanged() over all rows. Filter views drop the
     * deleted items as they go and take the new ones from that dataChanged().
     *
     * May be called from any thread, as ReplaceItemsList(); the other
     * building blocks below belong on the model's thread.
     * \param itemList the new items
     * \return true
     */
    bool ReplaceItemsListEx(QList<XOLATreeItem*> itemList);
    /*!
     * The default merge of a duplicate: for every role of roleNames(), sets the
     * destination's value to the source's (XOLATreeItem::setData()). Null
     * arguments do nothing.
     * \param source the item whose data is copied
     * \param destination the item that receives it
     */
    void CopyItem(XOLATreeItem* source, XOLATreeItem* destination);
    /*!
     * Merges a duplicate: the copy function given at construction, or
     * CopyItem() without one. Null arguments do nothing.
     * \param source the offered item
     * \param destination the listed item of the same id
     */
    void HandleDuplicatedItem(XOLATreeItem* source, XOLATreeItem* destination);
    //! Re-sorts with the stored rules and flag when keep-sorting is on (SortByRules()); otherwise does nothing.
    void KeepSortingCheck();
    /*!
     * Takes the row of one item object out, with rowsAboutToBeRemoved() and
     * rowsRemoved() only (no itemsRemoved(), no rowCountChanged()), and
     * returns the item to the caller undeleted. Its child model is disposed of
     * unless option 2 is set. An item the model does not list is left alone.
     * \param item the item to take out
     */
    void RemoveOne(XOLATreeItem* item);

    //! The option bits given at construction. (The item flags of an index stay
    //! reachable under the same name.)
    int flags() const;
    using IXOLATreeModel::flags;
    //! The keep-sorting mode in force (a SortFlagColne value) and its rules.
    /*!
     * None after SortByRole() or SortByRules() with None; KeepSorting after
     * SortByRoleAndKeep(); the flag given to SortByRules() otherwise. The
     * function sorts leave it as it was.
     */
    int sortFlag() const;
    //! The rules of the last SortByRules() or SortByRoleAndKeep(), used by every keep-sorting re-sort.
    QVariantList sortRules() const;

public slots:
    /*!
     * Sends dataChanged() for the row of the item that sent the signal this
     * slot is connected to; nothing when the sender is not listed or there is
     * none. The model connects every item's XOLATreeItem::valueChanged() this
     * way itself; hosts may connect other signals of their items to it.
     */
    void EmitValueChange();

protected:
    // Everything the model holds lives behind this pointer, so that the layout
    // hosts compile against stays the same when the model's state changes.
    // Derived views of the library reach their rows through it.
    //! The model's state (rows, options, keep-sorting, window), private to the library.
    const std::unique_ptr<XOLATreeModelPrivate> d_ptr;

private:
    Q_DISABLE_COPY(XOLATreeModel)
};

extern "C" {
//! Creates a model with the full constructor; false (and *model untouched) on any failure.
/*!
 * The entry point hosts use to make a model: nothing is thrown across it. The
 * model lives on the calling thread.
 * \param model receives the new model; null makes the call fail
 * \param parent the QObject parent, or null (then delete it with DeleteXOLATreeModel())
 * \param roleNames the role-name table, or an empty table for idRole, nameRole
 *        and childModelRole (see XOLATreeModel::XOLATreeModel())
 * \param flags the option bits (XOLATreeModel::Option)
 * \param copyItemFunc how duplicates are merged (option 4), or null
 * \param matchItemFunc the match function of predicate filter views, or null
 * \return true when *model holds the new model
 * \code
 * QHash<int, QByteArray> roles{{XOLATreeItem::IdRole, "idRole"}, {XOLATreeItem::NameRole, "nameRole"},
 *                              {XOLATreeItem::ChildModelRole, "childModelRole"},
 *                              {FileItem::SizeRole, "size"}, {FileItem::SuffixRole, "suffix"}};
 * IXOLATreeModel* files = nullptr;
 * CreateXOLATreeModel(&files, this, roles, XOLATreeModel::MergeDuplicatesOption, nullptr, atLeast);
 * \endcode
 */
XOLATREEMODEL_EXPORT bool CreateXOLATreeModel(IXOLATreeModel** model, QObject* parent,
                                              const QHash<int, QByteArray>& roleNames, int flags,
                                              PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc);
//! Deletes a model made by CreateXOLATreeModel and nulls the caller's pointer.
/*!
 * The model removes its rows first (see XOLATreeModel::~XOLATreeModel()).
 * Call it on the model's thread.
 * \param model the caller's pointer to the model
 * \return false when model or *model is null
 */
XOLATREEMODEL_EXPORT bool DeleteXOLATreeModel(IXOLATreeModel** model);
}

#endif // XOLATREEMODEL_H
