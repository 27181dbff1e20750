import QtQuick 2.15

PageCase {
    /// The date text of the day @p daysAgo.
    function day(daysAgo) {
        const now = new Date()
        const date = new Date(now.getFullYear(), now.getMonth(), now.getDate() - daysAgo)
        return [date.getFullYear(), date.getMonth() + 1, date.getDate()].join("-")
    }

    function prepare() {
        const reports = {}
        reports[day(0)] = {
            total: { facebook_page_like_type_1: 2, facebook_follow_type_1: 3, zebra: 1234 },
            device_details: {
                "dev-b": { facebook_follow_type_1: 25000 },
                "dev-a": { facebook_follow_type_1: 3, facebook_page_like_type_1: 2 },
                "dev-c": { facebook_follow_type_1: 19, facebook_page_like_type_1: 7, other: 7 },
                "dev-d": { other: 7 }
            }
        }
        reports[day(2)] = { total: { facebook_follow_type_1: 25000 }, device_details: {} }
        Service.reports = reports
    }

    function row(index) {
        return find("reportRow" + index)
    }

    function settled() {
        tryVerify(() => row(0) && find("income", row(0)).text.includes("190"))
    }

    name: "Reports"
    menuRow: 5

    function test_days() {
        compare(post("reports/get")[0].date_list, Array.from({ length: 10 }, (unused, index) => day(index)))
        compare([page.count, text("date", row(0)), text("date", row(2))], [10, day(0), day(2)])
        const jobs = find("jobs", row(0))
        tryVerify(() => jobs.itemAtIndex(2) !== null)
        compare([0, 1, 2].map(index => [text("name", jobs.itemAtIndex(index)), text("value", jobs.itemAtIndex(index))].join(" ")),
                ["facebook_follow_type_1: 3", "facebook_page_like_type_1: 2", "zebra: 1234"])
        compare([jobs.x, jobs.height], [200, 3 * 34 - 4])
        compare(text("income", row(0)), "Estimated income: 190 vnd")
        compare(text("income", row(2)), "Estimated income: 1.000.000 vnd")
        compare([0, 1].map(index => find("noData", row(index)).visible), [false, true])
        compare(text("noData", row(1)), "No data")
        compare([find("summary", row(1)).opacity, find("summary", row(1)).enabled], [0, false])
    }

    function test_nameColumn() {
        const reports = { [day(0)]: { total: { zz: 5, ["w".repeat(1 << 20)]: 4 }, device_details: {} } }
        Service.reports = reports
        page.pullToRefreshReleased()
        tryVerify(() => text("income", row(0)).includes(" 0 "))
        const jobs = find("jobs", row(0))
        tryVerify(() => jobs.itemAtIndex(1) !== null)
        const names = [0, 1].map(index => find("name", jobs.itemAtIndex(index)))
        compare(names[0].width, names[1].width)
        verify(names[0].width > 200)
        compare(names[0].width, Math.min(names[0].implicitWidth, jobs.width - 100))
        verify(find("value", jobs.itemAtIndex(1)).x + 20 < jobs.width)
        reports[day(0)].total = { zz: 5 }
        Service.reports = reports
        page.pullToRefreshReleased()
        tryVerify(() => jobs.count === 1 && jobs.itemAtIndex(0) && find("name", jobs.itemAtIndex(0)).width === 200)
    }

    function test_detailsPanel() {
        const panel = find("incomeDetails")
        verify(!panel.visible)
        click("details", row(0))
        tryCompare(panel, "height", page.height)
        compare([panel.width, panel.mapToItem(page, 0, 0).y], [page.width, 0])
        compare([0, 1, 2, 3].map(index => [text("device", find("incomeRow" + index)), text("income", find("incomeRow" + index))].join()),
                ["Device: dev-a,Estimated income: 190 vnd", "Device: dev-b,Estimated income: 1.0.0 vnd",
                 "Device: dev-c,Estimated income: 1.5 vnd", "Device: dev-d,Estimated income: 0 vnd"])
        // From the panel's list on to the header: the covered rows are out of reach.
        verifyTabs(["incomeRow0", "userBlock", "menuRow0"])
        find("close", panel).forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Backtab)
        compare(window.activeFocusItem.objectName, "menuRow7")
        find("close", panel).forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Return)
        tryCompare(panel, "visible", false)
        compare(panel.height, 0)
        tryVerify(() => find("details", row(0)).visualFocus)
    }

    function test_panelFollowsItsDay() {
        const panel = find("incomeDetails")
        const list = find("incomeView")
        const reports = Service.reports
        for (let i = 0; i < 60; ++i)
            reports[day(0)].device_details["dev-x" + i] = reports[day(2)].device_details["dev-y" + i] = {}
        Service.reports = reports
        page.forceActiveFocus()
        keyClick(Qt.Key_F5)
        tryVerify(() => Object.keys(AppModel.reportList[2].details).length === 60)

        row(0).forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Return)
        tryCompare(panel, "height", page.height)
        list.positionViewAtEnd()
        panel.hide()
        tryCompare(panel, "visible", false)
        click("details", row(2))
        tryCompare(panel, "height", page.height)
        compare([list.contentY - list.originY, list.currentIndex], [0, -1])

        // Another account: its figures come by themselves.
        delete reports[day(2)]
        Service.reports = reports
        AppModel.userInfo.token = ""
        AppModel.userInfo.token = Service.userToken
        AppManager.checkUser()
        tryCompare(list, "count", 0)
        tryVerify(() => text("income", row(0)).includes("190"))
        // As do fresh ones of the open day.
        reports[day(2)] = { total: {}, device_details: { "dev-z": {} } }
        Service.reports = reports
        list.forceActiveFocus()
        keyClick(Qt.Key_F5)
        tryCompare(list, "count", 1)
    }

    function test_keepsItsMargins() {
        for (const size of [[1280, 720], [1280, 900], [1500, 900]]) {
            window.width = size[0]
            window.height = size[1]
            tryCompare(page, "height", size[1] - 100)
            compare([page.x, page.width], [10, find("mainContent").width - 20])
        }
    }
}
