import QtQuick 2.15
import ".."
import "../component"

Item {
    id: page

    /// Asks for another page, by the id of its menu row.
    signal pageRequested(int id)

    objectName: "deviceListPage"

    Component.onCompleted: AppManager.getDeviceList()

    Row {
        id: heads

        anchors { top: parent.top; horizontalCenter: parent.horizontalCenter }
        width: parent.width - 20
        height: QmlDefines.lineHeight

        Repeater {
            model: [
                qsTr("Device (total: ") + list.count + ")", qsTr("Model"), qsTr("Status"), qsTr("Clone"),
                qsTr("Connectivity"), qsTr("Label"), qsTr("Last Getting Jobs")
            ]

            delegate: ColumnHead {
                required property string modelData
                required property int index

                objectName: "head" + index
                width: heads.width / 7
                height: heads.height
                text: modelData
            }
        }
    }

    Rectangle {
        anchors { top: heads.bottom; topMargin: 10; horizontalCenter: parent.horizontalCenter }
        width: parent.width - 20
        height: parent.height - 50
        color: QmlDefines.sheetColor

        RecordView {
            id: list

            objectName: "deviceView"
            anchors.fill: parent
            spacing: 2
            model: AppModel.deviceModel
            emptyText: qsTr("No devices")

            Accessible.name: qsTr("Devices")

            onPullToRefreshReleased: AppManager.getDeviceList()

            delegate: DeviceRow { onDetailsRequested: page.pageRequested(QmlDefines._CLONES) }
        }
    }
}
