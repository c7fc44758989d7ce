// Qt's QAbstractItemModelTester on the model and on every view, while operations
// whose notices follow Qt's standard protocol run; then the deliberate
// exceptions, run against QML ListViews bound to the model and to every view,
// headless, to show that they do not crash a view.
//
// The tester sees each model through FlatProxy, an identity proxy that gives
// rows no children: the models' rowCount() ignores its parent, so without it
// the tester would walk an endless tree.
//
// Deliberate departures from Qt's protocol (not run under the tester, run under
// ListViews in deliberateExceptionsDoNotCrashAListView):
//
//  - PrependItem announces its row at the old end (beginInsertRows(n, n)) while
//    the item goes to the front: a listener comparing neighbours sees the wrong
//    ones.
//  - AppendItemsList, PrependItemsList (and so ReplaceItemsList's load step) and
//    ReplaceItemsListEx send their row notices after the change: at
//    rowsAboutToBeInserted the rows are already there. Every insertion into a
//    filter view goes through these, and so does a group view's regrouping.
//  - The paging view brings its announced row count in line after the rows
//    changed (a page move, rows inserted or removed on or before its page).
//  - The partial window announces its insertions after the change, announces one
//    row it does not show when given a size while its first row lies past the
//    end, reports a negative row count when the source shrinks under its first
//    row, and reports data changes of source rows just past the window.
//  - Sorting an empty model by rules or by a script or QML function sends
//    dataChanged over an empty range (invalid indexes).
//  - The script sort ends with endResetModel() without a beginResetModel(), and
//    both function sorts send layoutChanged() without layoutAboutToBeChanged();
//    views forward the source's modelReset() (also that of MoveRow) and
//    layoutChanged() without their begin notices. A tester watching such a
//    notice rejects it (the Qt 6 tester checks that every end has its begin),
//    so loneEndNoticesLeaveConsistentModels counts the lone notices and then
//    lets a fresh tester walk the whole model.

#include "FilterModelImp.h"
#include "FlatProxy.h"
#include "GroupModelImp.h"
#include "PagingModelImp.h"
#include "PartialModel.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QIdentityProxyModel>
#include <QtCore/QPointer>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace TestSupport;

namespace {

const int ValueRole = ValueItem::ValueRole;
const int GroupRole = ValueItem::GroupRole;


ValueItem* member(const QString& id, int value, const QString& group)
{
    auto* item = new ValueItem(id, QStringLiteral("name-") + id, value);
    item->setExtra(GroupRole, group);
    return item;
}

//! A source of eight rows (one item at a time, with standard notices) and every
//! view made afterwards, so that the views start from a full rebuild.
struct World
{
    explicit World(int flags = 0, bool keepSortWithSource = false)
    {
        source.reset(createModel(flags, extendedRoleNames()));
        const char* groups[] = {"x", "y", "x", "z", "y", "x", "z", "w"};
        for (int i = 0; i < 8; ++i)
            source->AppendItem(member(QStringLiteral("i%1").arg(i), i, QString::fromLatin1(groups[i])));
        // Values of 3 and more pass the filter views.
        const QVariantList rules{QVariantMap{{"RoleName", "valueRole"}, {"Rule", IXOLATreeModel::Ge}, {"Value", 3}}};
        filter.reset(qobject_cast<FilterModelImp*>(source->GetFilterModel(rules, true, IXOLATreeModel::POS_TAIL)));
        headFilter.reset(qobject_cast<FilterModelImp*>(source->GetFilterModel(rules, true, IXOLATreeModel::POS_HEAD)));
        group.reset(qobject_cast<GroupModelImp*>(source->GetGroupModel(GroupRole, keepSortWithSource)));
        paging.reset(qobject_cast<PagingModelImp*>(source->GetPagingModel(3)));
        partial = qobject_cast<PartialModel*>(source->GetPartialModel(4));
        source->SetFirstPartialModelRow(2);
    }
    ~World()
    {
        testers.clear();
        proxies.clear();
        filter.reset();
        headFilter.reset();
        group.reset();
        paging.reset();
        // A source keeping removed items leaves its rows to us too.
        QList<QPointer<QObject>> rows;
        if (source->flags() & XOLATreeModel::KeepRemovedItemsOption) {
            for (int row = 0; row < source->rowCount(); ++row)
                rows << source->FindItem(row);
        }
        source.reset();
        flushDeferredDeletes();
        for (const QPointer<QObject>& row : qAsConst(rows))
            delete row.data();
    }

