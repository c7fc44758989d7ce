// Single-item insertion: InsertItem, AppendItem, PrependItem, duplicate merging
// and the keep-sorting pass that follows every insertion.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <climits>
#include <memory>

using namespace TestSupport;

namespace {

using ModelPtr = std::unique_ptr<XOLATreeModel>;

const int MergeDuplicates = XOLATreeModel::MergeDuplicatesOption;

ModelPtr modelWith(const QStringList& rowIds, int flags = 0, const QHash<int, QByteArray>& roleNames = {},
                   PF_COPY_ITEM copy = nullptr)
{
    ModelPtr model(createModel(flags, roleNames, std::move(copy)));
    if (model && !rowIds.isEmpty())
        appendEach(model.get(), items(rowIds));
    return model;
}

//! Switches keep-sorting on, by name ascending; false while the build cannot sort.
bool keepSortedByName(XOLATreeModel* model)
{
    const QVariantList rules{QVariantMap{{"RoleName", "nameRole"}, {"Ascending", true}}};
    model->SortByRules(rules, XOLATreeModel::KeepSorting);
    return model->sortFlag() == XOLATreeModel::KeepSorting;
}

QString rowsInserted(int first, int last)
{
    return QStringLiteral("rowsInserted(%1,%2)").arg(first).arg(last);
}

QString aboutToInsert(int first, int last)
{
    return QStringLiteral("rowsAboutToBeInserted(%1,%2)").arg(first).arg(last);
}

QString dataChanged(int first, int last)
{
    return QStringLiteral("dataChanged(%1,%2)").arg(first).arg(last);
}

} // namespace

