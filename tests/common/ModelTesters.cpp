#include "ModelTesters.h"

#include "FlatProxy.h"
#include "TestSupport.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QIdentityProxyModel>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QTest>

#include <atomic>
#include <memory>
#include <vector>

namespace {

// ---- the departures and the complaints they bring ----------------------------------

// Checks of Qt's tester, as "actual == expected" for its comparisons and as the
// statement for its other checks; the same text on Qt 5 and Qt 6.
const char* const kInsertedCount = "model->rowCount(parent) == c.oldSize + (end - start + 1)";
const char* const kRemovedCount = "model->rowCount(parent) == c.oldSize - (end - start + 1)";
const char* const kRowBeforeInserted = "model->data(model->index(start - 1, 0, c.parent)) == c.last";
const char* const kEmptyRangeChanged = "topLeft.isValid()";
const char* const kChangedPastTheEnd = "bottomRight.row() < rowCount";
const char* const kNegativeCount = "model->rowCount() >= 0";
const char* const kNoFirstRow = "topIndex.isValid()";
const char* const kNoRowZero = "model->index(0, 0).isValid()";
// The pairing of begin and end notices, checked here (see Watch::begin/end).
const char* const kLoneLayoutChanged = "layoutChanged() without layoutAboutToBeChanged()";
const char* const kLoneModelReset = "modelReset() without modelAboutToBeReset()";

// What a finding names for each kind of model: the library's model, a group
// view's member model, the four views.
const char* const kModel = "model";
const char* const kMembers = "member model";
const char* const kFilter = "filter view";
const char* const kGroup = "group view";
const char* const kPaging = "paging view";
const char* const kWindow = "window";

struct DepartureInfo
{
    ModelTesters::Departure departure;
    const char* name;
    //! The kinds of model that show it.
    QStringList kinds;
    //! The complaints it brings; a case declaring it must see at least one.
    QStringList checks;
};

const std::vector<DepartureInfo>& departureTable()
{
    static const std::vector<DepartureInfo> table{
        {ModelTesters::PrependAtOldEnd, "PrependAtOldEnd", {kModel}, {kRowBeforeInserted}},
        {ModelTesters::ListLoadAfterChange, "ListLoadAfterChange", {kModel}, {kInsertedCount, kRemovedCount}},
        {ModelTesters::FilterEntryAfterChange, "FilterEntryAfterChange", {kFilter}, {kInsertedCount}},
        {ModelTesters::GroupRebuildAfterChange, "GroupRebuildAfterChange", {kGroup}, {kInsertedCount}},
        {ModelTesters::PagingRowsAfterChange, "PagingRowsAfterChange", {kPaging}, {kInsertedCount, kRemovedCount}},
        {ModelTesters::PagingRefreshesEmptyPage, "PagingRefreshesEmptyPage", {kPaging}, {kChangedPastTheEnd}},
        {ModelTesters::WindowRowsAfterChange, "WindowRowsAfterChange", {kWindow}, {kInsertedCount, kRemovedCount}},
        {ModelTesters::WindowNegativeCount, "WindowNegativeCount", {kWindow}, {kNegativeCount, kNoFirstRow, kNoRowZero}},
        {ModelTesters::WindowChangesPastItsRows, "WindowChangesPastItsRows", {kWindow}, {kChangedPastTheEnd}},
        {ModelTesters::ScriptSortLoneReset, "ScriptSortLoneReset", {kModel}, {kLoneModelReset}},
        {ModelTesters::FunctionSortLoneLayout, "FunctionSortLoneLayout", {kModel}, {kLoneLayoutChanged}},
        {ModelTesters::EmptySortDataChanged, "EmptySortDataChanged", {kModel}, {kEmptyRangeChanged}},
        {ModelTesters::ViewsForwardLoneEnds, "ViewsForwardLoneEnds", {kFilter, kGroup, kPaging, kWindow},
         {kLoneLayoutChanged, kLoneModelReset}},
    };
    return table;
}

const DepartureInfo* infoOf(ModelTesters::Departure departure)
{
    for (const DepartureInfo& info : departureTable()) {
        if (info.departure == departure)
            return &info;
    }
    return nullptr;
}

bool explains(const DepartureInfo& info, const QString& kind, const QString& check)
{
    return info.kinds.contains(kind) && info.checks.contains(check);
}

// ---- what the testers see ---------------------------------------------------------


//! What stands between the parenthesis at open and the one that closes it.
QString balancedAfter(const QString& text, int open)
{
    int depth = 0;
    for (int i = open; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('('))
            ++depth;
        else if (text.at(i) == QLatin1Char(')') && --depth == 0)
            return text.mid(open + 1, i - open - 1);
    }
    return QString();
}

