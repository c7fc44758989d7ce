#ifndef SOAK_SOAKITEM_H
#define SOAK_SOAKITEM_H

#include "TestSupport.h"

#include <atomic>

/*!
 * The soak's row: a ValueItem (valueRole, groupRole) that counts how many of
 * its kind are alive, so that the end can tell that every item the model let
 * go of was deleted without keeping a record per item (a record per item
 * would itself grow with the run and blur the memory figures).
 */
class SoakItem : public ValueItem
{
public:
    SoakItem(const QString& id, const QString& name, int value, const QString& group);
    ~SoakItem() override;

    static long alive() { return s_alive.load(); }
    static long made() { return s_made.load(); }

private:
    static std::atomic<long> s_alive;
    static std::atomic<long> s_made;
};

#endif // SOAK_SOAKITEM_H
