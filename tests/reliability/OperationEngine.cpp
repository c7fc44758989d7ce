#include "OperationEngine.h"

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "NoticeBalance.h"
#include "PagingModelImp.h"
#include "PartialModel.h"
#include "TestSupport.h"
#include "VariantRules.h"
#include "XOLATreeModel.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QEvent>
#include <QtCore/QtNumeric>

#include <cstdio>
#include <limits>

// ---- choices ------------------------------------------------------------------------

int SeededChoices::below(int n)
{
    if (n < 2)
        return 0;
    return int(m_generator() % quint32(n));
}

int ByteChoices::nextByte()
{
    return m_position < m_size ? m_data[m_position++] : 0;
}

int ByteChoices::below(int n)
{
    if (n < 2)
        return 0;
    if (n <= 256)
        return nextByte() % n;
    return ((nextByte() << 8) | nextByte()) % n;
}

namespace {

const int ValueRole = ValueItem::ValueRole;
const int GroupRole = ValueItem::GroupRole;
const int TextRole = ValueItem::TextRole;

const void* address(const QObject* object)
{
    return static_cast<const void*>(object);
}

QString describe(const QVariantList& list)
{
    QStringList parts;
    for (const QVariant& v : list) {
        if (v.userType() == QMetaType::QVariantMap) {
            QStringList fields;
            const QVariantMap map = v.toMap();
            for (auto it = map.constBegin(); it != map.constEnd(); ++it)
                fields << it.key() + QLatin1Char(':') + it.value().toString();
            parts << QLatin1Char('{') + fields.join(QLatin1Char(',')) + QLatin1Char('}');
        } else {
            parts << QString::fromLatin1(v.typeName() ? v.typeName() : "invalid");
        }
    }
    return QLatin1Char('[') + parts.join(QLatin1Char(',')) + QLatin1Char(']');
}

//! The rows of a model as the model answers them (FindItem per row), without
//! touching the objects.
QList<const void*> rowAddresses(const IXOLATreeModel* model)
{
    QList<const void*> result;
    if (!model)
        return result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << address(model->FindItem(row));
    return result;
}

} // namespace

// ---- construction ---------------------------------------------------------------------

OperationEngine::OperationEngine(ChoiceSource& choices, const QString& dataDir, ArgumentSource* arguments)
    : m_choices(choices)
    , m_dataDir(dataDir)
    , m_arguments(arguments)
{
    buildWorld();
    buildOperations();
    settle();
    // The first rows may already hold equal ids.
    markDirtyIndexes(false);
    if (m_root) {
        QSet<QString> seen;
        for (int row = 0; row < m_root->rowCount(); ++row) {
            const QString id = m_root->FindItemID(row);
            if (seen.contains(id)) {
                for (FilterModelImp* f : {m_ruleFilter.data(), m_headFilter.data(), m_predicateFilter.data()})
                    m_dirtyIndex.insert(f);
            }
            seen.insert(id);
        }
    }
}

OperationEngine::~OperationEngine()
{
    finish();
}

void OperationEngine::buildWorld()
{
    static const QList<int> flagChoices{0, 2, 4, 6, 1, 3, 5, 7};
    m_rootFlags = m_choices.pick(flagChoices);
    m_sharedIdPercent = m_choices.percent(70) ? 4 : 50;
    PF_COPY_ITEM copy;
    if (m_choices.percent(50)) {
        // A host's merge: takes the value and the name, nothing else.
        copy = [](const QObject* source, QObject* destination) {
            auto* from = qobject_cast<const XOLATreeItem*>(source);
            auto* to = qobject_cast<XOLATreeItem*>(destination);
            if (!from || !to)
                return;
            to->setData(ValueRole, from->getData(ValueRole));
            to->setData(XOLATreeItem::NameRole, from->getData(XOLATreeItem::NameRole));
        };
    }
    // The predicate of the user-defined filter views: valueRole at least "min".
    PF_MATCH_ITEM match = [](const QObject* object, const QVariant& rule) {
        auto* item = qobject_cast<const XOLATreeItem*>(object);
        if (!item)
            return false;
        return item->getData(ValueRole).toInt() >= rule.toMap().value(QStringLiteral("min")).toInt();
    };
    if (m_arguments && m_arguments->matchFunction())
        match = m_arguments->matchFunction();
    m_root = TestSupport::createModel(m_rootFlags, TestSupport::extendedRoleNames(), copy, match);
    watch(m_root, ModelKind::Root, QStringLiteral("root"));

    // A few rows, some with child models, one with a grandchild.
    QList<XOLATreeItem*> rows;
    const int count = m_choices.between(0, 12);
    for (int i = 0; i < count; ++i) {
        XOLATreeItem* item = newItem();
        if (m_choices.percent(30)) {
            XOLATreeModel* child = newChildModel();
            QList<XOLATreeItem*> childRows;
            const int childCount = m_choices.between(0, 4);
            for (int j = 0; j < childCount; ++j)
                childRows << newItem();
            child->AppendItemsList(childRows);
            if (m_choices.percent(30) && child->rowCount() > 0) {
                XOLATreeModel* grandChild = newChildModel();
                grandChild->AppendItemsList({newItem(), newItem()});
                qobject_cast<XOLATreeItem*>(child->FindItem(0))->SetChildModel(grandChild);
            }
            item->SetChildModel(child);
        }
        rows << item;
    }
    m_root->AppendItemsList(rows);

    m_partial = qobject_cast<PartialModel*>(m_root->GetPartialModel(m_choices.between(0, 6)));
    watch(m_partial, ModelKind::Partial, QStringLiteral("partial"));
    makeRuleFilter(false);
    makeRuleFilter(true);
    makePredicateFilter();
    makeGroup();
    makePaging();
}

XOLATreeModel* OperationEngine::newChildModel()
{
    static const QList<int> flagChoices{0, 2, 4, 6};
    XOLATreeModel* child = TestSupport::createModel(m_choices.pick(flagChoices), TestSupport::extendedRoleNames());
    m_childModels << child;
    watch(child, ModelKind::Child, QStringLiteral("child%1").arg(m_childModels.size()));
    return child;
}

XOLATreeItem* OperationEngine::newItemWithId(const QString& id)
{
    auto* item = new ValueItem(id, QStringLiteral("n%1").arg(m_choices.below(10)));
    if (m_choices.percent(85))
        item->setExtra(ValueRole, randomValue());
    if (m_choices.percent(85))
        item->setExtra(GroupRole, QStringLiteral("g%1").arg(m_choices.below(4)));
    if (m_choices.percent(40))
        item->setExtra(TextRole, m_choices.percent(50) ? QVariant(QStringList{QStringLiteral("ab"), QStringLiteral("c")})
                                                       : QVariant(QStringLiteral("xaby")));
    m_items << item;
    ++m_serial;
    return item;
}

XOLATreeItem* OperationEngine::newItem()
{
    return newItemWithId(randomId());
}

QList<XOLATreeItem*> OperationEngine::newItemList(bool withNulls)
{
    QList<XOLATreeItem*> list;
    const int count = m_choices.between(0, 6);
    for (int i = 0; i < count; ++i) {
        if (withNulls && m_choices.percent(15))
            list << nullptr;
        else
            list << newItem();
    }
    return list;
}

void OperationEngine::watch(QAbstractItemModel* model, ModelKind kind, const QString& name)
{
    if (!model)
        return;
    for (const Watched& w : qAsConst(m_watched)) {
        if (w.model == model)
            return;
    }
    m_watched << Watched{model, new NoticeBalance(model, name), kind};
}

void OperationEngine::watchGroupMembers()
{
    if (!m_group)
        return;
    for (int row = 0; row < m_group->rowCount(); ++row) {
        const QVariant child = m_group->FindItemValue(row, int(XOLATreeItem::ChildModelRole));
        if (auto* members = qobject_cast<XOLATreeModel*>(child.value<QObject*>()))
            watch(members, ModelKind::Member, QStringLiteral("members of ") + m_group->FindItemID(row));
    }
}

void OperationEngine::settle()
{
    // Disposal chains (an item's child model empties itself, then goes, then its
    // items go...) take a few rounds.
    for (int round = 0; round < 8; ++round)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (int i = m_watched.size() - 1; i >= 0; --i) {
        if (!m_watched.at(i).model)
            m_watched.removeAt(i);
    }
}

void OperationEngine::note(const QString& text)
{
    m_current = text;
    m_trail << QStringLiteral("%1: %2").arg(m_steps).arg(text);
    while (m_trail.size() > 40)
        m_trail.removeFirst();
}

bool OperationEngine::fail(const QString& text)
{
    if (m_failure.isEmpty())
        m_failure = QStringLiteral("step %1 (%2), root flags %3: %4").arg(m_steps).arg(m_current).arg(m_rootFlags).arg(text);
    return false;
}

