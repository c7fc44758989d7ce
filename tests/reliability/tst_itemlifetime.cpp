// A model that lists items it does not own (a view, a group's member model, a
// model keeping removed items) never keeps a deleted item: when whoever owns the
// item deletes it, the item leaves those rows and index entries first, with the
// notices a removal by id sends. And an id index entry never outlives its item.
// Each case below used to leave a deleted item behind, found by the randomized
// suite under AddressSanitizer.

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <memory>

using namespace TestSupport;

namespace {

const int ValueRole = ValueItem::ValueRole;
const int GroupRole = ValueItem::GroupRole;

ValueItem* member(const QString& id, int value, const QString& group = QString())
{
    auto* item = new ValueItem(id, QStringLiteral("name-") + id, value);
    item->setExtra(GroupRole, group);
    return item;
}

XOLATreeModel* source(int flags, const QList<XOLATreeItem*>& rows)
{
    XOLATreeModel* model = createModel(flags, extendedRoleNames());
    model->AppendItemsList(rows);
    return model;
}

const QVariantList kAtLeastThree{QVariantMap{{"RoleName", "valueRole"}, {"Rule", IXOLATreeModel::Ge}, {"Value", 3}}};

} // namespace

class TestItemLifetime : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { flushDeferredDeletes(); }

    void inPlaceSwapDeletesRowsAViewShows()
    {
        // Given a view of a source that owns its items
        std::unique_ptr<XOLATreeModel> model(source(0, {member("a", 5), member("b", 1), member("c", 7)}));
        std::unique_ptr<FilterModelImp> view(qobject_cast<FilterModelImp*>(model->GetFilterModel(kAtLeastThree)));
        QCOMPARE(ids(view.get()), QStringList({"a", "c"}));
        SignalLog log(view.get());
        // When the source swaps its rows in place, deleting the old ones at once
        QVERIFY(model->ReplaceItemsListEx({member("x", 9), member("y", 0)}));
        // Then the view let go of the deleted rows as they went, and reads fine
        QCOMPARE(log.take().mid(0, 8), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(a)",
                                                    "rowCountChanged()", "rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)",
                                                    "itemsRemoved(c)", "rowCountChanged()"}));
        QCOMPARE(ids(view.get()), QStringList({"x"}));
    }

    void inPlaceSwapToNothing()
    {
        std::unique_ptr<XOLATreeModel> model(source(0, {member("a", 5), member("c", 7)}));
        std::unique_ptr<FilterModelImp> view(qobject_cast<FilterModelImp*>(model->GetFilterModel(kAtLeastThree)));
        QVERIFY(model->ReplaceItemsListEx({}));
        QCOMPARE(view->rowCount(), 0);
        QCOMPARE(view->FindItem(QStringLiteral("a")), nullptr);
    }

    void groupMembersLeftBehindByStaleRows()
    {
        // Given a group view following the source one item at a time
        std::unique_ptr<XOLATreeModel> model(source(0, {member("i0", 0, "b"), member("i1", 0, "a"), member("i2", 0, "b")}));
        std::unique_ptr<GroupModelImp> view(qobject_cast<GroupModelImp*>(model->GetGroupModel(GroupRole, false)));
        QPointer<QObject> i1(model->FindItem(QStringLiteral("i1")));
        // When two removals from the front leave the second one unrecorded
        QVERIFY(model->RemoveOne(QStringLiteral("i0")));
        QVERIFY(model->RemoveOne(QStringLiteral("i1")));
        auto* membersOfA = qobject_cast<XOLATreeModel*>(view->FindItemValue(QStringLiteral("a"), 259).value<QObject*>());
        QVERIFY(membersOfA);
        // Then the group still shows i1 as long as it lives (its rows are not
        // renumbered) ...
        QCOMPARE(ids(membersOfA), QStringList({"i1"}));
        // ... and lets it go when the source deletes it
        SignalLog log(membersOfA);
        flushDeferredDeletes();
        QVERIFY(i1.isNull());
        QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(i1)",
                                          "rowCountChanged()"}));
        QCOMPARE(membersOfA->rowCount(), 0);
        QCOMPARE(membersOfA->FindItem(QStringLiteral("i1")), nullptr);
    }

    void groupMembersAfterASort()
    {
        // A sort reaches an incremental group view as data changes of rows that
        // now hold other items; whatever it makes of them, no member outlives
        // its item.
        std::unique_ptr<XOLATreeModel> model(source(0, {member("i0", 3, "x"), member("i1", 1, "y"), member("i2", 2, "x"),
                                                        member("i3", 0, "z")}));
        std::unique_ptr<GroupModelImp> view(qobject_cast<GroupModelImp*>(model->GetGroupModel(GroupRole, false)));
        model->SortByRole(ValueRole, true);
        model->RemoveAll();
        flushDeferredDeletes();
        for (int row = 0; row < view->rowCount(); ++row) {
            auto* members = qobject_cast<XOLATreeModel*>(view->FindItemValue(row, 259).value<QObject*>());
            QVERIFY(members);
            QCOMPARE(members->rowCount(), 0);
        }
    }

    void rangeRemovalKeepingItemsThenTheHostDeletesThem()
    {
        // Given a model that keeps removed items, and a view of it
        std::unique_ptr<XOLATreeModel> model(source(XOLATreeModel::KeepRemovedItemsOption,
                                                    {member("a", 5), member("b", 6), member("c", 7)}));
        std::unique_ptr<FilterModelImp> view(qobject_cast<FilterModelImp*>(model->GetFilterModel(kAtLeastThree)));
        XOLATreeItem* b = qobject_cast<XOLATreeItem*>(model->FindItem(1));
        QVERIFY(model->Remove(1, 1));
        // The range removal names no id: the index still answers, the view still shows b
        QCOMPARE(model->FindItem(QStringLiteral("b")), b);
        QCOMPARE(ids(view.get()), QStringList({"a", "b", "c"}));
        // When the host deletes the item it got back
        delete b;
        // Then neither the index nor the view answers with it
        QCOMPARE(model->FindItem(QStringLiteral("b")), nullptr);
        QVERIFY(!model->RemoveOne(QStringLiteral("b")));
        QCOMPARE(ids(view.get()), QStringList({"a", "c"}));
        // A new item under that id is merged into nothing deleted
        model->AppendItem(member("b", 8));
        QCOMPARE(ids(model.get()), QStringList({"a", "c", "b"}));
        QList<QPointer<QObject>> rest{model->FindItem(0), model->FindItem(1), model->FindItem(2)};
        view.reset();
        model.reset();
        for (const QPointer<QObject>& item : rest)
            delete item.data();
    }

    void idChangedWhileListed()
    {
        // Given an item whose id changes after it was listed
        std::unique_ptr<XOLATreeModel> model(source(0, {member("a", 5), member("b", 6)}));
        std::unique_ptr<FilterModelImp> view(qobject_cast<FilterModelImp*>(model->GetFilterModel(kAtLeastThree)));
        auto* a = qobject_cast<XOLATreeItem*>(model->FindItem(QStringLiteral("a")));
        a->SetID(QStringLiteral("renamed"));
        // The index keeps the id it was listed under
        QCOMPARE(model->FindItem(QStringLiteral("a")), a);
        QCOMPARE(model->FindItem(QStringLiteral("renamed")), nullptr);
        // When it is removed under that id and disposed of
        QVERIFY(model->RemoveOne(QStringLiteral("a")));
        flushDeferredDeletes();
        // Then no entry answers with it, under either id, here or in the view
        QCOMPARE(model->FindItem(QStringLiteral("a")), nullptr);
        QCOMPARE(model->FindItem(QStringLiteral("renamed")), nullptr);
        QVERIFY(!model->RemoveOne(QStringLiteral("a")));
        QCOMPARE(view->FindItem(QStringLiteral("a")), nullptr);
        QCOMPARE(ids(view.get()), QStringList({"b"}));
    }

    void equalIdsInTheSource()
    {
        // Given two items with one id (no merging) and a view of both
        std::unique_ptr<XOLATreeModel> model(source(0, {member("a", 5), member("a", 6), member("b", 7)}));
        std::unique_ptr<FilterModelImp> view(qobject_cast<FilterModelImp*>(model->GetFilterModel(kAtLeastThree)));
        QCOMPARE(ids(view.get()), QStringList({"a", "a", "b"}));
        // When the source removes the first by row and disposes of it
        QPointer<QObject> first(model->FindItem(0));
        const void* firstAddress = first.data();
        QVERIFY(model->Remove(0, 0));
        flushDeferredDeletes();
        QVERIFY(first.isNull());
        // Then, whichever of the two the view dropped by id, the deleted one is
        // not among its rows: every row is an item the source still lists
        QVERIFY(view->rowCount() >= 1);
        for (int row = 0; row < view->rowCount(); ++row) {
            const QObject* item = view->FindItem(row);
            QVERIFY(item != firstAddress);
            bool listed = false;
            for (int r = 0; r < model->rowCount(); ++r)
                listed = listed || model->FindItem(r) == item;
            QVERIFY(listed);
        }
    }

    void viewKeepsARowWhoseIdTheSourceIndexLost()
    {
        // Given two items with one id, the first passing and with a child model
        std::unique_ptr<XOLATreeModel> model(createModel(0, extendedRoleNames()));
        XOLATreeModel* child = createModel(0, extendedRoleNames());
        auto* first = member("a", 5);
        first->SetChildModel(child);
        auto* second = member("a", 1);
        model->AppendItemsList({first, second, member("b", 7)});
        std::unique_ptr<FilterModelImp> view(qobject_cast<FilterModelImp*>(model->GetFilterModel(kAtLeastThree)));
        QCOMPARE(ids(view.get()), QStringList({"a", "b"}));
        // When the second leaves (the index drops the id of both, as documented)
        model->RemoveOne(second);
        std::unique_ptr<XOLATreeItem> handedBack(second);
        QCOMPARE(model->FindItem(QStringLiteral("a")), nullptr);
        // and the first one's child model changes
        child->AppendItem(member("c1", 0));
        // Then the view still shows the first: it is a row of the source
        QCOMPARE(ids(view.get()), QStringList({"a", "b"}));
        QCOMPARE(view->FindItem(0), static_cast<QObject*>(first));
    }

    void groupItemsHandedBackGoWithTheView()
    {
        // A group view's rows removed by id list from QML are handed back to a
        // caller that cannot delete them: they go with the view.
        std::unique_ptr<XOLATreeModel> model(source(0, {member("i0", 0, "x"), member("i1", 0, "y")}));
        std::unique_ptr<GroupModelImp> view(qobject_cast<GroupModelImp*>(model->GetGroupModel(GroupRole, false)));
        QPointer<QObject> group(view->FindItem(QStringLiteral("x")));
        QVERIFY(group);
        QVERIFY(view->Remove(QStringList{"x"}));
        QCOMPARE(ids(view.get()), QStringList({"y"}));
        flushDeferredDeletes();
        QVERIFY(!group.isNull());
        view.reset();
        QVERIFY(group.isNull());
        QCOMPARE(ids(model.get()), QStringList({"i0", "i1"}));
    }

    void valueMapOfAnItemWhoseChildModelWent()
    {
        // Given an item with a child model, taken out with RemoveOne(item): the
        // item is handed back, its child model disposed of
        std::unique_ptr<XOLATreeModel> model(createModel(0, extendedRoleNames()));
        XOLATreeModel* child = createModel(0, extendedRoleNames());
        child->AppendItem(member("c1", 1));
        model->AppendItem(member("p", 1));
        auto* parent = qobject_cast<XOLATreeItem*>(model->FindItem(QStringLiteral("p")));
        parent->SetChildModel(child);
        QPointer<QObject> childGuard(child);
        model->RemoveOne(parent);
        std::unique_ptr<XOLATreeItem> handedBack(parent);
        flushDeferredDeletes();
        QVERIFY(childGuard.isNull());
        // Then the field and the value map both read as no child model
        QCOMPARE(parent->childModel(), nullptr);
        const QVariant entry = parent->getData(XOLATreeItem::JsonValueRole).toMap().value(QStringLiteral("childModelRole"));
        QCOMPARE(entry.userType(), int(QMetaType::QObjectStar));
        QCOMPARE(entry.value<QObject*>(), nullptr);
        QCOMPARE(parent->jsonValue().value(QStringLiteral("childModelRole")).value<QObject*>(), nullptr);
        // and the map can be given back to the item
        QVariantMap json = parent->jsonValue();
        json.insert(QStringLiteral("free"), 1);
        parent->SetJsonValue(json);
        QCOMPARE(parent->jsonValue().value(QStringLiteral("free")), QVariant(1));
        QCOMPARE(parent->childModel(), nullptr);
    }

    void hostDeletesAnItemOfAModelKeepingItems()
    {
        // A model that does not own its items does not keep one its owner deleted.
        std::unique_ptr<XOLATreeModel> model(createModel(XOLATreeModel::KeepRemovedItemsOption, extendedRoleNames()));
        std::unique_ptr<XOLATreeItem> a(member("a", 1));
        std::unique_ptr<XOLATreeItem> b(member("b", 2));
        model->AppendItem(a.get());
        model->AppendItem(b.get());
        SignalLog log(model.get());
        a.reset();
        QCOMPARE(log.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(a)", "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), QStringList({"b"}));
        model.reset();
    }
};

QTEST_GUILESS_MAIN(TestItemLifetime)

#include "tst_itemlifetime.moc"
