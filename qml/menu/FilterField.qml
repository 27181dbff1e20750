import QtQuick 2.15
import QtQuick.Controls 2.15

/// The filter of one column: each line of its text is one value. Shown in one line; line breaks are kept.
TextField {
    id: field

    height: 25
    padding: 0
    leftPadding: 12
    rightPadding: 30
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : 0.3
    selectByMouse: true
    // Some 30,000 uids. Laying out more in one line would hold up the window.
    maximumLength: 500000

    background: Rectangle {
        radius: width / 2
        border.color: field.activeFocus ? "#21be2b" : "grey"
    }

    Image {
        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        width: 16
        height: 16
        source: "qrc:/images/search_icon.ico"
    }
}
