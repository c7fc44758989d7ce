#include "FilterModelImp.h"

#include "FilterRules.h"
#include "MetaConnect.h"
#include "VariantRules.h"
#include "XOLATreeModelPrivate.h"

#include <QtCore/QHash>
#include <QtCore/QMetaType>
#include <QtCore/QVector>
#include <QtQml/QJSValue>

namespace {
// Up to this many changed source rows are followed item by item; a larger
// change is followed against one snapshot of the view's ids.
const int kFewChangedRows = 64;

// Counts the rows taken out so far, by the row they held before, so that the
// current row of any later one is found in logarithmic time.
class RemovedRows
{
public:
    explicit RemovedRows(int rowCount)
        : m_tree(rowCount + 1, 0)
    {
    }
    void mark(int row)
    {
        for (int i = row + 1; i < m_tree.size(); i += i & -i)
            ++m_tree[i];
    }
    //! How many marked rows lay before row.
    int before(int row) const
    {
        int count = 0;
        for (int i = row; i > 0; i -= i & -i)
            count += m_tree.at(i);
        return count;
    }

private:
    QVector<int> m_tree;
};

void registerChildViewType()
{
    // Child views travel through data() as QVariants.
    static const int typeId = qRegisterMetaType<IXOLATreeModel*>();
    Q_UNUSED(typeId)
}
} // namespace

// ---- construction -------------------------------------------------------------

// Option bits 3: the QML engine owns the view, and the items it drops stay alive
// because they belong to the source.
FilterModelImp::FilterModelImp(IXOLATreeModel* source, const QList<QVariant>& filterRules, bool orAllRules,
                               int newItemPos)
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(),
                    JavaScriptOwnershipOption | KeepRemovedItemsOption, PF_COPY_ITEM(), PF_MATCH_ITEM())
    , m_sourceModel(source)
    , m_filterRules(filterRules)
    , m_orAllRules(orAllRules)
    , m_newItemPos(newItemPos)
{
    Initial();
}

FilterModelImp::FilterModelImp(IXOLATreeModel* source, PF_MATCH_ITEM rule, const QVariant& ruleValue, int newItemPos)
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(),
                    JavaScriptOwnershipOption | KeepRemovedItemsOption, PF_COPY_ITEM(), PF_MATCH_ITEM())
    , m_sourceModel(source)
    , m_ruleValue(plainRuleValue(ruleValue))
    , m_orAllRules(false)
    , m_userDefinedRule(std::move(rule))
    , m_newItemPos(newItemPos)
{
    Initial();
}

FilterModelImp::~FilterModelImp()
{
    // The base destructor empties the view; the items belong to the source and
    // are left alone (option bit 2).
    m_userDefinedRule = PF_MATCH_ITEM();
    m_ruleValue = QVariant();
    m_filterRules.clear();
}

void FilterModelImp::Initial()
{
    IXOLATreeModel* source = m_sourceModel.data();
    if (!source)
        return;
    // Looked up by name in the source's own class, in this order: hosts that
    // subclass the source may re-declare these signals. Row removals arrive as
    // id lists through itemsRemoved, so rowsRemoved is deliberately not followed.
    MetaConnect::connect(source, "modelReset()", this, "modelReset()");
    MetaConnect::connect(source, "dataChanged(QModelIndex,QModelIndex)",
                         this, "SourceModelDataChangedHandler(QModelIndex,QModelIndex)");
    MetaConnect::connect(source, "rowsInserted(QModelIndex,int,int)",
                         this, "SourceModelItemAddedHandler(QModelIndex,int,int)");
    MetaConnect::connect(source, "itemsRemoved(QStringList)", this, "SourceModelItemsRemovedHandler(QStringList)");
    MetaConnect::connect(source, "allItemRemoved()", this, "SourceModelAllItemRemovedHandler()");
    MetaConnect::connect(source, "layoutChanged()", this, "layoutChanged()");

    if (QList<XOLATreeItem*>* sourceItems = source->GetModelItemList()) {
        // One relay per source item: sized once rather than grown step by step.
        m_childRelays.reserve(sourceItems->size());
        for (XOLATreeItem* item : qAsConst(*sourceItems)) {
            if (item)
                followChildModel(item);
        }
    }
    ReGenFilterModel();
}

// ---- helpers -----------------------------------------------------------------------

void FilterModelImp::dropValueConnection(XOLATreeItem* item)
{
    if (item)
        d_ptr->disconnectItem(item);
}

