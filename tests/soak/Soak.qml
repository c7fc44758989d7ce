import QtQuick 2.15

// Three lists side by side, as a host shows them: the whole model, the filter
// view and one page of the paging view. Each delegate reads idRole and
// nameRole; the counters tell the soak how many delegates were made and how
// many are alive, so that a delegate the lists never drop shows up.
Item {
    id: root
    width: 600
    height: 480

    property int delegatesMade: 0
    property int delegatesAlive: 0

    function scroll(list, index) {
        var lists = [modelList, filterList, pageList];
        var view = lists[list % lists.length];
        if (view.count > 0)
            view.positionViewAtIndex(index % view.count, ListView.Beginning);
    }

    // Compares every delegate the list holds with its model's row; returns the
    // differences found, as text, and how many delegates were compared.
    function verify(list) {
        var lists = [modelList, filterList, pageList];
        var view = lists[list];
        var problems = [];
        var compared = 0;
        if (view.count !== view.model.count)
            problems.push(view.objectName + ": count " + view.count + ", model count " + view.model.count);
        for (var i = 0; i < view.count; ++i) {
            var item = view.itemAtIndex(i);
            if (!item)
                continue;
            var row = view.model.get(i);
            var expected = row.idRole + " " + row.nameRole;
            if (item.text !== expected)
                problems.push(view.objectName + ": delegate " + i + " shows '" + item.text + "', row is '" + expected + "'");
            ++compared;
        }
        return { "problems": problems, "compared": compared, "count": view.count };
    }

    Component {
        id: row
        Text {
            width: 200
            height: 16
            text: idRole + " " + nameRole
            Component.onCompleted: { root.delegatesMade++; root.delegatesAlive++ }
            Component.onDestruction: root.delegatesAlive--
        }
    }

    ListView {
        id: modelList
        objectName: "model list"
        x: 0
        width: 200
        height: root.height
        model: soakModel
        cacheBuffer: 160
        delegate: row
    }
    ListView {
        id: filterList
        objectName: "filter list"
        x: 200
        width: 200
        height: root.height
        model: soakFilter
        cacheBuffer: 160
        delegate: row
    }
    ListView {
        id: pageList
        objectName: "page list"
        x: 400
        width: 200
        height: root.height
        model: soakPage
        delegate: row
    }
}
