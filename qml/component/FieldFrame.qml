import QtQuick 2.15
import ".."

/// The frame of a text field, its parent; tells by its colour whether the field has the keyboard.
Rectangle {
    property bool focused: parent !== null && parent.activeFocus
    property color focusedColor: QmlDefines.inputColor
    property color restColor: QmlDefines.dimColor

    radius: QmlDefines.fieldRadius
    border.color: focused ? focusedColor : restColor
}