    //! The models by name, for the data tables.
    QAbstractItemModel* model(const QString& name) const
    {
        if (name == QLatin1String("source"))
            return source.get();
        if (name == QLatin1String("filter"))
            return filter.get();
        if (name == QLatin1String("head filter"))
            return headFilter.get();
        if (name == QLatin1String("group"))
            return group.get();
        if (name == QLatin1String("paging"))
            return paging.get();
        if (name == QLatin1String("partial"))
            return partial;
        if (name.startsWith(QLatin1String("members of "))) {
            const QVariant child = group->FindItemValue(name.mid(11), int(XOLATreeItem::ChildModelRole));
            return qobject_cast<QAbstractItemModel*>(child.value<QObject*>());
        }
        return nullptr;
    }

    void attachTester(const QString& name)
    {
        QAbstractItemModel* m = model(name);
        QVERIFY2(m, qPrintable(name));
        proxies.emplace_back(new FlatProxy(m));
        testers.emplace_back(new QAbstractItemModelTester(proxies.back().get(),
                                                          QAbstractItemModelTester::FailureReportingMode::QtTest));
    }

    ValueItem* item(const QString& id) const { return qobject_cast<ValueItem*>(source->FindItem(id)); }

    std::unique_ptr<XOLATreeModel> source;
    std::unique_ptr<FilterModelImp> filter;
    std::unique_ptr<FilterModelImp> headFilter;
    std::unique_ptr<GroupModelImp> group;
    std::unique_ptr<PagingModelImp> paging;
    PartialModel* partial = nullptr;
    std::vector<std::unique_ptr<FlatProxy>> proxies;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
};

using Operation = std::function<void(World&)>;

} // namespace

Q_DECLARE_METATYPE(Operation)

class TestModelTester : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { flushDeferredDeletes(); }

    void standardProtocol_data();
    void standardProtocol();
    void loneEndNoticesLeaveConsistentModels_data();
    void loneEndNoticesLeaveConsistentModels();
    void testersStayQuietOnTheirOwn();
    void deliberateExceptionsDoNotCrashAListView_data();
    void deliberateExceptionsDoNotCrashAListView();
};

