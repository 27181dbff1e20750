import ".."

/// The standard button.
BaseButton {
    text: "NoLabel"
    fillColor: down ? QmlDefines.buttonPressedColor : QmlDefines.buttonColor
    outlined: true
}
