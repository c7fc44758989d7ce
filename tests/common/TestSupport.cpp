#include "TestSupport.h"

#include "VariantRules.h"

ValueItem::ValueItem(const QString& id, const QString& name, const QVariant& value, QObject* childModel)
    : XOLATreeItem(id, name, childModel)
{
    if (value.isValid())
        m_extras.insert(ValueRole, value);
}

int ValueItem::extraRole(const QString& roleName)
{
    if (roleName == QLatin1String("valueRole"))
        return ValueRole;
    if (roleName == QLatin1String("groupRole"))
        return GroupRole;
    if (roleName == QLatin1String("textRole"))
        return TextRole;
    return 0;
}

QVariant ValueItem::getData(int role) const
{
    if (role > XOLATreeItem::LastRole)
        return m_extras.value(role);
    return XOLATreeItem::getData(role);
}

QVariant ValueItem::getData(const QString& roleName) const
{
    const int role = extraRole(roleName);
    if (role)
        return getData(role);
    return XOLATreeItem::getData(roleName);
}

void ValueItem::setData(int role, QVariant value)
{
    if (role > XOLATreeItem::LastRole && role <= TextRole) {
        setExtra(role, value);
        return;
    }
    XOLATreeItem::setData(role, value);
}

void ValueItem::setData(const QString& roleName, QVariant value)
{
    const int role = extraRole(roleName);
    if (role) {
        setExtra(role, value);
        return;
    }
    XOLATreeItem::setData(roleName, value);
}

void ValueItem::setExtra(int role, const QVariant& value)
{
    if (VariantRules::equals(m_extras.value(role), value) && m_extras.contains(role) == value.isValid())
        return;
    if (value.isValid())
        m_extras.insert(role, value);
    else
        m_extras.remove(role);
    emit valueChanged();
}

namespace TestSupport {

namespace {
std::function<void(QObject*)>& madeModelHook()
{
    static std::function<void(QObject*)> hook;
    return hook;
}
} // namespace

void setMadeModelHook(std::function<void(QObject*)> hook)
{
    madeModelHook() = std::move(hook);
}

QHash<int, QByteArray> extendedRoleNames()
{
    return {{XOLATreeItem::IdRole, "idRole"},
            {XOLATreeItem::NameRole, "nameRole"},
            {XOLATreeItem::ChildModelRole, "childModelRole"},
            {ValueItem::ValueRole, "valueRole"},
            {ValueItem::GroupRole, "groupRole"},
            {ValueItem::TextRole, "textRole"}};
}

XOLATreeModel* createModel(int flags, const QHash<int, QByteArray>& roleNames, PF_COPY_ITEM copy, PF_MATCH_ITEM match)
{
    IXOLATreeModel* model = nullptr;
    if (!CreateXOLATreeModel(&model, nullptr, roleNames, flags, copy, match))
        return nullptr;
    if (madeModelHook())
        madeModelHook()(model);
    return static_cast<XOLATreeModel*>(model);
}

void appendEach(XOLATreeModel* model, const QList<XOLATreeItem*>& list)
{
    for (XOLATreeItem* item : list)
        model->AppendItem(item);
}

XOLATreeItem* item(const QString& id, QObject* childModel)
{
    return new XOLATreeItem(id, QStringLiteral("name-") + id, childModel);
}

QList<XOLATreeItem*> items(const QStringList& idList)
{
    QList<XOLATreeItem*> result;
    for (const QString& id : idList)
        result << item(id);
    return result;
}

QList<XOLATreeItem*> valueItems(const QVariantList& values)
{
    QList<XOLATreeItem*> result;
    for (int i = 0; i < values.size(); ++i)
        result << new ValueItem(QStringLiteral("i%1").arg(i), QStringLiteral("n%1").arg(i), values.at(i));
    return result;
}

QStringList ids(const IXOLATreeModel* model)
{
    QStringList result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->FindItemID(row);
    return result;
}

QStringList names(const IXOLATreeModel* model)
{
    QStringList result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->FindItemValue(row, int(XOLATreeItem::NameRole)).toString();
    return result;
}

QStringList values(const IXOLATreeModel* model, int role)
{
    QStringList result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->FindItemValue(row, role).toString();
    return result;
}

} // namespace TestSupport
