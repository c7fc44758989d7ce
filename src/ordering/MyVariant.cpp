#include "MyVariant.h"

#include "VariantRules.h"

#include <QtCore/QByteArray>
#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QMetaMethod>
#include <QtCore/QMetaObject>
#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTime>
#include <QtQml/QJSEngine>
#include <QtQml/QJSValue>

// Stored by hosts inside texts that were built from string lists, so the exact
// characters must never change.
const char* const kStringListSeparator = "{F185B90B-D31F-48AF-ABC6-4C516C125083}";

namespace {

enum class Relation { Less, Greater };

// The built-in comparison: chosen by the left value's type, with the right value
// converted to that type, so mixed types compare in the left value's terms.
// Only called for types that isComparableType() accepts.
bool builtInCompare(const QVariant& left, const QVariant& right, Relation relation)
{
    const bool less = relation == Relation::Less;
    using namespace VariantRules;
    switch (left.userType()) {
    case QMetaType::Bool: {
        // false orders before true
        const bool l = toBool(left);
        const bool r = toBool(right);
        return less ? (!l && r) : (l && !r);
    }
    case QMetaType::Int:
        return less ? toInt(left) < toInt(right) : toInt(left) > toInt(right);
    case QMetaType::UInt:
        return less ? toUInt(left) < toUInt(right) : toUInt(left) > toUInt(right);
    case QMetaType::LongLong:
        return less ? toLongLong(left) < toLongLong(right) : toLongLong(left) > toLongLong(right);
    case QMetaType::ULongLong:
        return less ? toULongLong(left) < toULongLong(right) : toULongLong(left) > toULongLong(right);
    case QMetaType::Double:
        return less ? toDouble(left) < toDouble(right) : toDouble(left) > toDouble(right);
    case QMetaType::QChar:
        return less ? toChar(left) < toChar(right) : toChar(left) > toChar(right);
    case QMetaType::QString:
        // Code-unit order, no locale: the same on every machine.
        return less ? toString(left) < toString(right) : toString(left) > toString(right);
    case QMetaType::QByteArray: {
        const int c = compareBytes(toByteArray(left), toByteArray(right));
        return less ? c < 0 : c > 0;
    }
    case QMetaType::QDate:
        return less ? toDate(left) < toDate(right) : toDate(left) > toDate(right);
    case QMetaType::QTime:
        return less ? toTime(left) < toTime(right) : toTime(left) > toTime(right);
    case QMetaType::QDateTime:
        return less ? toDateTime(left) < toDateTime(right) : toDateTime(left) > toDateTime(right);
    default:
        return false;
    }
}

} // namespace

MyVariant::MyVariant(const QVariant& value)
    : m_value(value)
{
}

MyVariant::MyVariant(const QVariant& value, bool ascending, PF_LESS_THAN pfLessThan)
    : m_value(value)
    , m_ascending(ascending)
    , m_lessThan(std::move(pfLessThan))
{
}

MyVariant::MyVariant(const QVariant& value, bool ascending, QObject* object, const QString& compareFunctionName)
    : m_value(value)
    , m_ascending(ascending)
    , m_qmlObject(object)
    , m_compareFunctionName(compareFunctionName)
{
}

MyVariant::MyVariant(const QVariant& value, bool ascending, QJSEngine* engine, QJSValue* function)
    : m_value(value)
    , m_ascending(ascending)
    , m_jsEngine(engine)
    , m_jsFunction(function)
{
}

bool MyVariant::isComparableType(int type)
{
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QChar:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
        return true;
    default:
        return false;
    }
}

bool MyVariant::usesBuiltInComparison() const
{
    return !m_lessThan && !(m_qmlObject && !m_compareFunctionName.isEmpty()) && !m_jsFunction;
}

bool MyVariant::callbackLess(const QVariant& left, const QVariant& right, bool* handled) const
{
    *handled = true;
    if (m_lessThan)
        return m_lessThan(left, right);

    if (m_qmlObject && !m_compareFunctionName.isEmpty()) {
        // A method that is missing answers false, as a failed call would, but
        // without Qt's console warning for an unknown method.
        const QMetaObject* mo = m_qmlObject->metaObject();
        const QByteArray signature = QMetaObject::normalizedSignature(
            (m_compareFunctionName.toLatin1() + "(QVariant,QVariant)").constData());
        const int index = mo->indexOfMethod(signature.constData());
        if (index < 0)
            return false;
        QVariant result;
        mo->method(index).invoke(m_qmlObject, Qt::DirectConnection, Q_RETURN_ARG(QVariant, result),
                                 Q_ARG(QVariant, left), Q_ARG(QVariant, right));
        return VariantRules::toBool(result);
    }

    if (m_jsFunction) {
        QJSValueList arguments;
        if (m_jsEngine)
            arguments << m_jsEngine->toScriptValue(left) << m_jsEngine->toScriptValue(right);
        else
            arguments << QJSValue() << QJSValue();
        return m_jsFunction->call(arguments).toBool();
    }

    *handled = false;
    return false;
}

bool MyVariant::operator<(const MyVariant& other) const
{
    bool handled = false;
    bool less = callbackLess(m_value, other.m_value, &handled);
    if (!handled) {
        // Values that have no order are never less, in either direction.
        if (!isComparableType(m_value.userType()))
            return false;
        less = builtInCompare(m_value, other.m_value, Relation::Less);
    }
    // Plain negation, not an operand swap: equal keys then compare less both
    // ways when descending, which keeps equal rows in their order.
    return m_ascending ? less : !less;
}

bool MyVariant::operator>(const MyVariant& other) const
{
    bool handled = false;
    // The caller's function answers "is the first before the second", so asking
    // it with the operands swapped answers "is this one after the other".
    bool greater = callbackLess(other.m_value, m_value, &handled);
    if (!handled) {
        if (!isComparableType(m_value.userType()))
            return false;
        greater = builtInCompare(m_value, other.m_value, Relation::Greater);
    }
    return m_ascending ? greater : !greater;
}

QString MyVariant::toString() const
{
    return textOf(m_value);
}

QString MyVariant::textOf(const QVariant& value)
{
    if (value.userType() == QMetaType::QStringList)
        return VariantRules::toStringList(value).join(QLatin1String(kStringListSeparator));
    return VariantRules::toString(value);
}
