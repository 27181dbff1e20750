import QtQuick 2.15
import ".."
import "../component"

Item {
    id: page

    /// Opens the clone page, through the menu that stands beside the page area.
    function showClones() {
        const siblings = page.parent.parent.children
        for (let i = 0; i < siblings.length; ++i) {
            if (siblings[i].objectName === "mainMenu")
                siblings[i].currentIndex = QmlDefines._CLONES
        }
    }

    objectName: "deviceListPage"

    Component.onCompleted: AppManager.getDeviceList()

    Row {
        id: heads

        anchors.top: parent.top
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width - 20
        height: 30

        Repeater {
            model: [
                qsTr("Device (total: ") + list.count + ")", qsTr("Model"), qsTr("Status"), qsTr("Clone"),
                qsTr("Connectivity"), qsTr("Label"), qsTr("Last Getting Jobs")
            ]

            delegate: Item {
                width: heads.width / 7
                height: heads.height

                Rectangle {
                    width: 1
                    height: parent.height
                    color: "#4d4d4d"
                }

                Text {
                    objectName: "head" + index
                    anchors.fill: parent
                    padding: 4
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    text: modelData
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    font.bold: true
                }
            }
        }
    }

    Rectangle {
        anchors.top: heads.bottom
        anchors.topMargin: 10
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width - 20
        height: parent.height - 50
        color: "white"

        PListView {
            id: list

            objectName: "deviceView"
            anchors.fill: parent
            clip: true
            spacing: 2
            currentIndex: -1
            model: AppModel.deviceList

            Accessible.role: Accessible.List
            Accessible.name: qsTr("Devices")

            onPullToRefreshReleased: AppManager.getDeviceList()

            delegate: DeviceRow {
                onDetailsRequested: page.showClones()
            }

            EmptyNote {
                objectName: "emptyNote"
                view: list
                text: qsTr("No devices")
            }
        }
    }
}
