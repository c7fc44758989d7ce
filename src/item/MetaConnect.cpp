#include "MetaConnect.h"

#include <QtCore/QHash>
#include <QtCore/QPair>

namespace {
enum Kind { SignalKind, MethodKind };

int cachedIndex(const QMetaObject* meta, const char* signature, Kind kind)
{
    // Per thread, so no lock is needed; classes and literals live as long as the program.
    thread_local QHash<QPair<const QMetaObject*, const char*>, int> cache;
    const QPair<const QMetaObject*, const char*> key(meta, signature);
    const auto it = cache.constFind(key);
    if (it != cache.constEnd())
        return it.value();
    const int index = kind == SignalKind ? meta->indexOfSignal(signature) : meta->indexOfMethod(signature);
    cache.insert(key, index);
    return index;
}
} // namespace

QMetaObject::Connection MetaConnect::connect(const QObject* sender, const char* signal, const QObject* receiver,
                                             const char* method, Qt::ConnectionType type)
{
    if (!sender || !receiver)
        return QMetaObject::Connection();
    const int signalIndex = cachedIndex(sender->metaObject(), signal, SignalKind);
    const int methodIndex = cachedIndex(receiver->metaObject(), method, MethodKind);
    if (signalIndex < 0 || methodIndex < 0)
        return QMetaObject::Connection();
    return QMetaObject::connect(sender, signalIndex, receiver, methodIndex, type);
}
