import QtQml 2.15

// Root object whose methods compare two row values: the first is the value of
// the row already placed, the second the value being placed.
QtObject {
    function less(a, b) { return a < b }
    function greater(a, b) { return a > b }
    function always(a, b) { return true }
    function fails(a, b) { throw new Error("cannot compare " + a + " and " + b) }
}
