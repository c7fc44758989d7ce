#ifndef TESTS_SIGNALLOG_H
#define TESTS_SIGNALLOG_H

#include <QtCore/QAbstractItemModel>
#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QThread>

/*!
 * Records, in order and as text, every notice a model sends: the standard row,
 * reset, layout and data notices with their arguments, plus the model's own
 * signals (rowCountChanged, itemsRemoved, pageChanged...) when it has them.
 * Works for IXOLATreeModel and its views, for the partial window and for any
 * QAbstractItemModel. Tests compare whole sequences:
 *
 *     SignalLog log(model);
 *     model->RemoveOne("b");
 *     QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(1,1)", ...}));
 *
 * Texts: rowsAboutToBeInserted(f,l) rowsInserted(f,l) rowsAboutToBeRemoved(f,l)
 * rowsRemoved(f,l) modelAboutToBeReset() modelReset() layoutAboutToBeChanged()
 * layoutChanged() dataChanged(top,bottom) [dataChanged(top,bottom,[roles]) when
 * roles are given] rowsMoved(f,l,d) rowCountChanged() firstPartialModelRowChanged()
 * itemsRemoved(a,b) allItemRemoved() filterModelChanged() pageChanged(p)
 * totalPageChanged(t).
 */
class SignalLog : public QObject
{
public:
    explicit SignalLog(QObject* model);

    //! The notices recorded so far; the log is emptied.
    QStringList take();
    //! The notices recorded so far, without emptying.
    QStringList entries() const { return m_entries; }
    void clear() { m_entries.clear(); }
    //! True while every notice came on the thread that made the log.
    bool allOnOwnThread() const { return m_allOnOwnThread; }

private:
    void add(const QString& entry);

    QStringList m_entries;
    QThread* m_thread = nullptr;
    bool m_allOnOwnThread = true;
};

/*!
 * Records an item's two signals: valueChanged() and childModelValueChanged().
 */
class ItemSignalLog : public QObject
{
public:
    explicit ItemSignalLog(QObject* item);
    QStringList take();

private:
    QStringList m_entries;
};

#endif // TESTS_SIGNALLOG_H
