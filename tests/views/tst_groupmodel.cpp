#include "GroupModelImp.h"
#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QPointer>
#include <QtQml/QQmlEngine>
#include <QtTest/QtTest>

#include <memory>

using namespace TestSupport;

namespace {

using ModelPtr = std::unique_ptr<XOLATreeModel>;
using GroupPtr = std::unique_ptr<GroupModelImp>;

const int GroupRole = ValueItem::GroupRole;
const int TextRole = ValueItem::TextRole;

ValueItem* member(const QString& id, const QVariant& group, const QVariant& text = QVariant())
{
    auto* item = new ValueItem(id, QStringLiteral("name-") + id);
    item->setExtra(GroupRole, group);
    item->setExtra(TextRole, text);
    return item;
}

//! Items "i<n>" carrying groups[n] in groupRole and texts[n] in textRole.
QList<XOLATreeItem*> members(const QVariantList& groups, const QVariantList& texts = {})
{
    QList<XOLATreeItem*> list;
    for (int i = 0; i < groups.size(); ++i)
        list << member(QStringLiteral("i%1").arg(i), groups.at(i), texts.value(i));
    return list;
}

//! A source of members(groups, texts), appended one at a time.
XOLATreeModel* makeSource(const QVariantList& groups, const QVariantList& texts = {}, int flags = 0)
{
    XOLATreeModel* source = createModel(flags, extendedRoleNames());
    appendEach(source, members(groups, texts));
    return source;
}

GroupModelImp* groupView(XOLATreeModel* source, bool keepSortWithSource, int role = GroupRole)
{
    return ModelTesters::watch(qobject_cast<GroupModelImp*>(source->GetGroupModel(role, keepSortWithSource)));
}

XOLATreeModel* memberModel(const IXOLATreeModel* view, int row)
{
    const QVariant child = view->FindItemValue(row, int(XOLATreeItem::ChildModelRole));
    return ModelTesters::watch(qobject_cast<XOLATreeModel*>(child.value<QObject*>()));
}

XOLATreeModel* memberModel(const IXOLATreeModel* view, const QString& key)
{
    const QVariant child = view->FindItemValue(key, int(XOLATreeItem::ChildModelRole));
    return ModelTesters::watch(qobject_cast<XOLATreeModel*>(child.value<QObject*>()));
}

//! One "key:id,id" entry per group row, in view order.
QStringList groups(const IXOLATreeModel* view)
{
    QStringList result;
    for (int row = 0; row < view->rowCount(); ++row) {
        const XOLATreeModel* members = memberModel(view, row);
        result << view->FindItemID(row) + QLatin1Char(':') + (members ? ids(members).join(QLatin1Char(',')) : QStringLiteral("<none>"));
    }
    return result;
}

//! The recorded source rows as "row=id/key".
QStringList recordedRows(const GroupModelImp* view)
{
    QStringList result;
    const auto rows = view->rowGroups();
    for (auto it = rows.constBegin(); it != rows.constEnd(); ++it)
        result << QStringLiteral("%1=%2/%3").arg(it.key()).arg(it.value().first, it.value().second.toString());
    return result;
}

ValueItem* sourceItem(const IXOLATreeModel* source, const QString& id)
{
    return qobject_cast<ValueItem*>(source->FindItem(id, false));
}

//! What a view shows while all its groups are rebuilt: every old group goes, the new ones come in one block.
QStringList rebuild(int oldGroups, int newGroups)
{
    QStringList log;
    if (oldGroups > 0) {
        log << QStringLiteral("rowsAboutToBeRemoved(0,%1)").arg(oldGroups - 1)
            << QStringLiteral("rowsRemoved(0,%1)").arg(oldGroups - 1)
            << QStringLiteral("allItemRemoved()") << QStringLiteral("rowCountChanged()");
    }
    if (newGroups > 0) {
        log << QStringLiteral("rowsAboutToBeInserted(0,%1)").arg(newGroups - 1)
            << QStringLiteral("rowsInserted(0,%1)").arg(newGroups - 1) << QStringLiteral("rowCountChanged()");
    }
    return log;
}

QStringList groupRemoved(int row, const QString& key)
{
    return {QStringLiteral("rowsAboutToBeRemoved(%1,%1)").arg(row), QStringLiteral("rowsRemoved(%1,%1)").arg(row),
            QStringLiteral("itemsRemoved(%1)").arg(key), QStringLiteral("rowCountChanged()")};
}

QStringList groupAdded(int row)
{
    return {QStringLiteral("rowsAboutToBeInserted(%1,%1)").arg(row), QStringLiteral("rowsInserted(%1,%1)").arg(row),
            QStringLiteral("rowCountChanged()")};
}

} // namespace

