import QtQuick 2.15
import QtQuick.Controls 2.15
import "../component"

FocusScope {
    id: root

    // What was added before is selected, so that the next text replaces it.
    onVisibleChanged: {
        if (visible) {
            clonesField.selectAll()
            clonesField.forceActiveFocus()
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "white"
        opacity: 0.98
    }

    Column {
        anchors.centerIn: parent
        width: Math.min(800, parent.width)

        Row {
            anchors.horizontalCenter: parent.horizontalCenter

            Text {
                anchors.verticalCenter: parent.verticalCenter
                width: 100
                height: 30
                rightPadding: 5
                verticalAlignment: Text.AlignVCenter
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 8
                text: qsTr("Select network: ")
                textFormat: Text.PlainText
            }

            OutlineComboBox {
                id: networkBox

                objectName: "networkBox"
                width: 100
                model: ["none", "facebook", "tiktok"]

                Accessible.name: qsTr("Select network: ")
            }

            Item {
                width: 50
                height: 1
            }

            Text {
                anchors.verticalCenter: parent.verticalCenter
                width: 100
                height: 30
                rightPadding: 5
                verticalAlignment: Text.AlignVCenter
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 8
                text: qsTr("Select profile: ")
                textFormat: Text.PlainText
            }

            OutlineComboBox {
                id: profileBox

                objectName: "profileBox"
                width: 200
                model: AppModel.userInfo.farmProfiles
                textRole: "profileName"

                Accessible.name: qsTr("Select profile: ")
            }
        }

        Item {
            width: 1
            height: 10
        }

        Rectangle {
            width: parent.width
            height: 400
            color: "transparent"
            border.color: clonesField.activeFocus ? "#4d94ff" : "grey"
            border.width: 1

            ScrollView {
                anchors.fill: parent
                anchors.margins: 1
                clip: true

                TextArea {
                    id: clonesField

                    objectName: "clonesField"
                    verticalAlignment: TextArea.AlignTop
                    placeholderText: "Enter Clones (format: UID|PASSWORD|2FA)"
                    textFormat: TextEdit.PlainText
                    selectByMouse: true

                    Accessible.name: placeholderText

                    // The tabulator leads on, it is no part of a clone.
                    Keys.priority: Keys.BeforeItem
                    Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
                    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                }
            }
        }

        Item {
            width: 1
            height: 20
        }

        PButton {
            objectName: "addButton"
            anchors.horizontalCenter: parent.horizontalCenter
            width: 80
            height: 50
            text: qsTr("Add")
            enabled: root.visible && clonesField.length > 0 && networkBox.currentText !== "none"
            onClicked: {
                AppManager.addClone(clonesField.text, networkBox.currentText, profileBox.currentText)
                root.visible = false
            }
        }
    }
}
