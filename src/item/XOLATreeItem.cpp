#include "XOLATreeItem.h"

#include "ItemWatch.h"
#include "MetaConnect.h"
#include "VariantRules.h"

#include <QtCore/QAbstractItemModel>
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

XOLATreeItem::XOLATreeItem(const QString& id, const QString& name, QObject* childModel)
    : QObject(nullptr)
    , m_id(id)
    , m_name(name)
    , m_childModel(childModel)
{
    if (childModel) {
        // An item with a child model has its map made now: the map records the
        // model's address as given, also after the model is gone.
        values();
        connectChildModel(childModel);
    }
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

XOLATreeItem::~XOLATreeItem()
{
    // Models that list the item without owning it let it go before it is gone.
    ItemWatch::itemDestroyed(this, m_id);
}

void XOLATreeItem::connectChildModel(QObject* childModel)
{
    // Only a model has rows to relay; any other object is held without connections.
    if (!qobject_cast<QAbstractItemModel*>(childModel))
        return;
    // Relay the child model's changes as this item's own signal so that views
    // can react to changes anywhere below the item.
    MetaConnect::connect(childModel, "dataChanged(QModelIndex,QModelIndex)",
                         this, "childModelValueChanged()", Qt::AutoConnection);
    MetaConnect::connect(childModel, "rowsInserted(QModelIndex,int,int)",
                         this, "childModelValueChanged()", Qt::AutoConnection);
    MetaConnect::connect(childModel, "rowsRemoved(QModelIndex,int,int)",
                         this, "childModelValueChanged()", Qt::AutoConnection);
}

int XOLATreeItem::roleFromName(const QString& roleName)
{
    // Only the three fixed fields have names here; free keys of the value map
    // are reached through the whole map (JsonValueRole) or by a subclass.
    // Compared as text: filters ask for every item, so nothing is built per call.
    if (roleName == QLatin1String("idRole"))
        return IdRole;
    if (roleName == QLatin1String("nameRole"))
        return NameRole;
    if (roleName == QLatin1String("childModelRole"))
        return ChildModelRole;
    return 0;
}

QVariant XOLATreeItem::getData(int role) const
{
    switch (role) {
    case IdRole:
        return QVariant(m_id);
    case NameRole:
        return QVariant(m_name);
    case ChildModelRole:
        return objectVariant(m_childModel.data());
    case JsonValueRole:
        return QVariant(jsonValue());
    default:
        return QVariant();
    }
}

QMap<QString, QVariant>& XOLATreeItem::values() const
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
    const QMap<QString, QVariant>& map = values();
    // The child model is not the item's: whoever owns it may delete it, and the
    // field then reads as none. The map must read the same, never handing out
    // the address of a deleted model (which a later SetJsonValue of this very
    // map would follow).
    const auto entry = map.constFind(kChildModelKey);
    if (entry != map.constEnd() && entry->userType() == QMetaType::QObjectStar
        && *static_cast<QObject* const*>(entry->constData()) != m_childModel.data()) {
        QMap<QString, QVariant> copy = map;
        copy.insert(kChildModelKey, objectVariant(m_childModel.data()));
        return copy;
    }
    return map;
}

QVariant XOLATreeItem::getData(const QString& roleName) const
{
    return getData(roleFromName(roleName));
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
    setData(roleFromName(roleName), value);
}

void XOLATreeItem::SetID(const QString& id)
{
    if (id == m_id)
        return;
    m_id = id;
    if (m_valuesMade)
        m_values[kIdKey] = QVariant(id);
    emit valueChanged();
}

void XOLATreeItem::SetName(const QString& name)
{
    if (name == m_name)
        return;
    m_name = name;
    if (m_valuesMade)
        m_values[kNameKey] = QVariant(name);
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
        connectChildModel(childModel);
        if (childModel == m_childModel)
            return;
    } else if (!m_childModel) {
        return;
    }
    m_childModel = childModel;
    values()[kChildModelKey] = objectVariant(childModel);
    emit valueChanged();
}

void XOLATreeItem::SetJsonValue(const QMap<QString, QVariant>& value)
{
    if (VariantRules::equals(value, values()))
        return;
    m_values = value;
    // The non-const subscript is wanted: a map without one of the fixed keys
    // gains it, so a value without "idRole" clears the id.
    SetID(VariantRules::toString(m_values[kIdKey]));
    SetName(VariantRules::toString(m_values[kNameKey]));
    SetChildModel(qvariant_cast<QObject*>(m_values[kChildModelKey]));
    emit valueChanged();
}
