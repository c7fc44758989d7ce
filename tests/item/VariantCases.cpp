#include "VariantCases.h"

#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QMetaType>
#include <QtCore/QTime>
#include <QtCore/QTimeZone>
#include <QtCore/QUrl>

#include <cmath>
#include <limits>

QList<QPair<QString, QVariant>> variantCases()
{
    const QDateTime utc(QDate(2020, 1, 2), QTime(3, 4, 5), Qt::UTC);
    QList<QPair<QString, QVariant>> cases = {
        {"invalid", QVariant()},
        {"str-null", QVariant(QString())},
        {"str-empty", QVariant(QStringLiteral(""))},
        {"str-a", QVariant(QStringLiteral("a"))},
        {"str-A", QVariant(QStringLiteral("A"))},
        {"str-apple", QVariant(QStringLiteral("apple"))},
        {"str-Apple", QVariant(QStringLiteral("Apple"))},
        {"str-b", QVariant(QStringLiteral("b"))},
        {"str-B", QVariant(QStringLiteral("B"))},
        {"str-10", QVariant(QStringLiteral("10"))},
        {"str-9", QVariant(QStringLiteral("9"))},
        {"str-3", QVariant(QStringLiteral("3"))},
        {"str-2.5", QVariant(QStringLiteral("2.5"))},
        {"str--2.5", QVariant(QStringLiteral("-2.5"))},
        {"str-3000000000", QVariant(QStringLiteral("3000000000"))},
        {"str-true", QVariant(QStringLiteral("true"))},
        {"str-false", QVariant(QStringLiteral("false"))},
        {"str-0", QVariant(QStringLiteral("0"))},
        {"str-date", QVariant(QStringLiteral("2020-01-02"))},
        {"str-time", QVariant(QStringLiteral("12:30:00"))},
        {"str-datetime", QVariant(QStringLiteral("2020-01-02T03:04:05Z"))},
        {"str-umlaut", QVariant(QString::fromUtf8("\xc3\x84pfel"))},
        {"str-umlaut-lower", QVariant(QString::fromUtf8("\xc3\xa4pfel"))},
        {"str-url", QVariant(QStringLiteral("http://x.test/a"))},
        {"int-0", QVariant(0)},
        {"int-1", QVariant(1)},
        {"int--3", QVariant(-3)},
        {"int-3", QVariant(3)},
        {"int-9", QVariant(9)},
        {"int-10", QVariant(10)},
        {"int-max", QVariant(std::numeric_limits<int>::max())},
        {"uint-3", QVariant(3u)},
        {"uint-big", QVariant(4000000000u)},
        {"ll--5", QVariant(qlonglong(-5))},
        {"ll-big", QVariant(qlonglong(1) << 40)},
        {"ull-max", QVariant(std::numeric_limits<qulonglong>::max())},
        {"dbl-0", QVariant(0.0)},
        {"dbl--0", QVariant(-0.0)},
        {"dbl-0.5", QVariant(0.5)},
        {"dbl--0.5", QVariant(-0.5)},
        {"dbl-2.5", QVariant(2.5)},
        {"dbl--2.5", QVariant(-2.5)},
        {"dbl-3", QVariant(3.0)},
        {"dbl-9.5", QVariant(9.5)},
        {"dbl-1e300", QVariant(1e300)},
        {"dbl-nan", QVariant(std::numeric_limits<double>::quiet_NaN())},
        {"dbl-inf", QVariant(std::numeric_limits<double>::infinity())},
        {"dbl-0.1+0.2", QVariant(0.1 + 0.2)},
        {"dbl-0.3", QVariant(0.3)},
        {"flt-2.5", QVariant(2.5f)},
        {"bool-true", QVariant(true)},
        {"bool-false", QVariant(false)},
        {"char-a", QVariant(QChar('a'))},
        {"char-null", QVariant(QChar())},
        {"bytes-abc", QVariant(QByteArray("abc"))},
        {"bytes-ABC", QVariant(QByteArray("ABC"))},
        {"bytes-null", QVariant(QByteArray())},
        {"bytes-10", QVariant(QByteArray("10"))},
        {"sl-a", QVariant(QStringList{"a"})},
        {"sl-A", QVariant(QStringList{"A"})},
        {"sl-a-b", QVariant(QStringList{"a", "b"})},
        {"sl-empty", QVariant(QStringList())},
        {"list-1-a", QVariant(QVariantList{1, QStringLiteral("a")})},
        {"list-a", QVariant(QVariantList{QStringLiteral("a")})},
        {"list-empty", QVariant(QVariantList())},
        {"map-k1", QVariant(QVariantMap{{"k", 1}})},
        {"map-k1.0", QVariant(QVariantMap{{"k", 1.0}})},
        {"map-empty", QVariant(QVariantMap())},
        {"date", QVariant(QDate(2020, 1, 2))},
        {"date-earlier", QVariant(QDate(2019, 12, 31))},
        {"date-null", QVariant(QDate())},
        {"time", QVariant(QTime(12, 30))},
        {"time-null", QVariant(QTime())},
        {"datetime", QVariant(utc)},
        {"datetime-null", QVariant(QDateTime())},
        {"url", QVariant(QUrl(QStringLiteral("http://x.test/a")))},
        {"nullptr", QVariant::fromValue(nullptr)},
        {"qobject-null", QVariant::fromValue(static_cast<QObject*>(nullptr))},
    };
    return cases;
}

