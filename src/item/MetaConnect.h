#ifndef METACONNECT_H
#define METACONNECT_H

#include <QtCore/QMetaObject>
#include <QtCore/QObject>

/*!
 * Connections by method index, with each class's indices looked up once.
 *
 * The same connection as QObject::connect(sender, SIGNAL(...), receiver,
 * SLOT(...)): the names are looked up in the objects' own classes, so a subclass
 * that re-declares a signal or slot gets its own, and string-based disconnects
 * still match. Parsing the signatures on every call cost more than the rest of
 * building a view of many items.
 *
 * Signatures are given normalized and without the SIGNAL/SLOT prefix, as
 * string literals (their addresses key the lookup cache).
 */
namespace MetaConnect {
QMetaObject::Connection connect(const QObject* sender, const char* signal, const QObject* receiver,
                                const char* method, Qt::ConnectionType type = Qt::AutoConnection);
} // namespace MetaConnect

#endif // METACONNECT_H
