#include "MyVariantEx.h"

MyVariantEx::MyVariantEx(XOLATreeItem* item, const QVariantList& rules, const QHash<int, QByteArray>& roleNames) : m_item(item), m_rules(rules), m_roleNames(roleNames) {}
MyVariantEx::MyVariantEx(const MyVariantEx& other) = default;
MyVariantEx::~MyVariantEx() = default;
bool MyVariantEx::operator<(const MyVariantEx&) const { return false; }
int MyVariantEx::compareVariants(const QVariant&, const QVariant&) { return 0; }
int MyVariantEx::resolveRole(const QHash<int, QByteArray>&, const QString&) { return 0; }