void OperationEngine::markViewsStale(const char* reason)
{
    ++m_staleReasons[QString::fromLatin1(reason)];
    m_exactFilters.clear();
    m_groupExact = false;
}

QStringList OperationEngine::operationNames() const
{
    QStringList names;
    for (const Operation& op : m_operations)
        names << QString::fromLatin1(op.name);
    return names;
}

// ---- random arguments ----------------------------------------------------------------------

QString OperationEngine::randomId()
{
    static const QStringList pool{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
                                  QStringLiteral("e"), QStringLiteral("f"), QStringLiteral("g"), QStringLiteral("h"),
                                  QString(), QStringLiteral("zz")};
    // Some worlds share ids often (equal ids, merges, ambiguous removals), others
    // rarely (long stretches in which the views can be compared with a rebuild).
    if (!m_choices.percent(m_sharedIdPercent))
        return QStringLiteral("u%1").arg(m_serial);
    return m_choices.pick(pool);
}

QString OperationEngine::randomRoleName()
{
    static const QStringList names{QStringLiteral("idRole"),   QStringLiteral("nameRole"),
                                   QStringLiteral("childModelRole"), QStringLiteral("valueRole"),
                                   QStringLiteral("groupRole"), QStringLiteral("textRole"),
                                   QStringLiteral("nope"),      QString(), QStringLiteral("VALUEROLE")};
    return m_choices.pick(names);
}

