import QtQuick 2.15
import ".."

/// What a list says while it has nothing to show. Stands in the view and does not scroll with it.
PlainText {
    property ListView view

    parent: view
    anchors.centerIn: parent
    width: Math.min(implicitWidth, view.width - 40)
    visible: view.count === 0
    horizontalAlignment: Text.AlignHCenter
    color: QmlDefines.textColor
    font.pixelSize: QmlDefines.noteSize
    wrapMode: Text.Wrap
}
