import QtQuick 2.15
import QtQuick.Controls 2.15

/// One action of a farm profile. What is edited here reaches the action with write().
FocusScope {
    id: line

    readonly property var view: ListView.view

    /// One of the fields has the keyboard.
    signal reached()

    function write() {
        modelData.actionName = nameField.text
        modelData.enable = enableBox.checked
        modelData.randomPercent = parseInt(percentField.text, 10) || 0
    }

    objectName: "action" + index
    width: view ? view.width : 0
    height: 50

    onActiveFocusChanged: {
        if (activeFocus) {
            view.currentIndex = index
            reached()
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: 4
        color: line.ListView.isCurrentItem ? "#0f4d94ff" : "transparent"
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
        maximumLength: 1000
        selectByMouse: true
        text: modelData.actionName

        Accessible.role: Accessible.EditableText
        Accessible.name: qsTr("Action name")
    }

    FocusFrame {
        anchors.fill: nameField
        anchors.margins: -6
        anchors.topMargin: 10
        anchors.bottomMargin: 10
        border.width: 1
        visible: nameField.activeFocus
    }

    SquareCheckBox {
        id: enableBox

        objectName: "enable"
        x: 310
        anchors.verticalCenter: parent.verticalCenter
        checked: modelData.enable

        Accessible.name: modelData.actionName
    }

    Text {
        id: percentLabel

        anchors.left: enableBox.right
        anchors.leftMargin: 200
        anchors.verticalCenter: parent.verticalCenter
        text: qsTr("random percent: ")
        textFormat: Text.PlainText
    }

    TextField {
        id: percentField

        objectName: "percent"
        anchors.left: percentLabel.right
        anchors.verticalCenter: parent.verticalCenter
        width: 40
        height: 30
        padding: 4
        horizontalAlignment: TextInput.AlignHCenter
        verticalAlignment: TextInput.AlignVCenter
        selectByMouse: true
        text: modelData.randomPercent

        validator: RegularExpressionValidator {
            regularExpression: /100|\d{0,2}/
        }

        Accessible.name: qsTr("random percent: ")

        onTextChanged: {
            if (text !== "0" && parseInt(text, 10) === 0)
                text = "0"
        }

        background: Rectangle {
            radius: 4
            border.color: percentField.activeFocus ? "#17a81a" : "#bdbdbd"
        }
    }
}
