// Sorting: by one role (built-in comparison or a caller's less-than), by a
// comparison written in a QML or script file, and by a list of rules; plus the
// keep-sorting state that insertions consult.
//
// Every sort orders its rows exactly as inserting them one by one, in their
// current order, into an ordered multi-map would: from the root, go right when
// the node's key is less than the new key, else left, never replacing, in
// a red-black tree (MultiInsertionTree). Hosts
// depend on the resulting order of equal (and of inconsistently compared) rows,
// so every path below reproduces that order.

#include "XOLATreeModel.h"

#include "MultiInsertionTree.h"
#include "RadixSort.h"
#include "XOLATreeModelPrivate.h"
#include "MyVariant.h"
#include "MyVariantEx.h"
#include "VariantRules.h"

#include <QtCore/QByteArray>
#include <QtCore/QDate>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QSharedPointer>
#include <QtCore/QTextStream>
#include <QtCore/QTime>
#include <QtCore/QVector>
#include <QtCore/QtNumeric>
#include <QtQml/QJSEngine>
#include <QtQml/QJSValue>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

struct ValuedItem
{
    QVariant value;
    XOLATreeItem* item;
};

// Rows whose value equals an invalid variant go last.
bool isInvalidValue(const QVariant& value)
{
    // A value of one of the ordered types never equals an invalid variant;
    // only other types need QVariant's (costly) equality test.
    return !value.isValid()
        || (!MyVariant::isComparableType(value.userType()) && VariantRules::equals(value, QVariant()));
}

// The general path: a real multi-insertion, which gives the required order for
// any comparison, also one that contradicts itself.
template <typename MakeKey>
QList<XOLATreeItem*> multiInsertionOrder(const QVector<ValuedItem>& valued, MakeKey makeKey)
{
    MultiInsertionTree<MyVariant, XOLATreeItem*> map;
    for (const ValuedItem& entry : valued)
        map.insert(makeKey(entry.value), entry.item);
    return map.values();
}

// The same, reading each row's value just before placing it, for comparisons
// that run the caller's code: whatever that code does, it sees the rows
// exactly as a row-by-row insertion would show them.
template <typename MakeKey>
QList<XOLATreeItem*> rowByRowOrder(const QList<XOLATreeItem*> items, int role, MakeKey makeKey)
{
    MultiInsertionTree<MyVariant, XOLATreeItem*> map;
    QList<XOLATreeItem*> invalid;
    for (XOLATreeItem* item : items) {
        const QVariant value = item ? item->getData(role) : QVariant();
        if (isInvalidValue(value))
            invalid.append(item);
        else
            map.insert(makeKey(value), item);
    }
    return map.values() + invalid;
}

// The rows in the order of their keys, then the rows without a value. The
// list is copied from the rows once and overwritten, which is cheaper than
// appending pointer by pointer.
template <typename T>
QList<XOLATreeItem*> listInOrder(const QList<XOLATreeItem*>& rows,
                                 const std::vector<std::pair<T, XOLATreeItem*>>& entries,
                                 const QList<XOLATreeItem*>& invalid)
{
    Q_ASSERT(int(entries.size()) + invalid.size() == rows.size());
    QList<XOLATreeItem*> result = rows;
    result.detach();
    auto out = result.begin();
    for (const auto& entry : entries)
        *out++ = entry.second;
    for (XOLATreeItem* item : invalid)
        *out++ = item;
    return result;
}

// For a comparison that is a strict weak order, multi-insertion places every new
// key after the keys that precede it and, ascending, before the equal ones
// (equal rows come out reversed) or, descending, after the equal ones (they keep
// their order). A stable sort of the reversed input ascending, or of the input
// descending, gives exactly that order. entries are in row order.
template <typename T, typename Less>
void stableSortEntries(std::vector<std::pair<T, XOLATreeItem*>>& entries, bool ascending, Less less)
{
    if (ascending) {
        std::reverse(entries.begin(), entries.end());
        std::stable_sort(entries.begin(), entries.end(),
                         [&less](const std::pair<T, XOLATreeItem*>& a, const std::pair<T, XOLATreeItem*>& b) {
                             return less(a.first, b.first);
                         });
    } else {
        std::stable_sort(entries.begin(), entries.end(),
                         [&less](const std::pair<T, XOLATreeItem*>& a, const std::pair<T, XOLATreeItem*>& b) {
                             return less(b.first, a.first);
                         });
    }
}