int OperationEngine::randomRole()
{
    static const QList<int> roles{0, -1, 256, 257, 258, 259, 260, 261, 262, 263, 264, 100000,
                                  std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    return m_choices.pick(roles);
}

QVariant OperationEngine::randomValue()
{
    QVariant given;
    if (m_arguments && m_arguments->itemValue(&given))
        return given;
    switch (m_choices.below(12)) {
    case 0:
        return QVariant();
    case 1:
        return QStringLiteral("%1").arg(m_choices.below(10));
    case 2:
        return 2.5 * m_choices.below(4);
    case 3:
        return qQNaN();
    case 4:
        return m_choices.percent(50);
    case 5:
        return QStringList{QStringLiteral("x"), QStringLiteral("%1").arg(m_choices.below(3))};
    case 6:
        return QVariantMap{{QStringLiteral("k"), m_choices.below(3)}};
    case 7:
        return QDate(2020, 1 + m_choices.below(12), 1);
    case 8:
        return QVariant(qlonglong(m_choices.below(10)) - 5);
    default:
        return m_choices.below(10);
    }
}

QVariant OperationEngine::randomRuleValue()
{
    if (m_arguments)
        return m_arguments->predicateValue();
    switch (m_choices.below(6)) {
    case 0:
        return QVariant();
    case 1:
        return QVariantMap{{QStringLiteral("min"), m_choices.below(10)}};
    case 2:
        return QVariantMap{{QStringLiteral("min"), QStringLiteral("x")}};
    case 3:
        return QVariantList{1, 2};
    case 4:
        return QStringLiteral("min");
    default:
        return QVariantMap{{QStringLiteral("min"), m_choices.below(6)}};
    }
}

QVariantList OperationEngine::randomFilterRules()
{
    if (m_arguments)
        return m_arguments->filterRules();
    QVariantList rules;
    const int count = m_choices.below(4);
    for (int i = 0; i < count; ++i) {
        switch (m_choices.below(8)) {
        case 0:
            rules << QVariant(m_choices.below(5)); // not a map
            break;
        case 1:
            rules << QVariantMap();
            break;
        case 2: {
            // Format two, sub-rules of any quality.
            QVariantList sub;
            const int subCount = m_choices.below(3);
            for (int j = 0; j < subCount; ++j)
                sub << QVariantMap{{QStringLiteral("Rule"), m_choices.between(-1, 9)}, {QStringLiteral("Value"), randomValue()}};
            if (m_choices.percent(20))
                sub << QStringLiteral("junk");
            QVariantMap rule{{QStringLiteral("RoleName"), randomRoleName()}, {QStringLiteral("Rules"), sub}};
            if (m_choices.percent(60))
                rule.insert(QStringLiteral("OrAllRules"), m_choices.percent(50));
            rules << rule;
            break;
        }
        case 3:
            // Every key of the wrong type.
            rules << QVariantMap{{QStringLiteral("RoleName"), QVariantList{1}},
                                 {QStringLiteral("Rule"), QVariantMap{{QStringLiteral("x"), 1}}},
                                 {QStringLiteral("Value"), QVariantList{QVariant(), 2}},
                                 {QStringLiteral("Rules"), 7},
                                 {QStringLiteral("OrAllRules"), QStringLiteral("maybe")}};
            break;
        case 4:
            rules << QVariantMap{{QStringLiteral("RoleName"), randomRoleName()}, {QStringLiteral("Rules"), QStringLiteral("x")}};
            break;
        default:
            rules << QVariantMap{{QStringLiteral("RoleName"), randomRoleName()},
                                 {QStringLiteral("Rule"), m_choices.percent(90) ? QVariant(m_choices.between(-2, 9))
                                                                                 : QVariant(QStringLiteral("Eq"))},
                                 {QStringLiteral("Value"), randomValue()}};
            break;
        }
    }
    return rules;
}

QVariantList OperationEngine::randomSortRules()
{
    if (m_arguments)
        return m_arguments->sortRules();
    QVariantList rules;
    const int count = m_choices.below(4);
    for (int i = 0; i < count; ++i) {
        switch (m_choices.below(6)) {
        case 0:
            rules << QVariant(QStringLiteral("nameRole")); // not a map
            break;
        case 1:
            rules << QVariantMap();
            break;
        case 2:
            rules << QVariantMap{{QStringLiteral("RoleName"), randomRoleName()}}; // no direction
            break;
        case 3:
            rules << QVariantMap{{QStringLiteral("RoleName"), QVariantList{}}, {QStringLiteral("Ascending"), QStringLiteral("no")}};
            break;
        default:
            rules << QVariantMap{{QStringLiteral("RoleName"), m_choices.percent(50) ? QVariant(randomRoleName())
                                                                                    : QVariant(randomRoleName().toLatin1())},
                                 {QStringLiteral("Ascending"), m_choices.percent(50)}};
            break;
        }
    }
    return rules;
}

std::function<bool(const QVariant&, const QVariant&)> OperationEngine::randomLessThan()
{
    switch (m_choices.below(5)) {
    case 0:
        return {};
    case 1:
        return [](const QVariant& a, const QVariant& b) { return a.toString() < b.toString(); };
    case 2:
        return [](const QVariant&, const QVariant&) { return true; };
    case 3: {
        // Contradicts itself: the answer alternates whatever the values.
        int calls = 0;
        return [calls](const QVariant&, const QVariant&) mutable { return (++calls % 3) != 0; };
    }
    default:
        // Symmetric: a < b and b < a together.
        return [](const QVariant& a, const QVariant& b) { return ((qHash(a.toString()) ^ qHash(b.toString())) & 1) != 0; };
    }
}

XOLATreeModel* OperationEngine::randomOwningModel()
{
    const QList<XOLATreeModel*> models = owningModels();
    if (models.size() > 1 && m_choices.percent(40))
        return models.at(1 + m_choices.below(models.size() - 1));
    return m_root;
}

IXOLATreeModel* OperationEngine::randomAnyModel()
{
    QList<IXOLATreeModel*> models;
    for (XOLATreeModel* m : owningModels())
        models << m;
    for (IXOLATreeModel* view : {static_cast<IXOLATreeModel*>(m_ruleFilter.data()), static_cast<IXOLATreeModel*>(m_headFilter.data()),
                                 static_cast<IXOLATreeModel*>(m_predicateFilter.data()), static_cast<IXOLATreeModel*>(m_group.data()),
                                 static_cast<IXOLATreeModel*>(m_paging.data())}) {
        if (view)
            models << view;
    }
    return models.at(m_choices.below(models.size()));
}

XOLATreeItem* OperationEngine::randomListedItem(XOLATreeModel* model)
{
    if (!model || model->rowCount() == 0)
        return nullptr;
    return qobject_cast<XOLATreeItem*>(model->FindItem(m_choices.below(model->rowCount())));
}

QString OperationEngine::comparisonFile(bool qml)
{
    if (m_arguments)
        return m_arguments->comparisonFile(qml);
    static const QStringList qmlFiles{QStringLiteral("compare/less.qml"), QStringLiteral("compare/syntaxerror.qml"),
                                      QStringLiteral("hostile/empty.qml"), QStringLiteral("hostile/binary.qml"),
                                      QStringLiteral("hostile/nonbool.qml"), QStringLiteral("hostile/missing.qml"),
                                      QString()};
    static const QStringList scriptFiles{QStringLiteral("compare/less.js"), QStringLiteral("compare/greater.js"),
                                         QStringLiteral("compare/throws.js"), QStringLiteral("compare/errorvalue.js"),
                                         QStringLiteral("compare/syntaxerror.js"), QStringLiteral("hostile/empty.js"),
                                         QStringLiteral("hostile/binary.js"), QStringLiteral("hostile/nonbool.js"),
                                         QStringLiteral("hostile/missing.js"), QString()};
    const QString file = m_choices.pick(qml ? qmlFiles : scriptFiles);
    return file.isEmpty() ? file : m_dataDir + QLatin1Char('/') + file;
}

// ---- views -----------------------------------------------------------------------------------

void OperationEngine::makeRuleFilter(bool head)
{
    QPointer<FilterModelImp>& slot = head ? m_headFilter : m_ruleFilter;
    delete slot.data();
    const QVariantList rules = randomFilterRules();
    slot = qobject_cast<FilterModelImp*>(m_root->GetFilterModel(rules, m_choices.percent(50), head ? 1 : 0));
    watch(slot, head ? ModelKind::HeadFilter : ModelKind::RuleFilter, head ? QStringLiteral("head filter") : QStringLiteral("rule filter"));
    m_exactFilters.insert(slot);
    m_unrelayedParents.insert(slot, {});
}

void OperationEngine::makePredicateFilter()
{
    delete m_predicateFilter.data();
    m_predicateFilter = qobject_cast<FilterModelImp*>(m_root->GetFilterModelByUserDefinedRules(randomRuleValue(), m_choices.below(2)));
    watch(m_predicateFilter, ModelKind::PredicateFilter, QStringLiteral("predicate filter"));
    m_exactFilters.insert(m_predicateFilter);
    m_unrelayedParents.insert(m_predicateFilter, {});
}

void OperationEngine::makeGroup()
{
    delete m_group.data();
    const bool keep = m_choices.percent(50);
    if (m_choices.percent(50))
        m_group = qobject_cast<GroupModelImp*>(m_root->GetGroupModel(randomRole(), keep));
    else
        m_group = qobject_cast<GroupModelImp*>(m_root->GetGroupModel(randomRoleName(), keep));
    watch(m_group, ModelKind::Group, QStringLiteral("group"));
    m_groupExact = true;
}

void OperationEngine::makePaging()
{
    delete m_paging.data();
    // Negative sizes arrive as huge unsigned ones: every row on one page.
    m_paging = qobject_cast<PagingModelImp*>(m_root->GetPagingModel(uint(m_choices.between(-2, 5))));
    watch(m_paging, ModelKind::Paging, QStringLiteral("paging"));
}

// ---- the operations ------------------------------------------------------------------------------

void OperationEngine::buildOperations()
{
    // Changes inside child models are judged after each step (childModelsChanged).
    auto target = [this]() { return randomOwningModel(); };
    auto isRoot = [this](const XOLATreeModel* m) { return m == m_root.data(); };

    m_operations = {
        {10, "AppendItem", [=]() {
             XOLATreeModel* m = target();
             XOLATreeItem* item = m_choices.percent(5) ? nullptr : newItem();
             note(QStringLiteral("AppendItem(%1) on %2").arg(item ? item->id() : QStringLiteral("null"), m->objectName()));
             m->AppendItem(item);
         }},
        {5, "InsertItem", [=]() {
             XOLATreeModel* m = target();
             const int row = m_choices.between(-2, m->rowCount() + 2);
             XOLATreeItem* item = m_choices.percent(5) ? nullptr : newItem();
             note(QStringLiteral("InsertItem(%1, %2)").arg(row).arg(item ? item->id() : QStringLiteral("null")));
             m->InsertItem(row, item);
         }},
        {4, "PrependItem", [=]() {
             XOLATreeModel* m = target();
             XOLATreeItem* item = m_choices.percent(5) ? nullptr : newItem();
             note(QStringLiteral("PrependItem(%1)").arg(item ? item->id() : QStringLiteral("null")));
             // Announced at the old end while the item goes to the front: the
             // views test the item at the old end, not the new one.
             if (isRoot(m) && item)
                 markViewsStale("prepend announced at the old end");
             m->PrependItem(item);
             if (isRoot(m) && item && rowAddresses(m).contains(address(item))) {
                 for (auto it = m_unrelayedParents.begin(); it != m_unrelayedParents.end(); ++it)
                     it.value().insert(item);
             }
         }},
        {6, "AppendItemsList", [=]() {
             XOLATreeModel* m = target();
             const QList<XOLATreeItem*> list = newItemList(true);
             note(QStringLiteral("AppendItemsList(%1 items)").arg(list.size()));
             if ((m->flags() & XOLATreeModel::MergeDuplicatesOption) && (isRoot(m) || inRootTree(m)))
                 markViewsStale("merged rows of a list load are not announced");
             m->AppendItemsList(list);
         }},
        {4, "PrependItemsList", [=]() {
             XOLATreeModel* m = target();
             const QList<XOLATreeItem*> list = newItemList(true);
             note(QStringLiteral("PrependItemsList(%1 items)").arg(list.size()));
             if ((m->flags() & XOLATreeModel::MergeDuplicatesOption) && (isRoot(m) || inRootTree(m)))
                 markViewsStale("merged rows of a list load are not announced");
             m->PrependItemsList(list);
         }},
        {3, "ReplaceItemsList", [=]() {
             XOLATreeModel* m = target();
             const QList<XOLATreeItem*> list = newItemList(true);
             note(QStringLiteral("ReplaceItemsList(%1 items)").arg(list.size()));
             if ((m->flags() & XOLATreeModel::MergeDuplicatesOption) && (isRoot(m) || inRootTree(m)))
                 markViewsStale("merged rows of a list load are not announced");
             m->ReplaceItemsList(list);
         }},
        {3, "ReplaceItemsListEx", [=]() {
             XOLATreeModel* m = target();
             QList<XOLATreeItem*> list = newItemList(true);
             // Some rows may stay: the in-place swap keeps them listed.
             for (int row = 0; row < m->rowCount(); ++row) {
                 if (m_choices.percent(30))
                     list.insert(m_choices.below(list.size() + 1), qobject_cast<XOLATreeItem*>(m->FindItem(row)));
             }
             note(QStringLiteral("ReplaceItemsListEx(%1 items)").arg(list.size()));
             const QList<const void*> listedBefore = rowAddresses(m);
             if (isRoot(m))
                 markViewsStale("the in-place swap connects nothing and names no ids");
             m->ReplaceItemsListEx(list);
             for (XOLATreeItem* item : qAsConst(list)) {
                 if (item && !listedBefore.contains(address(item))) {
                     m_unrelayed.insert(item);
                     // Nor is its child model relayed to the filter views.
                     if (isRoot(m)) {
                         for (auto it = m_unrelayedParents.begin(); it != m_unrelayedParents.end(); ++it)
                             it.value().insert(item);
                     }
                 }
             }
         }},
        {3, "RemoveAll", [=]() {
             XOLATreeModel* m = target();
             note(QStringLiteral("RemoveAll"));
             if (m_choices.percent(50))
                 m->RemoveAll();
             else
                 m->clear();
         }},
        {8, "RemoveOne", [=]() {
             XOLATreeModel* m = target();
             const QString id = m_choices.percent(70) && m->rowCount() > 0 ? m->FindItemID(m_choices.below(m->rowCount())) : randomId();
             note(QStringLiteral("RemoveOne(%1)").arg(id));
             m->RemoveOne(id);
         }},
        {4, "RemoveIdList", [=]() {
             XOLATreeModel* m = target();
             QStringList ids;
             const int count = m_choices.below(5);
             for (int i = 0; i < count; ++i)
                 ids << (m_choices.percent(60) && m->rowCount() > 0 ? m->FindItemID(m_choices.below(m->rowCount())) : randomId());
             note(QStringLiteral("Remove([%1])").arg(ids.join(QLatin1Char(','))));
             m->Remove(ids);
         }},
        {6, "RemoveRows", [=]() {
             XOLATreeModel* m = target();
             const int n = m->rowCount();
             const int h = m_choices.between(-2, n + 1);
             const int t = m_choices.percent(80) ? h + m_choices.between(-1, 3) : m_choices.between(-3, n + 3);
             note(QStringLiteral("Remove(%1, %2) of %3").arg(h).arg(t).arg(n));
             if (isRoot(m) && (m_rootFlags & XOLATreeModel::KeepRemovedItemsOption))
                 markViewsStale("a range removal that keeps the items names no ids");
             m->Remove(h, t);
         }},
        {2, "RemoveOneItem", [=]() {
             XOLATreeModel* m = target();
             XOLATreeItem* item = randomListedItem(m);
             note(QStringLiteral("RemoveOne(item %1)").arg(item ? item->id() : QStringLiteral("null")));
             // The building block sends no itemsRemoved: views keep the item.
             if (isRoot(m))
                 markViewsStale("RemoveOne(item) names no ids");
             m->RemoveOne(item);
         }},
        {5, "MoveRow", [=]() {
             XOLATreeModel* m = target();
             const int n = m->rowCount();
             const int from = m_choices.between(-1, n);
             const int to = m_choices.between(-1, n);
             note(QStringLiteral("MoveRow(%1, %2) of %3").arg(from).arg(to).arg(n));
             if (isRoot(m))
                 m_groupExact = false; // a reset the group view only forwards
             m->MoveRow(from, to);
         }},
        {1, "ClearAllSourceContainer", [=]() {
             // Empties a model and deletes its rows at once without a notice: the
             // model's own listeners are not told, the paging view and the partial
             // window keep their old counts, and the filter and group views let
             // the rows go as they are deleted.
             XOLATreeModel* m = randomOwningModel();
             note(QStringLiteral("ClearAllSourceContainer on %1").arg(isRoot(m) ? QStringLiteral("the main model") : QStringLiteral("a child")));
             if (isRoot(m)) {
                 markViewsStale("the main model emptied without notices");
                 m_countsStale = true;
             } else if (inRootTree(m)) {
                 markViewsStale("a child model emptied without notices");
             }
             m->ClearAllSourceContainer();
             for (const Watched& w : qAsConst(m_watched)) {
                 if (w.balance && (w.kind == ModelKind::Root || w.kind == ModelKind::Child))
                     w.balance->resync();
             }
             // The paging view keeps the count it announced last for good (a
             // forwarded reset does not change it): the host makes it again.
             if (isRoot(m))
                 makePaging();
         }},
        {2, "CopyItem", [=]() {
             XOLATreeModel* m = target();
             XOLATreeItem* a = randomListedItem(m);
             XOLATreeItem* b = randomListedItem(m);
             note(QStringLiteral("CopyItem"));
             if (a && b && a->id() != b->id()) {
                 m_renamed.insert(b);
                 markViewsStale("CopyItem renames a listed item");
             }
             if (m_choices.percent(50))
                 m->CopyItem(a, m_choices.percent(10) ? nullptr : b);
             else
                 m->HandleDuplicatedItem(a, b);
         }},
        {1, "KeepSortingCheck", [=]() {
             note(QStringLiteral("KeepSortingCheck"));
             target()->KeepSortingCheck();
         }},
        {3, "ReinsertFreeItem", [=]() {
             // A host hands an item it got back (Remove by id list, or a model
             // that keeps removed items) to a model again.
             QList<XOLATreeItem*> free;
             for (const QPointer<XOLATreeItem>& p : qAsConst(m_items)) {
                 if (p && !isListedSomewhere(p))
                     free << p.data();
             }
             if (free.isEmpty())
                 return;
             XOLATreeItem* item = m_choices.pick(free);
             // Still shown by a stale view? Then the host would hand over an item
             // a view of another model shows; the views are told nothing of it.
             for (FilterModelImp* f : {m_ruleFilter.data(), m_headFilter.data(), m_predicateFilter.data()}) {
                 if (f && rowAddresses(f).contains(address(item)))
                     return;
             }
             XOLATreeModel* m = target();
             // A tree, not a graph: the item must not go below itself.
             if (isBelow(m, item))
                 return;
             note(QStringLiteral("AppendItem(free %1)").arg(item->id()));
             m_renamed.remove(item);
             m_unrelayed.remove(item);
             m->AppendItem(item);
             if (isRoot(m)) {
                 for (auto it = m_unrelayedParents.begin(); it != m_unrelayedParents.end(); ++it)
                     it.value().remove(item);
             }
         }},
        // ---- sorting ----
        {5, "SortByRole", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             if (m == m_group.data())
                 m_groupExact = false; // the groups' order is the sort's now
             const bool ascending = m_choices.percent(50);
             const auto less = randomLessThan();
             note(QStringLiteral("SortByRole asc=%1 less=%2").arg(ascending).arg(bool(less)));
             if (m_choices.percent(50))
                 m->SortByRole(randomRole(), ascending, less);
             else
                 m->SortByRole(randomRoleName(), ascending, less);
         }},
        {3, "SortByRoleAndKeep", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             if (m == m_group.data())
                 m_groupExact = false;
             const bool ascending = m_choices.percent(50);
             note(QStringLiteral("SortByRoleAndKeep"));
             if (m_choices.percent(50))
                 m->SortByRoleAndKeep(randomRole(), ascending, randomLessThan());
             else
                 m->SortByRoleAndKeep(randomRoleName(), ascending, randomLessThan());
         }},
        {5, "SortByRules", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             if (m == m_group.data())
                 m_groupExact = false;
             static const QList<int> flags{0, 0, 1, 2, 2, 3, -1, 7};
             const QVariantList rules = randomSortRules();
             const int flag = m_arguments ? m_arguments->sortFlag() : m_choices.pick(flags);
             note(QStringLiteral("SortByRules(%1, %2)").arg(describe(rules)).arg(flag));
             m->SortByRules(rules, flag);
         }},
        {1, "SortByQMLFunction", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             if (m == m_group.data())
                 m_groupExact = false;
             static const QStringList functions{QStringLiteral("less"), QStringLiteral("greater"), QStringLiteral("always"),
                                                QStringLiteral("fails"), QStringLiteral("nonbool"), QStringLiteral("missing"), QString()};
             const QString file = comparisonFile(true);
             const QString function = m_arguments ? m_arguments->comparisonFunction(true) : m_choices.pick(functions);
             note(QStringLiteral("SortByRoleByQMLFunction(%1, %2)").arg(file.section(QLatin1Char('/'), -2), function));
             if (m_choices.percent(50))
                 m->SortByRoleByQMLFunction(randomRole(), m_choices.percent(50), file, function);
             else
                 m->SortByRoleByQMLFunction(randomRoleName(), m_choices.percent(50), file, function);
         }},
        {1, "SortByScriptFunction", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             if (m == m_group.data())
                 m_groupExact = false;
             static const QStringList functions{QStringLiteral("less"), QStringLiteral("greater"), QStringLiteral("fails"),
                                                QStringLiteral("nonbool"), QStringLiteral("missing"), QString()};
             const QString file = comparisonFile(false);
             const QString function = m_arguments ? m_arguments->comparisonFunction(false) : m_choices.pick(functions);
             note(QStringLiteral("SortByRoleByScriptFunction(%1, %2)").arg(file.section(QLatin1Char('/'), -2), function));
             if (m_choices.percent(50))
                 m->SortByRoleByScriptFunction(randomRole(), m_choices.percent(50), file, function);
             else
                 m->SortByRoleByScriptFunction(randomRoleName(), m_choices.percent(50), file, function);
         }},
        // ---- item changes ----
        {12, "ChangeItem", [=]() {
             XOLATreeModel* m = target();
             XOLATreeItem* item = randomListedItem(m);
             if (!item)
                 return;
             const bool inChild = !isRoot(m);
             // An item listed by the in-place swap is not connected: its change
             // reaches no view.
             if (m_unrelayed.contains(item) && (isRoot(m) || inRootTree(m)))
                 markViewsStale("a change of an item the in-place swap listed");
             // Mostly values; ids, maps and child models now and then.
             int what = m_choices.below(16);
             if (what >= 10)
                 what %= 5;
             note(QStringLiteral("change %1 of item %2 (%3)").arg(what).arg(item->id(), inChild ? QStringLiteral("child") : QStringLiteral("root")));
             switch (what) {
             case 0:
             case 1:
             case 2:
                 item->setData(ValueRole, randomValue());
                 break;
             case 3:
             case 4:
                 item->setData(QStringLiteral("groupRole"), QStringLiteral("g%1").arg(m_choices.below(5)));
                 break;
             case 5:
                 item->SetName(QStringLiteral("n%1").arg(m_choices.below(10)));
                 break;
             case 6: {
                 // The id changes under the model, which keeps indexing the old one.
                 const QString old = item->id();
                 item->setData(XOLATreeItem::IdRole, randomId());
                 if (item->id() != old) {
                     m_renamed.insert(item);
                     if (!inChild)
                         markViewsStale("an id changed while listed");
                 }
                 break;
             }
             case 7: {
                 const QString old = item->id();
                 QVariantMap json = item->getData(XOLATreeItem::JsonValueRole).toMap();
                 if (m_choices.percent(50))
                     json.remove(QStringLiteral("idRole"));
                 if (m_choices.percent(50))
                     json.remove(QStringLiteral("childModelRole"));
                 json.insert(QStringLiteral("free"), m_choices.below(3));
                 item->setData(XOLATreeItem::JsonValueRole, json);
                 if (item->id() != old) {
                     m_renamed.insert(item);
                     if (!inChild)
                         markViewsStale("an id changed while listed");
                 }
                 break;
             }
             case 8:
                 item->SetChildModel(m_choices.percent(30) ? nullptr : newChildModel());
                 break;
             default: {
                 // Any role, any value: the id, the child model and the whole map too.
                 const QString old = item->id();
                 item->setData(QStringLiteral("nope"), 1);
                 item->setData(randomRole(), randomValue());
                 if (item->id() != old) {
                     m_renamed.insert(item);
                     if (!inChild)
                         markViewsStale("an id changed while listed");
                 }
                 break;
             }
             }
         }},
        {6, "ChildRows", [=]() {
             // Rows of a child model change: the parent item relays it.
             const QList<XOLATreeModel*> models = owningModels();
             if (models.size() < 2)
                 return;
             XOLATreeModel* m = models.at(1 + m_choices.below(models.size() - 1));
             note(QStringLiteral("rows of a child model"));
             if (m_choices.percent(60))
                 m->AppendItem(newItem());
             else if (m->rowCount() > 0)
                 m->Remove(0, 0);
         }},
        // ---- reads, with any arguments, on every model ----
        {10, "Reads", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             const int row = m_choices.between(-2, m->rowCount() + 1);
             const QString id = m_choices.percent(50) && m->rowCount() > 0 ? m->FindItemID(m_choices.below(m->rowCount())) : randomId();
             note(QStringLiteral("reads row %1 id %2").arg(row).arg(id));
             m->FindItemID(row);
             m->FindItemRow(id);
             m->FindItemValue(row, randomRole());
             m->FindItemValue(row, randomRoleName());
             m->FindItemValue(id, randomRole());
             m->FindItemValue(id, randomRoleName());
             m->FindItemValueEx(id, randomRole(), m_choices.percent(50));
             m->FindItemValueEx(id, randomRoleName(), m_choices.percent(50));
             QList<QString> ids{QStringLiteral("kept")};
             m->GetAllIDs(ids, m_choices.percent(50));
             m->get(row);
             m->FindItem(row);
             m->FindItem(id, m_choices.percent(50));
             const int role = randomRole();
             const QVariant value = m->data(m->index(qMax(0, row), 0), role);
             // A filter view answers its row's child model with a new child view,
             // which is the caller's to delete outside QML.
             if (qobject_cast<FilterModelImp*>(m) && role == XOLATreeItem::ChildModelRole)
                 delete value.value<QObject*>();
             m->data(QModelIndex(), randomRole());
             m->page();
             m->totalPage();
             m->FirstPartialModelRow();
             if (auto* filter = qobject_cast<FilterModelImp*>(m)) {
                 // Every read of a row's child model makes a new child view.
                 for (int r = 0; r < filter->rowCount(); ++r)
                     delete filter->data(filter->index(r, 0), int(XOLATreeItem::ChildModelRole)).value<QObject*>();
             }
         }},
        {3, "PartialWindow", [=]() {
             const int what = m_choices.below(4);
             const int value = m_choices.between(-4, m_root->rowCount() + 4);
             note(QStringLiteral("partial %1(%2)").arg(what).arg(value));
             if (what == 0)
                 m_root->SetPartialModelCount(value);
             else if (what == 1)
                 m_root->GetPartialModel(value);
             else
                 m_root->SetFirstPartialModelRow(value);
             // A size set while the first row lies past the end announces one
             // row that is not shown.
             if (what < 2 && value >= 1 && m_partial->rowCount() < 1)
                 m_partialPhantom = true;
             m_partial->get(m_choices.between(-2, 12));
             m_partial->FindItemRow(randomId());
         }},
        {1, "ChildPartialWindow", [=]() {
             IXOLATreeModel* m = randomAnyModel();
             note(QStringLiteral("partial window of another model"));
             const int count = m_choices.between(-1, 5);
             m->GetPartialModel(count);
             if (m == m_root.data() && count >= 1 && m_partial->rowCount() < 1)
                 m_partialPhantom = true;
             m->SetFirstPartialModelRow(m_choices.between(-2, 8));
             const int again = m_choices.between(-1, 5);
             m->SetPartialModelCount(again);
             if (m == m_root.data() && again >= 1 && m_partial->rowCount() < 1)
                 m_partialPhantom = true;
         }},
        // ---- views ----
        {4, "UpdateFilterRules", [=]() {
             FilterModelImp* f = m_choices.percent(50) ? m_ruleFilter.data() : m_headFilter.data();
             IXOLATreeModel* m = m_choices.percent(90) && f ? static_cast<IXOLATreeModel*>(f) : randomAnyModel();
             const QVariantList rules = randomFilterRules();
             const bool orAll = m_choices.percent(50);
             note(QStringLiteral("UpdateFilterRules(%1, %2)").arg(describe(rules)).arg(orAll));
             auto* filter = qobject_cast<FilterModelImp*>(m);
             // A rebuild makes the view exact. Whether the rules count as the
             // same ones is decided by the view's own value equality, which is
             // not QVariant's, so the rebuild is watched for rather than predicted.
             int rebuilt = 0;
             QMetaObject::Connection c;
             if (filter)
                 c = QObject::connect(filter, &IXOLATreeModel::filterModelChanged, [&rebuilt]() { ++rebuilt; });
             m->UpdateFilterRules(rules, orAll);
             QObject::disconnect(c);
             if (filter && rebuilt > 0) {
                 m_exactFilters.insert(filter);
                 m_dirtyIndex.remove(filter);
             }
         }},
        {2, "UpdateUserDefinedFilterRules", [=]() {
             IXOLATreeModel* m = m_choices.percent(80) && m_predicateFilter ? static_cast<IXOLATreeModel*>(m_predicateFilter.data())
                                                                            : randomAnyModel();
             note(QStringLiteral("UpdateUserDefinedFilterRules"));
             auto* filter = qobject_cast<FilterModelImp*>(m);
             // A rebuild makes the view exact; an equal value rebuilds nothing.
             int rebuilt = 0;
             QMetaObject::Connection c;
             if (filter)
                 c = QObject::connect(filter, &IXOLATreeModel::filterModelChanged, [&rebuilt]() { ++rebuilt; });
             m->UpdateUserDefinedFilterRules(randomRuleValue());
             QObject::disconnect(c);
             if (filter && rebuilt > 0) {
                 m_exactFilters.insert(filter);
                 m_dirtyIndex.remove(filter);
             }
         }},
        {2, "UpdateGroupRole", [=]() {
             IXOLATreeModel* m = m_choices.percent(90) && m_group ? static_cast<IXOLATreeModel*>(m_group.data()) : randomAnyModel();
             note(QStringLiteral("UpdateGroupRole"));
             const int before = m_group ? m_group->groupRole() : 0;
             if (m_choices.percent(50))
                 m->UpdateGroupRole(randomRole());
             else
                 m->UpdateGroupRole(randomRoleName());
             if (m_group && m == m_group.data() && m_group->groupRole() != before)
                 m_groupExact = true;
         }},
        {3, "SetPage", [=]() {
             IXOLATreeModel* m = m_choices.percent(90) && m_paging ? static_cast<IXOLATreeModel*>(m_paging.data()) : randomAnyModel();
             const int page = m_choices.between(-2, m->totalPage() + 2);
             note(QStringLiteral("setPage(%1)").arg(page));
             m->setPage(page);
         }},
        {2, "NewView", [=]() {
             const int which = m_choices.below(5);
             note(QStringLiteral("new view %1").arg(which));
             switch (which) {
             case 0: makeRuleFilter(false); break;
             case 1: makeRuleFilter(true); break;
             case 2: makePredicateFilter(); break;
             case 3: makeGroup(); break;
             default: makePaging(); break;
             }
         }},
        {2, "ViewOfView", [=]() {
             // Views of views, used and dropped at once.
             IXOLATreeModel* m = randomAnyModel();
             note(QStringLiteral("view of a view"));
             QObject* view = nullptr;
             switch (m_choices.below(4)) {
             case 0: view = m->GetFilterModel(randomFilterRules(), m_choices.percent(50), m_choices.between(-1, 2)); break;
             case 1: view = m->GetFilterModelByUserDefinedRules(randomRuleValue(), m_choices.below(2)); break;
             case 2: view = m->GetGroupModel(randomRoleName(), m_choices.percent(50)); break;
             default: view = m->GetPagingModel(uint(m_choices.below(4))); break;
             }
             if (auto* v = qobject_cast<IXOLATreeModel*>(view)) {
                 QList<QString> ids;
                 v->GetAllIDs(ids, true);
                 for (int row = 0; row < v->rowCount(); ++row)
                     v->get(row);
             }
             delete view;
         }},
        {4, "ViewMutation", [=]() {
             // What QML may call on a view: the view's own rows change, the
             // source is untouched. The view then differs from a rebuild until
             // its next rebuild.
             IXOLATreeModel* v = nullptr;
             switch (m_choices.below(5)) {
             case 0: v = m_ruleFilter; break;
             case 1: v = m_headFilter; break;
             case 2: v = m_predicateFilter; break;
             case 3: v = m_group; break;
             default: v = m_paging; break;
             }
             if (!v)
                 return;
             const int what = m_choices.below(6);
             note(QStringLiteral("view mutation %1").arg(what));
             if (qobject_cast<FilterModelImp*>(v))
                 m_exactFilters.remove(qobject_cast<FilterModelImp*>(v));
             if (v == m_group.data())
                 m_groupExact = false;
             const int n = v->rowCount();
             switch (what) {
             case 0: v->RemoveOne(n > 0 ? v->FindItemID(m_choices.below(n)) : randomId()); break;
             case 1: v->Remove(QStringList{randomId(), n > 0 ? v->FindItemID(0) : QString()}); break;
             case 2: v->Remove(m_choices.between(-1, n), m_choices.between(-1, n)); break;
             case 3: v->MoveRow(m_choices.between(-1, n), m_choices.between(-1, n)); break;
             case 4: v->clear(); break;
             default: v->RemoveAll(); break;
             }
         }},
    };
    m_totalWeight = 0;
    for (const Operation& op : qAsConst(m_operations))
        m_totalWeight += op.weight;
    m_root->setObjectName(QStringLiteral("root"));
}

