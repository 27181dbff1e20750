import QtQuick 2.15
import ".."

/// The line that closes a row at its lower edge.
Rectangle {
    anchors { bottom: parent.bottom; horizontalCenter: parent.horizontalCenter }
    width: parent.width - 10
    height: 1
    color: QmlDefines.ruleColor
}
