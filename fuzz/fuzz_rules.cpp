// Feeds rule-shaped input to the views and sorts: filter rules of both formats,
// sort rules, sort flags, the value handed to the host's match function, the
// comparison files of the function sorts, and the items' own values.
//
// The input is read as JSON and converted the way QML hands values over
// (toVariant). Input that is no JSON (as a strict reader judges it) is decoded
// byte by byte into JSON-like values instead, so that short inputs still reach
// the library. When the input ends in whitespace (which JSON allows), the
// strings "NaN", "Infinity" and "-Infinity" in it become those doubles: JSON
// itself cannot spell them.
//
// The arguments go through the randomized suite's operation engine: it builds a
// model with child and grandchild models and every kind of view attached, runs
// the rule operations with the input's arguments, interleaved with random
// operations so that the views follow changes under those rules, and checks
// its invariants after every step. A broken invariant aborts, so that libFuzzer
// keeps the input; AddressSanitizer reports the rest.

#include "FilterRules.h"
#include "OperationEngine.h"
#include "TestSupport.h"
#include "XOLATreeItem.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonParseError>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVariant>
#include <QtCore/QtNumeric>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

// Longer inputs are cut: the rule code is exercised by the shape of a value,
// not by its size, and every execution gets slower.
const std::size_t kMaxInput = 4096;
// Rule operations per input, each followed by one random operation.
const int kRounds = 10;
// Values taken from the input's tree; the rest of a large tree is never used.
const int kMaxNodes = 64;
const int kMaxDepth = 6;

// ---- comparison files ----------------------------------------------------------------------

// Written once per process into a temporary folder: every sort by function
// names one of these, so no input ever writes a file.
struct ComparisonFile
{
    const char* name;
    const char* body;
};

const ComparisonFile kQmlFiles[] = {
    {"wellformed.qml",
     "import QtQml 2.15\n"
     "QtObject {\n"
     "    function less(a, b) { return a < b }\n"
     "    function greater(a, b) { return a > b }\n"
     "    function flip(a, b) { return b < a }\n"
     "    function text(a, b) { return String(a) < String(b) }\n"
     "}\n"},
    {"throws.qml",
     "import QtQml 2.15\n"
     "QtObject {\n"
     "    function less(a, b) { throw new Error(\"no order for \" + a + \" and \" + b) }\n"
     "    function greater(a, b) { throw 0 }\n"
     "    function flip(a, b) { return a.no.such.thing }\n"
     "    function text(a, b) { throw \"text\" }\n"
     "}\n"},
    {"nonbool.qml",
     "import QtQml 2.15\n"
     "QtObject {\n"
     "    property int calls: 0\n"
     "    function less(a, b) { return a - b }\n"
     "    function greater(a, b) { return String(a) }\n"
     "    function flip(a, b) {\n"
     "        calls += 1\n"
     "        switch (calls % 6) {\n"
     "        case 0: return undefined\n"
     "        case 1: return null\n"
     "        case 2: return { less: true }\n"
     "        case 3: return [a, b]\n"
     "        case 4: return NaN\n"
     "        default: return function () { return true }\n"
     "        }\n"
     "    }\n"
     "    function text(a, b) { return \"\" }\n"
     "}\n"},
    {"inconsistent.qml",
     "import QtQml 2.15\n"
     "QtObject {\n"
     "    property int calls: 0\n"
     "    function less(a, b) { calls += 1; return calls % 3 !== 0 }\n"
     "    function greater(a, b) { return true }\n"
     "    function flip(a, b) { return a !== b }\n"
     "    function text(a) { return true }\n"
     "}\n"},
    {"syntaxerror.qml",
     "import QtQml 2.15\n"
     "QtObject {\n"
     "    function less(a, b) { return a < }\n"
     "}\n"},
    {"empty.qml", ""},
    {"binary.qml", "\x01\x7f\xfe{{QtObject\xff"},
};

