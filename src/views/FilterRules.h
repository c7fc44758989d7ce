#ifndef FILTERRULES_H
#define FILTERRULES_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

class XOLATreeItem;

//! One comparison: {"RoleName", "Rule", "Value"}. Told apart from the other
//! format by the presence of the key "Rule".
bool DoCheckWithVersionOne(const XOLATreeItem* item, const QMap<QString, QVariant>& rule);
//! Several comparisons on one role: {"RoleName", "Rules": [{"Rule", "Value"}...], "OrAllRules"}.
bool DoCheckWithVersionTwo(const XOLATreeItem* item, const QMap<QString, QVariant>& rule);

/*!
 * A rule list read once: the maps are looked up, the operands converted and
 * the texts of substring operands lowered when the list is compiled, so that
 * testing many items repeats none of that work. Answers exactly as the rule
 * walk over the maps does (DoCheckWithVersionOne / DoCheckWithVersionTwo per
 * entry, stopping as the "or"/"and" mode says), including reading an item's
 * value afresh for every comparison.
 */
class CompiledFilterRules
{
public:
    CompiledFilterRules() = default;
    explicit CompiledFilterRules(const QList<QVariant>& rules);

    bool isEmpty() const { return m_rules.isEmpty(); }
    //! The entries' answer for the item, without looking into its child model.
    bool matches(const XOLATreeItem* item, bool orAllRules) const;

    struct Check
    {
        int op = -1;
        QVariant operand;
        // The operand's text and its lower-case form, for the substring operators.
        QString text;
        QString lowered;
        bool loweredIsAscii = false;
    };
    struct Rule
    {
        bool singleCheck = false; // the {"RoleName", "Rule", "Value"} form
        QString roleName;
        bool orAllRules = false;
        QVector<Check> checks;
    };

    //! One entry of a rule list, in the format its keys name.
    static Rule compileRule(const QMap<QString, QVariant>& rule);
    //! One entry read as the single-comparison format or as the several-comparison one.
    static Rule compileRule(const QMap<QString, QVariant>& rule, bool singleCheck);
    static bool matchesRule(const XOLATreeItem* item, const Rule& rule);

private:
    QVector<Rule> m_rules;
};

#endif // FILTERRULES_H