//! The check a tester complaint names: "actual == expected" for a comparison,
//! the statement otherwise.
QString checkOf(const QString& complaint)
{
    const int actual = complaint.indexOf(QLatin1String("Actual ("));
    const int expected = complaint.indexOf(QLatin1String("Expected ("));
    if (actual >= 0 && expected > actual)
        return balancedAfter(complaint, actual + 7) + QLatin1String(" == ") + balancedAfter(complaint, expected + 9);
    const int returned = complaint.indexOf(QLatin1String(" returned FALSE"));
    if (complaint.startsWith(QLatin1String("FAIL! ")) && returned > 0 && complaint.at(returned - 1) == QLatin1Char(')')) {
        // "FAIL! <statement> (<description>) returned FALSE (<file>:<line>)"
        int depth = 0;
        for (int i = returned - 1; i > 6; --i) {
            if (complaint.at(i) == QLatin1Char(')'))
                ++depth;
            else if (complaint.at(i) == QLatin1Char('(') && --depth == 0)
                return complaint.mid(6, i - 6).trimmed();
        }
    }
    return complaint.simplified();
}

QString kindOf(const QAbstractItemModel* model)
{
    if (model->inherits("FilterModelImp"))
        return QString::fromLatin1(kFilter);
    if (model->inherits("GroupModelImp"))
        return QString::fromLatin1(kGroup);
    if (model->inherits("PagingModelImp"))
        return QString::fromLatin1(kPaging);
    if (model->inherits("PartialModel"))
        return QString::fromLatin1(kWindow);
    if (model->parent() && model->parent()->inherits("GroupModelImp"))
        return QString::fromLatin1(kMembers);
    if (model->inherits("XOLATreeModel"))
        return QString::fromLatin1(kModel);
    return QString::fromLatin1(model->metaObject()->className());
}

// The pairing of begin and end notices, as Qt 6's tester has it: a begin while
// another change is open, and an end that is not the open change's, are
// complaints; either leaves the open change as it was.
enum Change { NoChange, Inserting, Removing, Moving, Resetting, Relayouting };

const char* beginNotice(Change change)
{
    switch (change) {
    case Inserting: return "rowsAboutToBeInserted()";
    case Removing: return "rowsAboutToBeRemoved()";
    case Moving: return "rowsAboutToBeMoved()";
    case Resetting: return "modelAboutToBeReset()";
    case Relayouting: return "layoutAboutToBeChanged()";
    case NoChange: break;
    }
    return "";
}

const char* endNotice(Change change)
{
    switch (change) {
    case Inserting: return "rowsInserted()";
    case Removing: return "rowsRemoved()";
    case Moving: return "rowsMoved()";
    case Resetting: return "modelReset()";
    case Relayouting: return "layoutChanged()";
    case NoChange: break;
    }
    return "";
}

class CaseState;

struct Finding
{
    QString label;
    QString kind;
    QString check;
    //! The notice the model sent when it was first found, for the report.
    QString notice;
    int count = 0;
};

//! One watched model: its proxy and tester, and the bracket around each of the
//! tester's notices that tells the message handler whose complaint it hears.
class Watch : public QObject
{
    Q_OBJECT
public:
    Watch(CaseState* state, QAbstractItemModel* model, const QString& kind, const QString& label);
    ~Watch() override;

    QPointer<QAbstractItemModel> model;
    QString kind;
    QString label;
    Change open = NoChange;
    //! The notice the tester is handling ("attached" for its first walk).
    QString notice;
    //! A pairing complaint of this class at the notice being handled.
    bool pairingComplaint = false;
    //! Pairing complaints of Qt's own tester at the notice being handled.
    int testerPairingComplaints = 0;

public slots:
    void enter();
    void leave();

private:
    void begin(Change change);
    void end(Change change);
    void connectBrackets(const char* slot);

    CaseState* m_state;
    std::unique_ptr<FlatProxy> m_proxy;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

class CaseState
{
public:
    CaseState()
        : thread(QThread::currentThread())
    {
    }

    void add(const Watch* watch, const QString& check, const QString& notice)
    {
        const QString label = watch ? watch->label : QStringLiteral("unknown model");
        const QString kind = watch ? watch->kind : QString();
        for (Finding& finding : findings) {
            if (finding.label == label && finding.check == check) {
                ++finding.count;
                return;
            }
        }
        findings.append({label, kind, check, notice, 1});
    }