class TestGroupModel : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void groupsFollowFirstAppearanceOfTheirKey()
    {
        // Given items valued b, a, b, c
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        // When they are grouped
        GroupPtr view(groupView(source.get(), false));
        // Then there are three groups, in order of first appearance, members in source order
        QVERIFY(view);
        QCOMPARE(groups(view.get()), QStringList({"b:i0,i2", "a:i1", "c:i3"}));
        QCOMPARE(view->groupRole(), GroupRole);
        QCOMPARE(recordedRows(view.get()), QStringList({"0=i0/b", "1=i1/a", "2=i2/b", "3=i3/c"}));
        // A group item's id and name are the key; its members are the source's own items
        for (int row = 0; row < view->rowCount(); ++row) {
            auto* group = qobject_cast<XOLATreeItem*>(view->FindItem(row));
            QVERIFY(group);
            QCOMPARE(group->name(), group->id());
            QCOMPARE(group->childModel(), static_cast<QObject*>(memberModel(view.get(), row)));
        }
        QCOMPARE(memberModel(view.get(), "b")->FindItem(0), source->FindItem(0));
        QCOMPARE(memberModel(view.get(), "b")->FindItem(1), source->FindItem(2));
    }

    void viewAndMemberModelsAreBuiltAsDocumented()
    {
        ModelPtr source(makeSource({"b", "a"}));
        GroupPtr view(groupView(source.get(), true));
        // The view: no parent, engine-owned, disposes of group items it drops
        QCOMPARE(view->parent(), static_cast<QObject*>(nullptr));
        QCOMPARE(view->flags(), 1);
        QCOMPARE(QQmlEngine::objectOwnership(view.get()), QQmlEngine::JavaScriptOwnership);
        QCOMPARE(view->roleNames(), source->roleNames());
        QCOMPARE(view->sourceModel(), static_cast<IXOLATreeModel*>(source.get()));
        QVERIFY(view->keepSortWithSource());
        // Member models keep their members alive and go with the view
        XOLATreeModel* members = memberModel(view.get(), "b");
        QVERIFY(members);
        QCOMPARE(members->flags(), 2);
        QCOMPARE(members->roleNames(), source->roleNames());
        QCOMPARE(members->parent(), static_cast<QObject*>(view.get()));
        QCOMPARE(QQmlEngine::objectOwnership(members), QQmlEngine::CppOwnership);

        QPointer<XOLATreeModel> watchedMembers(members);
        QPointer<QObject> group(view->FindItem(0));
        QPointer<QObject> sourceMember(source->FindItem(0));
        view.reset();
        flushDeferredDeletes();
        QVERIFY(watchedMembers.isNull());
        QVERIFY(group.isNull());
        // The members themselves belong to the source
        QVERIFY(!sourceMember.isNull());
        QCOMPARE(ids(source.get()), QStringList({"i0", "i1"}));
    }

    void emptyAndInvalidValuesShareTheEmptyGroup()
    {
        ModelPtr source(makeSource({"", QVariant(), "x", ""}));
        GroupPtr view(groupView(source.get(), false));
        QCOMPARE(groups(view.get()), QStringList({":i0,i1,i3", "x:i2"}));
    }

    void keysAreTheValuesText()
    {
        ModelPtr source(makeSource({1, 1.5, "1", true}));
        GroupPtr view(groupView(source.get(), false));
        QCOMPARE(groups(view.get()), QStringList({"1:i0,i2", "1.5:i1", "true:i3"}));
    }

    void groupModelByRoleName_data()
    {
        QTest::addColumn<QString>("roleName");
        QTest::addColumn<int>("role");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("group role") << "groupRole" << GroupRole << QStringList({"b:i0,i2", "a:i1"});
        QTest::newRow("text role") << "textRole" << TextRole << QStringList({"x:i0,i1", "y:i2"});
        QTest::newRow("name role") << "nameRole" << int(XOLATreeItem::NameRole)
                                   << QStringList({"name-i0:i0", "name-i1:i1", "name-i2:i2"});
        QTest::newRow("unknown name groups by role 0") << "noSuchRole" << 0 << QStringList({":i0,i1,i2"});
    }

    void groupModelByRoleName()
    {
        QFETCH(QString, roleName);
        QFETCH(int, role);
        QFETCH(QStringList, expected);
        ModelPtr source(makeSource({"b", "a", "b"}, {"x", "x", "y"}));
        GroupPtr view(ModelTesters::watch(qobject_cast<GroupModelImp*>(source->GetGroupModel(roleName))));
        QVERIFY(view);
        QVERIFY(!view->keepSortWithSource());
        QCOMPARE(view->groupRole(), role);
        QCOMPARE(groups(view.get()), expected);
    }

    void everyCallMakesANewView()
    {
        ModelPtr source(makeSource({"b"}));
        GroupPtr first(groupView(source.get(), false));
        GroupPtr second(groupView(source.get(), false));
        QVERIFY(first.get() != second.get());
        QVERIFY(memberModel(first.get(), 0) != memberModel(second.get(), 0));
    }

    void updateGroupRole_data()
    {
        QTest::addColumn<QVariant>("newRole"); // an int role or a role name
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedGroups");
        QTest::addColumn<int>("expectedRole");
        QTest::addColumn<ModelTesters::Departures>("departures");
        const QStringList unchanged({"b:i0,i2", "a:i1", "c:i3"});
        QTest::newRow("current role") << QVariant(GroupRole) << QStringList() << unchanged << GroupRole
            << ModelTesters::Departures();
        QTest::newRow("current role by name") << QVariant("groupRole") << QStringList() << unchanged << GroupRole
            << ModelTesters::Departures();
        QTest::newRow("other role") << QVariant(TextRole) << rebuild(3, 2) << QStringList({"x:i0,i1", "y:i2,i3"})
                                    << TextRole << ModelTesters::Departures{ModelTesters::GroupRebuildAfterChange};
        QTest::newRow("other role by name") << QVariant("textRole") << rebuild(3, 2)
                                            << QStringList({"x:i0,i1", "y:i2,i3"}) << TextRole
            << ModelTesters::Departures{ModelTesters::GroupRebuildAfterChange};
        QTest::newRow("unknown name groups by role 0") << QVariant("noSuchRole") << rebuild(3, 1)
                                                       << QStringList({":i0,i1,i2,i3"}) << 0
            << ModelTesters::Departures{ModelTesters::GroupRebuildAfterChange};
        QTest::newRow("role without values") << QVariant(300) << rebuild(3, 1) << QStringList({":i0,i1,i2,i3"}) << 300
            << ModelTesters::Departures{ModelTesters::GroupRebuildAfterChange};
    }

    void updateGroupRole()
    {
        QFETCH(QVariant, newRole);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedGroups);
        QFETCH(int, expectedRole);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);
        // Given a view grouped by groupRole
        ModelPtr source(makeSource({"b", "a", "b", "c"}, {"x", "x", "y", "y"}));
        GroupPtr view(groupView(source.get(), false));
        QPointer<QObject> oldGroup(view->FindItem(0));
        QPointer<QObject> oldMembers(memberModel(view.get(), 0));
        SignalLog log(view.get());
        // When the role is updated
        const bool ok = newRole.userType() == QMetaType::QString ? view->UpdateGroupRole(newRole.toString())
                                                                  : view->UpdateGroupRole(newRole.toInt());
        // Then
        QVERIFY(ok);
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(groups(view.get()), expectedGroups);
        QCOMPARE(view->groupRole(), expectedRole);
        flushDeferredDeletes();
        // Groups that were rebuilt are disposed of, members and all
        QCOMPARE(oldGroup.isNull(), !expectedLog.isEmpty());
        QCOMPARE(oldMembers.isNull(), !expectedLog.isEmpty());
    }

    void updateGroupRoleOnPlainModelFails()
    {
        ModelPtr source(makeSource({"b"}));
        QVERIFY(!source->UpdateGroupRole(GroupRole));
        QVERIFY(!source->UpdateGroupRole(QStringLiteral("groupRole")));
    }

    void valueChange_data()
    {
        QTest::addColumn<bool>("keepSortWithSource");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("newKey");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedGroups");
        // Source: i0 b, i1 a, i2 b, i3 c.
        QTest::newRow("into an existing group")
            << false << "i0" << "c" << QStringList() << QStringList({"b:i2", "a:i1", "c:i3,i0"});
        QTest::newRow("into an existing group, keeping source order")
            << true << "i0" << "c" << rebuild(3, 3) << QStringList({"c:i0,i3", "a:i1", "b:i2"});
        QTest::newRow("into a new group")
            << false << "i0" << "d" << groupAdded(3) << QStringList({"b:i2", "a:i1", "c:i3", "d:i0"});
        QTest::newRow("into a new group, keeping source order")
            << true << "i0" << "d" << rebuild(3, 4) << QStringList({"d:i0", "a:i1", "b:i2", "c:i3"});
        QTest::newRow("last member out of its group")
            << false << "i1" << "b" << groupRemoved(1, "a") << QStringList({"b:i0,i2,i1", "c:i3"});
        QTest::newRow("last member out of its group, keeping source order")
            << true << "i1" << "b" << rebuild(3, 2) << QStringList({"b:i0,i1,i2", "c:i3"});
        QTest::newRow("last member into a new group")
            << false << "i3" << "d" << groupRemoved(2, "c") + groupAdded(2) << QStringList({"b:i0,i2", "a:i1", "d:i3"});
        QTest::newRow("last member into a new group, keeping source order")
            << true << "i3" << "d" << rebuild(3, 3) << QStringList({"b:i0,i2", "a:i1", "d:i3"});
        QTest::newRow("change that keeps the key")
            << false << "i0" << QString() << QStringList() << QStringList({"b:i0,i2", "a:i1", "c:i3"});
        QTest::newRow("change that keeps the key, keeping source order")
            << true << "i0" << QString() << rebuild(3, 3) << QStringList({"b:i0,i2", "a:i1", "c:i3"});
    }

    void valueChange()
    {
        QFETCH(bool, keepSortWithSource);
        // Keeping the source's order, the view rebuilds its groups on every change.
        if (keepSortWithSource)
            ModelTesters::expect(ModelTesters::GroupRebuildAfterChange);
        QFETCH(QString, id);
        QFETCH(QString, newKey);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedGroups);
        // Given
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), keepSortWithSource));
        SignalLog log(view.get());
        // When an item's value changes (a null key changes only the name)
        ValueItem* item = sourceItem(source.get(), id);
        if (newKey.isNull())
            item->SetName(QStringLiteral("renamed"));
        else
            item->setExtra(GroupRole, newKey);
        // Then
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(groups(view.get()), expectedGroups);
        const int row = source->FindItemRow(id);
        const QString key = newKey.isNull() ? item->getData(GroupRole).toString() : newKey;
        QCOMPARE(view->rowGroups().value(row).first, id);
        QCOMPARE(view->rowGroups().value(row).second.toString(), key);
    }

    void memberModelsSignalAMove()
    {
        // Given two groups with their own member logs
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), false));
        SignalLog oldGroup(memberModel(view.get(), "b"));
        SignalLog newGroup(memberModel(view.get(), "c"));
        auto* groupItemB = view->FindItem(QStringLiteral("b"));
        ItemSignalLog relay(groupItemB);
        // When i0 moves from b to c
        sourceItem(source.get(), "i0")->setExtra(GroupRole, "c");
        // Then b lets it go (alive) and c appends it; the group item relays its members' changes
        QCOMPARE(oldGroup.take(), QStringList({"rowsAboutToBeRemoved(0,0)", "rowsRemoved(0,0)", "itemsRemoved(i0)",
                                               "rowCountChanged()"}));
        QCOMPARE(newGroup.take(), QStringList({"rowsAboutToBeInserted(1,1)", "rowsInserted(1,1)", "rowCountChanged()"}));
        QCOMPARE(relay.take(), QStringList({"childModelValueChanged()"}));
        flushDeferredDeletes();
        QVERIFY(sourceItem(source.get(), "i0"));
        // A later change of a member reaches its new group only
        sourceItem(source.get(), "i0")->SetName(QStringLiteral("renamed"));
        QCOMPARE(oldGroup.take(), QStringList());
        QCOMPARE(newGroup.take(), QStringList({"dataChanged(1,1)"}));
    }

    void groupLeavingTheViewIsDisposedOf()
    {
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), false));
        QPointer<QObject> group(view->FindItem(QStringLiteral("a")));
        QPointer<XOLATreeModel> members(memberModel(view.get(), "a"));
        QPointer<QObject> movedItem(source->FindItem(1));
        // When a's only member moves to b
        sourceItem(source.get(), "i1")->setExtra(GroupRole, "b");
        flushDeferredDeletes();
        // Then the group item and its member model are gone, the member is not
        QVERIFY(group.isNull());
        QVERIFY(members.isNull());
        QVERIFY(!movedItem.isNull());
    }

    void sourceAppends_data()
    {
        QTest::addColumn<bool>("keepSortWithSource");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedGroups");
        QTest::addColumn<QStringList>("expectedRows");
        // Source b, a, b, c, then i4 a, i5 d, then the list i6 e, i7 a, i8 f.
        QTest::newRow("one item at a time")
            << false << QStringList(groupAdded(3) + groupAdded(4) + groupAdded(5))
            << QStringList({"b:i0,i2", "a:i1,i4,i7", "c:i3", "d:i5", "e:i6", "f:i8"})
            << QStringList({"0=i0/b", "1=i1/a", "2=i2/b", "3=i3/c", "4=i4/a", "5=i5/d", "6=i6/e", "7=i7/a", "8=i8/f"});
        QTest::newRow("keeping source order")
            << true << QStringList(rebuild(3, 3) + rebuild(3, 4) + rebuild(4, 6))
            << QStringList({"b:i0,i2", "a:i1,i4,i7", "c:i3", "d:i5", "e:i6", "f:i8"})
            << QStringList({"0=i0/b", "1=i1/a", "2=i2/b", "3=i3/c", "4=i4/a", "5=i5/d", "6=i6/e", "7=i7/a", "8=i8/f"});
    }

    void sourceAppends()
    {
        QFETCH(bool, keepSortWithSource);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedGroups);
        QFETCH(QStringList, expectedRows);
        // The source's list load announces its rows once they are in.
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        if (keepSortWithSource)
            ModelTesters::expect(ModelTesters::GroupRebuildAfterChange);
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), keepSortWithSource));
        SignalLog log(view.get());
        source->AppendItem(member("i4", "a"));
        source->AppendItem(member("i5", "d"));
        source->AppendItemsList({member("i6", "e"), member("i7", "a"), member("i8", "f")});
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(groups(view.get()), expectedGroups);
        QCOMPARE(recordedRows(view.get()), expectedRows);
    }

    void sourceRemovals_data()
    {
        QTest::addColumn<bool>("keepSortWithSource");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("expectedLog");
        QTest::addColumn<QStringList>("expectedGroups");
        // Source: i0 b, i1 a, i2 b, i3 c.
        QTest::newRow("member of a larger group") << false << "RemoveOne i0" << QStringList()
                                                  << QStringList({"b:i2", "a:i1", "c:i3"});
        QTest::newRow("member of a larger group, keeping source order")
            << true << "RemoveOne i0" << rebuild(3, 3) << QStringList({"a:i1", "b:i2", "c:i3"});
        QTest::newRow("only member") << false << "RemoveOne i1" << groupRemoved(1, "a") << QStringList({"b:i0,i2", "c:i3"});
        QTest::newRow("only member, keeping source order")
            << true << "RemoveOne i1" << rebuild(3, 2) << QStringList({"b:i0,i2", "c:i3"});
        QTest::newRow("row range") << false << "Remove 1..3" << QStringList(groupRemoved(1, "a") + groupRemoved(1, "c"))
                                   << QStringList({"b:i0"});
        QTest::newRow("row range, keeping source order")
            << true << "Remove 1..3" << rebuild(3, 1) << QStringList({"b:i0"});
        QTest::newRow("id list") << false << "Remove i3,i1"
                                 << QStringList(groupRemoved(2, "c") + groupRemoved(1, "a")) << QStringList({"b:i0,i2"});
        QTest::newRow("id list, keeping source order")
            << true << "Remove i3,i1" << QStringList(rebuild(3, 2) + rebuild(2, 1)) << QStringList({"b:i0,i2"});
    }

    void sourceRemovals()
    {
        QFETCH(bool, keepSortWithSource);
        QFETCH(QString, operation);
        QFETCH(QStringList, expectedLog);
        QFETCH(QStringList, expectedGroups);
        // Keeping the source's order, the view rebuilds its groups on every change.
        if (keepSortWithSource)
            ModelTesters::expect(ModelTesters::GroupRebuildAfterChange);
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), keepSortWithSource));
        SignalLog log(view.get());
        if (operation == QLatin1String("RemoveOne i0"))
            QVERIFY(source->RemoveOne(QStringLiteral("i0")));
        else if (operation == QLatin1String("RemoveOne i1"))
            QVERIFY(source->RemoveOne(QStringLiteral("i1")));
        else if (operation == QLatin1String("Remove 1..3"))
            QVERIFY(source->Remove(1, 3));
        else {
            // Removal by id list hands the items back to the caller
            std::unique_ptr<QObject> i3(source->FindItem(QStringLiteral("i3")));
            std::unique_ptr<QObject> i1(source->FindItem(QStringLiteral("i1")));
            QVERIFY(source->Remove(QStringList({"i3", "i1"})));
        }
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(groups(view.get()), expectedGroups);
    }

    void recordedRowsAreNotRenumbered_data()
    {
        QTest::addColumn<bool>("keepSortWithSource");
        QTest::addColumn<QStringList>("expectedGroups");
        QTest::addColumn<QStringList>("expectedRows");
        // Applied one item at a time, the second removal (source row 0 again)
        // finds no recorded row 0 and leaves i1 grouped.
        QTest::newRow("one item at a time") << false << QStringList({"b:i2", "a:i1", "c:i3"})
                                            << QStringList({"1=i1/a", "2=i2/b", "3=i3/c"});
        QTest::newRow("keeping source order stays exact") << true << QStringList({"b:i2", "c:i3"})
                                                          << QStringList({"0=i2/b", "1=i3/c"});
    }

    void recordedRowsAreNotRenumbered()
    {
        QFETCH(bool, keepSortWithSource);
        QFETCH(QStringList, expectedGroups);
        QFETCH(QStringList, expectedRows);
        // Keeping the source's order, the view rebuilds its groups on every change.
        if (keepSortWithSource)
            ModelTesters::expect(ModelTesters::GroupRebuildAfterChange);
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), keepSortWithSource));
        QVERIFY(source->RemoveOne(QStringLiteral("i0")));
        QVERIFY(source->RemoveOne(QStringLiteral("i1")));
        QCOMPARE(groups(view.get()), expectedGroups);
        QCOMPARE(recordedRows(view.get()), expectedRows);
    }

    void sourceRemoveAll_data()
    {
        QTest::addColumn<bool>("keepSortWithSource");
        QTest::addColumn<QStringList>("expectedLog");
        // Row by row, each group goes when its last member does; the final
        // allItemRemoved finds the view already empty.
        QTest::newRow("one item at a time")
            << false << QStringList(groupRemoved(1, "a") + groupRemoved(0, "b") + groupRemoved(0, "c"));
        QTest::newRow("keeping source order") << true << rebuild(3, 0);
    }

    void sourceRemoveAll()
    {
        QFETCH(bool, keepSortWithSource);
        QFETCH(QStringList, expectedLog);
        // Keeping the source's order, the view rebuilds its groups on every change.
        if (keepSortWithSource)
            ModelTesters::expect(ModelTesters::GroupRebuildAfterChange);
        ModelPtr source(makeSource({"b", "a", "b", "c"}));
        GroupPtr view(groupView(source.get(), keepSortWithSource));
        QPointer<XOLATreeModel> members(memberModel(view.get(), "b"));
        SignalLog log(view.get());
        source->RemoveAll();
        QCOMPARE(log.take(), expectedLog);
        QCOMPARE(view->rowCount(), 0);
        QCOMPARE(recordedRows(view.get()), QStringList());
        flushDeferredDeletes();
        QVERIFY(members.isNull());
        // The view fills again as the source does
        source->AppendItem(member("n0", "z"));
        QCOMPARE(groups(view.get()), QStringList({"z:n0"}));
    }

    void allItemRemovedLeavesRecordedRowsToTheNextRebuild()
    {
        ModelTesters::expect(ModelTesters::GroupRebuildAfterChange);
        ModelPtr source(makeSource({"b", "a", "b", "c"}, {"x", "x", "y", "y"}));
        GroupPtr view(groupView(source.get(), false));
        SignalLog log(view.get());
        view->SourceModelAllItemRemovedHandler();
        QCOMPARE(log.take(), rebuild(3, 0));
        QCOMPARE(recordedRows(view.get()), QStringList({"0=i0/b", "1=i1/a", "2=i2/b", "3=i3/c"}));
        QVERIFY(view->UpdateGroupRole(TextRole));
        QCOMPARE(recordedRows(view.get()), QStringList({"0=i0/x", "1=i1/x", "2=i2/y", "3=i3/y"}));
    }

    void handlersIgnoreNegativeRows()
    {
        ModelPtr source(makeSource({"b", "a"}));
        GroupPtr view(groupView(source.get(), false));
        SignalLog log(view.get());
        view->SourceModelDataChangedHandler(QModelIndex(), QModelIndex());
        view->SourceModelDataChangedHandler(source->index(0), QModelIndex());
        view->SourceModelItemAddedHandler(QModelIndex(), -1, 1);
        view->SourceModelItemRemovedHandler(QModelIndex(), -1, 1);
        view->SourceModelItemRemovedHandler(QModelIndex(), 1, 0);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(groups(view.get()), QStringList({"b:i0", "a:i1"}));
    }

    void groupApi()
    {
        ModelPtr source(makeSource({"b", "a"}));
        GroupPtr view(groupView(source.get(), false));
        SignalLog log(view.get());
        // An existing group answers with its member model
        QCOMPARE(view->GetGroupChildModel(QStringLiteral("b")), static_cast<QObject*>(memberModel(view.get(), 0)));
        QCOMPARE(log.take(), QStringList());
        // A new key makes a group at the end
        auto* created =
            ModelTesters::watch(qobject_cast<XOLATreeModel*>(view->GetGroupChildModel(QStringLiteral("z"))));
        QVERIFY(created);
        QCOMPARE(log.take(), groupAdded(2));
        QCOMPARE(view->GetGroupChildModel(QStringLiteral("z")), static_cast<QObject*>(created));
        QCOMPARE(created->rowCount(), 0);
        // Adding records the row
        std::unique_ptr<XOLATreeItem> outsider(item(QStringLiteral("o")));
        QVERIFY(view->AddOneToGroupChildModel(10, QStringLiteral("z"), outsider.get()));
        QCOMPARE(groups(view.get()), QStringList({"b:i0", "a:i1", "z:o"}));
        QVERIFY(recordedRows(view.get()).contains(QStringLiteral("10=o/z")));
        QVERIFY(!view->AddOneToGroupChildModel(11, QStringLiteral("z"), nullptr));
        // Removing the last member removes the group and the record
        QVERIFY(view->RemoveOneFromGroupChildModel(10, QStringLiteral("z"), QStringLiteral("o")));
        QCOMPARE(log.take(), groupRemoved(2, "z"));
        QVERIFY(!recordedRows(view.get()).contains(QStringLiteral("10=o/z")));
        // An unknown group is refused
        QVERIFY(!view->RemoveOneFromGroupChildModel(0, QStringLiteral("nope"), QStringLiteral("i0")));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(recordedRows(view.get()), QStringList({"0=i0/b", "1=i1/a"}));
        flushDeferredDeletes();
        QCOMPARE(outsider->id(), QStringLiteral("o"));
    }

    void withoutSource()
    {
        GroupPtr view(ModelTesters::watch(new GroupModelImp(nullptr, GroupRole, false)));
        SignalLog log(view.get());
        QCOMPARE(view->rowCount(), 0);
        QCOMPARE(view->groupRole(), -1);
        QVERIFY(!view->UpdateGroupRole(GroupRole));
        QVERIFY(!view->UpdateGroupRole(QStringLiteral("groupRole")));
        QCOMPARE(view->GetGroupChildModel(QStringLiteral("a")), static_cast<QObject*>(nullptr));
        view->SourceModelDataChangedHandler(QModelIndex(), QModelIndex());
        view->SourceModelItemAddedHandler(QModelIndex(), 0, 0);
        view->SourceModelItemRemovedHandler(QModelIndex(), 0, 0);
        view->SourceModelAllItemRemovedHandler();
        QCOMPARE(log.take(), QStringList());
    }

    void resetAndLayoutAreRelayed()
    {
        ModelTesters::expect(ModelTesters::ViewsForwardLoneEnds);
        ModelPtr source(makeSource({"b", "a", "b"}));
        GroupPtr view(groupView(source.get(), true));
        SignalLog log(view.get());
        // A move resets the source; the view relays the end of the reset only and keeps its groups
        source->MoveRow(0, 2);
        QCOMPARE(log.take(), QStringList({"modelReset()"}));
        QCOMPARE(groups(view.get()), QStringList({"b:i0,i2", "a:i1"}));
        QVERIFY(QMetaObject::invokeMethod(source.get(), "layoutAboutToBeChanged"));
        QVERIFY(QMetaObject::invokeMethod(source.get(), "layoutChanged"));
        QCOMPARE(log.take(), QStringList({"layoutChanged()"}));
    }

    void groupOfAGroupView()
    {
        // Group views are models too: grouping the groups by name
        ModelPtr source(makeSource({"b", "a", "b"}));
        GroupPtr view(groupView(source.get(), false));
        GroupPtr outer(
            ModelTesters::watch(qobject_cast<GroupModelImp*>(view->GetGroupModel(QStringLiteral("nameRole")))));
        QCOMPARE(groups(outer.get()), QStringList({"b:b", "a:a"}));
        SignalLog log(outer.get());
        source->AppendItem(member("i3", "c"));
        QCOMPARE(log.take(), groupAdded(2));
        QCOMPARE(groups(outer.get()), QStringList({"b:b", "a:a", "c:c"}));
        outer.reset();
    }

    void groupViewOfAFilterView()
    {
        ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
        // Given a source whose predicate lets through items whose text is the rule value
        auto match = [](const QObject* object, const QVariant& rule) {
            auto* item = qobject_cast<const XOLATreeItem*>(object);
            return item && item->getData(TextRole).toString() == rule.toString();
        };
        ModelPtr source(createModel(0, extendedRoleNames(), nullptr, match));
        appendEach(source.get(), {member("i0", "b", "on"), member("i1", "a", "off"), member("i2", "b", "on"),
                                  member("i3", "c", "on")});
        std::unique_ptr<XOLATreeModel> filter(ModelTesters::watch(
            qobject_cast<XOLATreeModel*>(source->GetFilterModelByUserDefinedRules(QVariant("on")))));
        QVERIFY(filter);
        QCOMPARE(ids(filter.get()), QStringList({"i0", "i2", "i3"}));
        // When the filter view is grouped
        GroupPtr view(groupView(filter.get(), false));
        QCOMPARE(groups(view.get()), QStringList({"b:i0,i2", "c:i3"}));
        SignalLog log(view.get());
        // Then items passing the filter later join their group
        sourceItem(source.get(), "i1")->setExtra(TextRole, "on");
        QCOMPARE(ids(filter.get()), QStringList({"i0", "i2", "i3", "i1"}));
        QCOMPARE(log.take(), groupAdded(2));
        QCOMPARE(groups(view.get()), QStringList({"b:i0,i2", "c:i3", "a:i1"}));
        // and new source items that pass are grouped as they arrive
        source->AppendItem(member("i4", "c", "on"));
        QCOMPARE(groups(view.get()), QStringList({"b:i0,i2", "c:i3,i4", "a:i1"}));
        // and clearing the source empties the groups
        source->RemoveAll();
        QCOMPARE(view->rowCount(), 0);
        view.reset();
        filter.reset();
    }

    void largeSourceGroupsAsTheSimpleDefinitionSays()
    {
        // Given many items over a few hundred keys, loaded in one list as hosts
        // load a large source (the list load announces its rows once they are in)
        const int count = 20000;
        QVariantList keys;
        for (int i = 0; i < count; ++i)
            keys << QStringLiteral("k%1").arg((i * 7919) % 300);
        ModelTesters::expect(ModelTesters::ListLoadAfterChange);
        ModelPtr source(createModel(0, extendedRoleNames()));
        source->AppendItemsList(members(keys));
        // When grouped
        GroupPtr view(groupView(source.get(), false));
        // Then the groups are what the definition gives: first appearance, source order
        QStringList order;
        QHash<QString, QStringList> expected;
        for (int i = 0; i < count; ++i) {
            const QString key = keys.at(i).toString();
            if (!expected.contains(key))
                order << key;
            expected[key] << QStringLiteral("i%1").arg(i);
        }
        QStringList expectedGroups;
        for (const QString& key : qAsConst(order))
            expectedGroups << key + QLatin1Char(':') + expected.value(key).join(QLatin1Char(','));
        QCOMPARE(groups(view.get()), expectedGroups);
        QCOMPARE(view->rowGroups().size(), count);
    }
};

QTEST_GUILESS_MAIN(TestGroupModel)

#include "tst_groupmodel.moc"
