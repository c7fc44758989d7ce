#include "VariantRules.h"

#include <QtCore/QBitArray>
#include <QtCore/QHash>
#include <QtCore/QJsonValue>
#include <QtCore/QLine>
#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <QtCore/QUuid>
#include <QtCore/QLocale>
#include <QtCore/QMap>
#include <QtCore/QMetaType>
#include <QtCore/QUrl>
#include <QtCore/QtNumeric>

#include <cmath>
#include <cstring>
#include <limits>

// The rules below are written out in full rather than taken from QVariant:
// hosts sort and filter stored data with them, so an answer may never change
// with the Qt the library runs on. Each function states the answer it keeps.

namespace VariantRules {
namespace {

enum : int {
    Invalid = QMetaType::UnknownType,
    Bool = QMetaType::Bool,
    Int = QMetaType::Int,
    UInt = QMetaType::UInt,
    LongLong = QMetaType::LongLong,
    ULongLong = QMetaType::ULongLong,
    Double = QMetaType::Double,
    Float = QMetaType::Float,
    Char = QMetaType::Char,
    SChar = QMetaType::SChar,
    UChar = QMetaType::UChar,
    Short = QMetaType::Short,
    UShort = QMetaType::UShort,
    Long = QMetaType::Long,
    ULong = QMetaType::ULong,
    QCharType = QMetaType::QChar,
    String = QMetaType::QString,
    StringList = QMetaType::QStringList,
    ByteArray = QMetaType::QByteArray,
    Date = QMetaType::QDate,
    Time = QMetaType::QTime,
    DateTime = QMetaType::QDateTime,
    Url = QMetaType::QUrl,
    List = QMetaType::QVariantList,
    Map = QMetaType::QVariantMap,
    Hash = QMetaType::QVariantHash,
    Nullptr = QMetaType::Nullptr,
    ObjectStar = QMetaType::QObjectStar,
};

// ---- the running Qt, for types outside the ones these rules cover --------------

bool qtCanConvert(const QVariant& value, int targetType)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return value.canConvert(QMetaType(targetType));
#else
    return value.canConvert(targetType);
#endif
}

bool qtConvert(QVariant& value, int targetType)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return value.convert(QMetaType(targetType));
#else
    return value.convert(targetType);
#endif
}

QVariant nullOfType(int type)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QVariant(QMetaType(type));
#else
    return QVariant(type, nullptr);
#endif
}

template <typename T>
const T& stored(const QVariant& value)
{
    return *static_cast<const T*>(value.constData());
}

bool isCovered(int type)
{
    switch (type) {
    case Invalid: case Bool: case Int: case UInt: case LongLong: case ULongLong: case Double: case Float:
    case Char: case SChar: case UChar: case Short: case UShort: case Long: case ULong: case QCharType:
    case String: case StringList: case ByteArray: case Date: case Time: case DateTime: case Url:
    case List: case Map: case Hash: case Nullptr: case ObjectStar:
        return true;
    default:
        return false;
    }
}

bool isNumeric(int type)
{
    switch (type) {
    case Bool: case Double: case Float: case Char: case SChar: case UChar: case Short: case UShort:
    case Int: case UInt: case Long: case ULong: case LongLong: case ULongLong:
        return true;
    default:
        return false;
    }
}

bool isFloatingPoint(int type)
{
    return type == Double || type == Float;
}

// A floating-point value truncated to a 64-bit integer the way the processor
// does it: NaN and values out of range give the smallest integer.
template <typename F>
qint64 truncated(F x)
{
    const F limit = F(9223372036854775808.0); // 2^63
    if (!(x >= -limit && x < limit))
        return std::numeric_limits<qint64>::min();
    return qint64(x);
}

// Doubles become integers by rounding halves up (-2.5 gives -2, -0.5 gives
// 0), as stored rule lists and sorted data expect. Out of range the same
// steps run with the processor's truncation and wrapping sums: NaN gives 0,
// +inf the smallest integer.
template <typename F>
qint64 roundHalfUp(F d)
{
    if (d >= F(0))
        return truncated(d + F(0.5));
    const qint64 below = truncated(d - F(1));
    return qint64(quint64(truncated(d - F(below) + F(0.5))) + quint64(below));
}

