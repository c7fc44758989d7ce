// Orders from greatest to smallest when used as an ascending comparison.
function greater(a, b) {
    return a > b;
}
