import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Dialogs 1.3
import ".."
import "../component"
import "../Format.js" as Format

/// Asks for a version and a file of automation definitions, and uploads them.
Sheet {
    id: sheet

    readonly property int version: Format.version(versionField.text)

    component Field: TextField {
        property alias label: caption.text

        width: 500
        height: QmlDefines.lineHeight
        topPadding: 0
        bottomPadding: 0
        verticalAlignment: TextInput.AlignVCenter
        selectByMouse: true

        background: FieldFrame {}

        PlainText {
            id: caption

            anchors.right: parent.left
            height: parent.height
            rightPadding: 10
        }
    }

    Keys.onEscapePressed: visible = false

    onVisibleChanged: if (visible) versionField.forceActiveFocus(Qt.TabFocusReason)

    // What lies under the sheet is not to be clicked.
    MouseArea { anchors.fill: parent; hoverEnabled: true }

    Field {
        id: versionField

        objectName: "version"
        anchors { centerIn: parent; verticalCenterOffset: -100 }
        focus: true
        label: qsTr("Version: ")
        placeholderText: qsTr("enter definitions version")

        Accessible.name: qsTr("Version")
    }

    Field {
        id: pathField

        objectName: "path"
        anchors { top: versionField.bottom; topMargin: 10; left: versionField.left }
        label: qsTr("File: ")
        placeholderText: qsTr("enter file path")

        Accessible.name: qsTr("File")
    }

    PButton {
        objectName: "browser"
        anchors { left: pathField.right; leftMargin: 10; top: pathField.top }
        width: 100
        height: QmlDefines.lineHeight
        text: qsTr("Browser")
        onClicked: {
            dialog.active = true
            // The loader's item has no type that Qt 6 knows: the dialog comes with a module that it lacks.
            dialog.item.open() // qmllint disable
        }
    }

    PButton {
        objectName: "upload"
        anchors { top: pathField.bottom; topMargin: 20; horizontalCenter: parent.horizontalCenter }
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

        // Qt 6, whose linter reads this, has no such dialog.
        // qmllint disable
        sourceComponent: FileDialog {
            title: qsTr("Please choose a file")
            onAccepted: pathField.text = Format.localPath(fileUrl)
        }
        // qmllint enable
    }
}