    QThread* thread;
    std::vector<std::unique_ptr<Watch>> watches;
    QMap<QString, int> watchedKinds;
    ModelTesters::Departures expected;
    QList<Finding> findings;
    //! The watches whose tester is handling a notice, innermost last.
    QList<Watch*> handling;
};

CaseState* s_case = nullptr;
std::atomic<QtMessageHandler> s_previousHandler{nullptr};

void captureMessages(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    // Cases run on the main thread; messages of other threads pass straight on.
    const QCoreApplication* app = QCoreApplication::instance();
    CaseState* state = app && QThread::currentThread() == app->thread() ? s_case : nullptr;
    const bool fromTester = context.category && qstrcmp(context.category, "qt.modeltest") == 0;
    if (state && (fromTester || !state->handling.isEmpty())) {
        Watch* watch = state->handling.isEmpty() ? nullptr : state->handling.last();
        if (fromTester && (type == QtWarningMsg || type == QtCriticalMsg)) {
            const QString check = checkOf(message);
            // Qt 6's tester pairs begin and end notices itself; this class does
            // that on every Qt (see Watch::begin and Watch::end).
            if (check.startsWith(QLatin1String("changeInFlight == "))) {
                if (watch)
                    ++watch->testerPairingComplaints;
            } else {
                state->add(watch, check, watch ? watch->notice : QString());
            }
            return;
        }
        // Around a neighbour that does not match, the tester lists every row
        // with qDebug(): the finding says enough.
        if (type == QtDebugMsg && watch)
            return;
    }
    if (QtMessageHandler previous = s_previousHandler.load())
        previous(type, context, message);
}

Watch::Watch(CaseState* state, QAbstractItemModel* watched, const QString& kindName, const QString& labelText)
    : model(watched)
    , kind(kindName)
    , label(labelText)
    , m_state(state)
{
    // The pairing sees each notice before the proxy passes it to the tester.
    using M = QAbstractItemModel;
    connect(watched, &M::rowsAboutToBeInserted, this, [this] { begin(Inserting); });
    connect(watched, &M::rowsInserted, this, [this] { end(Inserting); });
    connect(watched, &M::rowsAboutToBeRemoved, this, [this] { begin(Removing); });
    connect(watched, &M::rowsRemoved, this, [this] { end(Removing); });
    connect(watched, &M::rowsAboutToBeMoved, this, [this] { begin(Moving); });
    connect(watched, &M::rowsMoved, this, [this] { end(Moving); });
    connect(watched, &M::modelAboutToBeReset, this, [this] { begin(Resetting); });
    connect(watched, &M::modelReset, this, [this] { end(Resetting); });
    connect(watched, &M::layoutAboutToBeChanged, this, [this] { begin(Relayouting); });
    connect(watched, &M::layoutChanged, this, [this] { end(Relayouting); });

    m_proxy.reset(new FlatProxy(watched));
    connectBrackets("enter()");
    enter();
    notice = QStringLiteral("attached");
    m_tester.reset(new QAbstractItemModelTester(m_proxy.get(), QAbstractItemModelTester::FailureReportingMode::Warning));
    leave();
    connectBrackets("leave()");
}

Watch::~Watch()
{
    m_tester.reset();
    m_proxy.reset();
}

void Watch::connectBrackets(const char* slot)
{
    const QMetaObject& mo = QAbstractItemModel::staticMetaObject;
    const QMetaMethod target = metaObject()->method(metaObject()->indexOfSlot(slot));
    for (int i = mo.methodOffset(); i < mo.methodCount(); ++i) {
        const QMetaMethod signal = mo.method(i);
        if (signal.methodType() == QMetaMethod::Signal && !(signal.attributes() & QMetaMethod::Cloned))
            connect(m_proxy.get(), signal, this, target, Qt::DirectConnection);
    }
}

void Watch::enter()
{
    m_state->handling.append(this);
    if (sender())
        notice = QString::fromLatin1(sender()->metaObject()->method(senderSignalIndex()).name()) + QLatin1String("()");
}

void Watch::leave()
{
    if (!m_state->handling.isEmpty())
        m_state->handling.removeLast();
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Qt 6's tester pairs notices too: its verdict and this class's must agree
    // on every notice, or leaving its complaints out would hide something.
    if ((testerPairingComplaints > 0) != pairingComplaint)
        m_state->add(this, QStringLiteral("the pairing of notices disagrees with Qt's tester"), notice);
#endif
    testerPairingComplaints = 0;
    pairingComplaint = false;
}

void Watch::begin(Change change)
{
    if (open != NoChange) {
        pairingComplaint = true;
        m_state->add(this, QStringLiteral("%1 while %2 is open").arg(QLatin1String(beginNotice(change)),
                                                                      QLatin1String(beginNotice(open))),
                     QLatin1String(beginNotice(change)));
        return;
    }
    open = change;
}

void Watch::end(Change change)
{
    if (open != change) {
        pairingComplaint = true;
        if (open == NoChange)
            m_state->add(this, QStringLiteral("%1 without %2").arg(QLatin1String(endNotice(change)),
                                                                   QLatin1String(beginNotice(change))),
                         QLatin1String(endNotice(change)));
        else
            m_state->add(this, QStringLiteral("%1 while %2 is open").arg(QLatin1String(endNotice(change)),
                                                                         QLatin1String(beginNotice(open))),
                         QLatin1String(endNotice(change)));
        return;
    }
    open = NoChange;
}

} // namespace

