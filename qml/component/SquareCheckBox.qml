import QtQuick 2.15
import QtQuick.Templates 2.15 as T

/// A check box of one square, without a label: give it an Accessible.name.
T.CheckBox {
    id: root

    property real size: 20
    readonly property color ink: down ? "#17a81a" : "#21be2b"

    implicitWidth: size
    implicitHeight: size

    Keys.onReleased: event.accepted = event.isAutoRepeat

    indicator: Rectangle {
        width: root.size
        height: root.size
        radius: 3
        color: "white"
        border.color: root.ink

        Rectangle {
            anchors.centerIn: parent
            width: root.size / 2
            height: width
            radius: 2
            color: root.ink
            visible: root.checked
        }

        FocusFrame {
            anchors.margins: -4
            visible: root.visualFocus
        }
    }
}
