import QtQuick 2.15

Rectangle {
    id: root

    property bool checked: false

    function toggle() {
        checked = !checked
    }

    width: label.width + icon.width + 30
    color: "transparent"
    border.color: "#26282a"
    border.width: mouseArea.pressed ? 1 : 0
    radius: 4
    activeFocusOnTab: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: label.text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: toggle()
    Accessible.onPressAction: toggle()

    Keys.onSpacePressed: if (!event.isAutoRepeat) toggle()
    Keys.onReturnPressed: if (!event.isAutoRepeat) toggle()
    Keys.onEnterPressed: if (!event.isAutoRepeat) toggle()

    Image {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: height
        height: parent.height / 2
        source: root.checked ? "qrc:/images/select_all_icon.png" : "qrc:/images/un_select_all_icon.png"
    }

    Text {
        id: label

        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        text: qsTr("Select all")
        textFormat: Text.PlainText
    }

    FocusFrame {
        visible: root.activeFocus
    }

    MouseArea {
        id: mouseArea

        anchors.fill: parent
        onClicked: {
            root.forceActiveFocus(Qt.MouseFocusReason)
            root.toggle()
        }
    }
}
