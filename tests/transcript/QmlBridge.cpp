#include "QmlBridge.h"

#include "Canonical.h"
#include "Recorder.h"

#include <QtCore/QMetaType>

#include <cstdio>

QmlBridge::QmlBridge(Recorder* recorder, const QString& dataDir, const QString& compareDir, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_dataDir(dataDir)
    , m_compareDir(compareDir)
{
}

void QmlBridge::line(const QString& text)
{
    m_recorder->note(QStringLiteral("[qml] ") + text);
}

void QmlBridge::watch(const QString& name, QObject* view)
{
    if (!view) {
        m_recorder->note(QStringLiteral("[qml] watch ") + name + QStringLiteral(": no object"));
        return;
    }
    m_recorder->watch(view, name);
}

QString QmlBridge::objectLabel(const QVariant& value) const
{
    if (value.userType() == QMetaType::QObjectStar) {
        const QObject* object = *static_cast<QObject* const*>(value.constData());
        return object ? m_recorder->label(object) : QString();
    }
    if (value.canConvert<QObject*>()) {
        // Pointers to QObject subclasses carry their own type.
        const int type = value.userType();
        if (type != QMetaType::QVariantMap && type != QMetaType::QVariantList && type != QMetaType::QString) {
            QObject* object = value.value<QObject*>();
            if (object)
                return m_recorder->label(object);
        }
    }
    return QString();
}

void QmlBridge::problem(const QString& text) const
{
    std::fprintf(stderr, "qml problem: %s\n", text.toUtf8().constData());
}

QString QmlBridge::dataFile(const QString& name) const
{
    return m_dataDir + QLatin1Char('/') + name;
}

QString QmlBridge::compareFile(const QString& name) const
{
    return m_compareDir + QLatin1Char('/') + name;
}
