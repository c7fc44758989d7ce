import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import com.xolasys.ixolatreemodel 1.0

// Live filter views. One rule per word (case-insensitive substring of the
// name), joined by "or" or "and". Over the tree the filter is recursive: a
// directory stays when anything below it matches, and its child model is
// shown filtered too. Over the flat file index the same rules give the
// matching files. Naming suffixes turns the words into one rule of the
// second format and adds a suffix rule, both joined by "and".
ColumnLayout {
    id: pane
    spacing: 8

    property var treeFilter: null    // explorer.fileTree.GetFilterModel(...)
    property var indexFilter: null   // explorer.fileIndex.GetFilterModel(...)
    property var sizeFilter: null    // explorer.fileIndex.GetFilterModelByUserDefinedRules(...)
    property var rules: []
    property bool orAllRules: true
    property string lastOperation
    property string lastResult
    property real lastMilliseconds: -1
    property string sizeResult
    property real sizeMilliseconds: -1

    function words(text) {
        return text.split(/[\s,]+/).filter(function (w) { return w !== "" })
    }

    function buildRules() {
        var terms = words(wordsField.text)
        var suffixes = words(suffixField.text)
        var any = matchBox.currentIndex === 0
        if (suffixes.length === 0) {
            rules = terms.map(function (w) {
                return {RoleName: "nameRole", Rule: IXOLATreeModel.InsensitiveSubStr, Value: w}
            })
            orAllRules = any
            return
        }
        var list = []
        if (terms.length > 0)
            list.push({RoleName: "nameRole", OrAllRules: any, Rules: terms.map(function (w) {
                return {Rule: IXOLATreeModel.InsensitiveSubStr, Value: w}
            })})
        list.push({RoleName: "suffix", OrAllRules: true, Rules: suffixes.map(function (s) {
            return {Rule: IXOLATreeModel.Eq, Value: s}
        })})
        rules = list
        orAllRules = false
    }

    function apply() {
        buildRules()
        var start = explorer.now()
        treeFilter.UpdateFilterRules(rules, orAllRules)
        indexFilter.UpdateFilterRules(rules, orAllRules)
        lastMilliseconds = explorer.now() - start
        lastOperation = "UpdateFilterRules(" + rules.length + " rules, " + (orAllRules ? "or" : "and") + ") ×2"
        lastResult = treeFilter.count + " top-level rows kept, " + indexFilter.count + " files match"
        browser.reset()
    }

    function applySize() {
        var start = explorer.now()
        sizeFilter.UpdateUserDefinedFilterRules(sizeBox.value * 1024)
        sizeMilliseconds = explorer.now() - start
        sizeResult = sizeFilter.count + " files"
    }

    function report(label) {
        return "pane search words=" + words(wordsField.text).join(",")
                + " suffixes=" + words(suffixField.text).join(",")
                + " match=" + label + " tree=" + treeFilter.count + " files=" + indexFilter.count
    }

    function showcase() {
        var settings = explorer.settings
        var lines = []
        wordsField.text = settings.search
        suffixField.text = ""
        matchBox.currentIndex = 0
        apply()
        lines.push(report("any"))
        suffixField.text = settings.suffixes
        apply()
        lines.push(report("any"))
        suffixField.text = ""
        matchBox.currentIndex = 1
        apply()
        lines.push(report("all"))
        lines.push("time search UpdateFilterRules ms=" + lastMilliseconds.toFixed(3))
        sizeBox.value = Math.ceil(settings.minSize / 1024)
        applySize()
        lines.push("pane search native=atLeast minBytes=" + sizeBox.value * 1024 + " files=" + sizeFilter.count)
        browser.open(0, 0)
        return lines
    }

    Component.onCompleted: {
        wordsField.text = explorer.settings.search
        buildRules()
        treeFilter = explorer.fileTree.GetFilterModel(rules, orAllRules)
        indexFilter = explorer.fileIndex.GetFilterModel(rules, orAllRules)
        sizeBox.value = Math.ceil(explorer.settings.minSize / 1024)
        // The rule value is handed to the file index's native match function.
        sizeFilter = explorer.fileIndex.GetFilterModelByUserDefinedRules(sizeBox.value * 1024)
        sizeResult = sizeFilter.count + " files"
    }

    Timer {
        id: typing
        interval: 200
        onTriggered: pane.apply()
    }

    RowLayout {
        spacing: 8
        Label { text: "Words" }
        TextField {
            id: wordsField
            placeholderText: "words in the name"
            selectByMouse: true
            onTextEdited: typing.restart()
            Layout.preferredWidth: 220
        }
        ComboBox {
            id: matchBox
            model: ["any word (or)", "all words (and)"]
            onActivated: pane.apply()
            Layout.preferredWidth: 160
        }
        Label { text: "Suffixes" }
        TextField {
            id: suffixField
            placeholderText: "e.g. h cpp"
            selectByMouse: true
            onTextEdited: typing.restart()
            Layout.preferredWidth: 110
        }
    }

    OperationLabel {
        operation: pane.lastOperation
        result: pane.lastResult
        milliseconds: pane.lastMilliseconds
        Layout.fillWidth: true
    }

    Label {
        text: "rules: " + JSON.stringify(pane.rules) + "   orAllRules: " + pane.orAllRules
        font.family: "monospace"
        font.pixelSize: 11
        color: "#555"
        elide: Text.ElideRight
        Layout.fillWidth: true
    }

    RowLayout {
        spacing: 8
        Layout.fillWidth: true
        Layout.fillHeight: true

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Label {
                text: "Tree, filtered recursively: " + (pane.treeFilter ? pane.treeFilter.count : 0) + " top-level rows"
                font.bold: true
            }
            ColumnBrowser {
                id: browser
                rootModel: pane.treeFilter
                Layout.fillWidth: true
                Layout.fillHeight: true
            }
        }

        ColumnLayout {
            Layout.preferredWidth: 440
            Layout.fillWidth: false
            Layout.fillHeight: true
            Label {
                text: "File index, same rules: " + (pane.indexFilter ? pane.indexFilter.count : 0) + " files"
                font.bold: true
            }
            Frame {
                padding: 1
                Layout.fillWidth: true
                Layout.fillHeight: true
                ListView {
                    anchors.fill: parent
                    clip: true
                    model: pane.indexFilter
                    ScrollBar.vertical: ScrollBar {}
                    delegate: FileRow {
                        compact: true
                        name: model.path
                        size: model.size
                        suffix: model.suffix
                    }
                }
            }
            RowLayout {
                Label { text: "Native match function, at least" }
                SpinBox {
                    id: sizeBox
                    from: 0
                    to: 1048576
                    stepSize: 16
                    editable: true
                    onValueModified: pane.applySize()
                }
                Label { text: "KB" }
            }
            OperationLabel {
                operation: "UpdateUserDefinedFilterRules"
                result: pane.sizeResult
                milliseconds: pane.sizeMilliseconds
                Layout.fillWidth: true
            }
        }
    }
}