void TestModelTester::standardProtocol_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("keepSortWithSource");
    QTest::addColumn<QStringList>("tested");
    QTest::addColumn<Operation>("operation");

    // The source's own notices, with every view attached, for each operation
    // that follows the protocol; the views that follow it too are tested with it.
    const QStringList all{"source", "filter", "head filter", "paging", "partial", "group"};
    QTest::newRow("append a failing item")
        << 0 << false << all << Operation([](World& w) { w.source->AppendItem(member("n", 0, "x")); });
    QTest::newRow("append to an existing group")
        << 0 << false << QStringList{"source", "group", "members of x"}
        << Operation([](World& w) { w.source->AppendItem(member("n", 9, "x")); });
    QTest::newRow("append a new group")
        << 0 << false << QStringList{"source", "group"} << Operation([](World& w) { w.source->AppendItem(member("n", 9, "v")); });
    QTest::newRow("insert at the front")
        << 0 << false << QStringList{"source", "group"} << Operation([](World& w) { w.source->InsertItem(0, member("n", 1, "v")); });
    QTest::newRow("insert in the middle")
        << 0 << false << QStringList{"source", "group"} << Operation([](World& w) { w.source->InsertItem(4, member("n", 1, "x")); });
    QTest::newRow("remove one")
        << 0 << false << QStringList{"source", "filter", "head filter", "partial", "group", "members of z"}
        << Operation([](World& w) { QVERIFY(w.source->RemoveOne(QStringLiteral("i6"))); });
    QTest::newRow("remove the last member of a group")
        << 0 << false << QStringList{"source", "filter", "head filter", "partial", "group"}
        << Operation([](World& w) { QVERIFY(w.source->RemoveOne(QStringLiteral("i7"))); });
    QTest::newRow("remove by id list")
        << 0 << false << QStringList{"source", "filter", "head filter", "partial"}
        << Operation([](World& w) {
               std::unique_ptr<QObject> a(w.source->FindItem(QStringLiteral("i3")));
               std::unique_ptr<QObject> b(w.source->FindItem(QStringLiteral("i5")));
               QVERIFY(w.source->Remove(QStringList{"i3", "zz", "i5"}));
           });
    QTest::newRow("remove a range")
        << 0 << false << QStringList{"source", "filter", "head filter", "partial"}
        << Operation([](World& w) { QVERIFY(w.source->Remove(2, 5)); });
    QTest::newRow("remove all")
        << 0 << false << QStringList{"source", "filter", "head filter", "group"}
        << Operation([](World& w) { w.source->RemoveAll(); });
    QTest::newRow("clear")
        << 0 << false << QStringList{"source", "filter", "head filter", "group"}
        << Operation([](World& w) { w.source->clear(); });
    // The views forward the source's reset without its begin notice; that runs
    // in loneEndNoticesLeaveConsistentModels.
    QTest::newRow("move a row") << 0 << false << QStringList{"source"}
                                << Operation([](World& w) { w.source->MoveRow(0, 5); });
    QTest::newRow("a value changes, the item still passes")
        << 0 << false << all << Operation([](World& w) { w.item("i4")->setExtra(ValueRole, 40); });
    QTest::newRow("a value changes, the item no longer passes")
        << 0 << false << QStringList{"source", "filter", "head filter", "partial", "paging", "group"}
        << Operation([](World& w) { w.item("i4")->setExtra(ValueRole, 0); });
    QTest::newRow("an item changes group")
        << 0 << false << QStringList{"source", "filter", "paging", "partial", "group", "members of x", "members of w"}
        << Operation([](World& w) { w.item("i0")->setExtra(GroupRole, QStringLiteral("w")); });
    QTest::newRow("sort by role")
        << 0 << false << QStringList{"source", "filter", "head filter", "paging"}
        << Operation([](World& w) { w.source->SortByRole(QStringLiteral("valueRole"), false); });
    QTest::newRow("sort by a caller's function")
        << 0 << false << QStringList{"source", "filter", "paging"}
        << Operation([](World& w) {
               w.source->SortByRole(ValueRole, true, [](const QVariant& a, const QVariant& b) { return a.toInt() % 3 < b.toInt() % 3; });
           });
    QTest::newRow("sort by rules")
        << 0 << false << QStringList{"source", "filter", "head filter", "paging"}
        << Operation([](World& w) {
               w.source->SortByRules({QVariantMap{{"RoleName", "groupRole"}, {"Ascending", true}},
                                      QVariantMap{{"RoleName", "nameRole"}, {"Ascending", false}}});
           });
    QTest::newRow("keep sorting, then append")
        << 0 << false << QStringList{"source"} << Operation([](World& w) {
               w.source->SortByRoleAndKeep(QStringLiteral("valueRole"), true);
               w.source->AppendItem(member("n", 2, "x"));
               w.source->AppendItem(member("m", -1, "y"));
           });
    QTest::newRow("merge a duplicate")
        << int(XOLATreeModel::MergeDuplicatesOption) << false << QStringList{"source", "filter", "paging", "partial"}
        << Operation([](World& w) { w.source->AppendItem(member("i4", 44, "x")); });
    QTest::newRow("refused insertions")
        << int(XOLATreeModel::MergeDuplicatesOption) << false << all << Operation([](World& w) {
               std::unique_ptr<XOLATreeItem> duplicate(member("i1", 0, "x"));
               QVERIFY(!w.source->InsertItem(0, duplicate.get()));
               std::unique_ptr<XOLATreeItem> outside(member("q", 0, "x"));
               QVERIFY(!w.source->InsertItem(99, outside.get()));
               QVERIFY(!w.source->AppendItem(nullptr));
               QVERIFY(!w.source->Remove(5, 2));
               w.source->MoveRow(-1, 3);
           });
    QTest::newRow("a model keeping removed items")
        << int(XOLATreeModel::KeepRemovedItemsOption) << false << QStringList{"source", "filter", "head filter", "partial", "group"}
        << Operation([](World& w) {
               // The range removal names no ids: the filter views keep the rows
               // until the caller deletes the items it got back.
               QPointer<QObject> a(w.source->FindItem(3));
               QPointer<QObject> b(w.source->FindItem(4));
               QVERIFY(w.source->Remove(3, 4));
               delete a.data();
               delete b.data();
           });
    QTest::newRow("window moves within the rows")
        << 0 << false << QStringList{"source", "partial"} << Operation([](World& w) { w.source->SetFirstPartialModelRow(3); });
    QTest::newRow("page moves to a full page")
        << 0 << false << QStringList{"source", "paging"} << Operation([](World& w) { w.paging->setPage(1); });
    QTest::newRow("views change their rules")
        << 0 << false << QStringList{"source", "paging", "partial"} << Operation([](World& w) {
               w.filter->UpdateFilterRules({}, true);
               w.group->UpdateGroupRole(QStringLiteral("nameRole"));
           });
    QTest::newRow("QML removes rows of the views")
        << 0 << false << QStringList{"source", "filter", "group"} << Operation([](World& w) {
               QVERIFY(w.filter->RemoveOne(QStringLiteral("i5")));
               QVERIFY(w.filter->Remove(0, 0));
               QVERIFY(w.group->RemoveOne(QStringLiteral("y")));
               w.group->clear();
           });
}

