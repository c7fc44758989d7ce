#ifndef TRANSCRIPT_RECORDER_H
#define TRANSCRIPT_RECORDER_H

#include <QtCore/QAbstractItemModel>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStringList>

/*!
 * One recorder for every model, view and item of the transcript: the notices
 * of all of them land in one sequence, in the order they were sent, each
 * tagged with the name of its sender. It also names objects (models and views
 * by the name they were watched under, items by their id) and writes the rows
 * of every watched model.
 */
class Recorder : public QObject
{
    Q_OBJECT
public:
    explicit Recorder(QObject* parent = nullptr);
    ~Recorder() override;

    //! Records the notices of a model or view under name, and writes its rows
    //! in every dump. A model already watched keeps its first name.
    void watch(QObject* model, const QString& name);
    //! Records an item's valueChanged() and childModelValueChanged().
    void watchItem(QObject* item);
    //! The name a live watched object was given, or an empty text.
    QString nameOf(const QObject* object) const;
    //! The text that stands for an object everywhere in the transcript.
    QString label(const QObject* object) const;

    void note(const QString& text);
    QStringList takeNotices();

    //! The rows of every watched model, in the order they were first watched.
    //! A model whose rows read as at the last dump is written as unchanged.
    QStringList dump();
    //! The rows of one model, without remembering them.
    QStringList rowsOf(QAbstractItemModel* model, const QString& name);
    //! The ids of a model's rows (FindItemID), for short listings.
    static QStringList idsOf(const QObject* model);

private slots:
    void onRowCountChanged();
    void onFirstPartialModelRowChanged();
    void onItemsRemoved(const QStringList& ids);
    void onAllItemRemoved();
    void onFilterModelChanged();
    void onPageChanged(int page);
    void onTotalPageChanged(int totalPage);
    void onValueChanged();
    void onChildModelValueChanged();

private:
    struct Watched
    {
        QPointer<QObject> object;
        const QObject* address = nullptr;
        QString name;
        QString lastDump;
        bool reportedGone = false;
    };
    void fromSender(const QString& text);
    void connectIfPresent(QObject* object, const char* signal, const char* slot);
    //! Watches a child model met in a row, under the row's name.
    void discover(const QVariant& value, const QString& name);

    QList<Watched> m_watched;
    QStringList m_notices;
};

#endif // TRANSCRIPT_RECORDER_H
