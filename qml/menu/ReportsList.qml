import QtQuick 2.15
import "../component"

PListView {
    id: page

    function slimWidth() {
        return parent ? parent.width - 20 : 0
    }

    function focusCurrentRow() {
        (currentItem || page).forceActiveFocus(Qt.TabFocusReason)
    }

    objectName: "reportsPage"
    width: slimWidth()
    anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
    clip: true
    spacing: 10
    currentIndex: -1
    activeFocusOnTab: !incomeDetails.visible
    interactive: !incomeDetails.visible
    model: AppModel.reportList

    header: Item {
        height: 10
    }

    Accessible.role: Accessible.List
    Accessible.name: qsTr("Make money")

    // The Loader stretches the page with every change of its own size, unknown to the binding.
    onWidthChanged: {
        if (parent)
            width = Qt.binding(slimWidth)
    }
    onPullToRefreshReleased: AppManager.getReports()

    Component.onCompleted: AppManager.getReports()

    delegate: ReportRow {
        enabled: !incomeDetails.visible
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
        // The rows under the panel are enabled again a moment later.
        onVisibleChanged: {
            if (!visible && page.activeFocus)
                Qt.callLater(page.focusCurrentRow)
        }
    }
}