void TestModelTester::standardProtocol()
{
    QFETCH(int, flags);
    QFETCH(bool, keepSortWithSource);
    QFETCH(QStringList, tested);
    QFETCH(Operation, operation);
    // Given every view of an eight-row source, with the tester on the models named
    World world(flags, keepSortWithSource);
    for (const QString& name : qAsConst(tested))
        world.attachTester(name);
    // When the operation runs, the testers find nothing (a finding fails the test)
    operation(world);
    flushDeferredDeletes();
    QVERIFY(!QTest::currentTestFailed());
}

void TestModelTester::loneEndNoticesLeaveConsistentModels_data()
{
    QTest::addColumn<QString>("tested");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("loneLayoutChanges");
    QTest::addColumn<int>("loneResets");
    const QString dir = QStringLiteral(XOLA_TEST_DATA_DIR) + QStringLiteral("/compare/");
    const Operation scriptSort([dir](World& w) {
        w.source->SortByRoleByScriptFunction(QStringLiteral("valueRole"), true, dir + QStringLiteral("greater.js"),
                                             QStringLiteral("greater"));
    });
    const Operation qmlSort([dir](World& w) {
        w.source->SortByRoleByQMLFunction(ValueRole, false, dir + QStringLiteral("less.qml"), QStringLiteral("less"));
    });
    const Operation move([](World& w) { w.source->MoveRow(0, 5); });
    // (The partial window is left out: it also reports source rows just past itself.)
    QTest::newRow("script sort, source") << "source" << scriptSort << 1 << 1;
    QTest::newRow("QML sort, source") << "source" << qmlSort << 1 << 0;
    for (const char* name : {"filter", "paging", "group"}) {
        const QString view = QString::fromLatin1(name);
        QTest::newRow(qPrintable(QStringLiteral("script sort, %1").arg(view))) << view << scriptSort << 1 << 1;
        QTest::newRow(qPrintable(QStringLiteral("QML sort, %1").arg(view))) << view << qmlSort << 1 << 0;
        QTest::newRow(qPrintable(QStringLiteral("move a row, %1").arg(view))) << view << move << 0 << 1;
    }
}

