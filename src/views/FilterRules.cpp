// Evaluation of one filter rule against one item.
//
// Equality is never tested directly: every operator is derived from the two
// orderings of MyVariant and from its text form, so that two values that do not
// order against each other (lists, maps, invalid values) count as equal.

#include "FilterRules.h"

#include "IXOLATreeModel.h"
#include "MyVariant.h"
#include "XOLATreeItem.h"

namespace {

const QString kRoleNameKey = QStringLiteral("RoleName");
const QString kRuleKey = QStringLiteral("Rule");
const QString kValueKey = QStringLiteral("Value");
const QString kRulesKey = QStringLiteral("Rules");
const QString kOrAllRulesKey = QStringLiteral("OrAllRules");

MyVariant itemValue(const XOLATreeItem* item, const QString& roleName)
{
    // Through the item's virtual by-name form, so an item subclass answers its own roles.
    return MyVariant(item ? item->getData(roleName) : QVariant());
}

bool contains(const QString& haystack, const QString& needle)
{
    // An empty needle is found at position 0: it matches every value.
    return haystack.indexOf(needle, 0, Qt::CaseSensitive) >= 0;
}

bool applyOperator(const MyVariant& a, int op, const MyVariant& b)
{
    // Unsigned, so negative operators are out of range as well.
    if (static_cast<unsigned>(op) > static_cast<unsigned>(IXOLATreeModel::InsensitiveSubStr))
        return false;
    switch (op) {
    case IXOLATreeModel::Eq:
        return !(a < b) && !(a > b);
    case IXOLATreeModel::Ne:
        return a > b || a < b;
    case IXOLATreeModel::Ge:
        return !(a < b);
    case IXOLATreeModel::Gt:
        return a > b;
    case IXOLATreeModel::Le:
        return !(a > b);
    case IXOLATreeModel::Lt:
        return a < b;
    case IXOLATreeModel::SubStr:
        return contains(a.toString(), b.toString());
    case IXOLATreeModel::InsensitiveSubStr:
        return contains(a.toString().toLower(), b.toString().toLower());
    }
    return false;
}

} // namespace

bool DoCheckWithVersionOne(const XOLATreeItem* item, const QMap<QString, QVariant>& rule)
{
    const QString roleName = rule.value(kRoleNameKey).toString();
    const int op = rule.value(kRuleKey).toInt();
    const MyVariant expected(rule.value(kValueKey));
    return applyOperator(itemValue(item, roleName), op, expected);
}

bool DoCheckWithVersionTwo(const XOLATreeItem* item, const QMap<QString, QVariant>& rule)
{
    const QString roleName = rule.value(kRoleNameKey).toString();
    const QVariantList subRules = rule.value(kRulesKey).toList();
    const bool orAllRules = rule.value(kOrAllRulesKey).toBool();
    // An empty sub-rule list fails, unlike an empty top-level list, which passes.
    if (subRules.isEmpty())
        return false;
    bool result = false;
    for (const QVariant& entry : subRules) {
        const QVariantMap subRule = entry.toMap();
        const int op = subRule.value(kRuleKey).toInt();
        const MyVariant expected(subRule.value(kValueKey));
        // Read afresh for every sub-rule: the value may be computed by the item.
        result = applyOperator(itemValue(item, roleName), op, expected);
        // "or" stops at the first pass, "and" at the first failure.
        if (result == orAllRules)
            break;
    }
    return result;
}