qlonglong signedNumber(const QVariant& v)
{
    switch (v.userType()) {
    case Int: return stored<int>(v);
    case LongLong: return stored<qlonglong>(v);
    case Char: return qlonglong(stored<char>(v));
    case SChar: return qlonglong(stored<signed char>(v));
    case Short: return qlonglong(stored<short>(v));
    case Long: return qlonglong(stored<long>(v));
    case Float: return roundHalfUp(stored<float>(v));
    case Double: return roundHalfUp(stored<double>(v));
    default: return 0;
    }
}

qulonglong unsignedNumber(const QVariant& v)
{
    switch (v.userType()) {
    case UInt: return stored<uint>(v);
    case ULongLong: return stored<qulonglong>(v);
    case UChar: return stored<uchar>(v);
    case UShort: return stored<ushort>(v);
    case ULong: return stored<ulong>(v);
    default: return 0;
    }
}

bool isSignedNumber(int type)
{
    switch (type) {
    case Double: case Int: case Char: case SChar: case Short: case Long: case Float: case LongLong:
        return true;
    default:
        return false;
    }
}

bool isUnsignedNumber(int type)
{
    switch (type) {
    case ULongLong: case UInt: case UChar: case UShort: case ULong:
        return true;
    default:
        return false;
    }
}

qlonglong toNumber(const QVariant& v, bool* ok)
{
    *ok = true;
    const int type = v.userType();
    switch (type) {
    case String: return stored<QString>(v).toLongLong(ok);
    case QCharType: return stored<QChar>(v).unicode();
    case ByteArray: return stored<QByteArray>(v).toLongLong(ok);
    case Bool: return qlonglong(stored<bool>(v));
    default: break;
    }
    if (isSignedNumber(type))
        return signedNumber(v);
    if (isUnsignedNumber(type))
        return qlonglong(unsignedNumber(v));
    *ok = false;
    return 0;
}

qulonglong toUnsignedNumber(const QVariant& v, bool* ok)
{
    *ok = true;
    const int type = v.userType();
    switch (type) {
    case String: return stored<QString>(v).toULongLong(ok);
    case QCharType: return stored<QChar>(v).unicode();
    case ByteArray: return stored<QByteArray>(v).toULongLong(ok);
    case Bool: return qulonglong(stored<bool>(v));
    default: break;
    }
    if (isSignedNumber(type))
        return qulonglong(signedNumber(v));
    if (isUnsignedNumber(type))
        return unsignedNumber(v);
    *ok = false;
    return 0;
}

double toRealNumber(const QVariant& v)
{
    switch (v.userType()) {
    case Double: return stored<double>(v);
    case Float: return double(stored<float>(v));
    default: break;
    }
    if (isUnsignedNumber(v.userType()))
        return double(unsignedNumber(v));
    bool ok = false;
    return double(toNumber(v, &ok));
}

bool textToBool(QString text)
{
    text = text.toLower();
    return !(text.isEmpty() || text == QLatin1String("0") || text == QLatin1String("false"));
}

bool bytesToBool(QByteArray bytes)
{
    bytes = bytes.toLower();
    return !(bytes.isEmpty() || bytes == "0" || bytes == "false");
}

// A time is read from text that starts with "HH:mm"; a bare hour is no time.
QTime timeFromText(const QString& text)
{
    if (text.size() < 5 || text.at(2) != QLatin1Char(':'))
        return QTime();
    return QTime::fromString(text, Qt::ISODate);
}