// ---- one step ---------------------------------------------------------------------------------------

bool OperationEngine::step()
{
    if (!m_failure.isEmpty() || m_finished)
        return false;

    // Which op.
    int pick = m_choices.below(m_totalWeight);
    const Operation* op = &m_operations.first();
    for (const Operation& candidate : qAsConst(m_operations)) {
        if (pick < candidate.weight) {
            op = &candidate;
            break;
        }
        pick -= candidate.weight;
    }
    return runOperation(*op);
}

bool OperationEngine::step(const QString& operationName)
{
    if (!m_failure.isEmpty() || m_finished)
        return false;
    for (const Operation& op : qAsConst(m_operations)) {
        if (operationName == QLatin1String(op.name))
            return runOperation(op);
    }
    return fail(QStringLiteral("no operation named %1").arg(operationName));
}

bool OperationEngine::runOperation(const Operation& op)
{
    ++m_steps;
    m_operation = QString::fromLatin1(op.name);
    m_current = m_operation;
    ++m_counts[m_operation];

    // What each owning model lists now, to tell afterwards what it let go of.
    struct Before
    {
        QPointer<XOLATreeModel> model;
        bool keeps;
        QList<QPointer<XOLATreeItem>> items;
    };
    QList<Before> before;
    for (XOLATreeModel* m : owningModels()) {
        Before b{m, (m->flags() & XOLATreeModel::KeepRemovedItemsOption) != 0, {}};
        for (int row = 0; row < m->rowCount(); ++row)
            b.items << qobject_cast<XOLATreeItem*>(m->FindItem(row));
        before << b;
    }
    for (const Watched& w : qAsConst(m_watched)) {
        if (w.balance) {
            w.balance->clearLoneCounts();
            w.balance->clearTraffic();
        }
    }
    const bool rootAmbiguousBefore = [this]() {
        QSet<QString> seen;
        for (int row = 0; row < m_root->rowCount(); ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(m_root->FindItem(row));
            if (m_renamed.contains(item) || seen.contains(item->id()))
                return true;
            seen.insert(item->id());
        }
        return false;
    }();

    // The window's size follows the source below zero when the source shrinks
    // under its first row (rowCount() is then negative, by design); its
    // notices then name rows below zero. Checked for not crashing only.
    const bool windowNegativeBefore = m_partial && m_partial->rowCount() < 0;

    op.run();
    settle();

    if (m_partial && (windowNegativeBefore || m_partial->rowCount() < 0)) {
        for (const Watched& w : qAsConst(m_watched)) {
            if (w.kind == ModelKind::Partial && w.balance) {
                w.balance->takeProblems();
                w.balance->resync();
            }
        }
    }

    if (!m_root)
        return fail(QStringLiteral("the main model was deleted"));
    watchGroupMembers();
    if (!checkNothingDeletedIsHeld())
        return false;

    // ---- ownership: what the models let go of, and what they deleted ----
    // Removal by id list and the RemoveOne(item) building block hand the items
    // back; ClearAllSourceContainer, and the in-place swap through it, delete
    // at once whatever the option bits say, down through the child models.
    const bool handsBack = m_operation == QLatin1String("RemoveIdList") || m_operation == QLatin1String("RemoveOneItem");
    const bool deletesAll = m_operation == QLatin1String("ClearAllSourceContainer") || m_operation == QLatin1String("ReplaceItemsListEx");
    for (const Before& b : qAsConst(before)) {
        const QList<const void*> now = b.model ? rowAddresses(b.model) : QList<const void*>();
        for (const QPointer<XOLATreeItem>& p : b.items) {
            if (!p) {
                // Gone: only a model that owns its items may have deleted it.
                if (b.keeps && !deletesAll)
                    return fail(QStringLiteral("a model that keeps removed items deleted one"));
                continue;
            }
            if (now.contains(address(p)))
                continue;
            if (!b.keeps && !handsBack && !isListedSomewhere(p))
                return fail(QStringLiteral("item %1 left an owning model but was not deleted (leak)").arg(p->id()));
        }
    }
    childModelsChanged();

    // Whatever was ambiguous in the main model (equal ids, changed ids) makes the
    // views' id-based following inexact.
    const bool rootAmbiguousAfter = [this]() {
        QSet<QString> seen;
        for (int row = 0; row < m_root->rowCount(); ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(m_root->FindItem(row));
            if (m_renamed.contains(item) || seen.contains(item->id()))
                return true;
            seen.insert(item->id());
        }
        return false;
    }();
    if (rootAmbiguousBefore || rootAmbiguousAfter) {
        markViewsStale("ids are not unique or changed");
        // The views' own indexes follow the source by id: for a moment they may
        // have held both of two equal ids.
        for (FilterModelImp* f : {m_ruleFilter.data(), m_headFilter.data(), m_predicateFilter.data()}) {
            if (f)
                m_dirtyIndex.insert(f);
        }
    }

    // The partial window recounts (it resets) on the main model's next row notice.
    if (m_countsStale && m_operation != QLatin1String("ClearAllSourceContainer")) {
        for (const Watched& w : qAsConst(m_watched)) {
            if (w.kind == ModelKind::Root && w.balance && w.balance->countTraffic() > 0)
                m_countsStale = false;
        }
    }

    // The group view rebuilds on every row or data notice of the main model.
    for (const Watched& w : qAsConst(m_watched)) {
        if (w.kind == ModelKind::Root && w.balance && w.balance->rowTraffic() > 0 && m_group && m_group->keepSortWithSource()
            && !rootAmbiguousAfter && m_operation != QLatin1String("ViewMutation") && m_operation != QLatin1String("MoveRow"))
            m_groupExact = true;
    }

    // A model that held equal ids, or an id that changed while listed, may have
    // lost or misplaced index entries for good (removing one of two equal ids
    // drops the index entry of both): FindItem(id) is then only checked for
    // never answering a deleted object. Emptying or replacing the rows starts
    // the index afresh.
    markDirtyIndexes(m_operation == QLatin1String("RemoveAll") || m_operation == QLatin1String("ReplaceItemsList")
                     || m_operation == QLatin1String("ReplaceItemsListEx"));

    watchGroupMembers();
    if (qEnvironmentVariableIsSet("XOLA_ENGINE_TRACE")) {
        // Every model's ids after each step, for chasing a failure by hand.
        for (const Watched& w : qAsConst(m_watched)) {
            auto* model = qobject_cast<IXOLATreeModel*>(w.model.data());
            if (!model || !w.balance)
                continue;
            QStringList ids;
            for (int row = 0; row < model->rowCount(); ++row)
                ids << model->FindItemID(row);
            qDebug("%d %s [%s]", m_steps, qPrintable(w.balance->name()), qPrintable(ids.join(QLatin1Char(','))));
        }
    }
    return checkAll();
}

