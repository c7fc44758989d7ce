#include "QmlTestHost.h"

#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtQml/QQmlEngine>

namespace {
XOLATreeModel* asModel(QObject* object)
{
    return qobject_cast<XOLATreeModel*>(object);
}

ValueItem* findItem(QObject* model, const QString& id)
{
    auto* m = qobject_cast<IXOLATreeModel*>(model);
    return m ? qobject_cast<ValueItem*>(m->FindItem(id, true)) : nullptr;
}
} // namespace

QmlTestHost::QmlTestHost(QObject* parent)
    : QObject(parent)
{
}

QmlTestHost::~QmlTestHost()
{
    // The models first (they dispose of what they own), then whatever they gave
    // back: items removed by id list or kept alive by option 2.
    const QList<XOLATreeModel*> models = findChildren<XOLATreeModel*>(QString(), Qt::FindDirectChildrenOnly);
    qDeleteAll(models);
    TestSupport::flushDeferredDeletes();
    TestSupport::flushDeferredDeletes();
    for (const QPointer<QObject>& item : qAsConst(m_items))
        delete item.data();
}

QObject* QmlTestHost::createModel(int flags)
{
    XOLATreeModel* model = TestSupport::createModel(flags & ~1, TestSupport::extendedRoleNames());
    if (model)
        model->setParent(this);
    return model;
}

QObject* QmlTestHost::createModelWithMinimumMatch(int flags)
{
    PF_MATCH_ITEM atLeastMin = [](const QObject* object, const QVariant& ruleValue) {
        auto* item = qobject_cast<const XOLATreeItem*>(object);
        return item && item->getData(ValueItem::ValueRole).toInt() >= ruleValue.toMap().value("min").toInt();
    };
    XOLATreeModel* model = TestSupport::createModel(flags & ~1, TestSupport::extendedRoleNames(), nullptr, atLeastMin);
    if (model)
        model->setParent(this);
    return model;
}

bool QmlTestHost::append(QObject* model, const QString& id, const QString& name, const QVariant& value)
{
    XOLATreeModel* m = asModel(model);
    return m && m->AppendItem(handedOver(new ValueItem(id, name, value)));
}

bool QmlTestHost::appendMany(QObject* model, const QStringList& ids)
{
    XOLATreeModel* m = asModel(model);
    if (!m)
        return false;
    QList<XOLATreeItem*> list;
    for (const QString& id : ids)
        list << handedOver(new ValueItem(id, QStringLiteral("name-") + id));
    return m->AppendItemsList(list);
}

bool QmlTestHost::appendWithChild(QObject* model, const QString& id, const QString& name, QObject* childModel)
{
    XOLATreeModel* m = asModel(model);
    if (!m)
        return false;
    // The parent model disposes of its items' child models: the host lets go.
    if (childModel)
        childModel->setParent(nullptr);
    return m->AppendItem(handedOver(new ValueItem(id, name, QVariant(), childModel)));
}

bool QmlTestHost::prepend(QObject* model, const QString& id, const QString& name, const QVariant& value)
{
    XOLATreeModel* m = asModel(model);
    return m && m->PrependItem(handedOver(new ValueItem(id, name, value)));
}

bool QmlTestHost::setValue(QObject* model, const QString& id, const QVariant& value)
{
    ValueItem* item = findItem(model, id);
    if (!item)
        return false;
    item->setExtra(ValueItem::ValueRole, value);
    return true;
}

bool QmlTestHost::setGroup(QObject* model, const QString& id, const QVariant& value)
{
    ValueItem* item = findItem(model, id);
    if (!item)
        return false;
    item->setExtra(ValueItem::GroupRole, value);
    return true;
}

bool QmlTestHost::setText(QObject* model, const QString& id, const QVariant& value)
{
    ValueItem* item = findItem(model, id);
    if (!item)
        return false;
    item->setExtra(ValueItem::TextRole, value);
    return true;
}

bool QmlTestHost::setName(QObject* model, const QString& id, const QString& name)
{
    ValueItem* item = findItem(model, id);
    if (!item)
        return false;
    item->SetName(name);
    return true;
}

bool QmlTestHost::removeOne(QObject* model, const QString& id)
{
    XOLATreeModel* m = asModel(model);
    return m && m->RemoveOne(id);
}

void QmlTestHost::removeAll(QObject* model)
{
    if (XOLATreeModel* m = asModel(model))
        m->RemoveAll();
}

QString QmlTestHost::dataDir() const
{
    return QStringLiteral(XOLA_TEST_DATA_DIR);
}

int QmlTestHost::sortFlag(QObject* model) const
{
    XOLATreeModel* m = asModel(model);
    return m ? m->sortFlag() : -1;
}

int QmlTestHost::objectOwnership(QObject* object) const
{
    return object ? int(QQmlEngine::objectOwnership(object)) : -1;
}
