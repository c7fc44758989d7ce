import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

// Passes, but logs a warning: the module tests' runner must catch it.
TestCase {
    name: "LogsAWarning"

    IXOLATreeModel { id: model }

    function test_logs() {
        compare(model.count, 0)
        console.warn("a warning the check must catch")
    }
}
