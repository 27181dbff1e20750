import QtQuick 2.15

IconButton {
    property bool up: false

    icon.source: up ? "qrc:/images/expand_up_icon.png" : "qrc:/images/expand_down_icon.png"
    icon.color: "transparent"

    Accessible.name: up ? qsTr("Expand") : qsTr("Collapse")

    onClicked: up = !up
}