class TestInsertion : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    // ---- new rows ------------------------------------------------------------

    void appendItem_newRow_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::newRow("empty model") << QStringList();
        QTest::newRow("three rows") << QStringList({"a", "b", "c"});
    }

    void appendItem_newRow()
    {
        QFETCH(QStringList, before);
        // Given
        ModelPtr model = modelWith(before);
        SignalLog log(model.get());
        XOLATreeItem* n = item("n");
        const int row = before.size();
        // When
        QVERIFY(model->AppendItem(n));
        // Then
        QCOMPARE(log.take(), QStringList({aboutToInsert(row, row), rowsInserted(row, row), "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), before + QStringList{"n"});
        QCOMPARE(model->FindItem("n"), n);
        QCOMPARE(model->FindItem(row), n);
        QCOMPARE(model->FindItemRow("n"), row);
        // The new row follows its item's changes.
        n->SetName("renamed");
        QCOMPARE(log.take(), QStringList({dataChanged(row, row)}));
    }

    void insertItem_newRow_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<int>("row");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("empty, row 0") << QStringList() << 0 << QStringList({"n"});
        QTest::newRow("head") << QStringList({"a", "b", "c"}) << 0 << QStringList({"n", "a", "b", "c"});
        QTest::newRow("middle") << QStringList({"a", "b", "c"}) << 1 << QStringList({"a", "n", "b", "c"});
        QTest::newRow("before last") << QStringList({"a", "b", "c"}) << 2 << QStringList({"a", "b", "n", "c"});
        QTest::newRow("end") << QStringList({"a", "b", "c"}) << 3 << QStringList({"a", "b", "c", "n"});
    }

    void insertItem_newRow()
    {
        QFETCH(QStringList, before);
        QFETCH(int, row);
        QFETCH(QStringList, after);
        // Given
        ModelPtr model = modelWith(before);
        QList<QObject*> objects;
        for (int r = 0; r < model->rowCount(); ++r)
            objects << model->FindItem(r);
        SignalLog log(model.get());
        XOLATreeItem* n = item("n");
        // When
        QVERIFY(model->InsertItem(row, n));
        // Then
        QCOMPARE(log.take(), QStringList({aboutToInsert(row, row), rowsInserted(row, row), "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), after);
        objects.insert(row, n);
        for (int r = 0; r < model->rowCount(); ++r)
            QCOMPARE(model->FindItem(r), objects.at(r));
        QCOMPARE(model->FindItem("n"), n);
        QCOMPARE(model->FindItemRow("n"), row);
        n->SetName("renamed");
        QCOMPARE(log.take(), QStringList({dataChanged(row, row)}));
    }

    void insertItem_outOfRangeIsRefused_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("-1") << -1;
        QTest::newRow("count + 1") << 4;
        QTest::newRow("100") << 100;
        QTest::newRow("INT_MIN") << INT_MIN;
        QTest::newRow("INT_MAX") << INT_MAX;
    }

    void insertItem_outOfRangeIsRefused()
    {
        QFETCH(int, row);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"});
        SignalLog log(model.get());
        XOLATreeItem* n = item("n");
        QPointer<XOLATreeItem> guard(n);
        // When
        QVERIFY(!model->InsertItem(row, n));
        // Then nothing was announced or listed, and the caller keeps the item.
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c"}));
        QCOMPARE(model->FindItem("n"), nullptr);
        QCOMPARE(model->FindItemRow("n"), -1);
        QCOMPARE(model->FindItemRow("c"), 2);
        flushDeferredDeletes();
        QVERIFY(!guard.isNull());
        n->SetName("renamed"); // not connected to the model
        QCOMPARE(log.take(), QStringList());
        delete n;
    }

    void nullItemIsRefused_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::newRow("InsertItem") << "InsertItem";
        QTest::newRow("AppendItem") << "AppendItem";
        QTest::newRow("PrependItem") << "PrependItem";
    }

    void nullItemIsRefused()
    {
        QFETCH(QString, operation);
        ModelPtr model = modelWith({"a", "b"}, MergeDuplicates);
        SignalLog log(model.get());
        bool result = true;
        if (operation == "InsertItem")
            result = model->InsertItem(0, nullptr);
        else if (operation == "AppendItem")
            result = model->AppendItem(nullptr);
        else
            result = model->PrependItem(nullptr);
        QVERIFY(!result);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "b"}));
    }

    void prependItem_announcesTheOldEnd_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::newRow("empty model") << QStringList();
        QTest::newRow("three rows") << QStringList({"a", "b", "c"});
    }

    void prependItem_announcesTheOldEnd()
    {
        QFETCH(QStringList, before);
        // Into an empty model the old end is row 0, where the item goes.
        if (!before.isEmpty())
            ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        // Given
        ModelPtr model = modelWith(before);
        SignalLog log(model.get());
        XOLATreeItem* p = item("p");
        const int n = before.size();
        // When
        QVERIFY(model->PrependItem(p));
        // Then the row is announced at the old end while the item is row 0.
        QCOMPARE(log.take(), QStringList({aboutToInsert(n, n), rowsInserted(n, n), "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), QStringList{"p"} + before);
        QCOMPARE(model->FindItem(0), p);
        QCOMPARE(model->FindItem("p"), p);
        QCOMPARE(model->FindItemRow("p"), 0);
        p->SetName("renamed");
        QCOMPARE(log.take(), QStringList({dataChanged(0, 0)}));
    }

    void prependItem_rowsSeenByTheAnnouncement()
    {
        // Views that read the announced row during rowsInserted see the data
        // already grown at the front.
        ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        ModelPtr model = modelWith({"a", "b"});
        QStringList seen;
        QObject context; // ends the connection before seen goes
        connect(model.get(), &QAbstractItemModel::rowsInserted, &context, [&](const QModelIndex&, int first, int) {
            seen << model->FindItemID(first) << model->FindItemID(0);
        });
        QVERIFY(model->PrependItem(item("p")));
        QCOMPARE(seen, QStringList({"b", "p"}));
    }

    // ---- duplicates ----------------------------------------------------------

    void appendDuplicate_mergesIntoTheListedItem_data()
    {
        QTest::addColumn<QString>("newName");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("values change")
            << "B2" << QStringList({dataChanged(1, 1), dataChanged(1, 1), "rowCountChanged()"});
        QTest::newRow("values equal") << "name-b" << QStringList({dataChanged(1, 1), "rowCountChanged()"});
    }

    void appendDuplicate_mergesIntoTheListedItem()
    {
        QFETCH(QString, newName);
        QFETCH(QStringList, expected);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"}, MergeDuplicates);
        QObject* listed = model->FindItem("b");
        SignalLog log(model.get());
        QPointer<XOLATreeItem> incoming(new XOLATreeItem("b", newName));
        // When
        QVERIFY(model->AppendItem(incoming.data()));
        // Then: the merge's own change, the row's dataChanged, and the count.
        QCOMPARE(log.take(), expected);
        QVERIFY(incoming.isNull()); // deleted at once, not later
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c"}));
        QCOMPARE(model->FindItem(1), listed);
        QCOMPARE(model->FindItem("b"), listed);
        QCOMPARE(model->FindItemValue(1, int(XOLATreeItem::NameRole)).toString(), newName);
        // The listed item is still followed.
        static_cast<XOLATreeItem*>(listed)->SetName("again");
        QCOMPARE(log.take(), QStringList({dataChanged(1, 1)}));
    }

    void appendDuplicate_copiesEveryNamedRole()
    {
        // Given a model naming three extra roles, and a listed item with a free key
        ModelPtr model(createModel(MergeDuplicates, extendedRoleNames()));
        auto* listed = new ValueItem("v", "V", 1);
        QVariantMap json = listed->jsonValue();
        json.insert("free", 1);
        listed->SetJsonValue(json);
        QVERIFY(model->AppendItem(new ValueItem("x", "X")));
        QVERIFY(model->AppendItem(listed));
        SignalLog log(model.get());
        auto* incoming = new ValueItem("v", "V2", 2);
        QVariantMap incomingJson = incoming->jsonValue();
        incomingJson.insert("free", 2);
        incoming->SetJsonValue(incomingJson);
        // When
        QVERIFY(model->AppendItem(incoming));
        // Then name and value were copied (one change notice each), the free key
        // was not: role 260 is not among the model's names.
        QCOMPARE(log.take(),
                 QStringList({dataChanged(1, 1), dataChanged(1, 1), dataChanged(1, 1), "rowCountChanged()"}));
        QCOMPARE(model->FindItem(1), listed);
        QCOMPARE(listed->name(), QString("V2"));
        QCOMPARE(listed->getData(ValueItem::ValueRole), QVariant(2));
        QCOMPARE(listed->jsonValue().value("free"), QVariant(1));
        QCOMPARE(ids(model.get()), QStringList({"x", "v"}));
    }

    void appendDuplicate_userCopyFunctionRunsAlone()
    {
        // Given a merge function that records its calls and copies nothing
        QList<QPair<const QObject*, QObject*>> calls;
        QStringList sourceIds;
        PF_COPY_ITEM copy = [&](const QObject* source, QObject* destination) {
            calls << qMakePair(source, destination);
            sourceIds << qobject_cast<const XOLATreeItem*>(source)->id();
        };
        ModelPtr model = modelWith({"a", "b", "c"}, MergeDuplicates, {}, copy);
        QObject* listed = model->FindItem("b");
        SignalLog log(model.get());
        QPointer<XOLATreeItem> incoming(new XOLATreeItem("b", "B2"));
        XOLATreeItem* incomingRaw = incoming.data();
        // When
        QVERIFY(model->AppendItem(incoming.data()));
        // Then only the user function ran, with the new item first.
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls.first().first, static_cast<const QObject*>(incomingRaw));
        QCOMPARE(calls.first().second, listed);
        QCOMPARE(sourceIds, QStringList({"b"}));
        QCOMPARE(model->FindItemValue(1, int(XOLATreeItem::NameRole)).toString(), QString("name-b"));
        QCOMPARE(log.take(), QStringList({dataChanged(1, 1), "rowCountChanged()"}));
        QVERIFY(incoming.isNull());
        QCOMPARE(model->FindItem(1), listed);
    }

    void prependDuplicate_sendsNoCount()
    {
        // Given
        ModelPtr model = modelWith({"a", "b", "c"}, MergeDuplicates);
        QObject* listed = model->FindItem("c");
        SignalLog log(model.get());
        QPointer<XOLATreeItem> incoming(new XOLATreeItem("c", "C2"));
        // When
        QVERIFY(model->PrependItem(incoming.data()));
        // Then
        QCOMPARE(log.take(), QStringList({dataChanged(2, 2), dataChanged(2, 2)}));
        QVERIFY(incoming.isNull());
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c"}));
        QCOMPARE(model->FindItem(2), listed);
        QCOMPARE(model->FindItem("c"), listed);
        QCOMPARE(model->FindItemValue(2, int(XOLATreeItem::NameRole)).toString(), QString("C2"));
    }

    void prependDuplicate_userCopyFunction()
    {
        int calls = 0;
        ModelPtr model = modelWith({"a", "b"}, MergeDuplicates, {}, [&](const QObject*, QObject*) { ++calls; });
        SignalLog log(model.get());
        QPointer<XOLATreeItem> incoming(new XOLATreeItem("a", "A2"));
        QVERIFY(model->PrependItem(incoming.data()));
        QCOMPARE(calls, 1);
        QCOMPARE(log.take(), QStringList({dataChanged(0, 0)}));
        QVERIFY(incoming.isNull());
        QCOMPARE(model->FindItemValue(0, int(XOLATreeItem::NameRole)).toString(), QString("name-a"));
    }

    void sameIdWithoutMergeOption_data()
    {
        QTest::addColumn<bool>("prepend");
        QTest::newRow("append") << false;
        QTest::newRow("prepend") << true;
    }

    void sameIdWithoutMergeOption()
    {
        QFETCH(bool, prepend);
        if (prepend)
            ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        // Given
        ModelPtr model = modelWith({"a", "b"});
        QObject* first = model->FindItem("a");
        SignalLog log(model.get());
        XOLATreeItem* second = new XOLATreeItem("a", "A2");
        // When
        QVERIFY(prepend ? model->PrependItem(second) : model->AppendItem(second));
        // Then both rows are listed; the id answers with the newer item.
        QCOMPARE(log.take(), QStringList({aboutToInsert(2, 2), rowsInserted(2, 2), "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), prepend ? QStringList({"a", "a", "b"}) : QStringList({"a", "b", "a"}));
        QCOMPARE(model->FindItem("a"), second);
        QCOMPARE(model->FindItem(prepend ? 0 : 2), second);
        QCOMPARE(model->FindItem(prepend ? 1 : 0), first);
        QCOMPARE(model->FindItemRow("a"), 0);
    }

    void insertDuplicate_isRefused()
    {
        // Given
        ModelPtr model = modelWith({"a", "b", "c"}, MergeDuplicates);
        QObject* listed = model->FindItem("b");
        SignalLog log(model.get());
        XOLATreeItem* incoming = new XOLATreeItem("b", "B2");
        QPointer<XOLATreeItem> guard(incoming);
        // When
        QVERIFY(!model->InsertItem(0, incoming));
        // Then nothing happened and the caller keeps the item.
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"a", "b", "c"}));
        QCOMPARE(model->FindItem("b"), listed);
        QCOMPARE(model->FindItemValue(1, int(XOLATreeItem::NameRole)).toString(), QString("name-b"));
        flushDeferredDeletes();
        QVERIFY(!guard.isNull());
        incoming->SetName("renamed"); // not connected
        QCOMPARE(log.take(), QStringList());
        delete incoming;
    }

    void insertDuplicate_allowedWithoutMergeOption()
    {
        ModelPtr model = modelWith({"a", "b"});
        SignalLog log(model.get());
        XOLATreeItem* second = new XOLATreeItem("b", "B2");
        QVERIFY(model->InsertItem(0, second));
        QCOMPARE(log.take(), QStringList({aboutToInsert(0, 0), rowsInserted(0, 0), "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), QStringList({"b", "a", "b"}));
        QCOMPARE(model->FindItem("b"), second);
    }

    void listedItemIsNeverMergedAway_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<bool>("renamed");
        QTest::newRow("append, same id") << "AppendItem" << false;
        QTest::newRow("prepend, same id") << "PrependItem" << false;
        QTest::newRow("append, id changed to a listed one") << "AppendItem" << true;
        QTest::newRow("prepend, id changed to a listed one") << "PrependItem" << true;
    }

    void listedItemIsNeverMergedAway()
    {
        QFETCH(QString, operation);
        QFETCH(bool, renamed);
        // Given
        ModelPtr model = modelWith({"a", "b", "c"}, MergeDuplicates);
        auto* a = static_cast<XOLATreeItem*>(model->FindItem(0));
        QObject* b = model->FindItem(1);
        QPointer<XOLATreeItem> guard(a);
        if (renamed)
            a->SetID("b");
        SignalLog log(model.get());
        // When the very object that is listed is inserted again
        const bool result = operation == "AppendItem" ? model->AppendItem(a) : model->PrependItem(a);
        // Then it is refused: nothing merged, nothing deleted, nothing announced.
        QVERIFY(!result);
        QCOMPARE(log.take(), QStringList());
        QVERIFY(!guard.isNull());
        flushDeferredDeletes();
        QVERIFY(!guard.isNull());
        QCOMPARE(model->rowCount(), 3);
        QCOMPARE(model->FindItem(0), a);
        QCOMPARE(model->FindItem(1), b);
        QCOMPARE(model->FindItemValue(1, int(XOLATreeItem::NameRole)).toString(), QString("name-b"));
    }

    // ---- companions ----------------------------------------------------------

    void copyItem_copiesEveryNamedRole()
    {
        // Given two items outside any model
        ModelPtr model = modelWith({});
        ModelPtr child = modelWith({});
        XOLATreeItem source("s", "S", child.get());
        XOLATreeItem destination("d", "D");
        ItemSignalLog destinationLog(&destination);
        // When
        model->CopyItem(&source, &destination);
        // Then id, name and child model were copied, one notice each.
        QCOMPARE(destination.id(), QString("s"));
        QCOMPARE(destination.name(), QString("S"));
        QCOMPARE(destination.childModel(), child.get());
        QCOMPARE(destinationLog.take(), QStringList({"valueChanged()", "valueChanged()", "valueChanged()"}));
        // Null pointers are ignored.
        model->CopyItem(nullptr, &destination);
        model->CopyItem(&source, nullptr);
        QCOMPARE(destinationLog.take(), QStringList());
    }

    void copyItem_followsTheModelsRoleNames()
    {
        ModelPtr model(createModel(0, {{XOLATreeItem::NameRole, "title"}, {ValueItem::ValueRole, "valueRole"}}));
        ValueItem source("s", "S", 5);
        ValueItem destination("d", "D", 1);
        model->CopyItem(&source, &destination);
        QCOMPARE(destination.id(), QString("d")); // the id role is not named by this model
        QCOMPARE(destination.name(), QString("S"));
        QCOMPARE(destination.getData(ValueItem::ValueRole), QVariant(5));
    }

    void handleDuplicatedItem_data()
    {
        QTest::addColumn<bool>("withFunction");
        QTest::newRow("copy function") << true;
        QTest::newRow("built-in copy") << false;
    }

    void handleDuplicatedItem()
    {
        QFETCH(bool, withFunction);
        QList<QPair<const QObject*, QObject*>> calls;
        PF_COPY_ITEM copy;
        if (withFunction)
            copy = [&](const QObject* s, QObject* d) { calls << qMakePair(s, d); };
        ModelPtr model = modelWith({}, MergeDuplicates, {}, copy);
        XOLATreeItem source("s", "S");
        XOLATreeItem destination("d", "D");
        model->HandleDuplicatedItem(&source, &destination);
        model->HandleDuplicatedItem(nullptr, &destination);
        model->HandleDuplicatedItem(&source, nullptr);
        if (withFunction) {
            QCOMPARE(calls.size(), 1);
            QCOMPARE(calls.first().first, static_cast<const QObject*>(&source));
            QCOMPARE(calls.first().second, static_cast<QObject*>(&destination));
            QCOMPARE(destination.name(), QString("D"));
        } else {
            QCOMPARE(destination.id(), QString("s"));
            QCOMPARE(destination.name(), QString("S"));
        }
    }

    void keepSortingCheck_withoutKeepSortingDoesNothing()
    {
        ModelPtr model = modelWith({"c", "a", "b"});
        SignalLog log(model.get());
        model->KeepSortingCheck();
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(ids(model.get()), QStringList({"c", "a", "b"}));
    }

    // ---- keep-sorting ----------------------------------------------------------

    void keepSorting_resortsBeforeTheCount_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<ModelTesters::Departures>("departures");
        // Rows a, c, e kept sorted by name.
        QTest::newRow("append")
            << "AppendItem" << "b"
            << QStringList({aboutToInsert(3, 3), rowsInserted(3, 3), dataChanged(0, 3), "rowCountChanged()"})
            << QStringList({"a", "b", "c", "e"}) << ModelTesters::Departures();
        QTest::newRow("prepend")
            << "PrependItem" << "f"
            << QStringList({aboutToInsert(3, 3), rowsInserted(3, 3), dataChanged(0, 3), "rowCountChanged()"})
            << QStringList({"a", "c", "e", "f"}) << ModelTesters::Departures{ModelTesters::PrependAtOldEnd};
        QTest::newRow("insert at 0")
            << "InsertItem" << "d"
            << QStringList({aboutToInsert(0, 0), rowsInserted(0, 0), dataChanged(0, 3), "rowCountChanged()"})
            << QStringList({"a", "c", "d", "e"}) << ModelTesters::Departures();
        QTest::newRow("append duplicate")
            << "AppendItem" << "c"
            << QStringList({dataChanged(1, 1), dataChanged(1, 1), dataChanged(0, 2), "rowCountChanged()"})
            << QStringList({"a", "c", "e"}) << ModelTesters::Departures();
        QTest::newRow("prepend duplicate")
            << "PrependItem" << "c"
            << QStringList({dataChanged(1, 1), dataChanged(1, 1), dataChanged(0, 2)})
            << QStringList({"a", "c", "e"}) << ModelTesters::Departures();
        QTest::newRow("insert duplicate") << "InsertItem" << "c" << QStringList() << QStringList({"a", "c", "e"})
            << ModelTesters::Departures();
    }

    void keepSorting_resortsBeforeTheCount()
    {
        QFETCH(QString, operation);
        QFETCH(QString, id);
        QFETCH(QStringList, expected);
        QFETCH(QStringList, after);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        // Given a model kept sorted by name
        ModelPtr model = modelWith({"e", "a", "c"}, MergeDuplicates);
        if (!keepSortedByName(model.get()))
            QSKIP("this build does not sort yet");
        QCOMPARE(ids(model.get()), QStringList({"a", "c", "e"}));
        SignalLog log(model.get());
        // When (a duplicate brings a new name, still sorting in the same place)
        auto* incoming = new XOLATreeItem(id, "name-" + id + "2");
        bool result = false;
        if (operation == "AppendItem")
            result = model->AppendItem(incoming);
        else if (operation == "PrependItem")
            result = model->PrependItem(incoming);
        else
            result = model->InsertItem(0, incoming);
        // Then the re-sort comes after the rows and before the count.
        QCOMPARE(result, !expected.isEmpty());
        QCOMPARE(log.take(), expected);
        QCOMPARE(ids(model.get()), after);
        if (!result)
            delete incoming;
    }

    void keepSortingCheck_resorts()
    {
        ModelPtr model = modelWith({"b", "a"});
        if (!keepSortedByName(model.get()))
            QSKIP("this build does not sort yet");
        static_cast<XOLATreeItem*>(model->FindItem(0))->SetName("name-z");
        SignalLog log(model.get());
        model->KeepSortingCheck();
        QCOMPARE(log.take(), QStringList({dataChanged(0, 1)}));
        QCOMPARE(ids(model.get()), QStringList({"b", "a"}));
    }
};

QTEST_GUILESS_MAIN(TestInsertion)

#include "tst_insertion.moc"
