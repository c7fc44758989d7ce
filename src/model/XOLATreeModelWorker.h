#ifndef XOLATREEMODELWORKER_H
#define XOLATREEMODELWORKER_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QVariant>

class XOLATreeItem;
class XOLATreeModel;

/*!
 * Lives on the model's thread and runs mutations that were called from other
 * threads: the model invokes these slots with a blocking queued connection.
 * Item pointers travel as QVariant values of type VoidStar.
 */
class XOLATreeModelWorker : public QObject
{
    Q_OBJECT

public:
    explicit XOLATreeModelWorker(XOLATreeModel* model);
    ~XOLATreeModelWorker() override;

    //! Packs an item pointer for the trip across threads.
    static QVariant toVariant(XOLATreeItem* item);
    static QVariantList toVariantList(const QList<XOLATreeItem*>& items);
    //! Unpacks a pointer; anything that is not a pointer variant gives null.
    static XOLATreeItem* fromVariant(const QVariant& value);
    static QList<XOLATreeItem*> fromVariantList(const QVariantList& values);

public slots:
    void MoveRow(int sourceRowIndex, int destinationRowIndex);
    bool AppendItem(QVariant item);
    bool AppendItemsList(QVariantList itemList);
    bool ReplaceItemsList(QVariantList itemList);
    bool ReplaceItemsListEx(QVariantList itemList);
    void RemoveAll();
    bool RemoveOne(QString id);
    bool Remove(int rowH, int rowT);

private:
    XOLATreeModel* m_model = nullptr;
};

#endif // XOLATREEMODELWORKER_H
