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

    void textGivenForAListReadsAsEmpty_data()
    {
        QTest::addColumn<QVariantList>("given");
        QTest::addColumn<QVariantList>("read");
        const QVariantList rules{QVariantMap{{"RoleName", "nameRole"}}};
        QTest::newRow("characters of a text") << QVariantList{QChar('a'), QChar('b')} << QVariantList();
        QTest::newRow("empty list") << QVariantList() << QVariantList();
        QTest::newRow("rule maps") << rules << rules;
        QTest::newRow("characters among other values")
            << QVariantList{QChar('a'), 1} << QVariantList{QChar('a'), 1};
        QTest::newRow("one-character strings") << QVariantList{QStringLiteral("a")} << QVariantList{QStringLiteral("a")};
    }

    void textGivenForAListReadsAsEmpty()
    {
        QFETCH(QVariantList, given);
        QFETCH(QVariantList, read);
        QCOMPARE(VariantRules::listArgument(given), read);
    }

    void byteArraysCompareOverTheirWholeLength_data()
    {
        QTest::addColumn<QByteArray>("left");
        QTest::addColumn<QByteArray>("right");
        QTest::addColumn<int>("sign");
        QTest::newRow("embedded NUL is longer") << QByteArray("ab") << QByteArray("ab\0", 3) << -1;
        QTest::newRow("after the NUL") << QByteArray("a\0b", 3) << QByteArray("a\0c", 3) << -1;
        QTest::newRow("equal") << QByteArray("abc") << QByteArray("abc") << 0;
        QTest::newRow("high bytes are unsigned") << QByteArray("\xff") << QByteArray("a") << 1;
        QTest::newRow("null and empty") << QByteArray() << QByteArray("") << 0;
    }

    void byteArraysCompareOverTheirWholeLength()
    {
        QFETCH(QByteArray, left);
        QFETCH(QByteArray, right);
        QFETCH(int, sign);
        const int c = VariantRules::compareBytes(left, right);
        QCOMPARE(c < 0 ? -1 : (c > 0 ? 1 : 0), sign);
        const int mirrored = VariantRules::compareBytes(right, left);
        QCOMPARE(mirrored < 0 ? -1 : (mirrored > 0 ? 1 : 0), -sign);
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
