import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

// The installed module from a document alone: no host code makes or fills a
// model, so everything here is what QML itself can reach.
TestCase {
    id: testCase
    name: "ModuleWithoutHost"

    IXOLATreeModel { id: declared }

    Component {
        id: modelComponent
        IXOLATreeModel {}
    }

    SignalSpy { id: countSpy; signalName: "rowCountChanged" }

    function nameRule(rule, value) {
        return {RoleName: "nameRole", Rule: rule, Value: value}
    }

    function test_declaredModel() {
        compare(declared.count, 0)
        compare(declared.page, -1, "a plain model is not paged")
        compare(declared.totalPage, 0)
        compare(declared.firstPartialModelRow, 0)
    }

    function test_createdModel() {
        var model = createTemporaryObject(modelComponent, testCase)
        verify(model !== null)
        compare(model.count, 0)
        var other = Qt.createQmlObject("import com.xolasys.ixolatreemodel 1.0; IXOLATreeModel {}", testCase)
        verify(other !== null)
        compare(other.count, 0)
        other.destroy()
    }

    function test_enums() {
        compare(IXOLATreeModel.Eq, 0)
        compare(IXOLATreeModel.Ne, 1)
        compare(IXOLATreeModel.Ge, 2)
        compare(IXOLATreeModel.Gt, 3)
        compare(IXOLATreeModel.Le, 4)
        compare(IXOLATreeModel.Lt, 5)
        compare(IXOLATreeModel.SubStr, 6)
        compare(IXOLATreeModel.InsensitiveSubStr, 7)
        compare(IXOLATreeModel.None, 0)
        compare(IXOLATreeModel.KeepSorting, 1)
        compare(IXOLATreeModel.RecursiveKeepSorting, 2)
        compare(IXOLATreeModel.POS_TAIL, 0)
        compare(IXOLATreeModel.POS_HEAD, 1)
    }

    function test_lookups() {
        compare(declared.FindItemRow("missing"), -1)
        compare(declared.FindItemID(0), "")
        compare(declared.FindItemValue(0, "nameRole"), undefined)
        compare(declared.FindItemValue("missing", 258), undefined)
        compare(declared.FindItemValueEx("missing", "nameRole", true), undefined)
        compare(declared.FindItem(0), null)
        compare(declared.FindItem("missing"), null)
        compare(declared.FindItem("missing", true), null)
        compare(Object.keys(declared.get(0)).length, 0)
    }

    function test_filterView() {
        var rules = [nameRule(IXOLATreeModel.InsensitiveSubStr, "a")]
        // Every arity of the call, the shorter ones taking the defaults.
        var views = [declared.GetFilterModel(),
                     declared.GetFilterModel(rules),
                     declared.GetFilterModel(rules, false),
                     declared.GetFilterModel(rules, true, IXOLATreeModel.POS_HEAD),
                     declared.GetFilterModelByUserDefinedRules(),
                     declared.GetFilterModelByUserDefinedRules({min: 1}, IXOLATreeModel.POS_TAIL)]
        for (var i = 0; i < views.length; ++i) {
            verify(views[i] !== null, "view " + i)
            compare(views[i].count, 0, "view " + i)
            compare(views[i].FindItemRow("missing"), -1, "view " + i)
        }
        verify(views[1].UpdateFilterRules([nameRule(IXOLATreeModel.Eq, "x")]))
        verify(views[1].UpdateFilterRules([nameRule(IXOLATreeModel.Ne, "x")], false))
        compare(views[1].count, 0)
        // A filter view of a filter view
        var nested = views[1].GetFilterModel([nameRule(IXOLATreeModel.SubStr, "b")])
        verify(nested !== null)
        compare(nested.count, 0)
    }

    function test_groupView() {
        var groups = declared.GetGroupModel("nameRole")
        verify(groups !== null)
        compare(groups.count, 0)
        var kept = declared.GetGroupModel("nameRole", true)
        verify(kept !== null)
        verify(kept.UpdateGroupRole("idRole"))
        compare(kept.count, 0)
    }

    function test_pagingView() {
        var paging = declared.GetPagingModel(10)
        verify(paging !== null)
        compare(paging.count, 0)
        compare(paging.page, 0)
        compare(paging.totalPage, 0)
        paging.page = 0
        compare(paging.page, 0)
    }

    function test_windowOfAModelMadeByQml() {
        // A model that QML creates has no window; it answers null.
        compare(declared.GetPartialModel(5), null)
    }

    function test_sorting() {
        countSpy.target = declared
        countSpy.clear()
        declared.SortByRole("nameRole", true)
        declared.SortByRole(258, false)
        declared.SortByRoleAndKeep("nameRole", true)
        declared.SortByRules([{RoleName: "nameRole", Ascending: false}])
        declared.SortByRules([{RoleName: "idRole", Ascending: true}], IXOLATreeModel.KeepSorting)
        declared.SortByRules([], IXOLATreeModel.None)
        compare(declared.count, 0)
        compare(countSpy.count, 0)
    }

    function test_removal() {
        declared.RemoveAll()
        declared.clear()
        compare(declared.RemoveOne("missing"), false)
        declared.Remove(["missing"])
        declared.Remove(0, 0)
        declared.MoveRow(0, 0)
        compare(declared.count, 0)
    }
}
