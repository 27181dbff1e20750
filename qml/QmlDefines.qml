pragma Singleton
import QtQuick 2.15

QtObject {
    readonly property color textColor: "#4da6ff"

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
