pragma Singleton
import QtQuick 2.15

/// The theme of the scene, and the ids of its pages.
QtObject {
    // Surfaces
    readonly property color sheetColor: "white"
    readonly property color panelColor: "#cce6ff"
    readonly property color detailsColor: "#F5F5F5"
    readonly property color toolBoxColor: "#e6f0ff"
    readonly property color entryColor: "#e6f2ff"
    readonly property color hoveredRowColor: "#F5F5DC"
    readonly property color currentRowColor: "#3f4d94ff"
    readonly property color currentLineColor: "#0f4d94ff"
    // The menu fades from one side to the other, the tabs of the settings from top to bottom.
    readonly property color menuFaintColor: "#0f008000"
    readonly property color menuFullColor: "#f0008000"
    readonly property color tabTopColor: "#2f008000"
    readonly property color tabMiddleColor: "#08008000"
    readonly property color userColor: "green"

    // Texts
    readonly property color textColor: "#4da6ff"
    readonly property color textOnDarkColor: "white"
    readonly property color textShadowColor: "#80004000"
    readonly property color dimColor: "grey"

    // Rules
    readonly property color ruleColor: "#99ccff"
    readonly property color menuRuleColor: "#cce6ff"
    readonly property color headRuleColor: "#4d4d4d"
    readonly property color outlineColor: "black"

    // Controls
    readonly property color buttonColor: "#99ccff"
    readonly property color buttonPressedColor: "#d6d6d6"
    readonly property color buttonBorderColor: "#26282a"
    readonly property color inputColor: "#4d94ff"
    readonly property color editedColor: "#21be2b"
    readonly property color pressedColor: "#17a81a"
    readonly property color cellFieldColor: "#bdbdbd"
    readonly property color focusColor: "#0059b3"

    // Notifications
    readonly property color infoColor: "#33cc33"
    readonly property color warningColor: "#e6b800"
    readonly property color errorColor: "#ff3300"

    // Sizes in pixels
    readonly property int rowHeight: 50
    readonly property int lineHeight: 30
    readonly property int cellHeight: 48
    readonly property int fieldHeight: 36
    readonly property int buttonWidth: 80
    readonly property int buttonHeight: 40
    readonly property int nameWidth: 200
    readonly property int iconSize: 30
    readonly property int noteSize: 15
    readonly property int fieldRadius: 2
    readonly property int controlRadius: 4
    readonly property int entryRadius: 5
    readonly property int panelRadius: 10
    readonly property int rowRadius: 16
    readonly property int toolSpacing: 30

    /// What slides takes this long, in milliseconds.
    readonly property int slideTime: 500
    /// Characters that a field for a name takes at most.
    readonly property int nameLength: 1000

    // Ids of the menu rows, which are their indices too.
    readonly property int _HOME: 0
    readonly property int _DEVICES: 1
    readonly property int _CLONES: 2
    readonly property int _ADMIN_SETTINGS: 3
    readonly property int _SETTINGS: 4
    readonly property int _MAKE_MONEY: 5
    readonly property int _UTILS: 6
    readonly property int _USER_INFO: 7
}