// The value a variant holds, read in place: the caller has checked its type.
template <typename T>
const T& stored(const QVariant& value)
{
    return *static_cast<const T*>(value.constData());
}

// The order of the built-in comparison over values of mixed types, or of a
// type without a strict weak order (NaN among doubles, date-times, whose order
// depends on time zones, and unordered types): a real multi-insertion.
QList<XOLATreeItem*> generalOrder(const QVector<ValuedItem>& valued, bool ascending)
{
    return multiInsertionOrder(valued, [ascending](const QVariant& v) { return MyVariant(v, ascending, PF_LESS_THAN()); });
}

// A hint to start loading an item that is read a few rows later.
inline void prefetch(const void* address)
{
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    Q_UNUSED(address);
#endif
}

// Reads each row's value once, in row order, setting aside the rows without
// one.
class RoleReader
{
public:
    RoleReader(const QList<XOLATreeItem*>& items, int role)
        : m_items(items)
        , m_role(role)
    {
    }

    //! The next row with a value; false when every row has been read.
    bool next(QVariant& value, XOLATreeItem*& item)
    {
        while (m_next < m_items.size()) {
            item = m_items.at(m_next++);
            value = item ? item->getData(m_role) : QVariant();
            if (!isInvalidValue(value))
                return true;
            setAside(item);
        }
        return false;
    }
    //! A row without a value: it goes last.
    void setAside(XOLATreeItem* item) { m_invalid.append(item); }
    int remaining() const { return m_items.size() - m_next; }
    int position() const { return m_next; }
    //! Rows before row have been read by the caller.
    void moveTo(int row) { m_next = row; }
    int role() const { return m_role; }
    const QList<XOLATreeItem*>& rows() const { return m_items; }
    const QList<XOLATreeItem*>& invalid() const { return m_invalid; }

    //! The order of the built-in comparison for the values read from here on,
    //! after the ones already read.
    QList<XOLATreeItem*> orderOfTheRest(QVector<ValuedItem>& valued, bool ascending)
    {
        QVariant value;
        XOLATreeItem* item = nullptr;
        while (next(value, item))
            valued.append(ValuedItem{std::move(value), item});
        return generalOrder(valued, ascending) + m_invalid;
    }

private:
    const QList<XOLATreeItem*>& m_items;
    const int m_role;
    int m_next = 0;
    QList<XOLATreeItem*> m_invalid;
};

template <typename T>
bool isNaNValue(const T&)
{
    return false;
}

template <>
bool isNaNValue<double>(const double& value)
{
    return qIsNaN(value);
}

// The built-in order when the first value is of the ordered type T: keys go
// straight into the sort while every value has that type, which orders them
// exactly as the general path would. The first value of another type (or a
// NaN) sends all the values to the general path.
template <typename T, typename Less>
QList<XOLATreeItem*> typedRoleOrder(RoleReader& reader, const QVariant& first, XOLATreeItem* firstItem,
                                    bool ascending, Less less)
{
    const int type = first.userType();
    std::vector<std::pair<T, XOLATreeItem*>> entries;
    entries.reserve(size_t(reader.remaining()) + 1);
    entries.emplace_back(stored<T>(first), firstItem);
    // Rows are read here directly, each value made in place, as this loop
    // is most of a sort's time outside the sort itself.
    const QList<XOLATreeItem*>& rows = reader.rows();
    const int role = reader.role();
    for (int row = reader.position(); row < rows.size(); ++row) {
        XOLATreeItem* item = rows.at(row);
        if (row + 4 < rows.size())
            prefetch(rows.at(row + 4));
        QVariant value = item ? item->getData(role) : QVariant();
        // The common case first: a value of the same type (which is never
        // an invalid one).
        if (value.userType() == type && !isNaNValue(stored<T>(value))) {
            entries.emplace_back(stored<T>(value), item);
            continue;
        }
        if (isInvalidValue(value)) {
            reader.setAside(item);
        } else {
            reader.moveTo(row + 1);
            QVector<ValuedItem> valued;
            valued.reserve(int(entries.size()) + reader.remaining() + 1);
            for (const auto& entry : entries)
                valued.append(ValuedItem{QVariant::fromValue(entry.first), entry.second});
            valued.append(ValuedItem{std::move(value), item});
            return reader.orderOfTheRest(valued, ascending);
        }
    }
    if constexpr (std::is_arithmetic<T>::value && !std::is_same<T, bool>::value) {
        // Numbers take the radix sort, which gives the order of the stable
        // sort below: ascending over the reversed rows, descending over
        // complemented keys.
        if (ascending) {
            std::reverse(entries.begin(), entries.end());
            RadixSort::sortStable(entries, [](const T& value) { return RadixSort::key(value); });
        } else {
            RadixSort::sortStable(entries, [](const T& value) { return ~RadixSort::key(value); });
        }
        return listInOrder(reader.rows(), entries, reader.invalid());
    } else {
        stableSortEntries(entries, ascending, less);
        return listInOrder(reader.rows(), entries, reader.invalid());
    }
}

