#ifndef VARIANTCASES_H
#define VARIANTCASES_H

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <functional>

// The values whose ordering, equality, "missing" state and conversions the
// library answers alike whatever Qt it is built with; each has a short name
// for the answer table.
QList<QPair<QString, QVariant>> variantCases();

// The types that conversions are asked about, with their names in the table.
QList<QPair<QString, int>> conversionTargets();

// A fixed text for a value: its type under a name of our own and its content,
// written the same way with every Qt.
QString canonicalText(const QVariant& value);

// One answer table for the given functions, one line an answer:
//   unary:  "<question> <value>: <answer>"
//   binary: "<question> <left> <right>: <answer>"
struct VariantQuestions
{
    std::function<bool(const QVariant&)> isNull;
    std::function<QString(const QVariant&)> toText; // toString
    std::function<bool(const QVariant&)> toBool;
    std::function<int(const QVariant&, bool*)> toInt;
    std::function<qlonglong(const QVariant&, bool*)> toLongLong;
    std::function<uint(const QVariant&, bool*)> toUInt;
    std::function<double(const QVariant&, bool*)> toDouble;
    std::function<QStringList(const QVariant&)> toStringList;
    std::function<bool(const QVariant&, int)> canConvert;
    std::function<bool(QVariant&, int)> convert;
    std::function<int(const QVariant&, const QVariant&)> compareSign;
    std::function<bool(const QVariant&, const QVariant&)> equals;
};
QStringList answerTable(const VariantQuestions& questions);

#endif // VARIANTCASES_H
