import QtQuick 2.15

ClonePageCase {
    name: "Clones"

    function test_showsTheFarm() {
        const shown = [0, 1, 2, 3, 5].map(place => ["number", "uid", "network", "deviceId", "status", "restriction"]
                                          .map(name => text(name, row(place))).join())
        compare(shown, ["1,100,facebook,dev-a,live,none", "2,101,facebook,dev-b,getting,follow | like",
                        "3,102,facebook,dev-a,checkpoint,follow | like | comment | like_page",
                        "4,103,facebook,dev-c,stored,like_page", "6,105,facebook,,unknown,none"])
        compare(text("farmProfile", row(1)), Service.clones[1].farm_profile)
        compare([0, 1, 2, 3, 4, 5].map(column => find("filter" + column).enabled), [true, false, true, true, false, true])
        compare(selection(), [])
    }

    function test_filters_data() {
        const profiles = Object.keys(Service.user(Service.adminToken).farm_profiles)
        return [
            { tag: "uids, blank lines, blanks", filters: { 0: "\n 104 \n\n100\r\n" }, expected: [1, 5] },
            { tag: "status words", filters: { 3: "live\nstored" }, expected: [1, 4, 5] },
            { tag: "all four", filters: { 0: "100\n104\n101", 2: "dev-b\ndev-a", 3: "live", 5: profiles[0] },
              expected: [1, 5] },
            { tag: "none passes all", filters: { 0: "100", 2: "dev-b" }, expected: [] }
        ]
    }

    function test_filters(data) {
        for (const column in data.filters)
            setFilter(column, data.filters[column])
        verifyNumbers(data.expected)
        const note = find("emptyNote")
        compare([note.visible, note.text], [data.expected.length === 0, "No clones pass the filter"])
        for (const column in data.filters)
            setFilter(column, "")
        verifyNumbers([1, 2, 3, 4, 5, 6])
    }

    function test_filterStays() {
        setFilter(2, "dev-b")
        verifyNumbers([2, 5])
        Service.clones = [clone(7, "107", "dev-b", 1, "", 1)].concat(Service.clones)
        find("cloneView").forceActiveFocus()
        keyClick(Qt.Key_F5)
        verifyNumbers([1, 3, 6])
        open(0)
        open(2)
        compare(AppModel.totalFilteredClones, 3)
    }

    function test_placeOutlivesARefresh_data() {
        const few = [0, 3, 7]
        const many = Array.from({ length: 2600 }, (unused, index) => index * 2)
        return [{ tag: "by ranges", size: 100, at: few }, { tag: "by a reset", size: 5200, at: many }]
    }

    /// Clones come above, the one at the top goes; what is below it moves up, and the rest stays where it was.
    function test_placeOutlivesARefresh(data) {
        const view = find("cloneView")
        const old = Array.from({ length: data.size }, (unused, index) => clone(index, "u" + index, "dev", 1, "", 1))
        Service.clones = old
        view.pullToRefreshReleased()
        tryCompare(view, "count", data.size)
        view.currentIndex = 34
        view.contentY = view.originY + 30 * 50 + 13
        tryVerify(() => row(34) !== null)
        controlClick(33)
        AppModel.cloneList[70].selected = true
        const changed = []
        old.forEach((entry, index) => {
            if (data.at.includes(index))
                changed.push(clone("new" + index, "n" + index, "dev", 1, "", 1))
            if (index !== 30)
                changed.push(entry)
        })
        Service.clones = changed
        view.pullToRefreshReleased()
        tryCompare(view, "count", changed.length)
        const above = data.at.filter(index => index <= 30).length
        compare(view.currentIndex, 33 + data.at.filter(index => index <= 33).length - 1)
        tryVerify(() => row(30 + above) !== null)
        compare(text("uid", row(30 + above)), "u31")
        compare(row(30 + above).y - view.contentY, -13)
        compare(text("ticksText"), "2 selected")
        compare(find("rowBackground", row(changed.findIndex(entry => entry.uid === "u33"))).color.a > 0, true)
        // Nothing there to hold on to.
        Service.clones = old.slice(0, 3)
        view.pullToRefreshReleased()
        tryCompare(view, "count", 3)
        compare([view.contentY - view.originY, view.currentIndex, find("ticksNote").visible], [0, 2, false])
    }

    function test_ticksNote() {
        verify(!find("ticksNote").visible)
        controlClick(1)
        controlClick(4)
        controlClick(2)
        verify(find("ticksNote").visible)
        compare(text("ticksText"), "3 selected")
        setFilter(2, "dev-b")
        compare(text("ticksText"), "3 selected, 1 hidden by the filter")
        setFilter(2, "")
        compare(text("ticksText"), "3 selected")
        mouseClick(row(0))
        verify(!find("ticksNote").visible)
    }

    function test_failedListStays() {
        controlClick(1)
        Service.fail("/api/v1/clone/list")
        find("cloneView").pullToRefreshReleased()
        tryVerify(() => text("notificationText") === "Load clone list failure!")
        verifyNumbers([1, 2, 3, 4, 5, 6])
        compare(text("ticksText"), "1 selected")
    }

    function test_manyLinesInAFilter_data() {
        const control = Qt.ControlModifier
        return [
            { tag: "Escape", leave: () => keyClick(Qt.Key_Escape), shown: "", rows: 6 },
            { tag: "Backspace", leave: () => keyClick(Qt.Key_Backspace), shown: "", rows: 6 },
            { tag: "mark", leave: () => click("filter0/mark"), shown: "", rows: 6 },
            { tag: "typing", leave: () => type("101"), shown: "101", rows: 1 },
            { tag: "pasting one line", leave: () => {
                AppIO.sendToClibboard("103\r\n")
                keyClick(Qt.Key_V, control) }, shown: "103", rows: 1 },
            { tag: "undo", leave: () => keyClick(Qt.Key_Z, control), shown: "1x02", rows: 0 },
            { tag: "typing and undo", leave: () => {
                type("1")
                while (find("filter0").canUndo)
                    keyClick(Qt.Key_Z, control)
                keyClick(Qt.Key_Z, control) }, shown: "", rows: 1, still: true }
        ]
    }

    function test_manyLinesInAFilter(data) {
        const filter = find("filter0")
        const uids = Array.from({ length: 10000 }, (unused, index) => "1000" + (1234567890 + index))
        uids[9999] = "10"
        AppIO.sendToClibboard(uids.join("\n"))
        click("filter0")
        type("1x02")
        keyClick(Qt.Key_Left)
        keyClick(Qt.Key_Left, Qt.ShiftModifier)
        // In the place of the nought that is selected; with the 2 behind it the last line is the uid 102.
        keyClick(Qt.Key_V, Qt.ControlModifier)
        verifyNumbers([3])
        compare([filter.text, filter.placeholderText], ["", "10,000 uids"])
        compare(filter.values.join("\n"), "1x" + uids.join("\n") + "2")
        data.leave()
        compare([filter.text, filter.placeholderText !== ""], [data.shown, data.still === true])
        tryCompare(AppModel, "totalFilteredClones", data.rows)
    }

    function test_selection() {
        mouseClick(row(1))
        compare(selection(), [1])
        verify(!AppModel.cloneList[1].selected)
        controlClick(3)
        controlClick(4)
        compare(selection(), [3, 4])
        mouseClick(row(0))
        compare(selection(), [0])
        // The clicks have brought the keyboard along.
        keyClick(Qt.Key_Down)
        keyClick(Qt.Key_Space)
        keyClick(Qt.Key_Down)
        compare(selection(), [1, 2])
    }

    function test_selectAllAndCopy() {
        setFilter(3, "live")
        verifyNumbers([1, 5])
        find("cloneView").forceActiveFocus()
        pressControl(Qt.Key_A)
        compare(selection(), [0, 4])
        setFilter(3, "")
        pressControl(Qt.Key_C)
        compare(Service.clipboardText(), "100\n104\n")
        compare(selection(), [0, 4])

        openToolBox()
        click("selectAll")
        compare(selection().length, 6)
        click("selectAll")
        compare(selection(), [])
    }

    function test_copyACell() {
        function copy(name) {
            const cell = find(name, row(2))
            mouseDoubleClickSequence(row(2), cell.x + cell.width / 2, 20)
            return [Service.clipboardText(), find("copiedBadge", row(2)).active]
        }
        compare(copy("status"), ["", false])
        compare(copy("uid"), ["102", true])
        const since = Date.now()
        compare(copy("deviceId"), ["dev-a", true])
        const badge = find("copiedBadge", row(2))
        const cell = find("deviceId", row(2))
        compare([badge.item.x, badge.item.y, badge.item.width, badge.item.height],
                [cell.x + cell.width / 4, 48, cell.width / 2, 20])
        tryCompare(badge, "active", false)
        verify(Date.now() - since > 900)
    }

    function test_scrolledListStays() {
        const view = find("cloneView")
        Service.clones = Array.from({ length: 60 }, (unused, index) => clone(index, "u" + index, "dev", 1, "", 1))
        view.pullToRefreshReleased()
        tryCompare(view, "count", 60)
        view.contentY = 1510
        tryVerify(() => row(32) !== null)
        mouseDoubleClickSequence(find("uid", row(32)))
        compare([Service.clipboardText(), view.currentIndex, view.contentY], ["u32", 32, 1510])
        // What closes gives the keyboard back to the list.
        view.currentIndex = -1
        find("inputClonesPopup").visible = true
        find("inputClonesPopup").visible = false
        compare([view.currentIndex, view.contentY], [30, 1500])
        setFilter(3, "live")
        compare([view.currentIndex, view.contentY], [-1, 0])
    }

    function test_keyboardReachesWhatShows() {
        const always = ["filter0", "filter2", "filter3", "filter5", "cloneRow0", "expandButton"]
        const tools = ["addButton", "deleteButton", "resetButton", "profileBox", "selectAll"]
        for (const expected of [always.concat("userBlock"), always.concat(tools, "userBlock")]) {
            find("filter0").forceActiveFocus(Qt.TabFocusReason)
            const reached = []
            while (reached.length < 20 && !reached.includes("userBlock")) {
                reached.push(window.activeFocusItem.objectName)
                keyClick(Qt.Key_Tab)
            }
            compare(reached.filter(name => name !== "cloneView" && name !== "check"), expected)
            if (!expected.includes("addButton"))
                openToolBox()
        }
    }

    function test_hostileTexts() {
        Service.clones = hostileTexts.map(({ text }, index) => clone(index, text, text, 1, text, 1))
        find("cloneView").pullToRefreshReleased()
        verifyNumbers([1, 2, 3, 4, 5, 6, 7])
        hostileTexts.forEach(({ text, shown }, index) => {
            for (const name of ["uid", "deviceId", "farmProfile"])
                verifyLine(find(name, row(index)), shown)
            mouseDoubleClickSequence(find("uid", row(index)))
            compare(Service.clipboardText().length, text.length)
        })
    }
}
