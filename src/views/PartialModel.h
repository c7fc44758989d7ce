#ifndef PARTIALMODEL_H
#define PARTIALMODEL_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QPointer>

class IXOLATreeModel;

/*!
 * A sliding window over a source model's rows: at most count consecutive
 * source rows from a first row, renumbered from 0. Every fully constructed
 * model owns one over itself.
 */
class PartialModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY rowCountChanged)

public:
    PartialModel(QObject* sourceModel, QObject* parent);
    //! A window whose source model relays its notices to it itself (see
    //! followSourceReset() and the handlers): the window makes no connections.
    struct RelayedBySource
    {
    };
    PartialModel(QObject* sourceModel, QObject* parent, RelayedBySource);
    ~PartialModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int GetPartialModelCount() const;
    int GetFirstPartialModelRow() const;
    void SetFirstPartialModelRow(int row);
    void SetPartialModelCount(int count);

    Q_INVOKABLE QVariantMap get(int row);
    Q_INVOKABLE int FindItemRow(QString id);

signals:
    void rowCountChanged();

public:
    //! What the window does on the source's modelReset() and layoutChanged().
    void followSourceReset();
    void followSourceLayoutChange();

public slots:
    void SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void SourceModelCountChangedHandler(const QModelIndex& parent, int start, int end);

private:
    IXOLATreeModel* source() const;
    int shown() const;

    QPointer<QObject> m_sourceModel;
    int m_firstRow = 0;
    int m_count = 0;
};

#endif // PARTIALMODEL_H
