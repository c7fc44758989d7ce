import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import com.xolasys.ixolatreemodel 1.0

ApplicationWindow {
    id: window
    width: 1200
    height: 760
    visible: true
    title: "Explorer — " + explorer.rootPath

    // The order of the tabs, and of the headless tour.
    readonly property var paneNames: ["tree", "search", "group", "sort", "pages", "window"]
    readonly property var paneTitles: ["Tree", "Search", "Group", "Sort", "Pages", "Window"]

    // Shows one pane and runs its scripted showcase; returns the pane's report lines.
    function showcase(name) {
        var index = paneNames.indexOf(name)
        tabs.currentIndex = index
        return panes.children[index].showcase()
    }

    header: ToolBar {
        ColumnLayout {
            anchors.fill: parent
            spacing: 0
            RowLayout {
                Layout.leftMargin: 10
                Layout.rightMargin: 10
                Layout.topMargin: 6
                spacing: 12
                Label {
                    text: "Explorer"
                    font.bold: true
                    font.pixelSize: 17
                }
                Label {
                    text: explorer.rootPath
                    color: "#555"
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
                ProgressBar {
                    visible: explorer.scanning
                    from: 0
                    to: Math.max(1, explorer.total)
                    value: explorer.scanned
                    indeterminate: explorer.total === 0
                    Layout.preferredWidth: 200
                }
                Label {
                    text: explorer.scanning
                          ? "scanning on a worker thread: " + explorer.scanned + " / " + explorer.total
                            + " entries, " + explorer.batches + " batches"
                          : (explorer.directories + " directories, " + explorer.files + " files, "
                             + explorer.formatSize(explorer.bytes) + " · scanned in "
                             + explorer.scanMilliseconds.toFixed(0) + " ms on a worker thread, "
                             + explorer.batches + " batches")
                    color: "#333"
                }
            }
            TabBar {
                id: tabs
                Layout.fillWidth: true
                Repeater {
                    model: window.paneTitles
                    TabButton {
                        text: modelData
                    }
                }
            }
        }
    }

    StackLayout {
        id: panes
        anchors.fill: parent
        anchors.margins: 8
        currentIndex: tabs.currentIndex
        TreePane {}
        SearchPane {}
        GroupPane {}
        SortPane {}
        PagesPane {}
        WindowPane {}
    }
}
