import QtQuick 2.15

/// The ring inside a control that tells which one the keyboard drives; the control says when it is visible.
Rectangle {
    anchors.fill: parent
    anchors.margins: 2
    color: "transparent"
    border.width: 2
    border.color: "#0059b3"
    radius: parent && parent.radius !== undefined ? parent.radius : 4
}
