#ifndef EXPLORERHOST_H
#define EXPLORERHOST_H

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtCore/QVariantMap>

class DirectoryScanner;
class XOLATreeModel;

/*!
 * What the QML panes see as "explorer": the two models the scan fills, the
 * scan's progress and totals, the start settings of the panes, and a clock
 * for timing operations.
 *
 * Models (all built on the GUI thread, with FileItem's role names):
 *  - fileTree: the scanned root's entries; each directory item holds a child
 *    model with its own entries, so this is the whole tree. Every model of the
 *    tree owns its items and disposes of a removed directory's child model.
 *  - fileIndex: every file of the tree in one flat list, the same item objects
 *    as in the tree. Built with the option that leaves removed items alive,
 *    because the tree owns them. It is also given a native match function
 *    (files of at least N bytes) for GetFilterModelByUserDefinedRules.
 */
class ExplorerHost : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString rootPath READ rootPath CONSTANT)
    Q_PROPERTY(QObject* fileTree READ fileTree CONSTANT)
    Q_PROPERTY(QObject* fileIndex READ fileIndex CONSTANT)
    Q_PROPERTY(QVariantMap settings READ settings CONSTANT)
    Q_PROPERTY(bool scanning READ scanning NOTIFY scanChanged)
    Q_PROPERTY(bool scanDone READ scanDone NOTIFY scanChanged)
    Q_PROPERTY(int total READ total NOTIFY scanChanged)
    Q_PROPERTY(int scanned READ scanned NOTIFY scanChanged)
    Q_PROPERTY(int directories READ directories NOTIFY scanChanged)
    Q_PROPERTY(int files READ files NOTIFY scanChanged)
    Q_PROPERTY(qint64 bytes READ bytes NOTIFY scanChanged)
    Q_PROPERTY(int batches READ batches NOTIFY scanChanged)
    Q_PROPERTY(double scanMilliseconds READ scanMilliseconds NOTIFY scanChanged)

public:
    ExplorerHost(const QString& rootPath, const QVariantMap& settings, QObject* parent = nullptr);
    ~ExplorerHost() override;

    //! Starts the worker thread. Call once the GUI thread's event loop is about to run.
    void startScan(int batchSize);
    //! Stops the scan and joins the worker; safe to call at any time, also twice.
    void stopScan();
    //! Releases the models; the QML engine and its views must be gone by then.
    void releaseModels();

    QString rootPath() const { return m_rootPath; }
    QObject* fileTree() const;
    QObject* fileIndex() const;
    XOLATreeModel* fileTreeModel() const { return m_fileTree; }
    XOLATreeModel* fileIndexModel() const { return m_fileIndex; }
    QVariantMap settings() const { return m_settings; }
    bool scanning() const { return m_scanning; }
    bool scanDone() const { return m_scanDone; }
    int total() const { return m_total; }
    int scanned() const { return m_scanned; }
    int directories() const { return m_directories; }
    int files() const { return m_files; }
    qint64 bytes() const { return m_bytes; }
    int batches() const { return m_batches; }
    double scanMilliseconds() const { return m_scanMilliseconds; }

    //! Milliseconds since the start, with sub-millisecond resolution, for timing operations.
    Q_INVOKABLE double now() const { return m_clock.nsecsElapsed() / 1e6; }
    //! "1.2 MB" and the like.
    Q_INVOKABLE QString formatSize(qint64 bytes) const;

signals:
    void scanChanged();
    void scanFinished();

private:
    const QString m_rootPath;
    const QVariantMap m_settings;
    QElapsedTimer m_clock;
    QObject* m_modelHome = nullptr; // GUI-thread home and QObject parent of the directories' models
    XOLATreeModel* m_fileTree = nullptr;
    XOLATreeModel* m_fileIndex = nullptr;
    QThread m_thread;
    DirectoryScanner* m_scanner = nullptr;
    QTimer m_progressTimer; // progress reaches QML a few times a second, not per batch

    bool m_scanning = false;
    bool m_scanDone = false;
    int m_total = 0;
    int m_scanned = 0;
    int m_directories = 0;
    int m_files = 0;
    qint64 m_bytes = 0;
    int m_batches = 0;
    double m_scanMilliseconds = 0;
};

#endif // EXPLORERHOST_H
