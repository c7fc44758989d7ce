#ifndef FILTERRULES_H
#define FILTERRULES_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariant>

class XOLATreeItem;

//! One comparison: {"RoleName", "Rule", "Value"}. Told apart from the other
//! format by the presence of the key "Rule".
XOLATREEMODEL_EXPORT bool DoCheckWithVersionOne(const XOLATreeItem* item, const QMap<QString, QVariant>& rule);
//! Several comparisons on one role: {"RoleName", "Rules": [{"Rule", "Value"}...], "OrAllRules"}.
XOLATREEMODEL_EXPORT bool DoCheckWithVersionTwo(const XOLATreeItem* item, const QMap<QString, QVariant>& rule);

#endif // FILTERRULES_H
