import QtQuick 2.15
import QtTest 1.2
import com.xolasys.ixolatreemodel 1.0

Item {
    width: 200
    height: 400

    property var model: host.createModel(0)

    ListView {
        id: list
        anchors.fill: parent
        model: parent.model
        delegate: Text { text: nameRole; height: 10 }
    }

    Repeater {
        id: repeater
        model: parent.model
        delegate: Item { property string itemId: idRole }
    }

    TestCase {
        name: "DelegatesFollowTheModel"
        when: windowShown

        function test_delegatesFollowStandardNotices() {
            compare(list.count, 0)
            verify(host.append(model, "a", "Alpha"))
            verify(host.append(model, "b", "Beta"))
            compare(list.count, 2)
            compare(repeater.count, 2)
            compare(repeater.itemAt(1).itemId, "b")
            verify(host.appendMany(model, ["c", "d", "e"]))
            compare(list.count, 5)
            compare(repeater.count, 5)
            verify(host.removeOne(model, "c"))
            compare(list.count, 4)
            compare(repeater.itemAt(2).itemId, "d")
            model.Remove(0, 1)
            compare(list.count, 2)
            compare(repeater.itemAt(0).itemId, "d")
            model.MoveRow(0, 1)
            compare(repeater.itemAt(0).itemId, "e")
            host.removeAll(model)
            compare(list.count, 0)
            compare(repeater.count, 0)
        }
    }
}
