import QtQuick 2.15
import ".."

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
    radius: QmlDefines.panelRadius
    color: QmlDefines.toolBoxColor

    Behavior on height { Slide {} }

    Row {
        id: row

        anchors.verticalCenter: parent.verticalCenter
        spacing: QmlDefines.toolSpacing

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
