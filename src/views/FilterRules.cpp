// Evaluation of filter rules against items.
//
// Equality is never tested directly: every operator is derived from the two
// orderings of MyVariant and from its text form, so that two values that do not
// order against each other (lists, maps, invalid values) count as equal.

#include "FilterRules.h"

#include "IXOLATreeModel.h"
#include "MyVariant.h"
#include "VariantRules.h"
#include "XOLATreeItem.h"

#include <QtCore/QStringList>

namespace {

const QString kRoleNameKey = QStringLiteral("RoleName");
const QString kRuleKey = QStringLiteral("Rule");
const QString kValueKey = QStringLiteral("Value");
const QString kRulesKey = QStringLiteral("Rules");
const QString kOrAllRulesKey = QStringLiteral("OrAllRules");

QVariant itemValue(const XOLATreeItem* item, const QString& roleName)
{
    // Through the item's virtual by-name form, so an item subclass answers its own roles.
    return item ? item->getData(roleName) : QVariant();
}

bool isAscii(const QString& text)
{
    for (const QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

ushort asciiLower(ushort c)
{
    return c >= 'A' && c <= 'Z' ? ushort(c + ('a' - 'A')) : c;
}

// 1 or 0: whether the lowered haystack contains the (ASCII, already lowered)
// needle; -1 when the haystack is not plain ASCII and must be lowered in full
// (lowering other characters can give ASCII ones, as the Kelvin sign does).
int asciiLoweredContains(const QString& haystack, const QString& needle)
{
    const int n = haystack.size();
    const int m = needle.size();
    const ushort* h = haystack.utf16();
    const ushort* s = needle.utf16();
    for (int i = 0; i < n; ++i) {
        if (h[i] >= 0x80)
            return -1;
    }
    if (m == 0)
        return 1;
    for (int i = 0; i + m <= n; ++i) {
        if (asciiLower(h[i]) != s[0])
            continue;
        int j = 1;
        while (j < m && asciiLower(h[i + j]) == s[j])
            ++j;
        if (j == m)
            return 1;
    }
    return 0;
}

bool contains(const QString& haystack, const QString& needle)
{
    // An empty needle is found at position 0: it matches every value.
    return haystack.indexOf(needle, 0, Qt::CaseSensitive) >= 0;
}

bool applyCheck(const QVariant& value, const CompiledFilterRules::Check& check)
{
    // Unsigned, so negative operators are out of range as well.
    if (static_cast<unsigned>(check.op) > static_cast<unsigned>(IXOLATreeModel::InsensitiveSubStr))
        return false;
    switch (check.op) {
    case IXOLATreeModel::SubStr:
        return contains(MyVariant::textOf(value), check.text);
    case IXOLATreeModel::InsensitiveSubStr: {
        const QString text = MyVariant::textOf(value);
        if (check.loweredIsAscii) {
            const int found = asciiLoweredContains(text, check.lowered);
            if (found >= 0)
                return found == 1;
        }
        return contains(text.toLower(), check.lowered);
    }
    default:
        break;
    }
    const MyVariant a(value);
    const MyVariant b(check.operand);
    switch (check.op) {
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
    }
    return false;
}

CompiledFilterRules::Check compileCheck(int op, const QVariant& operand)
{
    CompiledFilterRules::Check check;
    check.op = op;
    check.operand = operand;
    if (op == IXOLATreeModel::SubStr || op == IXOLATreeModel::InsensitiveSubStr) {
        check.text = MyVariant(operand).toString();
        check.lowered = check.text.toLower();
        check.loweredIsAscii = isAscii(check.lowered);
    }
    return check;
}

} // namespace

CompiledFilterRules::Rule CompiledFilterRules::compileRule(const QMap<QString, QVariant>& rule)
{
    // A map naming one operator is the single-comparison format, whatever else it holds.
    return compileRule(rule, rule.contains(kRuleKey));
}

CompiledFilterRules::Rule CompiledFilterRules::compileRule(const QMap<QString, QVariant>& rule, bool singleCheck)
{
    Rule compiled;
    compiled.roleName = VariantRules::toString(rule.value(kRoleNameKey));
    compiled.singleCheck = singleCheck;
    if (singleCheck) {
        compiled.checks.append(compileCheck(VariantRules::toInt(rule.value(kRuleKey)), rule.value(kValueKey)));
        return compiled;
    }
    compiled.orAllRules = VariantRules::toBool(rule.value(kOrAllRulesKey));
    const QVariantList subRules = VariantRules::toList(rule.value(kRulesKey));
    compiled.checks.reserve(subRules.size());
    for (const QVariant& entry : subRules) {
        const QVariantMap subRule = VariantRules::toMap(entry);
        compiled.checks.append(compileCheck(VariantRules::toInt(subRule.value(kRuleKey)), subRule.value(kValueKey)));
    }
    return compiled;
}

bool CompiledFilterRules::matchesRule(const XOLATreeItem* item, const Rule& rule)
{
    if (rule.singleCheck)
        return applyCheck(itemValue(item, rule.roleName), rule.checks.constFirst());
    // An empty sub-rule list fails, unlike an empty top-level list, which passes.
    bool result = false;
    for (const Check& check : rule.checks) {
        // Read afresh for every sub-rule: the value may be computed by the item.
        result = applyCheck(itemValue(item, rule.roleName), check);
        // "or" stops at the first pass, "and" at the first failure.
        if (result == rule.orAllRules)
            break;
    }
    return result;
}

CompiledFilterRules::CompiledFilterRules(const QList<QVariant>& rules)
{
    m_rules.reserve(rules.size());
    for (const QVariant& entry : rules)
        m_rules.append(compileRule(VariantRules::toMap(entry)));
}

bool CompiledFilterRules::matches(const XOLATreeItem* item, bool orAllRules) const
{
    bool result = false;
    for (const Rule& rule : m_rules) {
        result = matchesRule(item, rule);
        if (result == orAllRules)
            break;
    }
    return result;
}

bool DoCheckWithVersionOne(const XOLATreeItem* item, const QMap<QString, QVariant>& rule)
{
    return CompiledFilterRules::matchesRule(item, CompiledFilterRules::compileRule(rule, true));
}

bool DoCheckWithVersionTwo(const XOLATreeItem* item, const QMap<QString, QVariant>& rule)
{
    return CompiledFilterRules::matchesRule(item, CompiledFilterRules::compileRule(rule, false));
}