// The raw conversion between covered types: writes what it can into result
// and answers whether it succeeded. A partial result is kept on failure, as
// the value getters (toInt(), toString() ...) have always returned it.
bool rawConvert(const QVariant& v, int target, QVariant& result)
{
    const int type = v.userType();
    bool ok = true;
    switch (target) {
    case Url:
        if (type == String) {
            result = QUrl(stored<QString>(v));
            return true;
        }
        return false;
    case String: {
        QString text;
        bool converted = true;
        switch (type) {
        case QCharType: text = QString(stored<QChar>(v)); break;
        case Char: case SChar: case UChar: text = QString(QChar::fromLatin1(*static_cast<const char*>(v.constData()))); break;
        case Short: case Long: case Int: case LongLong: text = QString::number(signedNumber(v)); break;
        case UInt: case ULongLong: case UShort: case ULong: text = QString::number(unsignedNumber(v)); break;
        case Float: text = QString::number(double(stored<float>(v)), 'g', QLocale::FloatingPointShortest); break;
        case Double: text = QString::number(stored<double>(v), 'g', QLocale::FloatingPointShortest); break;
        case Date: text = stored<QDate>(v).toString(Qt::ISODate); break;
        case Time: text = stored<QTime>(v).toString(Qt::ISODateWithMs); break;
        case DateTime: text = stored<QDateTime>(v).toString(Qt::ISODateWithMs); break;
        case Bool: text = stored<bool>(v) ? QStringLiteral("true") : QStringLiteral("false"); break;
        case ByteArray: text = QString::fromUtf8(stored<QByteArray>(v).constData()); break;
        case StringList:
            // Only a one-entry list has a text; any other list converts to an
            // empty text, and the conversion still counts as made.
            if (stored<QStringList>(v).size() == 1)
                text = stored<QStringList>(v).at(0);
            break;
        case Url: text = stored<QUrl>(v).toString(); break;
        case Nullptr: break;
        default: converted = false; break;
        }
        result = text;
        return converted;
    }
    case QCharType: {
        QChar c;
        bool converted = true;
        if (isSignedNumber(type) && type != Double)
            c = QChar(ushort(signedNumber(v)));
        else if (isUnsignedNumber(type))
            c = QChar(ushort(unsignedNumber(v)));
        else
            converted = false;
        result = QVariant::fromValue(c);
        return converted;
    }
    case StringList:
        if (type == List) {
            QStringList list;
            for (const QVariant& entry : stored<QVariantList>(v))
                list.append(VariantRules::toString(entry));
            result = list;
            return true;
        }
        if (type == String) {
            result = QStringList(stored<QString>(v));
            return true;
        }
        result = QStringList();
        return false;
    case Date: {
        QDate date;
        if (type == DateTime)
            date = stored<QDateTime>(v).date();
        else if (type == String)
            date = QDate::fromString(stored<QString>(v), Qt::ISODate);
        else {
            result = date;
            return false;
        }
        result = date;
        return date.isValid();
    }
    case Time: {
        QTime time;
        if (type == DateTime)
            time = stored<QDateTime>(v).time();
        else if (type == String)
            time = timeFromText(stored<QString>(v));
        else {
            result = time;
            return false;
        }
        result = time;
        return time.isValid();
    }
    case DateTime: {
        QDateTime dateTime;
        if (type == String)
            dateTime = QDateTime::fromString(stored<QString>(v), Qt::ISODate);
        else if (type == Date)
            dateTime = stored<QDate>(v).startOfDay();
        else {
            result = dateTime;
            return false;
        }
        result = dateTime;
        return dateTime.isValid();
    }
    case ByteArray: {
        QByteArray bytes;
        bool converted = true;
        switch (type) {
        case String: bytes = stored<QString>(v).toUtf8(); break;
        case Double: bytes = QByteArray::number(stored<double>(v), 'g', QLocale::FloatingPointShortest); break;
        case Float: bytes = QByteArray::number(double(stored<float>(v)), 'g', QLocale::FloatingPointShortest); break;
        case Char: case SChar: case UChar: bytes = QByteArray(1, *static_cast<const char*>(v.constData())); break;
        case Int: case LongLong: case Short: case Long: bytes = QByteArray::number(signedNumber(v)); break;
        case UInt: case ULongLong: case UShort: case ULong: bytes = QByteArray::number(unsignedNumber(v)); break;
        case Bool: bytes = QByteArray(stored<bool>(v) ? "true" : "false"); break;
        case Nullptr: break;
        default: converted = false; break;
        }
        result = bytes;
        return converted;
    }
    case Short: result = QVariant::fromValue(short(toNumber(v, &ok))); return ok;
    case Long: result = QVariant::fromValue(long(toNumber(v, &ok))); return ok;
    case UShort: result = QVariant::fromValue(ushort(toUnsignedNumber(v, &ok))); return ok;
    case ULong: result = QVariant::fromValue(ulong(toUnsignedNumber(v, &ok))); return ok;
    case Int: result = int(toNumber(v, &ok)); return ok;
    case UInt: result = uint(toUnsignedNumber(v, &ok)); return ok;
    case LongLong: result = qlonglong(toNumber(v, &ok)); return ok;
    case ULongLong: result = qulonglong(toUnsignedNumber(v, &ok)); return ok;
    case SChar: result = QVariant::fromValue((signed char)(toNumber(v, &ok))); return ok;
    case UChar: result = QVariant::fromValue(uchar(toUnsignedNumber(v, &ok))); return ok;
    case Char: result = QVariant::fromValue(char(toNumber(v, &ok))); return ok;
    case Bool: {
        bool b = false;
        bool converted = true;
        switch (type) {
        case ByteArray: b = bytesToBool(stored<QByteArray>(v)); break;
        case String: b = textToBool(stored<QString>(v)); break;
        case QCharType: b = !stored<QChar>(v).isNull(); break;
        default:
            if (isSignedNumber(type))
                b = signedNumber(v) != 0; // -0.5 rounds to 0: false
            else if (isUnsignedNumber(type))
                b = unsignedNumber(v) != 0;
            else
                converted = false;
            break;
        }
        result = b;
        return converted;
    }
    case Double:
    case Float: {
        double d = 0.0;
        bool converted = true;
        switch (type) {
        case String:
            d = target == Float ? double(stored<QString>(v).toFloat(&ok)) : stored<QString>(v).toDouble(&ok);
            converted = ok;
            break;
        case ByteArray:
            d = target == Float ? double(stored<QByteArray>(v).toFloat(&ok)) : stored<QByteArray>(v).toDouble(&ok);
            converted = ok;
            break;
        case Bool: d = double(stored<bool>(v)); break;
        case Float: d = double(stored<float>(v)); break;
        case Double: d = stored<double>(v); break;
        default:
            if (isSignedNumber(type))
                d = double(signedNumber(v));
            else if (isUnsignedNumber(type))
                d = double(unsignedNumber(v));
            else
                converted = false;
            break;
        }
        if (target == Float)
            result = float(d);
        else
            result = d;
        return converted;
    }
    case List:
        if (type == StringList) {
            QVariantList list;
            for (const QString& entry : stored<QStringList>(v))
                list.append(entry);
            result = list;
            return true;
        }
        if (type == List) {
            result = v;
            return true;
        }
        result = QVariantList();
        return false;
    case Map:
        if (type == Map) {
            result = v;
            return true;
        }
        if (type == Hash) {
            QVariantMap map;
            const QVariantHash& hash = stored<QVariantHash>(v);
            for (auto it = hash.constBegin(); it != hash.constEnd(); ++it)
                map.insert(it.key(), it.value());
            result = map;
            return true;
        }
        result = QVariantMap();
        return false;
    case Hash:
        if (type == Hash) {
            result = v;
            return true;
        }
        if (type == Map) {
            QVariantHash hash;
            const QVariantMap& map = stored<QVariantMap>(v);
            for (auto it = map.constBegin(); it != map.constEnd(); ++it)
                hash.insert(it.key(), it.value());
            result = hash;
            return true;
        }
        result = QVariantHash();
        return false;
    default:
        return false;
    }
}

