import QtQuick 2.15
import ".."
import "../Format.js" as Format

/// The income of each device on one day; slides up over the page that holds it.
Rectangle {
    id: incomeDetails

    /// A map from device id to a map from job name to count.
    property var model

    signal pullToRefreshReleased()

    function show() {
        list.currentIndex = -1
        list.positionViewAtBeginning()
        incomeDetails.height = Qt.binding(() => incomeDetails.parent.height)
        closeButton.forceActiveFocus(Qt.TabFocusReason)
    }

    function hide() { incomeDetails.height = 0 }

    anchors.bottom: parent.bottom
    width: parent.width
    height: 0
    visible: height > 0
    clip: true
    radius: QmlDefines.panelRadius
    color: QmlDefines.detailsColor

    Keys.onEscapePressed: hide()

    Behavior on height { Slide { duration: 700 } }

    // What lies under the panel is not to be clicked.
    MouseArea {
        anchors.fill: parent
        onWheel: function(wheel) { wheel.accepted = true }
    }

    IconButton {
        id: closeButton

        objectName: "close"
        anchors { top: parent.top; horizontalCenter: parent.horizontalCenter }
        width: 40
        icon.source: "qrc:/images/close_icon.png"
        icon.color: "transparent"

        Accessible.name: qsTr("Close")

        onClicked: incomeDetails.hide()
    }

    PListView {
        id: list

        objectName: "incomeView"
        anchors { fill: parent; margins: 5; topMargin: closeButton.height + 5 }
        model: Format.entries(incomeDetails.model)
        emptyText: qsTr("No devices")

        Accessible.name: qsTr("Income by device")

        onPullToRefreshReleased: incomeDetails.pullToRefreshReleased()

        delegate: Rectangle {
            id: entry

            required property var modelData
            required property int index

            objectName: "incomeRow" + index
            width: list.width
            height: QmlDefines.lineHeight
            radius: QmlDefines.entryRadius
            color: QmlDefines.entryColor

            Accessible.role: Accessible.ListItem
            Accessible.name: device.text + ", " + income.text

            Row {
                anchors { left: parent.left; leftMargin: 10 }
                height: parent.height
                spacing: 20

                PlainText {
                    id: device

                    objectName: "device"
                    width: QmlDefines.nameWidth
                    height: parent.height
                    text: qsTr("Device: ") + Format.line(entry.modelData.key)
                }

                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 1
                    height: parent.height / 2
                    color: QmlDefines.outlineColor
                    opacity: 0.8
                }

                PlainText {
                    id: income

                    objectName: "income"
                    width: QmlDefines.nameWidth
                    height: parent.height
                    text: qsTr("Estimated income: ") + Format.groupedUnpadded(Format.income(entry.modelData.value)) + " vnd"
                }
            }

            Rule {}
        }
    }
}
