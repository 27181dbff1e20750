import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import ".."

/// A list that asks for fresh data when it is pulled down, and that keeps its place when its model is replaced or
/// refreshed.
ListView {
    id: root

    property real keptY: 0
    property int keptIndex: -1
    property int keptCount: 0
    /// Whether a row that becomes the current one is brought into view.
    property bool following: activeFocus
    /// What the list says while it is empty.
    property alias emptyText: note.text

    signal pullToRefreshReleased()

    function keepPlace() {
        keptY = contentY - originY
        keptIndex = currentIndex
        keptCount = count
    }

    /// Gives the keyboard a row to start from, the first in view; a control within a row brings its own.
    function startKeyboard() {
        const item = Window.activeFocusItem
        if (activeFocus && currentIndex < 0 && count > 0 && (item === root || item.parent === contentItem))
            currentIndex = Math.max(0, indexAt(0, contentY + spacing))
    }

    activeFocusOnTab: true
    clip: true
    currentIndex: -1
    // Following is done below: the built-in one would scroll away from the place that is put back.
    highlightFollowsCurrentItem: false

    Accessible.role: Accessible.List

    Keys.onPressed: function(event) {
        if (event.key === Qt.Key_F5) {
            if (!event.isAutoRepeat)
                pullToRefreshReleased()
            event.accepted = true
        }
    }

    onActiveFocusChanged: startKeyboard()
    onDragEnded: if (indicator.visible) pullToRefreshReleased()

    // A new model puts the view back to its start before it is announced, in one go; so what is noted once the
    // event loop comes round again is the place from before.
    onContentYChanged: keeper.restart()
    onCountChanged: {
        keeper.restart()
        if (keptCount === 0)
            startKeyboard()
    }
    onCurrentIndexChanged: {
        keeper.restart()
        if (following)
            positionViewAtIndex(currentIndex, ListView.Contain)
    }
    onModelChanged: {
        const y = keptY
        currentIndex = Math.min(keptIndex, count - 1)
        if (keptCount === 0 || count === 0)
            return
        forceLayout()
        contentY = originY + Math.max(0, Math.min(y, contentHeight - height))
    }

    // A view that goes gives up the row that it is building, and Qt forgets that row where the view's context has
    // ended before. Here it has not.
    Component.onDestruction: model = null

    ScrollBar.vertical: ScrollBar {}

    Timer {
        id: keeper

        interval: 0
        onTriggered: root.keepPlace()
    }

    Item {
        id: indicator

        objectName: "pullIndicator"
        parent: root
        width: parent.width
        height: root.originY - root.contentY
        visible: height > 100

        PlainText {
            anchors.centerIn: parent
            text: qsTr("Pull to refresh")
            font.pixelSize: QmlDefines.noteSize
        }
    }

    EmptyNote {
        id: note

        objectName: "emptyNote"
        view: root
    }

    FocusFrame {
        parent: root
        anchors.margins: 0
        border.width: 1
        border.color: QmlDefines.textColor
        z: 1
        visible: root.Window.activeFocusItem === root
                 || (root.currentItem !== null && root.Window.activeFocusItem === root.currentItem)
    }
}
