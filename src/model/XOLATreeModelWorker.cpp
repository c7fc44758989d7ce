#include "XOLATreeModelWorker.h"

#include "XOLATreeModel.h"

XOLATreeModelWorker::XOLATreeModelWorker(XOLATreeModel* model)
    : QObject(nullptr)
    , m_model(model)
{
}

XOLATreeModelWorker::~XOLATreeModelWorker() = default;

QVariant XOLATreeModelWorker::toVariant(XOLATreeItem* item)
{
    return QVariant::fromValue(static_cast<void*>(item));
}

QVariantList XOLATreeModelWorker::toVariantList(const QList<XOLATreeItem*>& items)
{
    QVariantList result;
    result.reserve(items.size());
    for (XOLATreeItem* item : items)
        result << toVariant(item);
    return result;
}

XOLATreeItem* XOLATreeModelWorker::fromVariant(const QVariant& value)
{
    if (value.userType() == QMetaType::VoidStar)
        return static_cast<XOLATreeItem*>(*static_cast<void* const*>(value.constData()));
    QVariant converted(value);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    if (!converted.isValid() || !converted.convert(QMetaType(QMetaType::VoidStar)))
#else
    if (!converted.isValid() || !converted.convert(QMetaType::VoidStar))
#endif
        return nullptr;
    return static_cast<XOLATreeItem*>(*static_cast<void* const*>(converted.constData()));
}

QList<XOLATreeItem*> XOLATreeModelWorker::fromVariantList(const QVariantList& values)
{
    QList<XOLATreeItem*> result;
    result.reserve(values.size());
    for (const QVariant& value : values)
        result << fromVariant(value); // a non-pointer stays as a null entry
    return result;
}

void XOLATreeModelWorker::MoveRow(int sourceRowIndex, int destinationRowIndex)
{
    if (m_model)
        m_model->MoveRow(sourceRowIndex, destinationRowIndex);
}

bool XOLATreeModelWorker::AppendItem(QVariant item)
{
    return m_model ? m_model->AppendItem(fromVariant(item)) : false;
}

bool XOLATreeModelWorker::AppendItemsList(QVariantList itemList)
{
    return m_model ? m_model->AppendItemsList(fromVariantList(itemList)) : false;
}

bool XOLATreeModelWorker::ReplaceItemsList(QVariantList itemList)
{
    return m_model ? m_model->ReplaceItemsList(fromVariantList(itemList)) : false;
}

bool XOLATreeModelWorker::ReplaceItemsListEx(QVariantList itemList)
{
    return m_model ? m_model->ReplaceItemsListEx(fromVariantList(itemList)) : false;
}

void XOLATreeModelWorker::RemoveAll()
{
    if (m_model)
        m_model->RemoveAll();
}

bool XOLATreeModelWorker::RemoveOne(QString id)
{
    return m_model ? m_model->RemoveOne(id) : false;
}

bool XOLATreeModelWorker::Remove(int rowH, int rowT)
{
    return m_model ? m_model->Remove(rowH, rowT) : false;
}
