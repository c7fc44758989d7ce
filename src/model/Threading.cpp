// Calls from other threads. Every routed operation opens with
//
//     if (d_ptr->isForeignThread())
//         return d_ptr->onModelThread([&] { return Operation(arguments); });
//
// so that the operation runs again on the model's thread while the caller
// waits; the cases that behave differently from another thread are the named
// functions below.

#include "XOLATreeModelPrivate.h"

#include "XOLATreeModelWorker.h"

#include <QtCore/QThread>

bool XOLATreeModelPrivate::isForeignThread() const
{
    // A model made by QML records no owner thread and never routes.
    return m_ownerThreadId && QThread::currentThreadId() != m_ownerThreadId;
}

void XOLATreeModelPrivate::adoptForeignItem(XOLATreeItem* item) const
{
    // An item made on the calling thread would otherwise keep that thread's
    // affinity: its deleteLater and its queued signals would go to a thread that
    // may never run them. Only the owning thread may move an object.
    if (item && !item->parent() && item->thread() == QThread::currentThread() && item->thread() != q_ptr->thread())
        item->moveToThread(q_ptr->thread());
}

void XOLATreeModelPrivate::adoptForeignItems(const QList<XOLATreeItem*>& items) const
{
    for (XOLATreeItem* item : items)
        adoptForeignItem(item);
}

bool XOLATreeModelPrivate::runOnModelThread(const std::function<void()>& call)
{
    // The caller waits while the model's thread runs the call. A model that was
    // moved to the calling thread cannot be waited for from it; the call then
    // fails as a failed invocation would.
    if (q_ptr->thread() == QThread::currentThread())
        return false;
    return QMetaObject::invokeMethod(q_ptr, call, Qt::BlockingQueuedConnection);
}

bool XOLATreeModelPrivate::insertFromForeignThread(XOLATreeItem* item)
{
    adoptForeignItem(item);
    return onModelThread([&] { return q_ptr->AppendItem(item); });
}

bool XOLATreeModelPrivate::prependFromForeignThread() const
{
    return false;
}

XOLATreeModelWorker* XOLATreeModelPrivate::worker()
{
    if (!m_worker)
        m_worker = QSharedPointer<XOLATreeModelWorker>(new XOLATreeModelWorker(q_ptr));
    return m_worker.data();
}