void TestModelTester::loneEndNoticesLeaveConsistentModels()
{
    QFETCH(QString, tested);
    QFETCH(Operation, operation);
    QFETCH(int, loneLayoutChanges);
    QFETCH(int, loneResets);
    // Given every view of an eight-row source
    World world;
    QAbstractItemModel* model = world.model(tested);
    QVERIFY(model);
    QSignalSpy layoutAboutToChange(model, &QAbstractItemModel::layoutAboutToBeChanged);
    QSignalSpy layoutChanged(model, &QAbstractItemModel::layoutChanged);
    QSignalSpy aboutToReset(model, &QAbstractItemModel::modelAboutToBeReset);
    QSignalSpy reset(model, &QAbstractItemModel::modelReset);
    // When the operation runs
    operation(world);
    // Then the model sent exactly the documented end notices, without begins
    QCOMPARE(layoutAboutToChange.count(), 0);
    QCOMPARE(layoutChanged.count(), loneLayoutChanges);
    QCOMPARE(aboutToReset.count(), 0);
    QCOMPARE(reset.count(), loneResets);
    // And a tester that starts now finds the whole model consistent
    world.attachTester(tested);
    QVERIFY(!QTest::currentTestFailed());
}

void TestModelTester::testersStayQuietOnTheirOwn()
{
    // The testers' own walk over every model and view, with nothing happening.
    World world(0, true);
    for (const char* name : {"source", "filter", "head filter", "group", "paging", "partial", "members of x"})
        world.attachTester(QString::fromLatin1(name));
    QVERIFY(!QTest::currentTestFailed());
}

void TestModelTester::deliberateExceptionsDoNotCrashAListView_data()
{
    QTest::addColumn<Operation>("operation");
    const QString dir = QStringLiteral(XOLA_TEST_DATA_DIR) + QStringLiteral("/compare/");
    QTest::newRow("prepend announced at the old end")
        << Operation([](World& w) {
               w.source->PrependItem(member("p", 9, "x"));
               w.source->PrependItem(member("q", 1, "v"));
           });
    QTest::newRow("list loads announced after the change") << Operation([](World& w) {
        w.source->AppendItemsList({member("a1", 5, "x"), nullptr, member("a2", 6, "u")});
        w.source->PrependItemsList({member("b1", 7, "x"), member("b2", 0, "t")});
        w.source->ReplaceItemsList({member("c1", 8, "x"), member("c2", 9, "x")});
    });
    QTest::newRow("in-place replacement, fewer rows") << Operation([](World& w) {
        w.source->ReplaceItemsListEx({member("r1", 5, "x"), member("r2", 1, "y")});
    });
    QTest::newRow("in-place replacement, more rows") << Operation([](World& w) {
        QList<XOLATreeItem*> list;
        for (int i = 0; i < 12; ++i)
            list << member(QStringLiteral("r%1").arg(i), i, QStringLiteral("g%1").arg(i % 3));
        w.source->ReplaceItemsListEx(list);
    });
    QTest::newRow("in-place replacement, nothing") << Operation([](World& w) { w.source->ReplaceItemsListEx({}); });
    QTest::newRow("script sort: lone endResetModel and layoutChanged") << Operation([dir](World& w) {
        w.source->SortByRoleByScriptFunction(QStringLiteral("valueRole"), true, dir + QStringLiteral("greater.js"),
                                             QStringLiteral("greater"));
    });
    QTest::newRow("QML sort: lone layoutChanged") << Operation([dir](World& w) {
        w.source->SortByRoleByQMLFunction(QStringLiteral("nameRole"), false, dir + QStringLiteral("less.qml"), QStringLiteral("less"));
    });
    QTest::newRow("sorts of an empty model") << Operation([dir](World& w) {
        w.source->RemoveAll();
        w.source->SortByRules({QVariantMap{{"RoleName", "nameRole"}}});
        w.source->SortByRoleByScriptFunction(ValueRole, true, dir + QStringLiteral("less.js"), QStringLiteral("less"));
        w.source->SortByRoleByQMLFunction(ValueRole, true, dir + QStringLiteral("less.qml"), QStringLiteral("less"));
    });
    QTest::newRow("window: phantom row and a negative size") << Operation([](World& w) {
        w.source->SetFirstPartialModelRow(7);
        QVERIFY(w.source->Remove(1, 6)); // the window's first row now lies past the end
        w.source->SetPartialModelCount(3);
        w.source->SetFirstPartialModelRow(0);
        w.source->SetFirstPartialModelRow(1);
    });
    QTest::newRow("window reports rows past itself") << Operation([](World& w) {
        w.source->SetPartialModelCount(2);
        w.source->SortByRole(ValueRole, false);
        w.item("i5")->setExtra(ValueRole, 55);
    });
    QTest::newRow("page moves and count changes") << Operation([](World& w) {
        w.paging->setPage(2);
        w.source->AppendItem(member("n1", 4, "x"));
        w.paging->setPage(0);
        QVERIFY(w.source->Remove(0, 3));
        w.paging->setPage(1);
    });
    QTest::newRow("views rebuild") << Operation([](World& w) {
        w.filter->UpdateFilterRules({QVariantMap{{"RoleName", "nameRole"}, {"Rule", IXOLATreeModel::SubStr}, {"Value", "1"}}}, true);
        w.headFilter->UpdateFilterRules({}, false);
        w.group->UpdateGroupRole(QStringLiteral("valueRole"));
        w.source->AppendItem(member("z1", 7, "x"));
    });
}

