#ifndef ROLENAMES_H
#define ROLENAMES_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

//! The role a name stands for in a model's role-name table, compared as
//! Latin-1 bytes; 0 when no role has that name (sorting, filtering and
//! grouping by an unknown name then use role 0 instead of failing). A name
//! given to several roles stands for the lowest-numbered of them, so the
//! answer never depends on the table's hash order, which differs between runs
//! and Qt versions.
inline int roleForName(const QHash<int, QByteArray>& roleNames, const QString& roleName)
{
    const QByteArray wanted = roleName.toLatin1();
    int found = 0;
    bool any = false;
    for (auto it = roleNames.constBegin(); it != roleNames.constEnd(); ++it) {
        if (it.value() == wanted && (!any || it.key() < found)) {
            found = it.key();
            any = true;
        }
    }
    return found;
}

#endif // ROLENAMES_H