void ModelTesters::startCase()
{
    if (s_case)
        finishCase();
    s_case = new CaseState;
    TestSupport::setMadeModelHook([](QObject* model) { watchObject(model); });
    QtMessageHandler previous = qInstallMessageHandler(captureMessages);
    if (previous != captureMessages)
        s_previousHandler.store(previous);
}

QString ModelTesters::finishCase()
{
    if (!s_case)
        return QString();
    std::unique_ptr<CaseState> state(s_case);
    TestSupport::setMadeModelHook(nullptr);
    state->watches.clear();
    s_case = nullptr;
    qInstallMessageHandler(s_previousHandler.load());

    QStringList unexplained;
    for (const Finding& finding : qAsConst(state->findings)) {
        bool explained = false;
        for (Departure departure : qAsConst(state->expected))
            explained = explained || explains(*infoOf(departure), finding.kind, finding.check);
        if (!explained)
            unexplained << QStringLiteral("  %1: %2 (%3 times, first at %4)")
                               .arg(finding.label, finding.check)
                               .arg(finding.count)
                               .arg(finding.notice);
    }
    QStringList missing;
    for (Departure departure : qAsConst(state->expected)) {
        bool seen = false;
        for (const Finding& finding : qAsConst(state->findings))
            seen = seen || explains(*infoOf(departure), finding.kind, finding.check);
        if (!seen)
            missing << QStringLiteral("  %1").arg(name(departure));
    }
    QString report;
    if (!unexplained.isEmpty())
        report += QStringLiteral("Model testers found what the case did not declare:\n") + unexplained.join(QLatin1Char('\n'));
    if (!missing.isEmpty()) {
        if (!report.isEmpty())
            report += QLatin1Char('\n');
        report += QStringLiteral("The case declared departures the model testers did not find:\n") + missing.join(QLatin1Char('\n'));
    }
    // A case that failed already says why; what the testers found is shown
    // beside it, not as a second failure.
    if (!report.isEmpty() && QTest::currentTestFailed()) {
        qWarning("%s", qPrintable(report));
        return QString();
    }
    return report;
}

void ModelTesters::watchObject(QObject* object)
{
    auto* model = qobject_cast<QAbstractItemModel*>(object);
    if (!s_case || !model || QThread::currentThread() != s_case->thread)
        return;
    for (const auto& watch : s_case->watches) {
        if (watch->model == model)
            return;
    }
    const QString kind = kindOf(model);
    const int number = ++s_case->watchedKinds[kind];
    s_case->watches.emplace_back(new Watch(s_case, model, kind, QStringLiteral("%1 #%2").arg(kind).arg(number)));
    Watch* watch = s_case->watches.back().get();
    // A model may go before the case ends; its tester goes with it.
    QObject::connect(model, &QObject::destroyed, watch, [watch] {
        CaseState* state = s_case;
        if (!state)
            return;
        for (auto it = state->watches.begin(); it != state->watches.end(); ++it) {
            if (it->get() == watch) {
                std::unique_ptr<Watch> gone = std::move(*it);
                state->watches.erase(it);
                return;
            }
        }
    });
}

void ModelTesters::expect(Departure departure)
{
    if (!s_case) {
        qWarning("ModelTesters::expect(%s) outside a case", qPrintable(name(departure)));
        return;
    }
    if (!s_case->expected.contains(departure))
        s_case->expected.append(departure);
}

void ModelTesters::expect(const Departures& departures)
{
    for (Departure departure : departures)
        expect(departure);
}

bool ModelTesters::caseOpen()
{
    return s_case != nullptr;
}

QString ModelTesters::name(Departure departure)
{
    const DepartureInfo* info = infoOf(departure);
    return info ? QString::fromLatin1(info->name) : QStringLiteral("departure %1").arg(int(departure));
}

#include "ModelTesters.moc"

void ModelTesterSuite::init()
{
    ModelTesters::startCase();
}

void ModelTesterSuite::cleanup()
{
    TestSupport::flushDeferredDeletes();
    const QString findings = ModelTesters::finishCase();
    QVERIFY2(findings.isEmpty(), qPrintable(findings));
}