void FilterModelImp::removeListedRow(int row)
{
    XOLATreeItem* item = d_ptr->rows().at(row);
    const QString id = item->id();
    // Exactly what RemoveOne(id) does for a view, which keeps its items alive,
    // without searching for the row again.
    d_ptr->rows().removeAt(row, true);
    d_ptr->releaseUnlisted(item);
    emit itemsRemoved(QStringList{id});
    emit rowCountChanged();
    // Its changes no longer concern this view; it is connected again if it returns.
    dropValueConnection(item);
}

bool FilterModelImp::isListedBySource(const XOLATreeItem* item) const
{
    // An item the source has let go of (Remove by id list keeps it alive) may
    // still signal; it must not come back into the view.
    IXOLATreeModel* source = m_sourceModel.data();
    if (!source || !item)
        return false;
    if (source->FindItem(item->id(), false) == item)
        return true;
    // The source's index may have lost the id while the item is still a row
    // (removing one of two equal ids drops the entry of both): the rows decide.
    for (int row = 0; row < source->rowCount(); ++row) {
        if (source->FindItem(row) == item)
            return true;
    }
    return false;
}

QVariant FilterModelImp::plainRuleValue(const QVariant& value)
{
    // QML hands JavaScript objects and arrays over as QJSValues; they are kept as
    // the equivalent QVariantMap / QVariantList so that the predicate always sees
    // plain values and an equal object given again is recognised as equal.
    // Functions have no plain form and are kept as they are. Values from native
    // callers (a QVariantMap, a string...) are already plain and stay unchanged.
    if (value.userType() != qMetaTypeId<QJSValue>())
        return value;
    const QJSValue script = value.value<QJSValue>();
    if (script.isCallable())
        return value;
    return script.toVariant();
}

// ---- rules -------------------------------------------------------------------------

bool FilterModelImp::MatchRule(const XOLATreeItem* item, const QList<QVariant>& rules, bool orAllRules)
{
    if (rules.isEmpty())
        return true;
    if (!item)
        return false;
    if (compiledRules(rules).matches(item, orAllRules))
        return true;

    // A parent stays visible while any of its descendants passes.
    auto* child = qobject_cast<IXOLATreeModel*>(item->childModel());
    if (!child || child->rowCount() < 1 || m_descentPath.contains(child))
        return false;
    m_descentPath.insert(child);
    bool descendantPasses = false;
    for (int row = 0; row < child->rowCount() && !descendantPasses; ++row) {
        auto* childItem = qobject_cast<XOLATreeItem*>(child->FindItem(row));
        if (!childItem)
            continue;
        descendantPasses = m_userDefinedRule ? m_userDefinedRule(childItem, m_ruleValue)
                                             : MatchRule(childItem, m_filterRules, m_orAllRules);
    }
    m_descentPath.remove(child);
    return descendantPasses;
}

CompiledFilterRules FilterModelImp::compiledRules(const QList<QVariant>& rules) const
{
    // The view's own list is the one asked for, item after item: it is read
    // once, not once per item. A copy is handed out, cheap to make, so that a
    // nested walk with another list cannot change it under the caller.
    if (!rules.isSharedWith(m_compiledFrom)) {
        m_compiled = CompiledFilterRules(rules);
        m_compiledFrom = rules;
    }
    return m_compiled;
}

bool FilterModelImp::IsMatchRule(const XOLATreeItem* item)
{
    if (m_userDefinedRule)
        return m_userDefinedRule(item, m_ruleValue);
    return MatchRule(item, m_filterRules, m_orAllRules);
}

bool FilterModelImp::ReGenFilterModel()
{
    IXOLATreeModel* source = m_sourceModel.data();
    if (!source)
        return false;
    QList<XOLATreeItem*> passing;
    passing.reserve(source->rowCount());
    for (int row = 0; row < source->rowCount(); ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(source->FindItem(row));
        if (item && IsMatchRule(item))
            passing << item;
    }
    for (XOLATreeItem* item : d_ptr->items())
        dropValueConnection(item);
    for (XOLATreeItem* item : qAsConst(passing))
        dropValueConnection(item);
    const bool result = ReplaceItemsList(passing);
    emit filterModelChanged();
    return result;
}

bool FilterModelImp::UpdateFilterRules(QVariantList givenRules, bool orAllRules)
{
    const QVariantList filterRules = VariantRules::listArgument(givenRules);
    // The same rules again: hosts call this from bindings, and a rebuild would
    // reset every delegate.
    if (VariantRules::equals(filterRules, m_filterRules) && orAllRules == m_orAllRules)
        return true;
    m_filterRules = filterRules;
    m_orAllRules = orAllRules;
    return ReGenFilterModel();
}