QList<QPair<QString, int>> conversionTargets()
{
    return {
        {"bool", QMetaType::Bool},          {"int", QMetaType::Int},
        {"uint", QMetaType::UInt},          {"longlong", QMetaType::LongLong},
        {"ulonglong", QMetaType::ULongLong}, {"double", QMetaType::Double},
        {"char", QMetaType::QChar},         {"string", QMetaType::QString},
        {"stringlist", QMetaType::QStringList}, {"bytearray", QMetaType::QByteArray},
        {"date", QMetaType::QDate},         {"time", QMetaType::QTime},
        {"datetime", QMetaType::QDateTime}, {"list", QMetaType::QVariantList},
        {"map", QMetaType::QVariantMap},    {"url", QMetaType::QUrl},
    };
}

namespace {

// Text with every character outside printable ASCII written as \uXXXX, so the
// table is plain ASCII.
QString escaped(const QString& text)
{
    QString out;
    for (const QChar c : text) {
        if (c.unicode() >= 0x20 && c.unicode() < 0x7f && c != QLatin1Char('\\'))
            out += c;
        else
            out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
    }
    return out;
}

QString number(double d)
{
    if (std::isnan(d))
        return QStringLiteral("nan");
    return QString::number(d, 'g', 17);
}

} // namespace

