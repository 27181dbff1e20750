import QtQuick 2.15
import "../component"
import "../Format.js" as Format

Item {
    id: page

    readonly property var config: AppModel.globalConfig

    // What "Apply" would send.
    property int newAndroidAppVer
    property string newAndroidAppPath
    property int newFacebookAppVer
    property int newManagerAppVer
    property string newManagerAppPath
    property int newDefinitionsVer

    objectName: "adminSettingsPage"

    Column {
        anchors.top: parent.top
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width - 40
        spacing: 1
        enabled: !uploadSheet.visible

        GlobalSettingBaseItem {
            objectName: "androidAppVersion"
            labelText: qsTr("VS android app verion: ")
            defaultValue: page.config ? page.config.vsAndroidAppVersion : qsTr("loading ...")
            onValueEdited: page.newAndroidAppVer = Format.integer(newValue)
        }

        GlobalSettingBaseItem {
            objectName: "androidAppPath"
            labelText: qsTr("VS android app path: ")
            defaultValue: page.config ? page.config.vsAndroidAppPath : qsTr("loading ...")
            onValueEdited: page.newAndroidAppPath = newValue
        }

        GlobalSettingBaseItem {
            objectName: "facebookAppVersion"
            labelText: qsTr("Facebook app verion: ")
            defaultValue: page.config ? page.config.facebookAppVersion : qsTr("loading ...")
            onValueEdited: page.newFacebookAppVer = Format.integer(newValue)
        }

        GlobalSettingBaseItem {
            objectName: "managerAppVersion"
            labelText: qsTr("VS manager app verion: ")
            defaultValue: page.config ? page.config.vsManagerAppVersion : qsTr("loading ...")
            onValueEdited: {
                page.newManagerAppVer = Format.integer(newValue)
                console.log("newManagerAppVer: " + page.newManagerAppVer)
            }
        }

        GlobalSettingBaseItem {
            objectName: "managerAppPath"
            labelText: qsTr("VS manager app path: ")
            defaultValue: page.config ? page.config.vsManagerAppPath : qsTr("loading ...")
            onValueEdited: page.newManagerAppPath = newValue
        }

        Item {
            width: parent.width
            height: 50

            Item {
                width: parent.width - uploadButton.width - 10
                height: parent.height

                GlobalSettingBaseItem {
                    objectName: "definitionsVersion"
                    labelText: qsTr("VS definitions version: ")
                    defaultValue: page.config ? page.config.vsDefinitionsVersion : qsTr("loading ...")
                    onValueEdited: page.newDefinitionsVer = Format.integer(newValue)
                }
            }

            PButton {
                id: uploadButton

                objectName: "uploadNewDefinitions"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                height: parent.height - 20
                text: qsTr("Upload new definitions")
                enabled: page.config !== null
                onClicked: uploadSheet.visible = true
            }
        }

        Item {
            width: parent.width
            height: 80

            PButton {
                objectName: "apply"
                anchors.centerIn: parent
                width: 60
                height: 40
                text: qsTr("Apply")
                enabled: page.config !== null
                onClicked: AppManager.applyGlobalSetting(page.newAndroidAppVer, page.newAndroidAppPath,
                                                         page.newFacebookAppVer, page.newManagerAppVer,
                                                         page.newManagerAppPath, page.newDefinitionsVer)
            }
        }
    }

    UploadSheet {
        id: uploadSheet

        objectName: "uploadSheet"
        anchors.fill: parent
        visible: false
        onVisibleChanged: {
            if (!visible)
                uploadButton.forceActiveFocus(Qt.TabFocusReason)
        }
    }
}
