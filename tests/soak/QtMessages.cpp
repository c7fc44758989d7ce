#include "QtMessages.h"

#include <QtCore/QMap>
#include <QtCore/QMutex>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <atomic>
#include <vector>

namespace QtMessages {

namespace {

QtMessageHandler g_previous = nullptr;
std::atomic<long> g_warnings{0};
QMutex g_mutex;
//! Texts with their numbers blanked out, so that one kind of message counts once.
QMap<QString, long> g_kinds;
const int kMaxKinds = 50;

void handler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) {
        ++g_warnings;
        static const QRegularExpression numbers(QStringLiteral("\\d+"));
        QString kind = message;
        kind.replace(numbers, QStringLiteral("N"));
        QMutexLocker lock(&g_mutex);
        auto it = g_kinds.find(kind);
        if (it != g_kinds.end())
            ++it.value();
        else if (g_kinds.size() < kMaxKinds)
            g_kinds.insert(kind, 1);
    }
    if (g_previous)
        g_previous(type, context, message);
}

} // namespace

void install()
{
    g_previous = qInstallMessageHandler(handler);
}

long warnings()
{
    return g_warnings.load();
}

QStringList summary(int limit)
{
    QMutexLocker lock(&g_mutex);
    std::vector<std::pair<long, QString>> kinds;
    for (auto it = g_kinds.constBegin(); it != g_kinds.constEnd(); ++it)
        kinds.emplace_back(it.value(), it.key());
    std::stable_sort(kinds.begin(), kinds.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    QStringList result;
    for (const auto& kind : kinds) {
        if (result.size() >= limit)
            break;
        result << QStringLiteral("%1 x %2").arg(kind.first).arg(kind.second);
    }
    return result;
}

} // namespace QtMessages
