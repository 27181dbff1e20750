import QtQuick 2.15
import QtQuick.Controls 2.15
import Velstrand 1.0
import ".."

/// One action of a farm profile. What is edited here reaches the action with write().
ListRow {
    id: line

    required property int index
    required property FarmActionConfig modelData

    /// One of the fields has the keyboard.
    signal reached()

    function write() {
        modelData.actionName = nameField.text
        modelData.enable = enableBox.checked
        modelData.randomPercent = parseInt(percentField.text, 10) || 0
    }

    objectName: "action" + index
    height: QmlDefines.rowHeight

    onActiveFocusChanged: {
        if (activeFocus) {
            view.currentIndex = index
            reached()
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: QmlDefines.controlRadius
        color: line.current ? QmlDefines.currentLineColor : "transparent"
    }

    MouseArea {
        anchors.fill: parent
        onClicked: line.forceActiveFocus(Qt.MouseFocusReason)
    }

    // 100 wide; a longer name, which the service may send, reaches into the room before the check box rather than
    // be cut off, and scrolls in that.
    TextInput {
        id: nameField

        objectName: "actionName"
        x: 10
        width: Math.max(100, Math.min(contentWidth + 2, 280))
        height: parent.height
        verticalAlignment: TextInput.AlignVCenter
        activeFocusOnTab: true
        clip: true
        maximumLength: QmlDefines.nameLength
        selectByMouse: true
        text: line.modelData.actionName

        Accessible.role: Accessible.EditableText
        Accessible.name: qsTr("Action name")
    }

    FocusFrame {
        anchors { fill: nameField; margins: -6; topMargin: 10; bottomMargin: 10 }
        border.width: 1
        visible: nameField.activeFocus
    }

    SquareCheckBox {
        id: enableBox

        objectName: "enable"
        x: 310
        anchors.verticalCenter: parent.verticalCenter
        checked: line.modelData.enable

        Accessible.name: line.modelData.actionName
    }

    PlainText {
        id: percentLabel

        anchors { left: enableBox.right; leftMargin: 200; verticalCenter: parent.verticalCenter }
        text: qsTr("random percent: ")
    }

    TextField {
        id: percentField

        objectName: "percent"
        anchors { left: percentLabel.right; verticalCenter: parent.verticalCenter }
        width: 40
        height: QmlDefines.lineHeight
        padding: 4
        horizontalAlignment: TextInput.AlignHCenter
        verticalAlignment: TextInput.AlignVCenter
        selectByMouse: true
        text: line.modelData.randomPercent

        validator: RegularExpressionValidator {
            regularExpression: /100|\d{0,2}/
        }

        Accessible.name: percentLabel.text

        onTextChanged: if (text !== "0" && parseInt(text, 10) === 0) text = "0"

        background: FieldFrame {
            radius: QmlDefines.controlRadius
            focusedColor: QmlDefines.pressedColor
            restColor: QmlDefines.cellFieldColor
        }
    }
}