// Every row in the order of the built-in comparison, the rows without a value
// last in their previous order.
QList<XOLATreeItem*> builtInRoleOrder(const QList<XOLATreeItem*>& items, int role, bool ascending)
{
    RoleReader reader(items, role);
    QVariant first;
    XOLATreeItem* firstItem = nullptr;
    if (!reader.next(first, firstItem))
        return reader.invalid();
    switch (first.userType()) {
    case QMetaType::Int:
        return typedRoleOrder<int>(reader, first, firstItem, ascending, std::less<int>());
    case QMetaType::UInt:
        return typedRoleOrder<uint>(reader, first, firstItem, ascending, std::less<uint>());
    case QMetaType::LongLong:
        return typedRoleOrder<qlonglong>(reader, first, firstItem, ascending, std::less<qlonglong>());
    case QMetaType::ULongLong:
        return typedRoleOrder<qulonglong>(reader, first, firstItem, ascending, std::less<qulonglong>());
    case QMetaType::Double:
        if (!qIsNaN(stored<double>(first)))
            return typedRoleOrder<double>(reader, first, firstItem, ascending, std::less<double>());
        break;
    case QMetaType::Bool:
        // false orders before true
        return typedRoleOrder<bool>(reader, first, firstItem, ascending, [](bool a, bool b) { return !a && b; });
    case QMetaType::QChar:
        return typedRoleOrder<QChar>(reader, first, firstItem, ascending, [](QChar a, QChar b) { return a < b; });
    case QMetaType::QString:
        return typedRoleOrder<QString>(reader, first, firstItem, ascending,
                                       [](const QString& a, const QString& b) { return a < b; });
    case QMetaType::QByteArray:
        return typedRoleOrder<QByteArray>(reader, first, firstItem, ascending, [](const QByteArray& a, const QByteArray& b) {
            return VariantRules::compareBytes(a, b) < 0;
        });
    case QMetaType::QDate:
        return typedRoleOrder<QDate>(reader, first, firstItem, ascending,
                                     [](const QDate& a, const QDate& b) { return a < b; });
    case QMetaType::QTime:
        return typedRoleOrder<QTime>(reader, first, firstItem, ascending,
                                     [](const QTime& a, const QTime& b) { return a < b; });
    default:
        break;
    }
    QVector<ValuedItem> valued;
    valued.reserve(reader.remaining() + 1);
    valued.append(ValuedItem{first, firstItem});
    return reader.orderOfTheRest(valued, ascending);
}

// Models whose child models are being sorted right now, so that a tree that
// leads back to one of its own models does not recurse forever.
QSet<const QObject*>& modelsSortingChildren()
{
    thread_local QSet<const QObject*> models;
    return models;
}

class SortingChildrenScope
{
public:
    explicit SortingChildrenScope(const QObject* model)
        : m_model(model)
        , m_entered(!modelsSortingChildren().contains(model))
    {
        if (m_entered)
            modelsSortingChildren().insert(m_model);
    }
    ~SortingChildrenScope()
    {
        if (m_entered)
            modelsSortingChildren().remove(m_model);
    }
    SortingChildrenScope(const SortingChildrenScope&) = delete;
    SortingChildrenScope& operator=(const SortingChildrenScope&) = delete;

private:
    const QObject* m_model;
    bool m_entered;
};

} // namespace

// ---- by role ------------------------------------------------------------------

