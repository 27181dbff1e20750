import QtQuick 2.15
import "../component"
import "../Format.js" as Format

/// One day of the report page: its date, its jobs and what they earned.
FocusScope {
    id: row

    readonly property var view: ListView.view
    readonly property var totals: modelData.data
    readonly property bool empty: jobs.length === 0
    property var jobs: []
    /// As wide as the widest name of this day needs it.
    property real nameWidth: 200

    signal detailsRequested()

    objectName: "reportRow" + index
    width: view ? view.width : 0
    height: Math.max(jobList.height, empty ? 30 : 40) + 10

    Accessible.role: Accessible.ListItem
    Accessible.name: modelData.date

    Keys.onReturnPressed: if (!empty && !event.isAutoRepeat) detailsRequested()
    Keys.onEnterPressed: if (!empty && !event.isAutoRepeat) detailsRequested()

    onTotalsChanged: {
        nameWidth = 200
        jobs = Format.entries(totals)
    }

    Text {
        objectName: "date"
        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.verticalCenter: parent.top
        anchors.verticalCenterOffset: 15
        padding: 10
        text: Format.line(modelData.date)
        textFormat: Text.PlainText
    }

    Text {
        objectName: "noData"
        x: 200
        height: 30
        visible: row.empty
        verticalAlignment: Text.AlignVCenter
        text: qsTr("No data")
        textFormat: Text.PlainText
        color: "grey"
    }

    ListView {
        id: jobList

        objectName: "jobs"
        x: 200
        width: summary.x - x
        height: Math.max(0, count * 34 - spacing)
        interactive: false
        spacing: 4
        model: row.jobs

        delegate: Rectangle {
            width: jobList.width
            height: 30
            radius: 5
            color: "#e6f2ff"

            Text {
                id: name

                objectName: "name"
                width: Math.min(row.nameWidth, parent.width - 100)
                height: parent.height
                leftPadding: 10
                verticalAlignment: Text.AlignVCenter
                text: Format.line(modelData.key) + ":"
                textFormat: Text.PlainText
                elide: Text.ElideRight

                // The padding is the column's room beside the widest name.
                onImplicitWidthChanged: row.nameWidth = Math.max(row.nameWidth, implicitWidth)
            }

            Text {
                objectName: "value"
                anchors.left: name.right
                anchors.leftMargin: 10
                anchors.right: parent.right
                height: parent.height
                verticalAlignment: Text.AlignVCenter
                text: Format.line(String(modelData.value))
                textFormat: Text.PlainText
                elide: Text.ElideRight
            }
        }
    }

    Item {
        id: summary

        objectName: "summary"
        anchors.right: parent.right
        width: 400
        height: 40
        opacity: row.empty ? 0 : 1
        enabled: !row.empty

        Text {
            objectName: "income"
            anchors.left: parent.left
            anchors.leftMargin: 20
            anchors.right: details.left
            height: parent.height
            verticalAlignment: Text.AlignVCenter
            text: qsTr("Estimated income: ") + Format.grouped(Format.income(row.totals)) + " vnd"
            textFormat: Text.PlainText
            elide: Text.ElideRight
        }

        PButton {
            id: details

            objectName: "details"
            anchors.right: parent.right
            anchors.rightMargin: 20
            width: 80
            height: 40
            text: qsTr("Details")
            onActiveFocusChanged: {
                if (activeFocus)
                    row.view.currentIndex = index
            }
            onClicked: row.detailsRequested()
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