const ComparisonFile kScriptFiles[] = {
    {"wellformed.js",
     "function less(a, b) { return a < b; }\n"
     "function greater(a, b) { return a > b; }\n"
     "function flip(a, b) { return b < a; }\n"
     "function text(a, b) { return String(a) < String(b); }\n"},
    {"throws.js",
     "function less(a, b) { throw new Error(\"no order for \" + a + \" and \" + b); }\n"
     "function greater(a, b) { throw 0; }\n"
     "function flip(a, b) { return a.no.such.thing; }\n"
     "function text(a, b) { throw \"text\"; }\n"},
    {"nonbool.js",
     "var calls = 0;\n"
     "function less(a, b) { return a - b; }\n"
     "function greater(a, b) { return String(a); }\n"
     "function flip(a, b) {\n"
     "    calls += 1;\n"
     "    switch (calls % 6) {\n"
     "    case 0: return undefined;\n"
     "    case 1: return null;\n"
     "    case 2: return { less: true };\n"
     "    case 3: return [a, b];\n"
     "    case 4: return NaN;\n"
     "    default: return function () { return true; };\n"
     "    }\n"
     "}\n"
     "function text(a, b) { return \"\"; }\n"},
    {"inconsistent.js",
     "var calls = 0;\n"
     "function less(a, b) { calls += 1; return calls % 3 !== 0; }\n"
     "function greater(a, b) { return true; }\n"
     "function flip(a, b) { return a !== b; }\n"
     "function text(a) { return true; }\n"},
    {"notcallable.js",
     "var less = 42;\n"
     "var greater = new Error(\"not a comparison\");\n"
     "var flip = {};\n"
     "var text = \"less\";\n"},
    {"syntaxerror.js", "function less(a, b) {\n    return a < ;\n}\n"},
    {"toplevelthrow.js", "throw new Error(\"evaluation fails\");\nfunction less(a, b) { return a < b; }\n"},
    {"empty.js", ""},
    {"binary.js", "\x01\x7f\xfe function(\xff"},
};

QTemporaryDir* comparisonDir()
{
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/xola-fuzz-rules-XXXXXX"));
    return &dir;
}

void writeComparisonFiles()
{
    QTemporaryDir* dir = comparisonDir();
    if (!dir->isValid()) {
        std::fprintf(stderr, "cannot make a temporary folder for the comparison files\n");
        std::abort();
    }
    auto write = [dir](const ComparisonFile& file) {
        QFile out(dir->filePath(QString::fromLatin1(file.name)));
        if (!out.open(QIODevice::WriteOnly) || out.write(file.body) < 0) {
            std::fprintf(stderr, "cannot write %s\n", file.name);
            std::abort();
        }
    };
    for (const ComparisonFile& file : kQmlFiles)
        write(file);
    for (const ComparisonFile& file : kScriptFiles)
        write(file);
}

// ---- the input as values ------------------------------------------------------------------------

quint32 fnv1a(const std::uint8_t* data, std::size_t size)
{
    quint32 hash = 2166136261u;
    for (std::size_t i = 0; i < size; ++i) {
        hash ^= data[i];
        hash *= 16777619u;
    }
    return hash;
}

const QStringList& vocabulary()
{
    static const QStringList words{
        QStringLiteral("RoleName"),  QStringLiteral("Rule"),          QStringLiteral("Value"),
        QStringLiteral("Rules"),     QStringLiteral("OrAllRules"),    QStringLiteral("Ascending"),
        QStringLiteral("min"),       QStringLiteral("valueRole"),     QStringLiteral("nameRole"),
        QStringLiteral("idRole"),    QStringLiteral("groupRole"),     QStringLiteral("textRole"),
        QStringLiteral("childModelRole"), QString(),                  QStringLiteral("VALUEROLE"),
        QStringLiteral("a"),         QStringLiteral("x"),             QStringLiteral("n3"),
        QStringLiteral("g1"),        QStringLiteral("0"),             QStringLiteral("2.5"),
        QStringLiteral("true"),      QStringLiteral("NaN"),           QStringLiteral("AB"),
        QStringLiteral("\u212a"),    QStringLiteral("u1"),            QStringLiteral("2020-01-01"),
        QStringLiteral("Eq"),        QStringLiteral("nope"),          QStringLiteral(" ")};
    return words;
}

