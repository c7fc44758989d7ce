#include "SignalLog.h"

#include "IXOLATreeModel.h"
#include "PartialModel.h"
#include "XOLATreeItem.h"


namespace {
QString rows(const char* name, int first, int last)
{
    return QStringLiteral("%1(%2,%3)").arg(QLatin1String(name)).arg(first).arg(last);
}
} // namespace

SignalLog::SignalLog(QObject* object)
    : m_thread(QThread::currentThread())
{
    auto* model = qobject_cast<QAbstractItemModel*>(object);
    if (model) {
        using M = QAbstractItemModel;
        connect(model, &M::rowsAboutToBeInserted, this, [this](const QModelIndex&, int f, int l) { add(rows("rowsAboutToBeInserted", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsInserted, this, [this](const QModelIndex&, int f, int l) { add(rows("rowsInserted", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsAboutToBeRemoved, this, [this](const QModelIndex&, int f, int l) { add(rows("rowsAboutToBeRemoved", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsRemoved, this, [this](const QModelIndex&, int f, int l) { add(rows("rowsRemoved", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsMoved, this, [this](const QModelIndex&, int f, int l, const QModelIndex&, int d) {
            add(QStringLiteral("rowsMoved(%1,%2,%3)").arg(f).arg(l).arg(d)); }, Qt::DirectConnection);
        connect(model, &M::modelAboutToBeReset, this, [this]() { add(QStringLiteral("modelAboutToBeReset()")); }, Qt::DirectConnection);
        connect(model, &M::modelReset, this, [this]() { add(QStringLiteral("modelReset()")); }, Qt::DirectConnection);
        connect(model, &M::layoutAboutToBeChanged, this, [this]() { add(QStringLiteral("layoutAboutToBeChanged()")); }, Qt::DirectConnection);
        connect(model, &M::layoutChanged, this, [this]() { add(QStringLiteral("layoutChanged()")); }, Qt::DirectConnection);
        connect(model, &M::dataChanged, this, [this](const QModelIndex& tl, const QModelIndex& br, const QVector<int>& roles) {
            QString text = QStringLiteral("dataChanged(%1,%2").arg(tl.row()).arg(br.row());
            if (!roles.isEmpty()) {
                QStringList r;
                for (int role : roles)
                    r << QString::number(role);
                text += QStringLiteral(",[%1]").arg(r.join(QLatin1Char(',')));
            }
            add(text + QLatin1Char(')'));
        }, Qt::DirectConnection);
    }
    if (auto* x = qobject_cast<IXOLATreeModel*>(object)) {
        using X = IXOLATreeModel;
        connect(x, &X::rowCountChanged, this, [this]() { add(QStringLiteral("rowCountChanged()")); }, Qt::DirectConnection);
        connect(x, &X::firstPartialModelRowChanged, this, [this]() { add(QStringLiteral("firstPartialModelRowChanged()")); }, Qt::DirectConnection);
        connect(x, &X::itemsRemoved, this, [this](const QStringList& ids) { add(QStringLiteral("itemsRemoved(%1)").arg(ids.join(QLatin1Char(',')))); }, Qt::DirectConnection);
        connect(x, &X::allItemRemoved, this, [this]() { add(QStringLiteral("allItemRemoved()")); }, Qt::DirectConnection);
        connect(x, &X::filterModelChanged, this, [this]() { add(QStringLiteral("filterModelChanged()")); }, Qt::DirectConnection);
        connect(x, &X::pageChanged, this, [this](int p) { add(QStringLiteral("pageChanged(%1)").arg(p)); }, Qt::DirectConnection);
        connect(x, &X::totalPageChanged, this, [this](int t) { add(QStringLiteral("totalPageChanged(%1)").arg(t)); }, Qt::DirectConnection);
    } else if (auto* partial = qobject_cast<PartialModel*>(object)) {
        connect(partial, &PartialModel::rowCountChanged, this, [this]() { add(QStringLiteral("rowCountChanged()")); }, Qt::DirectConnection);
    }
}

QStringList SignalLog::take()
{
    QStringList result = m_entries;
    m_entries.clear();
    return result;
}

void SignalLog::add(const QString& entry)
{
    if (QThread::currentThread() != m_thread)
        m_allOnOwnThread = false;
    m_entries << entry;
}

ItemSignalLog::ItemSignalLog(QObject* object)
{
    if (auto* item = qobject_cast<XOLATreeItem*>(object)) {
        connect(item, &XOLATreeItem::valueChanged, this, [this]() { m_entries << QStringLiteral("valueChanged()"); }, Qt::DirectConnection);
        connect(item, &XOLATreeItem::childModelValueChanged, this, [this]() { m_entries << QStringLiteral("childModelValueChanged()"); }, Qt::DirectConnection);
    }
}

QStringList ItemSignalLog::take()
{
    QStringList result = m_entries;
    m_entries.clear();
    return result;
}
