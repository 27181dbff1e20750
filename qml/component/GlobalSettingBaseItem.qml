import QtQuick 2.15
import ".."

Rectangle {
    id: root

    property string labelText
    property var defaultValue

    signal valueEdited(var newValue)

    width: parent ? parent.width : 0
    height: QmlDefines.rowHeight
    radius: QmlDefines.panelRadius
    color: hover.hovered ? QmlDefines.hoveredRowColor : "transparent"

    HoverHandler {
        id: hover

        acceptedDevices: PointerDevice.Mouse
        cursorShape: Qt.PointingHandCursor
        onHoveredChanged: if (!hovered) editor.focus = false
    }

    PlainText {
        id: label

        anchors { left: parent.left; verticalCenter: parent.verticalCenter }
        padding: 10
        text: root.labelText
        font.bold: true
    }

    TextInput {
        id: editor

        objectName: "editor"
        anchors { left: label.right; right: parent.right; leftMargin: 20; rightMargin: 10 }
        height: parent.height
        verticalAlignment: TextInput.AlignVCenter
        clip: true
        text: root.defaultValue === undefined || root.defaultValue === null ? "" : String(root.defaultValue)
        selectByMouse: true
        activeFocusOnTab: true

        Accessible.role: Accessible.EditableText
        Accessible.name: root.labelText

        onTextChanged: root.valueEdited(text)
    }

    FocusFrame { visible: editor.activeFocus; border.width: 1 }
}
