import QtQuick 2.15
import QtQuick.Controls 2.15

// Column view of a tree of models: the first column lists rootModel; picking a
// directory opens its child model ("childModelRole") in the next column. Works
// for the tree itself and for a filter view of it, whose child models are
// filtered views of the directories' models.
Item {
    id: browser

    property var rootModel: null
    property var columns: []        // one model per column
    property var selectedRows: []   // the picked row of each column
    property var currentModel: null // where the last pick happened
    property int currentRow: -1

    onRootModelChanged: reset()

    function reset() {
        columns = rootModel ? [rootModel] : []
        selectedRows = [-1]
        currentModel = null
        currentRow = -1
    }

    function pick(column, row, childModel) {
        var models = columns.slice(0, column + 1)
        var rows = selectedRows.slice(0, column + 1)
        rows[column] = row
        if (childModel) {
            models.push(childModel)
            rows.push(-1)
        }
        columns = models
        selectedRows = rows
        currentModel = models[column]
        currentRow = row
    }

    // Picks a row as a click would (the delegate hands over its child model).
    function open(column, row) {
        strip.forceLayout()
        var view = strip.itemAtIndex(column)
        if (!view)
            return false
        view.list.forceLayout()
        var entry = view.list.itemAtIndex(row)
        if (!entry)
            return false
        entry.clicked()
        return true
    }

    ListView {
        id: strip
        anchors.fill: parent
        orientation: ListView.Horizontal
        spacing: 6
        clip: true
        model: browser.columns.length
        onCountChanged: positionViewAtEnd()
        ScrollBar.horizontal: ScrollBar {}

        delegate: Frame {
            property int column: index
            property alias list: list
            // Two or three columns share the width; more scroll sideways.
            readonly property int sharing: Math.max(2, Math.min(3, browser.columns.length))
            width: Math.max(200, (strip.width - (sharing - 1) * strip.spacing) / sharing)
            height: strip.height
            padding: 1

            ListView {
                id: list
                anchors.fill: parent
                clip: true
                model: browser.columns[column]
                ScrollBar.vertical: ScrollBar {}
                delegate: FileRow {
                    compact: true
                    name: model.nameRole
                    size: model.size
                    suffix: model.suffix
                    isDir: model.isDir
                    selected: browser.selectedRows[column] === index
                    onClicked: browser.pick(column, index, model.isDir ? model.childModelRole : null)
                }
            }
        }
    }
}