// Which covered types convert to which: one bit per source type, by target.
bool coveredCanConvert(int from, int to)
{
    auto bit = [](int type) { return quint64(1) << type; };
    quint64 sources = 0;
    switch (to) {
    case Bool:
        sources = bit(Double) | bit(Int) | bit(UInt) | bit(LongLong) | bit(ULongLong) | bit(ByteArray) | bit(String)
            | bit(QCharType);
        break;
    case Int:
        sources = bit(UInt) | bit(String) | bit(Double) | bit(Bool) | bit(LongLong) | bit(ULongLong) | bit(QCharType)
            | bit(ByteArray) | bit(Int);
        break;
    case UInt:
        sources = bit(Int) | bit(String) | bit(Double) | bit(Bool) | bit(LongLong) | bit(ULongLong) | bit(QCharType)
            | bit(ByteArray);
        break;
    case LongLong:
        sources = bit(Int) | bit(String) | bit(Double) | bit(Bool) | bit(UInt) | bit(ULongLong) | bit(QCharType)
            | bit(ByteArray);
        break;
    case ULongLong:
        sources = bit(Int) | bit(String) | bit(Double) | bit(Bool) | bit(UInt) | bit(LongLong) | bit(QCharType)
            | bit(ByteArray);
        break;
    case Double:
        sources = bit(Int) | bit(String) | bit(ULongLong) | bit(Bool) | bit(UInt) | bit(LongLong) | bit(ByteArray);
        break;
    case QCharType:
        sources = bit(Int) | bit(UInt) | bit(LongLong) | bit(ULongLong);
        break;
    case List:
        sources = bit(StringList);
        break;
    case String:
        sources = bit(StringList) | bit(ByteArray) | bit(Int) | bit(UInt) | bit(Bool) | bit(Double) | bit(Date)
            | bit(Time) | bit(DateTime) | bit(LongLong) | bit(ULongLong) | bit(QCharType) | bit(Url);
        break;
    case StringList:
        sources = bit(List) | bit(String);
        break;
    case ByteArray:
        sources = bit(String) | bit(Int) | bit(UInt) | bit(Bool) | bit(Double) | bit(LongLong) | bit(ULongLong);
        break;
    case Date:
        sources = bit(String) | bit(DateTime);
        break;
    case Time:
        sources = bit(String) | bit(DateTime);
        break;
    case DateTime:
        sources = bit(String) | bit(Date);
        break;
    case Url:
        sources = bit(String);
        break;
    default:
        break;
    }
    return from < 64 && (sources & bit(from)) != 0;
}

