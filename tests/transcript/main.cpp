// xola_transcript: drives the model and every view through one long,
// deterministic scenario and writes what happened as canonical text: each
// operation with its arguments and return value, every notice every model,
// view and item sent during it (in order), and then the rows of every model
// and view. The text is meant to be byte-identical whichever Qt major built
// the program, so that a diff between two builds shows exactly where the
// library answers differently.
//
// Usage: xola_transcript [output-file]   (stdout without an argument)

#include "Canonical.h"
#include "QmlBridge.h"
#include "Recorder.h"
#include "TranscriptItem.h"

#include "XOLATreeModel.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QTime>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>

namespace {

enum Role {
    IdRole = XOLATreeItem::IdRole,
    NameRole = XOLATreeItem::NameRole,
    ChildRole = XOLATreeItem::ChildModelRole,
    MapRole = XOLATreeItem::JsonValueRole,
    ValueRole = TranscriptItem::ValueRole,
    GroupRole = TranscriptItem::GroupRole,
    TextRole = TranscriptItem::TextRole
};

// ---- a generator whose output is the same with every library -------------

//! A 64-bit linear congruential generator (Knuth's MMIX constants); only the
//! high bits are used. std::random distributions are avoided on purpose.
class Lcg
{
public:
    explicit Lcg(quint64 seed) : m_state(seed * 0x9E3779B97F4A7C15ULL + 1) {}
    quint32 next()
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return quint32(m_state >> 33);
    }
    int below(int n) { return n <= 1 ? 0 : int(next() % quint32(n)); }
    bool percent(int p) { return below(100) < p; }
    template <typename T>
    T pick(const QList<T>& list) { return list.at(below(list.size())); }

private:
    quint64 m_state;
};

// ---- values ---------------------------------------------------------------

QVariant nanValue() { return QVariant(std::numeric_limits<double>::quiet_NaN()); }
QVariant minusZero() { return QVariant(-0.0); }
QVariant utc(int y, int mo, int d, int h = 0, int mi = 0) { return QVariant(QDateTime(QDate(y, mo, d), QTime(h, mi), Qt::UTC)); }
QVariant local(int y, int mo, int d, int h = 0, int mi = 0) { return QVariant(QDateTime(QDate(y, mo, d), QTime(h, mi), Qt::LocalTime)); }
QVariant str(const char* text) { return QVariant(QString::fromUtf8(text)); }

//! Values of mixed types for one role: numbers of every kind, numbers as
//! text, mixed-case and accented text, booleans, dates, lists and nothing.
QVariantList valuePool()
{
    return {QVariant(10), QVariant(9), QVariant(0), QVariant(-3), QVariant(2.5), QVariant(-2.5), QVariant(0.5),
            QVariant(-0.5), nanValue(), minusZero(), QVariant(0.0), QVariant(1e300), QVariant(10.0),
            str("10"), str("9"), str("apple"), str("Apple"), str("APPLE"), str("banana"), str("Äpfel"),
            str("a10"), str("a9"), str(""), str("2.5"), QVariant(true), QVariant(false),
            QVariant(QDate(2020, 1, 1)), QVariant(QDate(2019, 12, 31)), utc(2020, 1, 1, 8), local(2020, 1, 1, 8),
            QVariant(QStringList{"a", "b"}), QVariant(QStringList{"apple"}), QVariant(),
            QVariant(QVariantList{1, str("x")}), QVariant(qlonglong(1) << 40), QVariant(uint(7)),
            QVariant(QByteArray("ab")), QVariant(QTime(12, 30))};
}

QStringList namePool()
{
    return {QStringLiteral("apple"), QStringLiteral("Apple"), QStringLiteral("APPLE"), QStringLiteral("banana"),
            QString::fromUtf8("Äpfel"), QStringLiteral("a10"), QStringLiteral("a9"), QStringLiteral("Banana"),
            QStringLiteral("10"), QStringLiteral("9"), QString(), QStringLiteral("zebra"),
            QString::fromUtf8("éclair"), QStringLiteral("Zebra"), QStringLiteral("a"), QStringLiteral("b c")};
}

//! Group keys: values that read as the same text in some Qt and not in another.
QVariantList groupPool()
{
    return {QVariant(1), str("1"), QVariant(1.0), QVariant(true), str("true"), str("x"), str("X"), QVariant(),
            QVariant(QDate(2020, 1, 1)), QVariant(QStringList{"x"}), QVariant(1.5), QVariant(2), str(""), nanValue()};
}

//! The text role: doubles at their edges, dates and numbers as text.
QVariantList textPool()
{
    return {nanValue(), minusZero(), QVariant(0.0), QVariant(1e300), QVariant(-1e300), QVariant(-2.5), QVariant(0.5),
            QVariant(-0.5), QVariant(2.5), QVariant(1e-300), QVariant(QDate(2020, 1, 1)), utc(2020, 1, 1),
            str("0.5"), QVariant(0), QVariant(), str("-2.5")};
}

//! Values the rules compare with.
QVariantList ruleValuePool()
{
    return {QVariant(10), QVariant(0), QVariant(-2.5), QVariant(0.5), QVariant(-0.5), str("10"), str("apple"),
            str("a"), str(""), QVariant(true), QVariant(false), QVariant(QStringList{"a", "b"}),
            QVariant(QDate(2020, 1, 1)), QVariant()};
}

// ---- rules ------------------------------------------------------------------

//! A rule of the first format; an invalid part is left out of the map.
QVariantMap ruleOne(const QVariant& roleName, const QVariant& op, const QVariant& value)
{
    QVariantMap map;
    if (roleName.isValid())
        map.insert(QStringLiteral("RoleName"), roleName);
    if (op.isValid())
        map.insert(QStringLiteral("Rule"), op);
    if (value.isValid())
        map.insert(QStringLiteral("Value"), value);
    return map;
}

QVariantMap subRule(const QVariant& op, const QVariant& value)
{
    return {{QStringLiteral("Rule"), op}, {QStringLiteral("Value"), value}};
}

//! A rule of the second format; orAll invalid leaves "OrAllRules" out.
QVariantMap ruleTwo(const QVariant& roleName, const QVariantList& subRules, const QVariant& orAll)
{
    QVariantMap map{{QStringLiteral("RoleName"), roleName}, {QStringLiteral("Rules"), subRules}};
    if (orAll.isValid())
        map.insert(QStringLiteral("OrAllRules"), orAll);
    return map;
}

QVariantMap sortRule(const QVariant& roleName, const QVariant& ascending)
{
    QVariantMap map;
    if (roleName.isValid())
        map.insert(QStringLiteral("RoleName"), roleName);
    if (ascending.isValid())
        map.insert(QStringLiteral("Ascending"), ascending);
    return map;
}

QString yes(bool value) { return value ? QStringLiteral("bool true") : QStringLiteral("bool false"); }

// ---- the host's callbacks --------------------------------------------------

//! A total order written for the transcript, never QVariant's: missing values
//! last, then numbers by value (NaN after numbers), then everything else by its
//! canonical text.
int rankOf(const QVariant& value, double* number)
{
    bool ok = false;
    *number = Canonical::toNumber(value, &ok);
    if (!value.isValid())
        return 3;
    if (ok && value.userType() != QMetaType::QString)
        return std::isnan(*number) ? 1 : 0;
    return 2;
}

bool hostLessThan(const QVariant& a, const QVariant& b)
{
    double na = 0, nb = 0;
    const int ra = rankOf(a, &na);
    const int rb = rankOf(b, &nb);
    if (ra != rb)
        return ra < rb;
    if (ra == 0)
        return na < nb;
    if (ra == 2)
        return Canonical::value(a) < Canonical::value(b);
    return false;
}

//! The host's filter: what the rule value asks for depends on its type.
bool hostMatch(const QObject* object, const QVariant& ruleValue)
{
    const auto* item = qobject_cast<const XOLATreeItem*>(object);
    if (!item)
        return false;
    const QVariant rule = Canonical::unwrapped(ruleValue);
    const QVariant value = item->getData(int(ValueRole));
    switch (rule.userType()) {
    case QMetaType::UnknownType:
        return true;
    case QMetaType::QVariantMap: {
        const QVariantMap map = rule.toMap();
        if (map.contains(QStringLiteral("min"))) {
            bool okValue = false;
            bool okMin = false;
            const double v = Canonical::toNumber(value, &okValue);
            const double min = Canonical::toNumber(map.value(QStringLiteral("min")), &okMin);
            return okValue && okMin && !std::isnan(v) && v >= min;
        }
        if (map.contains(QStringLiteral("name")))
            return item->name().contains(Canonical::unwrapped(map.value(QStringLiteral("name"))).toString());
        return false;
    }
    case QMetaType::QString:
        return item->name().contains(*static_cast<const QString*>(rule.constData()));
    case QMetaType::Bool:
        return Canonical::value(value) == Canonical::value(rule);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double: {
        bool ok = false;
        const double v = Canonical::toNumber(value, &ok);
        return ok && !std::isnan(v) && v >= Canonical::toNumber(rule);
    }
    case QMetaType::QStringList:
        return static_cast<const QStringList*>(rule.constData())->contains(item->id());
    case QMetaType::QVariantList: {
        for (const QVariant& entry : *static_cast<const QVariantList*>(rule.constData())) {
            if (entry.userType() == QMetaType::QString && *static_cast<const QString*>(entry.constData()) == item->id())
                return true;
        }
        return false;
    }
    default:
        return false;
    }
}

//! The host's copy for merged duplicates: name and the three extra roles.
void hostCopy(const QObject* source, QObject* destination)
{
    auto* from = qobject_cast<const TranscriptItem*>(source);
    auto* to = qobject_cast<TranscriptItem*>(destination);
    if (!from || !to)
        return;
    to->SetName(from->name());
    for (int role : {int(ValueRole), int(GroupRole), int(TextRole)})
        to->setExtra(role, from->getData(role));
}

Recorder* g_recorder = nullptr;

//! Comparison files trace through console.log with a "TRACE " prefix: those
//! lines join the notices. Everything else Qt says goes to stderr only, since
//! the wording of Qt's own messages is not the same in every version.
void messageHandler(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (g_recorder && message.startsWith(QLatin1String("TRACE "))) {
        g_recorder->note(QStringLiteral("[js] ") + message.mid(6));
        return;
    }
    std::fprintf(stderr, "qt: %s\n", message.toUtf8().constData());
}

