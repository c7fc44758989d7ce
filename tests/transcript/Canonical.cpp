#include "Canonical.h"

#include <QtCore/QByteArray>
#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTime>
#include <QtCore/QTimeZone>
#include <QtCore/QUrl>
#include <QtQml/QJSValue>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Canonical {

namespace {

Labeler& labelerSlot()
{
    static Labeler labeler;
    return labeler;
}

bool pointsToQObject(int type)
{
    return QMetaType(type).flags().testFlag(QMetaType::PointerToQObject);
}

QString hexBytes(const QByteArray& bytes)
{
    // Bytes as two hex digits each: the same in every Qt, whatever they hold.
    static const char digits[] = "0123456789abcdef";
    QString text;
    for (char c : bytes) {
        const unsigned char u = static_cast<unsigned char>(c);
        text += QLatin1Char(digits[u >> 4]);
        text += QLatin1Char(digits[u & 15]);
    }
    return text;
}

QString dateText(const QDate& date)
{
    if (!date.isValid())
        return QStringLiteral("invalid");
    // Written field by field: the ISO form of a date is the same everywhere,
    // but years outside 0..9999 are not, so nothing is left to Qt.
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", date.year(), date.month(), date.day());
    return QString::fromLatin1(buffer);
}

QString timeText(const QTime& time)
{
    if (!time.isValid())
        return QStringLiteral("invalid");
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%02d:%02d:%02d.%03d", time.hour(), time.minute(), time.second(), time.msec());
    return QString::fromLatin1(buffer);
}

QString dateTimeText(const QDateTime& dateTime)
{
    if (!dateTime.isValid())
        return QStringLiteral("invalid");
    QString zone;
    switch (dateTime.timeSpec()) {
    case Qt::UTC:
        zone = QStringLiteral("Z");
        break;
    case Qt::OffsetFromUTC:
        zone = QStringLiteral("+%1s").arg(dateTime.offsetFromUtc());
        break;
    case Qt::TimeZone:
        zone = QStringLiteral(" zone ") + QString::fromLatin1(dateTime.timeZone().id());
        break;
    case Qt::LocalTime:
        zone = QStringLiteral(" local");
        break;
    }
    return dateText(dateTime.date()) + QLatin1Char('T') + timeText(dateTime.time()) + zone;
}

QString mapText(const char* kind, QStringList keys, const std::function<QVariant(const QString&)>& at)
{
    // Sorted here also for QMap, whose order is already this one: one rule for
    // every keyed container, and hash order is never printed.
    std::sort(keys.begin(), keys.end());
    QStringList parts;
    for (const QString& key : keys)
        parts << quoted(key) + QStringLiteral(": ") + value(at(key));
    return QLatin1String(kind) + QLatin1Char('{') + parts.join(QStringLiteral(", ")) + QLatin1Char('}');
}

} // namespace

void setLabeler(Labeler labeler)
{
    labelerSlot() = std::move(labeler);
}

QString label(const QObject* object)
{
    if (!object)
        return QStringLiteral("none");
    if (labelerSlot())
        return labelerSlot()(object);
    return QString::fromLatin1(object->metaObject()->className());
}

QString number(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
    // The program runs with the C numeric locale, so the decimal point is '.'.
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return QString::fromLatin1(buffer);
}

QString quoted(const QString& text)
{
    QString out;
    out.reserve(text.size() + 2);
    out += QLatin1Char('"');
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const ushort u = c.unicode();
        if (c == QLatin1Char('"') || c == QLatin1Char('\\')) {
            out += QLatin1Char('\\');
            out += c;
        } else if (u < 0x20 || u == 0x7f) {
            out += QStringLiteral("\\u%1").arg(u, 4, 16, QLatin1Char('0'));
        } else if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            out += c;
            out += text.at(++i);
        } else if (c.isSurrogate()) {
            out += QStringLiteral("\\u%1").arg(u, 4, 16, QLatin1Char('0'));
        } else {
            out += c;
        }
    }
    out += QLatin1Char('"');
    return out;
}

QString list(const QVariantList& values)
{
    QStringList parts;
    for (const QVariant& v : values)
        parts << value(v);
    return parts.join(QStringLiteral(", "));
}

