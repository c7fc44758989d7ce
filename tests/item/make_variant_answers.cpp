// Writes the answer table of the library's value rules as Qt 5.15's QVariant
// gives them: the answers hosts have relied on since the first release. Built
// only against Qt 5; its output is committed as tests/data/variant-answers.txt
// and every build checks the library against it.
//
//   make_variant_answers > tests/data/variant-answers.txt
#include "VariantCases.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    VariantQuestions q;
    q.isNull = [](const QVariant& v) { return v.isNull(); };
    q.toText = [](const QVariant& v) { return v.toString(); };
    q.toBool = [](const QVariant& v) { return v.toBool(); };
    q.toInt = [](const QVariant& v, bool* ok) { return v.toInt(ok); };
    q.toLongLong = [](const QVariant& v, bool* ok) { return v.toLongLong(ok); };
    q.toUInt = [](const QVariant& v, bool* ok) { return v.toUInt(ok); };
    q.toDouble = [](const QVariant& v, bool* ok) { return v.toDouble(ok); };
    q.toStringList = [](const QVariant& v) { return v.toStringList(); };
    q.canConvert = [](const QVariant& v, int type) { return v.canConvert(type); };
    q.convert = [](QVariant& v, int type) { return v.convert(type); };
    q.compareSign = [](const QVariant& a, const QVariant& b) {
        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED
        return a < b ? -1 : (a > b ? 1 : 0);
        QT_WARNING_POP
    };
    q.equals = [](const QVariant& a, const QVariant& b) { return a == b; };
    QTextStream out(stdout);
    for (const QString& line : answerTable(q))
        out << line << '\n';
    return 0;
}
