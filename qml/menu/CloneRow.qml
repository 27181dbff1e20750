import QtQuick 2.15
import Velstrand 1.0
import ".."
import "../component"
import "../Format.js" as Format

/// A clone of the clone page. The view builds several screens of these, so there is little in one: what is shown
/// only now and then is made when it is needed.
ListRow {
    id: row

    required property CloneInfo modelData
    /// A sixth of the page, as its column heads; the list is 10 pixels in from the page's left edge.
    property real columnWidth
    property bool checkable: false

    signal toolBoxRequested()

    // Like TableCell, but directly on Text: one layer less in each of thousands of cells.
    component Cell: Text {
        width: row.columnWidth
        height: QmlDefines.cellHeight
        padding: 4
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 7
    }

    function makeCurrent() {
        view.currentIndex = view.model.rowOf(modelData)
    }

    function copy(cell, text) {
        AppIO.sendToClibboard(text)
        badge.cell = cell
        badge.active = true
        badge.item.restart()
    }

    objectName: "cloneRow" + modelData.place
    height: QmlDefines.rowHeight
    z: badge.active ? 1 : 0

    Accessible.name: uidCell.text
    Accessible.selected: modelData.selected
    Accessible.onPressAction: makeCurrent()

    Keys.onSpacePressed: function(event) { if (!event.isAutoRepeat) modelData.selected = !modelData.selected }
    Keys.onReturnPressed: toolBoxRequested()
    Keys.onEnterPressed: toolBoxRequested()

    Component.onCompleted: modelData.keepFor(row)

    Rectangle {
        objectName: "rowBackground"
        width: parent.width
        height: QmlDefines.cellHeight
        radius: QmlDefines.rowRadius
        color: row.modelData.selected || row.current ? QmlDefines.currentRowColor : "transparent"
    }

    Cell {
        objectName: "number"
        width: 30
        text: row.modelData.place + 1
        minimumPointSize: 6
        leftPadding: 2
        rightPadding: 0
    }

    Cell {
        id: uidCell

        objectName: "uid"
        x: 30
        width: row.columnWidth - 40
        text: Format.line(row.modelData.uid)
    }

    Cell { objectName: "network"; x: row.columnWidth - 10; text: Format.line(row.modelData.network) }

    Cell {
        id: deviceCell

        objectName: "deviceId"
        x: 2 * row.columnWidth - 10
        text: Format.line(row.modelData.deviceId)
    }

    Cell { objectName: "status"; x: 3 * row.columnWidth - 10; text: Format.cloneStatus(row.modelData.status) }

    Cell {
        objectName: "restriction"
        x: 4 * row.columnWidth - 10
        text: Format.restrictions(row.modelData.restriction)
    }

    Cell {
        objectName: "farmProfile"
        x: 5 * row.columnWidth - 10
        width: row.columnWidth - 10 - (row.checkable ? 40 : 0)
        text: Format.line(row.modelData.farmProfile)
    }

    MouseArea {
        objectName: "rowArea"
        anchors.fill: parent

        onClicked: {
            row.makeCurrent()
            row.view.forceActiveFocus(Qt.MouseFocusReason)
            if (AppIO.keyboardModifiers === Qt.ControlModifier)
                row.modelData.selected = true
            else
                AppManager.selectAllClone(false)
        }
        onPressAndHold: {
            row.makeCurrent()
            row.toolBoxRequested()
        }
        onDoubleClicked: function(mouse) {
            if (mouse.x >= uidCell.x && mouse.x < uidCell.x + uidCell.width)
                row.copy(uidCell, row.modelData.uid)
            else if (mouse.x >= deviceCell.x && mouse.x < deviceCell.x + deviceCell.width)
                row.copy(deviceCell, row.modelData.deviceId)
        }
    }

    Loader {
        anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
        active: row.checkable

        sourceComponent: SquareCheckBox {
            objectName: "check"
            size: QmlDefines.rowHeight / 3
            checked: row.modelData.selected

            // By keyboard a row's box is reached from its row, so that the way past the list is one step.
            focusPolicy: row.current ? Qt.StrongFocus : Qt.ClickFocus

            Accessible.name: uidCell.text

            onClicked: row.modelData.selected = checked
            onActiveFocusChanged: if (activeFocus) row.makeCurrent()
        }
    }

    Loader {
        id: badge

        property Item cell: null

        objectName: "copiedBadge"
        active: false

        sourceComponent: Item {
            function restart() { lifetime.restart() }

            x: badge.cell.x + badge.cell.width / 4
            // Under the cell, over the next row; within the view where there is no room below.
            y: Math.min(48, row.view.contentY + row.view.height - row.y - height)
            width: badge.cell.width / 2
            height: 20

            Rectangle {
                anchors.fill: parent
                radius: QmlDefines.entryRadius
                color: QmlDefines.dimColor
                opacity: 0.5
            }

            PlainText { anchors.centerIn: parent; text: qsTr("Copied") }

            Timer {
                id: lifetime

                interval: 1000
                onTriggered: badge.active = false
            }
        }
    }
}