// The small integer types, float and nullptr take part through the rules
// that have always mapped them onto the main ones.
bool canConvertCovered(const QVariant& value, int from, int to)
{
    if (from == to)
        return true;
    // Object pointers convert to nothing else, nullptr included.
    if (from == ObjectStar || to == ObjectStar)
        return false;
    // Only a one-entry string list has a text of its own.
    if (from == StringList && to == String)
        return stored<QStringList>(value).size() == 1;
    if (to == List && (from == List || from == StringList))
        return true;
    if ((to == Hash || to == Map) && (from == Map || from == Hash))
        return true;
    if (from == SChar || from == Char)
        from = UInt;
    if (to == SChar || from == Char)
        to = UInt;
    if (from == Short || from == UShort)
        from = Int;
    if (to == Short || from == UShort)
        to = Int;
    if (from == Float)
        from = Double;
    if (to == Float)
        to = Double;
    if (from == to)
        return true;
    switch (to) {
    case Int: case UInt: case LongLong: case ULongLong:
        if (from == ULong || from == Long || from == UShort || from == UChar || from == Char || from == SChar
            || from == Short)
            return true;
        break;
    case ByteArray: case String:
        if (from == Nullptr)
            return true;
        break;
    case Long: case Char: case SChar: case UChar: case ULong: case Short: case UShort:
        return from == Int || coveredCanConvert(from, Int);
    default:
        break;
    }
    if (from == ULong || from == Long || from == UChar || from == Nullptr)
        return false;
    return coveredCanConvert(from, to);
}

// ---- numbers --------------------------------------------------------------------

int normalizeLowerRanks(int type)
{
    switch (type) {
    case Bool: case Char: case SChar: case UChar: case Short: case UShort:
        return Int;
    default:
        return type;
    }
}

int normalizeLong(int type)
{
    if (type == Long)
        return sizeof(long) == sizeof(int) ? Int : LongLong;
    if (type == ULong)
        return sizeof(ulong) == sizeof(uint) ? UInt : ULongLong;
    return type;
}

int numericPromotion(int t1, int t2)
{
    if (isFloatingPoint(t1) || isFloatingPoint(t2))
        return Double;
    t1 = normalizeLong(normalizeLowerRanks(t1));
    t2 = normalizeLong(normalizeLowerRanks(t2));
    if (t1 == ULongLong || t2 == ULongLong)
        return ULongLong;
    if (t1 == LongLong || t2 == LongLong)
        return LongLong;
    if (t1 == UInt || t2 == UInt)
        return UInt;
    return Int;
}

template <typename T>
int threeWay(T a, T b)
{
    return a < b ? -1 : (a == b ? 0 : 1);
}

// Numbers compare by the usual promotion of their types, with no conversion
// through text; doubles that differ only in their last digits are equal, and
// NaN compares greater than everything, NaN included.
int numericCompare(const QVariant& a, const QVariant& b)
{
    const int promoted = numericPromotion(a.userType(), b.userType());
    if (promoted != Double) {
        bool ok = false;
        const qlonglong l1 = toNumber(a, &ok);
        const qlonglong l2 = toNumber(b, &ok);
        switch (promoted) {
        case Int: return threeWay(int(l1), int(l2));
        case UInt: return threeWay(uint(l1), uint(l2));
        case LongLong: return threeWay(l1, l2);
        default: return threeWay(qulonglong(l1), qulonglong(l2));
        }
    }
    const double r1 = toRealNumber(a);
    const double r2 = toRealNumber(b);
    if (r1 == r2)
        return 0;
    const int c1 = std::fpclassify(r1);
    const int c2 = std::fpclassify(r2);
    if ((c1 == FP_NORMAL || c1 == FP_SUBNORMAL) && (c2 == FP_NORMAL || c2 == FP_SUBNORMAL)) {
        if (qFuzzyCompare(r1, r2))
            return 0;
    }
    return r1 < r2 ? -1 : 1;
}

