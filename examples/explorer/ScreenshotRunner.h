#ifndef SCREENSHOTRUNNER_H
#define SCREENSHOTRUNNER_H

#include <QtCore/QObject>
#include <QtCore/QString>

class QQuickWindow;

/*!
 * Headless tour: shows each pane of the window in turn, lets the pane run its
 * scripted showcase (the QML function showcase(name) returns report lines),
 * writes one PNG per pane and prints the report lines on stdout.
 *
 * Offscreen with the software renderer, QQuickWindow::grabWindow() yields a
 * null image; the screen's grab of the exposed window has the pixels.
 */
class ScreenshotRunner : public QObject
{
    Q_OBJECT

public:
    ScreenshotRunner(QQuickWindow* window, const QString& directory, QObject* parent = nullptr);

    //! Runs the whole tour; returns the process exit code.
    int run();

private:
    bool waitForExposure();
    void settle(int milliseconds);
    bool shoot(const QString& pane);

    QQuickWindow* const m_window;
    const QString m_directory;
};

#endif // SCREENSHOTRUNNER_H
