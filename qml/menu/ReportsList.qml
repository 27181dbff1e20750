import QtQuick 2.15
import "../component"

PListView {
    id: page

    function slimWidth() { return parent ? parent.width - 20 : 0 }

    function focusCurrentRow() { (currentItem || page).forceActiveFocus(Qt.TabFocusReason) }

    objectName: "reportsPage"
    width: slimWidth()
    anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
    activeFocusOnTab: !incomeDetails.visible
    interactive: !incomeDetails.visible
    model: AppModel.reportList

    Accessible.name: qsTr("Make money")

    // The Loader resizes the page whenever its own size changes, past the binding.
    onWidthChanged: if (parent) width = Qt.binding(slimWidth)
    onPullToRefreshReleased: AppManager.getReports()

    Component.onCompleted: AppManager.getReports()

    Connections {
        target: AppModel.userInfo

        // Another account, another farm.
        function onIsValidatedChanged() {
            if (AppModel.userInfo.isValidated)
                AppManager.getReports()
        }
    }

    delegate: ReportRow {
        id: row

        enabled: !incomeDetails.visible
        onDetailsRequested: {
            // The panel follows the day, also when the next user's figures take its place.
            const report = row.modelData
            incomeDetails.model = Qt.binding(() => report.details)
            incomeDetails.show()
        }
    }

    IncomeDetails {
        id: incomeDetails

        objectName: "incomeDetails"
        parent: page
        z: 2
        onPullToRefreshReleased: AppManager.getReports()
        // The rows under the panel are enabled again a moment later.
        onVisibleChanged: if (!visible && page.activeFocus) Qt.callLater(page.focusCurrentRow)
    }
}
