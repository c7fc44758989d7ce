import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

Item {
    id: root
    width: 200
    height: 400

    // Held here as well as by the list, so the engine keeps the view while a test runs.
    property var view: null

    ListView {
        id: list
        width: 200
        height: 200
        model: root.view
        delegate: Text { text: nameRole; height: 10 }
    }

    // Parents with their children, read through the child model role.
    ListView {
        id: treeList
        y: 200
        width: 200
        height: 200
        delegate: Column {
            property string key: idRole
            property alias childCount: childList.count
            property alias children_: childList
            width: 200
            ListView {
                id: childList
                width: 200
                height: 40
                model: childModelRole
                delegate: Text { text: nameRole; height: 10 }
            }
        }
    }

    SignalSpy {
        id: changedSpy
        target: root.view
        signalName: "filterModelChanged"
    }

    TestCase {
        name: "FilterViewFromQml"
        when: windowShown

        function nameContains(text) {
            return [{RoleName: "nameRole", Rule: IXOLATreeModel.InsensitiveSubStr, Value: text}]
        }

        function show(view) {
            root.view = view
            changedSpy.clear()
        }

        function cleanup() {
            root.view = null
        }

        function test_listFollowsSourceChanges() {
            var source = host.createModel(0)
            show(source.GetFilterModel(nameContains("ab")))
            compare(list.count, 0)

            verify(host.append(source, "a", "Abby"))
            compare(list.count, 1)
            verify(host.append(source, "b", "Bob"))
            compare(list.count, 1, "Bob does not contain ab")
            verify(host.appendMany(source, ["xab", "y", "zab"]))
            compare(list.count, 3, "name-xab and name-zab pass")
            verify(host.prepend(source, "p", "Plain"))
            compare(list.count, 3)

            // A name change makes b enter and a leave
            verify(host.setName(source, "b", "Babel"))
            compare(list.count, 4)
            compare(root.view.FindItemID(3), "b")
            verify(host.setName(source, "a", "Anna"))
            compare(list.count, 3)
            compare(root.view.FindItemRow("a"), -1)

            verify(host.removeOne(source, "xab"))
            compare(list.count, 2)
            compare(root.view.count, 2)
            host.removeAll(source)
            compare(list.count, 0)
            compare(changedSpy.count, 0, "following the source is not a rebuild")
        }

        function test_newItemsAtTheHead() {
            var source = host.createModel(0)
            verify(host.append(source, "a", "Abby"))
            show(source.GetFilterModel(nameContains("ab"), true, IXOLATreeModel.POS_HEAD))
            verify(host.append(source, "c", "Crab"))
            compare(list.count, 2)
            compare(root.view.get(0).idRole, "c")
            compare(root.view.get(1).idRole, "a")
        }

        function test_updateFilterRulesFromQml() {
            var source = host.createModel(0)
            host.append(source, "a", "Abby")
            host.append(source, "b", "Bob")
            host.append(source, "c", "Carl")
            show(source.GetFilterModel(nameContains("ab")))
            compare(list.count, 1)

            verify(root.view.UpdateFilterRules(nameContains("b")))
            compare(changedSpy.count, 1)
            compare(list.count, 2)

            // The same rules again, with the flag left out (it means "or"): nothing happens
            verify(root.view.UpdateFilterRules(nameContains("b")))
            verify(root.view.UpdateFilterRules(nameContains("b"), true))
            compare(changedSpy.count, 1)

            // "and" of two rules
            var both = nameContains("b").concat([{RoleName: "nameRole", Rule: IXOLATreeModel.SubStr, Value: "o"}])
            verify(root.view.UpdateFilterRules(both, false))
            compare(changedSpy.count, 2)
            compare(list.count, 1)
            compare(root.view.FindItemID(0), "b")

            // The second format: one role, several comparisons
            verify(root.view.UpdateFilterRules([{RoleName: "nameRole", OrAllRules: true,
                                                 Rules: [{Rule: IXOLATreeModel.Eq, Value: "Carl"},
                                                         {Rule: IXOLATreeModel.Eq, Value: "Abby"}]}]))
            compare(changedSpy.count, 3)
            compare(list.count, 2)

            // No rules: everything
            verify(root.view.UpdateFilterRules())
            compare(changedSpy.count, 4)
            compare(list.count, 3)
        }

        function test_userDefinedRulesWithJsObjects() {
            var source = host.createModelWithMinimumMatch(0)
            host.append(source, "a", "A", 20)
            host.append(source, "b", "B", 5)
            host.append(source, "c", "C", 30)
            show(source.GetFilterModelByUserDefinedRules({min: 25}))
            compare(list.count, 1)

            // An equal object: true and no rebuild
            verify(root.view.UpdateUserDefinedFilterRules({min: 25}))
            compare(changedSpy.count, 0)

            verify(root.view.UpdateUserDefinedFilterRules({min: 10}))
            compare(changedSpy.count, 1)
            compare(list.count, 2)
            verify(root.view.UpdateUserDefinedFilterRules({min: 10}))
            compare(changedSpy.count, 1)

            // The view follows the source with the same value
            host.append(source, "d", "D", 11)
            compare(list.count, 3)
            host.setValue(source, "b", 50)
            compare(list.count, 4)
        }

        function test_plainModelRefusesRuleUpdates() {
            var source = host.createModel(0)
            verify(!source.UpdateFilterRules(nameContains("a")))
            verify(!source.UpdateUserDefinedFilterRules({min: 1}))
        }

        function test_childViewsThroughChildModelRole() {
            var child = host.createModel(0)
            host.append(child, "k", "Kabul")
            host.append(child, "m", "Moscow")
            var source = host.createModel(0)
            host.appendWithChild(source, "p", "Paris", child)
            host.append(source, "q", "Quebec")
            show(source.GetFilterModel(nameContains("ab")))
            compare(list.count, 1, "Paris stays for its child Kabul")

            // Each delegate's child list is a filter view of the child model with the same rules
            treeList.model = root.view
            compare(treeList.count, 1)
            var delegate = treeList.itemAtIndex(0)
            verify(delegate !== null)
            compare(delegate.key, "p")
            compare(delegate.childCount, 1)
            compare(delegate.children_.itemAtIndex(0).text, "Kabul")

            // The child view follows its child model
            host.append(child, "r", "Rabat")
            compare(delegate.childCount, 2)
            treeList.model = null
            // The source disposes of the child models of its items
            host.removeAll(source)
        }
    }
}
