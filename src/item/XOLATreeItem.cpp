#include "XOLATreeItem.h"

#include "ItemRegistry.h"
#include "MetaConnect.h"
#include "VariantRules.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QPointer>
#include <QtQml/QQmlEngine>

namespace {
const QString kIdKey = QStringLiteral("idRole");
const QString kNameKey = QStringLiteral("nameRole");
const QString kChildModelKey = QStringLiteral("childModelRole");

QVariant objectVariant(QObject* object)
{
    // Always a QObject* variant (type 39), also for null, so QML sees a valid value.
    return QVariant::fromValue<QObject*>(object);
}
} // namespace

class XOLATreeItemPrivate
{
public:
    XOLATreeItemPrivate(const QString& id, const QString& name, QObject* childModel)
        : m_id(id)
        , m_name(name)
        , m_childModel(childModel)
    {
    }

    static int roleFromName(const QString& roleName);
    //! The value map, made from the three fields the first time it is needed.
    QMap<QString, QVariant>& values();

    QString m_id;
    QString m_name;
    // Guarded: a child model deleted by its owner reads as none, never as a dangling pointer.
    QPointer<QObject> m_childModel;
    // Most items never have their map read: until then it would only repeat
    // the three fields, so it is made on first use.
    QMap<QString, QVariant> m_values;
    bool m_valuesMade = false;
};

namespace {
void connectChildModel(XOLATreeItem* item, QObject* childModel)
{
    // Only a model has rows to relay; any other object is held without connections.
    if (!qobject_cast<QAbstractItemModel*>(childModel))
        return;
    // Relay the child model's changes as the item's own signal so that views
    // can react to changes anywhere below the item.
    MetaConnect::connect(childModel, "dataChanged(QModelIndex,QModelIndex)",
                         item, "childModelValueChanged()", Qt::AutoConnection);
    MetaConnect::connect(childModel, "rowsInserted(QModelIndex,int,int)",
                         item, "childModelValueChanged()", Qt::AutoConnection);
    MetaConnect::connect(childModel, "rowsRemoved(QModelIndex,int,int)",
                         item, "childModelValueChanged()", Qt::AutoConnection);
}
} // namespace