// ---- equality of two values of one type ----------------------------------------------

bool isPointerType(int type)
{
    // Told by the type's name, which both majors spell with a trailing '*'.
    return type != Invalid && QByteArray(QMetaType(type).name()).endsWith('*');
}

bool sameTypeEquals(const QVariant& a, const QVariant& b)
{
    const int type = a.userType();
    switch (type) {
    case Invalid: return true;
    case Nullptr: return true;
    case Bool: return stored<bool>(a) == stored<bool>(b);
    case Int: return stored<int>(a) == stored<int>(b);
    case UInt: return stored<uint>(a) == stored<uint>(b);
    case LongLong: return stored<qlonglong>(a) == stored<qlonglong>(b);
    case ULongLong: return stored<qulonglong>(a) == stored<qulonglong>(b);
    case Double: return stored<double>(a) == stored<double>(b); // -0.0 equals 0.0, NaN nothing
    case Float: return stored<float>(a) == stored<float>(b);
    case Char: return stored<char>(a) == stored<char>(b);
    case SChar: return stored<signed char>(a) == stored<signed char>(b);
    case UChar: return stored<uchar>(a) == stored<uchar>(b);
    case Short: return stored<short>(a) == stored<short>(b);
    case UShort: return stored<ushort>(a) == stored<ushort>(b);
    case Long: return stored<long>(a) == stored<long>(b);
    case ULong: return stored<ulong>(a) == stored<ulong>(b);
    case QCharType: return stored<QChar>(a) == stored<QChar>(b);
    case String: return stored<QString>(a) == stored<QString>(b);
    case StringList: return stored<QStringList>(a) == stored<QStringList>(b);
    case ByteArray: return stored<QByteArray>(a) == stored<QByteArray>(b);
    case Date: return stored<QDate>(a) == stored<QDate>(b);
    case Time: return stored<QTime>(a) == stored<QTime>(b);
    case DateTime: return stored<QDateTime>(a) == stored<QDateTime>(b);
    case Url: return stored<QUrl>(a) == stored<QUrl>(b);
    case List: {
        const QVariantList& l1 = stored<QVariantList>(a);
        const QVariantList& l2 = stored<QVariantList>(b);
        if (l1.size() != l2.size())
            return false;
        for (int i = 0; i < l1.size(); ++i) {
            if (!equals(l1.at(i), l2.at(i)))
                return false;
        }
        return true;
    }
    case Map: {
        const QVariantMap& m1 = stored<QVariantMap>(a);
        const QVariantMap& m2 = stored<QVariantMap>(b);
        if (m1.size() != m2.size())
            return false;
        for (auto i1 = m1.constBegin(), i2 = m2.constBegin(); i1 != m1.constEnd(); ++i1, ++i2) {
            if (i1.key() != i2.key() || !equals(i1.value(), i2.value()))
                return false;
        }
        return true;
    }
    case Hash: {
        const QVariantHash& h1 = stored<QVariantHash>(a);
        const QVariantHash& h2 = stored<QVariantHash>(b);
        if (h1.size() != h2.size())
            return false;
        for (auto it = h1.constBegin(); it != h1.constEnd(); ++it) {
            auto other = h2.constFind(it.key());
            if (other == h2.constEnd() || !equals(it.value(), other.value()))
                return false;
        }
        return true;
    }
    default:
        break;
    }
    // Other types: pointers by address, values through their registered
    // equality, or else byte for byte.
    if (isPointerType(type))
        return *static_cast<void* const*>(a.constData()) == *static_cast<void* const*>(b.constData());
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const QMetaType metaType(type);
    if (metaType.isEqualityComparable())
        return metaType.equals(a.constData(), b.constData());
#else
    int result = 0;
    if (QMetaType::equals(a.constData(), b.constData(), type, &result))
        return result == 0;
#endif
    if (a.constData() == b.constData())
        return true;
    const int size = QMetaType(type).sizeOf();
    return size > 0 && std::memcmp(a.constData(), b.constData(), size_t(size)) == 0;
}

