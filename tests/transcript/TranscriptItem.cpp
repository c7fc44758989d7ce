#include "TranscriptItem.h"

#include "Canonical.h"

TranscriptItem::TranscriptItem(const QString& id, const QString& name, QObject* childModel)
    : XOLATreeItem(id, name, childModel)
{
}

int TranscriptItem::extraRole(const QString& roleName)
{
    if (roleName == QLatin1String("valueRole"))
        return ValueRole;
    if (roleName == QLatin1String("groupRole"))
        return GroupRole;
    if (roleName == QLatin1String("textRole"))
        return TextRole;
    return 0;
}

QHash<int, QByteArray> TranscriptItem::roleNames()
{
    return {{IdRole, "idRole"},       {NameRole, "nameRole"},   {ChildModelRole, "childModelRole"},
            {ValueRole, "valueRole"}, {GroupRole, "groupRole"}, {TextRole, "textRole"}};
}

QVariant TranscriptItem::getData(int role) const
{
    if (role >= ValueRole && role <= TextRole)
        return m_extras.value(role);
    return XOLATreeItem::getData(role);
}

QVariant TranscriptItem::getData(const QString& roleName) const
{
    const int role = extraRole(roleName);
    return role ? getData(role) : XOLATreeItem::getData(roleName);
}

void TranscriptItem::setData(int role, QVariant value)
{
    if (role >= ValueRole && role <= TextRole) {
        setExtra(role, value);
        return;
    }
    XOLATreeItem::setData(role, value);
}

void TranscriptItem::setData(const QString& roleName, QVariant value)
{
    const int role = extraRole(roleName);
    if (role) {
        setExtra(role, value);
        return;
    }
    XOLATreeItem::setData(roleName, value);
}

void TranscriptItem::setExtra(int role, const QVariant& value)
{
    const bool had = m_extras.contains(role);
    if (had == value.isValid() && (!had || Canonical::value(m_extras.value(role)) == Canonical::value(value)))
        return;
    if (value.isValid())
        m_extras.insert(role, value);
    else
        m_extras.remove(role);
    emit valueChanged();
}
