import QtQuick 2.15
import "../component"

PListView {
    id: page

    objectName: "reportsPage"
    anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
    clip: true
    spacing: 10
    currentIndex: -1
    interactive: !incomeDetails.visible
    model: AppModel.reportList

    Accessible.role: Accessible.List
    Accessible.name: qsTr("Make money")

    // The Loader stretches the page to its own width whenever that changes.
    onWidthChanged: {
        if (parent)
            width = Qt.binding(() => page.parent ? page.parent.width - 20 : 0)
    }
    onPullToRefreshReleased: AppManager.getReports()

    Component.onCompleted: AppManager.getReports()

    delegate: ReportRow {
        onDetailsRequested: {
            incomeDetails.model = modelData.details
            incomeDetails.show()
        }
    }

    IncomeDetails {
        id: incomeDetails

        objectName: "incomeDetails"
        parent: page
        z: 2
    }
}
