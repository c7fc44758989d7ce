#ifndef XOLATREEMODELPRIVATE_H
#define XOLATREEMODELPRIVATE_H

#include "XOLATreeModel.h"

#include "ItemRegistry.h"
#include "RowStore.h"

#include <QtCore/QSet>
#include <QtCore/QSharedPointer>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

class PartialModel;
class XOLATreeModelWorker;

/*!
 * What an XOLATreeModel holds: its options and caller functions, its rows (a
 * RowStore, made on first use), the keep-sorting state, the partial window and
 * the cross-thread worker (both made on first use), and the items it lists
 * without owning them.
 */
class XOLATreeModelPrivate final : public ItemLifetimeObserver
{
public:
    //! How an item offered to the model is received.
    enum class Admission {
        Insert,       //!< listed as a new row
        MergeInto,    //!< its id is listed: its data goes to the listed item, and it is deleted
        Refuse        //!< not taken; the caller keeps it
    };
    //! What an id that is already listed means for the operation.
    enum class ListedId {
        Merge,   //!< the loaders and AppendItem/PrependItem merge into the listed item
        Refuse   //!< InsertItem refuses the item
    };

    XOLATreeModelPrivate(XOLATreeModel* q, bool fullyConstructed);
    ~XOLATreeModelPrivate();
    XOLATreeModelPrivate(const XOLATreeModelPrivate&) = delete;
    XOLATreeModelPrivate& operator=(const XOLATreeModelPrivate&) = delete;

    // ---- rows ----------------------------------------------------------------------
    //! The rows, made on first use: a view that never lists rows of its own keeps none.
    RowStore& rows();
    const RowStore& rows() const;
    const QList<XOLATreeItem*>& items() const { return rows().items(); }
    //! True when some row is listed (without making the rows).
    bool hasRows() const { return m_rows && !m_rows->isEmpty(); }

    // ---- admission and duplicates ----------------------------------------------------
    //! Decides how an item is received; existing is set to the listed item of
    //! the same id when it is to be merged (it may be null).
    Admission admit(XOLATreeItem* item, ListedId listedId, XOLATreeItem** existing) const;
    //! Where AppendItem and PrependItem put a new row.
    enum class Placement { Append, PrependAnnouncedAtOldEnd };
    //! AppendItem and PrependItem once the item is known to be non-null and on
    //! the model's thread: admitted, merged or refused, with their notices.
    bool addSingle(XOLATreeItem* item, Placement placement);
    //! For the bulk loaders: true when the item is to be listed (it is then
    //! connected); a duplicate is merged quietly and deleted, an item that is
    //! already listed is skipped.
    bool admitForLoading(XOLATreeItem* item);

    // ---- items: connections, ownership, disposal ---------------------------------------
    //! Connects an item's valueChanged() so that it reaches views as dataChanged of its row.
    void connectItem(XOLATreeItem* item);
    void disconnectItem(XOLATreeItem* item);
    //! What EmitValueChange() does for the item that sent the change.
    void valueChangedFrom(const QObject* object);
    static void disposeChildModel(QObject* childModel, bool disconnectChild);
    static void disposeItem(XOLATreeItem* item);
    //! Deletes every listed item (and its child model) except those in spare;
    //! the rows go without a notice.
    void clearContainers(const QList<XOLATreeItem*>& spare);
    bool keepsRemovedItems() const { return (m_flags & XOLATreeModel::KeepRemovedItemsOption) != 0; }
    bool mergesDuplicates() const { return (m_flags & XOLATreeModel::MergeDuplicatesOption) != 0; }

    // ---- items listed without being owned (option 2) -------------------------------------
    //! A model that does not own its items watches the items it lists, so that
    //! one deleted by its owner leaves this model first.
    void holdItem(XOLATreeItem* item);
    //! Stops watching an item that no row lists.
    void releaseUnlisted(XOLATreeItem* item);
    void releaseAllItems();
    void itemDestroyed(const XOLATreeItem* item, const QString& id) override;
    void registryDetached() override;

    // ---- threads -------------------------------------------------------------------------
    //! True when called on a thread other than the one that built the model.
    bool isForeignThread() const;
    //! Hands an item to the model's thread when it was made on the calling thread.
    void adoptForeignItem(XOLATreeItem* item) const;
    void adoptForeignItems(const QList<XOLATreeItem*>& items) const;
    //! Runs call on the model's thread while the caller waits, and gives its
    //! result (false, or nothing, when the call cannot get there).
    template <typename Call>
    auto onModelThread(Call call) -> decltype(call());
    //! From another thread an insertion at a row is an append: the row is dropped.
    bool insertFromForeignThread(XOLATreeItem* item);
    //! From another thread a prepend (single or list) fails and reports false:
    //! kept as is for existing hosts, which rely on it.
    bool prependFromForeignThread() const;
    //! The model's worker, made on first use: hosts may invoke its slots by name.
    XOLATreeModelWorker* worker();
    //! The worker if it was made.
    XOLATreeModelWorker* existingWorker() const { return m_worker.data(); }

    // ---- the partial window -------------------------------------------------------------
    //! The window over this model, made on first use; null for a model made by
    //! QML. Made by the views layer, which owns the window's code.
    PartialModel* window();
    //! The window if it was made.
    PartialModel* existingWindow() const { return m_partialModel.data(); }
    //! Connects the model's notices to the window, made or not yet made.
    void relayToWindow();

    //! Resolves a role name against the model's roleNames(): 0 when unknown.
    int roleForName(const QString& roleName) const;

    XOLATreeModel* const q_ptr;
    const bool m_fullyConstructed;
    int m_flags = 0;
    PF_COPY_ITEM m_copyItemFunc;
    PF_MATCH_ITEM m_matchItemFunc;
    QHash<int, QByteArray> m_roleNames;
    Qt::HANDLE m_ownerThreadId = nullptr;
    int m_sortFlag = XOLATreeModel::None;
    QVariantList m_sortRules;
    bool m_removingAll = false;

private:
    bool runOnModelThread(const std::function<void()>& call);

    mutable std::unique_ptr<RowStore> m_rows;
    // Made by window(), whose code lives with the window in the views layer.
    QSharedPointer<PartialModel> m_partialModel;
    QSharedPointer<XOLATreeModelWorker> m_worker;
    ItemRegistry* m_registry = nullptr;
    QSet<const XOLATreeItem*> m_heldItems;
};

template <typename Call>
auto XOLATreeModelPrivate::onModelThread(Call call) -> decltype(call())
{
    using Result = decltype(call());
    if constexpr (std::is_void_v<Result>) {
        runOnModelThread([&] { call(); });
    } else {
        Result result{};
        runOnModelThread([&] { result = call(); });
        return result;
    }
}

#endif // XOLATREEMODELPRIVATE_H
