import QtQuick 2.15
import ".."

/// Covers all of its parent, which shows through a little, with what is asked on top.
FocusScope {
    property alias veil: paper.opacity

    anchors.fill: parent

    Rectangle {
        id: paper

        anchors.fill: parent
        color: QmlDefines.sheetColor
        opacity: 0.98
    }
}