QString canonicalText(const QVariant& value)
{
    const void* data = value.constData();
    switch (value.userType()) {
    case QMetaType::UnknownType: return QStringLiteral("invalid");
    case QMetaType::Bool: return QStringLiteral("bool:") + (*static_cast<const bool*>(data) ? "true" : "false");
    case QMetaType::Int: return QStringLiteral("int:") + QString::number(*static_cast<const int*>(data));
    case QMetaType::UInt: return QStringLiteral("uint:") + QString::number(*static_cast<const uint*>(data));
    case QMetaType::LongLong: return QStringLiteral("longlong:") + QString::number(*static_cast<const qlonglong*>(data));
    case QMetaType::ULongLong:
        return QStringLiteral("ulonglong:") + QString::number(*static_cast<const qulonglong*>(data));
    case QMetaType::Double: return QStringLiteral("double:") + number(*static_cast<const double*>(data));
    case QMetaType::Float: return QStringLiteral("float:") + number(double(*static_cast<const float*>(data)));
    case QMetaType::QChar:
        return QStringLiteral("char:") + QString::number(static_cast<const QChar*>(data)->unicode());
    case QMetaType::QString: {
        const QString& s = *static_cast<const QString*>(data);
        return s.isNull() ? QStringLiteral("string:null") : QStringLiteral("string:\"") + escaped(s) + QLatin1Char('"');
    }
    case QMetaType::QByteArray: {
        const QByteArray& b = *static_cast<const QByteArray*>(data);
        return b.isNull() ? QStringLiteral("bytearray:null")
                          : QStringLiteral("bytearray:\"") + escaped(QString::fromLatin1(b)) + QLatin1Char('"');
    }
    case QMetaType::QStringList: {
        QStringList parts;
        for (const QString& s : *static_cast<const QStringList*>(data))
            parts << QLatin1Char('"') + escaped(s) + QLatin1Char('"');
        return QStringLiteral("stringlist:[") + parts.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    case QMetaType::QVariantList: {
        QStringList parts;
        for (const QVariant& v : *static_cast<const QVariantList*>(data))
            parts << canonicalText(v);
        return QStringLiteral("list:[") + parts.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    case QMetaType::QVariantMap: {
        QStringList parts;
        const QVariantMap& map = *static_cast<const QVariantMap*>(data);
        for (auto it = map.constBegin(); it != map.constEnd(); ++it)
            parts << escaped(it.key()) + QLatin1Char('=') + canonicalText(it.value());
        return QStringLiteral("map:{") + parts.join(QLatin1Char(',')) + QLatin1Char('}');
    }
    case QMetaType::QDate: {
        const QDate& d = *static_cast<const QDate*>(data);
        return d.isNull() ? QStringLiteral("date:null") : QStringLiteral("date:") + d.toString(Qt::ISODate);
    }
    case QMetaType::QTime: {
        const QTime& t = *static_cast<const QTime*>(data);
        return t.isNull() ? QStringLiteral("time:null") : QStringLiteral("time:") + t.toString(Qt::ISODateWithMs);
    }
    case QMetaType::QDateTime: {
        const QDateTime& t = *static_cast<const QDateTime*>(data);
        return t.isNull() ? QStringLiteral("datetime:null")
                          : QStringLiteral("datetime:") + t.toUTC().toString(Qt::ISODateWithMs);
    }
    case QMetaType::QUrl: return QStringLiteral("url:") + static_cast<const QUrl*>(data)->toString();
    case QMetaType::Nullptr: return QStringLiteral("nullptr");
    default: return QStringLiteral("other:") + QString::fromLatin1(QMetaType(value.userType()).name());
    }
}

QStringList answerTable(const VariantQuestions& q)
{
    QStringList lines;
    const auto cases = variantCases();
    const auto targets = conversionTargets();
    auto yes = [](bool b) { return b ? QStringLiteral("true") : QStringLiteral("false"); };
    for (const auto& c : cases) {
        const QString& n = c.first;
        const QVariant& v = c.second;
        lines << QStringLiteral("isNull %1: %2").arg(n, yes(q.isNull(v)));
        lines << QStringLiteral("toString %1: %2").arg(n, canonicalText(QVariant(q.toText(v))));
        lines << QStringLiteral("toBool %1: %2").arg(n, yes(q.toBool(v)));
        bool ok = false;
        const int i = q.toInt(v, &ok);
        lines << QStringLiteral("toInt %1: %2 %3").arg(n).arg(i).arg(yes(ok));
        const qlonglong ll = q.toLongLong(v, &ok);
        lines << QStringLiteral("toLongLong %1: %2 %3").arg(n).arg(ll).arg(yes(ok));
        const uint u = q.toUInt(v, &ok);
        lines << QStringLiteral("toUInt %1: %2 %3").arg(n).arg(u).arg(yes(ok));
        const double d = q.toDouble(v, &ok);
        lines << QStringLiteral("toDouble %1: %2 %3").arg(n, canonicalText(QVariant(d)), yes(ok));
        lines << QStringLiteral("toStringList %1: %2").arg(n, canonicalText(QVariant(q.toStringList(v))));
        for (const auto& t : targets) {
            QVariant converted = v;
            const bool converts = q.convert(converted, t.second);
            lines << QStringLiteral("convert %1 %2: can %3, %4 %5 null %6")
                         .arg(n, t.first, yes(q.canConvert(v, t.second)), yes(converts), canonicalText(converted),
                              yes(q.isNull(converted)));
        }
    }
    for (const auto& a : cases) {
        for (const auto& b : cases) {
            lines << QStringLiteral("compare %1 %2: %3").arg(a.first, b.first).arg(q.compareSign(a.second, b.second));
            lines << QStringLiteral("equals %1 %2: %3").arg(a.first, b.first, yes(q.equals(a.second, b.second)));
        }
    }
    return lines;
}