/*!
 * A strict reader of JSON's grammar that only says yes or no. Qt 5.15's parser
 * loses the containers it had begun when it meets an error inside them, so
 * only input this reader accepts is handed to it: a top-level array or object,
 * well-formed UTF-8 with no control characters in strings, no escaped
 * surrogates, numbers short enough to be finite doubles, and shallow nesting.
 * It refuses more than Qt does; what it refuses goes the byte-by-byte way.
 */
class JsonShape
{
public:
    JsonShape(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    bool wellFormed()
    {
        skipSpace();
        if (m_position >= m_size || (m_data[m_position] != '[' && m_data[m_position] != '{'))
            return false;
        if (!value(0))
            return false;
        skipSpace();
        return m_position == m_size;
    }

private:
    static const int kDeepest = 32;

    int peek() const { return m_position < m_size ? m_data[m_position] : -1; }
    void skipSpace()
    {
        while (m_position < m_size) {
            const std::uint8_t c = m_data[m_position];
            if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
                return;
            ++m_position;
        }
    }
    bool literal(const char* word)
    {
        for (; *word; ++word, ++m_position) {
            if (peek() != std::uint8_t(*word))
                return false;
        }
        return true;
    }
    int digits(int most)
    {
        int count = 0;
        while (peek() >= '0' && peek() <= '9') {
            ++m_position;
            if (++count > most)
                return -1;
        }
        return count;
    }
    bool number()
    {
        const std::size_t start = m_position;
        if (peek() == '-')
            ++m_position;
        if (peek() == '0')
            ++m_position;
        else if (digits(40) <= 0)
            return false;
        if (peek() == '.') {
            ++m_position;
            if (digits(40) <= 0)
                return false;
        }
        if (peek() == 'e' || peek() == 'E') {
            ++m_position;
            if (peek() == '+' || peek() == '-')
                ++m_position;
            if (digits(3) <= 0)
                return false;
        }
        // Qt refuses a number that overflows or underflows to zero.
        const std::string text(reinterpret_cast<const char*>(m_data) + start, m_position - start);
        const double parsed = std::strtod(text.c_str(), nullptr);
        if (!std::isfinite(parsed))
            return false;
        const std::size_t mantissaEnd = text.find_first_of("eE");
        const bool nonZero = text.substr(0, mantissaEnd).find_first_of("123456789") != std::string::npos;
        return parsed != 0.0 || !nonZero;
    }
    static bool hexDigit(int c)
    {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    }
    bool escape()
    {
        const int c = peek();
        ++m_position;
        switch (c) {
        case '"': case '\\': case '/': case 'b': case 'f': case 'n': case 'r': case 't':
            return true;
        case 'u': {
            int code = 0;
            for (int i = 0; i < 4; ++i, ++m_position) {
                const int h = peek();
                if (!hexDigit(h))
                    return false;
                code = code * 16 + (h <= '9' ? h - '0' : (h | 0x20) - 'a' + 10);
            }
            return code < 0xD800 || code > 0xDFFF;
        }
        default:
            return false;
        }
    }
    // One UTF-8 sequence after its lead byte: no overlong forms, no surrogates,
    // nothing above U+10FFFF.
    bool multiByte(std::uint8_t lead)
    {
        int more = 0;
        std::uint32_t code = 0;
        if (lead >= 0xC2 && lead <= 0xDF) { more = 1; code = lead & 0x1F; }
        else if (lead >= 0xE0 && lead <= 0xEF) { more = 2; code = lead & 0x0F; }
        else if (lead >= 0xF0 && lead <= 0xF4) { more = 3; code = lead & 0x07; }
        else return false;
        const int total = more;
        for (; more > 0; --more, ++m_position) {
            const int c = peek();
            if (c < 0x80 || c > 0xBF)
                return false;
            code = (code << 6) | std::uint32_t(c & 0x3F);
        }
        if ((total == 2 && code < 0x800) || (total == 3 && code < 0x10000) || code > 0x10FFFF)
            return false;
        return code < 0xD800 || code > 0xDFFF;
    }
    bool string()
    {
        ++m_position; // the opening quote
        for (;;) {
            const int c = peek();
            if (c < 0x20)
                return false; // the end of the input, or a control character
            ++m_position;
            if (c == '"')
                return true;
            if (c == '\\') {
                if (!escape())
                    return false;
            } else if (c >= 0x80 && !multiByte(std::uint8_t(c))) {
                return false;
            }
        }
    }
    bool members(int depth, char close, bool keyed)
    {
        ++m_position; // the opening bracket
        skipSpace();
        if (peek() == close) {
            ++m_position;
            return true;
        }
        for (;;) {
            if (keyed) {
                if (peek() != '"' || !string())
                    return false;
                skipSpace();
                if (peek() != ':')
                    return false;
                ++m_position;
                skipSpace();
            }
            if (!value(depth + 1))
                return false;
            skipSpace();
            if (peek() == close) {
                ++m_position;
                return true;
            }
            if (peek() != ',')
                return false;
            ++m_position;
            skipSpace();
        }
    }
    bool value(int depth)
    {
        if (depth > kDeepest)
            return false;
        switch (peek()) {
        case '[': return members(depth, ']', false);
        case '{': return members(depth, '}', true);
        case '"': return string();
        case 't': return literal("true");
        case 'f': return literal("false");
        case 'n': return literal("null");
        default: return number();
        }
    }

    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_position = 0;
};

/*!
 * Turns bytes that are no JSON into JSON-like values: each value starts with a
 * tag byte that says what follows. Rule-shaped maps are tags of their own, so
 * that a few bytes already make a rule list.
 */
class ByteValues
{
public:
    ByteValues(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    QVariant topLevel()
    {
        QVariantList list;
        while (m_position < m_size && list.size() < 16)
            list << value(0);
        return list;
    }

private:
    int next() { return m_position < m_size ? m_data[m_position++] : 0; }
    qint8 signedByte() { return qint8(std::uint8_t(next())); }
    QString word() { const QStringList& w = vocabulary(); return w.at(next() % w.size()); }

    QVariant value(int depth)
    {
        if (m_position >= m_size || depth > kMaxDepth)
            return QVariant();
        const int tag = next();
        switch (tag % 18) {
        case 0:
            return QVariant();
        case 1:
            return (next() & 1) != 0;
        case 2:
            return double(signedByte());
        case 3: {
            qint32 n = 0;
            for (int i = 0; i < 4; ++i)
                n = qint32((quint32(n) << 8) | quint32(next()));
            return double(n);
        }
        case 4: {
            static const QList<QVariant> extremes{1e308, -1e308, 9007199254740993.0, 9223372036854775808.0,
                                                  -9223372036854775808.0, 2147483648.0, -2147483649.0, 4.9e-324,
                                                  -0.0, QVariant(std::numeric_limits<qlonglong>::min()),
                                                  QVariant(std::numeric_limits<qlonglong>::max()), QVariant(qlonglong(-1))};
            return extremes.at(next() % extremes.size());
        }
        case 5: {
            static const QList<double> odd{qQNaN(), qInf(), -qInf()};
            return odd.at(next() % odd.size());
        }
        case 6: {
            const int length = next() % 12;
            QString text;
            for (int i = 0; i < length; ++i)
                text += QChar(ushort(next()));
            return text;
        }
        case 7:
        case 8:
            return word();
        case 9: {
            QVariantList list;
            const int count = next() % 5;
            for (int i = 0; i < count; ++i)
                list << value(depth + 1);
            return list;
        }
        case 10: {
            QVariantMap map;
            const int count = next() % 5;
            for (int i = 0; i < count; ++i) {
                // One statement each: the bytes must be read in the same order
                // by every compiler.
                const QString key = word();
                map.insert(key, value(depth + 1));
            }
            return map;
        }
        case 11:
        case 12:
            // {"RoleName", "Rule", "Value"}
            return QVariantMap{{QStringLiteral("RoleName"), word()},
                               {QStringLiteral("Rule"), double(signedByte() % 10)},
                               {QStringLiteral("Value"), value(depth + 1)}};
        case 13: {
            // {"RoleName", "Rules": [{"Rule", "Value"}...], "OrAllRules"}
            QVariantList sub;
            const int count = next() % 4;
            for (int i = 0; i < count; ++i)
                sub << QVariantMap{{QStringLiteral("Rule"), double(signedByte() % 10)},
                                   {QStringLiteral("Value"), value(depth + 1)}};
            QVariantMap rule{{QStringLiteral("RoleName"), word()}, {QStringLiteral("Rules"), sub}};
            if (next() & 1)
                rule.insert(QStringLiteral("OrAllRules"), (next() & 1) != 0);
            return rule;
        }
        case 14:
            return QVariantMap{{QStringLiteral("RoleName"), word()}, {QStringLiteral("Ascending"), (next() & 1) != 0}};
        case 15:
            return QVariantMap{{QStringLiteral("min"), value(depth + 1)}};
        case 16: {
            // Types JSON has no spelling for but hosts and QML hand over all the
            // same: characters (a text read as a list), bytes, dates, text lists.
            switch (next() % 4) {
            case 0: return QVariantList{QChar(ushort('a' + next() % 3)), QChar(ushort('b'))};
            case 1: {
                const int length = 1 + next() % 3;
                return QByteArray(length, char(next()));
            }
            case 2: return QDate(2020, 1 + next() % 12, 1);
            default: return QStringList{word(), word()};
            }
        }
        default:
            return double(signedByte()) / 4;
        }
    }

    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_position = 0;
};

//! Replaces the spellings of NaN and the infinities by those doubles, throughout.
QVariant withSpecialDoubles(const QVariant& value, int depth)
{
    if (depth > kMaxDepth * 4)
        return value;
    switch (value.userType()) {
    case QMetaType::QString: {
        const QString text = value.toString();
        if (text == QLatin1String("NaN"))
            return qQNaN();
        if (text == QLatin1String("Infinity"))
            return qInf();
        if (text == QLatin1String("-Infinity"))
            return -qInf();
        return value;
    }
    case QMetaType::QVariantList: {
        QVariantList list = value.toList();
        for (QVariant& entry : list)
            entry = withSpecialDoubles(entry, depth + 1);
        return list;
    }
    case QMetaType::QVariantMap: {
        QVariantMap map = value.toMap();
        for (auto it = map.begin(); it != map.end(); ++it)
            it.value() = withSpecialDoubles(it.value(), depth + 1);
        return map;
    }
    default:
        return value;
    }
}

QVariant decode(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
    QVariant tree;
    QJsonParseError error{};
    const QJsonDocument document = JsonShape(data, size).wellFormed()
        ? QJsonDocument::fromJson(bytes, &error) : QJsonDocument();
    if (error.error == QJsonParseError::NoError && !document.isNull())
        tree = document.toVariant();
    else
        tree = ByteValues(data, size).topLevel();
    const char last = size > 0 ? char(data[size - 1]) : 'x';
    if (last == ' ' || last == '\n' || last == '\t' || last == '\r')
        tree = withSpecialDoubles(tree, 0);
    return tree;
}

//! Every value of the tree, the tree itself first, depth first.
void collect(const QVariant& value, int depth, QVariantList& nodes)
{
    if (nodes.size() >= kMaxNodes || depth > kMaxDepth * 4)
        return;
    nodes << value;
    if (value.userType() == QMetaType::QVariantList) {
        for (const QVariant& entry : value.toList())
            collect(entry, depth + 1, nodes);
    } else if (value.userType() == QMetaType::QVariantMap) {
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it)
            collect(it.value(), depth + 1, nodes);
    }
}

// ---- the engine's arguments ----------------------------------------------------------------

/*!
 * Hands the input's values to the engine. Each kind of argument walks the
 * tree's values from the tree itself on, so the input as written is the first
 * filter rule list, the first sort rule list and the first predicate value;
 * later ones are its parts. Rule lists are mostly made of the lists and maps
 * (a nested list, a single rule), now and then of any value (a wrong type).
 */
class InputArguments : public ArgumentSource
{
public:
    InputArguments(const QVariant& tree, ChoiceSource& choices) : m_choices(choices)
    {
        collect(tree, 0, m_nodes);
        if (m_nodes.isEmpty())
            m_nodes << QVariant();
        for (const QVariant& node : qAsConst(m_nodes)) {
            if (node.userType() == QMetaType::QVariantList || node.userType() == QMetaType::QVariantMap)
                m_containers << node;
        }
        if (m_containers.isEmpty())
            m_containers << m_nodes.constFirst();
    }

