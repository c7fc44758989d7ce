import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

// A paging view of the file index: "page" picks the page, "totalPage" follows
// the index. A new page size makes a new view.
ColumnLayout {
    id: pane
    spacing: 8

    property var pages: null   // explorer.fileIndex.GetPagingModel(...)
    property string lastOperation
    property string lastResult
    property real lastMilliseconds: -1

    function rebuild() {
        var start = explorer.now()
        pages = explorer.fileIndex.GetPagingModel(perPage.value)
        lastMilliseconds = explorer.now() - start
        lastOperation = "GetPagingModel(" + perPage.value + ")"
        lastResult = "totalPage " + pages.totalPage
    }

    function show(page) {
        var start = explorer.now()
        pages.page = page
        lastMilliseconds = explorer.now() - start
        lastOperation = "page = " + page
        lastResult = pages.count + " rows on page " + (pages.page + 1) + " of " + pages.totalPage
    }

    function report() {
        return "pane pages perPage=" + perPage.value + " totalPage=" + pages.totalPage + " page=" + pages.page
                + " rows=" + pages.count + " first=" + (pages.count > 0 ? pages.FindItemValue(0, "path") : "")
    }

    function showcase() {
        perPage.value = explorer.settings.pageSize
        rebuild()
        var lines = []
        show(pages.totalPage - 1)
        lines.push(report())
        show(0)
        lines.push(report())
        show(1)
        lines.push(report())
        lines.push("time pages setPage ms=" + lastMilliseconds.toFixed(3))
        return lines
    }

    Component.onCompleted: {
        perPage.value = explorer.settings.pageSize
        rebuild()
    }

    RowLayout {
        spacing: 8
        Label { text: "Rows per page" }
        SpinBox {
            id: perPage
            from: 1
            to: 1000
            editable: true
            onValueModified: pane.rebuild()
        }
        ToolSeparator {}
        Button {
            text: "First"
            enabled: pane.pages && pane.pages.page > 0
            onClicked: pane.show(0)
        }
        Button {
            text: "Previous"
            enabled: pane.pages && pane.pages.page > 0
            onClicked: pane.show(pane.pages.page - 1)
        }
        Label {
            text: pane.pages ? "Page " + (pane.pages.page + 1) + " of " + pane.pages.totalPage : ""
            font.bold: true
            horizontalAlignment: Text.AlignHCenter
            Layout.preferredWidth: 110
        }
        Button {
            text: "Next"
            enabled: pane.pages && pane.pages.page < pane.pages.totalPage - 1
            onClicked: pane.show(pane.pages.page + 1)
        }
        Button {
            text: "Last"
            enabled: pane.pages && pane.pages.page < pane.pages.totalPage - 1
            onClicked: pane.show(pane.pages.totalPage - 1)
        }
    }

    OperationLabel {
        operation: pane.lastOperation
        result: pane.lastResult
        milliseconds: pane.lastMilliseconds
        Layout.fillWidth: true
    }

    Slider {
        from: 0
        to: pane.pages ? Math.max(0, pane.pages.totalPage - 1) : 0
        stepSize: 1
        snapMode: Slider.SnapAlways
        value: pane.pages ? pane.pages.page : 0
        onMoved: pane.show(value)
        Layout.fillWidth: true
    }

    Frame {
        padding: 1
        Layout.fillWidth: true
        Layout.fillHeight: true
        ListView {
            anchors.fill: parent
            clip: true
            model: pane.pages
            ScrollBar.vertical: ScrollBar {}
            delegate: FileRow {
                number: pane.pages.page * perPage.value + index
                name: model.nameRole
                folder: model.dir
                size: model.size
                suffix: model.suffix
                modified: model.modified
            }
        }
    }
}