void XOLATreeModel::SortByRole(int role, bool ascending, PF_LESS_THAN pfLessThan)
{
    if (!d_ptr->hasRows())
        return;
    RowStore& rows = d_ptr->rows();
    if (pfLessThan) {
        rows.reorder(rowByRowOrder(rows.items(), role, [ascending, &pfLessThan](const QVariant& v) {
            return MyVariant(v, ascending, pfLessThan);
        }));
    } else {
        rows.reorder(builtInRoleOrder(rows.items(), role, ascending));
    }
    // Rows are rebuilt, not moved: views re-read every row.
    rows.rowsChanged(0, rows.count() - 1);
    d_ptr->m_sortFlag = None;
}

void XOLATreeModel::SortByRole(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan)
{
    SortByRole(d_ptr->roleForName(roleName), ascending, std::move(pfLessThan));
}

void XOLATreeModel::SortByRoleAndKeep(int role, bool ascending, PF_LESS_THAN pfLessThan)
{
    SortByRole(role, ascending, std::move(pfLessThan));
    d_ptr->m_sortFlag = KeepSorting;
    // Later re-sorts go by this rule alone; the caller's function is not kept.
    QVariantMap rule;
    rule.insert(QStringLiteral("RoleName"), QVariant(roleNames().value(role)));
    rule.insert(QStringLiteral("Ascending"), ascending);
    d_ptr->m_sortRules.clear();
    d_ptr->m_sortRules.append(rule);
}

void XOLATreeModel::SortByRoleAndKeep(const QString& roleName, bool ascending, PF_LESS_THAN pfLessThan)
{
    SortByRoleAndKeep(d_ptr->roleForName(roleName), ascending, std::move(pfLessThan));
}

// ---- by a QML or script function ----------------------------------------------------

void XOLATreeModel::SortByRoleByQMLFunction(int role, bool ascending, QString fileName, QString compareFunctionName)
{
    if (fileName.isEmpty() || compareFunctionName.isEmpty())
        return;
    QQmlEngine engine;
    // Problems in the caller's file are not reported; the sort goes on.
    engine.setOutputWarningsToStandardError(false);
    QQmlComponent component(&engine, fileName);
    // A file that cannot be loaded leaves no object, and the rows are then
    // compared by the built-in comparison.
    QObject* object = component.isReady() ? component.create() : nullptr;

    RowStore& rows = d_ptr->rows();
    if (object) {
        rows.reorder(rowByRowOrder(rows.items(), role, [&](const QVariant& v) {
            return MyVariant(v, ascending, object, compareFunctionName);
        }));
    } else {
        rows.reorder(builtInRoleOrder(rows.items(), role, ascending));
    }
    rows.rowsChanged(0, rows.count() - 1);
    rows.layoutChangedWithoutAboutToBe();

    delete object;
}

void XOLATreeModel::SortByRoleByQMLFunction(const QString& roleName, bool ascending, QString fileName,
                                            QString compareFunctionName)
{
    SortByRoleByQMLFunction(d_ptr->roleForName(roleName), ascending, fileName, compareFunctionName);
}

void XOLATreeModel::SortByRoleByScriptFunction(int role, bool ascending, QString fileName, QString compareFunctionName)
{
    if (fileName.isEmpty() || compareFunctionName.isEmpty())
        return;
    QJSEngine engine;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QTextStream stream(&file);
    const QString program = stream.readAll();
    file.close();
    // Errors in the script are not reported: the function lookup decides.
    engine.evaluate(program, fileName, 1);
    QJSValue function = engine.globalObject().property(compareFunctionName);
    if (function.isError())
        return;

    RowStore& rows = d_ptr->rows();
    rows.reorder(rowByRowOrder(rows.items(), role,
                               [&](const QVariant& v) { return MyVariant(v, ascending, &engine, &function); }));
    rows.rowsChanged(0, rows.count() - 1);
    rows.layoutChangedWithoutAboutToBe();
    rows.unpairedResetEnd();
}

void XOLATreeModel::SortByRoleByScriptFunction(const QString& roleName, bool ascending, QString fileName,
                                               QString compareFunctionName)
{
    SortByRoleByScriptFunction(d_ptr->roleForName(roleName), ascending, fileName, compareFunctionName);
}

// ---- by rules ---------------------------------------------------------------------

