#ifndef MYVARIANTEX_H
#define MYVARIANTEX_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QSharedPointer>
#include <QtCore/QVariant>
#include <QtCore/QVector>

class XOLATreeItem;

/*!
 * The key of the multi-rule sort: an item, the rule list (most significant
 * first) and the model's role names. Compares two items rule by rule; strict in
 * both directions (ties compare false both ways).
 */
class MyVariantEx
{
public:
    //! One rule with its role already looked up in the role-name table.
    struct ResolvedRule
    {
        int role = 0;
        bool ascending = false;
    };
    typedef QVector<ResolvedRule> ResolvedRules;

    MyVariantEx(XOLATreeItem* item, const QVariantList& rules, const QHash<int, QByteArray>& roleNames);
    //! As above, with the rules already resolved against roleNames by resolveRules();
    //! one sort builds many keys from the same rules and names.
    MyVariantEx(XOLATreeItem* item, const QVariantList& rules, const QHash<int, QByteArray>& roleNames,
                const QSharedPointer<const ResolvedRules>& resolved);
    MyVariantEx(const MyVariantEx& other);
    MyVariantEx& operator=(const MyVariantEx& other) = default;
    ~MyVariantEx();

    bool operator<(const MyVariantEx& other) const;

    XOLATreeItem* item() const { return m_item; }

    //! QVariant's own three-way ordering (negative, zero, positive).
    static int compareVariants(const QVariant& left, const QVariant& right);
    //! First role whose name equals roleName in Latin-1, in the table's order; 0 when none.
    static int resolveRole(const QHash<int, QByteArray>& roleNames, const QString& roleName);
    //! The rules that take part in comparisons (maps that are not empty), in order,
    //! with their roles looked up in roleNames.
    static ResolvedRules resolveRules(const QVariantList& rules, const QHash<int, QByteArray>& roleNames);

private:
    static int decide(const XOLATreeItem* left, const XOLATreeItem* right, int role, bool ascending);

    XOLATreeItem* m_item = nullptr;
    QVariantList m_rules;
    QHash<int, QByteArray> m_roleNames;
    QSharedPointer<const ResolvedRules> m_resolved;
};

#endif // MYVARIANTEX_H
