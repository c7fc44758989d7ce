#ifndef TRANSCRIPT_CANONICAL_H
#define TRANSCRIPT_CANONICAL_H

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <functional>

class QObject;

/*!
 * Text for values that reads the same whichever Qt major built the program.
 *
 * Nothing here goes through QVariant's own debug text, its type names, its
 * conversions or its comparisons: all of those changed between Qt 5 and Qt 6.
 * Types get fixed names (int, double, string, stringlist, list, map, date,
 * datetime, time, bool, invalid, longlong, uint, bytearray, null...), doubles
 * are written with 17 significant digits, maps and hashes in sorted key order,
 * and objects by the names the transcript gave them, never by address.
 */
namespace Canonical {

//! Names an object (a model, a view, an item); set by the recorder.
using Labeler = std::function<QString(const QObject*)>;
void setLabeler(Labeler labeler);
QString label(const QObject* object);

QString value(const QVariant& value);
QString number(double value);
QString quoted(const QString& text);
//! A list of values, each written with value(), comma separated.
QString list(const QVariantList& values);

//! The number a value stands for, read by this program's own rules (NaN when
//! it stands for none): used by the host callbacks so that they never depend
//! on a Qt conversion.
double toNumber(const QVariant& value, bool* ok = nullptr);
//! A value whose JS wrapper (QJSValue) is replaced by the plain value it holds.
QVariant unwrapped(const QVariant& value);

} // namespace Canonical

#endif // TRANSCRIPT_CANONICAL_H
