#include "NoticeBalance.h"

namespace {
const char* kindName(int kind)
{
    return kind == 1 ? "insert" : "remove";
}
} // namespace

NoticeBalance::NoticeBalance(QAbstractItemModel* model, const QString& name)
    : QObject(model)
    , m_model(model)
    , m_name(name)
    , m_announced(model ? model->rowCount() : 0)
{
    if (!model)
        return;
    using M = QAbstractItemModel;
    const auto direct = Qt::DirectConnection;
    connect(model, &M::rowsAboutToBeInserted, this,
            [this](const QModelIndex&, int f, int l) { begin(Open::Insert, f, l); }, direct);
    connect(model, &M::rowsInserted, this, [this](const QModelIndex&, int f, int l) { end(Open::Insert, f, l); }, direct);
    connect(model, &M::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int f, int l) { begin(Open::Remove, f, l); }, direct);
    connect(model, &M::rowsRemoved, this, [this](const QModelIndex&, int f, int l) { end(Open::Remove, f, l); }, direct);
    connect(model, &M::modelAboutToBeReset, this, [this]() {
        ++m_traffic;
        if (m_resetOpen)
            problem(QStringLiteral("modelAboutToBeReset while a reset is open"));
        m_resetOpen = true;
    }, direct);
    connect(model, &M::modelReset, this, [this]() {
        ++m_traffic;
        if (!m_resetOpen)
            ++m_loneResets;
        m_resetOpen = false;
        resync();
    }, direct);
    connect(model, &M::layoutAboutToBeChanged, this, [this]() {
        ++m_traffic;
        if (m_layoutOpen)
            problem(QStringLiteral("layoutAboutToBeChanged while a layout change is open"));
        m_layoutOpen = true;
    }, direct);
    connect(model, &M::layoutChanged, this, [this]() {
        ++m_traffic;
        if (!m_layoutOpen)
            ++m_loneLayouts;
        m_layoutOpen = false;
    }, direct);
    connect(model, &M::dataChanged, this, [this](const QModelIndex& topLeft, const QModelIndex& bottomRight) {
        ++m_traffic;
        // The parent item's relay passes every data change on, whatever rows it names.
        ++m_relayedTraffic;
        // A change over no rows (a sort of an empty model) moves no listener.
        if (topLeft.row() >= 0 && bottomRight.row() >= 0)
            ++m_rowTraffic;
    }, direct);
}

QStringList NoticeBalance::takeProblems()
{
    QStringList result = m_problems;
    m_problems.clear();
    return result;
}

QString NoticeBalance::openNotice() const
{
    if (m_open != Open::Nothing)
        return QStringLiteral("%1(%2,%3) without its end").arg(QLatin1String(kindName(int(m_open)))).arg(m_openFirst).arg(m_openLast);
    if (m_resetOpen)
        return QStringLiteral("modelAboutToBeReset without modelReset");
    if (m_layoutOpen)
        return QStringLiteral("layoutAboutToBeChanged without layoutChanged");
    return QString();
}

void NoticeBalance::resync()
{
    if (m_model)
        m_announced = m_model->rowCount();
}

void NoticeBalance::problem(const QString& text)
{
    m_problems << m_name + QStringLiteral(": ") + text;
}

void NoticeBalance::begin(Open kind, int first, int last)
{
    ++m_traffic;
    ++m_rowTraffic;
    if (m_open != Open::Nothing)
        problem(QStringLiteral("%1(%2,%3) begins inside an open %4(%5,%6)")
                    .arg(QLatin1String(kindName(int(kind)))).arg(first).arg(last)
                    .arg(QLatin1String(kindName(int(m_open)))).arg(m_openFirst).arg(m_openLast));
    if (first < 0 || last < first)
        problem(QStringLiteral("%1(%2,%3) names no rows").arg(QLatin1String(kindName(int(kind)))).arg(first).arg(last));
    if (kind == Open::Insert && first > m_announced)
        problem(QStringLiteral("insert(%1,%2) past the announced end %3").arg(first).arg(last).arg(m_announced));
    if (kind == Open::Remove && last >= m_announced)
        problem(QStringLiteral("remove(%1,%2) past the announced end %3").arg(first).arg(last).arg(m_announced));
    m_open = kind;
    m_openFirst = first;
    m_openLast = last;
}

void NoticeBalance::end(Open kind, int first, int last)
{
    ++m_traffic;
    ++m_rowTraffic;
    ++m_countTraffic;
    ++m_relayedTraffic;
    if (m_open != kind || m_openFirst != first || m_openLast != last) {
        problem(QStringLiteral("end of %1(%2,%3) does not match the open notice")
                    .arg(QLatin1String(kindName(int(kind)))).arg(first).arg(last));
    }
    m_open = Open::Nothing;
    const int rows = last - first + 1;
    m_announced += kind == Open::Insert ? rows : -rows;
}