QList<XOLATreeModel*> OperationEngine::owningModels() const
{
    QList<XOLATreeModel*> result;
    if (m_root)
        result << m_root.data();
    for (const QPointer<XOLATreeModel>& child : m_childModels) {
        if (child)
            result << child.data();
    }
    return result;
}

void OperationEngine::markDirtyIndexes(bool restartsIndex)
{
    for (const Watched& w : qAsConst(m_watched)) {
        auto* model = qobject_cast<IXOLATreeModel*>(w.model.data());
        if (!model)
            continue;
        if (restartsIndex && model->rowCount() == 0)
            m_dirtyIndex.remove(model);
        QSet<QString> seen;
        for (int row = 0; row < model->rowCount(); ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(model->FindItem(row));
            if (!item)
                continue;
            if (seen.contains(item->id()) || m_renamed.contains(item))
                m_dirtyIndex.insert(model);
            seen.insert(item->id());
        }
    }
}

XOLATreeItem* OperationEngine::ownerInTree(const QObject* model, bool* firstLevel) const
{
    // Depth first from the main model's rows; the first owner found wins.
    QList<QPair<IXOLATreeModel*, bool>> pending{qMakePair(static_cast<IXOLATreeModel*>(m_root.data()), true)};
    QSet<const QObject*> seen;
    while (!pending.isEmpty()) {
        const auto next = pending.takeFirst();
        if (!next.first || seen.contains(next.first))
            continue;
        seen.insert(next.first);
        for (int row = 0; row < next.first->rowCount(); ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(next.first->FindItem(row));
            if (!item)
                continue;
            if (item->childModel() == model) {
                *firstLevel = next.second;
                return item;
            }
            if (auto* child = qobject_cast<IXOLATreeModel*>(item->childModel()))
                pending << qMakePair(child, false);
        }
    }
    return nullptr;
}

