import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../component"

Sheet {
    id: root

    signal closed()

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
    onVisibleChanged: if (visible) clones.selectAll()

    Component.onCompleted: clones.selectAll()

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
                width: QmlDefines.nameWidth
                model: AppModel.userInfo.farmProfiles
                textRole: "profileName"

                Accessible.name: qsTr("Select profile: ")
            }
        }

        Item { width: 1; height: 10 }

        LinesField {
            id: clones

            width: parent.width
            height: 400
            focus: true
            placeholderText: "Enter Clones (format: UID|PASSWORD|2FA)"
        }

        Item { width: 1; height: 20 }

        PButton {
            objectName: "addButton"
            anchors.horizontalCenter: parent.horizontalCenter
            width: QmlDefines.buttonWidth
            height: 50
            text: qsTr("Add")
            enabled: root.visible && !clones.empty && networkBox.currentText !== "none"
            onClicked: {
                AppManager.addClone(clones.text(), networkBox.currentText, profileBox.currentText)
                root.closed()
            }
        }
    }
}
