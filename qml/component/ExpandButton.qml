import QtQuick 2.15
import QtQuick.Controls 2.15

Button {
    id: root

    property bool up: false

    icon.source: up ? "qrc:/images/expand_up_icon.png" : "qrc:/images/expand_down_icon.png"
    icon.color: "transparent"

    Accessible.name: up ? qsTr("Expand") : qsTr("Collapse")

    Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
    Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    Keys.onReleased: event.accepted = event.isAutoRepeat

    onClicked: up = !up

    background: Rectangle {
        implicitWidth: 100
        implicitHeight: 40
        color: "transparent"
        radius: 4

        FocusFrame {
            visible: root.visualFocus
        }
    }
}