namespace {

// The rules' comparison is QVariant's: three-way, case-insensitive for strings,
// and a missing (null) value makes a rule undecided. Where every rule's values
// are of one type whose QVariant order is a strict weak order, the values can
// be replaced by their ranks, and the multi-insertion order is then a stable
// sort of the reversed rows (ties compare false both ways, so each new row
// goes before the rows it ties with).
enum class RuleRanks { Ranked, NeverDecides, Unranked };

template <typename T, typename Extract, typename Compare>
RuleRanks denseRanks(const QVector<QVariant>& values, Extract extract, Compare compare, QVector<int>& ranks)
{
    const int n = values.size();
    std::vector<std::pair<T, int>> entries;
    entries.reserve(size_t(n));
    for (int i = 0; i < n; ++i)
        entries.emplace_back(extract(values.at(i)), i);
    std::sort(entries.begin(), entries.end(), [&compare](const std::pair<T, int>& a, const std::pair<T, int>& b) {
        return compare(a.first, b.first) < 0;
    });
    ranks.resize(n);
    int rank = 0;
    for (size_t i = 0; i < entries.size(); ++i) {
        if (i > 0 && compare(entries[i - 1].first, entries[i].first) != 0)
            ++rank;
        ranks[entries[i].second] = rank;
    }
    return RuleRanks::Ranked;
}

// Strings compare without regard to case, and two different strings equal but
// for case each compare greater than the other: rows holding such strings have
// no order, and only the multi-insertion places them. Rows usually share few
// distinct strings, so only those are sorted.
RuleRanks rankStrings(const QVector<QVariant>& values, QVector<int>& ranks)
{
    QHash<QString, int> indexOf;
    QVector<QString> distinct;
    QVector<int> distinctIndex(values.size());
    for (int i = 0; i < values.size(); ++i) {
        const QString text = values.at(i).toString();
        auto it = indexOf.find(text);
        if (it == indexOf.end()) {
            it = indexOf.insert(text, distinct.size());
            distinct.append(text);
        }
        distinctIndex[i] = it.value();
    }
    std::vector<int> order(size_t(distinct.size()));
    for (int i = 0; i < distinct.size(); ++i)
        order[size_t(i)] = i;
    std::sort(order.begin(), order.end(), [&distinct](int a, int b) {
        return QString::compare(distinct.at(a), distinct.at(b), Qt::CaseInsensitive) < 0;
    });
    QVector<int> rankOfDistinct(distinct.size());
    for (size_t i = 0; i < order.size(); ++i) {
        // Distinct strings that compare equal differ only in case.
        if (i > 0 && QString::compare(distinct.at(order[i - 1]), distinct.at(order[i]), Qt::CaseInsensitive) == 0)
            return RuleRanks::Unranked;
        rankOfDistinct[order[i]] = int(i);
    }
    ranks.resize(values.size());
    for (int i = 0; i < values.size(); ++i)
        ranks[i] = rankOfDistinct.at(distinctIndex.at(i));
    return RuleRanks::Ranked;
}

RuleRanks rankRuleValues(const QList<XOLATreeItem*>& items, int role, QVector<int>& ranks)
{
    QVector<QVariant> values;
    values.reserve(items.size());
    int nulls = 0;
    for (const XOLATreeItem* item : items) {
        values.append(item->getData(role));
        if (VariantRules::isNull(values.constLast()))
            ++nulls;
    }
    if (nulls == values.size())
        return RuleRanks::NeverDecides;
    if (nulls > 0)
        return RuleRanks::Unranked; // a missing value ties with everything: no order
    const int type = values.constFirst().userType();
    for (const QVariant& value : qAsConst(values)) {
        if (value.userType() != type)
            return RuleRanks::Unranked;
    }
    switch (type) {
    case QMetaType::Int:
        return denseRanks<int>(values, [](const QVariant& v) { return v.toInt(); },
                               [](int a, int b) { return a < b ? -1 : (b < a ? 1 : 0); }, ranks);
    case QMetaType::UInt:
        return denseRanks<uint>(values, [](const QVariant& v) { return v.toUInt(); },
                                [](uint a, uint b) { return a < b ? -1 : (b < a ? 1 : 0); }, ranks);
    case QMetaType::LongLong:
        return denseRanks<qlonglong>(values, [](const QVariant& v) { return v.toLongLong(); },
                                     [](qlonglong a, qlonglong b) { return a < b ? -1 : (b < a ? 1 : 0); }, ranks);
    case QMetaType::ULongLong:
        return denseRanks<qulonglong>(values, [](const QVariant& v) { return v.toULongLong(); },
                                      [](qulonglong a, qulonglong b) { return a < b ? -1 : (b < a ? 1 : 0); },
                                      ranks);
    case QMetaType::QDate:
        return denseRanks<QDate>(values, [](const QVariant& v) { return v.toDate(); },
                                 [](const QDate& a, const QDate& b) { return a < b ? -1 : (b < a ? 1 : 0); },
                                 ranks);
    case QMetaType::QTime:
        return denseRanks<QTime>(values, [](const QVariant& v) { return v.toTime(); },
                                 [](const QTime& a, const QTime& b) { return a < b ? -1 : (b < a ? 1 : 0); },
                                 ranks);
    case QMetaType::QString:
        return rankStrings(values, ranks);
    default:
        return RuleRanks::Unranked;
    }
}

// The multi-insertion order of the rows by ranks, or false when some rule's
// values have no ranks.
bool rankedRulesOrder(const QList<XOLATreeItem*>& items, const MyVariantEx::ResolvedRules& rules,
                      QList<XOLATreeItem*>& order)
{
    for (const XOLATreeItem* item : items) {
        if (!item)
            return false;
    }
    struct RankedRule
    {
        QVector<int> ranks;
        bool ascending;
    };
    std::vector<RankedRule> ranked;
    for (const MyVariantEx::ResolvedRule& rule : rules) {
        RankedRule r{QVector<int>(), rule.ascending};
        switch (rankRuleValues(items, rule.role, r.ranks)) {
        case RuleRanks::Unranked:
            return false;
        case RuleRanks::NeverDecides:
            break;
        case RuleRanks::Ranked:
            ranked.push_back(std::move(r));
            break;
        }
    }
    std::vector<int> rows(size_t(items.size()));
    for (int i = 0; i < items.size(); ++i)
        rows[size_t(i)] = items.size() - 1 - i;
    std::stable_sort(rows.begin(), rows.end(), [&ranked](int a, int b) {
        for (const RankedRule& rule : ranked) {
            const int ra = rule.ranks.at(a);
            const int rb = rule.ranks.at(b);
            if (ra != rb)
                return rule.ascending ? ra < rb : ra > rb;
        }
        return false;
    });
    order.clear();
    order.reserve(items.size());
    for (int row : rows)
        order.append(items.at(row));
    return true;
}

} // namespace

