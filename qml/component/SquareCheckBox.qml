import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import ".."

/// A check box of one square, without a label: give it an Accessible.name.
T.CheckBox {
    id: root

    property real size: 20
    readonly property color ink: down ? QmlDefines.pressedColor : QmlDefines.editedColor

    implicitWidth: size
    implicitHeight: size

    Keys.onReleased: function(event) { event.accepted = event.isAutoRepeat }

    indicator: Rectangle {
        width: root.size
        height: root.size
        radius: 3
        color: QmlDefines.sheetColor
        border.color: root.ink

        Rectangle {
            anchors.centerIn: parent
            width: root.size / 2
            height: width
            radius: QmlDefines.fieldRadius
            color: root.ink
            visible: root.checked
        }

        FocusFrame { anchors.margins: -4; visible: root.visualFocus }
    }
}
