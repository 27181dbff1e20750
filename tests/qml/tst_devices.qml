import QtQuick 2.15
import QtTest 1.15

PageCase {
    id: suite

    function device(id, status, connectivity, label) {
        return { android_id: id, model: "VX-1", status: status, user_id: "u1", last_getting_job_ts: Date.now() - 3725000,
                 device_config: { connectivity_type: connectivity, device_label: label } }
    }

    function prepare() {
        Service.devices = [device("aaaa", 0, 0, "one"), device("bbbb", 1, 1, "two"), device("cccc", 9, 0, "")]
        const clone = Service.clones[0]
        Service.clones = ["aaaa", "cccc", "aaaa", ""].map(id => Object.assign({}, clone, { id: "c" + id, device_id: id }))
    }

    function row(index) {
        tryVerify(() => find("deviceRow" + index) !== null)
        return find("deviceRow" + index)
    }

    function openRow(index) {
        mouseClick(row(index), 10, 25)
        tryCompare(find("toolBox", row(index)), "height", 50)
        return row(index)
    }

    function stored(index) {
        return Service.devices[index].device_config
    }

    name: "Devices"
    menuRow: 1

    function test_showsTheFarm() {
        const view = find("deviceView")
        tryCompare(view, "count", 3)
        compare(text("head0"), "Device (total: 3)")
        compare([view.width, view.height], [page.width - 20, page.height - 50])
        tryVerify(() => text("cloneCount", row(0)) === "2")
        const shown = [0, 1, 2].map(index => ["androidId", "model", "status", "cloneCount", "lastGettingJobs"]
                                    .map(name => text(name, row(index))).join())
        compare(shown, ["aaaa,VX-1,no-verify,2,1 hours 2 minutes ago", "bbbb,VX-1,verified,0,1 hours 2 minutes ago",
                        "cccc,VX-1,unknown,1,1 hours 2 minutes ago"])
        compare([0, 1].map(index => find("connectivity", row(index)).displayText), ["wifi", "cellular"])
        compare(text("label", row(1)), "two")
        compare(row(0).height, 50)
    }

    function test_oneToolBoxAtATime_data() {
        return [{ tag: "row", part: "androidId" }, { tag: "label field", part: "label" }, { tag: "choice", part: "connectivity" }]
    }

    function test_oneToolBoxAtATime(data) {
        for (const index of [1, 0]) {
            click(data.part, row(index))
            tryCompare(find("toolBox", row(index)), "height", 50)
            tryCompare(find("toolBox", row(1 - index)), "active", false)
            compare([find("deviceView").currentIndex, row(1 - index).height], [index, 50])
            // Closes the choice that a click has opened.
            if (data.part === "connectivity")
                keyClick(Qt.Key_Return)
        }
    }

    function test_confirm() {
        verify(!find("confirmButton", openRow(1)).enabled)
        verify(find("confirmButton", openRow(0)).enabled)
        click("confirmButton", row(0))
        tryVerify(() => text("status", row(0)) === "verified")
        compare(Service.devices.map(entry => entry.status), [1, 1, 9])
    }

    function test_delete() {
        click("deleteButton", openRow(1))
        tryCompare(find("deviceView"), "count", 2)
        compare(Service.devices.map(entry => entry.android_id), ["aaaa", "cccc"])
    }

    function test_save_data() {
        return [
            { tag: "label", label: "new <b>", index: 0 },
            { tag: "connectivity", label: "one", index: 1 },
            { tag: "both", label: "", index: 1 }
        ]
    }

    function test_save(data) {
        const item = openRow(0)
        const save = find("saveButton", item)
        verify(!save.enabled)
        if (data.label !== "one") {
            click("label", item)
            keyClick(Qt.Key_A, Qt.ControlModifier)
            keyClick(Qt.Key_Delete)
            type(data.label)
        }
        if (data.index === 1) {
            find("connectivity", item).forceActiveFocus()
            keyClick(Qt.Key_Down)
        }
        tryCompare(save, "enabled", true)
        mouseClick(save)
        tryVerify(() => stored(0).device_label === data.label && stored(0).connectivity_type === data.index)
        tryCompare(save, "enabled", false)
        tryVerify(() => text("notificationText") === "Save device config successful!")
        compare(stored(1), { connectivity_type: 1, device_label: "two" })

        find("deviceView").forceActiveFocus()
        keyClick(Qt.Key_F5)
        tryVerify(() => find("deviceRow0") !== item)
        compare(text("label", row(0)), data.label)
    }

    function test_keyboard() {
        const view = find("deviceView")
        tryCompare(view, "count", 3)
        view.forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Down)
        compare(view.currentIndex, 1)
        keyClick(Qt.Key_Return)
        verify(find("connectivity", row(1)).activeFocus)
        tryCompare(find("toolBox", row(1)), "height", 50)
        keyClick(Qt.Key_Tab)
        verify(find("label", row(1)).activeFocus)
        keyClick("x")
        keyClick(Qt.Key_Return)
        verify(find("label", row(1)).activeFocus)
        keyClick(Qt.Key_Tab)
        verify(find("deleteButton", row(1)).activeFocus)
        keyClick(Qt.Key_Tab)
        keyClick(Qt.Key_Return)
        tryVerify(() => stored(1).device_label === "twox")
        keyClick(Qt.Key_Escape)
        verify(row(1).activeFocus)
        tryCompare(row(1), "height", 50)
        keyClick(Qt.Key_Up)
        verify(row(0).activeFocus)
    }

    function test_detailsOpensTheClones() {
        click("detailsButton", openRow(2))
        compare(find("mainMenu").currentIndex, 2)
        tryVerify(() => find("cloneView") !== null && find("cloneView").count === 4)
    }

    function test_emptyFarmSaysSo_data() {
        return [{ tag: "empty", fault: "None" }, { tag: "failing", fault: "HttpError" }]
    }

    function test_emptyFarmSaysSo(data) {
        tryCompare(find("deviceView"), "count", 3)
        verify(!find("emptyNote").visible)
        Service.devices = []
        Service.setFault("/api/v1/device/list", data.fault)
        find("deviceView").pullToRefreshReleased()
        tryCompare(find("emptyNote"), "visible", true)
        compare(text("head0"), "Device (total: 0)")
    }

    function test_hostileText_data() {
        return hostileTexts()
    }

    function test_hostileText(data) {
        const hostile = device(data.text, 0, 0, data.text)
        hostile.model = data.text
        Service.devices = [hostile]
        find("deviceView").pullToRefreshReleased()
        tryCompare(find("deviceView"), "count", 1)
        for (const name of ["androidId", "model"])
            verifyLine(find(name, row(0)), data.shown)
        compare(row(0).height, 50)
        verify(!find("saveButton", openRow(0)).enabled)
        find("connectivity", row(0)).forceActiveFocus()
        keyClick(Qt.Key_Down)
        click("saveButton", row(0))
        tryVerify(() => stored(0).connectivity_type === 1)
        compare(stored(0).device_label, data.text)
    }
}
