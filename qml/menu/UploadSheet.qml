import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Dialogs 1.3
import "../component"
import "../Format.js" as Format

/// Asks for a version and a file of automation definitions, and uploads them.
FocusScope {
    id: sheet

    readonly property int version: Format.version(versionField.text)

    component Field: TextField {
        id: field

        width: 500
        height: 30
        topPadding: 0
        bottomPadding: 0
        verticalAlignment: TextInput.AlignVCenter
        selectByMouse: true

        background: Rectangle {
            radius: 2
            border.color: field.activeFocus ? "#4d94ff" : "grey"
        }
    }

    component Label: Text {
        height: 30
        rightPadding: 10
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
    }

    Keys.onEscapePressed: visible = false

    onVisibleChanged: {
        if (visible)
            versionField.forceActiveFocus(Qt.TabFocusReason)
    }

    Rectangle {
        anchors.fill: parent
        color: "white"
        opacity: 0.98
    }

    // What lies under the sheet is not to be clicked.
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
    }

    Label {
        anchors.right: versionField.left
        anchors.top: versionField.top
        text: qsTr("Version: ")
    }

    Field {
        id: versionField

        objectName: "version"
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -100
        focus: true
        placeholderText: qsTr("enter definitions version")

        Accessible.name: qsTr("Version")
    }

    Label {
        anchors.right: pathField.left
        anchors.top: pathField.top
        text: qsTr("File: ")
    }

    Field {
        id: pathField

        objectName: "path"
        anchors.top: versionField.bottom
        anchors.topMargin: 10
        anchors.left: versionField.left
        placeholderText: qsTr("enter file path")

        Accessible.name: qsTr("File")
    }

    PButton {
        objectName: "browser"
        anchors.left: pathField.right
        anchors.leftMargin: 10
        anchors.top: pathField.top
        width: 100
        height: 30
        text: qsTr("Browser")
        onClicked: {
            dialog.active = true
            dialog.item.open()
        }
    }

    PButton {
        objectName: "upload"
        anchors.top: pathField.bottom
        anchors.topMargin: 20
        anchors.horizontalCenter: parent.horizontalCenter
        text: qsTr("Upload")
        enabled: pathField.text !== "" && sheet.version > 0
        onClicked: {
            AppManager.uploadDefinition(sheet.version, pathField.text)
            sheet.visible = false
        }
    }

    // The dialog is made when it is first asked for.
    Loader {
        id: dialog

        objectName: "fileDialog"
        active: false

        sourceComponent: FileDialog {
            title: qsTr("Please choose a file")
            onAccepted: pathField.text = Format.localPath(fileUrl)
        }
    }
}