// ---- the session ----------------------------------------------------------

class Session
{
public:
    Session(FILE* out, const QString& dataDir, const QString& compareDir)
        : m_out(out), m_dataDir(dataDir), m_compareDir(compareDir)
    {
        g_recorder = &m_recorder;
    }
    ~Session() { g_recorder = nullptr; }

    void run()
    {
        write(QStringLiteral("xola_transcript 1"));
        phaseRules();
        phaseFunctionSorts();
        phaseLiveViews();
        for (quint64 seed : {1, 2, 3, 5, 8})
            phaseSeed(seed);
        phaseQml();
        phaseEdges();
        write(QString());
        write(QStringLiteral("end: %1 operations").arg(m_opNumber));
        std::fflush(m_out);
    }

private:
    // ---- output -------------------------------------------------------------
    void write(const QString& line)
    {
        const QByteArray bytes = line.toUtf8();
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), m_out);
        std::fputc('\n', m_out);
    }
    void write(const QStringList& lines)
    {
        for (const QString& line : lines)
            write(line);
    }
    void section(const QString& title)
    {
        std::fflush(m_out);
        write(QString());
        write(QStringLiteral("#### ") + title);
    }

    //! One operation: its text, its result, the notices it caused, then the
    //! rows of every watched model (unless rows is false).
    void op(const QString& what, const std::function<QString()>& body, bool rows = true)
    {
        ++m_opNumber;
        const QStringList before = m_recorder.takeNotices();
        m_matchCalls = 0;
        const QString result = body();
        flushDeletes();
        write(QStringLiteral("## %1 %2").arg(m_opNumber).arg(what));
        for (const QString& n : before)
            write(QStringLiteral("  (before) ") + n);
        write(QStringLiteral("=> ") + result);
        for (const QString& n : m_recorder.takeNotices())
            write(QStringLiteral("  ") + n);
        if (m_matchCalls)
            write(QStringLiteral("  (match function called %1 times)").arg(m_matchCalls));
        if (rows)
            write(m_recorder.dump());
    }

    static void flushDeletes()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // ---- objects --------------------------------------------------------------
    PF_MATCH_ITEM matchFunction()
    {
        return [this](const QObject* object, const QVariant& ruleValue) {
            ++m_matchCalls;
            const QString seen = Canonical::value(ruleValue);
            if (seen != m_lastMatchRule) {
                m_lastMatchRule = seen;
                m_recorder.note(QStringLiteral("(match function sees rule value ") + seen + QLatin1Char(')'));
            }
            return hostMatch(object, ruleValue);
        };
    }

    XOLATreeModel* makeModel(const QString& name, bool topLevel, int flags = 0, bool withMatch = true,
                             const QHash<int, QByteArray>& roleNames = TranscriptItem::roleNames(),
                             PF_COPY_ITEM copy = nullptr)
    {
        IXOLATreeModel* model = nullptr;
        if (!CreateXOLATreeModel(&model, nullptr, roleNames, flags, copy, withMatch ? matchFunction() : PF_MATCH_ITEM()))
            return nullptr;
        auto* tree = static_cast<XOLATreeModel*>(model);
        (topLevel ? m_models : m_childModels) << tree;
        m_recorder.watch(tree, name);
        return tree;
    }

    //! A view made in C++: watched under name, deleted by the phase's teardown.
    template <typename T = XOLATreeModel>
    T* adoptView(QObject* view, const QString& name)
    {
        if (!view)
            return nullptr;
        // Views are made for the QML engine to own; these are C++'s, and some
        // are shown to the engine as context properties.
        QQmlEngine::setObjectOwnership(view, QQmlEngine::CppOwnership);
        m_views << view;
        m_recorder.watch(view, name);
        return qobject_cast<T*>(view);
    }

    TranscriptItem* makeItem(const QString& id, const QString& name, const QVariant& value = QVariant(),
                             const QVariant& group = QVariant(), const QVariant& text = QVariant(),
                             QObject* childModel = nullptr)
    {
        auto* item = new TranscriptItem(id, name, childModel);
        item->setExtra(ValueRole, value);
        item->setExtra(GroupRole, group);
        item->setExtra(TextRole, text);
        m_items << item;
        m_recorder.watchItem(item);
        return item;
    }

    //! Row k of a data set: every pool cycles at its own pace.
    TranscriptItem* datasetItem(const QString& prefix, int k)
    {
        const QVariantList values = valuePool();
        const QStringList names = namePool();
        const QVariantList groups = groupPool();
        const QVariantList texts = textPool();
        const QString id = prefix + QStringLiteral("%1").arg(k, 2, 10, QLatin1Char('0'));
        auto* item = new TranscriptItem(id, names.at(k % names.size()));
        item->setExtra(ValueRole, values.at(k % values.size()));
        item->setExtra(GroupRole, groups.at(k % groups.size()));
        item->setExtra(TextRole, texts.at((k * 5) % texts.size()));
        if (k % 4 == 0) {
            item->SetJsonValue({{QStringLiteral("idRole"), id},
                                {QStringLiteral("nameRole"), item->name()},
                                {QStringLiteral("childModelRole"), QVariant::fromValue<QObject*>(nullptr)},
                                {QStringLiteral("num"), values.at((k + 3) % values.size())},
                                {QStringLiteral("k"), k},
                                {QStringLiteral("tags"), QStringList{QStringLiteral("t%1").arg(k % 3), QStringLiteral("all")}},
                                {QStringLiteral("when"), QDate(2020, 1 + k % 12, 1 + k % 28)}});
        }
        m_items << item;
        m_recorder.watchItem(item);
        return item;
    }

    static QString describe(const XOLATreeItem* item)
    {
        if (!item)
            return QStringLiteral("null item");
        QString text = QStringLiteral("item(") + Canonical::quoted(item->id()) + QLatin1Char(',') + Canonical::quoted(item->name());
        for (int role : {int(ValueRole), int(GroupRole), int(TextRole)}) {
            const QVariant v = item->getData(role);
            if (v.isValid())
                text += QStringLiteral(",%1=").arg(role) + Canonical::value(v);
        }
        return text + QLatin1Char(')');
    }
    static QString describe(const QList<XOLATreeItem*>& items)
    {
        QStringList parts;
        for (const XOLATreeItem* item : items)
            parts << describe(item);
        return QLatin1Char('[') + parts.join(QStringLiteral(", ")) + QLatin1Char(']');
    }

    QString label(const QObject* object) const { return Canonical::label(object); }
    static QString rulesText(const QVariantList& rules) { return Canonical::value(QVariant(rules)); }

    //! Deletes the phase's views and models and forgets them.
    void teardown(const QString& phase)
    {
        op(QStringLiteral("teardown ") + phase, [&] {
            for (const QPointer<QObject>& view : qAsConst(m_views))
                delete view.data();
            m_views.clear();
            flushDeletes();
            for (const QPointer<XOLATreeModel>& model : qAsConst(m_models))
                delete model.data();
            m_models.clear();
            flushDeletes();
            // What no model holds any more is the host's: items given back by
            // removal by id list or by option 2, and their child models.
            for (const QPointer<XOLATreeItem>& item : qAsConst(m_items))
                delete item.data();
            m_items.clear();
            flushDeletes();
            for (const QPointer<XOLATreeModel>& model : qAsConst(m_childModels))
                delete model.data();
            m_childModels.clear();
            flushDeletes();
            return QStringLiteral("void");
        });
    }

    // ---- shared operation shapes ------------------------------------------------
    void sortByRules(XOLATreeModel* model, const QVariantList& rules, int flag)
    {
        op(label(model) + QStringLiteral(".SortByRules(") + rulesText(rules) + QStringLiteral(", %1)").arg(flag), [=] {
            model->SortByRules(rules, flag);
            return QStringLiteral("void");
        });
    }

    //! A filter view made, read and dropped at once: one short line.
    void probeFilter(IXOLATreeModel* source, const QVariantList& rules, bool orAll, int newItemPos = 0)
    {
        ++m_opNumber;
        m_recorder.takeNotices();
        QObject* view = source->GetFilterModel(rules, orAll, newItemPos);
        const QStringList ids = Recorder::idsOf(view);
        delete view;
        flushDeletes();
        write(QStringLiteral("## %1 probe GetFilterModel(%2, %3, %4) -> %5 [%6]")
                  .arg(m_opNumber)
                  .arg(rulesText(rules), yes(orAll))
                  .arg(newItemPos)
                  .arg(ids.size())
                  .arg(ids.join(QLatin1Char(' '))));
        for (const QString& n : m_recorder.takeNotices())
            write(QStringLiteral("  ") + n);
    }

    void probeUserFilter(IXOLATreeModel* source, const QVariant& ruleValue, int newItemPos = 0)
    {
        ++m_opNumber;
        m_recorder.takeNotices();
        m_matchCalls = 0;
        QObject* view = source->GetFilterModelByUserDefinedRules(ruleValue, newItemPos);
        const QStringList ids = Recorder::idsOf(view);
        delete view;
        flushDeletes();
        write(QStringLiteral("## %1 probe GetFilterModelByUserDefinedRules(%2, %3) -> %4 [%5] (match calls %6)")
                  .arg(m_opNumber)
                  .arg(Canonical::value(ruleValue))
                  .arg(newItemPos)
                  .arg(ids.size())
                  .arg(ids.join(QLatin1Char(' ')))
                  .arg(m_matchCalls));
        for (const QString& n : m_recorder.takeNotices())
            write(QStringLiteral("  ") + n);
    }

    QString fileLabel(const QString& path) const
    {
        if (path.startsWith(m_dataDir))
            return QStringLiteral("<transcript-data>") + path.mid(m_dataDir.size());
        if (path.startsWith(m_compareDir))
            return QStringLiteral("<compare>") + path.mid(m_compareDir.size());
        return path;
    }

    // ---- phase 1: sorting and filtering rules over mixed values ---------------------
    void phaseRules()
    {
        section(QStringLiteral("rules over mixed values"));
        XOLATreeModel* a = nullptr;
        XOLATreeModel* c1 = nullptr;
        op(QStringLiteral("create model A with child models A.C1 (with grandchild A.GC) and A.C2"), [&] {
            XOLATreeModel* gc = makeModel(QStringLiteral("A.GC"), false);
            gc->AppendItemsList({makeItem("gc1", "zeta", 3), makeItem("gc2", "Alpha", 1)});
            c1 = makeModel(QStringLiteral("A.C1"), false);
            c1->AppendItemsList({makeItem("c1a", "b", str("b")), makeItem("c1b", "a", 2),
                                 makeItem("c1c", "A", 1.5, QVariant(), QVariant(), gc), makeItem("c1d", "B")});
            XOLATreeModel* c2 = makeModel(QStringLiteral("A.C2"), false);
            c2->AppendItemsList({makeItem("c2a", "y", nanValue()), makeItem("c2b", "x", -1), makeItem("c2c", "X", str("-1"))});
            a = makeModel(QStringLiteral("A"), true);
            QList<XOLATreeItem*> list;
            for (int k = 0; k < 38; ++k)
                list << datasetItem(QStringLiteral("a"), k);
            list << makeItem("a_c1", "Parent", 5, 1, 0.5, c1) << makeItem("a_c2", "parent", str("5"), str("1"), -0.5, c2);
            return yes(a->AppendItemsList(list));
        });

        // -- SortByRules: one rule per role, both directions
        const QStringList roles{"valueRole", "nameRole", "textRole", "groupRole", "idRole", "noSuchRole"};
        for (const QString& role : roles) {
            for (bool ascending : {true, false})
                sortByRules(a, {sortRule(role, ascending)}, 0);
        }
        // Two rules, and the odd forms a rule can take.
        sortByRules(a, {sortRule("groupRole", true), sortRule("valueRole", false)}, 0);
        sortByRules(a, {sortRule("nameRole", false), sortRule("textRole", true)}, 0);
        sortByRules(a, {sortRule(QVariant(int(ValueRole)), true)}, 0);
        sortByRules(a, {sortRule("valueRole", str("false"))}, 0);
        sortByRules(a, {sortRule("valueRole", 0)}, 0);
        sortByRules(a, {sortRule("valueRole", 1)}, 0);
        sortByRules(a, {sortRule("valueRole", QVariant())}, 0);
        sortByRules(a, {str("valueRole")}, 0);
        sortByRules(a, {sortRule(QVariant(), true)}, 0);
        sortByRules(a, {}, 0);
        sortByRules(a, {}, 0);

        // -- keep sorting (flag 1): insertions and changes are placed by the rules
        sortByRules(a, {sortRule("valueRole", true)}, 1);
        op(QStringLiteral("A.AppendItem(k1 value 3)"), [&] { return yes(a->AppendItem(makeItem("k1", "kay", 3, 2, 0.25))); });
        op(QStringLiteral("A.AppendItem(k2 value \"3\")"), [&] { return yes(a->AppendItem(makeItem("k2", "Kay", str("3")))); });
        op(QStringLiteral("A.PrependItem(k3 value -1.5)"), [&] { return yes(a->PrependItem(makeItem("k3", "kAy", -1.5))); });
        op(QStringLiteral("A.InsertItem(5, k4 value nan)"), [&] { return yes(a->InsertItem(5, makeItem("k4", "KAY", nanValue()))); });
        op(QStringLiteral("A.AppendItemsList(k5 date, k6 missing, k7 true)"), [&] {
            return yes(a->AppendItemsList({makeItem("k5", "k5", QVariant(QDate(2021, 3, 4))), makeItem("k6", "k6"),
                                           makeItem("k7", "k7", true)}));
        });
        op(QStringLiteral("A: item a03 valueRole := 1000"), [&] {
            auto* item = qobject_cast<TranscriptItem*>(a->FindItem(QStringLiteral("a03")));
            if (item)
                item->setExtra(ValueRole, 1000);
            return label(item);
        });
        op(QStringLiteral("A: item a04 SetName(\"AAA\")"), [&] {
            auto* item = qobject_cast<XOLATreeItem*>(a->FindItem(QStringLiteral("a04")));
            if (item)
                item->SetName(QStringLiteral("AAA"));
            return label(item);
        });
        op(QStringLiteral("A.RemoveOne(\"k2\")"), [&] { return yes(a->RemoveOne(QStringLiteral("k2"))); });
        sortByRules(a, {sortRule("nameRole", false), sortRule("valueRole", true)}, 1);
        op(QStringLiteral("A.AppendItemsList(k8 \"apple\", k9 \"Apple\", k10 \"a9\")"), [&] {
            return yes(a->AppendItemsList({makeItem("k8", "apple", 8), makeItem("k9", "Apple", 9), makeItem("k10", "a9", 10)}));
        });
        // Recursive keep sorting: child models are ordered and kept ordered too.
        sortByRules(a, {sortRule("valueRole", true)}, 2);
        op(QStringLiteral("A.C1.AppendItem(c1e value 0)"), [&] { return yes(c1->AppendItem(makeItem("c1e", "e", 0))); });
        op(QStringLiteral("A.AppendItem(k11 value 4)"), [&] { return yes(a->AppendItem(makeItem("k11", "k11", 4))); });
        sortByRules(a, {sortRule("nameRole", true)}, 3);
        op(QStringLiteral("A.PrependItem(k12 name \"0\")"), [&] { return yes(a->PrependItem(makeItem("k12", "0"))); });
        sortByRules(a, {sortRule("nameRole", true)}, -1);
        sortByRules(a, {sortRule("idRole", true)}, 0);
        op(QStringLiteral("A.AppendItem(k13) after keep sorting ended"), [&] { return yes(a->AppendItem(makeItem("k13", "k13", 13))); });

        // -- SortByRole and SortByRoleAndKeep by number and by name
        auto sortByRole = [&](const QVariant& role, bool ascending, bool keep, bool custom = false) {
            QString what = label(a) + (keep ? QStringLiteral(".SortByRoleAndKeep(") : QStringLiteral(".SortByRole("))
                + Canonical::value(role) + QStringLiteral(", ") + yes(ascending) + (custom ? QStringLiteral(", host less-than)") : QStringLiteral(")"));
            op(what, [=] {
                PF_LESS_THAN less = custom ? PF_LESS_THAN(hostLessThan) : PF_LESS_THAN();
                if (role.userType() == QMetaType::Int) {
                    if (keep)
                        a->SortByRoleAndKeep(role.toInt(), ascending, less);
                    else
                        a->SortByRole(role.toInt(), ascending, less);
                } else {
                    if (keep)
                        a->SortByRoleAndKeep(role.toString(), ascending, less);
                    else
                        a->SortByRole(role.toString(), ascending, less);
                }
                return QStringLiteral("void");
            });
        };
        for (const QVariant& role : {QVariant(int(ValueRole)), str("valueRole"), QVariant(int(NameRole)), str("nameRole"),
                                     QVariant(int(TextRole)), str("groupRole"), str("noSuchRole")}) {
            sortByRole(role, true, false);
            sortByRole(role, false, false);
        }
        sortByRole(QVariant(int(ValueRole)), true, false, true);
        sortByRole(str("textRole"), false, false, true);
        sortByRole(QVariant(int(ValueRole)), true, true);
        op(QStringLiteral("A.AppendItem(k14 value 2.5)"), [&] { return yes(a->AppendItem(makeItem("k14", "k14", 2.5))); });
        op(QStringLiteral("A.PrependItem(k15 value \"2.5\")"), [&] { return yes(a->PrependItem(makeItem("k15", "k15", str("2.5")))); });
        op(QStringLiteral("A.InsertItem(0, k16 value -0.0)"), [&] { return yes(a->InsertItem(0, makeItem("k16", "k16", minusZero()))); });
        sortByRole(str("nameRole"), false, true);
        op(QStringLiteral("A.AppendItem(k17 name \"apple\")"), [&] { return yes(a->AppendItem(makeItem("k17", "apple"))); });
        op(QStringLiteral("A: item k14 setData(\"nameRole\", int 5)"), [&] {
            auto* item = qobject_cast<XOLATreeItem*>(a->FindItem(QStringLiteral("k14")));
            if (item)
                item->setData(QStringLiteral("nameRole"), QVariant(5));
            return label(item);
        });
        sortByRole(str("valueRole"), true, true, true);
        op(QStringLiteral("A.AppendItem(k18 value \"10\")"), [&] { return yes(a->AppendItem(makeItem("k18", "k18", str("10")))); });
        sortByRules(a, {sortRule("idRole", true)}, 0);

        // -- every filter operator, both formats, over mixed values
        section(QStringLiteral("filter rules over model A"));
        const QVariantList ruleValues = ruleValuePool();
        for (const QString& role : {QStringLiteral("valueRole"), QStringLiteral("nameRole"), QStringLiteral("textRole")}) {
            for (int oper = -1; oper <= 8; ++oper) {
                for (const QVariant& value : ruleValues)
                    probeFilter(a, {ruleOne(role, oper, value)}, true);
            }
        }
        for (const QString& role : {QStringLiteral("valueRole"), QStringLiteral("nameRole"), QStringLiteral("textRole")}) {
            for (int oper = -1; oper <= 8; ++oper) {
                for (const QVariant& value : ruleValues)
                    probeFilter(a, {ruleTwo(role, {subRule(oper, value)}, true)}, true);
            }
        }
        // Several sub-rules, several rules, odd operators and odd rules.
        for (const QVariant& orAll : {QVariant(true), QVariant(false), QVariant()}) {
            probeFilter(a, {ruleTwo("valueRole", {subRule(2, 0), subRule(5, 10)}, orAll)}, true);
            probeFilter(a, {ruleTwo("nameRole", {subRule(7, str("a")), subRule(1, str("apple"))}, orAll)}, true);
            probeFilter(a, {ruleTwo("textRole", {subRule(3, -1), subRule(4, 0.5)}, orAll)}, true);
            probeFilter(a, {ruleTwo("valueRole", {}, orAll)}, true);
        }
        for (bool orAll : {true, false}) {
            probeFilter(a, {ruleOne("valueRole", 2, 0), ruleOne("nameRole", 6, str("a"))}, orAll);
            probeFilter(a, {ruleOne("valueRole", 0, str("10")), ruleTwo("textRole", {subRule(5, 0)}, true)}, orAll);
            probeFilter(a, {}, orAll);
        }
        for (const QVariant& oper : {str("3"), QVariant(2.0), str("x"), QVariant(true), QVariant(), QVariant(2.7)})
            probeFilter(a, {ruleOne("valueRole", oper, 0)}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant())}, true);
        probeFilter(a, {ruleOne(QVariant(), 0, 10)}, true);
        probeFilter(a, {ruleOne(QVariant(int(ValueRole)), 0, 10)}, true);
        probeFilter(a, {ruleOne("noSuchRole", 0, QVariant())}, true);
        probeFilter(a, {str("valueRole")}, true);
        probeFilter(a, {ruleOne("nameRole", 6, str("a"))}, true, 1);
        probeFilter(a, {ruleOne("valueRole", 0, utc(2020, 1, 1, 8))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant(QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::LocalTime)))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant(qlonglong(1) << 40))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant(uint(7)))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant(QByteArray("ab")))}, true);
        probeFilter(a, {ruleOne("valueRole", 2, QVariant(QTime(12, 0)))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant(QVariantList{1, str("x")}))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, nanValue())}, true);
        probeFilter(a, {ruleOne("valueRole", 1, nanValue())}, true);
        probeFilter(a, {ruleOne("valueRole", 0, minusZero())}, true);
        probeFilter(a, {ruleOne("valueRole", 3, QVariant(1e300))}, true);
        probeFilter(a, {ruleOne("valueRole", 0, QVariant(10.0))}, true);

        // -- one live filter view, its rules updated
        section(QStringLiteral("UpdateFilterRules and user-defined rules over model A"));
        XOLATreeModel* fa = nullptr;
        op(QStringLiteral("FA = A.GetFilterModel([valueRole Ge int 0], true, 0)"), [&] {
            fa = adoptView(a->GetFilterModel({ruleOne("valueRole", 2, 0)}, true, 0), QStringLiteral("FA"));
            return label(fa);
        });
        auto update = [&](XOLATreeModel* view, const QVariantList& rules, bool orAll) {
            op(label(view) + QStringLiteral(".UpdateFilterRules(") + rulesText(rules) + QStringLiteral(", ") + yes(orAll) + QLatin1Char(')'),
               [=] { return yes(view->UpdateFilterRules(rules, orAll)); });
        };
        update(fa, {ruleOne("valueRole", 2, 0)}, true);
        update(fa, {ruleOne("valueRole", 2, 0.0)}, true);
        update(fa, {ruleOne("valueRole", 2, str("0"))}, true);
        update(fa, {ruleOne("valueRole", 2, 0)}, false);
        update(fa, {ruleOne("valueRole", 5, 0)}, false);
        update(fa, {ruleTwo("valueRole", {subRule(5, 0)}, true)}, false);
        update(fa, {ruleTwo("valueRole", {subRule(5, 0)}, true)}, false);
        update(fa, {ruleTwo("nameRole", {subRule(7, str("APP")), subRule(6, str("b"))}, true)}, true);
        update(fa, {}, true);
        update(fa, {}, false);
        update(a, {ruleOne("valueRole", 2, 0)}, true);
        op(QStringLiteral("A.UpdateUserDefinedFilterRules(map{min:1})"), [&] {
            return yes(a->UpdateUserDefinedFilterRules(QVariantMap{{QStringLiteral("min"), 1}}));
        });
        op(QStringLiteral("drop FA"), [&] { delete fa; return QStringLiteral("void"); });

        XOLATreeModel* fu = nullptr;
        op(QStringLiteral("FU = A.GetFilterModelByUserDefinedRules(map{min:5}, 0)"), [&] {
            fu = adoptView(a->GetFilterModelByUserDefinedRules(QVariantMap{{QStringLiteral("min"), 5}}, 0), QStringLiteral("FU"));
            return label(fu);
        });
        const QVariantList userValues{QVariant(QVariantMap{{QStringLiteral("min"), 5}}), QVariant(QVariantMap{{QStringLiteral("min"), 0.5}}),
                                      str("apple"), str("A"), QVariant(7), QVariant(-2.5), QVariant(true),
                                      QVariant(QStringList{"a00", "a03", "k1"}), QVariant(QVariantList{str("a01"), 3}),
                                      QVariant(), QVariant(QDate(2020, 1, 1)), QVariant(QVariantMap{{QStringLiteral("name"), str("pp")}}),
                                      QVariant(QVariantMap{{QStringLiteral("min"), 5}})};
        for (const QVariant& value : userValues) {
            op(QStringLiteral("FU.UpdateUserDefinedFilterRules(") + Canonical::value(value) + QLatin1Char(')'),
               [=] { return yes(fu->UpdateUserDefinedFilterRules(value)); });
        }
        for (const QVariant& value : userValues)
            probeUserFilter(a, value, 0);
        probeUserFilter(a, QVariantMap{{QStringLiteral("min"), 0}}, 1);
        op(QStringLiteral("drop FU"), [&] { delete fu; return QStringLiteral("void"); });

        // -- group view over a role of mixed types
        section(QStringLiteral("group, paging and window views over model A"));
        XOLATreeModel* ga = nullptr;
        op(QStringLiteral("GA = A.GetGroupModel(\"valueRole\", false)"), [&] {
            ga = adoptView(a->GetGroupModel(QStringLiteral("valueRole"), false), QStringLiteral("GA"));
            return label(ga);
        });
        for (const QVariant& role : {str("groupRole"), QVariant(int(TextRole)), str("noSuchRole"), QVariant(int(NameRole)), str("valueRole")}) {
            op(QStringLiteral("GA.UpdateGroupRole(") + Canonical::value(role) + QLatin1Char(')'), [=] {
                return yes(role.userType() == QMetaType::Int ? ga->UpdateGroupRole(role.toInt()) : ga->UpdateGroupRole(role.toString()));
            });
        }
        XOLATreeModel* gk = nullptr;
        op(QStringLiteral("GK = A.GetGroupModel(262, true)"), [&] {
            gk = adoptView(a->GetGroupModel(int(GroupRole), true), QStringLiteral("GK"));
            return label(gk);
        });
        op(QStringLiteral("A.SortByRole(261, true) with GA and GK attached"), [&] { a->SortByRole(int(ValueRole), true); return QStringLiteral("void"); });
        op(QStringLiteral("A.AppendItem(g1 value 10.0 group \"1\")"), [&] { return yes(a->AppendItem(makeItem("g1", "g1", 10.0, str("1")))); });
        op(QStringLiteral("A: item g1 groupRole := double 1"), [&] {
            auto* item = qobject_cast<TranscriptItem*>(a->FindItem(QStringLiteral("g1")));
            if (item)
                item->setExtra(GroupRole, 1.0);
            return label(item);
        });
        op(QStringLiteral("A.RemoveOne(\"a01\")"), [&] { return yes(a->RemoveOne(QStringLiteral("a01"))); });
        op(QStringLiteral("drop GA and GK"), [&] { delete ga; delete gk; return QStringLiteral("void"); });

        XOLATreeModel* pa = nullptr;
        op(QStringLiteral("PA = A.GetPagingModel(5)"), [&] {
            pa = adoptView(a->GetPagingModel(5), QStringLiteral("PA"));
            return label(pa);
        });
        for (int page : {1, 2, 7, 9, 10, 100, -1, 0, 3}) {
            op(QStringLiteral("PA.setPage(%1)").arg(page), [=] { pa->setPage(page); return QStringLiteral("page=%1").arg(pa->page()); });
        }
        op(QStringLiteral("PA.FindItemID(0), FindItemRow(\"a10\"), FindItemValue(1, \"valueRole\"), get(2)"), [&] {
            return Canonical::quoted(pa->FindItemID(0)) + QStringLiteral(" / %1 / ").arg(pa->FindItemRow(QStringLiteral("a10")))
                + Canonical::value(pa->FindItemValue(1, QStringLiteral("valueRole"))) + QStringLiteral(" / ") + Canonical::value(pa->get(2));
        });
        op(QStringLiteral("A.Remove(0, 4) with PA on page 3"), [&] { return yes(a->Remove(0, 4)); });
        XOLATreeModel* p0 = nullptr;
        op(QStringLiteral("P0 = A.GetPagingModel(0)"), [&] {
            p0 = adoptView(a->GetPagingModel(0), QStringLiteral("P0"));
            return label(p0);
        }, false);
        op(QStringLiteral("P0.setPage(1)"), [&] { p0->setPage(1); return QStringLiteral("page=%1").arg(p0->page()); });
        op(QStringLiteral("drop PA and P0"), [&] { delete pa; delete p0; return QStringLiteral("void"); });

        QObject* window = nullptr;
        op(QStringLiteral("A.GetPartialModel(6)"), [&] {
            window = a->GetPartialModel(6);
            m_recorder.watch(window, QStringLiteral("A.window"));
            return label(window);
        });
        for (int first : {3, 30, 40, 44, 60, -2, 0}) {
            op(QStringLiteral("A.SetFirstPartialModelRow(%1)").arg(first), [=] {
                a->SetFirstPartialModelRow(first);
                return QStringLiteral("firstPartialModelRow=%1").arg(a->FirstPartialModelRow());
            });
        }
        for (int count : {10, 0, 3}) {
            op(QStringLiteral("A.SetPartialModelCount(%1)").arg(count), [=] { a->SetPartialModelCount(count); return QStringLiteral("void"); });
        }
        op(QStringLiteral("A.SetFirstPartialModelRow(2); A.MoveRow(0, 3)"), [&] {
            a->SetFirstPartialModelRow(2);
            a->MoveRow(0, 3);
            return QStringLiteral("void");
        });
        op(QStringLiteral("A.RemoveOne(FindItemID(3))"), [&] { return yes(a->RemoveOne(a->FindItemID(3))); });
        op(QStringLiteral("A.PrependItem(w1)"), [&] { return yes(a->PrependItem(makeItem("w1", "w1", 1))); });
        teardown(QStringLiteral("A"));
    }

    // ---- phase 2: comparisons from QML and script files --------------------------
    void phaseFunctionSorts()
    {
        section(QStringLiteral("sorts by functions in QML and script files"));
        XOLATreeModel* b = nullptr;
        op(QStringLiteral("create model FS"), [&] {
            b = makeModel(QStringLiteral("FS"), true);
            QList<XOLATreeItem*> list;
            for (int k = 0; k < 24; ++k)
                list << datasetItem(QStringLiteral("f"), k * 3 + 1);
            return yes(b->AppendItemsList(list));
        });
        struct Case
        {
            bool qml;
            QString file;
            const char* function;
        };
        const QString compare = m_compareDir + QLatin1Char('/');
        const QString data = m_dataDir + QLatin1Char('/');
        const QList<Case> cases{
            {true, compare + "less.qml", "less"},       {true, compare + "less.qml", "greater"},
            {true, compare + "less.qml", "always"},     {true, compare + "less.qml", "fails"},
            {true, compare + "less.qml", "nothing"},    {true, compare + "missing.qml", "less"},
            {true, compare + "syntaxerror.qml", "less"}, {true, data + "order.qml", "numeric"},
            {true, data + "order.qml", "text"},         {true, data + "order.qml", "typed"},
            {true, data + "order.qml", "notBoolean"},   {true, data + "order.qml", ""},
            {false, compare + "less.js", "less"},       {false, compare + "greater.js", "greater"},
            {false, compare + "errorvalue.js", "less"}, {false, compare + "throws.js", "fails"},
            {false, compare + "syntaxerror.js", "less"}, {false, compare + "missing.js", "less"},
            {false, compare + "less.js", "nothing"},    {false, data + "order.js", "numericOrder"},
            {false, data + "order.js", "textOrder"},    {false, data + "order.js", "typedOrder"},
            {false, data + "order.js", "notBooleanOrder"},
        };
        auto sortBy = [&](const Case& c, const QVariant& role, bool ascending) {
            const QString what = label(b) + (c.qml ? QStringLiteral(".SortByRoleByQMLFunction(") : QStringLiteral(".SortByRoleByScriptFunction("))
                + Canonical::value(role) + QStringLiteral(", ") + yes(ascending) + QStringLiteral(", ") + fileLabel(c.file)
                + QStringLiteral(", ") + Canonical::quoted(QString::fromLatin1(c.function)) + QLatin1Char(')');
            op(what, [=] {
                const QString function = QString::fromLatin1(c.function);
                if (role.userType() == QMetaType::Int) {
                    if (c.qml)
                        b->SortByRoleByQMLFunction(role.toInt(), ascending, c.file, function);
                    else
                        b->SortByRoleByScriptFunction(role.toInt(), ascending, c.file, function);
                } else {
                    if (c.qml)
                        b->SortByRoleByQMLFunction(role.toString(), ascending, c.file, function);
                    else
                        b->SortByRoleByScriptFunction(role.toString(), ascending, c.file, function);
                }
                return QStringLiteral("void");
            });
        };
        for (const Case& c : cases) {
            for (const QVariant& role : {QVariant(int(ValueRole)), str("nameRole"), QVariant(int(TextRole))}) {
                for (bool ascending : {true, false})
                    sortBy(c, role, ascending);
            }
            // Back to a known order so that every case starts alike.
            op(label(b) + QStringLiteral(".SortByRole(\"idRole\", true)"), [=] { b->SortByRole(QStringLiteral("idRole"), true); return QStringLiteral("void"); }, false);
        }
        // What the comparison sees of every kind of value, traced line by line.
        sortBy({true, data + "order.qml", "traced"}, str("valueRole"), true);
        sortBy({false, data + "order.js", "tracedOrder"}, QVariant(int(ValueRole)), false);
        sortBy({true, data + "order.qml", "traced"}, str("groupRole"), true);
        // A keep-sorting model is sorted once by a function and keeps its flag.
        sortByRules(b, {sortRule("nameRole", true)}, 1);
        sortBy({true, data + "order.qml", "numeric"}, str("valueRole"), true);
        op(QStringLiteral("FS.AppendItem(fx value 0.75)"), [&] { return yes(b->AppendItem(makeItem("fx", "fx", 0.75))); });
        teardown(QStringLiteral("FS"));
    }

    // ---- phase 3: mutations with every view attached ------------------------------
    struct World
    {
        XOLATreeModel* model = nullptr;
        XOLATreeModel* child = nullptr;
        XOLATreeModel* f1 = nullptr;
        XOLATreeModel* f2 = nullptr;
        XOLATreeModel* f3 = nullptr;
        XOLATreeModel* fu = nullptr;
        XOLATreeModel* g = nullptr;
        XOLATreeModel* gk = nullptr;
        XOLATreeModel* p = nullptr;
        QObject* window = nullptr;
        QString name;
    };

    World makeWorld(const QString& name, const QList<XOLATreeItem*>& items)
    {
        World w;
        w.name = name;
        op(QStringLiteral("create model ") + name + QStringLiteral(" with child model ") + name + QStringLiteral(".C"), [&] {
            w.child = makeModel(name + QStringLiteral(".C"), false);
            w.child->AppendItemsList({makeItem(name + "-c1", "cherry", 1, str("x")), makeItem(name + "-c2", "Elder", str("e"), 1),
                                      makeItem(name + "-c3", "fig", -0.5)});
            w.model = makeModel(name, true);
            QList<XOLATreeItem*> list = items;
            list.insert(list.size() / 2, makeItem(name + "-p", "parent e", 4, 1, 0.5, w.child));
            return yes(w.model->AppendItemsList(list));
        });
        const QVariantList f1Rules{ruleOne("valueRole", 2, 0), ruleOne("nameRole", 7, str("a"))};
        const QVariantList f2Rules{ruleTwo("textRole", {subRule(3, -1), subRule(5, str("m"))}, true)};
        const QVariantList f3Rules{ruleOne("nameRole", 6, str("e"))};
        op(name + QStringLiteral(".F1 = GetFilterModel(") + rulesText(f1Rules) + QStringLiteral(", false, 0)"), [&] {
            w.f1 = adoptView(w.model->GetFilterModel(f1Rules, false, 0), name + QStringLiteral(".F1"));
            return label(w.f1);
        }, false);
        op(name + QStringLiteral(".F2 = GetFilterModel(") + rulesText(f2Rules) + QStringLiteral(", true, 1)"), [&] {
            w.f2 = adoptView(w.model->GetFilterModel(f2Rules, true, 1), name + QStringLiteral(".F2"));
            return label(w.f2);
        }, false);
        op(name + QStringLiteral(".F3 = GetFilterModel(") + rulesText(f3Rules) + QStringLiteral(", true, 0)"), [&] {
            w.f3 = adoptView(w.model->GetFilterModel(f3Rules, true, 0), name + QStringLiteral(".F3"));
            return label(w.f3);
        }, false);
        op(name + QStringLiteral(".FU = GetFilterModelByUserDefinedRules(map{min:0}, 1)"), [&] {
            w.fu = adoptView(w.model->GetFilterModelByUserDefinedRules(QVariantMap{{QStringLiteral("min"), 0}}, 1), name + QStringLiteral(".FU"));
            return label(w.fu);
        }, false);
        op(name + QStringLiteral(".G = GetGroupModel(\"groupRole\", false)"), [&] {
            w.g = adoptView(w.model->GetGroupModel(QStringLiteral("groupRole"), false), name + QStringLiteral(".G"));
            return label(w.g);
        }, false);
        op(name + QStringLiteral(".GK = GetGroupModel(263, true)"), [&] {
            w.gk = adoptView(w.model->GetGroupModel(int(TextRole), true), name + QStringLiteral(".GK"));
            return label(w.gk);
        }, false);
        op(name + QStringLiteral(".P = GetPagingModel(4)"), [&] {
            w.p = adoptView(w.model->GetPagingModel(4), name + QStringLiteral(".P"));
            return label(w.p);
        }, false);
        op(name + QStringLiteral(".GetPartialModel(5)"), [&] {
            w.window = w.model->GetPartialModel(5);
            m_recorder.watch(w.window, name + QStringLiteral(".window"));
            return label(w.window);
        });
        return w;
    }

    TranscriptItem* findItem(XOLATreeModel* model, const QString& id)
    {
        return qobject_cast<TranscriptItem*>(model->FindItem(id, true));
    }

    void phaseLiveViews()
    {
        section(QStringLiteral("live views follow hand-written mutations"));
        QList<XOLATreeItem*> items;
        for (int k = 0; k < 12; ++k)
            items << datasetItem(QStringLiteral("b"), k * 5 + 2);
        World w = makeWorld(QStringLiteral("B"), items);
        XOLATreeModel* m = w.model;
        auto item = [&](const QString& id) { return findItem(m, id); };

        op("B.AppendItem(n1 value 7)", [&] { return yes(m->AppendItem(makeItem("n1", "nectarine", 7, 2, 3.5))); });
        op("B.PrependItem(n2 \"Apple\" value -3)", [&] { return yes(m->PrependItem(makeItem("n2", "Apple", -3, str("x"), -2.5))); });
        op("B.InsertItem(3, n3 value \"10\")", [&] { return yes(m->InsertItem(3, makeItem("n3", "date", str("10"), true, str("0.5")))); });
        op("B.InsertItem(100, n4)", [&] { return yes(m->InsertItem(100, makeItem("n4", "n4", 1))); });
        op("B.InsertItem(-1, n5)", [&] { return yes(m->InsertItem(-1, makeItem("n5", "n5", 1))); });
        op("B.AppendItemsList(n6 n7 n8)", [&] {
            return yes(m->AppendItemsList({makeItem("n6", "elephant", 0.5, 1.0, nanValue()), makeItem("n7", "Eagle", QVariant(), QVariant(), 1e300),
                                           makeItem("n8", "a8", QVariant(QDate(2020, 2, 2)), str("1"), -0.5)}));
        });
        op("B.PrependItemsList(n9 n10)", [&] {
            return yes(m->PrependItemsList({makeItem("n9", "nine", 9, 2), makeItem("n10", "ten", 10.0, str("2"))}));
        });
        op("B.AppendItemsList([])", [&] { return yes(m->AppendItemsList({})); });
        op("B.AppendItem(null)", [&] { return yes(m->AppendItem(nullptr)); });
        op("B.AppendItem(duplicate id n1)", [&] { return yes(m->AppendItem(makeItem("n1", "second n1", 70))); });
        for (auto move : QList<QPair<int, int>>{{0, 5}, {5, 0}, {3, 3}, {-1, 2}, {2, 100}, {1, 2}, {2, 1}}) {
            op(QStringLiteral("B.MoveRow(%1, %2)").arg(move.first).arg(move.second), [&] { m->MoveRow(move.first, move.second); return QStringLiteral("void"); });
        }
        op("B: n1 valueRole := 100", [&] { auto* i = item("n1"); if (i) i->setExtra(ValueRole, 100); return label(i); });
        op("B: n1 setData(\"valueRole\", \"apple\")", [&] { auto* i = item("n1"); if (i) i->setData(QStringLiteral("valueRole"), str("apple")); return label(i); });
        op("B: n1 setData(262, double 2)", [&] { auto* i = item("n1"); if (i) i->setData(int(GroupRole), QVariant(2.0)); return label(i); });
        op("B: n1 setData(262, int 2)", [&] { auto* i = item("n1"); if (i) i->setData(int(GroupRole), QVariant(2)); return label(i); });
        op("B: n6 setData(\"nameRole\", int 42)", [&] { auto* i = item("n6"); if (i) i->setData(QStringLiteral("nameRole"), QVariant(42)); return label(i); });
        op("B: n6 setData(\"nameRole\", double 0.1)", [&] { auto* i = item("n6"); if (i) i->setData(QStringLiteral("nameRole"), QVariant(0.1)); return label(i); });
        op("B: n6 setData(258, stringlist)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), QVariant(QStringList{"x", "y"})); return label(i); });
        op("B: n6 setData(258, date)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), QVariant(QDate(2020, 1, 1))); return label(i); });
        op("B: n6 setData(258, bool true)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), QVariant(true)); return label(i); });
        op("B: n6 setData(258, nan)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), nanValue()); return label(i); });
        op("B: n6 setData(258, 1e300)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), QVariant(1e300)); return label(i); });
        op("B: n6 setData(258, -0.0)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), minusZero()); return label(i); });
        op("B: n6 setData(258, datetime)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), utc(2020, 1, 1, 8)); return label(i); });
        op("B: n6 setData(258, invalid)", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), QVariant()); return label(i); });
        op("B: n6 setData(258, \"elephant\")", [&] { auto* i = item("n6"); if (i) i->setData(int(NameRole), str("elephant")); return label(i); });
        op("B: n7 SetJsonValue(map with more keys)", [&] {
            auto* i = item("n7");
            if (i)
                i->SetJsonValue({{"idRole", str("n7")}, {"nameRole", str("Eagle")}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)},
                                 {"extra", 1.5}, {"list", QVariant(QVariantList{1, 2.5, str("s")})}, {"nested", QVariantMap{{"b", 1}, {"a", QVariant()}}}});
            return label(i);
        });
        op("B: n7 SetJsonValue(same map)", [&] {
            auto* i = item("n7");
            if (i)
                i->SetJsonValue({{"idRole", str("n7")}, {"nameRole", str("Eagle")}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)},
                                 {"extra", 1.5}, {"list", QVariant(QVariantList{1, 2.5, str("s")})}, {"nested", QVariantMap{{"b", 1}, {"a", QVariant()}}}});
            return label(i);
        });
        op("B: n7 SetJsonValue(map with extra := int 1 where it was double 1.5, then 1.0)", [&] {
            auto* i = item("n7");
            if (i) {
                i->SetJsonValue({{"idRole", str("n7")}, {"nameRole", str("Eagle")}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)}, {"extra", 1}});
                i->SetJsonValue({{"idRole", str("n7")}, {"nameRole", str("Eagle")}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)}, {"extra", 1.0}});
                i->SetJsonValue({{"idRole", str("n7")}, {"nameRole", str("Eagle")}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)}, {"extra", str("1")}});
            }
            return label(i);
        });
        op("B: n8 SetJsonValue(map without nameRole)", [&] {
            auto* i = item("n8");
            if (i)
                i->SetJsonValue({{"idRole", str("n8")}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)}, {"only", true}});
            return label(i);
        });
        op("B: n8 setData(260, map with nameRole int 8)", [&] {
            auto* i = item("n8");
            if (i)
                i->setData(int(MapRole), QVariant(QVariantMap{{"idRole", str("n8")}, {"nameRole", 8}, {"childModelRole", QVariant::fromValue<QObject*>(nullptr)}}));
            return label(i);
        });
        op("B: n9 SetName(\"Nine\")", [&] { auto* i = item("n9"); if (i) i->SetName(QStringLiteral("Nine")); return label(i); });
        op("B: n9 valueRole := invalid", [&] { auto* i = item("n9"); if (i) i->setExtra(ValueRole, QVariant()); return label(i); });
        op("B: n9 textRole := \"zz\"", [&] { auto* i = item("n9"); if (i) i->setExtra(TextRole, str("zz")); return label(i); });
        op("B: n10 SetID(\"n10x\")", [&] { auto* i = item("n10"); if (i) i->SetID(QStringLiteral("n10x")); return label(i); });
        op("B.C.AppendItem(c4 \"peach\")", [&] { return yes(w.child->AppendItem(makeItem("B-c4", "peach", 2))); });
        op("B.C: B-c1 SetName(\"cherry e\")", [&] { auto* i = findItem(w.child, "B-c1"); if (i) i->SetName(QStringLiteral("cherry e")); return label(i); });
        op("B.C.RemoveOne(\"B-c2\")", [&] { return yes(w.child->RemoveOne(QStringLiteral("B-c2"))); });
        op("B.RemoveOne(\"n2\")", [&] { return yes(m->RemoveOne(QStringLiteral("n2"))); });
        op("B.RemoveOne(\"nope\")", [&] { return yes(m->RemoveOne(QStringLiteral("nope"))); });
        op("B.Remove([\"n3\", \"b07\", \"zz\"])", [&] { return yes(m->Remove(QStringList{"n3", "b07", "zz"})); });
        op("B.Remove(1, 3)", [&] { return yes(m->Remove(1, 3)); });
        op("B.Remove(5, 2)", [&] { return yes(m->Remove(5, 2)); });
        op("B.Remove(-1, 0)", [&] { return yes(m->Remove(-1, 0)); });
        for (int page : {1, 2, 5, -1, 0, 2}) {
            op(QStringLiteral("B.P.setPage(%1)").arg(page), [&] { w.p->setPage(page); return QStringLiteral("page=%1").arg(w.p->page()); });
        }
        op("B.SetFirstPartialModelRow(2)", [&] { m->SetFirstPartialModelRow(2); return QStringLiteral("void"); });
        op("B.SetPartialModelCount(8)", [&] { m->SetPartialModelCount(8); return QStringLiteral("void"); });
        op("B.F1.UpdateFilterRules(same rules, false)", [&] {
            return yes(w.f1->UpdateFilterRules({ruleOne("valueRole", 2, 0), ruleOne("nameRole", 7, str("a"))}, false));
        });
        op("B.F1.UpdateFilterRules([valueRole Lt \"5\"], true)", [&] { return yes(w.f1->UpdateFilterRules({ruleOne("valueRole", 5, str("5"))}, true)); });
        op("B.F2.UpdateFilterRules([nameRole InsensitiveSubStr \"E\"], true)", [&] { return yes(w.f2->UpdateFilterRules({ruleOne("nameRole", 7, str("E"))}, true)); });
        op("B.FU.UpdateUserDefinedFilterRules(map{min:5})", [&] { return yes(w.fu->UpdateUserDefinedFilterRules(QVariantMap{{"min", 5}})); });
        op("B.G.UpdateGroupRole(\"valueRole\")", [&] { return yes(w.g->UpdateGroupRole(QStringLiteral("valueRole"))); });
        op("B.AppendItem(n11 value 5 group 1)", [&] { return yes(m->AppendItem(makeItem("n11", "eleven", 5, 1, 0.5))); });
        sortByRules(m, {sortRule("valueRole", true)}, 1);
        op("B.AppendItem(n12 value 6)", [&] { return yes(m->AppendItem(makeItem("n12", "twelve e", 6, str("1"), -1))); });
        op("B: n12 valueRole := -100", [&] { auto* i = item("n12"); if (i) i->setExtra(ValueRole, -100); return label(i); });
        op("B.SortByRole(\"nameRole\", false)", [&] { m->SortByRole(QStringLiteral("nameRole"), false); return QStringLiteral("void"); });
        op("B.SortByRoleAndKeep(263, true)", [&] { m->SortByRoleAndKeep(int(TextRole), true); return QStringLiteral("void"); });
        op("B.PrependItem(n13 text 0.25)", [&] { return yes(m->PrependItem(makeItem("n13", "thirteen", 13, 2, 0.25))); });

        // Answers of the views themselves.
        op("queries on the views", [&] {
            QStringList answers;
            answers << Canonical::quoted(w.f1->FindItemID(0)) << QString::number(w.f1->FindItemRow(QStringLiteral("n11")))
                    << Canonical::value(w.f1->FindItemValue(0, QStringLiteral("valueRole")))
                    << Canonical::value(w.f1->FindItemValue(0, int(TextRole)))
                    << Canonical::value(w.f3->FindItemValueEx(QStringLiteral("B-c4"), QStringLiteral("valueRole"), true))
                    << Canonical::value(w.f3->FindItemValueEx(QStringLiteral("B-c4"), int(ValueRole), false))
                    << Canonical::value(m->FindItemValueEx(QStringLiteral("B-c3"), int(ValueRole), true))
                    << Canonical::value(m->FindItemValue(QStringLiteral("n11"), QStringLiteral("groupRole")))
                    << Canonical::value(w.g->FindItemValue(0, int(ChildRole)))
                    << Canonical::value(w.p->FindItemValue(0, QStringLiteral("nameRole")))
                    << Canonical::value(m->get(0)) << Canonical::value(w.f1->get(0)) << Canonical::value(w.g->get(0))
                    << Canonical::value(w.p->get(1)) << Canonical::value(m->get(-1)) << Canonical::value(m->get(1000));
            QList<QString> all;
            m->GetAllIDs(all, true);
            answers << QStringLiteral("GetAllIDs(true)=") + QStringList(all).join(QLatin1Char(','));
            all.clear();
            w.f1->GetAllIDs(all, false);
            answers << QStringLiteral("F1.GetAllIDs(false)=") + QStringList(all).join(QLatin1Char(','));
            return answers.join(QStringLiteral("\n   "));
        }, false);
        op("B.ReplaceItemsList(r1..r5)", [&] {
            return yes(m->ReplaceItemsList({makeItem("r1", "apple", 1, 1, 0.5), makeItem("r2", "Apple", str("1"), str("1"), -0.5),
                                            makeItem("r3", "APPLE", 1.0, 1.0, nanValue()), makeItem("r4", "e", true, true, 0),
                                            makeItem("r5", "é", QVariant(), QVariant(), QVariant())}));
        });
        op("B.RemoveAll()", [&] { m->RemoveAll(); return QStringLiteral("void"); });
        op("B.AppendItemsList(s1 s2 s3)", [&] {
            return yes(m->AppendItemsList({makeItem("s1", "s e", 1, 1), makeItem("s2", "s2", 2, 2), makeItem("s3", "s3 e", 3, 1)}));
        });
        op("B.clear()", [&] { m->clear(); return QStringLiteral("void"); });
        op("B.AppendItem(t1) after clear", [&] { return yes(m->AppendItem(makeItem("t1", "t1 e", 1, 1, 0.5))); });
        teardown(QStringLiteral("B"));
    }

    // ---- phase 4: seeded random operations -----------------------------------------
    QVariant randomValue(Lcg& rng)
    {
        const QVariantList pool = rng.percent(70) ? valuePool() : textPool();
        return pool.at(rng.below(pool.size()));
    }

    QVariantList randomFilterRules(Lcg& rng)
    {
        const QStringList roles{"valueRole", "nameRole", "textRole", "groupRole"};
        const QVariantList values = ruleValuePool();
        QVariantList rules;
        const int count = 1 + rng.below(2);
        for (int i = 0; i < count; ++i) {
            const QString role = rng.pick(roles);
            if (rng.percent(50)) {
                const int oper = rng.below(10) - 1;
                const QVariant value = values.at(rng.below(values.size()));
                rules << ruleOne(role, oper, value);
            } else {
                QVariantList subs;
                const int n = 1 + rng.below(3);
                for (int s = 0; s < n; ++s) {
                    const int oper = rng.below(10) - 1;
                    const QVariant value = values.at(rng.below(values.size()));
                    subs << subRule(oper, value);
                }
                rules << ruleTwo(role, subs, rng.percent(50));
            }
        }
        return rules;
    }

    void phaseSeed(quint64 seed)
    {
        Lcg rng(seed);
        const QString name = QStringLiteral("S%1").arg(seed);
        section(QStringLiteral("seed %1").arg(seed));
        const QStringList names = namePool();
        int serial = 0;
        auto newItem = [&]() {
            // One draw per statement: the order of draws never depends on the
            // compiler's order of evaluating arguments.
            const QString id = QStringLiteral("s%1").arg(serial++);
            const QString itemName = names.at(rng.below(names.size()));
            const QVariant value = randomValue(rng);
            const QVariant group = groupPool().at(rng.below(groupPool().size()));
            const QVariant text = textPool().at(rng.below(textPool().size()));
            return makeItem(id, itemName, value, group, text);
        };
        QList<XOLATreeItem*> items;
        for (int k = 0; k < 14; ++k)
            items << newItem();
        World w = makeWorld(name, items);
        XOLATreeModel* m = w.model;
        auto randomId = [&]() {
            if (m->rowCount() == 0 || rng.percent(10))
                return QStringLiteral("missing%1").arg(rng.below(3));
            return m->FindItemID(rng.below(m->rowCount()));
        };
        const QStringList sortRoles{"valueRole", "nameRole", "textRole", "groupRole", "idRole"};
        for (int step = 0; step < 40; ++step) {
            const int choice = rng.below(21);
            switch (choice) {
            case 0: {
                TranscriptItem* it = newItem();
                op(name + QStringLiteral(".AppendItem(") + describe(it) + QLatin1Char(')'), [&] { return yes(m->AppendItem(it)); });
                break;
            }
            case 1: {
                TranscriptItem* it = newItem();
                op(name + QStringLiteral(".PrependItem(") + describe(it) + QLatin1Char(')'), [&] { return yes(m->PrependItem(it)); });
                break;
            }
            case 2: {
                TranscriptItem* it = newItem();
                const int row = rng.below(m->rowCount() + 3) - 1;
                op(name + QStringLiteral(".InsertItem(%1, ").arg(row) + describe(it) + QLatin1Char(')'), [&] { return yes(m->InsertItem(row, it)); });
                break;
            }
            case 3: {
                QList<XOLATreeItem*> list;
                const int n = 1 + rng.below(3);
                for (int i = 0; i < n; ++i)
                    list << newItem();
                const bool prepend = rng.percent(40);
                op(name + (prepend ? QStringLiteral(".PrependItemsList(") : QStringLiteral(".AppendItemsList(")) + describe(list) + QLatin1Char(')'),
                   [&] { return yes(prepend ? m->PrependItemsList(list) : m->AppendItemsList(list)); });
                break;
            }
            case 4: {
                const QString id = randomId();
                op(name + QStringLiteral(".RemoveOne(") + Canonical::quoted(id) + QLatin1Char(')'), [&] { return yes(m->RemoveOne(id)); });
                break;
            }
            case 5: {
                QStringList ids;
                const int n = 1 + rng.below(3);
                for (int i = 0; i < n; ++i)
                    ids << randomId();
                op(name + QStringLiteral(".Remove(") + Canonical::value(ids) + QLatin1Char(')'), [&] { return yes(m->Remove(ids)); });
                break;
            }
            case 6: {
                const int h = rng.below(m->rowCount() + 2) - 1;
                const int t = h + rng.below(4) - 1;
                op(name + QStringLiteral(".Remove(%1, %2)").arg(h).arg(t), [&] { return yes(m->Remove(h, t)); });
                break;
            }
            case 7: {
                const int from = rng.below(m->rowCount() + 1);
                const int to = rng.below(m->rowCount() + 1);
                op(name + QStringLiteral(".MoveRow(%1, %2)").arg(from).arg(to), [&] { m->MoveRow(from, to); return QStringLiteral("void"); });
                break;
            }
            case 8:
            case 9: {
                const QString id = randomId();
                const int role = ValueRole + rng.below(3);
                const QVariant value = rng.percent(10) ? QVariant() : randomValue(rng);
                op(name + QStringLiteral(": ") + Canonical::quoted(id) + QStringLiteral(" role %1 := ").arg(role) + Canonical::value(value), [&] {
                    TranscriptItem* it = findItem(m, id);
                    if (it)
                        it->setExtra(role, value);
                    return label(it);
                });
                break;
            }
            case 10: {
                const QString id = randomId();
                const QString newName = names.at(rng.below(names.size()));
                op(name + QStringLiteral(": ") + Canonical::quoted(id) + QStringLiteral(" SetName(") + Canonical::quoted(newName) + QLatin1Char(')'), [&] {
                    TranscriptItem* it = findItem(m, id);
                    if (it)
                        it->SetName(newName);
                    return label(it);
                });
                break;
            }
            case 11: {
                const QString id = randomId();
                const QVariant extra = randomValue(rng);
                op(name + QStringLiteral(": ") + Canonical::quoted(id) + QStringLiteral(" SetJsonValue(x := ") + Canonical::value(extra) + QLatin1Char(')'), [&] {
                    TranscriptItem* it = findItem(m, id);
                    if (it) {
                        QVariantMap map = it->jsonValue();
                        map.insert(QStringLiteral("x"), extra);
                        it->SetJsonValue(map);
                    }
                    return label(it);
                });
                break;
            }
            case 12: {
                QVariantList rules;
                const int n = 1 + rng.below(2);
                for (int i = 0; i < n; ++i) {
                    const QString role = rng.pick(sortRoles);
                    const QVariant ascending = rng.percent(80) ? QVariant(rng.percent(50)) : QVariant();
                    rules << sortRule(role, ascending);
                }
                const int flag = rng.below(3);
                sortByRules(m, rules, flag);
                break;
            }
            case 13: {
                const QString role = rng.pick(sortRoles);
                const bool ascending = rng.percent(50);
                const bool keep = rng.percent(40);
                op(name + (keep ? QStringLiteral(".SortByRoleAndKeep(") : QStringLiteral(".SortByRole(")) + Canonical::quoted(role) + QStringLiteral(", ") + yes(ascending) + QLatin1Char(')'), [&] {
                    if (keep)
                        m->SortByRoleAndKeep(role, ascending);
                    else
                        m->SortByRole(role, ascending);
                    return QStringLiteral("void");
                });
                break;
            }
            case 14: {
                const int page = rng.below(7) - 1;
                op(name + QStringLiteral(".P.setPage(%1)").arg(page), [&] { w.p->setPage(page); return QStringLiteral("page=%1").arg(w.p->page()); });
                break;
            }
            case 15: {
                const int first = rng.below(m->rowCount() + 3) - 1;
                op(name + QStringLiteral(".SetFirstPartialModelRow(%1)").arg(first), [&] { m->SetFirstPartialModelRow(first); return QStringLiteral("void"); });
                break;
            }
            case 16: {
                const QVariantList rules = randomFilterRules(rng);
                const bool orAll = rng.percent(50);
                XOLATreeModel* view = rng.percent(50) ? w.f1 : w.f2;
                op(label(view) + QStringLiteral(".UpdateFilterRules(") + rulesText(rules) + QStringLiteral(", ") + yes(orAll) + QLatin1Char(')'),
                   [&] { return yes(view->UpdateFilterRules(rules, orAll)); });
                break;
            }
            case 17: {
                const int min = rng.below(12) - 2;
                const int number = rng.below(10);
                const bool flag = rng.percent(50);
                const QString firstId = randomId();
                const QString secondId = randomId();
                const QVariantList choices{QVariant(QVariantMap{{"min", min}}), QVariant(number), str("a"), str("e"),
                                           QVariant(flag), QVariant(), QVariant(QStringList{firstId, secondId})};
                const QVariant value = choices.at(rng.below(choices.size()));
                op(label(w.fu) + QStringLiteral(".UpdateUserDefinedFilterRules(") + Canonical::value(value) + QLatin1Char(')'),
                   [&] { return yes(w.fu->UpdateUserDefinedFilterRules(value)); });
                break;
            }
            case 18: {
                const QString role = rng.pick(QStringList{"valueRole", "groupRole", "textRole", "nameRole"});
                XOLATreeModel* view = rng.percent(50) ? w.g : w.gk;
                op(label(view) + QStringLiteral(".UpdateGroupRole(") + Canonical::quoted(role) + QLatin1Char(')'), [&] { return yes(view->UpdateGroupRole(role)); });
                break;
            }
            case 19: {
                if (rng.percent(30)) {
                    QList<XOLATreeItem*> list;
                    const int n = rng.below(6);
                    for (int i = 0; i < n; ++i)
                        list << newItem();
                    op(name + QStringLiteral(".ReplaceItemsList(") + describe(list) + QLatin1Char(')'), [&] { return yes(m->ReplaceItemsList(list)); });
                } else {
                    const QString id = randomId();
                    const QVariant value = randomValue(rng);
                    op(name + QStringLiteral(": ") + Canonical::quoted(id) + QStringLiteral(" setData(\"nameRole\", ") + Canonical::value(value) + QLatin1Char(')'), [&] {
                        TranscriptItem* it = findItem(m, id);
                        if (it)
                            it->setData(QStringLiteral("nameRole"), value);
                        return label(it);
                    });
                }
                break;
            }
            default: {
                const int row = rng.below(m->rowCount() + 1);
                const QString role = rng.pick(QStringList{"valueRole", "nameRole", "textRole", "groupRole", "childModelRole"});
                op(QStringLiteral("queries row %1 role ").arg(row) + role, [&] {
                    QStringList answers;
                    for (XOLATreeModel* view : {m, w.f1, w.f2, w.fu, w.g, w.p})
                        answers << label(view) + QLatin1Char(':') + Canonical::value(view->FindItemValue(row, role)) + QStringLiteral(" get=")
                                       + Canonical::value(view->get(row));
                    return answers.join(QStringLiteral("\n   "));
                }, false);
                break;
            }
            }
        }
        teardown(name);
    }

    // ---- phase 5: the invokables called from QML ------------------------------------------
    void phaseQml()
    {
        section(QStringLiteral("QML calls"));
        QList<XOLATreeItem*> items;
        for (int k = 0; k < 10; ++k)
            items << datasetItem(QStringLiteral("q"), k * 4 + 1);
        World w = makeWorld(QStringLiteral("Q"), items);
        QQmlEngine* engine = new QQmlEngine;
        QmlBridge bridge(&m_recorder, m_dataDir, m_compareDir);
        engine->rootContext()->setContextProperty(QStringLiteral("log"), &bridge);
        engine->rootContext()->setContextProperty(QStringLiteral("model"), w.model);
        engine->rootContext()->setContextProperty(QStringLiteral("cppFilter"), w.f1);
        engine->rootContext()->setContextProperty(QStringLiteral("cppGroup"), w.g);
        engine->rootContext()->setContextProperty(QStringLiteral("cppPaging"), w.p);
        XOLATreeModel* values = nullptr;
        op(QStringLiteral("create model V: one row per kind of value"), [&] {
            values = makeModel(QStringLiteral("V"), true);
            QList<XOLATreeItem*> list;
            const QVariantList pool = valuePool();
            for (int k = 0; k < pool.size(); ++k)
                list << makeItem(QStringLiteral("v%1").arg(k, 2, 10, QLatin1Char('0')), QStringLiteral("value %1").arg(k), pool.at(k));
            return yes(values->AppendItemsList(list));
        });
        engine->rootContext()->setContextProperty(QStringLiteral("values"), values);
        QObject* root = nullptr;
        op(QStringLiteral("load <transcript-data>/transcript.qml"), [&] {
            QQmlComponent component(engine, QUrl::fromLocalFile(m_dataDir + QStringLiteral("/transcript.qml")));
            root = component.create();
            if (!root) {
                for (const QQmlError& error : component.errors())
                    std::fprintf(stderr, "transcript.qml: %s\n", error.toString().toUtf8().constData());
            }
            return root ? QStringLiteral("loaded") : QStringLiteral("failed");
        }, false);
        auto step = [&](const char* function) {
            op(QStringLiteral("qml ") + QLatin1String(function) + QStringLiteral("()"), [&] {
                if (!root)
                    return QStringLiteral("no document");
                const bool called = QMetaObject::invokeMethod(root, function);
                return called ? QStringLiteral("called") : QStringLiteral("not called");
            });
        };
        step("reads");
        step("filters");
        op("Q.AppendItem(qa value 5 name \"APPLE pie\")", [&] { return yes(w.model->AppendItem(makeItem("qa", "APPLE pie", 5, 1, 0.5))); });
        op("Q.PrependItem(qb value \"10\")", [&] { return yes(w.model->PrependItem(makeItem("qb", "apple", str("10"), str("x"), -2.5))); });
        op("Q: qa valueRole := -2.5", [&] { auto* i = findItem(w.model, "qa"); if (i) i->setExtra(ValueRole, -2.5); return label(i); });
        step("updates");
        step("userDefined");
        op("Q.AppendItem(qc value 6)", [&] { return yes(w.model->AppendItem(makeItem("qc", "Apple", 6, 2, 1e300))); });
        step("sorts");
        step("views");
        op("Q.AppendItem(qd value 0.5 group \"x\")", [&] { return yes(w.model->AppendItem(makeItem("qd", "qd", 0.5, str("x"), 0))); });
        step("mutations");
        step("conversions");
        step("overloads");
        step("finish");
        op(QStringLiteral("delete the QML document and engine"), [&] {
            delete root;
            root = nullptr;
            delete engine;
            flushDeletes();
            return QStringLiteral("void");
        });
        teardown(QStringLiteral("Q"));
    }

    // ---- phase 6: model options and role tables -----------------------------------------
    void phaseEdges()
    {
        section(QStringLiteral("role tables and model options"));
        // Two roles under one name: which one a name means is the library's choice.
        QHash<int, QByteArray> twice = TranscriptItem::roleNames();
        twice.insert(ValueRole, "key");
        twice.insert(TextRole, "key");
        XOLATreeModel* d = nullptr;
        op(QStringLiteral("create model D whose roles 261 and 263 are both named \"key\""), [&] {
            d = makeModel(QStringLiteral("D"), true, 0, true, twice);
            return yes(d->AppendItemsList({makeItem("d1", "one", 3, 1, -1), makeItem("d2", "two", 1, 2, 5), makeItem("d3", "three", 2, 1, 0)}));
        });
        op("D.SortByRole(\"key\", true)", [&] { d->SortByRole(QStringLiteral("key"), true); return QStringLiteral("void"); });
        op("D.SortByRules([key ascending], 0)", [&] { d->SortByRules({sortRule("key", true)}, 0); return QStringLiteral("void"); });
        op("D.FindItemValue(0, \"key\"), get(0)", [&] {
            return Canonical::value(d->FindItemValue(0, QStringLiteral("key"))) + QStringLiteral(" / ") + Canonical::value(d->get(0));
        });
        XOLATreeModel* dg = nullptr;
        op("DG = D.GetGroupModel(\"key\", false)", [&] { dg = adoptView(d->GetGroupModel(QStringLiteral("key"), false), QStringLiteral("DG")); return label(dg); });

        // Merging duplicates, with the host's copy and with the built-in one.
        XOLATreeModel* mc = nullptr;
        XOLATreeModel* mb = nullptr;
        op(QStringLiteral("create models MC (flags 4, host copy) and MB (flags 4)"), [&] {
            mc = makeModel(QStringLiteral("MC"), true, 4, true, TranscriptItem::roleNames(), hostCopy);
            mb = makeModel(QStringLiteral("MB"), true, 4);
            mc->AppendItemsList({makeItem("m1", "one", 1), makeItem("m2", "two", 2)});
            mb->AppendItemsList({makeItem("m1", "one", 1), makeItem("m2", "two", 2)});
            return QStringLiteral("void");
        });
        for (XOLATreeModel* model : {mc, mb}) {
            op(label(model) + QStringLiteral(".AppendItem(m1 again, value \"1\")"), [&] { return yes(model->AppendItem(makeItem("m1", "ONE", str("1"), 5))); });
            op(label(model) + QStringLiteral(".PrependItem(m2 again, value 2.0)"), [&] { return yes(model->PrependItem(makeItem("m2", "TWO", 2.0))); });
            op(label(model) + QStringLiteral(".InsertItem(0, m1 again)"), [&] { return yes(model->InsertItem(0, makeItem("m1", "uno", 11))); });
            op(label(model) + QStringLiteral(".AppendItemsList(m3, m3 again)"), [&] { return yes(model->AppendItemsList({makeItem("m3", "three", 3), makeItem("m3", "THREE", 33)})); });
        }
        // A model that keeps removed items alive, and one without a match function.
        XOLATreeModel* keep = nullptr;
        op(QStringLiteral("create model K (flags 2, no match function)"), [&] {
            keep = makeModel(QStringLiteral("K"), true, 2, false);
            return yes(keep->AppendItemsList({makeItem("x1", "x1", 1), makeItem("x2", "x2", 2), makeItem("x3", "x3", 3)}));
        });
        op("K.GetFilterModelByUserDefinedRules(map{min:2}) without a match function", [&] {
            QObject* view = keep->GetFilterModelByUserDefinedRules(QVariantMap{{"min", 2}});
            const QString ids = Recorder::idsOf(view).join(QLatin1Char(' '));
            delete view;
            return QLatin1Char('[') + ids + QLatin1Char(']');
        });
        op("K.RemoveOne(\"x1\")", [&] { return yes(keep->RemoveOne(QStringLiteral("x1"))); });
        op("K.RemoveAll()", [&] { keep->RemoveAll(); return QStringLiteral("void"); });
        teardown(QStringLiteral("edges"));
    }

    FILE* m_out;
    QString m_dataDir;
    QString m_compareDir;
    Recorder m_recorder;
    int m_opNumber = 0;
    int m_matchCalls = 0;
    QString m_lastMatchRule;
    QList<QPointer<XOLATreeModel>> m_models;
    QList<QPointer<XOLATreeModel>> m_childModels;
    QList<QPointer<QObject>> m_views;
    QList<QPointer<XOLATreeItem>> m_items;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Doubles are written with snprintf: the C numeric locale keeps the '.'.
    std::setlocale(LC_NUMERIC, "C");
    qInstallMessageHandler(messageHandler);

    FILE* out = stdout;
    if (argc > 1) {
        out = std::fopen(argv[1], "wb");
        if (!out) {
            std::fprintf(stderr, "cannot write %s\n", argv[1]);
            return 2;
        }
    }
    const QString dataDir = QDir::cleanPath(QStringLiteral(XOLA_TRANSCRIPT_DATA_DIR));
    const QString compareDir = QDir::cleanPath(QStringLiteral(XOLA_COMPARE_DIR));
    {
        Session session(out, dataDir, compareDir);
        session.run();
    }
    if (out != stdout)
        std::fclose(out);
    else
        std::fflush(stdout);
    return 0;
}
