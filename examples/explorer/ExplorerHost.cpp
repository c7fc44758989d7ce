#include "ExplorerHost.h"

#include "DirectoryScanner.h"
#include "FileItem.h"

#include <XOLATreeModel.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

namespace {

// The native predicate behind GetFilterModelByUserDefinedRules on the file
// index: the rule value is a minimum size in bytes.
bool atLeastAsLarge(const QObject* object, const QVariant& minimumBytes)
{
    const auto* item = qobject_cast<const FileItem*>(object);
    return item && item->getData(FileItem::SizeRole).toLongLong() >= minimumBytes.toLongLong();
}

XOLATreeModel* createModel(QObject* parent, int flags, PF_MATCH_ITEM match = nullptr)
{
    IXOLATreeModel* model = nullptr;
    if (!CreateXOLATreeModel(&model, parent, FileItem::roleNames(), flags, nullptr, match))
        qFatal("the model library could not create a model");
    return static_cast<XOLATreeModel*>(model);
}

} // namespace

ExplorerHost::ExplorerHost(const QString& rootPath, const QVariantMap& settings, QObject* parent)
    : QObject(parent)
    , m_rootPath(rootPath)
    , m_settings(settings)
{
    m_clock.start();
    // Every change of the header repaints the window on the GUI thread, which
    // the scanner waits for at each batch; a few updates a second are plenty.
    m_progressTimer.setInterval(100);
    m_progressTimer.setSingleShot(true);
    connect(&m_progressTimer, &QTimer::timeout, this, &ExplorerHost::scanChanged);
    m_modelHome = new QObject;
    m_fileTree = createModel(nullptr, 0);
    m_fileIndex = createModel(nullptr, XOLATreeModel::KeepRemovedItemsOption, atLeastAsLarge);
}

ExplorerHost::~ExplorerHost()
{
    stopScan();
    delete m_scanner; // its thread has finished
    releaseModels();
}

QObject* ExplorerHost::fileTree() const
{
    return m_fileTree;
}

QObject* ExplorerHost::fileIndex() const
{
    return m_fileIndex;
}

void ExplorerHost::startScan(int batchSize)
{
    if (m_scanner)
        return;
    m_scanner = new DirectoryScanner(m_rootPath, m_fileTree, m_fileIndex, m_modelHome, batchSize);
    m_scanner->moveToThread(&m_thread);
    connect(&m_thread, &QThread::started, m_scanner, &DirectoryScanner::run);
    connect(m_scanner, &DirectoryScanner::counted, this, [this](int total) {
        m_total = total;
        emit scanChanged();
    });
    connect(m_scanner, &DirectoryScanner::progress, this, [this](int scanned, int batches) {
        m_scanned = scanned;
        m_batches = batches;
        if (!m_progressTimer.isActive())
            m_progressTimer.start();
    });
    connect(m_scanner, &DirectoryScanner::finished, this,
            [this](int directories, int files, qint64 bytes, int batches, double milliseconds) {
                m_directories = directories;
                m_files = files;
                m_bytes = bytes;
                m_batches = batches;
                m_scanMilliseconds = milliseconds;
                m_scanning = false;
                m_scanDone = true;
                m_progressTimer.stop();
                m_thread.quit();
                emit scanChanged();
                emit scanFinished();
            });
    m_scanning = true;
    emit scanChanged();
    m_thread.start();
}

void ExplorerHost::stopScan()
{
    if (!m_scanner)
        return;
    m_scanner->requestStop();
    m_thread.quit();
    // The scanner may be waiting for this thread to list a batch or to build a
    // child model; keep serving those calls until it has stopped.
    while (!m_thread.wait(10))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

void ExplorerHost::releaseModels()
{
    // The file index first: it lists the tree's items without owning them.
    // Then the tree, which disposes of its items and, through them, of every
    // directory's model. The home catches a model that a stopped scan built
    // but never handed to an item.
    delete m_fileIndex;
    m_fileIndex = nullptr;
    delete m_fileTree;
    m_fileTree = nullptr;
    delete m_modelHome;
    m_modelHome = nullptr;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString ExplorerHost::formatSize(qint64 bytes) const
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}