bool OperationEngine::inRootTree(const QObject* model) const
{
    bool firstLevel = false;
    return ownerInTree(model, &firstLevel) != nullptr;
}

void OperationEngine::childModelsChanged()
{
    // A child model that announced a change reaches the filter views through its
    // parent item's relay: one level below the main model only, and only for a
    // parent the view connected (every row it saw inserted; not the row of a
    // prepend, announced elsewhere, nor one the in-place swap listed). A relay
    // from an item the main model dropped but still indexes (a range removal that
    // keeps items) can even bring it back into a view. The relay passes on a
    // data change over no rows too (the sort of an empty child model).
    for (const Watched& w : qAsConst(m_watched)) {
        if (w.kind != ModelKind::Child || !w.model || !w.balance || w.balance->relayedTraffic() == 0)
            continue;
        bool firstLevel = false;
        XOLATreeItem* owner = ownerInTree(w.model, &firstLevel);
        if (!owner) {
            // Not below the main model, unless below an item it still indexes.
            for (const QPointer<XOLATreeItem>& p : qAsConst(m_items)) {
                if (p && p->childModel() == w.model.data() && m_root->FindItem(p->id(), false) == p.data())
                    markViewsStale("a relay from an item the main model still indexes");
            }
            continue;
        }
        if (!firstLevel) {
            markViewsStale("a change two or more levels below the main model");
            continue;
        }
        for (auto it = m_unrelayedParents.constBegin(); it != m_unrelayedParents.constEnd(); ++it) {
            if (it.value().contains(owner)) {
                ++m_staleReasons[QStringLiteral("a change below a row the view never connected")];
                m_exactFilters.remove(it.key());
            }
        }
    }
}

