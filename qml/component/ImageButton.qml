import QtQuick 2.15
import QtQuick.Controls 2.15

Button {
    id: root

    property string source

    text: "NoLabel"
    icon.source: source

    Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
    Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    Keys.onReleased: event.accepted = event.isAutoRepeat

    background: Rectangle {
        implicitWidth: 100
        implicitHeight: 40
        color: "transparent"
        border.color: "#26282a"
        border.width: root.down ? 1 : 0
        radius: 4

        FocusFrame {
            visible: root.visualFocus
        }
    }
}
