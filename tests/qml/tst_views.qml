import QtQuick 2.15
import QtTest 1.2

Item {
    id: root
    width: 200
    height: 600

    // Groups, each delegate listing its members through the group's child model.
    ListView {
        id: groupList
        width: 200
        height: 200
        delegate: Column {
            property string key: idRole
            property alias memberCount: memberList.count
            property alias members: memberList
            width: 200
            ListView {
                id: memberList
                width: 200
                height: 40
                model: childModelRole
                delegate: Text { text: nameRole; height: 10 }
            }
        }
    }

    ListView {
        id: pageList
        y: 200
        width: 200
        height: 200
        delegate: Text { text: idRole; height: 10 }
    }

    ListView {
        id: windowList
        y: 400
        width: 200
        height: 200
        delegate: Text { text: idRole; height: 10 }
    }

    SignalSpy { id: pageSpy; signalName: "pageChanged" }
    SignalSpy { id: totalPageSpy; signalName: "totalPageChanged" }
    SignalSpy { id: firstRowSpy; signalName: "firstPartialModelRowChanged" }

    // Delegates are made when a list lays itself out; lay it out before reading them.
    function delegateAt(list, row) {
        list.forceLayout()
        return list.itemAtIndex(row)
    }

    function idsOf(prefix, count) {
        var result = []
        for (var i = 0; i < count; ++i)
            result.push(prefix + i)
        return result
    }

    TestCase {
        name: "GroupViewInQml"
        when: windowShown

        function cleanup() {
            groupList.model = null
        }

        function test_groupsAndMembersInListViews() {
            var source = host.createModel(0)
            verify(host.append(source, "a", "Alpha"))
            verify(host.append(source, "b", "Beta"))
            verify(host.append(source, "c", "Gamma"))
            verify(host.setGroup(source, "a", "g1"))
            verify(host.setGroup(source, "b", "g2"))
            verify(host.setGroup(source, "c", "g1"))

            var groups = source.GetGroupModel("groupRole")
            verify(groups !== null)
            groupList.model = groups
            compare(groupList.count, 2)
            compare(groups.count, 2)
            compare(delegateAt(groupList, 0).key, "g1")
            compare(delegateAt(groupList, 0).memberCount, 2)
            compare(delegateAt(groupList, 1).key, "g2")
            compare(delegateAt(groupList, 1).memberCount, 1)
            compare(delegateAt(groupList, 0).members.model.get(1).nameRole, "Gamma")

            // A new item without a group value makes the empty group; giving it one moves it
            verify(host.append(source, "d", "Delta"))
            compare(groupList.count, 3)
            compare(delegateAt(groupList, 2).key, "")
            verify(host.setGroup(source, "d", "g2"))
            compare(groupList.count, 2)
            compare(delegateAt(groupList, 1).memberCount, 2)

            // Removing a group's last member removes the group (last rows first: the
            // view records source rows as they were when each item arrived)
            verify(host.removeOne(source, "d"))
            verify(host.removeOne(source, "b"))
            compare(groupList.count, 1)
            compare(delegateAt(groupList, 0).memberCount, 2)
        }

        function test_regroupAndKeepSourceOrder() {
            var source = host.createModel(0)
            verify(host.append(source, "a", "Alpha"))
            verify(host.append(source, "b", "Beta"))
            verify(host.setGroup(source, "a", "g1"))
            verify(host.setGroup(source, "b", "g1"))
            var groups = source.GetGroupModel("groupRole", true)
            groupList.model = groups
            compare(groupList.count, 1)
            verify(host.setGroup(source, "a", "g2"))
            compare(groupList.count, 2)
            compare(delegateAt(groupList, 0).key, "g2", "rebuilt in source order")
            // Regrouped by name: one group per item
            verify(groups.UpdateGroupRole("nameRole"))
            compare(groupList.count, 2)
            compare(delegateAt(groupList, 0).key, "Alpha")
            verify(groups.UpdateGroupRole("nameRole"), "the current role is accepted")
            verify(!source.UpdateGroupRole("nameRole"), "a plain model does not group")
        }
    }

    TestCase {
        name: "PagingViewInQml"
        when: windowShown

        function cleanup() {
            pageList.model = null
        }

        function test_pageWrittenFromQml() {
            var source = host.createModel(0)
            verify(host.appendMany(source, idsOf("r", 25)))
            var paging = source.GetPagingModel(10)
            verify(paging !== null)
            pageSpy.target = paging
            pageSpy.clear()
            totalPageSpy.target = paging
            totalPageSpy.clear()
            pageList.model = paging
            compare(paging.totalPage, 3)
            compare(paging.page, 0)
            compare(pageList.count, 10)

            paging.page = 2
            compare(paging.page, 2)
            compare(pageSpy.count, 1)
            compare(pageSpy.signalArguments[0][0], 2)
            compare(pageList.count, 5)
            compare(paging.count, 5)
            compare(paging.get(0).idRole, "r20")

            paging.page = 7
            compare(paging.page, 2, "a page past the end is ignored")
            compare(pageSpy.count, 1)

            // Shrinking the source pulls the page back
            for (var i = 20; i < 25; ++i)
                verify(host.removeOne(source, "r" + i))
            compare(paging.totalPage, 2)
            compare(totalPageSpy.count, 1)
            compare(paging.page, 1)
            compare(pageList.count, 10)
        }

        function test_unboundedPage() {
            var source = host.createModel(0)
            verify(host.appendMany(source, idsOf("r", 12)))
            var paging = source.GetPagingModel(0)
            pageList.model = paging
            compare(paging.totalPage, 1)
            compare(pageList.count, 12)
        }
    }

    TestCase {
        name: "PartialViewInQml"
        when: windowShown

        function cleanup() {
            windowList.model = null
        }

        function test_windowMovedFromQml() {
            var source = host.createModel(0)
            verify(host.appendMany(source, idsOf("r", 10)))
            var partial = source.GetPartialModel(5)
            verify(partial !== null)
            firstRowSpy.target = source
            firstRowSpy.clear()
            windowList.model = partial
            compare(windowList.count, 5)
            compare(partial.count, 5)

            source.firstPartialModelRow = 8
            compare(source.firstPartialModelRow, 8)
            compare(firstRowSpy.count, 1)
            compare(windowList.count, 2)
            compare(partial.get(0).idRole, "r8")
            compare(delegateAt(windowList, 1).text, "r9")

            source.firstPartialModelRow = 3
            compare(windowList.count, 5)
            compare(delegateAt(windowList, 0).text, "r3")

            source.firstPartialModelRow = 50
            compare(source.firstPartialModelRow, 9, "clamped to the last row")
            compare(windowList.count, 1)

            // A new size re-announces the window
            source.firstPartialModelRow = 0
            verify(source.GetPartialModel(3) === partial)
            compare(windowList.count, 3)
            compare(partial.FindItemRow("r2"), 2)
        }

        function test_windowOverAView() {
            var source = host.createModel(0)
            verify(host.appendMany(source, idsOf("r", 25)))
            var paging = source.GetPagingModel(10)
            paging.page = 1
            var partial = paging.GetPartialModel(4)
            windowList.model = partial
            compare(windowList.count, 4)
            compare(delegateAt(windowList, 0).text, "r10")
            paging.firstPartialModelRow = 8
            compare(windowList.count, 2)
            compare(delegateAt(windowList, 1).text, "r19")
            paging.firstPartialModelRow = 2
            compare(windowList.count, 4)
            paging.page = 2
            compare(windowList.count, 3)
            compare(delegateAt(windowList, 0).text, "r22")
        }
    }
}
