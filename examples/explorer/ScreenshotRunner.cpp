#include "ScreenshotRunner.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtCore/QVariant>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>
#include <QtQml/QJSValue>
#include <QtQuick/QQuickWindow>

#include <cstdio>

ScreenshotRunner::ScreenshotRunner(QQuickWindow* window, const QString& directory, QObject* parent)
    : QObject(parent)
    , m_window(window)
    , m_directory(directory)
{
}

int ScreenshotRunner::run()
{
    if (!QDir().mkpath(m_directory)) {
        std::fprintf(stderr, "cannot create %s\n", qPrintable(m_directory));
        return 1;
    }
    if (!waitForExposure()) {
        std::fprintf(stderr, "the window was never exposed\n");
        return 1;
    }
    int failures = 0;
    const QStringList panes = m_window->property("paneNames").toStringList();
    for (const QString& pane : panes) {
        QVariant lines;
        QMetaObject::invokeMethod(m_window, "showcase", Q_RETURN_ARG(QVariant, lines), Q_ARG(QVariant, pane));
        if (lines.userType() == qMetaTypeId<QJSValue>())
            lines = lines.value<QJSValue>().toVariant();
        settle(250);
        if (!shoot(pane))
            ++failures;
        for (const QString& line : lines.toStringList())
            std::printf("%s\n", qPrintable(line));
        std::fflush(stdout);
    }
    return failures == 0 && !panes.isEmpty() ? 0 : 1;
}

bool ScreenshotRunner::waitForExposure()
{
    QElapsedTimer clock;
    clock.start();
    while (!m_window->isExposed() && clock.elapsed() < 10000)
        settle(20);
    return m_window->isExposed();
}

void ScreenshotRunner::settle(int milliseconds)
{
    // Lets the scene graph polish, lay out and render the changed pane.
    m_window->requestUpdate();
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool ScreenshotRunner::shoot(const QString& pane)
{
    QScreen* screen = QGuiApplication::primaryScreen();
    const QImage image = screen ? screen->grabWindow(m_window->winId()).toImage() : QImage();
    const QString file = QDir(m_directory).absoluteFilePath(QStringLiteral("explorer-%1.png").arg(pane));
    if (image.isNull() || !image.save(file, "PNG")) {
        std::fprintf(stderr, "could not grab or write %s\n", qPrintable(file));
        return false;
    }
    std::printf("shot %s width=%d height=%d file=%s\n", qPrintable(pane), image.width(), image.height(),
                qPrintable(file));
    return true;
}
