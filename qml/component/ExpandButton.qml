import QtQuick 2.15
import QtQuick.Controls 2.15

Button {
    id: root

    property bool up: false

    icon.source: up ? "qrc:/images/expand_up_icon.png" : "qrc:/images/expand_down_icon.png"
    icon.color: "transparent"

    Accessible.name: up ? qsTr("Expand") : qsTr("Collapse")

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

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
