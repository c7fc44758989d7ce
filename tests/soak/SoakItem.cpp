#include "SoakItem.h"

std::atomic<long> SoakItem::s_alive{0};
std::atomic<long> SoakItem::s_made{0};

SoakItem::SoakItem(const QString& id, const QString& name, int value, const QString& group)
    : ValueItem(id, name, value)
{
    setExtra(GroupRole, group);
    ++s_alive;
    ++s_made;
}

SoakItem::~SoakItem()
{
    --s_alive;
}
