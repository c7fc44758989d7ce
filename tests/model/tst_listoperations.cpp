// Bulk loading: AppendItemsList, PrependItemsList, ReplaceItemsList,
// ReplaceItemsListEx and ClearAllSourceContainer.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <memory>

using namespace TestSupport;

namespace {

const int KeepRemoved = XOLATreeModel::KeepRemovedItemsOption;
const int MergeDuplicates = XOLATreeModel::MergeDuplicatesOption;

//! Deletes the model, and the rows it still lists when it keeps removed items.
struct ModelDeleter {
    void operator()(XOLATreeModel* model) const
    {
        QList<QObject*> listed;
        if (model->flags() & KeepRemoved) {
            for (int row = 0; row < model->rowCount(); ++row)
                listed << model->FindItem(row);
        }
        delete model;
        qDeleteAll(listed);
    }
};

using ModelPtr = std::unique_ptr<XOLATreeModel, ModelDeleter>;

ModelPtr modelWith(const QStringList& rowIds, int flags = 0, PF_COPY_ITEM copy = nullptr)
{
    ModelPtr model(createModel(flags, {}, std::move(copy)));
    if (model && !rowIds.isEmpty())
        appendEach(model.get(), items(rowIds));
    return model;
}

bool keepSortedByName(XOLATreeModel* model)
{
    const QVariantList rules{QVariantMap{{"RoleName", "nameRole"}, {"Ascending", true}}};
    model->SortByRules(rules, XOLATreeModel::KeepSorting);
    return model->sortFlag() == XOLATreeModel::KeepSorting;
}

QString range(const char* name, int first, int last)
{
    return QStringLiteral("%1(%2,%3)").arg(QLatin1String(name)).arg(first).arg(last);
}

QStringList inserted(int first, int last)
{
    return {range("rowsAboutToBeInserted", first, last), range("rowsInserted", first, last)};
}

QStringList removed(int first, int last)
{
    return {range("rowsAboutToBeRemoved", first, last), range("rowsRemoved", first, last)};
}

QString dataChanged(int first, int last)
{
    return range("dataChanged", first, last);
}

QList<QObject*> objects(const IXOLATreeModel* model)
{
    QList<QObject*> result;
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->FindItem(row);
    return result;
}

QList<QObject*> asObjects(const QList<XOLATreeItem*>& list)
{
    QList<QObject*> result;
    for (XOLATreeItem* item : list)
        result << item;
    return result;
}

QList<QPointer<XOLATreeItem>> guards(const IXOLATreeModel* model)
{
    QList<QPointer<XOLATreeItem>> result;
    for (QObject* object : objects(model))
        result << QPointer<XOLATreeItem>(qobject_cast<XOLATreeItem*>(object));
    return result;
}

int alive(const QList<QPointer<XOLATreeItem>>& list)
{
    int count = 0;
    for (const auto& guard : list)
        count += guard.isNull() ? 0 : 1;
    return count;
}

//! Row counts seen by views at each rowsAboutToBeInserted/Removed notice.
class CountAtNotice : public QObject
{
public:
    explicit CountAtNotice(QAbstractItemModel* model)
    {
        connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, [this, model] { counts << model->rowCount(); });
        connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, [this, model] { counts << model->rowCount(); });
    }
    QList<int> counts;
};

} // namespace