    QVariantList filterRules() override { return asList(ruleNode(m_filter)); }
    QVariantList sortRules() override { return asList(ruleNode(m_sort)); }
    QVariant predicateValue() override { return m_nodes.at(m_predicate++ % m_nodes.size()); }

    int sortFlag() override
    {
        static const QList<int> flags{0, 1, 2, 2, 3, -1, 7, 256 + 2, std::numeric_limits<int>::min(),
                                      std::numeric_limits<int>::max()};
        if (m_choices.percent(80))
            return m_choices.pick(flags);
        // A number of the input, wrapped to int the way a call from QML
        // converts it (JavaScript's ToInt32).
        const double d = m_nodes.at(m_choices.below(m_nodes.size())).toDouble();
        if (qIsNaN(d) || qIsInf(d))
            return 0;
        double wrapped = std::fmod(std::trunc(d), 4294967296.0);
        if (wrapped < 0)
            wrapped += 4294967296.0;
        return int(qint64(wrapped) - (wrapped >= 2147483648.0 ? Q_INT64_C(4294967296) : 0));
    }

    QString comparisonFile(bool qml) override
    {
        QStringList names;
        if (qml) {
            for (const ComparisonFile& file : kQmlFiles)
                names << QString::fromLatin1(file.name);
            names << QStringLiteral("missing.qml");
        } else {
            for (const ComparisonFile& file : kScriptFiles)
                names << QString::fromLatin1(file.name);
            names << QStringLiteral("missing.js");
        }
        names << QString();
        const QString name = m_choices.pick(names);
        return name.isEmpty() ? name : comparisonDir()->filePath(name);
    }

