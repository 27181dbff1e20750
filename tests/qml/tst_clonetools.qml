import QtQuick 2.15
import "scene.js" as Scene

ClonePageCase {
    name: "CloneTools"

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
        compare(text("ticksText"), "2 selected")
        mouseClick(row(0))
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
}
