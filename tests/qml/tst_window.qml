import QtQuick 2.15

PageCase {
    function timer(item, name) {
        return Array.from(item.data).find(child => child.objectName === name)
    }

    function verifyFocus(name) {
        compare(window.activeFocusItem.objectName, name)
    }

    name: "Window"

    function init() {
        start()
    }

    function test_windowIsAsAnnounced() {
        compare(window.title, "Velstrand Manager v" + AppManager.appVersion)
        compare([window.width, window.height], [1280, 720])
        compare(post("user/get-info").length, 1)
        compare(Array.from(window.contentItem.children).map(item => item.objectName).filter(name => name !== ""),
                ["mainMenu", "mainContent", "mainHeader", "inputUserTokenPopup", "validateUserPopup", "notificationsBar"])
        const menu = find("mainMenu")
        compare([menu.y, menu.width], [100, find("logo").paintedWidth])
        compare(find("mainContent").width, 1280 - menu.width)
    }

    function test_signIn_data() {
        return [
            { tag: "administrator by Enter", token: Service.adminToken, admin: true, enter: true },
            { tag: "ordinary user by button", token: Service.userToken, admin: false, enter: false }
        ]
    }

    function test_signIn(row) {
        const tokenPopup = find("inputUserTokenPopup")
        verify(tokenPopup.visible && !find("validateUserPopup").visible)
        tryCompare(find("tokenField"), "activeFocus", true)
        Service.setLatency(100)
        find("tokenField").text = row.token
        if (row.enter)
            keyClick(Qt.Key_Return)
        else
            click("continueButton")
        compare(AppModel.userInfo.token, row.token)
        verify(!tokenPopup.visible && find("validateUserPopup").visible)
        tryCompare(find("validateUserPopup"), "visible", false)

        compare(text("userName"), Service.user(row.token).fullname)
        verify(find("mainMenu").activeFocus)
        compare([find("menuRow3").visible, find("menuRow3").height], [row.admin, row.admin ? 50 : 0])
        tryCompare(find("menuRow4"), "y", row.admin ? 200 : 150)
    }

    function test_rejectedTokenAsksAgain() {
        find("tokenField").text = "nobody's token"
        click("continueButton")
        verify(find("validateUserPopup").visible)
        tryCompare(find("inputUserTokenPopup"), "visible", true)
        verify(!AppModel.userInfo.isValidated)
        tryCompare(find("tokenField"), "activeFocus", true)
        compare(find("tokenField").selectedText, "nobody's token")
    }

    // The timers are run faster.
    function test_validationIsNoTrap() {
        Service.fail("/api/v1/user/get-info")
        const popup = find("validateUserPopup")
        const button = find("otherTokenButton")
        const timers = ["retryTimer", "offerTimer"].map(name => timer(popup, name))
        compare(timers.map(timer => timer.interval), [10000, 5000])
        timers[0].interval = 300
        timers[1].interval = 150

        for (let round = 0; round < 2; ++round) {
            AppModel.userInfo.token = Service.userToken
            verify(popup.visible && !button.visible)
            tryCompare(button, "visible", true)
            verify(button.visualFocus)
            keyClick(Qt.Key_Return)
            compare(AppModel.userInfo.token, "")
            verify(find("inputUserTokenPopup").visible && !popup.visible)
        }

        AppModel.userInfo.token = Service.userToken
        Service.clearRequests()
        tryVerify(() => post("user/get-info").length >= 2)
        Service.clearFaults()
        tryCompare(popup, "visible", false)
        verify(AppModel.userInfo.isValidated)
    }

    function test_keyboardStaysInTheOverlay() {
        for (const key of [Qt.Key_Tab, Qt.Key_Tab, Qt.Key_Tab, Qt.Key_Backtab, Qt.Key_Backtab]) {
            const before = window.activeFocusItem.objectName
            keyClick(key)
            verifyFocus(before === "tokenField" ? "continueButton" : "tokenField")
        }
        Service.fail("/api/v1/user/get-info")
        AppModel.userInfo.token = Service.userToken
        for (const key of [Qt.Key_Tab, Qt.Key_Backtab]) {
            keyClick(key)
            verify(find("validateUserPopup").activeFocus)
        }
    }

    function test_menuByKeyboard() {
        signIn(Service.userToken)
        open(2)
        find("menuRow2").forceActiveFocus()
        // Over the row that only an administrator has.
        keyClick(Qt.Key_Down)
        verify(find("menuRow4").visualFocus)
        compare(find("mainMenu").currentIndex, 2)
        keyClick(Qt.Key_Return)
        compare(find("mainMenu").currentIndex, 4)
        keyClick(Qt.Key_Up)
        verify(find("menuRow2").visualFocus)

        window.height = 260
        const list = find("menuList")
        tryCompare(list, "height", 150)
        for (let i = 0; i < 4; ++i)
            keyClick(Qt.Key_Down)
        compare(list.contentY, 7 * 50 - list.height)
        for (let i = 0; i < 3; ++i)
            keyClick(Qt.Key_Backtab)
        verifyFocus("menuRow4")
        compare(list.contentY, 150)
    }

    function test_clonesPopupByKeyboard() {
        signIn(Service.adminToken)
        open(2)
        const popup = find("inputClonesPopup")
        popup.visible = true
        const field = find("clonesField")
        field.text = "1|a|b"
        find("networkBox").currentIndex = 1
        // Out of the sheet, past the page under it.
        verifyTabs(["addButton", "userBlock", "menuRow0"])
        field.forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Backtab)
        verifyFocus("profileBox")
        find("addButton", popup).forceActiveFocus(Qt.TabFocusReason)
        compare(field.text, "1|a|b")
        keyClick(Qt.Key_Return)
        verify(!popup.visible)
        keyClick(Qt.Key_Return)
        Service.settle()
        compare(post("clone/add").length, 1)
        verifyFocus("cloneRow0")
    }

    function test_clonePageKeysEndAtTheOverlay() {
        signIn(Service.adminToken)
        open(2)
        AppIO.sendToClibboard("kept")
        AppModel.userInfo.token = ""
        verify(find("tokenField").activeFocus)
        pressControl(Qt.Key_C)
        compare(Service.clipboardText(), "kept")
    }

    function test_userTypeLeavesThePage() {
        signIn(Service.adminToken)
        open(3)
        AppModel.userInfo.userType = 1
        compare(find("mainMenu").currentIndex, 0)
        verify(!find("menuRow3").visible)
    }

    function test_accountPanel() {
        signIn(Service.userToken)
        open(1)
        const panel = find("accountPanel")
        verify(!panel.visible)
        click("userBlock")
        verify(panel.height < 120) // it slides
        tryCompare(panel, "height", 120)
        compare([panel.width, panel.mapToItem(null, 0, 0).x], [400, 880])
        compare(text("currentUserText"), AppModel.userInfo.fullName + "\n" + Service.userToken)
        click("userBlock")
        tryCompare(panel, "visible", false)

        find("userBlock").forceActiveFocus()
        for (const leave of [() => {}, () => keyClick(Qt.Key_Tab)]) {
            keyClick(Qt.Key_Space)
            tryCompare(panel, "height", 120)
            leave()
            keyClick(Qt.Key_Escape)
            tryCompare(panel, "visible", false)
            verify(find("userBlock").activeFocus)
        }
        keyClick(Qt.Key_Space)
        tryCompare(panel, "visible", true)
        keyClick(Qt.Key_Tab)
        verify(find("addAccount").visualFocus)
        keyClick(Qt.Key_Return)
        compare(AppModel.userInfo.token, "")
        verify(find("inputUserTokenPopup").visible && find("inputUserTokenPopup").activeFocus)
        verify(!AppModel.userInfo.isValidated)
        tryCompare(panel, "visible", false)
    }

    function test_hostileNames() {
        for (const { text, shown } of hostileTexts) {
            AppModel.userInfo.fullName = text
            const name = find("userName")
            compare([name.text, name.textFormat, name.lineCount], [shown, Text.PlainText, 1])
            verify(find("userBlock").width <= 410)
            compare(find("userBlock").height, 50)
            verify(find("currentUserText").contentWidth <= find("currentUserText").width)
        }
    }

    function test_notificationLooks() {
        const bar = find("notificationsBar")
        const label = find("notificationText")
        compare(bar.y, -50)
        for (const [type, color] of [[0, "#33cc33"], [1, "#e6b800"], [2, "#ff3300"], [7, "#33cc33"]]) {
            AppManager.pushNotification(type, "<b>" + type + "</b>\n" + "w".repeat(1 << 20))
            compare(find("notificationBackground").color, color)
            verify(label.text.startsWith("<b>" + type))
            compare(label.textFormat, Text.PlainText)
            verify(label.contentHeight <= bar.height)
        }
        tryCompare(bar, "y", 0)
    }

    // The timer is run faster.
    function test_secondNotificationStartsTheTimeAgain() {
        const bar = find("notificationsBar")
        const hideTimer = timer(bar, "hideTimer")
        compare(hideTimer.interval, 3000)
        hideTimer.interval = 1200
        AppManager.pushNotification(2, "first")
        tryCompare(bar, "y", 0)
        const since = Date.now()
        AppManager.pushNotification(0, "second")
        compare(text("notificationText"), "second")
        tryVerify(() => bar.y < -1)
        verify(Date.now() - since >= 1100, "hidden after " + (Date.now() - since) + " ms")
        tryCompare(bar, "y", -50)
    }
}