    QString comparisonFunction(bool qml) override
    {
        // Names only, never from the input: a global such as eval would run the
        // rows' values as code, which no host's comparison does.
        static const QStringList qmlNames{QStringLiteral("less"), QStringLiteral("greater"), QStringLiteral("flip"),
                                          QStringLiteral("text"), QStringLiteral("missing"), QStringLiteral("toString"),
                                          QStringLiteral("deleteLater"), QString()};
        static const QStringList scriptNames{QStringLiteral("less"), QStringLiteral("greater"), QStringLiteral("flip"),
                                             QStringLiteral("text"), QStringLiteral("missing"), QStringLiteral("Object"),
                                             QStringLiteral("isNaN"), QStringLiteral("Math"), QString()};
        return m_choices.pick(qml ? qmlNames : scriptNames);
    }

    bool itemValue(QVariant* value) override
    {
        // Half of the values are the input's, the rest the engine's own (dates,
        // text lists, integers JSON does not have).
        if (!m_choices.percent(50))
            return false;
        *value = m_nodes.at(m_choices.below(m_nodes.size()));
        return true;
    }

    PF_MATCH_ITEM matchFunction() override
    {
        // The host's match function: "min" maps compare the value, rule-shaped
        // maps and lists go through the library's own rule evaluation, anything
        // else names an id. It only reads, so a rebuild gives the same answers.
        return [](const QObject* object, const QVariant& rule) {
            auto* item = qobject_cast<const XOLATreeItem*>(object);
            if (!item)
                return false;
            if (rule.userType() == QMetaType::QVariantMap) {
                const QVariantMap map = rule.toMap();
                if (map.contains(QStringLiteral("min")))
                    return item->getData(ValueItem::ValueRole).toDouble() >= map.value(QStringLiteral("min")).toDouble();
                return CompiledFilterRules(QVariantList{rule}).matches(item, true);
            }
            if (rule.userType() == QMetaType::QVariantList)
                return CompiledFilterRules(rule.toList()).matches(item, false);
            return item->id() == rule.toString();
        };
    }

