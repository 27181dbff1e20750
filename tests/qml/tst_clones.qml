import QtQuick 2.15
import "scene.js" as Scene

PageCase {
    function clone(index, uid, device, status, profile, restriction) {
        return { id: "id" + index, uid: uid, device_id: device, status: status, farm_profile: profile, network: "facebook",
                 restriction: restriction, cookies: "", email: "", firstname: "", lastname: "", mail_password: "",
                 novery: false, password: "p" + index, secretkey: "", secure_flags: 0, user_id: "u1" }
    }

    function prepare() {
        const profiles = Object.keys(Service.user(Service.adminToken).farm_profiles)
        Service.clones = [
            clone(0, "100", "dev-a", 1, profiles[0], 1), clone(1, "101", "dev-b", 2, profiles[1], 6),
            clone(2, "102", "dev-a", 4, profiles[1], 31), clone(3, "103", "dev-c", 8, "", 16),
            clone(4, "104", "dev-b", 1, profiles[0], 0), clone(5, "105", "", 3, "", 1)
        ]
    }

    function row(place) {
        return find("cloneRow" + place)
    }

    /// Numbers of the rows that the page shows.
    function numbers() {
        const shown = []
        for (let place = 0; place < 8; ++place) {
            if (row(place) && row(place).visible && row(place).height === 50)
                shown.push(Number(text("number", row(place))))
        }
        return shown
    }

    function verifyNumbers(expected) {
        tryVerify(() => JSON.stringify(numbers()) === JSON.stringify(expected), 5000, "rows " + numbers())
        compare(text("head0"), "Uid (total: " + expected.length + ")")
    }

    function selection() {
        return [0, 1, 2, 3, 4, 5].filter(place => row(place) && find("rowBackground", row(place)).color.a > 0)
    }

    function setFilter(column, lines) {
        find("filter" + column).setValue(lines)
    }

    function controlClick(place) {
        keyPress(Qt.Key_Control, Qt.ControlModifier)
        mouseClick(row(place))
        keyRelease(Qt.Key_Control)
    }

    function openToolBox() {
        click("expandButton")
        tryCompare(find("cloneToolBox"), "y", -50)
    }

    name: "Clones"
    menuRow: 2

    function settled() {
        // The page asks for the list 100 ms after it is opened.
        tryVerify(() => post("clone/list").length === 1)
        Service.settle()
        verifyNumbers([1, 2, 3, 4, 5, 6])
    }

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

    function test_toolBoxOpensOnHoldAndReturn() {
        const toolBox = find("cloneToolBox")
        verify(!find("check", row(0)) && find("expandButton").up)
        mousePress(row(4))
        tryCompare(toolBox, "hidden", false)
        mouseRelease(row(4))
        compare([find("cloneView").currentIndex, find("expandButton").up], [4, false])
        tryCompare(toolBox, "y", -50)
        compare(toolBox.mapToItem(page, 0, 0).y, page.height - 50)
        compare(find("check", row(0)).width, 50 / 3)

        click("check", row(2))
        verify(AppModel.cloneList[2].selected)
        compare(find("cloneView").currentIndex, 2)
        AppModel.cloneList[2].selected = false
        verify(!find("check", row(2)).checked)

        click("expandButton")
        tryCompare(toolBox, "y", 0)
        verify(!find("check", row(0)) && find("expandButton").up)
        row(4).forceActiveFocus()
        keyClick(Qt.Key_Return)
        compare(toolBox.hidden, false)
    }

    function test_resetAndDelete() {
        const before = Service.clones
        controlClick(2)
        controlClick(3)
        openToolBox()
        click("resetButton")
        tryVerify(() => text("status", row(3)) === "live")
        compare(Service.clones.map(entry => entry.status), before.map((entry, index) => index === 2 || index === 3 ? 1 : entry.status))
        Service.settle()
        verifyNumbers([1, 2, 3, 4, 5, 6])
        controlClick(2)
        click("deleteButton")
        verifyNumbers([1, 2, 3, 4, 5])
        compare(Service.clones.map(entry => entry.id), ["id0", "id1", "id3", "id4", "id5"])
    }

    function test_profileIsChosenOnlyOnPurpose() {
        const profiles = AppModel.userInfo.farmProfiles
        const before = Service.clones
        profiles[1].profileName = "<b>A & B</b>"
        controlClick(2)
        controlClick(3)
        openToolBox()
        const combo = find("profileBox", find("cloneToolBox"))
        compare([combo.width, combo.count, combo.displayText], [200, profiles.length, profiles[0].profileName])
        combo.forceActiveFocus()
        keyClick("a")
        mouseWheel(combo, 10, 10, 0, -120)
        keyClick(Qt.Key_Down)
        tryCompare(combo.popup, "opened", true)
        keyClick(Qt.Key_Down)
        const entry = Scene.search(window, item => item.text === "<b>A & B</b>" && item.textFormat === Text.PlainText)
        verify(entry && entry.visible)
        compare(Service.clones, before)
        keyClick(Qt.Key_Return)
        tryVerify(() => text("farmProfile", row(3)) === "<b>A & B</b>")
        compare(Service.clones.map(entry => entry.farm_profile),
                before.map((entry, index) => index === 2 || index === 3 ? "<b>A & B</b>" : entry.farm_profile))
    }

    function test_import() {
        openToolBox()
        click("addButton", find("cloneToolBox"))
        const popup = find("inputClonesPopup")
        const field = find("clonesField", popup)
        const network = find("networkBox", popup)
        const profile = find("profileBox", popup)
        const add = find("addButton", popup)
        verify(popup.visible && field.activeFocus)
        pressControl(Qt.Key_A)
        verify(!AppModel.cloneList[0].selected)
        compare([network.currentText, profile.currentIndex, add.enabled], ["none", 0, false])
        const lines = "900|secret|2fa\nno bar\n901|other"
        for (const [index, text, enabled] of [[0, lines, false], [2, "", false], [2, lines, true]]) {
            network.currentIndex = index
            field.text = text
            compare(add.enabled, enabled)
        }
        profile.currentIndex = 1
        mouseClick(add)
        verify(!popup.visible)
        tryCompare(AppModel, "totalFilteredClones", 8)
        compare(Service.clones.slice(6).map(entry => [entry.uid, entry.password, entry.secretkey, entry.network, entry.farm_profile]),
                [["900", "secret", "2fa", "tiktok", profile.currentText], ["901", "other", "", "tiktok", profile.currentText]])
        // What was added gives way to what is typed next.
        popup.visible = true
        type("9|9")
        compare(field.text, "9|9")
    }

    function test_importOfManyLines() {
        const control = Qt.ControlModifier
        const lines = Array.from({ length: 2500 }, (unused, index) => (5000 + index) + "|p" + index)
        find("inputClonesPopup").visible = true
        const field = find("clonesField")
        const summary = find("clonesSummary")
        type("ab|c")
        keyClick(Qt.Key_Left)
        keyClick(Qt.Key_Left, Qt.ShiftModifier)
        AppIO.sendToClibboard(lines.join("\r\n") + "\r\n")
        keyClick(Qt.Key_V, control)
        // The text is "ab" and the lines and "c"; nothing of it is laid out.
        verify(summary.visible && !field.visible && find("summaryKeys").activeFocus)
        compare([text("linesTitle"), text("line1"), text("line6"), text("line2,501")],
                ["2,501 lines", "ab5000|p0", "5005|p5", "c"])
        compare(field.text, "ab|c")
        keyClick(Qt.Key_Z, control)
        verify(field.activeFocus && !summary.visible)
        compare(field.text, "ab|c")
        field.selectAll()
        keyClick(Qt.Key_V, control)
        compare([text("linesTitle"), text("line1"), text("line2,500")], ["2,500 lines", "5000|p0", "7499|p2499"])

        // A part is edited, and the whole is what is added.
        find("lineField").text = "1501"
        click("editButton")
        verify(field.activeFocus)
        compare([field.lineCount, text("partLabel"), field.text.substr(field.cursorPosition, 4)],
                [1000, "Lines 1,001 to 2,000 of 2,500", "6500"])
        type("x")
        click("doneButton")
        verify(summary.visible && find("summaryKeys").activeFocus)
        type("9|9")
        compare(text("partLabel"), "Lines 2,402 to 2,500 of 2,500")
        find("networkBox").currentIndex = 1
        click("inputClonesPopup/addButton")
        compare(post("clone/add").map(body => body.clones.length), [2501])
        compare([0, 1499, 1500, 2499, 2500].map(index => post("clone/add")[0].clones[index].uid),
                ["5000", "6499", "x6500", "7499", "9"])

        // What was added is kept, selected; the next text takes its place, a part of it is kept when it is one.
        find("inputClonesPopup").visible = true
        compare([summary.selected, text("linesTitle")], [true, "2,501 lines"])
        keyClick(Qt.Key_Delete)
        compare([field.activeFocus, field.text, find("inputClonesPopup/addButton").enabled], [true, "", false])
        keyClick(Qt.Key_V, control)
        keyClick(Qt.Key_V, control)
        compare(text("linesTitle"), "5,000 lines")
        keyClick(Qt.Key_A, control)
        type("z")
        verify(field.activeFocus && field.text === "z")
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
