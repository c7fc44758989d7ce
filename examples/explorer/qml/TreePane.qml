import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import com.xolasys.ixolatreemodel 1.0

// The tree as scanned: the root model and, column by column, the child models
// of the directories. Sorting by a rule list with RecursiveKeepSorting orders
// every directory's model the same way.
ColumnLayout {
    id: pane
    spacing: 8

    readonly property var tree: explorer.fileTree
    property string lastOperation
    property string lastResult
    property real lastMilliseconds: -1

    function sortTree(rules, label) {
        var start = explorer.now()
        tree.SortByRules(rules, IXOLATreeModel.RecursiveKeepSorting)
        lastMilliseconds = explorer.now() - start
        lastOperation = "SortByRules(" + label + ", RecursiveKeepSorting)"
        lastResult = tree.count + " top-level rows, and every directory below"
        browser.reset()
    }
    function foldersFirst() {
        sortTree([{RoleName: "isDir", Ascending: false}, {RoleName: "nameRole", Ascending: true}],
                 "folders first, name")
    }
    function largestFirst() {
        sortTree([{RoleName: "size", Ascending: false}], "size descending")
    }

    function showcase() {
        foldersFirst()
        // The second top-level entry (the first is often a small directory) and
        // the first header file in it, or its first entry.
        var top = Math.min(1, tree.count - 1)
        browser.open(0, top)
        var children = tree.FindItemValue(top, "childModelRole")
        var row = 0
        for (var r = 0; children && r < children.count; ++r) {
            if (children.FindItemValue(r, "suffix") === "h") {
                row = r
                break
            }
        }
        browser.open(1, row)
        var first = tree.count > 0 ? tree.FindItemValue(0, "path") : ""
        return ["pane tree top=" + tree.count + " dirs=" + explorer.directories + " files=" + explorer.files
                + " entries=" + (explorer.directories + explorer.files) + " bytes=" + explorer.bytes
                + " batches=" + explorer.batches + " first=" + first,
                "time tree SortByRules ms=" + lastMilliseconds.toFixed(3),
                "time tree scan ms=" + explorer.scanMilliseconds.toFixed(3)]
    }

    RowLayout {
        spacing: 8
        Button {
            text: "Folders first, then by name"
            onClicked: pane.foldersFirst()
        }
        Button {
            text: "Largest first"
            onClicked: pane.largestFirst()
        }
    }

    OperationLabel {
        operation: pane.lastOperation
        result: pane.lastResult
        milliseconds: pane.lastMilliseconds
        Layout.fillWidth: true
    }

    RowLayout {
        spacing: 8
        Layout.fillWidth: true
        Layout.fillHeight: true

        ColumnBrowser {
            id: browser
            rootModel: pane.tree
            Layout.fillWidth: true
            Layout.fillHeight: true
        }

        // What the models answer about the picked entry.
        Frame {
            Layout.preferredWidth: 360
            Layout.fillHeight: true
            ColumnLayout {
                anchors.fill: parent
                spacing: 4
                Label {
                    text: "get(row) of the picked entry"
                    font.bold: true
                }
                Repeater {
                    model: details.entries
                    RowLayout {
                        spacing: 6
                        Label {
                            text: modelData.key
                            color: "#777"
                            font.family: "monospace"
                            font.pixelSize: 12
                            Layout.preferredWidth: 118
                        }
                        Label {
                            text: modelData.value
                            elide: Text.ElideMiddle
                            Layout.fillWidth: true
                        }
                    }
                }
                Label {
                    visible: details.path !== ""
                    text: "Asked of the root model:"
                    font.bold: true
                    Layout.topMargin: 10
                }
                Label {
                    visible: details.path !== ""
                    text: "FindItemValueEx(path, \"size\", true)\n  = " + details.foundSize
                          + "\nFindItem(path, false)\n  = " + details.foundAtTop
                    font.family: "monospace"
                    font.pixelSize: 12
                    Layout.fillWidth: true
                    wrapMode: Text.Wrap
                }
                Item { Layout.fillHeight: true }
            }

            QtObject {
                id: details
                readonly property var values: browser.currentModel && browser.currentRow >= 0
                                              ? browser.currentModel.get(browser.currentRow) : ({})
                readonly property string path: values.path || ""
                readonly property var entries: {
                    var list = []
                    var keys = Object.keys(values).sort()
                    for (var i = 0; i < keys.length; ++i) {
                        var value = values[keys[i]]
                        if (keys[i] === "childModelRole")
                            value = value ? "child model, " + value.count + " rows" : "none"
                        else if (keys[i] === "size")
                            value = explorer.formatSize(value) + " (" + value + " bytes)"
                        else if (keys[i] === "modified")
                            value = Qt.formatDateTime(value, "yyyy-MM-dd hh:mm:ss")
                        list.push({key: keys[i], value: String(value)})
                    }
                    return list
                }
                readonly property string foundSize: path === "" ? ""
                    : String(pane.tree.FindItemValueEx(path, "size", true))
                readonly property string foundAtTop: path === "" ? ""
                    : (pane.tree.FindItem(path, false) ? "listed at the top" : "null (deeper down)")
            }
        }
    }
}
