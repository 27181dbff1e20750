import QtQuick 2.15

Rectangle {
    id: root

    property string labelText
    property var defaultValue

    signal valueEdited(var newValue)

    width: parent ? parent.width : 0
    height: 50
    radius: 10
    color: hover.hovered ? "#F5F5DC" : "transparent"

    HoverHandler {
        id: hover

        acceptedDevices: PointerDevice.Mouse
        cursorShape: Qt.PointingHandCursor
        onHoveredChanged: {
            if (!hovered)
                editor.focus = false
        }
    }

    Text {
        id: label

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        padding: 10
        text: root.labelText
        textFormat: Text.PlainText
        font.bold: true
    }

    TextInput {
        id: editor

        objectName: "editor"
        anchors.left: label.right
        anchors.leftMargin: 20
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
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

    FocusFrame {
        visible: editor.activeFocus
        border.width: 1
    }
}
