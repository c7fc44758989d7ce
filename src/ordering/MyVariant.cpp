#include "MyVariant.h"

// Placeholder bodies; the ordering rules are filled in by the ordering work.
const char* const kStringListSeparator = "{F185B90B-D31F-48AF-ABC6-4C516C125083}";
MyVariant::MyVariant(const QVariant& value) : m_value(value) {}
MyVariant::MyVariant(const QVariant& value, bool ascending, PF_LESS_THAN pfLessThan) : m_value(value), m_ascending(ascending), m_lessThan(pfLessThan) {}
MyVariant::MyVariant(const QVariant& value, bool ascending, QObject* object, const QString& name) : m_value(value), m_ascending(ascending), m_qmlObject(object), m_compareFunctionName(name) {}
MyVariant::MyVariant(const QVariant& value, bool ascending, QJSEngine* engine, QJSValue* function) : m_value(value), m_ascending(ascending), m_jsEngine(engine), m_jsFunction(function) {}
bool MyVariant::operator<(const MyVariant&) const { return false; }
bool MyVariant::operator>(const MyVariant&) const { return false; }
QString MyVariant::toString() const { return m_value.toString(); }
bool MyVariant::usesBuiltInComparison() const { return true; }
bool MyVariant::isComparableType(int) { return false; }
bool MyVariant::callbackLess(const QVariant&, const QVariant&, bool*) const { return false; }
