#ifndef TRANSCRIPT_TRANSCRIPTITEM_H
#define TRANSCRIPT_TRANSCRIPTITEM_H

#include "XOLATreeItem.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QMap>

/*!
 * The transcript's row: an item with three extra roles, written the way hosts
 * write theirs (both getData forms overridden). Roles: 261 "valueRole",
 * 262 "groupRole", 263 "textRole"; a role never set reads as an invalid value.
 *
 * A change is signalled only when the value's canonical text changes, so that
 * whether a set counts as a change never depends on QVariant's equality,
 * which is not the same in Qt 5 and Qt 6.
 */
class TranscriptItem : public XOLATreeItem
{
    Q_OBJECT
public:
    enum ExtraRoles { ValueRole = XOLATreeItem::LastRole + 1, GroupRole, TextRole };

    TranscriptItem(const QString& id, const QString& name, QObject* childModel = nullptr);

    QVariant getData(int role) const override;
    QVariant getData(const QString& roleName) const override;
    void setData(int role, QVariant value) override;
    void setData(const QString& roleName, QVariant value) override;

    //! Sets (or, with an invalid value, clears) an extra role and signals a change.
    void setExtra(int role, const QVariant& value);

    static int extraRole(const QString& roleName);
    //! The three fixed names and the three extra ones.
    static QHash<int, QByteArray> roleNames();

private:
    QMap<int, QVariant> m_extras;
};

#endif // TRANSCRIPT_TRANSCRIPTITEM_H
