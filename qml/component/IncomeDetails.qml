import QtQuick 2.15
import QtQuick.Controls 2.15
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

    function hide() {
        incomeDetails.height = 0
    }

    anchors.bottom: parent.bottom
    width: parent.width
    height: 0
    visible: height > 0
    clip: true
    radius: 10
    color: "#F5F5F5"

    Keys.onEscapePressed: hide()

    Behavior on height {
        NumberAnimation {
            duration: 700
            easing.type: Easing.OutCubic
        }
    }

    // What lies under the panel is not to be clicked.
    MouseArea {
        anchors.fill: parent
        onWheel: wheel.accepted = true
    }

    Button {
        id: closeButton

        objectName: "close"
        anchors.top: parent.top
        anchors.horizontalCenter: parent.horizontalCenter
        icon.source: "qrc:/images/close_icon.png"
        icon.color: "transparent"

        Accessible.name: qsTr("Close")

        Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
        Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
        Keys.onReleased: event.accepted = event.isAutoRepeat

        onClicked: incomeDetails.hide()

        background: Rectangle {
            implicitWidth: 40
            implicitHeight: 40
            color: "transparent"
            radius: 4

            FocusFrame {
                visible: closeButton.visualFocus
            }
        }
    }

    PListView {
        id: list

        objectName: "incomeView"
        anchors.top: closeButton.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 5
        clip: true
        currentIndex: -1
        model: Format.entries(incomeDetails.model)

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Income by device")

        onPullToRefreshReleased: incomeDetails.pullToRefreshReleased()

        delegate: Rectangle {
            objectName: "incomeRow" + index
            width: list.width
            height: 30
            radius: 5
            color: "#e6f2ff"

            Accessible.role: Accessible.ListItem
            Accessible.name: device.text + ", " + income.text

            Row {
                anchors.left: parent.left
                anchors.leftMargin: 10
                height: parent.height
                spacing: 20

                Text {
                    id: device

                    objectName: "device"
                    width: 200
                    height: parent.height
                    verticalAlignment: Text.AlignVCenter
                    text: qsTr("Device: ") + Format.line(modelData.key)
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                }

                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 1
                    height: parent.height / 2
                    color: "black"
                    opacity: 0.8
                }

                Text {
                    id: income

                    objectName: "income"
                    width: 200
                    height: parent.height
                    verticalAlignment: Text.AlignVCenter
                    text: qsTr("Estimated income: ") + Format.groupedUnpadded(Format.income(modelData.value)) + " vnd"
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                }
            }

            Rectangle {
                anchors.bottom: parent.bottom
                anchors.horizontalCenter: parent.horizontalCenter
                width: parent.width - 10
                height: 1
                color: "#99ccff"
            }
        }

        EmptyNote {
            view: list
            text: qsTr("No devices")
        }
    }
}
