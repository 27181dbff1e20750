import QtQuick 2.15
import Velstrand 1.0
import ".."
import "../component"
import "../Format.js" as Format

Item {
    id: page

    readonly property GlobalConfig config: AppModel.globalConfig
    /// What "Apply" would send, by the configuration's property.
    readonly property var pending: ({})

    component Setting: GlobalSettingBaseItem {
        property string key

        defaultValue: page.config ? page.config[key] : qsTr("loading ...")
        onValueEdited: function(newValue) {
            page.pending[key] = newValue
            if (key === "vsManagerAppVersion")
                console.log("newManagerAppVer: " + Format.integer(newValue))
        }
    }

    function apply() {
        AppManager.applyGlobalSetting(Format.integer(pending.vsAndroidAppVersion), pending.vsAndroidAppPath || "",
                                      Format.integer(pending.facebookAppVersion),
                                      Format.integer(pending.vsManagerAppVersion), pending.vsManagerAppPath || "",
                                      Format.integer(pending.vsDefinitionsVersion))
    }

    objectName: "adminSettingsPage"

    Column {
        anchors { top: parent.top; horizontalCenter: parent.horizontalCenter }
        width: parent.width - 40
        spacing: 1
        enabled: !uploadSheet.visible

        Repeater {
            // "verion": the spelling is part of the interface; kept.
            model: [
                { name: "androidAppVersion", key: "vsAndroidAppVersion", label: qsTr("VS android app verion: ") },
                { name: "androidAppPath", key: "vsAndroidAppPath", label: qsTr("VS android app path: ") },
                { name: "facebookAppVersion", key: "facebookAppVersion", label: qsTr("Facebook app verion: ") },
                { name: "managerAppVersion", key: "vsManagerAppVersion", label: qsTr("VS manager app verion: ") },
                { name: "managerAppPath", key: "vsManagerAppPath", label: qsTr("VS manager app path: ") }
            ]

            delegate: Setting {
                required property var modelData

                objectName: modelData.name
                labelText: modelData.label
                key: modelData.key
            }
        }

        Item {
            width: parent.width
            height: QmlDefines.rowHeight

            Item {
                width: parent.width - uploadButton.width - 10
                height: parent.height

                Setting {
                    objectName: "definitionsVersion"
                    labelText: qsTr("VS definitions version: ")
                    key: "vsDefinitionsVersion"
                }
            }

            PButton {
                id: uploadButton

                objectName: "uploadNewDefinitions"
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
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
                height: QmlDefines.buttonHeight
                text: qsTr("Apply")
                enabled: page.config !== null
                onClicked: page.apply()
            }
        }
    }

    UploadSheet {
        id: uploadSheet

        objectName: "uploadSheet"
        visible: false
        onVisibleChanged: if (!visible) uploadButton.forceActiveFocus(Qt.TabFocusReason)
    }
}
