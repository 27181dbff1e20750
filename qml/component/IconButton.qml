import QtQuick 2.15
// Brings the module under it.
import QtQuick.Controls 2.15 // qmllint disable unused-imports
import QtQuick.Controls.impl 2.15

/// A button that shows its icon, in the colour of its text, and the text as the style of the controls does.
BaseButton {
    id: root

    spacing: 6
    icon { width: 24; height: 24; color: palette.buttonText }

    contentItem: IconLabel {
        spacing: root.spacing
        mirrored: root.mirrored
        display: root.display
        icon: root.icon
        text: root.text
        font: root.font
        color: root.palette.buttonText
    }
}
