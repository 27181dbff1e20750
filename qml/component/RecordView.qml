import QtQuick 2.15

/// A list of records, whose model comes and goes by single rows. What stood at its top stays there in a refresh; a view
/// at the very top stays at the top. In the place of a row that goes, the next one becomes the current one.
PListView {
    id: root

    property bool refreshing: false
    property int topRow: -1
    property real topOffset: 0
    property int currentRow: -1

    following: activeFocus && !refreshing

    Connections {
        target: root.model

        function onAboutToRefresh() {
            root.refreshing = true
            const row = root.indexAt(0, root.contentY + root.spacing)
            const item = root.itemAtIndex(row)
            root.topRow = item && root.contentY > root.originY ? row : -1
            root.topOffset = item ? root.contentY - item.y : 0
            root.currentRow = root.currentIndex
        }

        function onRefreshed() {
            root.forceLayout()
            if (root.currentRow >= 0) {
                const current = root.model.rowNow(root.currentRow)
                root.currentIndex = current < 0 ? root.count - 1 : current
            }
            if (root.count > 0 && root.topRow >= 0)
                root.putBack(root.model.rowNow(root.topRow))
            else if (root.contentY > root.originY)
                root.positionViewAtBeginning()
            root.refreshing = false
        }
    }

    function putBack(row) {
        const top = row < 0 ? count - 1 : row
        if (!itemAtIndex(top))
            positionViewAtIndex(top, ListView.Beginning)
        const y = itemAtIndex(top).y + topOffset
        const end = Math.max(originY, originY + contentHeight - height)
        if (Math.abs(contentY - Math.min(y, end)) >= 1)
            contentY = Math.min(y, end)
    }
}
