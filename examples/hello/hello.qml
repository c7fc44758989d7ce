import QtQml 2.15
import com.xolasys.ixolatreemodel 1.0

QtObject {
    // What a QML user interface reads from the host's model.
    property var report: {
        var lines = []
        lines.push("rows: " + treeModel.count)
        for (var row = 0; row < treeModel.count; ++row)
            lines.push("row " + row + ": " + treeModel.get(row).idRole + " / " + treeModel.get(row).nameRole)
        lines.push("found in a child model: " + treeModel.FindItemValueEx("fig", "nameRole", true))
        var filtered = treeModel.GetFilterModel([{RoleName: "nameRole", Rule: IXOLATreeModel.InsensitiveSubStr, Value: "e"}])
        lines.push("names containing 'e': " + filtered.count)
        treeModel.SortByRole("nameRole", false)
        var names = []
        for (var i = 0; i < treeModel.count; ++i)
            names.push(treeModel.FindItemValue(i, "nameRole"))
        lines.push("sorted descending: " + names.join(", "))
        var pages = treeModel.GetPagingModel(2)
        lines.push("pages of 2: " + pages.totalPage)
        return lines
    }
}
