#ifndef MYVARIANTEX_H
#define MYVARIANTEX_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QVariant>

class XOLATreeItem;

/*!
 * The key of the multi-rule sort: an item, the rule list (most significant
 * first) and the model's role names. Compares two items rule by rule; strict in
 * both directions (ties compare false both ways).
 */
class MyVariantEx
{
public:
    MyVariantEx(XOLATreeItem* item, const QVariantList& rules, const QHash<int, QByteArray>& roleNames);
    MyVariantEx(const MyVariantEx& other);
    MyVariantEx& operator=(const MyVariantEx& other) = default;
    ~MyVariantEx();

    bool operator<(const MyVariantEx& other) const;

    XOLATreeItem* item() const { return m_item; }

    //! QVariant's own three-way ordering (negative, zero, positive).
    static int compareVariants(const QVariant& left, const QVariant& right);
    //! First role whose name equals roleName in Latin-1, in the table's order; 0 when none.
    static int resolveRole(const QHash<int, QByteArray>& roleNames, const QString& roleName);

private:
    XOLATreeItem* m_item = nullptr;
    QVariantList m_rules;
    QHash<int, QByteArray> m_roleNames;
};

#endif // MYVARIANTEX_H