class TestListOperations : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    // ---- AppendItemsList -------------------------------------------------------

    void appendItemsList_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("two onto three") << QStringList({"a", "b", "c"}) << QStringList({"d", "e"})
                                        << (inserted(3, 4) << "rowCountChanged()");
        QTest::newRow("three onto empty") << QStringList() << QStringList({"a", "b", "c"})
                                          << (inserted(0, 2) << "rowCountChanged()");
        QTest::newRow("one onto one") << QStringList({"a"}) << QStringList({"b"})
                                      << (inserted(1, 1) << "rowCountChanged()");
    }

    void appendItemsList()
    {
        QFETCH(QStringList, before);
        QFETCH(QStringList, added);
        QFETCH(QStringList, expected);
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith(before);
        const QList<QObject*> old = objects(model.get());
        SignalLog log(model.get());
        CountAtNotice counts(model.get());
        const QList<XOLATreeItem*> list = items(added);
        // When
        QVERIFY(model->AppendItemsList(list));
        // Then one notice for all rows, given once the rows are already listed.
        QCOMPARE(log.take(), expected);
        QCOMPARE(counts.counts, QList<int>({int(before.size() + added.size())}));
        QCOMPARE(ids(model.get()), before + added);
        QCOMPARE(objects(model.get()), old + asObjects(list));
        for (XOLATreeItem* item : list) {
            QCOMPARE(model->FindItem(item->id()), item);
            QCOMPARE(model->FindItemRow(item->id()), before.size() + list.indexOf(item));
        }
        // The new rows follow their items.
        list.last()->SetName("renamed");
        QCOMPARE(log.take(), QStringList({dataChanged(model->rowCount() - 1, model->rowCount() - 1)}));
    }

    void appendItemsList_emptyOrOnlyNulls_data()
    {
        QTest::addColumn<int>("nulls");
        QTest::newRow("empty list") << 0;
        QTest::newRow("only nulls") << 2;
    }

    void appendItemsList_emptyOrOnlyNulls()
    {
        QFETCH(int, nulls);
        ModelPtr model = modelWith({"a", "b"});
        SignalLog log(model.get());
        QList<XOLATreeItem*> list;
        for (int i = 0; i < nulls; ++i)
            list << nullptr;
        QVERIFY(model->AppendItemsList(list));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "b"}));
    }

    void appendItemsList_skipsNulls()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"a", "b", "c"});
        SignalLog log(model.get());
        XOLATreeItem* d = item("d");
        XOLATreeItem* e = item("e");
        QVERIFY(model->AppendItemsList({nullptr, d, nullptr, e, nullptr}));
        QCOMPARE(log.take(), inserted(3, 4) << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c", "d", "e"}));
        QCOMPARE(model->FindItem(3), d);
        QCOMPARE(model->FindItem(4), e);
    }

    void appendItemsList_equalIdsMergeIntoTheFirst()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith({"x", "y", "z"}, MergeDuplicates);
        SignalLog log(model.get());
        XOLATreeItem* a1 = new XOLATreeItem("a", "first");
        QPointer<XOLATreeItem> a2(new XOLATreeItem("a", "second"));
        // When
        QVERIFY(model->AppendItemsList({a1, a2.data()}));
        // Then one row (a1) carrying a2's values; a2 deleted at once.
        QCOMPARE(log.take(), inserted(3, 3) << "rowCountChanged()");
        QVERIFY(a2.isNull());
        QCOMPARE(ids(model.get()), QStringList({"x", "y", "z", "a"}));
        QCOMPARE(model->FindItem(3), a1);
        QCOMPARE(model->FindItem("a"), a1);
        QCOMPARE(a1->name(), QString("second"));
        a1->SetName("third");
        QCOMPARE(log.take(), QStringList({dataChanged(3, 3)}));
    }

    void appendItemsList_allDuplicates_data()
    {
        QTest::addColumn<bool>("valuesChange");
        QTest::newRow("values change") << true;
        QTest::newRow("values equal") << false;
    }

    void appendItemsList_allDuplicates()
    {
        QFETCH(bool, valuesChange);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"}, MergeDuplicates);
        const QList<QObject*> old = objects(model.get());
        SignalLog log(model.get());
        ItemSignalLog itemLog(model->FindItem("c"));
        const QString suffix = valuesChange ? "-new" : "";
        QPointer<XOLATreeItem> c2(new XOLATreeItem("c", "name-c" + suffix));
        QPointer<XOLATreeItem> a2(new XOLATreeItem("a", "name-a" + suffix));
        // When
        QVERIFY(model->AppendItemsList({c2.data(), a2.data()}));
        // Then values are merged, with no row notices, no count and no dataChanged.
        QCOMPARE(log.take(), QStringList());
        QVERIFY(c2.isNull());
        QVERIFY(a2.isNull());
        QCOMPARE(objects(model.get()), old);
        QCOMPARE(names(model.get()),
                 QStringList({"name-a" + suffix, "name-b", "name-c" + suffix}));
        QCOMPARE(itemLog.take(), valuesChange ? QStringList({"valueChanged()"}) : QStringList());
        // The merged rows still follow their items afterwards.
        static_cast<XOLATreeItem*>(old.at(2))->SetName("later");
        QCOMPARE(log.take(), QStringList({dataChanged(2, 2)}));
    }

    void appendItemsList_mixedNewAndDuplicates()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        QList<QPair<QString, QString>> merges;
        PF_COPY_ITEM copy = [&](const QObject* source, QObject* destination) {
            merges << qMakePair(qobject_cast<const XOLATreeItem*>(source)->name(),
                                qobject_cast<XOLATreeItem*>(destination)->name());
        };
        ModelPtr model = modelWith({"a", "b"}, MergeDuplicates, copy);
        SignalLog log(model.get());
        XOLATreeItem* c = item("c");
        QPointer<XOLATreeItem> b2(new XOLATreeItem("b", "B2"));
        XOLATreeItem* d = item("d");
        // When
        QVERIFY(model->AppendItemsList({c, b2.data(), d}));
        // Then only the new ones are announced; the user function did the merge.
        QCOMPARE(log.take(), inserted(2, 3) << "rowCountChanged()");
        QCOMPARE(merges, (QList<QPair<QString, QString>>{{"B2", "name-b"}}));
        QVERIFY(b2.isNull());
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c", "d"}));
        QCOMPARE(model->FindItem(2), c);
        QCOMPARE(model->FindItem(3), d);
    }

    void appendItemsList_sameIdsWithoutMergeOption()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"a"});
        QObject* first = model->FindItem("a");
        SignalLog log(model.get());
        XOLATreeItem* a2 = item("a");
        XOLATreeItem* a3 = item("a");
        QVERIFY(model->AppendItemsList({a2, a3}));
        QCOMPARE(log.take(), inserted(1, 2) << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"a", "a", "a"}));
        QCOMPARE(objects(model.get()), QList<QObject*>({first, a2, a3}));
        QCOMPARE(model->FindItem("a"), a3);
    }

    void appendItemsList_listedObjectIsNotMergedAway()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"a", "b"}, MergeDuplicates);
        auto* a = static_cast<XOLATreeItem*>(model->FindItem("a"));
        QPointer<XOLATreeItem> guard(a);
        SignalLog log(model.get());
        XOLATreeItem* c = item("c");
        QVERIFY(model->AppendItemsList({a, c, c}));
        QCOMPARE(log.take(), inserted(2, 2) << "rowCountChanged()");
        flushDeferredDeletes();
        QVERIFY(!guard.isNull());
        QCOMPARE(objects(model.get()), QList<QObject*>({a, model->FindItem("b"), c}));
    }

    // ---- PrependItemsList ------------------------------------------------------

    void prependItemsList_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("three onto one") << QStringList({"x"}) << QStringList({"a", "b", "c"})
                                        << (inserted(0, 2) << "rowCountChanged()");
        QTest::newRow("two onto empty") << QStringList() << QStringList({"a", "b"})
                                        << (inserted(0, 1) << "rowCountChanged()");
    }

    void prependItemsList()
    {
        QFETCH(QStringList, before);
        QFETCH(QStringList, added);
        QFETCH(QStringList, expected);
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith(before);
        const QList<QObject*> old = objects(model.get());
        SignalLog log(model.get());
        CountAtNotice counts(model.get());
        const QList<XOLATreeItem*> list = items(added);
        // When
        QVERIFY(model->PrependItemsList(list));
        // Then the new rows head the list in the list's order.
        QCOMPARE(log.take(), expected);
        QCOMPARE(counts.counts, QList<int>({int(before.size() + added.size())}));
        QCOMPARE(ids(model.get()), added + before);
        QCOMPARE(objects(model.get()), asObjects(list) + old);
        for (XOLATreeItem* item : list)
            QCOMPARE(model->FindItem(item->id()), item);
        list.first()->SetName("renamed");
        QCOMPARE(log.take(), QStringList({dataChanged(0, 0)}));
    }

    void prependItemsList_emptyOrOnlyNulls()
    {
        ModelPtr model = modelWith({"a"});
        SignalLog log(model.get());
        QVERIFY(model->PrependItemsList({}));
        QVERIFY(model->PrependItemsList({nullptr, nullptr}));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a"}));
    }

    void prependItemsList_skipsNulls()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"x"});
        SignalLog log(model.get());
        XOLATreeItem* a = item("a");
        XOLATreeItem* b = item("b");
        QVERIFY(model->PrependItemsList({a, nullptr, b}));
        QCOMPARE(log.take(), inserted(0, 1) << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "x"}));
    }

    void prependItemsList_equalIdsMergeIntoTheLast()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith({"x"}, MergeDuplicates);
        SignalLog log(model.get());
        QPointer<XOLATreeItem> a1(new XOLATreeItem("a", "first"));
        XOLATreeItem* b = item("b");
        XOLATreeItem* a2 = new XOLATreeItem("a", "second");
        // When
        QVERIFY(model->PrependItemsList({a1.data(), b, a2}));
        // Then the later one is listed and carries the earlier one's values.
        QCOMPARE(log.take(), inserted(0, 1) << "rowCountChanged()");
        QVERIFY(a1.isNull());
        QCOMPARE(ids(model.get()), QStringList({"b", "a", "x"}));
        QCOMPARE(model->FindItem(1), a2);
        QCOMPARE(model->FindItem("a"), a2);
        QCOMPARE(a2->name(), QString("first"));
    }

    void prependItemsList_allDuplicates()
    {
        ModelPtr model = modelWith({"a", "b"}, MergeDuplicates);
        const QList<QObject*> old = objects(model.get());
        SignalLog log(model.get());
        QPointer<XOLATreeItem> b2(new XOLATreeItem("b", "B2"));
        QVERIFY(model->PrependItemsList({b2.data()}));
        QCOMPARE(log.take(), QStringList());
        QVERIFY(b2.isNull());
        QCOMPARE(objects(model.get()), old);
        QCOMPARE(names(model.get()), QStringList({"name-a", "B2"}));
    }

    void prependItemsList_mergeIntoAnOldRowKeepsItsRow()
    {
        // Later item changes of the merged row name the row views know.
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"x", "y"}, MergeDuplicates);
        SignalLog log(model.get());
        QPointer<XOLATreeItem> y2(new XOLATreeItem("y", "Y2"));
        QVERIFY(model->PrependItemsList({item("a"), y2.data(), item("b")}));
        QCOMPARE(log.take(), inserted(0, 1) << "rowCountChanged()");
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "x", "y"}));
        QCOMPARE(model->FindItemValue(3, int(XOLATreeItem::NameRole)).toString(), QString("Y2"));
        static_cast<XOLATreeItem*>(model->FindItem("y"))->SetName("Y3");
        QCOMPARE(log.take(), QStringList({dataChanged(3, 3)}));
    }

    // ---- ReplaceItemsList --------------------------------------------------------

    void replaceItemsList_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("replacement");
        QTest::addColumn<QStringList>("expected");
        const QStringList removeThree = removed(0, 2) << "allItemRemoved()" << "rowCountChanged()";
        QTest::newRow("three by two") << 0 << QStringList({"a", "b", "c"}) << QStringList({"d", "e"})
                                      << (removeThree + inserted(0, 1) << "rowCountChanged()");
        QTest::newRow("three by nothing") << 0 << QStringList({"a", "b", "c"}) << QStringList() << removeThree;
        QTest::newRow("empty by two") << 0 << QStringList() << QStringList({"d", "e"})
                                      << (inserted(0, 1) << "rowCountChanged()");
        QTest::newRow("empty by nothing") << 0 << QStringList() << QStringList() << QStringList();
        QTest::newRow("keeping removed items") << KeepRemoved << QStringList({"a", "b", "c"})
                                               << QStringList({"d"})
                                               << (removeThree + inserted(0, 0) << "rowCountChanged()");
    }

    void replaceItemsList()
    {
        QFETCH(int, flags);
        QFETCH(QStringList, before);
        QFETCH(QStringList, replacement);
        QFETCH(QStringList, expected);
        // The rows of the replacement are announced once they are in.
        if (!replacement.isEmpty())
            ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith(before, flags);
        const auto oldItems = guards(model.get());
        SignalLog log(model.get());
        const QList<XOLATreeItem*> list = items(replacement);
        // When
        QVERIFY(model->ReplaceItemsList(list));
        // Then a full removal, then one insertion.
        QCOMPARE(log.take(), expected);
        QCOMPARE(ids(model.get()), replacement);
        QCOMPARE(objects(model.get()), asObjects(list));
        for (const QString& id : before)
            QCOMPARE(model->FindItem(id), nullptr);
        // Old items go later, through the event loop, unless they are kept.
        QCOMPARE(alive(oldItems), before.size());
        flushDeferredDeletes();
        QCOMPARE(alive(oldItems), (flags & KeepRemoved) ? before.size() : 0);
        if (flags & KeepRemoved) {
            for (const auto& guard : oldItems)
                delete guard.data();
        }
    }

    // ---- ReplaceItemsListEx -------------------------------------------------------

    void replaceItemsListEx_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("replacement");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("five by three") << QStringList({"a", "b", "c", "d", "e"}) << QStringList({"x", "y", "z"})
                                       << (removed(3, 4) << "rowCountChanged()" << dataChanged(0, 2));
        QTest::newRow("three by three") << QStringList({"a", "b", "c"}) << QStringList({"x", "y", "z"})
                                        << QStringList({dataChanged(0, 2)});
        QTest::newRow("two by four") << QStringList({"a", "b"}) << QStringList({"w", "x", "y", "z"})
                                     << (inserted(2, 3) << "rowCountChanged()" << dataChanged(0, 3));
        QTest::newRow("empty by two") << QStringList() << QStringList({"x", "y"})
                                      << (inserted(0, 1) << "rowCountChanged()" << dataChanged(0, 1));
        QTest::newRow("five by nothing") << QStringList({"a", "b", "c", "d", "e"}) << QStringList()
                                         << (removed(0, 4) << "rowCountChanged()");
        QTest::newRow("empty by nothing") << QStringList() << QStringList() << QStringList();
    }

    void replaceItemsListEx()
    {
        QFETCH(QStringList, before);
        QFETCH(QStringList, replacement);
        QFETCH(QStringList, expected);
        // The rows added or dropped are announced once they are in or out.
        if (before.size() != replacement.size())
            ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith(before);
        const auto oldItems = guards(model.get());
        SignalLog log(model.get());
        CountAtNotice counts(model.get());
        const QList<XOLATreeItem*> list = items(replacement);
        // When
        QVERIFY(model->ReplaceItemsListEx(list));
        // Then only the difference in count is announced, after the change.
        QCOMPARE(log.take(), expected);
        if (before.size() != replacement.size())
            QCOMPARE(counts.counts, QList<int>({int(replacement.size())}));
        QCOMPARE(ids(model.get()), replacement);
        QCOMPARE(objects(model.get()), asObjects(list));
        for (XOLATreeItem* item : list)
            QCOMPARE(model->FindItem(item->id()), item);
        for (const QString& id : before)
            QCOMPARE(model->FindItem(id), nullptr);
        // The old items are deleted at once.
        QCOMPARE(alive(oldItems), 0);
        // The new items are not followed.
        for (XOLATreeItem* item : list)
            item->SetName("renamed");
        QCOMPARE(log.take(), QStringList());
    }

    void replaceItemsListEx_keepingRemovedItems()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"a", "b", "c"}, KeepRemoved);
        const auto oldItems = guards(model.get());
        SignalLog log(model.get());
        const QList<XOLATreeItem*> list = items({"x"});
        QVERIFY(model->ReplaceItemsListEx(list));
        QCOMPARE(log.take(), removed(1, 2) << "rowCountChanged()" << dataChanged(0, 0));
        QCOMPARE(ids(model.get()), QStringList({"x"}));
        QCOMPARE(model->FindItem("a"), nullptr);
        flushDeferredDeletes();
        QCOMPARE(alive(oldItems), 3);
        for (const auto& guard : oldItems)
            delete guard.data();
    }

    void replaceItemsListEx_dropsNulls()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"a", "b", "c"});
        SignalLog log(model.get());
        XOLATreeItem* x = item("x");
        XOLATreeItem* y = item("y");
        QVERIFY(model->ReplaceItemsListEx({x, nullptr, y, nullptr}));
        QCOMPARE(log.take(), removed(2, 2) << "rowCountChanged()" << dataChanged(0, 1));
        QCOMPARE(objects(model.get()), QList<QObject*>({x, y}));
        QCOMPARE(ids(model.get()), QStringList({"x", "y"}));
    }

    void replaceItemsListEx_equalIdsAreAllListed()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({}, MergeDuplicates);
        SignalLog log(model.get());
        XOLATreeItem* a1 = item("a");
        XOLATreeItem* a2 = item("a");
        QVERIFY(model->ReplaceItemsListEx({a1, a2}));
        QCOMPARE(log.take(), inserted(0, 1) << "rowCountChanged()" << dataChanged(0, 1));
        QCOMPARE(objects(model.get()), QList<QObject*>({a1, a2}));
        QCOMPARE(model->FindItem("a"), a2);
    }

    void replaceItemsListEx_itemsStayingListedSurvive()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"});
        auto* b = static_cast<XOLATreeItem*>(model->FindItem("b"));
        QPointer<XOLATreeItem> a(static_cast<XOLATreeItem*>(model->FindItem("a")));
        QPointer<XOLATreeItem> c(static_cast<XOLATreeItem*>(model->FindItem("c")));
        QPointer<XOLATreeItem> bGuard(b);
        SignalLog log(model.get());
        XOLATreeItem* d = item("d");
        // When b stays
        QVERIFY(model->ReplaceItemsListEx({b, d}));
        // Then
        QCOMPARE(log.take(), removed(2, 2) << "rowCountChanged()" << dataChanged(0, 1));
        QVERIFY(a.isNull());
        QVERIFY(c.isNull());
        flushDeferredDeletes();
        QVERIFY(!bGuard.isNull());
        QCOMPARE(objects(model.get()), QList<QObject*>({b, d}));
        QCOMPARE(model->FindItem("b"), b);
    }

    void replaceItemsListEx_deletesChildModelsAtOnce()
    {
        // Given a row whose child model has rows of its own
        XOLATreeModel* child = createModel();
        XOLATreeItem* grandChild = item("g");
        child->AppendItem(grandChild);
        QPointer<XOLATreeModel> childGuard(child);
        QPointer<XOLATreeItem> grandChildGuard(grandChild);
        ModelPtr model = modelWith({});
        model->AppendItem(item("a", child));
        SignalLog childLog(child);
        // When
        QVERIFY(model->ReplaceItemsListEx({item("b")}));
        // Then the child and its rows are gone at once, silently.
        QVERIFY(childGuard.isNull());
        QVERIFY(grandChildGuard.isNull());
        QCOMPARE(childLog.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"b"}));
    }

    void replaceItemsListEx_runsNoKeepSorting()
    {
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr model = modelWith({"b", "a"});
        if (!keepSortedByName(model.get()))
            QSKIP("this build does not sort yet");
        SignalLog log(model.get());
        QVERIFY(model->ReplaceItemsListEx(items({"z", "y", "x"})));
        QCOMPARE(log.take(), inserted(2, 2) << "rowCountChanged()" << dataChanged(0, 2));
        QCOMPARE(ids(model.get()), QStringList({"z", "y", "x"}));
    }

    // ---- ClearAllSourceContainer ------------------------------------------------

    void clearAllSourceContainer()
    {
        // Given rows, one with a child model holding a row with a child model
        XOLATreeModel* grandChildModel = createModel();
        grandChildModel->AppendItem(item("gg"));
        XOLATreeModel* child = createModel();
        child->AppendItem(item("g", grandChildModel));
        ModelPtr model = modelWith({"a"});
        model->AppendItem(item("b", child));
        const auto rows = guards(model.get());
        const auto childRows = guards(child);
        const auto grandChildRows = guards(grandChildModel);
        QPointer<XOLATreeModel> childGuard(child);
        QPointer<XOLATreeModel> grandChildGuard(grandChildModel);
        SignalLog log(model.get());
        SignalLog childLog(child);
        // When
        model->ClearAllSourceContainer();
        // Then everything below is deleted at once, with no notice at all.
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(childLog.take(), QStringList());
        QCOMPARE(model->rowCount(), 0);
        QCOMPARE(model->FindItem("a"), nullptr);
        QCOMPARE(alive(rows), 0);
        QCOMPARE(alive(childRows), 0);
        QCOMPARE(alive(grandChildRows), 0);
        QVERIFY(childGuard.isNull());
        QVERIFY(grandChildGuard.isNull());
        // An empty model stays silent too.
        model->ClearAllSourceContainer();
        QCOMPARE(log.take(), QStringList());
    }

    void clearAllSourceContainer_ignoresTheKeepOption()
    {
        ModelPtr model = modelWith({"a", "b"}, KeepRemoved);
        const auto rows = guards(model.get());
        model->ClearAllSourceContainer();
        QCOMPARE(alive(rows), 0);
        QCOMPARE(model->rowCount(), 0);
    }

    // ---- keep-sorting -------------------------------------------------------------

    void keepSorting_listLoaders_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<ModelTesters::Departures>("departures");
        // Rows b, d kept sorted by name.
        QTest::newRow("append")
            << "AppendItemsList" << QStringList({"e", "a"})
            << (inserted(2, 3) << dataChanged(0, 3) << "rowCountChanged()") << QStringList({"a", "b", "d", "e"})
            << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
        QTest::newRow("prepend")
            << "PrependItemsList" << QStringList({"e", "c"})
            << (inserted(0, 1) << dataChanged(0, 3) << "rowCountChanged()") << QStringList({"b", "c", "d", "e"})
            << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
        QTest::newRow("append, all merged")
            << "AppendItemsList" << QStringList({"d"}) << QStringList({dataChanged(0, 1)})
            << QStringList({"b", "d"}) << ModelTesters::Departures();
        QTest::newRow("prepend, all merged")
            << "PrependItemsList" << QStringList({"b"}) << QStringList({dataChanged(0, 1)})
            << QStringList({"b", "d"}) << ModelTesters::Departures();
        QTest::newRow("append, empty list") << "AppendItemsList" << QStringList() << QStringList()
                                            << QStringList({"b", "d"}) << ModelTesters::Departures();
        QTest::newRow("prepend, empty list") << "PrependItemsList" << QStringList()
                                             << QStringList({dataChanged(0, 1)}) << QStringList({"b", "d"})
            << ModelTesters::Departures();
        QTest::newRow("replace")
            << "ReplaceItemsList" << QStringList({"z", "y"})
            << (removed(0, 1) << "allItemRemoved()" << "rowCountChanged()" << inserted(0, 1) << dataChanged(0, 1)
                              << "rowCountChanged()")
            << QStringList({"y", "z"}) << ModelTesters::Departures{ModelTesters::ListLoadAfterChange};
    }

    void keepSorting_listLoaders()
    {
        QFETCH(QString, operation);
        QFETCH(QStringList, added);
        QFETCH(QStringList, expected);
        QFETCH(QStringList, after);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        // Given
        ModelPtr model = modelWith({"d", "b"}, MergeDuplicates);
        if (!keepSortedByName(model.get()))
            QSKIP("this build does not sort yet");
        SignalLog log(model.get());
        const QList<XOLATreeItem*> list = items(added);
        // When
        bool result = false;
        if (operation == "AppendItemsList")
            result = model->AppendItemsList(list);
        else if (operation == "PrependItemsList")
            result = model->PrependItemsList(list);
        else
            result = model->ReplaceItemsList(list);
        // Then the re-sort comes after the rows and before the count.
        QVERIFY(result);
        QCOMPARE(log.take(), expected);
        QCOMPARE(ids(model.get()), after);
    }
};

QTEST_GUILESS_MAIN(TestListOperations)

#include "tst_listoperations.moc"
