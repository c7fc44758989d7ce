// A host and the installed QML module in one process. The model registers
// IXOLATreeModel itself when a host constructs it, and the module's plugin
// registers it when a document imports the module; whichever comes first,
// nothing is logged and documents see one type, the host's models included.
//
// The registrations happen once per process, so CTest runs each test function
// in a process of its own, naming it on the command line.

#include "XOLATreeModel.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

#include <memory>

namespace {

//! Records every message logged while it exists, instead of printing it.
class MessageLog
{
public:
    MessageLog() { s_previous = qInstallMessageHandler(&MessageLog::record); }
    ~MessageLog() { qInstallMessageHandler(s_previous); }

    QStringList take()
    {
        const QStringList taken = s_messages;
        s_messages.clear();
        return taken;
    }

private:
    static void record(QtMsgType, const QMessageLogContext&, const QString& message) { s_messages << message; }

    static QtMessageHandler s_previous;
    static QStringList s_messages;
};

QtMessageHandler MessageLog::s_previous = nullptr;
QStringList MessageLog::s_messages;

const char* const document = R"(
import QtQml 2.15
import com.xolasys.ixolatreemodel 1.0

QtObject {
    property IXOLATreeModel made: IXOLATreeModel {}
    property IXOLATreeModel fromHost: hostModel
    property int head: IXOLATreeModel.POS_HEAD
    property int keepSorting: IXOLATreeModel.KeepSorting
    property int hostCount: hostModel.count
    property int rowOfB: hostModel.FindItemRow("b")
    property int filtered: hostModel.GetFilterModel([{RoleName: "nameRole", Rule: IXOLATreeModel.Eq, Value: "Beta"}]).count
}
)";

struct Host
{
    Host()
    {
        IXOLATreeModel* created = nullptr;
        if (CreateXOLATreeModel(&created, nullptr, {}, 0, nullptr, nullptr)) {
            model.reset(static_cast<XOLATreeModel*>(created));
            model->AppendItemsList({new XOLATreeItem(QStringLiteral("a"), QStringLiteral("Alpha")),
                                    new XOLATreeItem(QStringLiteral("b"), QStringLiteral("Beta"))});
        }
    }

    std::unique_ptr<XOLATreeModel> model;
};

//! Loads the document in a new engine over the host's model and checks what it reads.
void loadDocument(Host& host)
{
    QVERIFY(host.model);
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral(XOLA_QML_IMPORT_DIR));
    engine.rootContext()->setContextProperty(QStringLiteral("hostModel"), host.model.get());
    QQmlComponent component(&engine);
    component.setData(document, QUrl());
    std::unique_ptr<QObject> object(component.create());
    QVERIFY2(object, qPrintable(component.errorString()));

    // IXOLATreeModel {} is the library's model...
    auto* made = qobject_cast<XOLATreeModel*>(object->property("made").value<QObject*>());
    QVERIFY(made);
    QCOMPARE(made->rowCount(), 0);
    // ...and a model the host made is an IXOLATreeModel to the document.
    QCOMPARE(object->property("fromHost").value<QObject*>(), static_cast<QObject*>(host.model.get()));
    QCOMPARE(object->property("head").toInt(), int(IXOLATreeModel::POS_HEAD));
    QCOMPARE(object->property("keepSorting").toInt(), int(IXOLATreeModel::KeepSorting));
    QCOMPARE(object->property("hostCount").toInt(), 2);
    QCOMPARE(object->property("rowOfB").toInt(), 1);
    QCOMPARE(object->property("filtered").toInt(), 1);
}

} // namespace

class TestModuleHost : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString qmldir = QStringLiteral(XOLA_QML_IMPORT_DIR "/com/xolasys/ixolatreemodel/qmldir");
        QVERIFY2(QFileInfo(qmldir).isFile(), qPrintable(qmldir + QStringLiteral(" is not installed")));
    }

    void hostModelBeforeDocument()
    {
        MessageLog log;
        // Given a model the host made before any QML was loaded
        Host host;
        // When documents importing the module load, in two engines one after the other
        loadDocument(host);
        if (QTest::currentTestFailed())
            return;
        loadDocument(host);
        if (QTest::currentTestFailed())
            return;
        // and the host makes more models
        Host later;
        loadDocument(later);
        if (QTest::currentTestFailed())
            return;
        // Then
        const QStringList logged = log.take();
        QVERIFY2(logged.isEmpty(), qPrintable(logged.join(QLatin1Char('\n'))));
    }

    void documentBeforeHostModel()
    {
        MessageLog log;
        // Given a document that imported the module and made a model before the host made any
        {
            QQmlEngine engine;
            engine.addImportPath(QStringLiteral(XOLA_QML_IMPORT_DIR));
            QQmlComponent component(&engine);
            component.setData("import com.xolasys.ixolatreemodel 1.0\nIXOLATreeModel {}", QUrl());
            std::unique_ptr<QObject> object(component.create());
            QVERIFY2(qobject_cast<XOLATreeModel*>(object.get()), qPrintable(component.errorString()));
        }
        // When the host makes its models and hands one to another document
        Host host;
        Host another;
        loadDocument(host);
        if (QTest::currentTestFailed())
            return;
        // Then
        QVERIFY(another.model);
        const QStringList logged = log.take();
        QVERIFY2(logged.isEmpty(), qPrintable(logged.join(QLatin1Char('\n'))));
    }
};

QTEST_GUILESS_MAIN(TestModuleHost)
#include "tst_modulehost.moc"
