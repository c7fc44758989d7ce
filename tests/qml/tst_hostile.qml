import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

// Hostile input from QML: every invokable called with wrong types, undefined,
// null, huge and negative numbers; rule maps with every key of the wrong type;
// comparison files that are missing, empty, binary, wrong, throwing or answering
// anything but a boolean. Each call gives its documented answer (or, when QML
// cannot convert the arguments at all, throws a JavaScript error before the
// model is reached), and no row is lost.
TestCase {
    id: testCase
    name: "HostileInput"

    readonly property var junk: [undefined, null, NaN, Infinity, -Infinity, -1, -2147483648, 2147483647,
                                 4294967296, 1e300, -1e300, 0.5, "", "x", "12", true, false, [], [1, "q"], {},
                                 { "RoleName": 1 }, function () { return 1 }]
    readonly property var rowJunk: [-1, -2147483648, 2147483647, 4294967296, 1e300, -1e300, NaN, Infinity, undefined,
                                    null, "x", "", {}, []]

    function filled() {
        var model = host.createModel(0)
        verify(host.appendMany(model, ["a", "b", "c", "d", "e"]))
        host.setValue(model, "a", 3)
        host.setValue(model, "b", 1)
        host.setValue(model, "c", 4)
        host.setValue(model, "d", 1)
        host.setValue(model, "e", 5)
        return model
    }

    function ids(model) {
        var result = []
        for (var i = 0; i < model.count; ++i)
            result.push(model.FindItemID(i))
        return result
    }

    function sortedIds(model) {
        return ids(model).sort()
    }

    // Calls f; a JavaScript error (arguments QML cannot convert) is an answer too.
    function attempt(f) {
        try {
            return { value: f(), threw: false }
        } catch (e) {
            return { value: undefined, threw: true }
        }
    }

    function spyOn(target, signalName) {
        var spy = Qt.createQmlObject('import QtTest 1.2; SignalSpy {}', testCase)
        spy.target = target
        spy.signalName = signalName
        return spy
    }

    function file(name) {
        return host.dataDir() + "/" + name
    }

    // ---- reads ------------------------------------------------------------------------------

    function test_readsWithJunkArguments() {
        var model = filled()
        var before = ids(model)
        for (var i = 0; i < rowJunk.length; ++i) {
            var row = rowJunk[i]
            // Rows that are not rows: not-found answers (a number QML turns into
            // row 0 answers for row 0).
            var id = attempt(function () { return model.FindItemID(row) })
            verify(id.threw || id.value === "" || before.indexOf(id.value) >= 0, "FindItemID(" + row + ")")
            var found = attempt(function () { return model.FindItem(row) })
            verify(found.threw || found.value === null || typeof found.value === "object")
            var map = attempt(function () { return model.get(row) })
            verify(map.threw || Object.keys(map.value).length === 0 || Object.keys(map.value).length === 6)
            attempt(function () { return model.FindItemValue(row, row) })
            attempt(function () { return model.FindItemValue(row, "nameRole") })
        }
        compare(model.FindItemID(-1), "")
        compare(model.FindItemID(2147483647), "")
        compare(model.FindItem(-1), null)
        compare(model.FindItem(1e9), null)
        compare(Object.keys(model.get(-2147483648)).length, 0)
        compare(model.FindItemValue(99, 258), undefined)
        compare(model.FindItemValue(0, 999999), undefined)
        compare(model.FindItemValue(0, "no such role"), undefined)
        for (var j = 0; j < junk.length; ++j) {
            var value = junk[j]
            var row2 = attempt(function () { return model.FindItemRow(value) })
            verify(row2.threw || row2.value === -1 || row2.value >= 0)
            attempt(function () { return model.FindItem(value, value) })
            attempt(function () { return model.FindItemValue(value, value) })
            attempt(function () { return model.FindItemValueEx(value, value, value) })
            attempt(function () { return model.FindItemValueEx("a", 258, value) })
            attempt(function () { return model.get(value) })
        }
        compare(model.FindItemRow(undefined), -1)
        compare(model.FindItemRow(null), -1)
        compare(model.FindItemRow({}), -1)
        compare(model.FindItem("no such id", true), null)
        compare(model.FindItemValueEx("no such id", "nameRole", true), undefined)
        // GetAllIDs fills a C++ list: from QML there is nothing to fill.
        attempt(function () { return model.GetAllIDs([], true) })
        attempt(function () { return model.GetAllIDs() })
        compare(ids(model), before)
    }

    function test_propertiesWithJunk() {
        var model = filled()
        var before = ids(model)
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            attempt(function () { model.page = value })
            compare(model.page, -1, "a plain model is not paged")
            attempt(function () { model.firstPartialModelRow = value })
            verify(model.firstPartialModelRow >= 0 && model.firstPartialModelRow < model.count)
            attempt(function () { model.count = value }) // read only
            compare(model.count, 5)
        }
        compare(ids(model), before)
    }

    function test_partialWindowWithJunk() {
        var model = filled()
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            var window = attempt(function () { return model.GetPartialModel(value) })
            verify(window.threw || window.value !== null)
            attempt(function () { model.SetPartialModelCount(value) })
            attempt(function () { model.SetFirstPartialModelRow(value) })
        }
        var partial = model.GetPartialModel(1e9)
        model.firstPartialModelRow = -100
        compare(model.firstPartialModelRow, 0)
        compare(partial.count, 5, "a huge size shows every row")
        model.SetPartialModelCount(-5)
        compare(partial.count, 0, "a negative size shows nothing")
        model.firstPartialModelRow = 1e9
        compare(model.firstPartialModelRow, 4, "past the end clamps to the last row")
        compare(Object.keys(partial.get(-100)).length, 0)
        compare(partial.FindItemRow(undefined), -1)
        compare(partial.FindItemRow("c"), 2)
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    // ---- removal and moves --------------------------------------------------------------------

    function test_removalWithJunk() {
        var model = filled()
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            var one = attempt(function () { return model.RemoveOne(value) })
            verify(one.threw || one.value === false, "RemoveOne(" + value + ")")
            compare(model.count, 5)
            // Ids that are not listed are skipped; the answer is true.
            var list = attempt(function () { return model.Remove([value, "zz"]) })
            verify(list.threw || list.value === true)
            compare(model.count, 5)
            attempt(function () { return model.Remove(value) })
            compare(model.count, 5)
            // A row given twice moves nothing; rows outside are refused.
            attempt(function () { model.MoveRow(value, value) })
            attempt(function () { model.MoveRow(value, 1e9) })
        }
        verify(!model.Remove(-1, 2))
        verify(!model.Remove(3, 1))
        verify(!model.Remove(4, 99))
        verify(!model.Remove(2147483647, -2147483648))
        model.MoveRow(-1, 0)
        model.MoveRow(0, 99)
        model.MoveRow(1e9, -1e9)
        verify(!model.RemoveOne(""))
        verify(model.Remove([]))
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    function test_removeRangeWithJunk() {
        // QML turns each number into an int its own way (NaN, null, "" and [] are
        // 0; 4294967301 is 5); the range then gets the documented answer: rows
        // wholly inside are removed, anything else is refused and changes nothing.
        var pairs = [[-1, 0], [0, -1], [5, 5], [3, 1], [2147483647, 2147483647], [-2147483648, 0], [4294967301, 4294967303],
                     [1e300, -1e300], [NaN, NaN], [null, undefined], ["", "1"], [[], {}], [Infinity, -Infinity], [1.9, 2.2],
                     [true, true]]
        for (var i = 0; i < pairs.length; ++i) {
            var model = filled()
            var h = pairs[i][0]
            var t = pairs[i][1]
            var before = ids(model)
            var result = attempt(function () { return model.Remove(h, t) })
            if (result.threw) {
                compare(ids(model), before)
                continue
            }
            var first = Number(h) | 0
            var last = Number(t) | 0
            if (first >= 0 && first <= last && last < before.length) {
                verify(result.value, "Remove(" + h + ", " + t + ")")
                before.splice(first, last - first + 1)
            } else {
                verify(!result.value, "Remove(" + h + ", " + t + ")")
            }
            compare(ids(model), before, "Remove(" + h + ", " + t + ")")
        }
    }

    function test_removalByIdListFromQmlHandsItemsBack() {
        // The items go back to the caller, which is the host here: it keeps them.
        var model = filled()
        verify(model.Remove(["b", "b", "nope", undefined, null, 7]))
        compare(ids(model), ["a", "c", "d", "e"])
    }

    // ---- sorting ------------------------------------------------------------------------------

    function test_sortingWithJunk() {
        var model = filled()
        var before = sortedIds(model)
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            attempt(function () { model.SortByRole(value, value) })
            attempt(function () { model.SortByRoleAndKeep(value, value) })
            attempt(function () { model.SortByRules(value, value) })
            attempt(function () { model.SortByRules([value, { "RoleName": value, "Ascending": value }], 0) })
            attempt(function () { model.SortByRoleByQMLFunction(value, value, value, value) })
            attempt(function () { model.SortByRoleByScriptFunction(value, value, value, value) })
            compare(sortedIds(model), before)
        }
        // Flags outside the enum are stored as given and behave as keep-sorting.
        model.SortByRules([{ "RoleName": "valueRole", "Ascending": true }], 77)
        compare(host.sortFlag(model), 77)
        verify(host.append(model, "f", "name-f", 2))
        compare(ids(model), ["b", "d", "f", "a", "c", "e"])
        model.SortByRules([], -1)
        compare(sortedIds(model), ["a", "b", "c", "d", "e", "f"])
        model.SortByRole("nameRole", true)
        compare(host.sortFlag(model), 0)
    }

    function test_sortRulesWithEveryKeyOfTheWrongType() {
        var model = filled()
        // An unknown role (a number's text), a direction that is no boolean: the
        // rule compares role 0, which has no value, so every pair ties and the
        // rows come out reversed.
        model.SortByRules([{ "RoleName": 258.5, "Ascending": "no" }, 5, null, [], { "Ascending": {} }])
        compare(ids(model), ["e", "d", "c", "b", "a"])
        model.SortByRules("valueRole")
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    // ---- comparison files ---------------------------------------------------------------------

    function test_comparisonScripts_data() {
        // Values a 3, b 1, c 4, d 1, e 5, sorted ascending by valueRole.
        return [
            { tag: "missing file", file: "hostile/missing.js", fn: "less", ids: ["a", "b", "c", "d", "e"], signals: 0 },
            { tag: "empty file", file: "hostile/empty.js", fn: "less", ids: ["e", "d", "c", "b", "a"], signals: 1 },
            { tag: "binary file", file: "hostile/binary.js", fn: "less", ids: ["e", "d", "c", "b", "a"], signals: 1 },
            { tag: "syntax error", file: "compare/syntaxerror.js", fn: "less", ids: ["e", "d", "c", "b", "a"], signals: 1 },
            { tag: "global is an Error", file: "compare/errorvalue.js", fn: "less", ids: ["a", "b", "c", "d", "e"], signals: 0 },
            { tag: "throws an Error", file: "compare/throws.js", fn: "fails", ids: ["a", "b", "c", "d", "e"], signals: 1 },
            { tag: "throws a falsy value", file: "hostile/nonbool.js", fn: "fails", ids: ["e", "d", "c", "b", "a"], signals: 1 },
            { tag: "runs out of stack", file: "hostile/nonbool.js", fn: "recurse", ids: ["a", "b", "c", "d", "e"], signals: 1 },
            { tag: "answers a number", file: "hostile/nonbool.js", fn: "less", ids: null, signals: 1 },
            { tag: "answers anything", file: "hostile/nonbool.js", fn: "nonbool", ids: null, signals: 1 },
            { tag: "name bound to a number", file: "hostile/nonbool.js", fn: "greater", ids: ["e", "d", "c", "b", "a"], signals: 1 },
            { tag: "no such function", file: "compare/less.js", fn: "nope", ids: ["e", "d", "c", "b", "a"], signals: 1 },
            { tag: "evaluation throws", file: "hostile/toplevelthrow.js", fn: "less", ids: ["d", "b", "a", "c", "e"], signals: 1 },
            { tag: "empty function name", file: "compare/less.js", fn: "", ids: ["a", "b", "c", "d", "e"], signals: 0 },
            { tag: "empty file name", file: "", fn: "less", ids: ["a", "b", "c", "d", "e"], signals: 0 }
        ]
    }

    function test_comparisonScripts(data) {
        var model = filled()
        var dataSpy = spyOn(model, "dataChanged")
        var resetSpy = spyOn(model, "modelReset")
        var layoutSpy = spyOn(model, "layoutChanged")
        var name = data.file === "" ? "" : file(data.file)
        model.SortByRoleByScriptFunction("valueRole", true, name, data.fn)
        if (data.ids !== null)
            compare(ids(model), data.ids)
        compare(sortedIds(model), ["a", "b", "c", "d", "e"])
        // A sort that runs sends dataChanged, layoutChanged and a lone modelReset.
        compare(dataSpy.count, data.signals)
        compare(layoutSpy.count, data.signals)
        compare(resetSpy.count, data.signals)
        dataSpy.destroy()
        resetSpy.destroy()
        layoutSpy.destroy()
    }

    function test_comparisonQmlFiles_data() {
        return [
            // Files that give no object: the built-in comparison sorts (equal
            // values, b and d, come out in reverse order).
            { tag: "missing file", file: "hostile/missing.qml", fn: "less", ids: ["d", "b", "a", "c", "e"] },
            { tag: "empty file", file: "hostile/empty.qml", fn: "less", ids: ["d", "b", "a", "c", "e"] },
            { tag: "binary file", file: "hostile/binary.qml", fn: "less", ids: ["d", "b", "a", "c", "e"] },
            { tag: "syntax error", file: "compare/syntaxerror.qml", fn: "less", ids: ["d", "b", "a", "c", "e"] },
            // Methods that do not answer true: every comparison false, rows reversed.
            { tag: "throws", file: "hostile/nonbool.qml", fn: "fails", ids: ["e", "d", "c", "b", "a"] },
            { tag: "one parameter", file: "hostile/nonbool.qml", fn: "always", ids: ["e", "d", "c", "b", "a"] },
            { tag: "a property, not a method", file: "hostile/nonbool.qml", fn: "greater", ids: ["e", "d", "c", "b", "a"] },
            { tag: "no such method", file: "compare/less.qml", fn: "nope", ids: ["e", "d", "c", "b", "a"] },
            { tag: "answers a number", file: "hostile/nonbool.qml", fn: "less", ids: null },
            { tag: "answers anything", file: "hostile/nonbool.qml", fn: "nonbool", ids: null }
        ]
    }

    function test_comparisonQmlFiles(data) {
        var model = filled()
        var dataSpy = spyOn(model, "dataChanged")
        var layoutSpy = spyOn(model, "layoutChanged")
        model.SortByRoleByQMLFunction("valueRole", true, file(data.file), data.fn)
        if (data.ids !== null)
            compare(ids(model), data.ids)
        compare(sortedIds(model), ["a", "b", "c", "d", "e"])
        compare(dataSpy.count, 1)
        compare(layoutSpy.count, 1)
        dataSpy.destroy()
        layoutSpy.destroy()
    }

    // ---- views --------------------------------------------------------------------------------

    function test_filterRulesWithEveryKeyOfTheWrongType() {
        var model = filled()
        // "Rule" is present: one comparison. Role "5" is unknown (no value), the
        // operator "x" reads as 0 (Eq), and a missing value is not ordered
        // against an object: equal, so every row passes.
        var view = model.GetFilterModel([{ "RoleName": 5, "Rule": "x", "Value": {}, "Rules": 7, "OrAllRules": "maybe" }])
        compare(ids(view), ["a", "b", "c", "d", "e"])
        // No "Rule": several comparisons, but "Rules" is no list: nothing passes.
        verify(view.UpdateFilterRules([{ "RoleName": [], "Rules": "x", "OrAllRules": {} }], "yes"))
        compare(view.count, 0)
        // Operators outside the enum fail, whatever their type.
        verify(view.UpdateFilterRules([{ "RoleName": "valueRole", "Rule": 1e9, "Value": 1 },
                                       { "RoleName": "valueRole", "Rule": -1, "Value": 1 },
                                       { "RoleName": "valueRole", "Rule": NaN, "Value": 1 }], true))
        compare(ids(view), ["b", "d"], "NaN reads as 0, Eq")
        // Sub-rules of any kind.
        verify(view.UpdateFilterRules([{ "RoleName": "valueRole", "Rules": [null, 3, "x", [], { "Rule": "4", "Value": "3" }],
                                         "OrAllRules": 1 }]))
        compare(ids(view), ["a", "b", "d"])
        // Not a list at all.
        var attemptList = attempt(function () { return view.UpdateFilterRules("valueRole") })
        verify(attemptList.threw || attemptList.value === true)
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    function test_viewFactoriesWithJunk() {
        var model = filled()
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            var views = [attempt(function () { return model.GetFilterModel(value, value, value) }),
                         attempt(function () { return model.GetFilterModel(value) }),
                         attempt(function () { return model.GetFilterModelByUserDefinedRules(value, value) }),
                         attempt(function () { return model.GetGroupModel(value, value) }),
                         attempt(function () { return model.GetPagingModel(value) })]
            for (var v = 0; v < views.length; ++v) {
                var view = views[v].value
                if (!view)
                    continue
                // Every view answers every read with something.
                for (var r = -1; r <= view.count; ++r) {
                    view.FindItemID(r)
                    view.get(r)
                    view.FindItemValue(r, 259)
                }
                attempt(function () { return view.UpdateFilterRules(value, value) })
                attempt(function () { return view.UpdateUserDefinedFilterRules(value) })
                attempt(function () { return view.UpdateGroupRole(value) })
                attempt(function () { view.page = value })
                verify(view.page >= -1)
            }
        }
        // Update operations on a model that is not such a view answer false.
        verify(!model.UpdateFilterRules([]))
        verify(!model.UpdateUserDefinedFilterRules({}))
        verify(!model.UpdateGroupRole("nameRole"))
        verify(!model.UpdateGroupRole(258))
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    function test_pagingWithJunk() {
        var model = filled()
        // Page sizes that QML turns into 0 or into huge unsigned numbers put
        // every row on one page.
        var sizes = [0, -1, NaN, "x", undefined, null, 4294967295, 1e12]
        for (var i = 0; i < sizes.length; ++i) {
            var paging = model.GetPagingModel(sizes[i])
            compare(paging.totalPage, 1, "size " + sizes[i])
            compare(paging.count, 5)
            compare(paging.page, 0)
        }
        var two = model.GetPagingModel(2)
        compare(two.totalPage, 3)
        var pages = [-1, 3, 1e9, -1e9, NaN, "2", null, undefined, 2.9]
        for (var j = 0; j < pages.length; ++j) {
            attempt(function () { two.page = pages[j] })
            verify(two.page >= 0 && two.page <= 2)
        }
        two.page = 2
        compare(two.count, 1)
        compare(two.FindItemRow("nope"), 4294967295 % 2)
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    function test_predicateFilterWithJunkRuleValues() {
        var model = host.createModelWithMinimumMatch(0)
        verify(host.appendMany(model, ["a", "b", "c"]))
        host.setValue(model, "a", 3)
        host.setValue(model, "b", 7)
        host.setValue(model, "c", 1)
        var view = model.GetFilterModelByUserDefinedRules({ "min": 2 })
        compare(ids(view), ["a", "b"])
        var values = [undefined, null, "x", [], { "min": "x" }, { "min": {} }, { "min": 1e300 }, function () { return 1 }]
        for (var i = 0; i < values.length; ++i) {
            verify(view.UpdateUserDefinedFilterRules(values[i]))
            verify(view.count >= 0 && view.count <= 3)
        }
        verify(view.UpdateUserDefinedFilterRules({ "min": 5 }))
        compare(ids(view), ["b"])
        compare(ids(model), ["a", "b", "c"])
    }

    function test_groupsWithJunk() {
        var model = filled()
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            var group = attempt(function () { return model.GetGroupModel(value) })
            if (group.value) {
                // Unknown roles group by role 0: one group, the empty text. Role -1
                // is the view's "not grouped yet": that view starts empty.
                if (value === -1)
                    compare(group.value.count, 0)
                else
                    verify(group.value.count >= 1, "GetGroupModel(" + value + ") has " + group.value.count + " groups")
                verify(group.value.UpdateGroupRole("valueRole"))
                compare(group.value.count, 4)
            }
        }
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    // ---- items ---------------------------------------------------------------------------------

    function test_itemsWithJunk() {
        var model = filled()
        var item = model.FindItem("c")
        verify(item !== null)
        for (var i = 0; i < junk.length; ++i) {
            var value = junk[i]
            attempt(function () { return item.getData(value) })
            attempt(function () { item.setData("nope", value) })
            attempt(function () { item.setData(999, value) })
            attempt(function () { item.setData("nameRole", value) })
        }
        compare(item.getData(99999), undefined)
        compare(item.getData("valueRole"), 4)
        compare(item.getData("no such role"), undefined)
        compare(ids(model), ["a", "b", "c", "d", "e"])
    }

    function test_clearFromQmlWithViewsAttached() {
        var model = filled()
        var filter = model.GetFilterModel()
        var group = model.GetGroupModel("valueRole", false)
        var paging = model.GetPagingModel(2)
        var partial = model.GetPartialModel(3)
        model.firstPartialModelRow = 3
        model.clear()
        compare(model.count, 0)
        compare(filter.count, 0)
        compare(group.count, 0)
        compare(paging.totalPage, 0)
        compare(paging.count, 0)
        verify(partial.count <= 0)
        compare(Object.keys(partial.get(0)).length, 0)
        model.clear()
        compare(model.count, 0)
    }
}
