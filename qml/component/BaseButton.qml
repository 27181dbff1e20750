import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import ".."

/// What all buttons share: Return presses them too, a key that is held down presses once, also Space, which
/// clicks when it is released, and a ring tells which one the keyboard drives. It shows what its contentItem
/// is, and takes nothing from the style of the controls, which the first frame would wait for.
T.Button {
    id: root

    property color fillColor: "transparent"
    property bool outlined: false
    property real radius: QmlDefines.controlRadius

    implicitWidth: Math.max(implicitBackgroundWidth, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight, implicitContentHeight + topPadding + bottomPadding)
    padding: 6
    horizontalPadding: padding + 2

    Keys.onReturnPressed: function(event) { if (!event.isAutoRepeat) clicked() }
    Keys.onEnterPressed: function(event) { if (!event.isAutoRepeat) clicked() }
    Keys.onReleased: function(event) { event.accepted = event.isAutoRepeat }

    background: Rectangle {
        implicitWidth: 100
        implicitHeight: 40
        radius: root.radius
        color: root.fillColor
        border.color: QmlDefines.buttonBorderColor
        border.width: root.outlined ? 1 : 0

        FocusFrame { visible: root.visualFocus }
    }
}
