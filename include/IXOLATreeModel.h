#ifndef IXOLATREEMODEL_H
#define IXOLATREEMODEL_H

/*!
 * \file IXOLATreeModel.h
 * IXOLATreeModel, the interface of the model and of every view it makes.
 */

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
 *
 * \par What QML sees
 * The invokable operations, the properties #count, #firstPartialModelRow,
 * #page and #totalPage, the signals and the enums (as
 * `IXOLATreeModel.InsensitiveSubStr`, `IXOLATreeModel.KeepSorting`,
 * `IXOLATreeModel.POS_HEAD` once the document imports
 * `com.xolasys.ixolatreemodel 1.0`). Rows are filled from C++: InsertItem(),
 * AppendItem(), AppendItemsList(), PrependItem(), PrependItemsList() and
 * ReplaceItemsList() are not invokable.
 *
 * \par Views
 * GetFilterModel(), GetFilterModelByUserDefinedRules(), GetGroupModel() and
 * GetPagingModel() each return a new view, itself an IXOLATreeModel (call the
 * same operations on it, from QML or C++), that follows its source live
 * through the source's signals. A view has no QObject parent and JavaScript
 * ownership: QML collects it once nothing refers to it, so keep it in a
 * property; a C++ caller that does not hand it to QML deletes it. A view never
 * deletes the source's items, uses the source's role names, and stays harmless
 * (and stops following) when its source is deleted first. GetPartialModel()
 * is different: it returns the model's one window over itself, which the model
 * owns.
 *
 * \par Threads
 * The model's thread is the thread that made it. Insertions, removals and
 * MoveRow() called from another thread are carried to the model's thread and
 * the caller waits for them, so that thread must run an event loop; the
 * exceptions are listed with each operation and in \ref behaviour_notes.
 * Reading, sorting and the views belong on the model's thread.
 *
 * \par Notices
 * Each operation documents the signals it sends, in order. A few depart from
 * Qt's usual protocol on purpose (a prepend announced at the old end, bulk
 * loads announced after the rows are in, sorts announced as data changes,
 * MoveRow() as a reset); \ref behaviour_notes lists them all.
 */
class XOLATREEMODEL_EXPORT IXOLATreeModel : public QAbstractListModel
{
    Q_OBJECT
    /*!
     * The first source row shown by the model's partial window (see
     * GetPartialModel()). Writing it scrolls the window; the row is clamped to
     * the model's rows (0 on an empty model). firstPartialModelRowChanged() is
     * emitted on every write, also when the row stays the same. A model made by
     * QML has no window and reads 0.
     */
    Q_PROPERTY(int firstPartialModelRow READ FirstPartialModelRow WRITE SetFirstPartialModelRow NOTIFY firstPartialModelRowChanged)
    /*!
     * The number of rows (rowCount()); for a paging view, the rows of the
     * current page. Notified by rowCountChanged().
     */
    Q_PROPERTY(int count READ rowCount NOTIFY rowCountChanged)
    /*!
     * The current page of a paging view (see GetPagingModel()), from 0; a plain
     * model reads -1 and ignores writes. Writes outside 0 to #totalPage - 1 are
     * ignored. Notified by pageChanged().
     */
    Q_PROPERTY(int page READ page WRITE setPage NOTIFY pageChanged)
    /*!
     * The number of pages of a paging view, 0 for an empty source; a plain
     * model reads 0. Read-only; notified by totalPageChanged().
     */
    Q_PROPERTY(int totalPage READ totalPage NOTIFY totalPageChanged)

public:
    // The enum names are spelt this way on purpose: QML documents use them.
    /*!
     * The comparison of a filter rule (the "Rule" key), between the item's
     * value for the rule's role (read by name, see XOLATreeItem::getData(const QString&) const)
     * and the rule's "Value".
     *
     * The six ordering comparisons use the type of the item's value and convert
     * the rule's value to it: numbers compare as numbers, strings by their
     * UTF-16 code units (case matters), dates and times in time order. A value
     * of a type without an order (a list, a map, an invalid value such as that
     * of a role the item does not answer) is equal to everything: Eq, Ge and Le
     * pass, Ne, Gt and Lt fail. A rule naming any other number fails.
     */
    enum FilterRuleColne {
        Eq = 0,               //!< the value equals the rule's value
        Ne = 1,               //!< the value differs from the rule's value
        Ge = 2,               //!< the value is greater than or equal to the rule's value
        Gt = 3,               //!< the value is greater than the rule's value
        Le = 4,               //!< the value is less than or equal to the rule's value
        Lt = 5,               //!< the value is less than the rule's value
        SubStr = 6,           //!< the value's text contains the rule's text, case matters; an empty text is found in every value
        InsensitiveSubStr = 7 //!< the value's text contains the rule's text, case ignored
    };
    Q_ENUM(FilterRuleColne)
    //! The flag of SortByRules(): whether later insertions keep the rows sorted.
    enum SortFlagColne {
        None = 0,                //!< sort once; a model sorted this way stops keeping itself sorted
        KeepSorting = 1,         //!< sort, then re-sort the whole model after every insertion
        RecursiveKeepSorting = 2 //!< as KeepSorting, and the child models of the rows too, recursively
    };
    Q_ENUM(SortFlagColne)
    //! Where a filter view lists source insertions that pass its rules.
    enum NewItemAddedPosition {
        POS_TAIL = 0, //!< at the end of the view
        POS_HEAD = 1  //!< at the front of the view, in source order
    };
    Q_ENUM(NewItemAddedPosition)

