import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../component"

Sheet {
    id: root

    component Label: PlainText {
        anchors.verticalCenter: parent.verticalCenter
        width: 100
        height: QmlDefines.lineHeight
        rightPadding: 5
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 8
        elide: Text.ElideNone
    }

    // What was added before is selected, so that the next text replaces it.
    onVisibleChanged: {
        if (visible) {
            clonesField.selectAll()
            clonesField.forceActiveFocus()
        }
    }

    Column {
        anchors.centerIn: parent
        width: Math.min(800, parent.width)

        Row {
            anchors.horizontalCenter: parent.horizontalCenter

            Label { text: qsTr("Select network: ") }

            OutlineComboBox {
                id: networkBox

                objectName: "networkBox"
                width: 100
                model: ["none", "facebook", "tiktok"]

                Accessible.name: qsTr("Select network: ")
            }

            Item { width: 50; height: 1 }

            Label { text: qsTr("Select profile: ") }

            OutlineComboBox {
                id: profileBox

                objectName: "profileBox"
                width: 200
                model: AppModel.userInfo.farmProfiles
                textRole: "profileName"

                Accessible.name: qsTr("Select profile: ")
            }
        }

        Item { width: 1; height: 10 }

        FieldFrame {
            width: parent.width
            height: 400
            radius: 0
            color: "transparent"
            focused: clonesField.activeFocus

            ScrollView {
                anchors { fill: parent; margins: 1 }
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

        Item { width: 1; height: 20 }

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
