import QtQuick 2.15

PageCase {
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
        compare(post("device/list").length, 1)
        tryCompare(find("deviceView"), "count", 3)
        compare(text("head0"), "Device (total: 3)")
        tryVerify(() => text("cloneCount", row(0)) === "2")
        const shown = [0, 1, 2].map(index => ["androidId", "model", "status", "cloneCount", "lastGettingJobs"]
                                    .map(name => text(name, row(index))).join())
        compare(shown, ["aaaa,VX-1,no-verify,2,1 hours 2 minutes ago", "bbbb,VX-1,verified,0,1 hours 2 minutes ago",
                        "cccc,VX-1,unknown,1,1 hours 2 minutes ago"])
        compare([0, 1].map(index => find("connectivity", row(index)).displayText), ["wifi", "cellular"])
        compare(text("label", row(1)), "two")
    }

    function test_oneToolBoxAtATime() {
        let other = -1
        for (const [part, index] of [["androidId", 1], ["label", 0], ["connectivity", 1]]) {
            click(part, row(index))
            tryCompare(find("toolBox", row(index)), "height", 50)
            compare(find("deviceView").currentIndex, index)
            if (other >= 0) {
                tryCompare(find("toolBox", row(other)), "active", false)
                compare(row(other).height, 50)
            }
            other = index
        }
        // Closes the choice that the click has opened.
        keyClick(Qt.Key_Return)
    }

    function test_lastToolBoxIsInView() {
        window.height = 300
        tryCompare(page, "height", 200)
        const toolBox = find("toolBox", openRow(2))
        tryVerify(() => toolBox.mapToItem(find("deviceView"), 0, 50).y <= find("deviceView").height)
    }

    function test_confirmAndDelete() {
        for (const index of [1, 2])
            verify(!find("confirmButton", openRow(index)).enabled)
        click("confirmButton", openRow(0))
        tryVerify(() => text("status", row(0)) === "verified")
        compare(Service.devices.map(entry => entry.status), [1, 1, 9])
        click("deleteButton", openRow(1))
        tryCompare(find("deviceView"), "count", 2)
        compare(Service.devices.map(entry => entry.android_id), ["aaaa", "cccc"])
    }

    function test_save() {
        const item = openRow(0)
        const save = find("saveButton", item)
        verify(!save.enabled)
        click("label", item)
        retype("new <b>")
        verify(save.enabled)
        retype("one")
        verify(!save.enabled)
        keyClick("!")
        find("connectivity", item).forceActiveFocus()
        keyClick(Qt.Key_Down)
        mouseClick(save)
        tryVerify(() => stored(0).connectivity_type === 1)
        compare(stored(0).device_label, "one!")
        tryCompare(save, "enabled", false)
        tryVerify(() => text("notificationText") === "Save device config successful!")
        compare(stored(1), { connectivity_type: 1, device_label: "two" })
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
        verifyTabs(["label"])
        keyClick("x")
        keyClick(Qt.Key_Return)
        verify(find("label", row(1)).activeFocus)
        verifyTabs(["deleteButton", "saveButton"])
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

    function test_failedListStays() {
        tryCompare(find("deviceView"), "count", 3)
        Service.fail("/api/v1/device/list")
        find("deviceView").pullToRefreshReleased()
        tryVerify(() => text("notificationText") === "Load device list failure!")
        compare([text("head0"), find("emptyNote").visible], ["Device (total: 3)", false])
        Service.clearFaults()
        Service.devices = []
        find("deviceView").pullToRefreshReleased()
        tryCompare(find("emptyNote"), "visible", true)
        compare(text("emptyNote"), "No devices")
        compare(text("head0"), "Device (total: 0)")
    }

    function test_editingOutlivesARefresh() {
        const view = find("deviceView")
        const item = openRow(1)
        click("label", item)
        keyClick(Qt.Key_End)
        type(" typed")
        find("label", item).cursorPosition = 3
        // Another row above, a row gone, and other values for what is edited and what is not.
        Service.devices = [device("new", 1, 0, ""), device("bbbb", 0, 0, "other"), device("cccc", 9, 1, "third")]
        view.pullToRefreshReleased()
        tryVerify(() => text("model", row(0)) === "VX-1" && text("status", row(1)) === "no-verify")
        verify(row(1) === item && find("label", item).activeFocus)
        compare([text("label", item), find("label", item).cursorPosition, view.currentIndex], ["two typed", 3, 1])
        compare([find("connectivity", item).displayText, find("connectivity", row(2)).displayText], ["wifi", "cellular"])
        compare([text("label", row(2)), find("toolBox", item).height], ["third", 50])
        type("!")
        click("saveButton", item)
        tryVerify(() => stored(1).device_label === "two! typed")
        // The row that is edited goes; its neighbour takes its place, closed.
        Service.devices = [device("new", 1, 0, ""), device("cccc", 9, 1, "third")]
        view.pullToRefreshReleased()
        tryCompare(view, "count", 2)
        compare([view.currentIndex, row(1).open, text("label", row(1))], [1, false, "third"])
    }

    function test_hostileTexts() {
        Service.devices = hostileTexts.map(({ text }) => Object.assign(device(text, 0, 0, text), { model: text }))
        find("deviceView").pullToRefreshReleased()
        tryCompare(find("deviceView"), "count", hostileTexts.length)
        hostileTexts.forEach(({ text, shown }, index) => {
            for (const name of ["androidId", "model"])
                verifyLine(find(name, row(index)), shown)
            compare(row(index).height, 50)
        })
        // A label that no field can hold is left as it is.
        const last = hostileTexts.length - 1
        verify(!find("saveButton", openRow(last)).enabled)
        find("connectivity", row(last)).forceActiveFocus()
        keyClick(Qt.Key_Down)
        click("saveButton", row(last))
        tryVerify(() => stored(last).connectivity_type === 1)
        compare(stored(last).device_label, hostileTexts[last].text)
    }
}