// A value constructed from a type alone, or left by a failed conversion.
bool madeWithoutData(const QVariant& value)
{
    return value.data_ptr().is_null;
}

bool convertForCompare(QVariant& value, int targetType)
{
    return convert(value, targetType);
}

} // namespace

// ---- public rules --------------------------------------------------------------------

bool canConvert(const QVariant& value, int targetType)
{
    const int type = value.userType();
    if (type == targetType)
        return true;
    if (isCovered(type) && isCovered(targetType))
        return canConvertCovered(value, type, targetType);
    return qtCanConvert(value, targetType);
}

bool convert(QVariant& value, int targetType)
{
    const int type = value.userType();
    if (type == targetType)
        return true;
    if (!(isCovered(type) && isCovered(targetType))) {
        // Other types through their registered converters, with the same
        // outcome on failure as below.
        if (!qtCanConvert(value, targetType)) {
            value = QVariant();
            return false;
        }
        if (!qtConvert(value, targetType)) {
            if (value.userType() != targetType)
                value = nullOfType(targetType);
            value.data_ptr().is_null = true;
            return false;
        }
        return true;
    }
    const QVariant old = value;
    if (!canConvertCovered(old, type, targetType)) {
        value = QVariant();
        return false;
    }
    // A value made without data (or left by a failed conversion) converts to
    // nothing.
    if (madeWithoutData(old) && type != Nullptr) {
        value = nullOfType(targetType);
        return false;
    }
    QVariant result;
    if (!rawConvert(old, targetType, result)) {
        // What the failed conversion produced stays, marked as made without data.
        value = result.userType() == targetType ? result : nullOfType(targetType);
        value.data_ptr().is_null = true;
        return false;
    }
    value = result;
    return true;
}

bool equals(const QVariant& left, const QVariant& right)
{
    const int t1 = left.userType();
    const int t2 = right.userType();
    if (isNumeric(t1) && isNumeric(t2))
        return numericCompare(left, right) == 0;
    if (t1 == t2)
        return sameTypeEquals(left, right);
    QVariant v1 = left;
    QVariant v2 = right;
    if (canConvert(v2, t1)) {
        if (!convertForCompare(v2, t1))
            return false;
    } else {
        // The other way round may work.
        std::swap(v1, v2);
        if (!convertForCompare(v2, v1.userType()))
            return false;
    }
    return sameTypeEquals(v1, v2);
}

QVariantList listArgument(const QVariantList& list)
{
    if (list.isEmpty())
        return list;
    for (const QVariant& entry : list) {
        if (entry.userType() != QCharType)
            return list;
    }
    return QVariantList();
}

int compareBytes(const QByteArray& left, const QByteArray& right)
{
    const int common = int(qMin(left.size(), right.size()));
    const int c = common > 0 ? std::memcmp(left.constData(), right.constData(), size_t(common)) : 0;
    if (c != 0)
        return c;
    return int(left.size() - right.size());
}

bool equals(const QVariantMap& left, const QVariantMap& right)
{
    return equals(QVariant(left), QVariant(right));
}

bool equals(const QVariantList& left, const QVariantList& right)
{
    return equals(QVariant(left), QVariant(right));
}

int compare(const QVariant& left, const QVariant& right)
{
    const int t1 = left.userType();
    const int t2 = right.userType();
    if (isNumeric(t1) && isNumeric(t2))
        return numericCompare(left, right);
    // Equality first: more types are equal than ordered.
    if (equals(left, right))
        return 0;

    QVariant v1 = left;
    QVariant v2 = right;
    if (t1 != t2) {
        if (canConvert(v2, t1)) {
            QVariant converted = v2;
            if (convertForCompare(converted, t1))
                v2 = converted;
        }
        if (v1.userType() != v2.userType() && canConvert(v1, v2.userType())) {
            QVariant converted = v1;
            if (convertForCompare(converted, v2.userType()))
                v1 = converted;
        }
        if (v1.userType() != v2.userType()) {
            // Types that do not meet compare as text.
            const int r = toString(v1).compare(toString(v2), Qt::CaseInsensitive);
            if (r == 0)
                return v1.userType() < v2.userType() ? -1 : 1;
            return r;
        }
        if (isNumeric(v1.userType()) && isNumeric(v2.userType()))
            return compare(v1, v2);
    }
    switch (v1.userType()) {
    case Date: return toDate(v1) < toDate(v2) ? -1 : 1;
    case Time: return toTime(v1) < toTime(v2) ? -1 : 1;
    case DateTime: return toDateTime(v1) < toDateTime(v2) ? -1 : 1;
    case StringList: return toStringList(v1) < toStringList(v2) ? -1 : 1;
    default: break;
    }
    const int r = toString(v1).compare(toString(v2), Qt::CaseInsensitive);
    if (r == 0) {
        // Not equal (tested above): agree with that.
        return t1 < t2 ? -1 : 1;
    }
    return r;
}

