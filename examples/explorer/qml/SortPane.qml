import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import com.xolasys.ixolatreemodel 1.0

// The sorts of the file index: by one role (once or kept sorted), by a list of
// rules, and by a comparison function read from a QML or a script file shipped
// with the explorer. The index's other views (groups, pages, window) follow.
RowLayout {
    id: pane
    spacing: 10

    readonly property var files: explorer.fileIndex
    readonly property var roleNames: ["nameRole", "size", "modified", "suffix", "path"]
    readonly property var roleTitles: ["name", "size", "modified", "suffix", "path"]

    function record(operation, milliseconds) {
        var first = files.count > 0 ? files.FindItemValue(0, "path") : ""
        var last = files.count > 0 ? files.FindItemValue(files.count - 1, "path") : ""
        log.insert(0, {operation: operation, milliseconds: milliseconds, first: first})
        return {first: first, last: last}
    }

    function sortByRole(role, ascending, keep) {
        var start = explorer.now()
        if (keep)
            files.SortByRoleAndKeep(role, ascending)
        else
            files.SortByRole(role, ascending)
        return record((keep ? "SortByRoleAndKeep(" : "SortByRole(") + role + ", " + ascending + ")",
                      explorer.now() - start)
    }

    function sortByRules(flag) {
        var rules = []
        for (var i = 0; i < ruleList.count; ++i)
            rules.push({RoleName: ruleList.get(i).role, Ascending: ruleList.get(i).ascending})
        var start = explorer.now()
        files.SortByRules(rules, flag)
        var text = rules.map(function (r) { return r.RoleName + (r.Ascending ? "↑" : "↓") }).join(" ")
        return record("SortByRules([" + text + "], " + flag + ")", explorer.now() - start)
    }

    function sortByFunction(useScript, ascending) {
        var start = explorer.now()
        if (useScript)
            files.SortByRoleByScriptFunction("nameRole", ascending, ":/sorting/naturalOrder.js", "naturalLess")
        else
            files.SortByRoleByQMLFunction("nameRole", ascending, "qrc:/sorting/NaturalOrder.qml", "naturalLess")
        return record((useScript ? "SortByRoleByScriptFunction" : "SortByRoleByQMLFunction")
                      + "(nameRole, " + ascending + ", naturalLess)", explorer.now() - start)
    }

    function line(op, result) {
        return "pane sort op=" + op + " first=" + result.first + " last=" + result.last
    }

    function showcase() {
        var lines = []
        lines.push(line("size-desc-keep", sortByRole("size", false, true)))
        lines.push(line("rules-suffix-asc-size-desc", sortByRules(IXOLATreeModel.None)))
        lines.push(line("script-natural-desc", sortByFunction(true, false)))
        lines.push(line("qml-natural-asc", sortByFunction(false, true)))
        for (var i = log.count - 1; i >= 0; --i)
            lines.push("time sort " + log.get(i).operation.replace(/ /g, "") + " ms="
                       + log.get(i).milliseconds.toFixed(3))
        return lines
    }

    ListModel {
        id: ruleList
        ListElement { role: "suffix"; ascending: true }
        ListElement { role: "size"; ascending: false }
    }
    ListModel { id: log }

    ColumnLayout {
        Layout.preferredWidth: 430
        Layout.fillWidth: false
        Layout.fillHeight: true
        spacing: 8

        GroupBox {
            title: "By one role"
            Layout.fillWidth: true
            RowLayout {
                anchors.fill: parent
                ComboBox {
                    id: roleBox
                    model: pane.roleTitles
                    Layout.preferredWidth: 110
                }
                CheckBox {
                    id: roleAscending
                    text: "ascending"
                    checked: true
                }
                CheckBox {
                    id: keep
                    text: "keep"
                }
                Button {
                    text: "Sort"
                    onClicked: pane.sortByRole(pane.roleNames[roleBox.currentIndex], roleAscending.checked, keep.checked)
                }
            }
        }

        GroupBox {
            title: "By a rule list (later rules break ties)"
            Layout.fillWidth: true
            ColumnLayout {
                anchors.fill: parent
                Repeater {
                    model: ruleList
                    RowLayout {
                        Label { text: (index + 1) + "." }
                        ComboBox {
                            model: pane.roleTitles
                            currentIndex: pane.roleNames.indexOf(role)
                            onActivated: ruleList.setProperty(index, "role", pane.roleNames[currentIndex])
                            Layout.preferredWidth: 110
                        }
                        CheckBox {
                            text: "ascending"
                            checked: ascending
                            onToggled: ruleList.setProperty(index, "ascending", checked)
                        }
                        Button {
                            text: "Remove"
                            flat: true
                            onClicked: ruleList.remove(index)
                        }
                    }
                }
                RowLayout {
                    Button {
                        text: "Add rule"
                        onClicked: ruleList.append({role: "nameRole", ascending: true})
                    }
                    Button {
                        text: "Sort once"
                        onClicked: pane.sortByRules(IXOLATreeModel.None)
                    }
                    Button {
                        text: "Keep sorted"
                        onClicked: pane.sortByRules(IXOLATreeModel.KeepSorting)
                    }
                }
            }
        }

        GroupBox {
            title: "By a comparison function in a file"
            Layout.fillWidth: true
            RowLayout {
                anchors.fill: parent
                ComboBox {
                    id: functionBox
                    model: ["NaturalOrder.qml", "naturalOrder.js"]
                    Layout.preferredWidth: 180
                }
                CheckBox {
                    id: functionAscending
                    text: "ascending"
                    checked: true
                }
                Button {
                    text: "Sort"
                    onClicked: pane.sortByFunction(functionBox.currentIndex === 1, functionAscending.checked)
                }
            }
        }

        Label {
            text: "Operations"
            font.bold: true
        }
        Frame {
            padding: 4
            Layout.fillWidth: true
            Layout.fillHeight: true
            ListView {
                anchors.fill: parent
                clip: true
                model: log
                spacing: 4
                delegate: Column {
                    width: ListView.view.width
                    Label {
                        text: model.operation
                        font.family: "monospace"
                        font.pixelSize: 11
                        color: "#205080"
                        width: parent.width
                        elide: Text.ElideRight
                    }
                    Label {
                        text: "   " + model.milliseconds.toFixed(2) + " ms, first: " + model.first
                        font.pixelSize: 11
                        color: "#555"
                        width: parent.width
                        elide: Text.ElideMiddle
                    }
                }
            }
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        Label {
            text: "File index: " + pane.files.count + " files in the current order"
            font.bold: true
        }
        Frame {
            padding: 1
            Layout.fillWidth: true
            Layout.fillHeight: true
            ListView {
                anchors.fill: parent
                clip: true
                model: pane.files
                ScrollBar.vertical: ScrollBar {}
                delegate: FileRow {
                    number: index
                    name: model.nameRole
                    folder: model.dir
                    size: model.size
                    suffix: model.suffix
                    modified: model.modified
                }
            }
        }
    }
}
