// Comparison functions that answer anything but a boolean.
var calls = 0;
function nonbool(a, b) {
    calls += 1;
    switch (calls % 7) {
    case 0: return undefined;
    case 1: return null;
    case 2: return "no";
    case 3: return { less: true };
    case 4: return [a, b];
    case 5: return NaN;
    default: return function () { return true; };
    }
}
// A number instead of a verdict.
function less(a, b) {
    return a - b;
}
// Throws something that is not an Error.
function fails(a, b) {
    throw 0;
}
// Never returns normally: the engine runs out of stack.
function recurse(a, b) {
    return recurse(b, a);
}
// The function name is bound to something that cannot be called.
var greater = 42;
