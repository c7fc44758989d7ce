// The library's value rules against the committed answer table: ordering,
// equality, missing values and conversions must give the answers that stored
// rule lists and sorted data have always had, whatever Qt the library uses.
#include "VariantCases.h"
#include "VariantRules.h"

#include <QtCore/QFile>
#include <QtTest/QtTest>

class tst_VariantRules : public QObject
{
    Q_OBJECT

private:
    static VariantQuestions libraryRules()
    {
        VariantQuestions q;
        q.isNull = [](const QVariant& v) { return VariantRules::isNull(v); };
        q.toText = [](const QVariant& v) { return VariantRules::toString(v); };
        q.toBool = [](const QVariant& v) { return VariantRules::toBool(v); };
        q.toInt = [](const QVariant& v, bool* ok) { return VariantRules::toInt(v, ok); };
        q.toLongLong = [](const QVariant& v, bool* ok) { return VariantRules::toLongLong(v, ok); };
        q.toUInt = [](const QVariant& v, bool* ok) { return VariantRules::toUInt(v, ok); };
        q.toDouble = [](const QVariant& v, bool* ok) { return VariantRules::toDouble(v, ok); };
        q.toStringList = [](const QVariant& v) { return VariantRules::toStringList(v); };
        q.canConvert = [](const QVariant& v, int type) { return VariantRules::canConvert(v, type); };
        q.convert = [](QVariant& v, int type) { return VariantRules::convert(v, type); };
        q.compareSign = [](const QVariant& a, const QVariant& b) {
            const int c = VariantRules::compare(a, b);
            return c < 0 ? -1 : (c > 0 ? 1 : 0);
        };
        q.equals = [](const QVariant& a, const QVariant& b) { return VariantRules::equals(a, b); };
        return q;
    }

private slots:
    void answersMatchTheTable()
    {
        // Given the committed answers
        QFile file(QStringLiteral(XOLA_TEST_DATA_DIR "/variant-answers.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        const QStringList expected = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        // When the library answers the same questions
        const QStringList actual = answerTable(libraryRules());
        // Then every answer is the same, line for line
        QCOMPARE(actual.size(), expected.size());
        QStringList mismatches;
        for (int i = 0; i < actual.size(); ++i) {
            if (actual.at(i) != expected.at(i))
                mismatches << QStringLiteral("expected %1\n     got %2").arg(expected.at(i), actual.at(i));
        }
        if (!mismatches.isEmpty())
            qWarning().noquote() << mismatches.size() << "answers differ:\n" << mismatches.mid(0, 60).join('\n');
        QCOMPARE(mismatches.size(), 0);
    }

    void descendingStringsThatDifferOnlyInCaseAreUnordered()
    {
        // Rule lists rely on "a" and "A" each comparing greater than the other.
        QVERIFY(VariantRules::compare(QStringLiteral("a"), QStringLiteral("A")) > 0);
        QVERIFY(VariantRules::compare(QStringLiteral("A"), QStringLiteral("a")) > 0);
        QVERIFY(VariantRules::compare(QStringLiteral("B"), QStringLiteral("a")) > 0);
        QVERIFY(VariantRules::compare(QStringLiteral("10"), 9) < 0);
    }
};

QTEST_GUILESS_MAIN(tst_VariantRules)
#include "tst_variantrules.moc"
