import QtQuick 2.15
import QtQuick.Controls 2.15

Button {
    id: root

    text: "NoLabel"

    // A key that is held down presses once, also by Space, which clicks when it is released.
    Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
    Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    Keys.onReleased: event.accepted = event.isAutoRepeat

    background: Rectangle {
        implicitWidth: 100
        implicitHeight: 40
        color: root.down ? "#d6d6d6" : "#99ccff"
        border.color: "#26282a"
        border.width: 1
        radius: 4

        FocusFrame {
            visible: root.visualFocus
        }
    }
}
