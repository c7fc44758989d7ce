// Runs every tst_*.qml TestCase in this directory, headless.

#include "QmlTestHost.h"

#include "XOLATreeModel.h"

#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtQuickTest/quicktest.h>

class Setup : public QObject
{
    Q_OBJECT
public slots:
    void applicationAvailable()
    {
        // The QML type is registered by the first model constructed.
        IXOLATreeModel* model = nullptr;
        CreateXOLATreeModel(&model, nullptr, {}, 0, nullptr, nullptr);
        DeleteXOLATreeModel(&model);
    }

    void qmlEngineAvailable(QQmlEngine* engine)
    {
        auto* host = new QmlTestHost(engine);
        host->setEngine(engine);
        engine->rootContext()->setContextProperty(QStringLiteral("host"), host);
    }
};

QUICK_TEST_MAIN_WITH_SETUP(xolaqml, Setup)

#include "tst_qml.moc"