bool FilterModelImp::UpdateUserDefinedFilterRules(QVariant filterRules)
{
    const QVariant value = plainRuleValue(filterRules);
    if (VariantRules::equals(value, m_ruleValue))
        return true;
    m_ruleValue = value;
    return ReGenFilterModel();
}

// ---- read access -----------------------------------------------------------------------

QVariant FilterModelImp::data(const QModelIndex& index, int role) const
{
    if (!m_sourceModel)
        return QVariant();
    XOLATreeItem* item = d_ptr->rows().at(index.row());
    if (!item)
        return QVariant();
    if (role != XOLATreeItem::ChildModelRole)
        return item->getData(role);
    // A child shows the same filter as its parent view; every read makes a new
    // child view, which the QML engine collects once unreferenced.
    QObject* childView = FindChildModel(item);
    return childView ? QVariant::fromValue(childView) : QVariant();
}

QObject* FilterModelImp::FindChildModel(XOLATreeItem* item) const
{
    if (!item)
        return nullptr;
    auto* child = qobject_cast<IXOLATreeModel*>(item->childModel());
    if (!child)
        return nullptr;
    registerChildViewType();
    // New child rows always go to the tail, whatever this view does.
    return qobject_cast<IXOLATreeModel*>(child->GetFilterModel(m_filterRules, m_orAllRules, POS_TAIL));
}

// ---- following the source --------------------------------------------------------------

void FilterModelImp::SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    IXOLATreeModel* source = m_sourceModel.data();
    if (!source)
        return;
    const int first = qMax(0, topLeft.row());
    const int last = qMin(bottomRight.row(), source->rowCount() - 1);
    bool wholeView = true;
    QList<XOLATreeItem*> entering;
    if (last - first + 1 <= kFewChangedRows)
        followFewChangedRows(first, last, entering, wholeView);
    else
        followManyChangedRows(first, last, entering, wholeView);

    if (!entering.isEmpty()) {
        // Entering items join at the end, whatever the new-item position says.
        // They are listed after the removals, so that every removal notice
        // describes exactly the rows the view has announced.
        RowStore& rows = d_ptr->rows();
        const int firstNew = rows.count();
        for (XOLATreeItem* item : qAsConst(entering)) {
            dropValueConnection(item);
            d_ptr->connectItem(item);
            rows.appendQuietly(item);
        }
        // Announced once the rows are in place, as the bulk loaders do.
        rows.announceInsertedAfterChange(firstNew, rows.count() - 1);
    }

    if (d_ptr->m_sortFlag != None)
        KeepSortingCheck();
    else if (wholeView && d_ptr->hasRows())
        d_ptr->rows().rowsChanged(0, d_ptr->rows().count() - 1);
}

void FilterModelImp::followFewChangedRows(int first, int last, QList<XOLATreeItem*>& entering, bool& wholeView)
{
    // One item's change, usually: decided without a snapshot of the view's ids.
    // An id is listed when the item itself is one of the rows (also after a
    // change of its id) or when the row listed under that id still has it.
    // Rows come from the row index, which follows this view's appends and
    // single removals, so a change of every source row stays near linear.
    IXOLATreeModel* source = m_sourceModel.data();
    const RowStore& rows = d_ptr->rows();
    for (int row = first; row <= last; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(source->FindItem(row));
        if (!item)
            continue;
        const QString id = item->id();
        XOLATreeItem* keyed = rows.byId(id);
        const int ownRow = rows.rowOf(item, false);
        const int keyedRow = !keyed ? -1 : keyed == item ? ownRow : rows.rowOf(keyed, false);
        const bool listed = ownRow >= 0 || (keyedRow >= 0 && keyed->id() == id);
        const bool passes = IsMatchRule(item);
        if (passes && !listed) {
            entering << item;
        } else if (passes) {
            // Its own valueChanged() connection already reports its row.
            wholeView = false;
        } else if (listed && keyedRow >= 0) {
            // The row RemoveOne(id) would take out.
            removeListedRow(keyedRow);
        }
    }
}

