#include "DirectoryScanner.h"

#include "FileItem.h"

#include <XOLATreeModel.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QElapsedTimer>

namespace {
const QDir::Filters kEntryFilter = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;
}

DirectoryScanner::DirectoryScanner(const QString& rootPath, XOLATreeModel* rootModel, XOLATreeModel* fileIndex,
                                   QObject* modelHome, int batchSize)
    : m_rootPath(rootPath)
    , m_rootModel(rootModel)
    , m_fileIndex(fileIndex)
    , m_modelHome(modelHome)
    , m_batchSize(qMax(1, batchSize))
{
}

void DirectoryScanner::run()
{
    QElapsedTimer clock;
    clock.start();

    // A quick first pass only counts, so the progress bar knows its end.
    // Symbolic links to directories are not followed, here or below.
    int total = 0;
    for (QDirIterator it(m_rootPath, kEntryFilter, QDirIterator::Subdirectories); it.hasNext() && !m_stop; it.next())
        ++total;
    emit counted(total);

    const qint64 bytes = scanDirectory(m_rootPath, QString(), m_rootModel);
    flush(m_fileIndex, m_fileBatch);
    emit progress(m_scanned, m_batches);
    emit finished(m_directories, m_files, bytes, m_batches, clock.nsecsElapsed() / 1e6);
}

qint64 DirectoryScanner::scanDirectory(const QString& absolutePath, const QString& relativePath, XOLATreeModel* model)
{
    const QFileInfoList entries = QDir(absolutePath).entryInfoList(kEntryFilter, QDir::Name | QDir::DirsFirst);
    QList<XOLATreeItem*> batch;
    qint64 bytes = 0;
    for (const QFileInfo& info : entries) {
        if (m_stop)
            break;
        const QString path = relativePath.isEmpty() ? info.fileName() : relativePath + QLatin1Char('/') + info.fileName();
        if (info.isDir() && !info.isSymLink()) {
            XOLATreeModel* children = createDirectoryModel();
            const qint64 size = scanDirectory(info.absoluteFilePath(), path, children);
            batch << new FileItem(info, path, size, children);
            bytes += size;
            ++m_directories;
        } else {
            auto* item = new FileItem(info, path, info.isDir() ? 0 : info.size());
            batch << item;
            m_fileBatch << item; // listed twice: in its directory and in the flat file index
            bytes += info.size();
            ++m_files;
        }
        ++m_scanned;
        if (batch.size() >= m_batchSize)
            flush(model, batch);
        // The directory lists an item before the index does; the index never owns them.
        if (m_fileBatch.size() >= m_batchSize) {
            flush(model, batch);
            flush(m_fileIndex, m_fileBatch);
        }
    }
    flush(model, batch);
    return bytes;
}

XOLATreeModel* DirectoryScanner::createDirectoryModel()
{
    // Runs on the GUI thread while this thread waits. Once the directory's item
    // is listed, the tree disposes of the model with the item; until then
    // m_modelHome, its QObject parent, holds it.
    IXOLATreeModel* model = nullptr;
    QMetaObject::invokeMethod(
        m_modelHome,
        [this, &model] { CreateXOLATreeModel(&model, m_modelHome, FileItem::roleNames(), 0, nullptr, nullptr); },
        Qt::BlockingQueuedConnection);
    return static_cast<XOLATreeModel*>(model);
}

void DirectoryScanner::flush(XOLATreeModel* model, QList<XOLATreeItem*>& batch)
{
    if (batch.isEmpty())
        return;
    // Called on the scanner's thread: the model carries the call to its own
    // thread and returns once the rows are listed there.
    model->AppendItemsList(batch);
    batch.clear();
    ++m_batches;
    emit progress(m_scanned, m_batches);
}
