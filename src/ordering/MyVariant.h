#ifndef MYVARIANT_H
#define MYVARIANT_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

class QJSEngine;
class QJSValue;
class QObject;

//! Separator used when a string list is rendered as one text: a fixed GUID text,
//! so that hosts can split the text again. A substring rule may still match the
//! separator itself (any list of two or more entries contains "ABC6").
extern const char* const kStringListSeparator;

/*!
 * A comparable value: one QVariant with a direction and, optionally, a caller's
 * way of comparing (a less-than function, a method of a QML object, or a script
 * function). Used as the key of the single-role sorts and as the operand of the
 * filter rules.
 *
 * A descending value flips every comparison by plain negation (not by swapping
 * the operands): the sorts' tie orders depend on that.
 */
class MyVariant
{
public:
    explicit MyVariant(const QVariant& value);
    MyVariant(const QVariant& value, bool ascending, PF_LESS_THAN pfLessThan);
    MyVariant(const QVariant& value, bool ascending, QObject* object, const QString& compareFunctionName);
    MyVariant(const QVariant& value, bool ascending, QJSEngine* engine, QJSValue* function);

    bool operator<(const MyVariant& other) const;
    bool operator>(const MyVariant& other) const;
    QString toString() const;
    //! What toString() gives for a MyVariant of this value.
    static QString textOf(const QVariant& value);

    const QVariant& value() const { return m_value; }
    bool ascending() const { return m_ascending; }
    //! True when the comparison is the built-in, type-aware one.
    bool usesBuiltInComparison() const;

    //! True when values of this QVariant type are ordered by the built-in comparison.
    static bool isComparableType(int type);

private:
    bool callbackLess(const QVariant& left, const QVariant& right, bool* handled) const;

    QVariant m_reserved;
    QVariant m_value;
    bool m_ascending = true;
    PF_LESS_THAN m_lessThan;
    QObject* m_qmlObject = nullptr;
    QString m_compareFunctionName;
    QJSEngine* m_jsEngine = nullptr;
    QJSValue* m_jsFunction = nullptr;
};

#endif // MYVARIANT_H