void FilterModelImp::followManyChangedRows(int first, int last, QList<XOLATreeItem*>& entering, bool& wholeView)
{
    IXOLATreeModel* source = m_sourceModel.data();
    // The view's ids before the change, hashed with the row each held: a change
    // over the whole source costs one lookup per row. An id listed twice maps
    // to -1 and is removed the slow way.
    const RowStore& rows = d_ptr->rows();
    QHash<QString, int> listedRows;
    listedRows.reserve(rows.count());
    for (int row = 0; row < rows.count(); ++row) {
        const XOLATreeItem* item = rows.at(row);
        if (!item)
            continue;
        auto it = listedRows.find(item->id());
        if (it == listedRows.end())
            listedRows.insert(item->id(), row);
        else
            it.value() = -1;
    }
    RemovedRows removedRows(rows.count());
    // Cleared once the rows no longer match the snapshot minus the rows taken
    // out (a listener changed the view meanwhile); then every removal searches.
    bool rowsKnown = true;

    for (int row = first; row <= last; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(source->FindItem(row));
        if (!item)
            continue;
        const QString id = item->id();
        const bool passes = IsMatchRule(item);
        const auto listed = listedRows.constFind(id);
        if (passes && listed == listedRows.constEnd()) {
            entering << item;
        } else if (passes) {
            wholeView = false;
        } else if (listed != listedRows.constEnd()) {
            const int oldRow = listed.value();
            const int viewRow = rowsKnown && oldRow >= 0 ? oldRow - removedRows.before(oldRow) : -1;
            if (viewRow >= 0 && viewRow < rows.count() && rows.at(viewRow) == rows.byId(id)) {
                removeListedRow(viewRow);
                removedRows.mark(oldRow);
            } else if (RemoveOne(id)) {
                rowsKnown = false;
            }
        }
    }
}

void FilterModelImp::SourceModelItemAddedHandler(const QModelIndex& /*parent*/, int start, int end)
{
    IXOLATreeModel* source = m_sourceModel.data();
    if (!source)
        return;
    QList<XOLATreeItem*> passing;
    for (int row = start; row <= end; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(source->FindItem(row));
        if (!item)
            continue;
        followChildModel(item);
        // A row announced at the old end while the item went to the front (a
        // single prepend) names an item this view may already list; listing it
        // twice would leave a row behind when the source later drops the item.
        // The view is not changed inside this loop, so a cached miss is trusted.
        if (d_ptr->rows().rowOf(item, false) >= 0)
            continue;
        if (IsMatchRule(item))
            passing << item;
    }
    if (passing.isEmpty())
        return;
    for (XOLATreeItem* item : qAsConst(passing))
        dropValueConnection(item);
    if (m_newItemPos == POS_HEAD)
        PrependItemsList(passing);
    else if (m_newItemPos == POS_TAIL)
        AppendItemsList(passing);
    // Any other position drops the new items.
}

void FilterModelImp::SourceModelItemRemovedHandler(const QString& id)
{
    if (m_sourceModel)
        RemoveOne(id);
}

void FilterModelImp::SourceModelItemsRemovedHandler(const QStringList& idList)
{
    if (m_sourceModel)
        Remove(idList);
}

void FilterModelImp::SourceModelAllItemRemovedHandler()
{
    RemoveAll();
}

void FilterModelImp::followChildModel(XOLATreeItem* item)
{
    // Once per item while the connection lasts, as a unique connection to
    // ChildModelValueChangedHandler() would be. A functor that knows its item:
    // the slot would have to ask sender(), which walks every connection into
    // the view in Qt 5, so a change under every parent would be quadratic.
    QMetaObject::Connection& relay = m_childRelays[item];
    if (relay)
        return;
    relay = QObject::connect(item, &XOLATreeItem::childModelValueChanged, this,
                             [this, item] { childModelChangedFrom(item); });
    // Entries of items that are gone (their connection went with them) are
    // dropped now and then, so the table stays about as large as the source.
    if (m_childRelays.size() > 2 * (m_sourceModel ? m_sourceModel->rowCount() : 0) + 64) {
        for (auto it = m_childRelays.begin(); it != m_childRelays.end();) {
            if (*it)
                ++it;
            else
                it = m_childRelays.erase(it);
        }
    }
}

void FilterModelImp::ChildModelValueChangedHandler()
{
    // Kept for hosts that connect an item's childModelValueChanged() to the view.
    childModelChangedFrom(qobject_cast<XOLATreeItem*>(sender()));
}

void FilterModelImp::childModelChangedFrom(XOLATreeItem* item)
{
    if (!item || !m_sourceModel)
        return;
    // Found through the row index; a miss is confirmed by a scan of the rows.
    const bool listed = d_ptr->rows().listedRow(item) >= 0;
    if (!isListedBySource(item)) {
        if (listed)
            RemoveOne(item->id());
        return;
    }
    if (!IsMatchRule(item)) {
        RemoveOne(item->id());
        return;
    }
    if (!listed) {
        // Joins at the end, whatever the new-item position says.
        dropValueConnection(item);
        AppendItem(item);
    }
}