bool OperationEngine::isBelow(const QObject* model, const XOLATreeItem* item) const
{
    auto* child = qobject_cast<IXOLATreeModel*>(item->childModel());
    if (!child)
        return false;
    if (child == model)
        return true;
    for (int row = 0; row < child->rowCount(); ++row) {
        auto* below = qobject_cast<XOLATreeItem*>(child->FindItem(row));
        if (below && isBelow(model, below))
            return true;
    }
    return false;
}

bool OperationEngine::isListedSomewhere(const XOLATreeItem* item) const
{
    for (XOLATreeModel* m : owningModels()) {
        if (rowAddresses(m).contains(address(item)))
            return true;
    }
    return false;
}

// ---- checks ------------------------------------------------------------------------------------------

bool OperationEngine::checkAll()
{
    if (!checkNothingDeletedIsHeld())
        return false;
    if (!checkBalances())
        return false;
    for (XOLATreeModel* m : owningModels()) {
        if (!checkLookups(m, m == m_root.data() ? QStringLiteral("root") : QStringLiteral("child"), true))
            return false;
    }
    for (FilterModelImp* f : {m_ruleFilter.data(), m_headFilter.data(), m_predicateFilter.data()}) {
        if (f && !checkFilter(f, f == m_ruleFilter.data() ? QStringLiteral("rule filter")
                                                           : f == m_headFilter.data() ? QStringLiteral("head filter")
                                                                                      : QStringLiteral("predicate filter")))
            return false;
    }
    return checkGroup() && checkPaging() && checkPartial();
}

bool OperationEngine::checkNothingDeletedIsHeld()
{
    // No row of any model may hold an object that is gone; checked by address
    // before anything is read from the rows.
    QSet<const void*> alive;
    for (const QPointer<XOLATreeItem>& p : qAsConst(m_items)) {
        if (p)
            alive.insert(address(p));
    }
    for (const Watched& w : qAsConst(m_watched)) {
        auto* model = qobject_cast<IXOLATreeModel*>(w.model.data());
        if (!model || w.kind == ModelKind::Group)
            continue;
        if (w.kind == ModelKind::Paging)
            continue; // rows of the source, checked there
        for (const void* row : rowAddresses(model)) {
            if (!alive.contains(row))
                return fail(QStringLiteral("%1 lists an object that was deleted").arg(w.balance ? w.balance->name() : QString()));
        }
        // An id lookup must never answer with a deleted object either.
        for (const QString& id : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
                                  QStringLiteral("e"), QStringLiteral("f"), QStringLiteral("g"), QStringLiteral("h"), QString()}) {
            const QObject* found = model->FindItem(id, false);
            if (found && !alive.contains(address(found)))
                return fail(QStringLiteral("%1 answers id '%2' with a deleted object").arg(w.balance ? w.balance->name() : QString(), id));
        }
    }
    return true;
}

bool OperationEngine::checkBalances()
{
    for (const Watched& w : qAsConst(m_watched)) {
        if (!w.model || !w.balance)
            continue;
        const QStringList problems = w.balance->takeProblems();
        if (!problems.isEmpty())
            return fail(problems.join(QLatin1String("; ")));
        const QString open = w.balance->openNotice();
        if (!open.isEmpty())
            return fail(w.balance->name() + QStringLiteral(": ") + open);
        // A lone modelReset is a forwarded one on views; on a model it comes only
        // from the script sort, whose endResetModel has no begin by design.
        if (w.balance->loneResets() > 0 && (w.kind == ModelKind::Root || w.kind == ModelKind::Child)
            && m_operation != QLatin1String("SortByScriptFunction"))
            return fail(w.balance->name() + QStringLiteral(": modelReset without modelAboutToBeReset"));
        const int rows = w.model->rowCount();
        if (m_countsStale && w.kind == ModelKind::Partial)
            continue;
        if (w.kind == ModelKind::Partial) {
            // The window may announce one row it does not show (a size set while
            // the first row lies past the end), and its size follows the source
            // silently down to zero and below.
            if (rows < 1 || w.balance->announcedCount() < 1 || m_partialPhantom)
                w.balance->resync();
            m_partialPhantom = false;
        }
        if (w.balance->announcedCount() != rows)
            return fail(QStringLiteral("%1: %2 rows announced, %3 rows there").arg(w.balance->name()).arg(w.balance->announcedCount()).arg(rows));
    }
    return true;
}

bool OperationEngine::checkLookups(IXOLATreeModel* model, const QString& name, bool exactIds)
{
    const int n = model->rowCount();
    QList<QString> all;
    model->GetAllIDs(all, false);
    if (all.size() != n)
        return fail(QStringLiteral("%1: GetAllIDs gives %2 ids for %3 rows").arg(name).arg(all.size()).arg(n));
    QHash<QString, int> firstRow;
    QSet<QString> duplicated;
    bool renamed = false;
    for (int row = 0; row < n; ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(model->FindItem(row));
        if (!item)
            return fail(QStringLiteral("%1: row %2 of %3 has no item").arg(name).arg(row).arg(n));
        renamed = renamed || m_renamed.contains(item);
        const QString id = item->id();
        if (model->FindItemID(row) != id || all.at(row) != id)
            return fail(QStringLiteral("%1: row %2 answers id '%3' / '%4', item says '%5'").arg(name).arg(row).arg(model->FindItemID(row), all.at(row), id));
        if (model->data(model->index(row, 0), XOLATreeItem::IdRole).toString() != id)
            return fail(QStringLiteral("%1: data() of row %2 disagrees with the item").arg(name).arg(row));
        if (firstRow.contains(id))
            duplicated.insert(id);
        else
            firstRow.insert(id, row);
    }
    for (auto it = firstRow.constBegin(); it != firstRow.constEnd(); ++it) {
        if (model->FindItemRow(it.key()) != it.value())
            return fail(QStringLiteral("%1: FindItemRow('%2') is %3, first row is %4").arg(name, it.key()).arg(model->FindItemRow(it.key())).arg(it.value()));
        // With unique, unchanged ids the index answers with the listed item.
        if (exactIds && duplicated.isEmpty() && !renamed && !m_dirtyIndex.contains(model)) {
            const QObject* found = model->FindItem(it.key(), false);
            if (found != model->FindItem(it.value()))
                return fail(QStringLiteral("%1: FindItem('%2') is not the item of row %3").arg(name, it.key()).arg(it.value()));
        }
    }
    if (model->FindItem(-1) || model->FindItem(n) || !model->FindItemID(n).isEmpty() || !model->FindItemID(-1).isEmpty()
        || !model->get(-1).isEmpty() || !model->get(n).isEmpty() || model->data(model->index(n, 0), XOLATreeItem::IdRole).isValid())
        return fail(name + QStringLiteral(": a row outside the model answered"));
    if (model->FindItemRow(QStringLiteral("\x01never")) != -1)
        return fail(name + QStringLiteral(": an unknown id has a row"));
    return true;
}

