#ifndef DIRECTORYSCANNER_H
#define DIRECTORYSCANNER_H

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <atomic>

class XOLATreeItem;
class XOLATreeModel;

/*!
 * Walks a directory tree on a worker thread and fills the explorer's models.
 *
 * Threads: the scanner lives on its own QThread; every model lives on the GUI
 * thread. Items are created here and handed over with AppendItemsList, which
 * the models carry to their own thread (the call waits until the GUI thread
 * has listed the batch) and which moves each item to that thread on the way.
 * A model records the thread that builds it and routes its mutations there,
 * so a directory's child model must be built on the GUI thread: the scanner
 * asks the GUI thread for one (a blocking queued call to m_modelHome) each
 * time it enters a directory. The GUI thread therefore must never wait for
 * the scanner while it runs; requestStop() and finishing cover shutdown.
 *
 * Order: depth first, children before their directory. A directory's item is
 * appended to its parent once its whole subtree is listed, so it carries the
 * total size of that subtree and views never see a half-filled directory.
 */
class DirectoryScanner : public QObject
{
    Q_OBJECT

public:
    DirectoryScanner(const QString& rootPath, XOLATreeModel* rootModel, XOLATreeModel* fileIndex,
                     QObject* modelHome, int batchSize);

    //! Thread-safe; the scan stops at the next entry and still reports finished().
    void requestStop() { m_stop = true; }

public slots:
    void run();

signals:
    void counted(int total);
    void progress(int scanned, int batches);
    void finished(int directories, int files, qint64 bytes, int batches, double milliseconds);

private:
    qint64 scanDirectory(const QString& absolutePath, const QString& relativePath, XOLATreeModel* model);
    XOLATreeModel* createDirectoryModel();
    void flush(XOLATreeModel* model, QList<XOLATreeItem*>& batch);

    const QString m_rootPath;
    XOLATreeModel* const m_rootModel;
    XOLATreeModel* const m_fileIndex;
    QObject* const m_modelHome;
    const int m_batchSize;
    std::atomic_bool m_stop{false};

    QList<XOLATreeItem*> m_fileBatch; // pending rows of the file index
    int m_scanned = 0;
    int m_directories = 0;
    int m_files = 0;
    int m_batches = 0;
};

#endif // DIRECTORYSCANNER_H