bool isNull(const QVariant& value)
{
    if (!value.isValid() || madeWithoutData(value))
        return true;
    if (isPointerType(value.userType()))
        return *static_cast<void* const*>(value.constData()) == nullptr;
    switch (value.userType()) {
    case String: return stored<QString>(value).isNull();
    case ByteArray: return stored<QByteArray>(value).isNull();
    case QCharType: return stored<QChar>(value).isNull();
    case Date: return stored<QDate>(value).isNull();
    case Time: return stored<QTime>(value).isNull();
    case DateTime: return stored<QDateTime>(value).isNull();
    case Nullptr: return true;
    case QMetaType::QUuid: return stored<QUuid>(value).isNull();
    case QMetaType::QBitArray: return stored<QBitArray>(value).isNull();
    case QMetaType::QRect: return stored<QRect>(value).isNull();
    case QMetaType::QRectF: return stored<QRectF>(value).isNull();
    case QMetaType::QSize: return stored<QSize>(value).isNull();
    case QMetaType::QSizeF: return stored<QSizeF>(value).isNull();
    case QMetaType::QPoint: return stored<QPoint>(value).isNull();
    case QMetaType::QPointF: return stored<QPointF>(value).isNull();
    case QMetaType::QLine: return stored<QLine>(value).isNull();
    case QMetaType::QLineF: return stored<QLineF>(value).isNull();
    case QMetaType::QJsonValue: return stored<QJsonValue>(value).isNull();
    default: return false;
    }
}

namespace {

template <typename T>
T getter(const QVariant& value, int target, bool* ok)
{
    if (ok)
        *ok = true;
    if (value.userType() == target)
        return stored<T>(value);
    if (!(isCovered(value.userType()) && isCovered(target))) {
        // Registered converters of other types.
        if (ok)
            *ok = qtCanConvert(value, target);
        return qvariant_cast<T>(value);
    }
    QVariant result;
    const bool converted = rawConvert(value, target, result);
    if (ok)
        *ok = converted;
    if (result.userType() != target)
        return T();
    return stored<T>(result);
}

} // namespace

bool toBool(const QVariant& value) { return getter<bool>(value, Bool, nullptr); }
int toInt(const QVariant& value, bool* ok) { return getter<int>(value, Int, ok); }
uint toUInt(const QVariant& value, bool* ok) { return getter<uint>(value, UInt, ok); }
qlonglong toLongLong(const QVariant& value, bool* ok) { return getter<qlonglong>(value, LongLong, ok); }
qulonglong toULongLong(const QVariant& value, bool* ok) { return getter<qulonglong>(value, ULongLong, ok); }
double toDouble(const QVariant& value, bool* ok) { return getter<double>(value, Double, ok); }
QChar toChar(const QVariant& value) { return getter<QChar>(value, QCharType, nullptr); }
QString toString(const QVariant& value) { return getter<QString>(value, String, nullptr); }
QByteArray toByteArray(const QVariant& value) { return getter<QByteArray>(value, ByteArray, nullptr); }
QStringList toStringList(const QVariant& value) { return getter<QStringList>(value, StringList, nullptr); }
QDate toDate(const QVariant& value) { return getter<QDate>(value, Date, nullptr); }
QTime toTime(const QVariant& value) { return getter<QTime>(value, Time, nullptr); }
QDateTime toDateTime(const QVariant& value) { return getter<QDateTime>(value, DateTime, nullptr); }
QVariantList toList(const QVariant& value) { return getter<QVariantList>(value, List, nullptr); }
QVariantMap toMap(const QVariant& value) { return getter<QVariantMap>(value, Map, nullptr); }

} // namespace VariantRules
