import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

// The partial view of the file index: a window of consecutive rows, moved by
// writing the index's "firstPartialModelRow".
ColumnLayout {
    id: pane
    spacing: 8

    readonly property var files: explorer.fileIndex
    property var partial: null   // explorer.fileIndex.GetPartialModel(...)
    property string lastOperation
    property string lastResult
    property real lastMilliseconds: -1

    function resize() {
        var start = explorer.now()
        partial = files.GetPartialModel(size.value)
        lastMilliseconds = explorer.now() - start
        lastOperation = "GetPartialModel(" + size.value + ")"
        lastResult = partial.count + " rows shown"
    }

    function scrollTo(row) {
        var start = explorer.now()
        files.firstPartialModelRow = row
        lastMilliseconds = explorer.now() - start
        lastOperation = "firstPartialModelRow = " + row
        lastResult = "rows " + files.firstPartialModelRow + "–" + (files.firstPartialModelRow + partial.count - 1)
                     + " shown (" + partial.count + ")"
    }

    function report() {
        return "pane window size=" + size.value + " first=" + files.firstPartialModelRow + " shown=" + partial.count
                + " firstPath=" + (partial.count > 0 ? partial.get(0).path : "")
    }

    function showcase() {
        size.value = explorer.settings.windowSize
        resize()
        var first = explorer.settings.windowFirst >= 0 ? explorer.settings.windowFirst : Math.floor(files.count / 3)
        var lines = []
        scrollTo(Math.max(0, files.count - 2))
        lines.push(report())
        scrollTo(first)
        lines.push(report())
        lines.push("time window firstPartialModelRow ms=" + lastMilliseconds.toFixed(3))
        return lines
    }

    Component.onCompleted: {
        size.value = explorer.settings.windowSize
        resize()
    }

    RowLayout {
        spacing: 8
        Label { text: "Window size" }
        SpinBox {
            id: size
            from: 1
            to: 200
            editable: true
            onValueModified: pane.resize()
        }
        ToolSeparator {}
        Label { text: "First row" }
        Slider {
            id: first
            from: 0
            to: Math.max(0, pane.files.count - 1)
            stepSize: 1
            value: pane.files.firstPartialModelRow
            onMoved: pane.scrollTo(Math.round(value))
            Layout.fillWidth: true
        }
        Label {
            text: pane.files.firstPartialModelRow
            font.bold: true
            Layout.preferredWidth: 50
        }
    }

    OperationLabel {
        operation: pane.lastOperation
        result: pane.lastResult
        milliseconds: pane.lastMilliseconds
        Layout.fillWidth: true
    }

    RowLayout {
        spacing: 10
        Layout.fillWidth: true
        Layout.fillHeight: true

        Frame {
            padding: 1
            Layout.fillWidth: true
            Layout.fillHeight: true
            ListView {
                anchors.fill: parent
                clip: true
                model: pane.partial
                // The window announces one row when it is sized while its first row
                // lies past the end of the index (an empty index, say); that row
                // has no data, hence the fallbacks.
                delegate: FileRow {
                    number: pane.files.firstPartialModelRow + index
                    name: model.nameRole || ""
                    folder: model.dir || ""
                    size: model.size || 0
                    suffix: model.suffix || ""
                    modified: model.modified
                }
            }
        }

        // Where the window lies in the whole index.
        ColumnLayout {
            Layout.preferredWidth: 150
            Layout.fillHeight: true
            Label {
                text: pane.files.count + " rows in the index"
                font.bold: true
            }
            Rectangle {
                id: track
                color: "#e8ecf2"
                border.color: "#b8c2d0"
                radius: 3
                Layout.preferredWidth: 46
                Layout.fillHeight: true
                Rectangle {
                    readonly property real total: Math.max(1, pane.files.count)
                    x: 2
                    width: parent.width - 4
                    y: 2 + (parent.height - 4) * pane.files.firstPartialModelRow / total
                    height: Math.max(3, (parent.height - 4) * (pane.partial ? pane.partial.count : 0) / total)
                    color: "#4e79a7"
                    radius: 2
                }
            }
        }
    }
}
