import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../component"

/// The filter of one column: each line of its text is one value. Shown in one line; line breaks are kept.
TextField {
    height: 25
    padding: 0
    leftPadding: 12
    rightPadding: 30
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : 0.3
    selectByMouse: true
    // Some 30,000 uids. Laying out more in one line would hold up the window.
    maximumLength: 500000

    background: FieldFrame { radius: width / 2; focusedColor: QmlDefines.editedColor }

    Icon {
        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        size: 16
        source: "qrc:/images/search_icon.ico"
    }
}