XOLATreeItem::XOLATreeItem(const QString& id, const QString& name, QObject* childModel)
    : QObject(nullptr)
    , d_ptr(new XOLATreeItemPrivate(id, name, childModel))
{
    if (childModel) {
        // An item with a child model has its map made now: the map records the
        // model's address as given, also after the model is gone.
        d_ptr->values();
        connectChildModel(this, childModel);
    }
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

XOLATreeItem::~XOLATreeItem()
{
    // Models that list the item without owning it let it go before it is gone.
    ItemRegistry::itemDestroyed(this, d_ptr->m_id);
}

int XOLATreeItemPrivate::roleFromName(const QString& roleName)
{
    // Only the three fixed fields have names here; free keys of the value map
    // are reached through the whole map (JsonValueRole) or by a subclass.
    // Compared as text: filters ask for every item, so nothing is built per call.
    if (roleName == QLatin1String("idRole"))
        return XOLATreeItem::IdRole;
    if (roleName == QLatin1String("nameRole"))
        return XOLATreeItem::NameRole;
    if (roleName == QLatin1String("childModelRole"))
        return XOLATreeItem::ChildModelRole;
    return 0;
}

QVariant XOLATreeItem::getData(int role) const
{
    switch (role) {
    case IdRole:
        return QVariant(d_ptr->m_id);
    case NameRole:
        return QVariant(d_ptr->m_name);
    case ChildModelRole:
        return objectVariant(d_ptr->m_childModel.data());
    case JsonValueRole:
        return QVariant(jsonValue());
    default:
        return QVariant();
    }
}

QMap<QString, QVariant>& XOLATreeItemPrivate::values()
{
    if (!m_valuesMade) {
        // What the map holds until SetJsonValue() replaces it: the three fields.
        m_values.insert(kIdKey, QVariant(m_id));
        m_values.insert(kNameKey, QVariant(m_name));
        m_values.insert(kChildModelKey, objectVariant(m_childModel.data()));
        m_valuesMade = true;
    }
    return m_values;
}

QMap<QString, QVariant> XOLATreeItem::jsonValue() const
{
    const QMap<QString, QVariant>& map = d_ptr->values();
    // The child model is not the item's: whoever owns it may delete it, and the
    // field then reads as none. The map must read the same, never handing out
    // the address of a deleted model (which a later SetJsonValue of this very
    // map would follow).
    const auto entry = map.constFind(kChildModelKey);
    if (entry != map.constEnd() && entry->userType() == QMetaType::QObjectStar
        && *static_cast<QObject* const*>(entry->constData()) != d_ptr->m_childModel.data()) {
        QMap<QString, QVariant> copy = map;
        copy.insert(kChildModelKey, objectVariant(d_ptr->m_childModel.data()));
        return copy;
    }
    return map;
}

QVariant XOLATreeItem::getData(const QString& roleName) const
{
    return getData(XOLATreeItemPrivate::roleFromName(roleName));
}

void XOLATreeItem::setData(int role, QVariant value)
{
    switch (role) {
    case IdRole:
        SetID(VariantRules::toString(value));
        break;
    case NameRole:
        SetName(VariantRules::toString(value));
        break;
    case ChildModelRole:
        SetChildModel(qvariant_cast<QObject*>(value));
        break;
    case JsonValueRole:
        SetJsonValue(VariantRules::toMap(value));
        break;
    default:
        break;
    }
}

void XOLATreeItem::setData(const QString& roleName, QVariant value)
{
    setData(XOLATreeItemPrivate::roleFromName(roleName), value);
}

void XOLATreeItem::SetID(const QString& id)
{
    if (id == d_ptr->m_id)
        return;
    d_ptr->m_id = id;
    if (d_ptr->m_valuesMade)
        d_ptr->m_values[kIdKey] = QVariant(id);
    emit valueChanged();
}

void XOLATreeItem::SetName(const QString& name)
{
    if (name == d_ptr->m_name)
        return;
    d_ptr->m_name = name;
    if (d_ptr->m_valuesMade)
        d_ptr->m_values[kNameKey] = QVariant(name);
    emit valueChanged();
}

void XOLATreeItem::SetChildModel(QObject* childModel)
{
    if (childModel) {
        // Drops only self-connections. Connections from earlier child models stay
        // on purpose: an item given several child models in turn keeps relaying
        // all of them, and hosts rely on that.
        QObject::disconnect(this, nullptr, this, nullptr);
        // Connected before the equality test: setting the same model twice
        // relays its changes twice, which existing hosts expect.
        connectChildModel(this, childModel);
        if (childModel == d_ptr->m_childModel)
            return;
    } else if (!d_ptr->m_childModel) {
        return;
    }
    d_ptr->m_childModel = childModel;
    d_ptr->values()[kChildModelKey] = objectVariant(childModel);
    emit valueChanged();
}

void XOLATreeItem::SetJsonValue(const QMap<QString, QVariant>& value)
{
    if (VariantRules::equals(value, d_ptr->values()))
        return;
    d_ptr->m_values = value;
    // The non-const subscript is wanted: a map without one of the fixed keys
    // gains it, so a value without "idRole" clears the id.
    SetID(VariantRules::toString(d_ptr->m_values[kIdKey]));
    SetName(VariantRules::toString(d_ptr->m_values[kNameKey]));
    SetChildModel(qvariant_cast<QObject*>(d_ptr->m_values[kChildModelKey]));
    emit valueChanged();
}

QString XOLATreeItem::id() const
{
    return d_ptr->m_id;
}

QString XOLATreeItem::name() const
{
    return d_ptr->m_name;
}

QObject* XOLATreeItem::childModel() const
{
    return d_ptr->m_childModel.data();
}
