import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

// One file or directory in a list: a kind badge, the name, and optionally the
// directory, size and modification time. Fed from the item's extra roles.
ItemDelegate {
    id: row

    property string name
    property string folder         // the "dir" role; "." is the top level
    property var size: 0
    property string suffix
    property bool isDir: false
    property var modified
    property int number: -1        // row number shown in front when >= 0
    property bool compact: false   // name and size only
    property bool selected: false

    width: ListView.view ? ListView.view.width : implicitWidth
    height: 24
    padding: 0
    leftPadding: 6
    rightPadding: 6
    highlighted: selected

    function tint(text) {
        if (text === "")
            return "#9a9a9a"
        var palette = ["#4e79a7", "#f28e2b", "#e15759", "#59a14f", "#b07aa1", "#76b7b2", "#9c755f", "#d37295"]
        var hash = 0
        for (var i = 0; i < text.length; ++i)
            hash = (hash * 31 + text.charCodeAt(i)) % 9973
        return palette[hash % palette.length]
    }

    contentItem: RowLayout {
        spacing: 8
        Label {
            visible: row.number >= 0
            text: row.number
            color: "#888"
            horizontalAlignment: Text.AlignRight
            Layout.preferredWidth: 40
        }
        Rectangle {
            Layout.preferredWidth: 34
            Layout.preferredHeight: 16
            radius: 3
            color: row.isDir ? "#e0a030" : row.tint(row.suffix)
            Label {
                anchors.centerIn: parent
                text: row.isDir ? "dir" : (row.suffix === "" ? "—" : row.suffix)
                color: "white"
                font.pixelSize: 10
                font.bold: true
            }
        }
        Label {
            text: row.name
            font.bold: row.isDir
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.minimumWidth: 80
            Layout.preferredWidth: 260
        }
        Label {
            visible: !row.compact
            text: row.folder === "." ? "" : row.folder
            color: "#777"
            elide: Text.ElideMiddle
            Layout.fillWidth: true
            Layout.minimumWidth: 0
            Layout.preferredWidth: 160
        }
        Label {
            text: explorer.formatSize(row.size)
            horizontalAlignment: Text.AlignRight
            Layout.preferredWidth: 70
        }
        Label {
            visible: !row.compact && row.width > 720
            text: row.modified ? Qt.formatDateTime(row.modified, "yyyy-MM-dd hh:mm") : ""
            color: "#777"
        }
    }
}
