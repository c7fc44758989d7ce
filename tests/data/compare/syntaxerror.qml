import QtQml 2.15

QtObject {
    function less(a, b) { return a < }
}