bool OperationEngine::checkFilter(FilterModelImp* view, const QString& name)
{
    if (!checkLookups(view, name, true))
        return false;
    if (!m_exactFilters.contains(view))
        return true;
    ++m_checked[QStringLiteral("filter view against a rebuild")];
    // Rebuilt from scratch: the source rows that pass, as a set (the view's order
    // depends on where new rows go and on sorts of the view itself).
    QList<const void*> expected;
    for (int row = 0; row < m_root->rowCount(); ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_root->FindItem(row));
        if (view->IsMatchRule(item))
            expected << address(item);
    }
    QList<const void*> actual = rowAddresses(view);
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    if (expected != actual) {
        QStringList listed;
        for (int row = 0; row < view->rowCount(); ++row)
            listed << view->FindItemID(row);
        QStringList rebuilt;
        for (int row = 0; row < m_root->rowCount(); ++row) {
            auto* item = qobject_cast<XOLATreeItem*>(m_root->FindItem(row));
            rebuilt << (view->IsMatchRule(item) ? QStringLiteral("+") : QStringLiteral("-")) + item->id();
        }
        return fail(QStringLiteral("%1 lists %2 rows [%3], a rebuild gives %4 [%5]")
                        .arg(name).arg(actual.size()).arg(listed.join(QLatin1Char(','))).arg(expected.size()).arg(rebuilt.join(QLatin1Char(','))));
    }
    return true;
}

bool OperationEngine::checkGroup()
{
    if (!m_group)
        return true;
    if (!checkLookups(m_group, QStringLiteral("group"), true))
        return false;
    for (int row = 0; row < m_group->rowCount(); ++row) {
        const QVariant child = m_group->FindItemValue(row, int(XOLATreeItem::ChildModelRole));
        auto* members = qobject_cast<XOLATreeModel*>(child.value<QObject*>());
        if (!members)
            return fail(QStringLiteral("group %1 has no member model").arg(row));
        if (!checkLookups(members, QStringLiteral("members of ") + m_group->FindItemID(row), false))
            return false;
    }
    if (!m_group->keepSortWithSource() || !m_groupExact || m_group->groupRole() < 0)
        return true;
    // A group view that keeps itself sorted (sorted by the host) orders its
    // groups, and with the recursive flag their members, by its rules: then
    // only the grouping itself is compared.
    const bool ordered = m_group->sortFlag() == IXOLATreeModel::None;
    ++m_checked[QStringLiteral("group view against a regrouping")];
    // Rebuilt from scratch: groups in order of first appearance, members in
    // source order.
    QStringList expected;
    QHash<QString, QStringList> members;
    QStringList keys;
    for (int row = 0; row < m_root->rowCount(); ++row) {
        auto* item = qobject_cast<XOLATreeItem*>(m_root->FindItem(row));
        // A group's key is the value's text by the library's rules, the same on
        // every Qt (QVariant's own text of a byte array changed in Qt 6).
        const QString key = VariantRules::toString(item->getData(m_group->groupRole()));
        if (!members.contains(key))
            keys << key;
        members[key] << QString::number(quintptr(item), 16);
    }
    for (const QString& key : qAsConst(keys)) {
        QStringList list = members.value(key);
        if (!ordered)
            list.sort();
        expected << key + QLatin1Char(':') + list.join(QLatin1Char(','));
    }
    QStringList actual;
    for (int row = 0; row < m_group->rowCount(); ++row) {
        const QVariant child = m_group->FindItemValue(row, int(XOLATreeItem::ChildModelRole));
        auto* memberModel = qobject_cast<XOLATreeModel*>(child.value<QObject*>());
        QStringList list;
        for (int r = 0; r < memberModel->rowCount(); ++r)
            list << QString::number(quintptr(memberModel->FindItem(r)), 16);
        if (!ordered)
            list.sort();
        actual << m_group->FindItemID(row) + QLatin1Char(':') + list.join(QLatin1Char(','));
    }
    if (!ordered) {
        expected.sort();
        actual.sort();
    }
    if (actual != expected)
        return fail(QStringLiteral("the group view differs from a rebuild: %1 groups, %2 expected").arg(actual.size()).arg(expected.size()));
    return true;
}

bool OperationEngine::checkPaging()
{
    if (!m_paging)
        return true;
    const quint32 n = m_paging->numPerPage();
    const quint32 count = quint32(m_root->rowCount());
    const int total = int(count / n + (count % n ? 1 : 0));
    if (m_paging->totalPage() != total)
        return fail(QStringLiteral("paging: totalPage %1, expected %2").arg(m_paging->totalPage()).arg(total));
    const int lastPage = total > 0 ? total - 1 : 0;
    const int page = m_paging->page();
    if (page < 0 || page > lastPage)
        return fail(QStringLiteral("paging: page %1 outside 0..%2").arg(page).arg(lastPage));
    int rows = int(n);
    if (page == lastPage)
        rows = count % n ? int(count % n) : (count == 0 ? 0 : int(n));
    if (m_paging->rowCount() != rows)
        return fail(QStringLiteral("paging: %1 rows on page %2, expected %3").arg(m_paging->rowCount()).arg(page).arg(rows));
    for (int row = 0; row < rows; ++row) {
        const int sourceRow = int(n * quint32(page) + quint32(row));
        if (m_paging->FindItem(row) != m_root->FindItem(sourceRow))
            return fail(QStringLiteral("paging: row %1 is not source row %2").arg(row).arg(sourceRow));
        if (m_paging->data(m_paging->index(row, 0), XOLATreeItem::IdRole) != m_root->FindItemValue(sourceRow, int(XOLATreeItem::IdRole)))
            return fail(QStringLiteral("paging: data of row %1 differs from the source").arg(row));
    }
    if (m_paging->data(m_paging->index(rows, 0), XOLATreeItem::IdRole).isValid())
        return fail(QStringLiteral("paging: a row past the page answered"));
    for (int row = 0; row < m_root->rowCount(); ++row) {
        const QString id = m_root->FindItemID(row);
        if (m_paging->FindItemRow(id) != int(quint32(m_root->FindItemRow(id)) % n))
            return fail(QStringLiteral("paging: FindItemRow('%1') is not the in-page position").arg(id));
    }
    return true;
}

bool OperationEngine::checkPartial()
{
    if (!m_partial || m_countsStale)
        return true;
    const int first = m_root->FirstPartialModelRow();
    if (first != m_partial->GetFirstPartialModelRow() || first < 0)
        return fail(QStringLiteral("partial: first row %1").arg(first));
    const int shown = m_partial->rowCount();
    if (shown > m_root->rowCount() - first)
        return fail(QStringLiteral("partial: shows %1 rows from row %2 of %3").arg(shown).arg(first).arg(m_root->rowCount()));
    for (int row = 0; row < shown; ++row) {
        if (m_partial->data(m_partial->index(row, 0), XOLATreeItem::IdRole) != m_root->FindItemValue(first + row, int(XOLATreeItem::IdRole)))
            return fail(QStringLiteral("partial: row %1 is not source row %2").arg(row).arg(first + row));
    }
    if (m_partial->data(m_partial->index(qMax(shown, 0), 0), XOLATreeItem::IdRole).isValid())
        return fail(QStringLiteral("partial: a row past the window answered"));
    return true;
}

// ---- the end ------------------------------------------------------------------------------------------

bool OperationEngine::finishOrReport()
{
    if (finish() && m_failure.isEmpty())
        return true;
    std::fprintf(stderr, "%s\nlast operations:\n", qPrintable(m_failure));
    for (const QString& line : qAsConst(m_trail))
        std::fprintf(stderr, "  %s\n", qPrintable(line));
    return false;
}

bool OperationEngine::finish()
{
    if (m_finished)
        return m_failure.isEmpty();
    m_finished = true;
    // Views first (nothing deletes them: they belong to a QML engine there is
    // none of), then the models; the models' destructors dispose of their rows.
    delete m_ruleFilter.data();
    delete m_headFilter.data();
    delete m_predicateFilter.data();
    delete m_group.data();
    delete m_paging.data();
    // Children whose parent item is gone or that a model keeping its items never
    // disposed of are the host's.
    delete m_root.data();
    settle();
    for (const QPointer<XOLATreeModel>& child : qAsConst(m_childModels)) {
        delete child.data();
        settle();
    }
    // What is left was handed back to the host (refused, removed by id list, or
    // removed from a model that keeps removed items).
    for (const QPointer<XOLATreeItem>& item : qAsConst(m_items))
        delete item.data();
    settle();
    m_watched.clear();
    return m_failure.isEmpty();
}