    int nodeCount() const { return m_nodes.size(); }

private:
    QVariant ruleNode(int& cursor)
    {
        if (m_choices.percent(15))
            return m_nodes.at(m_choices.below(m_nodes.size()));
        return m_containers.at(cursor++ % m_containers.size());
    }

    static QVariantList asList(const QVariant& value)
    {
        if (value.userType() == QMetaType::QVariantList)
            return value.toList();
        // A single rule, or a value of the wrong type, as a one-entry list.
        return QVariantList{value};
    }

    ChoiceSource& m_choices;
    QVariantList m_nodes;
    //! The lists and maps among the nodes, in the same order.
    QVariantList m_containers;
    int m_filter = 0;
    int m_sort = 0;
    int m_predicate = 0;
};

struct RuleOperation
{
    int weight;
    const char* name;
};

// The engine's operations that take rule-shaped arguments. NewView makes a
// rule filter (GetFilterModel), a predicate filter, a group or a paging view;
// ViewOfView makes them of other views.
const RuleOperation kRuleOperations[] = {
    {4, "UpdateFilterRules"}, {4, "SortByRules"},          {3, "UpdateUserDefinedFilterRules"},
    {3, "NewView"},           {2, "ViewOfView"},           {1, "SortByQMLFunction"},
    {1, "SortByScriptFunction"},
};

const char* pickRuleOperation(ChoiceSource& choices)
{
    int total = 0;
    for (const RuleOperation& op : kRuleOperations)
        total += op.weight;
    int pick = choices.below(total);
    for (const RuleOperation& op : kRuleOperations) {
        if (pick < op.weight)
            return op.name;
        pick -= op.weight;
    }
    return kRuleOperations[0].name;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static int appArgc = *argc;
    static QCoreApplication app(appArgc, *argv);
    // The comparison files are broken on purpose; their warnings are noise here.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false\njs.*=false\nqml.*=false"));
    writeComparisonFiles();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > kMaxInput)
        size = kMaxInput;
    const QVariant tree = decode(data, size);
    // The world and the operations between the rule operations come from the
    // whole input, so that every input has a world of its own.
    SeededChoices choices(fnv1a(data, size));
    InputArguments arguments(tree, choices);
    OperationEngine engine(choices, comparisonDir()->path(), &arguments);
    for (int round = 0; round < kRounds; ++round) {
        if (!engine.step(QString::fromLatin1(pickRuleOperation(choices))) || !engine.step())
            break;
    }
    // XOLA_FUZZ_TRAIL=1 prints what every input did, for replaying one by hand.
    static const bool trail = qEnvironmentVariableIsSet("XOLA_FUZZ_TRAIL");
    if (trail) {
        for (const QString& line : engine.trail())
            std::fprintf(stderr, "  %s\n", qPrintable(line));
    }
    if (!engine.finishOrReport())
        std::abort();
    return 0;
}
