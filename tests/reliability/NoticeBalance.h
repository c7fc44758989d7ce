#ifndef TESTS_NOTICEBALANCE_H
#define TESTS_NOTICEBALANCE_H

#include <QtCore/QAbstractItemModel>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStringList>

/*!
 * Watches one model's row, reset and layout notices and keeps the books:
 *  - every begin notice (rowsAboutToBeInserted, rowsAboutToBeRemoved,
 *    modelAboutToBeReset, layoutAboutToBeChanged) must be closed by its own end
 *    notice, with the same rows, before another begin of the same kind;
 *  - the row count the listeners have been told about: insertions add, removals
 *    subtract, a reset (paired or not) re-reads rowCount().
 *
 * End notices without a begin are counted, not treated as errors: some are
 * deliberate (a forwarded modelReset, the script sort's lone endResetModel, the
 * function sorts' lone layoutChanged). Callers decide which they accept.
 *
 * The balance is a child of the model, so it goes when the model goes.
 */
class NoticeBalance : public QObject
{
public:
    explicit NoticeBalance(QAbstractItemModel* model, const QString& name);

    //! Problems seen since the last take(): nested or mismatched notices.
    QStringList takeProblems();
    //! A begin notice still waiting for its end, as text, or "".
    QString openNotice() const;
    //! The row count announced so far.
    int announcedCount() const { return m_announced; }
    //! Re-reads the model's row count (after a change the listeners were
    //! deliberately not told about in rows).
    void resync();

    int loneResets() const { return m_loneResets; }
    int loneLayoutChanges() const { return m_loneLayouts; }
    void clearLoneCounts() { m_loneResets = 0; m_loneLayouts = 0; }
    //! How many notices of any kind arrived since the last clearTraffic().
    int traffic() const { return m_traffic; }
    //! Insertions, removals and data changes since the last clearTraffic().
    int rowTraffic() const { return m_rowTraffic; }
    //! Insertions and removals since the last clearTraffic().
    int countTraffic() const { return m_countTraffic; }
    //! What an item relays of its child model since the last clearTraffic():
    //! insertions, removals and data changes, also those over no rows.
    int relayedTraffic() const { return m_relayedTraffic; }
    void clearTraffic() { m_traffic = 0; m_rowTraffic = 0; m_countTraffic = 0; m_relayedTraffic = 0; }

    QString name() const { return m_name; }
    QAbstractItemModel* model() const { return m_model.data(); }

private:
    enum class Open { Nothing, Insert, Remove };
    void problem(const QString& text);
    void begin(Open kind, int first, int last);
    void end(Open kind, int first, int last);

    QPointer<QAbstractItemModel> m_model;
    QString m_name;
    QStringList m_problems;
    Open m_open = Open::Nothing;
    int m_openFirst = 0;
    int m_openLast = 0;
    bool m_resetOpen = false;
    bool m_layoutOpen = false;
    int m_announced = 0;
    int m_loneResets = 0;
    int m_loneLayouts = 0;
    int m_traffic = 0;
    int m_rowTraffic = 0;
    int m_countTraffic = 0;
    int m_relayedTraffic = 0;
};

#endif // TESTS_NOTICEBALANCE_H
