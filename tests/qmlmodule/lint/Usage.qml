import QtQml 2.15
import com.xolasys.ixolatreemodel 1.0

// Uses the module in bindings, where qmllint checks each name against the
// type information: enums, properties and invokables in their shorter forms.
QtObject {
    property IXOLATreeModel model: IXOLATreeModel {}
    property var rules: [{RoleName: "nameRole", Rule: IXOLATreeModel.Eq, Value: "a"},
                         {RoleName: "nameRole", Rule: IXOLATreeModel.InsensitiveSubStr, Value: "b"}]
    property int flag: IXOLATreeModel.RecursiveKeepSorting
    property int position: IXOLATreeModel.POS_HEAD
    property int rows: model.count
    property int page: model.page
    property int totalPage: model.totalPage
    property int firstRow: model.firstPartialModelRow
    property int row: model.FindItemRow("a")
    property string id: model.FindItemID(0)
    property var value: model.FindItemValue(0, "nameRole")
    property var deepValue: model.FindItemValueEx("a", "nameRole", true)
    property var first: model.get(0)
    property QtObject item: model.FindItem("a")
    property QtObject everything: model.GetFilterModel()
    property QtObject matching: model.GetFilterModel(rules)
    property QtObject matchingAll: model.GetFilterModel(rules, false)
    property QtObject matchingFirst: model.GetFilterModel(rules, true, IXOLATreeModel.POS_HEAD)
    property QtObject custom: model.GetFilterModelByUserDefinedRules({min: 1})
    property QtObject groups: model.GetGroupModel("nameRole")
    property QtObject pages: model.GetPagingModel(10)
    property QtObject window: model.GetPartialModel(5)

    Component.onCompleted: model.SortByRules([{RoleName: "nameRole", Ascending: true}], IXOLATreeModel.KeepSorting)
    Component.onDestruction: model.RemoveAll()
}
