import QtQuick 2.15
import Velstrand 1.0
import ".."
import "../component"
import "../Format.js" as Format

/// One day of the report page: its date, its jobs and what they earned.
ListRow {
    id: row

    required property int index
    required property ReportsByDate modelData
    readonly property var totals: modelData.data
    readonly property bool empty: jobs.length === 0
    property var jobs: []
    /// As wide as the widest name of this day needs it.
    property real nameWidth: QmlDefines.nameWidth

    signal detailsRequested()

    function open(event) {
        if (!empty && !event.isAutoRepeat)
            detailsRequested()
    }

    objectName: "reportRow" + index
    height: Math.max(jobList.height, empty ? QmlDefines.lineHeight : QmlDefines.buttonHeight) + 10

    Accessible.name: modelData.date

    Keys.onReturnPressed: function(event) { open(event) }
    Keys.onEnterPressed: function(event) { open(event) }

    onTotalsChanged: {
        nameWidth = QmlDefines.nameWidth
        jobs = Format.entries(totals)
    }

    PlainText {
        objectName: "date"
        anchors { left: parent.left; leftMargin: 20; verticalCenter: parent.top; verticalCenterOffset: 15 }
        padding: 10
        text: Format.line(row.modelData.date)
    }

    PlainText {
        objectName: "noData"
        x: QmlDefines.nameWidth
        height: QmlDefines.lineHeight
        visible: row.empty
        text: qsTr("No data")
        color: QmlDefines.dimColor
    }

    ListView {
        id: jobList

        objectName: "jobs"
        x: QmlDefines.nameWidth
        width: summary.x - x
        height: Math.max(0, count * (QmlDefines.lineHeight + spacing) - spacing)
        interactive: false
        spacing: 4
        model: row.jobs

        delegate: Rectangle {
            id: entry

            required property var modelData

            width: jobList.width
            height: QmlDefines.lineHeight
            radius: QmlDefines.entryRadius
            color: QmlDefines.entryColor

            PlainText {
                id: name

                objectName: "name"
                width: Math.min(row.nameWidth, parent.width - 100)
                height: parent.height
                leftPadding: 10
                text: Format.line(entry.modelData.key) + ":"

                // The padding is the column's room beside the widest name.
                onImplicitWidthChanged: row.nameWidth = Math.max(row.nameWidth, implicitWidth)
            }

            PlainText {
                objectName: "value"
                anchors { left: name.right; leftMargin: 10; right: parent.right }
                height: parent.height
                text: Format.line(String(entry.modelData.value))
            }
        }
    }

    Item {
        id: summary

        objectName: "summary"
        anchors.right: parent.right
        width: 400
        height: QmlDefines.buttonHeight
        opacity: row.empty ? 0 : 1
        enabled: !row.empty

        PlainText {
            objectName: "income"
            anchors { left: parent.left; leftMargin: 20; right: details.left }
            height: parent.height
            text: qsTr("Estimated income: ") + Format.grouped(Format.income(row.totals)) + " vnd"
        }

        PButton {
            id: details

            objectName: "details"
            anchors { right: parent.right; rightMargin: 20 }
            width: QmlDefines.buttonWidth
            height: QmlDefines.buttonHeight
            text: qsTr("Details")
            onActiveFocusChanged: if (activeFocus) row.view.currentIndex = row.index
            onClicked: row.detailsRequested()
        }
    }

    Rule {}
}
