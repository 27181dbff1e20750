import QtQuick 2.15
import ".."

/// The ring inside a control that tells which one the keyboard drives; the control says when it is visible.
Rectangle {
    anchors { fill: parent; margins: 2 }
    color: "transparent"
    border.width: 2
    border.color: QmlDefines.focusColor
    radius: parent instanceof Rectangle ? (parent as Rectangle).radius : QmlDefines.controlRadius
}
