import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

TestCase {
    id: testCase
    name: "ModelFromQml"

    IXOLATreeModel { id: qmlModel }

    function test_instantiatedModelProperties() {
        compare(qmlModel.count, 0)
        compare(qmlModel.page, -1)
        compare(qmlModel.totalPage, 0)
        compare(qmlModel.firstPartialModelRow, 0)
        qmlModel.page = 3
        compare(qmlModel.page, -1, "a plain model is not paged")
    }

    function test_enumsByName() {
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

    function test_hostModelReads() {
        var model = host.createModel(0)
        verify(host.append(model, "a", "Alpha", 3))
        verify(host.append(model, "b", "Beta", 1))
        compare(model.count, 2)
        compare(model.get(0).idRole, "a")
        compare(model.get(1).nameRole, "Beta")
        compare(Object.keys(model.get(-1)).length, 0)
        compare(model.FindItemID(1), "b")
        compare(model.FindItemID(99), "")
        compare(model.FindItemRow("b"), 1)
        compare(model.FindItemRow("zz"), -1)
        compare(model.FindItemValue(0, "nameRole"), "Alpha")
        compare(model.FindItemValue("b", "nameRole"), "Beta")
        compare(model.FindItemValue(0, 258), "Alpha")
        verify(model.FindItem("a") !== null)
        compare(model.FindItem("zz"), null)
        compare(model.FindItem(5), null)
    }

    function test_shorterAritiesUseDefaults() {
        var child = host.createModel(0)
        verify(host.append(child, "deep", "Deep"))
        var model = host.createModel(0)
        verify(host.appendWithChild(model, "p", "Parent", child))
        // FindItem(id) does not look into child models; the two-argument form can.
        compare(model.FindItem("deep"), null)
        verify(model.FindItem("deep", true) !== null)
        compare(model.FindItemValueEx("deep", "nameRole", true), "Deep")
        // A rule list alone means "or".
        var view = model.GetFilterModel([{RoleName: "nameRole", Rule: IXOLATreeModel.Eq, Value: "Parent"},
                                         {RoleName: "nameRole", Rule: IXOLATreeModel.Eq, Value: "nothing"}])
        verify(view !== null)
        compare(view.count, 1)
        // SortByRules with the rule list alone leaves keep-sorting off.
        model.SortByRules([{RoleName: "nameRole", Ascending: true}])
        compare(host.sortFlag(model), 0)
        model.SortByRules([{RoleName: "nameRole", Ascending: true}], IXOLATreeModel.KeepSorting)
        compare(host.sortFlag(model), 1)
        model.SortByRole("nameRole", true)
        compare(host.sortFlag(model), 0)
    }

    function test_partialWindowProperty() {
        var model = host.createModel(0)
        host.appendMany(model, ["a", "b", "c", "d"])
        var window = model.GetPartialModel(2)
        compare(window.count, 2)
        var spy = Qt.createQmlObject('import QtTest 1.2; SignalSpy {}', testCase)
        spy.target = model
        spy.signalName = "firstPartialModelRowChanged"
        model.firstPartialModelRow = 1
        compare(model.firstPartialModelRow, 1)
        compare(window.get(0).idRole, "b")
        model.firstPartialModelRow = 1
        compare(spy.count, 2, "emitted also when the row did not change")
        spy.destroy()
    }

    function test_clearAndRemove() {
        var model = host.createModel(0)
        host.appendMany(model, ["a", "b", "c", "d", "e"])
        verify(model.RemoveOne("b"))
        verify(!model.RemoveOne("zz"))
        verify(model.Remove(["a", "zz"]))
        compare(model.count, 3)
        verify(model.Remove(0, 1))
        compare(model.count, 1)
        compare(model.FindItemID(0), "e")
        model.clear()
        compare(model.count, 0)
    }
}
