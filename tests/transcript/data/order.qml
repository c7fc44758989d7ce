import QtQml 2.15

// Comparisons for the transcript's sorts. Each method answers whether the
// first value belongs before the second. Values are compared by keys this
// file makes itself, so that the answer depends only on what the library hands
// over, never on how a JS engine prints a date or an array.
QtObject {
    // Numbers first (NaN after them), then text, then everything else.
    function rank(v) {
        if (v === undefined || v === null)
            return 5
        if (typeof v === "number")
            return v === v ? 0 : 1
        if (typeof v === "boolean")
            return 2
        if (typeof v === "string")
            return 3
        return 4
    }

    function key(v) {
        if (v === undefined)
            return "undefined"
        if (v === null)
            return "null"
        if (v instanceof Date)
            return isNaN(v.getTime()) ? "date:invalid" : "date:" + v.toISOString()
        if (typeof v === "object") {
            if (typeof v.length === "number") {
                var parts = []
                for (var i = 0; i < v.length; ++i)
                    parts.push(key(v[i]))
                return "[" + parts.join(",") + "]"
            }
            var keys = Object.keys(v).sort()
            var fields = []
            for (var k = 0; k < keys.length; ++k)
                fields.push(keys[k] + ":" + key(v[keys[k]]))
            return "{" + fields.join(",") + "}"
        }
        if (typeof v === "number" && v === 0 && 1 / v < 0)
            return "-0"
        return typeof v + ":" + String(v)
    }

    function numeric(a, b) {
        return Number(a) < Number(b)
    }

    function text(a, b) {
        return key(a) < key(b)
    }

    function typed(a, b) {
        var ra = rank(a)
        var rb = rank(b)
        if (ra !== rb)
            return ra < rb
        if (ra === 0 || ra === 2)
            return a < b
        return key(a) < key(b)
    }

    // Answers with something that is not a boolean.
    function notBoolean(a, b) {
        return typed(a, b) ? "yes" : 0
    }

    // typed(), with every comparison written to the transcript.
    function traced(a, b) {
        var result = typed(a, b)
        console.log("TRACE qml traced(" + key(a) + ", " + key(b) + ") = " + result)
        return result
    }
}