    //! For implementations of the interface; hosts make models with CreateXOLATreeModel().
    //! \param parent the QObject parent
    explicit IXOLATreeModel(QObject* parent = nullptr);
    //! Destroys the interface part of a model.
    ~IXOLATreeModel() override;

    /*!
     * The id of the item at a row, or an empty string outside the rows.
     * \param row a row of this model (of the current page, for a paging view)
     */
    /* 1 */ Q_INVOKABLE virtual QString FindItemID(int row) const = 0;
    /*!
     * The first row whose item has the id, or -1. Rows are scanned, so the
     * answer is right also for ids changed after insertion.
     *
     * A paging view answers the position within a page of the item's source
     * row, whichever page holds it (an unknown id gives 4294967295 modulo the
     * page size there); existing hosts rely on both.
     * \param id an item id
     */
    /* 2 */ Q_INVOKABLE virtual int FindItemRow(const QString& id) const = 0;
    /*!
     * A value of the item at a row: XOLATreeItem::getData() of the role, or an
     * invalid QVariant when there is no item there.
     * \param row a row of this model
     * \param role a role number
     */
    /* 3 */ Q_INVOKABLE virtual QVariant FindItemValue(int row, int role) const = 0;
    /*!
     * \overload
     * The value is read by name (XOLATreeItem::getData(const QString&) const):
     * the base item answers only the three fixed names.
     */
    /* 4 */ Q_INVOKABLE virtual QVariant FindItemValue(int row, const QString& roleName) const = 0;
    /*!
     * \overload
     * The item is found by id among this model's own rows (FindItem(const QString&, bool) const);
     * an invalid QVariant when none has it.
     */
    /* 5 */ Q_INVOKABLE virtual QVariant FindItemValue(const QString& id, int role) const = 0;
    /*!
     * \overload
     * By id and role name.
     */
    /* 6 */ Q_INVOKABLE virtual QVariant FindItemValue(const QString& id, const QString& roleName) const = 0;
    /*!
     * A value of the item with an id, looked for in this model and, when asked,
     * in the child models of its rows.
     * \param id an item id
     * \param role a role number
     * \param includeChildModel true to look through the child models too,
     *        depth first in row order: the first match wins
     * \return the value, or an invalid QVariant when no item has the id
     * \code
     * // QML: the size of an entry anywhere below the root
     * var size = tree.FindItemValueEx(path, "size", true)
     * \endcode
     */
    /* 7 */ Q_INVOKABLE virtual QVariant FindItemValueEx(const QString& id, int role, bool includeChildModel) const = 0;
    /*!
     * \overload
     * The value is read by name (XOLATreeItem::getData(const QString&) const).
     */
    /* 8 */ Q_INVOKABLE virtual QVariant FindItemValueEx(const QString& id, const QString& roleName, bool includeChildModel) const = 0;
    /*!
     * Appends the ids of the rows to a list, in row order. Meant for C++
     * callers (QML cannot pass the list by reference).
     * \param ids the list to append to; it is not cleared first
     * \param includeChildModel true to follow each id with those of the item's
     *        child model, recursively (pre-order)
     */
    /* 9 */ Q_INVOKABLE virtual void GetAllIDs(QList<QString>& ids, bool includeChildModel) = 0;
    /*!
     * Sets how many rows the model's partial window shows (see
     * GetPartialModel()). The window announces all its rows as removed and the
     * new ones as inserted, after the change, also when the size stays the same
     * (delegates are made afresh). A count below 1 empties the window. Does
     * nothing on a model made by QML.
     * \param count the window size
     */
    /* 10 */ Q_INVOKABLE virtual void SetPartialModelCount(int count) = 0;
    /*!
     * The model's partial window, sized to count rows (as SetPartialModelCount()).
     *
     * The window is a list model showing at most count consecutive rows of this
     * model, from #firstPartialModelRow on, renumbered from 0. It has the
     * model's role names, a `count` property, `get(row)` (the model's get()
     * of row + first row, in model terms, also past the window's end) and
     * `FindItemRow(id)` (the row in the model). Every call returns the same
     * object, owned by the model: never delete it. The window follows the
     * model: insertions and removals at or before its end reset it, data
     * changes of shown rows are passed on.
     * \param count the number of rows to show
     * \return the window, or null for a model made by QML
     * \code
     * ListView {
     *     model: treeModel.GetPartialModel(20)
     *     delegate: Text { text: nameRole }
     * }
     * Button { text: "Next"; onClicked: treeModel.firstPartialModelRow += 20 }
     * \endcode
     */
    /* 11 */ Q_INVOKABLE virtual QObject* GetPartialModel(int count) = 0;
    /*!
     * Sorts the rows by the value of one role.
     *
     * Without a function the comparison follows the type of the values:
     * numbers as numbers, strings by their UTF-16 code units (so "B" comes
     * before "a"), dates and times in time order; of two values of different
     * types, one is converted to the other's type. Rows without a value for the role go
     * last in their previous order. Equal rows come out in reverse order when
     * ascending and keep their order when descending; see \ref behaviour_notes.
     *
     * The sort ends keep-sorting (sortFlag() becomes None). It is announced
     * as dataChanged() over all rows, and persistent indexes and selections
     * follow their items. An empty model sends nothing.
     * \param role the role whose values are compared
     * \param ascending true for ascending order
     * \param pfLessThan a caller's less-than instead of the built-in comparison
     *        (see #PF_LESS_THAN); C++ only
     */
    /* 12 */ Q_INVOKABLE virtual void SortByRole(int role, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /*!
     * \overload
     * The role is given by name, looked up in the model's role names; an
     * unknown name reads role 0, which no item answers, and leaves the rows as
     * they are.
     * \code
     * treeModel.SortByRole("nameRole", true)   // QML
     * \endcode
     */
    /* 13 */ Q_INVOKABLE virtual void SortByRole(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /*!
     * Sorts as SortByRole(), then keeps the model sorted: every later insertion
     * re-sorts the whole model with the rule {"RoleName": the role's name,
     * "Ascending": ascending}, exactly as SortByRules() with KeepSorting
     * would. The re-sorts use the rule comparison (strings without regard to
     * case), not the caller's function, which is used for this first sort only.
     * A role without a name in the role-name table gives a rule that never
     * orders.
     * \param role the role whose values are compared
     * \param ascending true for ascending order
     * \param pfLessThan a caller's less-than for this sort only; C++ only
     */
    /* 14 */ Q_INVOKABLE virtual void SortByRoleAndKeep(int role, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /*!
     * \overload
     * The role is given by name.
     */
    /* 15 */ Q_INVOKABLE virtual void SortByRoleAndKeep(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan = PF_LESS_THAN()) = 0;
    /*!
     * Sorts the rows by one role with a comparison written in QML.
     *
     * The file is loaded as a QML component in an engine of its own, for this
     * call only, and the named method of its root object decides: it is called
     * with two role values and returns true when the first belongs before the
     * second. In a descending sort its answer is negated. Rows without a value
     * go last. A file that cannot be loaded leaves the built-in comparison of
     * SortByRole(); a missing method (or one that throws) answers false to
     * everything. An empty file name or method name does nothing at all.
     *
     * Announced as dataChanged() over all rows, then layoutChanged() without
     * layoutAboutToBeChanged(); persistent indexes and selections follow their
     * items. Keep-sorting is left as it was.
     * \param role the role whose values are compared
     * \param ascending true for ascending order
     * \param fileName a path or URL of the QML file (`qrc:/...` for a resource)
     * \param compareFunctionName the name of the root object's method
     * \code
     * // CaseInsensitive.qml
     * import QtQml 2.15
     * QtObject {
     *     function less(a, b) { return String(a).toLowerCase() < String(b).toLowerCase() }
     * }
     * \endcode
     * \code
     * files.SortByRoleByQMLFunction("nameRole", true, "qrc:/sorting/CaseInsensitive.qml", "less")
     * \endcode
     */
    /* 16 */ Q_INVOKABLE virtual void SortByRoleByQMLFunction(int role, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /*!
     * \overload
     * The role is given by name.
     */
    /* 17 */ Q_INVOKABLE virtual void SortByRoleByQMLFunction(const QString& roleName, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /*!
     * Sorts the rows by one role with a comparison written in JavaScript.
     *
     * The file is evaluated in a script engine of its own, for this call only,
     * and its global function of the given name decides: called with two role
     * values, it returns true when the first belongs before the second. In a
     * descending sort its answer is negated. Rows without a value go last. A
     * file that cannot be read, an empty name, or a name whose lookup gives an
     * error value does nothing at all; an undefined function, or a script with
     * errors, answers false to everything and the sort goes on, and a function
     * that throws answers with its error object, which counts as true.
     *
     * Announced as dataChanged() over all rows, then layoutChanged() without
     * layoutAboutToBeChanged(), then modelReset() without modelAboutToBeReset()
     * (existing hosts refresh their delegates on it). Persistent indexes stay
     * valid and follow their items; a QItemSelectionModel clears itself on
     * that modelReset().
     * Keep-sorting is left as it was.
     * \param role the role whose values are compared
     * \param ascending true for ascending order
     * \param fileName a path QFile can open (`:/...` for a resource)
     * \param compareFunctionName the name of the global function
     * \code
     * // caseInsensitive.js
     * function less(a, b) { return String(a).toLowerCase() < String(b).toLowerCase(); }
     * \endcode
     * \code
     * files.SortByRoleByScriptFunction("nameRole", true, ":/sorting/caseInsensitive.js", "less")
     * \endcode
     */
    /* 18 */ Q_INVOKABLE virtual void SortByRoleByScriptFunction(int role, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /*!
     * \overload
     * The role is given by name.
     */
    /* 19 */ Q_INVOKABLE virtual void SortByRoleByScriptFunction(const QString& roleName, bool ascending, QString fileName, QString compareFunctionName) = 0;
    /*!
     * Sorts the rows by a list of rules and stores the rules and the flag
     * (XOLATreeModel::sortRules(), XOLATreeModel::sortFlag()).
     *
     * Each rule is a map {"RoleName": name, "Ascending": bool}, the most
     * significant first; a rule without "Ascending" sorts descending, and
     * entries that are not maps, or empty maps, are skipped. The next rule
     * decides where a rule finds the two values equal or one of them missing
     * (an unknown role name reads role 0, so such a rule never decides).
     * Values compare by type, and strings without regard to case (unlike
     * SortByRole()). Rows that tie on every rule come out in reverse order, in
     * both directions, at every call.
     *
     * With KeepSorting every later insertion re-sorts the whole model with the
     * stored rules (one re-sort per call of a bulk loader); with
     * RecursiveKeepSorting the child models of the rows are sorted first, with
     * the same rules and flag, recursively, and again at every insertion into
     * this model (a model made with option 2 leaves its children alone). Any
     * other non-zero flag keeps sorting without the recursion; None stops it.
     *
     * Announced as dataChanged() over all rows (an empty model too, over an
     * empty range of invalid indexes); persistent indexes and selections follow
     * their items. A text given from QML instead of a list reads as the empty
     * list, which reverses the rows.
     * \param rules the rules, most significant first
     * \param flag a SortFlagColne value
     * \code
     * // Folders first, then by name, in every directory of the tree
     * tree.SortByRules([{RoleName: "isDir", Ascending: false},
     *                   {RoleName: "nameRole", Ascending: true}],
     *                  IXOLATreeModel.RecursiveKeepSorting)
     * \endcode
     */
    /* 20 */ Q_INVOKABLE virtual void SortByRules(const QVariantList& rules, int flag = 0) = 0;
    /*!
     * Moves one row to another place. Announced as a reset of the whole model
     * (modelAboutToBeReset(), modelReset()), not as a row move and without
     * rowCountChanged(): persistent indexes are invalidated and selections
     * cleared. Rows outside the model are refused silently.
     *
     * May be called from any thread: carried to the model's thread while the
     * caller waits.
     * \param sourceRowIndex the row to move
     * \param destinationRowIndex the row it will hold
     */
    /* 21 */ Q_INVOKABLE virtual void MoveRow(int sourceRowIndex, int destinationRowIndex) = 0;
    /*!
     * All values of the item at a row, as a map from each role name of the
     * model to XOLATreeItem::getData(const QString&) const of that name; an
     * empty map outside the rows. A model made by QML has no role names and
     * answers an empty map.
     * \param index a row of this model
     * \code
     * var entry = treeModel.get(0)
     * console.log(entry.idRole, entry.nameRole)
     * \endcode
     */
    /* 22 */ Q_INVOKABLE virtual QVariantMap get(int index) = 0;
    //! Removes every row, as RemoveAll().
    /* 23 */ Q_INVOKABLE virtual void clear() = 0;
    /*!
     * Inserts an item at a row; the model takes ownership. Refused (false, the
     * caller keeps the item) for a null item, a row outside 0 to rowCount(),
     * and, with option 4 (merge duplicates), an id the model already lists:
     * unlike the appends, an insertion never merges.
     *
     * Notices: rowsAboutToBeInserted(row, row), rowsInserted(row, row), the
     * keep-sorting re-sort if on (dataChanged() over all rows), rowCountChanged().
     *
     * From another thread the item is appended instead (the row is ignored,
     * and a duplicate is merged as by AppendItem()); the call is carried to the
     * model's thread and the caller waits.
     * \param row the row the item will hold, 0 to rowCount()
     * \param item the item
     * \return true when the item was listed
     */
    /* 24 */ virtual bool InsertItem(int row, XOLATreeItem* item) = 0;
    /*!
     * Appends an item; the model takes ownership. False for a null item.
     *
     * Notices: rowsAboutToBeInserted(n, n), rowsInserted(n, n) (n the old row
     * count), the keep-sorting re-sort if on, rowCountChanged().
     *
     * With option 4 (merge duplicates) an item whose id is already listed is
     * merged instead: its data is copied into the listed item (the model's
     * copy function, or XOLATreeModel::CopyItem()), the offered item is deleted
     * at once, and the model sends dataChanged() for the listed row (after any
     * the copy itself caused), the re-sort if on, and rowCountChanged()
     * although the count is unchanged (hosts re-read the count on every
     * append). The item object that is already listed is refused (false).
     *
     * May be called from any thread: an item made on the calling thread is
     * moved to the model's thread, and the call is carried there while the
     * caller waits.
     * \param item the item
     * \return true when the item was listed or merged
     */
    /* 25 */ virtual bool AppendItem(XOLATreeItem* item) = 0;
    /*!
     * Appends many items at once; the model takes ownership. Null entries are
     * skipped. With option 4, an item whose id is listed, or appears earlier in
     * the list, is merged into that item without a notice of its own and
     * deleted.
     *
     * The rows are put in place first and announced afterwards, in one pair:
     * rowsAboutToBeInserted(first, last) and rowsInserted(first, last) back to
     * back, then the keep-sorting re-sort if on (once for the whole list), then
     * rowCountChanged(); nothing but the re-sort when no row was added.
     * Always returns true.
     *
     * May be called from any thread, as AppendItem(). One call with many items
     * costs far less than many calls of AppendItem(), above all with
     * keep-sorting on.
     * \param itemList the items, in the order of their new rows
     * \return true
     */
    /* 26 */ virtual bool AppendItemsList(QList<XOLATreeItem*> itemList) = 0;
    /*!
     * Puts an item at row 0; the model takes ownership. False for a null item.
     *
     * The insertion is announced at the old end of the list:
     * rowsAboutToBeInserted(n, n) and rowsInserted(n, n) with n the old row
     * count, while the item already is row 0; then the keep-sorting re-sort if
     * on, and rowCountChanged(). Existing hosts rely on this; a view reading
     * row n during the notice finds the old last item there.
     *
     * With option 4 a duplicate id is merged as by AppendItem(), but without
     * rowCountChanged().
     *
     * From another thread: refused (false); the caller keeps the item and
     * nothing is sent.
     * \param item the item
     * \return true when the item was listed or merged
     */
    /* 27 */ virtual bool PrependItem(XOLATreeItem* item) = 0;
    /*!
     * Puts many items at the front, in the list's order; the model takes
     * ownership. Null entries are skipped. With option 4 duplicates are merged
     * quietly; of two equal ids in the list, the later one is listed.
     *
     * The rows are put in place first and announced afterwards:
     * rowsAboutToBeInserted(0, k - 1) and rowsInserted(0, k - 1) back to back,
     * the keep-sorting re-sort if on, rowCountChanged().
     *
     * From another thread: refused (false); the caller keeps the items.
     * \param itemList the items, in the order of their new rows
     * \return true, or false when called from another thread
     */
    /* 28 */ virtual bool PrependItemsList(QList<XOLATreeItem*> itemList) = 0;
    /*!
     * Replaces every row: RemoveAll() with its notices, then AppendItemsList()
     * with its own. May be called from any thread, as AppendItem().
     * \param itemList the new items
     * \return true
     */
    /* 29 */ virtual bool ReplaceItemsList(QList<XOLATreeItem*> itemList) = 0;
    /*!
     * The item at a row (an XOLATreeItem), or null outside the rows.
     * \param row a row of this model (of the current page, for a paging view)
     */
    /* 30 */ Q_INVOKABLE virtual QObject* FindItem(int row) const = 0;
    /*!
     * The item with an id (an XOLATreeItem), or null. The model's id index
     * answers: with several items of one id (possible without option 4) it
     * names the newest of them, where FindItemRow() names the first row. A
     * paging view looks through its whole source.
     * \param id an item id
     * \param includeChildModel true to look through the child models of the
     *        rows too, depth first in row order
     */
    /* 31 */ Q_INVOKABLE virtual QObject* FindItem(const QString& id, bool includeChildModel = false) const = 0;
    /*!
     * Removes every row. The items are deleted later (deleteLater()), each
     * child model emptied first and deleted later too, unless the model was
     * made with option 2 (keep removed items), which leaves all of them to the
     * caller.
     *
     * Notices: rowsAboutToBeRemoved(0, n - 1), rowsRemoved(0, n - 1),
     * allItemRemoved(), rowCountChanged(); nothing on an empty model.
     *
     * May be called from any thread: carried to the model's thread while the
     * caller waits.
     */
    /* 32 */ Q_INVOKABLE virtual void RemoveAll() = 0;
    /*!
     * Removes the row of the item with an id. Its child model is emptied first
     * (so views of it see its rows go while the item is still listed) and the
     * item and child model are deleted later, unless option 2 is set.
     *
     * Notices: rowsAboutToBeRemoved(r, r), rowsRemoved(r, r),
     * itemsRemoved([id]), rowCountChanged().
     *
     * May be called from any thread: carried to the model's thread while the
     * caller waits.
     * \param id the item's id
     * \return false when no listed item has the id
     */
    /* 33 */ Q_INVOKABLE virtual bool RemoveOne(const QString& id) = 0;
    /*!
     * Removes the rows of several ids and hands their items back to the caller,
     * whatever the options say: the items are not deleted (existing hosts move
     * them to another model) and no longer report to this model. Their child
     * models are disposed of unless option 2 is set. Unknown ids are skipped.
     *
     * Notices: rowsAboutToBeRemoved(r, r) and rowsRemoved(r, r) for each item,
     * then itemsRemoved() with the removed ids (when there were any), then
     * rowCountChanged() (always, also when nothing was removed).
     *
     * Not carried across threads: call it on the model's thread.
     * \param idList the ids
     * \return true
     */
    /* 34 */ Q_INVOKABLE virtual bool Remove(const QStringList& idList) = 0;
    /*!
     * Removes the rows rowH to rowT. Refused (false, nothing sent) unless the
     * range lies wholly inside the rows. The items and their child models are
     * disposed of as by RemoveAll().
     *
     * Notices: rowsAboutToBeRemoved(rowH, rowT), rowsRemoved(rowH, rowT),
     * itemsRemoved() with their ids, rowCountChanged(). With option 2 no ids
     * are reported and the removed items stay in the id index (FindItem() by
     * id still finds them), kept as is for existing hosts; filter views of such
     * a model, which follow removals by id, keep listing them.
     *
     * May be called from any thread: carried to the model's thread while the
     * caller waits.
     * \param rowH the first row to remove
     * \param rowT the last row to remove
     * \return true when the rows were removed
     */
    /* 35 */ Q_INVOKABLE virtual bool Remove(int rowH, int rowT) = 0;
    //! The first row shown by the partial window; property #firstPartialModelRow.
    /* 36 */ virtual int FirstPartialModelRow() const = 0;
    /*!
     * Scrolls the partial window; property #firstPartialModelRow. The row is
     * clamped to 0 to rowCount() - 1. The window sends dataChanged() over its
     * rows and then brings its announced count in line (rows announced as
     * inserted or removed after the change, rowCountChanged() of the window);
     * the model emits firstPartialModelRowChanged() in every case.
     * \param row the first model row to show
     */
    /* 37 */ virtual void SetFirstPartialModelRow(int row) = 0;
    /*!
     * Deletes every item and every child model at once (recursively through
     * child models), whatever option 2 says, and empties the model without a
     * notice of its own. Meant for tearing a tree down once nothing shows it;
     * delegates bound to the model are not told. Views listing the items drop
     * them as the items are deleted.
     */
    /* 38 */ virtual void ClearAllSourceContainer() = 0;
    /*!
     * A new group view of this model: one row per distinct value of a role.
     *
     * Each row is a group item whose id and name are the value's text (an
     * empty or missing value makes the group ""), and whose child model
     * (#XOLATreeItem::ChildModelRole, "childModelRole" in QML) lists this
     * model's own items of that group, in source order. Groups appear in the
     * order of first appearance of their value.
     *
     * Without keepSortWithSource the view follows the source item by item:
     * new items join the end of their group, new groups the end of the view,
     * and an item whose value changes moves to the end of its new group; a
     * group whose last member leaves goes. It records each item's source row
     * as it arrives and does not renumber those records when rows are inserted
     * or removed in the middle or the source is sorted, so make the view with
     * keepSortWithSource set for such sources: it then rebuilds all groups on
     * every change of the source (its rows removed and inserted again), and
     * the members follow the source's order.
     * \param role the role to group by
     * \param keepSortWithSource true to rebuild on every source change
     * \return the view (JavaScript ownership, see the class notes on views)
     * \code
     * ListView {
     *     model: files.GetGroupModel("suffix", true)
     *     delegate: Column {
     *         Text { text: nameRole + " (" + members.count + ")" }
     *         ListView { id: members; model: childModelRole; height: contentHeight
     *                    delegate: Text { text: nameRole } }
     *     }
     * }
     * \endcode
     */
    /* 39 */ Q_INVOKABLE virtual QObject* GetGroupModel(int role, bool keepSortWithSource = false) = 0;
    /*!
     * \overload
     * The role is given by name; an unknown name groups by role 0 (every item
     * in the group "").
     */
    /* 40 */ Q_INVOKABLE virtual QObject* GetGroupModel(const QString& roleName, bool keepSortWithSource = false) = 0;
    /*!
     * On a group view: groups by another role, rebuilding the view (nothing
     * happens for the role already in use). A plain model, or a view of
     * another kind, answers false.
     * \param role the new role
     * \return true on a group view whose source still exists
     */
    /* 41 */ Q_INVOKABLE virtual bool UpdateGroupRole(int role) = 0;
    /*!
     * \overload
     * The role is given by name; an unknown name groups by role 0.
     */
    /* 42 */ Q_INVOKABLE virtual bool UpdateGroupRole(const QString& roleName) = 0;
    /*!
     * A new filter view of this model: the items that pass the rules, the same
     * objects as the source's, in source order.
     *
     * Each entry of the rule list is a map in one of two formats:
     * - one comparison: {"RoleName": name, "Rule": a FilterRuleColne value,
     *   "Value": operand}; a map with the key "Rule" is read this way whatever
     *   else it holds;
     * - several comparisons on one role: {"RoleName": name, "Rules":
     *   [{"Rule": ..., "Value": ...}, ...], "OrAllRules": bool}, which passes
     *   when any (OrAllRules true) or every (false) comparison passes; an empty
     *   "Rules" list fails.
     *
     * Values are read by role name (XOLATreeItem::getData(const QString&) const).
     * An empty rule list passes every item. An item whose own values fail also
     * passes while any item of its child model passes, recursively, so the
     * parents of matches stay visible; reading "childModelRole" from the view
     * gives a new filter view of the child model with the same rules (a new one
     * at each read, collected by QML).
     *
     * The view follows the source: rows inserted into the source that pass are
     * listed at the position newItemPos names, items whose data changes enter
     * (at the end) or leave, removals by id and RemoveAll() are followed, and
     * the source's modelReset() and layoutChanged() are passed on. Its rows keep the order
     * they had at the last rebuild; sorting the source does not reorder them.
     * See \ref behaviour_notes for a source's single prepend.
     * \param filterRules the rules (a list of maps)
     * \param orAllRules true: an item passes when any entry passes; false: when every entry passes
     * \param newItemPos where source insertions that pass go (a
     *        NewItemAddedPosition value); any other value leaves them out
     * \return the view (JavaScript ownership, see the class notes on views)
     * \code
     * // Names containing "ab" (either case) or exactly "Carl"
     * property var view: treeModel.GetFilterModel([
     *     {RoleName: "nameRole", Rule: IXOLATreeModel.InsensitiveSubStr, Value: "ab"},
     *     {RoleName: "nameRole", OrAllRules: true,
     *      Rules: [{Rule: IXOLATreeModel.Eq, Value: "Carl"}]}
     * ], true, IXOLATreeModel.POS_TAIL)
     * \endcode
     */
    /* 43 */ Q_INVOKABLE virtual QObject* GetFilterModel(QVariantList filterRules = QVariantList(), bool orAllRules = true, int newItemPos = 0) = 0;
    /*!
     * On a filter view: changes the rules. The same rules and flag again do
     * nothing (hosts call this from bindings). Otherwise the view is rebuilt:
     * RemoveAll()'s notices, the passing rows announced after they are in,
     * rowCountChanged(), then filterModelChanged(). Any other model answers false.
     * \param filterRules the new rules, in the formats of GetFilterModel()
     * \param orAllRules true: any entry passes; false: every entry must pass
     * \return true on a filter view
     */
    /* 44 */ Q_INVOKABLE virtual bool UpdateFilterRules(QVariantList filterRules = QVariantList(), bool orAllRules = true) = 0;
    /*!
     * A new filter view decided by the host's match function (the #PF_MATCH_ITEM
     * given when the model was made) with a rule value. The function alone
     * decides for each row; child models are not searched. A model made
     * without a match function gives a view of every item.
     *
     * The value reaches the function plainly: a JavaScript object from QML as a
     * QVariantMap, an array as a QVariantList, a function unchanged (a
     * QJSValue), and anything else as it was given. The view follows its source
     * as GetFilterModel()'s does.
     * \param filterRules the rule value handed to the match function
     * \param newItemPos where source insertions that pass go (a NewItemAddedPosition value)
     * \return the view (JavaScript ownership, see the class notes on views)
     * \code
     * property var bigFiles: files.GetFilterModelByUserDefinedRules({min: 100 * 1024})
     * \endcode
     */
    /* 45 */ Q_INVOKABLE virtual QObject* GetFilterModelByUserDefinedRules(QVariant filterRules = QVariant(), int newItemPos = 0) = 0;
    /*!
     * On a view made by GetFilterModelByUserDefinedRules(): changes the rule
     * value. An equal value (also an equal JavaScript object given anew) does
     * nothing; otherwise the view is rebuilt as by UpdateFilterRules(). A plain
     * model answers false.
     * \param filterRules the new rule value
     * \return true on a filter view
     */
    /* 46 */ Q_INVOKABLE virtual bool UpdateUserDefinedFilterRules(QVariant filterRules = QVariant()) = 0;
    /*!
     * A new paging view of this model: page p shows source rows
     * numPerPage * p to numPerPage * (p + 1) - 1, renumbered from 0.
     *
     * The view keeps no rows of its own; it reads the source's, and its
     * properties #page and #totalPage pick and count the pages. Row lookups
     * (FindItem(int) const, FindItemID(), FindItemValue() by row) are within the
     * page; lookups by id look through the whole source. Changing the page
     * sends pageChanged(), dataChanged() over the new page's rows while the old
     * count is still announced, then brings the count in line (rows announced
     * as inserted or removed after the change, rowCountChanged()). Source
     * insertions and removals on or before the page do the same; later ones
     * only change #totalPage. A page that no longer exists moves the view to
     * the last page.
     * \param numPerPage rows per page; 0 puts every row on one page
     * \return the view (JavaScript ownership, see the class notes on views)
     * \code
     * property var pages: files.GetPagingModel(50)
     * ListView { model: pages; delegate: Text { text: nameRole } }
     * Button { text: "Next"; enabled: pages.page < pages.totalPage - 1; onClicked: pages.page += 1 }
     * \endcode
     */
    /* 47 */ Q_INVOKABLE virtual QObject* GetPagingModel(uint numPerPage) = 0;
    //! The current page of a paging view; -1 on a plain model. Property #page.
    /* 48 */ virtual int page() const = 0;
    /*!
     * Moves a paging view to another page; property #page. Ignored for the
     * current page, a negative page or one past the last; a plain model ignores
     * every call.
     * \param page the new page, from 0
     */
    /* 49 */ virtual void setPage(int page) = 0;
    //! The number of pages of a paging view; 0 on a plain model. Property #totalPage.
    /* 50 */ virtual int totalPage() const = 0;
    /*!
     * The model's own list of items in row order, for C++ hosts and the
     * library's views. A host may rearrange the items in place (nothing is
     * announced: send your own notices), but must not add or remove items
     * through it. A paging view returns its own, empty list.
     */
    /* 51 */ virtual QList<XOLATreeItem*>* GetModelItemList() = 0;

signals:
    //! The number of rows may have changed; notifies #count.
    /*!
     * Sent last by every insertion and removal (after the keep-sorting
     * re-sort), by Remove(const QStringList&) also when nothing was removed,
     * and by AppendItem() after merging a duplicate although the count is
     * unchanged. Not sent by MoveRow(), by a merge through PrependItem(), or by
     * a bulk load that added no row.
     */
    void rowCountChanged();
    //! Sent on every write of #firstPartialModelRow, also when the row stays the same.
    void firstPartialModelRowChanged();
    /*!
     * Rows were removed by id: sent by RemoveOne(), Remove(const QStringList&)
     * and Remove(int, int) (except by a model made with option 2), and when an
     * item listed by a model that does not own it is deleted. Filter views
     * follow their source's removals through this signal.
     * \param idList the ids of the removed items
     */
    void itemsRemoved(QStringList idList);
    //! Every row was removed (RemoveAll(), clear(), ReplaceItemsList()); sent after rowsRemoved() and before rowCountChanged().
    void allItemRemoved();
    //! A filter view was rebuilt for new rules or a new rule value; sent after its rows are in.
    void filterModelChanged();
    /*!
     * A paging view moved to another page (by #page, or because its page no
     * longer exists).
     * \param page the new page
     */
    void pageChanged(int page);
    /*!
     * The number of pages of a paging view changed.
     * \param totalPage the new number of pages
     */
    void totalPageChanged(int totalPage);

private:
    Q_DISABLE_COPY(IXOLATreeModel)
    // The interface keeps no state today. The pointer reserves the one slot any
    // later state will live behind, so that adding it does not move the
    // members of classes derived from the interface.
    const std::unique_ptr<IXOLATreeModelPrivate> d_ptr;
};

#endif // IXOLATREEMODEL_H
