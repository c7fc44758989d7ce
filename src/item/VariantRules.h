#ifndef VARIANTRULES_H
#define VARIANTRULES_H

#include <QtCore/QByteArray>
#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTime>
#include <QtCore/QVariant>

/*!
 * The library's own rules for values: ordering, equality, "missing value",
 * convertibility and conversions. Every place where rows are ordered,
 * compared, tested for a missing value or converted goes through here, so the
 * rows, values and signals that hosts see are the same with every Qt the
 * library builds against. The answers are the ones hosts have relied on from
 * the first release (built on Qt 5.15): QVariant's own answers changed in
 * Qt 6, these do not.
 *
 * The rules cover the value types that hosts and QML put into items and rule
 * lists: invalid, bool, the integer types, float and double, QChar, QString,
 * QStringList, QByteArray, QDate, QTime, QDateTime, QUrl, QVariantList,
 * QVariantMap, QVariantHash and nullptr. A conversion from or to any other
 * type is left to the registered converters of the Qt in use.
 */
namespace VariantRules {

//! Three-way order: negative, zero or positive. Strings without regard to
//! case; two values that are not equal never compare 0 (two strings that
//! differ only in case each compare greater than the other).
int compare(const QVariant& left, const QVariant& right);
//! Equality: numbers by value across types (doubles with a relative
//! tolerance), other types after converting one side to the other's type.
bool equals(const QVariant& left, const QVariant& right);
bool equals(const QVariantMap& left, const QVariantMap& right);
bool equals(const QVariantList& left, const QVariantList& right);
//! A missing value: invalid, or a null string, byte array, date, time,
//! date-time or char, a null pointer, or a value made without data.
bool isNull(const QVariant& value);
//! Whether a value of this type can be converted to targetType.
bool canConvert(const QVariant& value, int targetType);
//! Converts to targetType; on failure the result is a null value of that
//! type and false is returned.
bool convert(QVariant& value, int targetType);

//! A list argument from QML: a string given where a list is expected reaches
//! the library as its characters on Qt 6 and as an empty list on Qt 5; both
//! are read as the empty list, which QML code written for the library has
//! always met. Any other list is returned as it is.
QVariantList listArgument(const QVariantList& list);

//! Byte arrays in byte order over their whole length (an embedded NUL byte
//! does not end them); a shorter array that is a prefix comes first.
int compareBytes(const QByteArray& left, const QByteArray& right);

bool toBool(const QVariant& value);
int toInt(const QVariant& value, bool* ok = nullptr);
uint toUInt(const QVariant& value, bool* ok = nullptr);
qlonglong toLongLong(const QVariant& value, bool* ok = nullptr);
qulonglong toULongLong(const QVariant& value, bool* ok = nullptr);
double toDouble(const QVariant& value, bool* ok = nullptr);
QChar toChar(const QVariant& value);
QString toString(const QVariant& value);
QByteArray toByteArray(const QVariant& value);
QStringList toStringList(const QVariant& value);
QDate toDate(const QVariant& value);
QTime toTime(const QVariant& value);
QDateTime toDateTime(const QVariant& value);
QVariantList toList(const QVariant& value);
QVariantMap toMap(const QVariant& value);

} // namespace VariantRules

#endif // VARIANTRULES_H
