import QtQml 2.15

// Root object whose comparison methods answer anything but a boolean.
QtObject {
    property int calls: 0
    property int greater: 3
    function nonbool(a, b) {
        calls += 1
        switch (calls % 5) {
        case 0: return undefined
        case 1: return "yes"
        case 2: return { less: false }
        case 3: return [a, b]
        default: return null
        }
    }
    function less(a, b) { return a - b }
    function fails(a, b) { throw new Error("no order for " + a + " and " + b) }
    function always(a) { return true }
}
