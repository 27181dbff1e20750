import QtQuick 2.15

Rectangle {
    id: root

    property var deviceObject
    property bool saveChangeEnable: true

    signal confirmSelectedDevice()
    signal deleteSelectedDevice()
    signal viewSelectedDevice()
    signal saveSelectedDeviceConfig()

    width: row.width
    visible: height > 0
    clip: true
    radius: 10
    color: "#e6f0ff"

    Behavior on height {
        NumberAnimation {
            duration: 500
            easing.type: Easing.OutCubic
        }
    }

    Row {
        id: row

        anchors.verticalCenter: parent.verticalCenter
        spacing: 30

        ImageButton {
            objectName: "confirmButton"
            source: "qrc:/images/confirm_icon.png"
            text: qsTr("Confirm device")
            enabled: !!root.deviceObject && root.deviceObject.status === 0
            onClicked: root.confirmSelectedDevice()
        }

        ImageButton {
            objectName: "deleteButton"
            source: "qrc:/images/delete_icon.png"
            text: qsTr("Delete device")
            onClicked: root.deleteSelectedDevice()
        }

        ImageButton {
            objectName: "saveButton"
            source: "qrc:/images/save_icon.png"
            text: qsTr("Save change")
            enabled: root.saveChangeEnable
            onClicked: root.saveSelectedDeviceConfig()
        }

        ImageButton {
            objectName: "detailsButton"
            source: "qrc:/images/details_icon.png"
            text: qsTr("Details")
            onClicked: root.viewSelectedDevice()
        }
    }
}
