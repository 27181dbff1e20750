import QtQuick 2.15
import ".."

Rectangle {
    id: root

    property bool checked: false

    function toggle() { checked = !checked }

    width: label.width + icon.width + 30
    color: "transparent"
    border.color: QmlDefines.buttonBorderColor
    border.width: mouseArea.pressed ? 1 : 0
    radius: QmlDefines.controlRadius
    activeFocusOnTab: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: label.text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: toggle()
    Accessible.onPressAction: toggle()

    Keys.onSpacePressed: function(event) { if (!event.isAutoRepeat) toggle() }
    Keys.onReturnPressed: function(event) { if (!event.isAutoRepeat) toggle() }
    Keys.onEnterPressed: function(event) { if (!event.isAutoRepeat) toggle() }

    Icon {
        id: icon

        anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
        size: parent.height / 2
        source: root.checked ? "qrc:/images/select_all_icon.png" : "qrc:/images/un_select_all_icon.png"
    }

    PlainText {
        id: label

        anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
        text: qsTr("Select all")
    }

    FocusFrame { visible: root.activeFocus }

    MouseArea {
        id: mouseArea

        anchors.fill: parent
        onClicked: {
            root.forceActiveFocus(Qt.MouseFocusReason)
            root.toggle()
        }
    }
}
