import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

// A group view of the file index: one group item per distinct value of the
// chosen role, each holding a model of its members ("childModelRole").
// While the scan only appends to the index, a view that files each new item
// into its group is exact and cheap. Once the scan is done the pane switches
// to a view made with keepSortWithSource, which regroups on every change of
// the index, so that after a sort the members follow the index's new order.
ColumnLayout {
    id: pane
    spacing: 8

    property var groups: null       // explorer.fileIndex.GetGroupModel(...)
    property var members: null      // the picked group's member model
    property int picked: 0
    readonly property var roles: ["suffix", "dir"]
    property string lastOperation
    property string lastResult
    property real lastMilliseconds: -1

    function regroup() {
        var role = roles[roleBox.currentIndex]
        var start = explorer.now()
        groups.UpdateGroupRole(role)
        lastMilliseconds = explorer.now() - start
        lastOperation = "UpdateGroupRole(\"" + role + "\")"
        lastResult = groups.count + " groups"
        pick(0)
    }

    function pick(row) {
        picked = row
        members = groups && row < groups.count ? groups.FindItemValue(row, "childModelRole") : null
    }

    function keyText(key) {
        return key === "" ? "(no suffix)" : (key === "." ? "(top level)" : key)
    }

    function report() {
        var role = roles[roleBox.currentIndex]
        var lines = ["pane group by=" + role + " groups=" + groups.count]
        var found = []
        for (var row = 0; row < groups.count; ++row)
            found.push({key: groups.FindItemID(row), size: groups.FindItemValue(row, "childModelRole").count})
        found.sort(function (a, b) { return a.key < b.key ? -1 : (a.key > b.key ? 1 : 0) })
        for (var i = 0; i < found.length; ++i)
            lines.push("group " + role + " members=" + found[i].size + " key=" + found[i].key)
        return lines
    }

    function showcase() {
        roleBox.currentIndex = 0
        regroup()
        var lines = report()
        roleBox.currentIndex = 1
        regroup()
        lines = lines.concat(report())
        lines.push("time group UpdateGroupRole ms=" + lastMilliseconds.toFixed(3))
        var largest = 0
        for (var row = 1; row < groups.count; ++row) {
            if (groups.FindItemValue(row, "childModelRole").count > groups.FindItemValue(largest, "childModelRole").count)
                largest = row
        }
        pick(largest)
        return lines
    }

    function makeGroups() {
        groups = explorer.fileIndex.GetGroupModel(roles[roleBox.currentIndex], explorer.scanDone)
        pick(0)
    }

    Component.onCompleted: makeGroups()

    Connections {
        target: explorer
        function onScanFinished() { pane.makeGroups() }
    }

    function repick() {
        pick(Math.min(picked, Math.max(0, groups.count - 1)))
    }

    Connections {
        target: pane.groups
        // A regroup replaces every group item and member model; while the scan
        // regroups batch after batch, pick again once the batch is through.
        function onRowCountChanged() { Qt.callLater(pane.repick) }
    }

    RowLayout {
        spacing: 8
        Label { text: "Group files by" }
        ComboBox {
            id: roleBox
            model: ["suffix", "directory"]
            onActivated: pane.regroup()
        }
        OperationLabel {
            operation: pane.lastOperation
            result: pane.lastResult
            milliseconds: pane.lastMilliseconds
            Layout.fillWidth: true
        }
    }

    RowLayout {
        spacing: 8
        Layout.fillWidth: true
        Layout.fillHeight: true

        ColumnLayout {
            Layout.preferredWidth: 320
            Layout.fillWidth: false
            Layout.fillHeight: true
            Label {
                text: (pane.groups ? pane.groups.count : 0) + " groups"
                font.bold: true
            }
            Frame {
                padding: 1
                Layout.fillWidth: true
                Layout.fillHeight: true
                ListView {
                    id: groupList
                    anchors.fill: parent
                    clip: true
                    model: pane.groups
                    ScrollBar.vertical: ScrollBar {}
                    delegate: ItemDelegate {
                        width: groupList.width
                        height: 28
                        highlighted: index === pane.picked
                        onClicked: pane.pick(index)
                        contentItem: RowLayout {
                            Label {
                                text: pane.keyText(model.nameRole)
                                elide: Text.ElideMiddle
                                Layout.fillWidth: true
                            }
                            Rectangle {
                                readonly property int members: model.childModelRole ? model.childModelRole.count : 0
                                Layout.preferredWidth: Math.max(34, memberCount.implicitWidth + 12)
                                Layout.preferredHeight: 18
                                radius: 9
                                color: "#4e79a7"
                                Label {
                                    id: memberCount
                                    anchors.centerIn: parent
                                    text: parent.members
                                    color: "white"
                                    font.pixelSize: 11
                                    font.bold: true
                                }
                            }
                        }
                    }
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Label {
                text: pane.members ? "Members of " + pane.keyText(pane.groups.FindItemID(pane.picked)) + ": "
                                     + pane.members.count : ""
                font.bold: true
            }
            Frame {
                padding: 1
                Layout.fillWidth: true
                Layout.fillHeight: true
                ListView {
                    anchors.fill: parent
                    clip: true
                    // A regroup disposes of the old member models; a hidden list
                    // would otherwise hold on to one until it is deleted.
                    model: pane.visible ? pane.members : null
                    ScrollBar.vertical: ScrollBar {}
                    delegate: FileRow {
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
}
