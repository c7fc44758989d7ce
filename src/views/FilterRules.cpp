#include "FilterRules.h"

// Placeholder bodies; filled in by the filter work.
bool DoCheckWithVersionOne(const XOLATreeItem*, const QMap<QString, QVariant>&) { return false; }
bool DoCheckWithVersionTwo(const XOLATreeItem*, const QMap<QString, QVariant>&) { return false; }
