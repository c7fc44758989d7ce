// The file explorer: scans a directory tree into the library's models on a
// worker thread and shows every view of the models in its own pane. With no
// display, or with --screenshot DIR, it tours the panes offscreen, writes one
// PNG per pane and prints what each pane counted.

#include "ExplorerHost.h"
#include "FileItem.h"
#include "ScreenshotRunner.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLibraryInfo>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQml/QQmlContext>
#include <QtQuick/QQuickWindow>

#include <cstdio>
#include <memory>

namespace {

// The tree scanned when none is named: the Qt headers this program was built
// against, which exist wherever it builds.
QString defaultRoot()
{
#ifdef XOLA_EXPLORER_DEFAULT_ROOT
    if (QFileInfo(QStringLiteral(XOLA_EXPLORER_DEFAULT_ROOT)).isDir())
        return QDir::cleanPath(QStringLiteral(XOLA_EXPLORER_DEFAULT_ROOT));
#endif
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QString headers = QLibraryInfo::location(QLibraryInfo::HeadersPath);
#else
    const QString headers = QLibraryInfo::path(QLibraryInfo::HeadersPath);
#endif
    return QFileInfo(headers).isDir() ? headers : QDir::currentPath();
}

bool hasDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.startsWith("offscreen") || platform.startsWith("minimal"))
        return false;
    if (!platform.isEmpty())
        return true;
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

// The documents import com.xolasys.ixolatreemodel: the QML module built beside
// this program when it runs from the build tree, otherwise the installed one.
// With neither, the import still resolves, to the type the models register
// when the host builds them.
void addModuleImportPath(QQmlEngine& engine)
{
    const QStringList candidates{
#ifdef XOLA_EXPLORER_QML_BUILD_DIR
        QStringLiteral(XOLA_EXPLORER_QML_BUILD_DIR),
#endif
#ifdef XOLA_EXPLORER_QML_INSTALL_DIR
        QStringLiteral(XOLA_EXPLORER_QML_INSTALL_DIR),
#endif
    };
    for (const QString& dir : candidates) {
        if (QFileInfo(dir + QStringLiteral("/com/xolasys/ixolatreemodel/qmldir")).isFile()) {
            engine.addImportPath(dir);
            return;
        }
    }
}

QStringList arguments(int argc, char** argv)
{
    QStringList list;
    for (int i = 0; i < argc; ++i)
        list << QString::fromLocal8Bit(argv[i]);
    return list;
}

} // namespace

int main(int argc, char** argv)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Browse, search, group, sort and page a directory tree."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("directory"), QStringLiteral("Tree to scan (default: the Qt headers)."));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Tour the panes offscreen and write PNGs into <dir>."),
                                        QStringLiteral("dir"));
    const QCommandLineOption search(QStringLiteral("search"), QStringLiteral("Words to search for."),
                                    QStringLiteral("words"), QStringLiteral("model item"));
    const QCommandLineOption suffixes(QStringLiteral("suffixes"),
                                      QStringLiteral("Suffixes the search tour also restricts to."),
                                      QStringLiteral("list"), QStringLiteral("h"));
    const QCommandLineOption pageSize(QStringLiteral("page-size"), QStringLiteral("Rows per page."),
                                      QStringLiteral("n"), QStringLiteral("20"));
    const QCommandLineOption windowSize(QStringLiteral("window"), QStringLiteral("Rows in the sliding window."),
                                        QStringLiteral("n"), QStringLiteral("20"));
    const QCommandLineOption windowFirst(QStringLiteral("window-first"),
                                         QStringLiteral("First row of the window (default: a third down)."),
                                         QStringLiteral("row"), QStringLiteral("-1"));
    const QCommandLineOption minSize(QStringLiteral("min-size"),
                                     QStringLiteral("Size in bytes for the native size filter."),
                                     QStringLiteral("bytes"), QStringLiteral("65536"));
    const QCommandLineOption batch(QStringLiteral("batch"), QStringLiteral("Items per cross-thread batch."),
                                   QStringLiteral("n"), QStringLiteral("64"));
    parser.addOptions({screenshot, search, suffixes, pageSize, windowSize, windowFirst, minSize, batch});
    parser.parse(arguments(argc, argv));

    // Decided before the application exists: the platform plugin is chosen then.
    const bool headless = parser.isSet(screenshot) || !hasDisplay();
    if (headless) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
            qputenv("QT_QUICK_BACKEND", "software"); // offscreen has no OpenGL context here
    }

    QGuiApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("xola_explorer"));
    parser.process(app);

    const QStringList positional = parser.positionalArguments();
    const QString root = QDir::cleanPath(QFileInfo(positional.value(0, defaultRoot())).absoluteFilePath());
    if (!QFileInfo(root).isDir()) {
        std::fprintf(stderr, "not a directory: %s\n", qPrintable(root));
        return 2;
    }
    const QString shotDir = parser.isSet(screenshot) ? parser.value(screenshot)
                                                      : QDir::temp().absoluteFilePath(QStringLiteral("xola-explorer"));

    const QVariantMap settings{
        {QStringLiteral("headless"), headless},
        {QStringLiteral("search"), parser.value(search)},
        {QStringLiteral("suffixes"), parser.value(suffixes)},
        {QStringLiteral("pageSize"), qMax(1, parser.value(pageSize).toInt())},
        {QStringLiteral("windowSize"), qMax(1, parser.value(windowSize).toInt())},
        {QStringLiteral("windowFirst"), parser.value(windowFirst).toInt()},
        {QStringLiteral("minSize"), parser.value(minSize).toLongLong()},
    };

    // The host builds its models before any QML loads; the QML module accepts that.
    auto host = std::make_unique<ExplorerHost>(root, settings);
    int exitCode = 0;
    {
        QQmlApplicationEngine engine;
        addModuleImportPath(engine);
        engine.rootContext()->setContextProperty(QStringLiteral("explorer"), host.get());
        engine.load(QUrl(QStringLiteral("qrc:/qml/main.qml")));
        auto* window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine.rootObjects().first());
        if (!window)
            return 1;

        if (headless) {
            ScreenshotRunner runner(window, shotDir);
            QObject::connect(host.get(), &ExplorerHost::scanFinished, &app, [&] {
                std::printf("root %s\n", qPrintable(root));
                exitCode = runner.run();
                app.exit(exitCode);
            }, Qt::QueuedConnection);
            host->startScan(parser.value(batch).toInt());
            app.exec();
        } else {
            QObject::connect(&app, &QCoreApplication::aboutToQuit, host.get(), &ExplorerHost::stopScan);
            host->startScan(parser.value(batch).toInt());
            exitCode = app.exec();
        }
        host->stopScan();
    } // the QML engine and every view it owns go first: they point into the models
    host->releaseModels();
    return exitCode;
}
