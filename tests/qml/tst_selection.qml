import QtQuick 2.15
import QtQml.Models 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

// A QML view with a selection keeps its selected item across sorts.
TestCase {
    id: testCase
    name: "Selection"
    when: windowShown
    width: 200
    height: 200

    Component {
        id: viewComponent
        ListView {
            width: 200
            height: 200
            property ItemSelectionModel selection: ItemSelectionModel {}
            delegate: Text {
                height: 20
                text: nameRole
                color: ListView.view.selection.isRowSelected(index) ? "red" : "black"
            }
        }
    }

    function selectedIds(selection) {
        var result = []
        var indexes = selection.selectedIndexes
        for (var i = 0; i < indexes.length; ++i)
            result.push(selection.model.FindItemID(indexes[i].row))
        result.sort()
        return result
    }

    function test_selectionFollowsSorts() {
        var model = host.createModel(0)
        var names = ["delta", "alpha", "charlie", "bravo"]
        for (var i = 0; i < names.length; ++i)
            verify(host.append(model, "id" + i, names[i], i))
        var view = createTemporaryObject(viewComponent, testCase, {model: model})
        view.selection.model = model
        // "delta", at row 0
        view.selection.select(model.index(model.FindItemRow("id0"), 0), ItemSelectionModel.Select)
        compare(selectedIds(view.selection), ["id0"])

        model.SortByRole("nameRole", true)
        compare(model.FindItemID(0), "id1")
        compare(selectedIds(view.selection), ["id0"])
        compare(view.selection.selectedIndexes[0].row, 3)

        model.SortByRules([{"RoleName": "nameRole", "Ascending": false}], IXOLATreeModel.KeepSorting)
        compare(selectedIds(view.selection), ["id0"])
        compare(view.selection.selectedIndexes[0].row, 0)
        verify(host.append(model, "id4", "echo", 4))
        compare(model.FindItemID(0), "id4")
        compare(selectedIds(view.selection), ["id0"])
        compare(view.selection.selectedIndexes[0].row, 1)
        host.removeAll(model)
    }
}
