#ifndef SOAK_QTMESSAGES_H
#define SOAK_QTMESSAGES_H

#include <QtCore/QStringList>

/*!
 * Counts the warnings Qt and QML print during the run (from any thread) and
 * keeps the first of each kind, so that the report can list them. Messages
 * still reach stderr as before.
 */
namespace QtMessages {

void install();
//! Warnings, criticals and fatals seen so far.
long warnings();
//! The distinct texts seen, with how often each came, the most frequent first.
QStringList summary(int limit = 10);

} // namespace QtMessages

#endif // SOAK_QTMESSAGES_H
