import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

TestCase {
    id: testCase
    name: "Sorting"

    function names(model) {
        var result = []
        for (var i = 0; i < model.count; ++i)
            result.push(model.get(i).nameRole)
        return result
    }

    function modelNamed(list) {
        var model = host.createModel(0)
        for (var i = 0; i < list.length; ++i)
            verify(host.append(model, "id" + i, list[i], i))
        return model
    }

    function spyOn(model, signalName) {
        var spy = Qt.createQmlObject('import QtTest 1.2; SignalSpy {}', testCase)
        spy.target = model
        spy.signalName = signalName
        return spy
    }

    function test_sortByRoleName() {
        var model = modelNamed(["b", "a", "c"])
        var dataSpy = spyOn(model, "dataChanged")
        var layoutSpy = spyOn(model, "layoutChanged")
        model.SortByRole("nameRole", false)
        compare(names(model), ["c", "b", "a"])
        compare(dataSpy.count, 1)
        compare(dataSpy.signalArguments[0][0].row, 0)
        compare(dataSpy.signalArguments[0][1].row, 2)
        compare(layoutSpy.count, 0)
        model.SortByRole("nameRole", true)
        compare(names(model), ["a", "b", "c"])
        dataSpy.destroy()
        layoutSpy.destroy()
    }

    function test_sortByRoleNumber() {
        var model = modelNamed(["b", "a", "c"])
        model.SortByRole(258, true)
        compare(names(model), ["a", "b", "c"])
    }

    function test_sortByRulesDefaultFlag() {
        var model = modelNamed(["b", "a", "c"])
        model.SortByRules([{RoleName: "nameRole", Ascending: true}])
        compare(names(model), ["a", "b", "c"])
        compare(host.sortFlag(model), 0)
        // Insertions keep their place afterwards.
        verify(host.append(model, "x", "0"))
        compare(names(model), ["a", "b", "c", "0"])
    }

    function test_sortByRulesMissingAscendingIsDescending() {
        var model = modelNamed(["b", "a", "c"])
        model.SortByRules([{RoleName: "nameRole"}])
        compare(names(model), ["c", "b", "a"])
    }

    function test_sortByRulesSeveralRules() {
        var model = host.createModel(0)
        verify(host.append(model, "1", "b", 2))
        verify(host.append(model, "2", "a", 1))
        verify(host.append(model, "3", "c", 2))
        verify(host.append(model, "4", "d", 1))
        model.SortByRules([{RoleName: "valueRole", Ascending: true}, {RoleName: "nameRole", Ascending: false}])
        compare(names(model), ["d", "a", "c", "b"])
    }

    function test_sortByRoleAndKeepThenInsertFromHost() {
        var model = host.createModel(0)
        verify(host.append(model, "a", "a", 30))
        verify(host.append(model, "b", "b", 10))
        model.SortByRoleAndKeep("valueRole", true)
        compare(host.sortFlag(model), IXOLATreeModel.KeepSorting)
        compare(names(model), ["b", "a"])
        var countSpy = spyOn(model, "rowCountChanged")
        verify(host.append(model, "c", "c", 20))
        compare(names(model), ["b", "c", "a"])
        compare(countSpy.count, 1)
        verify(host.prepend(model, "d", "d", 40))
        compare(names(model), ["b", "c", "a", "d"])
        // A one-off sort ends keep-sorting.
        model.SortByRole("valueRole", false)
        compare(host.sortFlag(model), IXOLATreeModel.None)
        verify(host.append(model, "e", "e", 0))
        compare(names(model), ["d", "a", "c", "b", "e"])
        countSpy.destroy()
    }

    function test_enumValuesByName() {
        var model = modelNamed(["b", "a"])
        model.SortByRules([{RoleName: "nameRole", Ascending: true}], IXOLATreeModel.KeepSorting)
        compare(host.sortFlag(model), 1)
        verify(host.append(model, "x", "0"))
        compare(names(model), ["0", "a", "b"])
        model.SortByRules([{RoleName: "nameRole", Ascending: false}], IXOLATreeModel.RecursiveKeepSorting)
        compare(host.sortFlag(model), 2)
        compare(names(model), ["b", "a", "0"])
        model.SortByRules([], IXOLATreeModel.None)
        compare(host.sortFlag(model), 0)
        compare(names(model), ["0", "a", "b"])
    }

    function test_recursiveKeepSortingReachesChildren() {
        var model = host.createModel(0)
        var child = host.createModel(0)
        verify(host.append(child, "c1", "y"))
        verify(host.append(child, "c2", "x"))
        verify(host.appendWithChild(model, "p", "parent", child))
        model.SortByRules([{RoleName: "nameRole", Ascending: true}], IXOLATreeModel.RecursiveKeepSorting)
        compare(names(child), ["x", "y"])
        compare(host.sortFlag(child), IXOLATreeModel.RecursiveKeepSorting)
    }

    function test_sortByQmlFunction() {
        var model = modelNamed(["b", "a", "c"])
        var layoutSpy = spyOn(model, "layoutChanged")
        model.SortByRoleByQMLFunction("nameRole", false, host.dataDir() + "/compare/less.qml", "less")
        compare(names(model), ["c", "b", "a"])
        compare(layoutSpy.count, 1)
        layoutSpy.destroy()
    }

    function test_sortByScriptFunction() {
        var model = modelNamed(["b", "a", "c"])
        var resetSpy = spyOn(model, "modelReset")
        var aboutSpy = spyOn(model, "modelAboutToBeReset")
        model.SortByRoleByScriptFunction("nameRole", true, host.dataDir() + "/compare/greater.js", "greater")
        compare(names(model), ["c", "b", "a"])
        compare(resetSpy.count, 1)
        compare(aboutSpy.count, 0)
        // A missing file changes nothing.
        model.SortByRoleByScriptFunction("nameRole", true, host.dataDir() + "/compare/missing.js", "less")
        compare(names(model), ["c", "b", "a"])
        compare(resetSpy.count, 1)
        resetSpy.destroy()
        aboutSpy.destroy()
    }
}
