import QtQuick 2.15
import QtQuick.Window 2.15
import QtTest 1.15
import "scene.js" as Scene

TestCase {
    id: suite

    property var window

    name: "Window"
    when: windowShown

    function find(name) {
        return Scene.find(window, name)
    }

    function init() {
        Service.reset()
        AppModel.userInfo.userType = 0
        const component = Qt.createComponent("qrc:/qml/main.qml")
        verify(component.status === Component.Ready, component.errorString())
        window = createTemporaryObject(component, suite)
        window.requestActivate()
        tryCompare(window, "active", true)
        // The check of the stored token, which is empty.
        Service.settle()
    }

    function cleanup() {
        compare(Service.warnings(), [])
    }

    function signIn(token) {
        AppModel.userInfo.token = token
        AppManager.checkUser()
        tryCompare(AppModel.userInfo, "isValidated", true)
        tryCompare(find("validateUserPopup"), "visible", false)
    }

    function test_windowIsAsAnnounced() {
        verify(/^Velstrand Manager v[0-9]+$/.test(window.title), window.title)
        compare(window.title.match(/[0-9]+$/)[0], String(AppManager.appVersion))
        compare([window.width, window.height], [1280, 720])
        const names = window.contentItem.children
        let order = []
        for (let i = 0; i < names.length; ++i)
            order.push(names[i].objectName)
        compare(order.filter(name => name !== ""), ["mainMenu", "mainContent", "mainHeader", "inputUserTokenPopup",
                                                    "validateUserPopup", "notificationsBar"])
        const menu = find("mainMenu")
        compare([menu.y, menu.width], [100, Scene.find(window, "logo").paintedWidth])
        compare(find("mainContent").width, 1280 - menu.width)
    }

    function test_signIn_data() {
        return [
            { tag: "administrator by Enter", token: Service.adminToken, admin: true, enter: true },
            { tag: "ordinary user by button", token: Service.userToken, admin: false, enter: false }
        ]
    }

    function test_signIn(row) {
        const field = find("tokenField")
        const tokenPopup = find("inputUserTokenPopup")
        verify(tokenPopup.visible && !find("validateUserPopup").visible)
        tryCompare(field, "activeFocus", true)
        Service.setLatency(100)

        field.text = row.token
        if (row.enter)
            keyClick(Qt.Key_Return)
        else
            mouseClick(find("continueButton"))
        compare(AppModel.userInfo.token, row.token)
        verify(!tokenPopup.visible && find("validateUserPopup").visible)
        tryCompare(find("validateUserPopup"), "visible", false)

        compare(find("notificationText").text, "Load user info successful!")
        compare(Service.storedToken(), row.token)
        compare(Service.requestBodies("/api/v1/user/get-info").pop(), { token: row.token })
        compare(find("userName").text, Service.user(row.token).fullname)
        verify(find("mainMenu").activeFocus)
        compare(find("menuRow3").visible, row.admin)
        compare(find("menuRow3").height, row.admin ? 50 : 0)
        tryCompare(find("menuRow4"), "y", row.admin ? 200 : 150)
    }

    function test_rejectedTokenAsksAgain() {
        find("tokenField").text = "nobody's token"
        mouseClick(find("continueButton"))
        verify(find("validateUserPopup").visible)
        tryCompare(find("inputUserTokenPopup"), "visible", true)
        verify(!AppModel.userInfo.isValidated)
        compare(Service.storedToken(), "")
        tryCompare(find("tokenField"), "activeFocus", true)
        compare(find("tokenField").selectedText, "nobody's token")
    }

    function test_emptyTokenStays() {
        Service.clearRequests()
        keyClick(Qt.Key_Return)
        Service.settle()
        compare(Service.requestBodies("/api/v1/user/get-info"), [{ token: "" }])
        verify(find("inputUserTokenPopup").visible)
    }

    // The timers are run faster.
    function test_validationIsNoTrap() {
        Service.setFault("/api/v1/user/get-info", "HttpError")
        const popup = find("validateUserPopup")
        const button = find("otherTokenButton")
        const timers = ["retryTimer", "offerTimer"].map(name => Array.from(popup.data).find(item => item.objectName === name))
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
        tryVerify(() => Service.requestBodies("/api/v1/user/get-info").length >= 2)
        Service.setFault("/api/v1/user/get-info", "None")
        tryCompare(popup, "visible", false)
        verify(AppModel.userInfo.isValidated)
    }

    function test_keyboardStaysInTheOverlay() {
        for (const key of [Qt.Key_Tab, Qt.Key_Tab, Qt.Key_Tab, Qt.Key_Backtab, Qt.Key_Backtab]) {
            const before = window.activeFocusItem.objectName
            keyClick(key)
            compare(window.activeFocusItem.objectName, before === "tokenField" ? "continueButton" : "tokenField")
        }
        Service.setFault("/api/v1/user/get-info", "HttpError")
        AppModel.userInfo.token = Service.userToken
        for (const key of [Qt.Key_Tab, Qt.Key_Backtab]) {
            keyClick(key)
            verify(find("validateUserPopup").activeFocus)
        }
    }

    function test_navigation_data() {
        const sources = ["Home", "DeviceList", "CloneList", "AdminSettings", "Settings", "ReportsList", "", "UserInfo"]
        return sources.map((name, index) => ({
            tag: name || "nothing", index: index, source: name ? "qrc:/qml/menu/" + name + ".qml" : ""
        }))
    }

    function test_navigation(row) {
        signIn(Service.adminToken)
        const content = find("mainContent")
        mouseClick(find("menuRow" + ((row.index + 1) % 8)))
        mouseClick(find("menuRow" + row.index))
        compare(find("mainMenu").currentIndex, row.index)
        compare(String(content.source), row.source)
        compare(content.item === null, row.source === "")
        if (content.item) {
            compare(content.item.height, content.height)
            verify(content.item.parent.parent === window.contentItem)
        }
    }

    function test_keyboardStepsOverTheHiddenRow() {
        signIn(Service.userToken)
        mouseClick(find("menuRow2"))
        find("menuRow2").forceActiveFocus()
        keyClick(Qt.Key_Down)
        verify(find("menuRow4").visualFocus)
        compare(find("mainMenu").currentIndex, 2)
        keyClick(Qt.Key_Return)
        compare(find("mainMenu").currentIndex, 4)
        keyClick(Qt.Key_Up)
        verify(find("menuRow2").visualFocus)
    }

    function test_keyboardInALowWindow() {
        signIn(Service.userToken)
        window.height = 260
        const list = find("menuList")
        tryCompare(list, "height", 150)
        find("menuRow0").forceActiveFocus(Qt.TabFocusReason)
        for (let i = 0; i < 6; ++i)
            keyClick(Qt.Key_Down)
        compare(list.contentY, 7 * 50 - list.height)
        keyClick(Qt.Key_Backtab)
        keyClick(Qt.Key_Backtab)
        keyClick(Qt.Key_Backtab)
        compare([window.activeFocusItem.objectName, list.contentY], ["menuRow4", 150])
    }

    function test_clonesPopupByKeyboard() {
        signIn(Service.adminToken)
        mouseClick(find("menuRow2"))
        const page = find("mainContent").item
        const popup = find("inputClonesPopup")
        popup.visible = true
        const field = find("clonesField")
        field.text = "1|a|b"
        find("networkBox").currentIndex = 1
        // Out of the sheet, past the page under it, and back into the sheet.
        const around = ["clonesField", "addButton", "userBlock", "menuRow0"]
        for (let i = 1; i < around.length; ++i) {
            keyClick(Qt.Key_Tab)
            compare(window.activeFocusItem.objectName, around[i])
        }
        find("networkBox").forceActiveFocus(Qt.TabFocusReason)
        for (const [key, name] of [[Qt.Key_Tab, "profileBox"], [Qt.Key_Tab, "clonesField"], [Qt.Key_Backtab, "profileBox"],
                                   [Qt.Key_Tab, "clonesField"], [Qt.Key_Tab, "addButton"]]) {
            keyClick(key)
            compare(window.activeFocusItem.objectName, name)
        }
        compare(field.text, "1|a|b")
        keyClick(Qt.Key_Return)
        verify(!popup.visible)
        keyClick(Qt.Key_Return)
        Service.settle()
        compare(Service.requestBodies("/api/v1/clone/add").length, 1)
        const left = window.activeFocusItem
        verify(left !== window.contentItem && left.visible)
        keyClick(Qt.Key_Tab)
        verify(window.activeFocusItem !== left)
    }

    function test_clonePageKeysEndAtTheOverlay() {
        signIn(Service.adminToken)
        mouseClick(find("menuRow2"))
        AppIO.sendToClibboard("kept")
        AppModel.userInfo.token = ""
        verify(find("tokenField").activeFocus)
        keyPress(Qt.Key_Control, Qt.ControlModifier)
        keyClick(Qt.Key_C)
        keyRelease(Qt.Key_Control)
        compare(Service.clipboardText(), "kept")
    }

    function test_userTypeLeavesThePage_data() {
        return [
            { tag: "other page", index: 5, expected: 5 },
            { tag: "administrator's page", index: 3, expected: 0 }
        ]
    }

    function test_userTypeLeavesThePage(row) {
        signIn(Service.adminToken)
        mouseClick(find("menuRow" + row.index))
        AppModel.userInfo.userType = 1
        compare(find("mainMenu").currentIndex, row.expected)
        verify(!find("menuRow3").visible)
    }

    function test_accountPanel_data() {
        return [{ tag: "mouse", keyboard: false }, { tag: "keyboard", keyboard: true }]
    }

    function test_accountPanel(row) {
        signIn(Service.userToken)
        mouseClick(find("menuRow1"))
        const panel = find("accountPanel")
        const block = find("userBlock")
        function toggle() {
            if (row.keyboard) {
                block.forceActiveFocus()
                keyClick(Qt.Key_Space)
            } else {
                mouseClick(block)
            }
        }
        verify(!panel.visible)
        toggle()
        tryVerify(() => panel.height > 0 && panel.height < 120)
        tryCompare(panel, "height", 120)
        compare([panel.width, panel.mapToItem(null, 0, 0).x], [400, 880])
        compare(find("currentUserText").text, AppModel.userInfo.fullName + "\n" + Service.userToken)
        toggle()
        tryCompare(panel, "visible", false)

        toggle()
        tryCompare(panel, "height", 120)
        if (row.keyboard) {
            keyClick(Qt.Key_Tab)
            verify(find("addAccount").visualFocus)
            keyClick(Qt.Key_Return)
        } else {
            mouseClick(find("addAccount"))
        }
        compare(AppModel.userInfo.token, "")
        verify(find("inputUserTokenPopup").visible && find("inputUserTokenPopup").activeFocus)
        verify(!AppModel.userInfo.isValidated)
        tryCompare(panel, "visible", false)
    }

    function test_hostileNames_data() {
        return [
            { tag: "empty", text: "", shown: "" },
            { tag: "markup", text: "<img src='a'><b>x</b>", shown: "<img src='a'><b>x</b>" },
            { tag: "lines", text: "a\r\nb\u2028c\u0000d", shown: "a b c d" },
            { tag: "megabyte", text: "w".repeat(1 << 20), shown: "w".repeat(256) }
        ]
    }

    function test_hostileNames(row) {
        AppModel.userInfo.fullName = row.text
        const name = find("userName")
        compare(name.text, row.shown)
        compare(name.textFormat, Text.PlainText)
        compare(name.lineCount, 1)
        verify(find("userBlock").width <= 410)
        compare(find("userBlock").height, 50)
        verify(find("currentUserText").contentWidth <= find("currentUserText").width)
    }

    function test_notificationLooks_data() {
        return [
            { tag: "information", type: 0, color: "#33cc33" },
            { tag: "warning", type: 1, color: "#e6b800" },
            { tag: "error", type: 2, color: "#ff3300" },
            { tag: "unknown", type: 7, color: "#33cc33" }
        ]
    }

    function test_notificationLooks(row) {
        const bar = find("notificationsBar")
        compare(bar.y, -50)
        AppManager.pushNotification(row.type, "<b>" + row.tag + "</b>\n" + "w".repeat(1 << 20))
        compare(find("notificationBackground").color, row.color)
        const text = find("notificationText")
        verify(text.text.startsWith("<b>" + row.tag))
        compare(text.textFormat, Text.PlainText)
        tryCompare(bar, "y", 0)
        verify(text.contentHeight <= bar.height)
    }

    function test_secondNotificationStartsTheTimeAgain() {
        const bar = find("notificationsBar")
        AppManager.pushNotification(2, "first")
        tryCompare(bar, "y", 0)
        AppManager.pushNotification(0, "second")
        const since = Date.now()
        compare(find("notificationText").text, "second")
        tryVerify(() => bar.y < -1)
        verify(Date.now() - since >= 2950, "hidden after " + (Date.now() - since) + " ms")
        tryCompare(bar, "y", -50)
    }
}
