import QtQuick 2.15
import QtQuick.Controls 2.15

Button {
    id: root

    text: "NoLabel"

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

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