QString value(const QVariant& v)
{
    if (!v.isValid())
        return QStringLiteral("invalid");
    const int type = v.userType();
    switch (type) {
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("bool true") : QStringLiteral("bool false");
    case QMetaType::Int:
        return QStringLiteral("int %1").arg(*static_cast<const int*>(v.constData()));
    case QMetaType::UInt:
        return QStringLiteral("uint %1").arg(*static_cast<const uint*>(v.constData()));
    case QMetaType::LongLong:
        return QStringLiteral("longlong %1").arg(*static_cast<const qlonglong*>(v.constData()));
    case QMetaType::ULongLong:
        return QStringLiteral("ulonglong %1").arg(*static_cast<const qulonglong*>(v.constData()));
    case QMetaType::Short:
        return QStringLiteral("short %1").arg(*static_cast<const short*>(v.constData()));
    case QMetaType::UShort:
        return QStringLiteral("ushort %1").arg(*static_cast<const ushort*>(v.constData()));
    case QMetaType::Long:
        return QStringLiteral("long %1").arg(*static_cast<const long*>(v.constData()));
    case QMetaType::ULong:
        return QStringLiteral("ulong %1").arg(*static_cast<const ulong*>(v.constData()));
    case QMetaType::Char:
        return QStringLiteral("char %1").arg(int(*static_cast<const char*>(v.constData())));
    case QMetaType::SChar:
        return QStringLiteral("schar %1").arg(int(*static_cast<const signed char*>(v.constData())));
    case QMetaType::UChar:
        return QStringLiteral("uchar %1").arg(int(*static_cast<const uchar*>(v.constData())));
    case QMetaType::Double:
        return QStringLiteral("double ") + number(*static_cast<const double*>(v.constData()));
    case QMetaType::Float:
        return QStringLiteral("float ") + number(double(*static_cast<const float*>(v.constData())));
    case QMetaType::QChar:
        return QStringLiteral("qchar ") + quoted(QString(*static_cast<const QChar*>(v.constData())));
    case QMetaType::QString:
        return QStringLiteral("string ") + quoted(*static_cast<const QString*>(v.constData()));
    case QMetaType::QStringList: {
        QStringList parts;
        for (const QString& s : *static_cast<const QStringList*>(v.constData()))
            parts << quoted(s);
        return QStringLiteral("stringlist[") + parts.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    case QMetaType::QByteArray:
        return QStringLiteral("bytearray ") + hexBytes(*static_cast<const QByteArray*>(v.constData()));
    case QMetaType::QVariantList:
        return QStringLiteral("list[") + list(*static_cast<const QVariantList*>(v.constData())) + QLatin1Char(']');
    case QMetaType::QVariantMap: {
        const QVariantMap& map = *static_cast<const QVariantMap*>(v.constData());
        return mapText("map", map.keys(), [&map](const QString& key) { return map.value(key); });
    }
    case QMetaType::QVariantHash: {
        const QVariantHash& hash = *static_cast<const QVariantHash*>(v.constData());
        return mapText("hash", hash.keys(), [&hash](const QString& key) { return hash.value(key); });
    }
    case QMetaType::QDate:
        return QStringLiteral("date ") + dateText(*static_cast<const QDate*>(v.constData()));
    case QMetaType::QTime:
        return QStringLiteral("time ") + timeText(*static_cast<const QTime*>(v.constData()));
    case QMetaType::QDateTime:
        return QStringLiteral("datetime ") + dateTimeText(*static_cast<const QDateTime*>(v.constData()));
    case QMetaType::QUrl:
        return QStringLiteral("url ") + quoted(static_cast<const QUrl*>(v.constData())->toString());
    case QMetaType::Nullptr:
        return QStringLiteral("null");
    case QMetaType::QJsonValue:
        return QStringLiteral("json(") + value(static_cast<const QJsonValue*>(v.constData())->toVariant()) + QLatin1Char(')');
    case QMetaType::QJsonObject:
        return QStringLiteral("json(") + value(static_cast<const QJsonObject*>(v.constData())->toVariantMap()) + QLatin1Char(')');
    case QMetaType::QJsonArray:
        return QStringLiteral("json(") + value(static_cast<const QJsonArray*>(v.constData())->toVariantList()) + QLatin1Char(')');
    default:
        break;
    }
    if (type == qMetaTypeId<QJSValue>()) {
        // A JS value the engine handed over as it is. Written with what it
        // holds, and marked, so that a JS value where another Qt gives a plain
        // value shows.
        const QJSValue js = v.value<QJSValue>();
        if (js.isUndefined())
            return QStringLiteral("jsvalue(undefined)");
        if (js.isNull())
            return QStringLiteral("jsvalue(null)");
        return QStringLiteral("jsvalue(") + value(js.toVariant()) + QLatin1Char(')');
    }
    if (type == QMetaType::QObjectStar || pointsToQObject(type)) {
        const QObject* object = *static_cast<QObject* const*>(v.constData());
        return object ? QStringLiteral("object ") + label(object) : QStringLiteral("object none");
    }
    // Not a type the transcript expects: its name at least says which.
    return QStringLiteral("other(") + QString::fromLatin1(v.typeName()) + QLatin1Char(')');
}

double toNumber(const QVariant& input, bool* ok)
{
    const QVariant v = unwrapped(input);
    bool good = true;
    double result = std::nan("");
    switch (v.userType()) {
    case QMetaType::Bool: result = *static_cast<const bool*>(v.constData()) ? 1 : 0; break;
    case QMetaType::Int: result = *static_cast<const int*>(v.constData()); break;
    case QMetaType::UInt: result = *static_cast<const uint*>(v.constData()); break;
    case QMetaType::LongLong: result = double(*static_cast<const qlonglong*>(v.constData())); break;
    case QMetaType::ULongLong: result = double(*static_cast<const qulonglong*>(v.constData())); break;
    case QMetaType::Double: result = *static_cast<const double*>(v.constData()); break;
    case QMetaType::Float: result = *static_cast<const float*>(v.constData()); break;
    case QMetaType::QString: {
        // Plain decimal text only: digits, one point, a sign, an exponent.
        const QString text = static_cast<const QString*>(v.constData())->trimmed();
        const QByteArray latin = text.toLatin1();
        char* end = nullptr;
        const double parsed = latin.isEmpty() ? 0 : std::strtod(latin.constData(), &end);
        good = !latin.isEmpty() && end == latin.constData() + latin.size()
            && latin.toLower().indexOf("nan") < 0 && latin.toLower().indexOf("inf") < 0
            && latin.toLower().indexOf("x") < 0;
        if (good)
            result = parsed;
        break;
    }
    default:
        good = false;
        break;
    }
    if (ok)
        *ok = good;
    return result;
}

QVariant unwrapped(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QJSValue>())
        return value.value<QJSValue>().toVariant();
    return value;
}

} // namespace Canonical
