// True when the first value belongs before the second.
function less(a, b) {
    return a < b;
}