void XOLATreeModel::SortByRules(const QVariantList& givenRules, int flag)
{
    const QVariantList rules = VariantRules::listArgument(givenRules);
    d_ptr->m_sortFlag = flag;
    if (!d_ptr->m_sortRules.isSharedWith(rules))
        d_ptr->m_sortRules = rules;

    const QHash<int, QByteArray> names = roleNames();
    const QSharedPointer<const MyVariantEx::ResolvedRules> resolved(
        new MyVariantEx::ResolvedRules(MyVariantEx::resolveRules(rules, names)));
    // With removed items left alive the children belong to the host, which
    // sorts them itself.
    const bool sortChildren = flag == RecursiveKeepSorting && !d_ptr->keepsRemovedItems();
    SortingChildrenScope scope(this);

    RowStore& rows = d_ptr->rows();
    const QList<XOLATreeItem*> items = rows.items();
    // Children first, in row order: every comparison below sees rows whose
    // children are already in order.
    if (sortChildren) {
        for (XOLATreeItem* item : items) {
            QObject* childModel = item ? item->childModel() : nullptr;
            if (childModel && !modelsSortingChildren().contains(childModel)) {
                if (auto* child = qobject_cast<IXOLATreeModel*>(childModel))
                    child->SortByRules(d_ptr->m_sortRules, RecursiveKeepSorting);
            }
        }
    }

    QList<XOLATreeItem*> order;
    if (!rankedRulesOrder(items, *resolved, order)) {
        // QVariant's own ordering is not consistent for strings that differ
        // only in case, nor with missing values: those rows go through a real
        // multi-insertion.
        MultiInsertionTree<MyVariantEx, XOLATreeItem*> map;
        for (XOLATreeItem* item : items)
            map.insert(MyVariantEx(item, rules, names, resolved), item);
        order = map.values();
    }
    rows.reorder(order);
    rows.rowsChanged(0, rows.count() - 1);
}
