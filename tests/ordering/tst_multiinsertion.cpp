// The multi-insertion behind every sort: rows come out in the order that
// existing hosts have always seen, for consistent and for self-contradicting
// comparisons alike. The expected orders are the ones Qt 5.15's QMultiMap
// gave for the same insertions, which the sorts were first built on.
#include "MultiInsertionTree.h"

#include <QtTest/QtTest>

namespace {

// A key whose comparison is chosen by mode: always less, never less, less or
// equal (a descending key), a pseudo-random answer per pair, and a consistent
// order with many ties.
struct Key
{
    int value;
    int mode;
    bool operator<(const Key& other) const
    {
        switch (mode) {
        case 0: return true;
        case 1: return false;
        case 2: return value <= other.value;
        case 3: {
            quint32 h = quint32(value) * 2654435761u ^ quint32(other.value) * 40503u;
            h ^= h >> 13;
            return (h & 1) != 0;
        }
        default: return (value % 7) < (other.value % 7);
        }
    }
};

QString orderOf(int mode)
{
    MultiInsertionTree<Key, int> tree;
    for (int i = 0; i < 40; ++i)
        tree.insert(Key{(i * 37 + 11) % 23, mode}, i);
    QStringList out;
    for (int row : tree.values())
        out << QString::number(row);
    return out.join(QLatin1Char(','));
}

} // namespace

class tst_MultiInsertion : public QObject
{
    Q_OBJECT

private slots:
    void order_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("expected");
        QTest::newRow("always less") << 0 << "0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,"
                                            "28,29,30,31,32,33,34,35,36,37,38,39";
        QTest::newRow("never less") << 1 << "39,38,37,36,35,34,33,32,31,30,29,28,27,26,25,24,23,22,21,20,19,18,17,16,15,"
                                            "14,13,12,11,10,9,8,7,6,5,4,3,2,1,0";
        QTest::newRow("less or equal") << 2 << "14,37,19,1,24,6,29,11,34,16,39,21,3,26,8,31,13,36,18,0,23,5,28,10,33,15,"
                                               "38,20,2,25,7,30,12,35,17,22,4,27,9,32";
        QTest::newRow("contradicting") << 3 << "32,37,35,27,4,0,2,6,8,10,16,18,19,20,21,23,25,29,31,33,39,38,36,34,30,28,"
                                               "26,24,15,13,11,7,5,3,1,9,17,22,14,12";
        QTest::newRow("ties") << 4 << "38,37,27,26,15,14,4,3,32,31,20,19,9,8,36,25,24,13,2,1,30,29,18,7,6,35,34,23,12,11,"
                                      "0,39,28,17,16,5,33,22,21,10";
    }

    void order()
    {
        QFETCH(int, mode);
        QFETCH(QString, expected);
        // Given 40 rows inserted in row order, when read back in key order
        // Then the rows stand as the original multi-map placed them
        QCOMPARE(orderOf(mode), expected);
    }

    void emptyTreeHasNoValues()
    {
        MultiInsertionTree<Key, int> tree;
        QCOMPARE(tree.size(), 0);
        QVERIFY(tree.values().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_MultiInsertion)
#include "tst_multiinsertion.moc"
