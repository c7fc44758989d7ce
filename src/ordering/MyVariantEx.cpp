#include "MyVariantEx.h"

#include "RoleNames.h"
#include "VariantRules.h"
#include "XOLATreeItem.h"

#include <QtCore/QMap>

MyVariantEx::MyVariantEx(XOLATreeItem* item, const QVariantList& rules, const QHash<int, QByteArray>& roleNames)
    : m_item(item)
    , m_rules(rules)
    , m_roleNames(roleNames)
{
}

MyVariantEx::MyVariantEx(XOLATreeItem* item, const QVariantList& rules, const QHash<int, QByteArray>& roleNames,
                         const QSharedPointer<const ResolvedRules>& resolved)
    : m_item(item)
    , m_rules(rules)
    , m_roleNames(roleNames)
    , m_resolved(resolved)
{
}

MyVariantEx::MyVariantEx(const MyVariantEx& other) = default;

MyVariantEx::~MyVariantEx() = default;

int MyVariantEx::compareVariants(const QVariant& left, const QVariant& right)
{
    // The library's own three-way order (case-insensitive for strings), which
    // existing rule lists expect; only its sign counts.
    const int c = VariantRules::compare(left, right);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int MyVariantEx::resolveRole(const QHash<int, QByteArray>& roleNames, const QString& roleName)
{
    return roleForName(roleNames, roleName);
}

MyVariantEx::ResolvedRules MyVariantEx::resolveRules(const QVariantList& rules, const QHash<int, QByteArray>& roleNames)
{
    ResolvedRules resolved;
    resolved.reserve(rules.size());
    for (const QVariant& rule : rules) {
        const QVariantMap map = VariantRules::toMap(rule);
        if (map.isEmpty())
            continue;
        ResolvedRule r;
        r.role = resolveRole(roleNames, VariantRules::toString(map.value(QStringLiteral("RoleName"))));
        // A rule without "Ascending" sorts descending: rule lists written that
        // way rely on it.
        r.ascending = VariantRules::toBool(map.value(QStringLiteral("Ascending")));
        resolved.append(r);
    }
    return resolved;
}

// 1: left first, -1: right first, 0: this rule does not decide.
int MyVariantEx::decide(const XOLATreeItem* left, const XOLATreeItem* right, int role, bool ascending)
{
    // Values are read afresh on each comparison: items may answer from live data.
    const QVariant l = left->getData(role);
    const QVariant r = right->getData(role);
    // A missing value neither orders nor ties; the next rule decides.
    if (VariantRules::isNull(l) || VariantRules::isNull(r))
        return 0;
    const int c = compareVariants(l, r);
    if (c == 0)
        return 0;
    return (ascending ? c < 0 : c > 0) ? 1 : -1;
}

bool MyVariantEx::operator<(const MyVariantEx& other) const
{
    if (!m_item || !other.m_item)
        return false;
    if (m_resolved) {
        for (const ResolvedRule& rule : *m_resolved) {
            if (const int d = decide(m_item, other.m_item, rule.role, rule.ascending))
                return d > 0;
        }
        return false;
    }
    for (const QVariant& rule : m_rules) {
        const QVariantMap map = VariantRules::toMap(rule);
        if (map.isEmpty())
            continue;
        const int role = resolveRole(m_roleNames, VariantRules::toString(map.value(QStringLiteral("RoleName"))));
        const bool ascending = VariantRules::toBool(map.value(QStringLiteral("Ascending")));
        if (const int d = decide(m_item, other.m_item, role, ascending))
            return d > 0;
    }
    return false;
}