void TestModelTester::deliberateExceptionsDoNotCrashAListView()
{
    QFETCH(Operation, operation);
    // Given ListViews bound to the model and to every view, headless
    World world(0, true);
    QQmlEngine engine;
    // The views are made for the QML engine (JavaScript ownership); here the test
    // keeps them, so the engine must not collect them.
    for (QObject* view : {static_cast<QObject*>(world.filter.get()), static_cast<QObject*>(world.headFilter.get()),
                          static_cast<QObject*>(world.group.get()), static_cast<QObject*>(world.paging.get())})
        QQmlEngine::setObjectOwnership(view, QQmlEngine::CppOwnership);
    QQuickWindow window;
    window.resize(200, 2000);
    const QStringList names{"source", "filter", "head filter", "group", "paging", "partial"};
    QList<QQuickItem*> lists;
    for (const QString& name : names) {
        engine.rootContext()->setContextProperty(QStringLiteral("boundModel"), world.model(name));
        QQmlComponent component(&engine);
        component.setData("import QtQuick 2.15\n"
                          "ListView { width: 200; height: 1000; model: boundModel; cacheBuffer: 1000\n"
                          "  delegate: Text { height: 10; text: idRole + ':' + nameRole + ':' + (model.valueRole === undefined ? '' : model.valueRole) } }",
                          QUrl());
        auto* list = qobject_cast<QQuickItem*>(component.create(engine.rootContext()));
        QVERIFY2(list, qPrintable(component.errorString()));
        list->setParentItem(window.contentItem());
        lists << list;
    }
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::qWait(20);

    // When the operation runs and the views settle
    operation(world);
    QTest::qWait(20);
    flushDeferredDeletes();
    QTest::qWait(20);

    // Then every ListView still stands, shows as many delegates as it counts
    // and can be scrolled through the model's rows
    for (int i = 0; i < lists.size(); ++i) {
        QQuickItem* list = lists.at(i);
        const int count = list->property("count").toInt();
        QVERIFY2(count >= 0, qPrintable(names.at(i)));
        if (count > 0) {
            QMetaObject::invokeMethod(list, "positionViewAtEnd");
            QMetaObject::invokeMethod(list, "positionViewAtBeginning");
        }
    }
    QTest::qWait(10);
    qDeleteAll(lists);
}

QTEST_MAIN(TestModelTester)

#include "tst_modeltester.moc"
