import QtQuick 2.15
import ".."

/// The standard button.
BaseButton {
    id: root

    text: "NoLabel"
    fillColor: down ? QmlDefines.buttonPressedColor : QmlDefines.buttonColor
    outlined: true

    contentItem: PlainText {
        text: root.text
        font: root.font
        horizontalAlignment: Text.AlignHCenter
        color: root.palette.buttonText
    }
}
