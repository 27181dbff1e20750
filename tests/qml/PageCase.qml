import QtQuick 2.15
import QtTest 1.15
import "scene.js" as Scene

/// A test of one page: every function starts with the administrator signed in, the farm of prepare() at the
/// service, and the page open in a window of its own; and must end without a warning of the scene.
TestCase {
    id: suite

    /// Texts that a label must bear, with what it shows of them.
    readonly property var hostileTexts: [
        { text: "", shown: "" },
        { text: "<img src='https://localhost/x'><b>x</b>", shown: "<img src='https://localhost/x'><b>x</b>" },
        { text: "a\r\nb\u2028c", shown: "a b c" },
        { text: "a\u0000b", shown: "a b" },
        { text: "\u202eשלום", shown: "\u202eשלום" },
        { text: "👩‍👩‍👧", shown: "👩‍👩‍👧" },
        { text: "w".repeat(1 << 20), shown: "w".repeat(256) }
    ]
    property var window
    property var page
    property int menuRow

    when: windowShown

    /// The item of that name in the window or in another item; "row/cell" is the cell in the row.
    function find(name, within) {
        verify(within !== null, "there is something to find " + name + " in")
        return name.split("/").reduce((item, part) => item && Scene.find(item, part), within || window)
    }

    /// The text of the item of that name.
    function text(name, within) {
        return find(name, within).text
    }

    function click(name, within) {
        const item = find(name, within)
        verify(item, name + " is there")
        mouseClick(item)
    }

    function type(letters) {
        for (const letter of letters)
            keyClick(letter)
    }

    /// In place of what the field with the keyboard holds.
    function retype(letters) {
        keyClick(Qt.Key_A, Qt.ControlModifier)
        keyClick(Qt.Key_Delete)
        type(letters)
    }

    /// Tab goes to these items, one after the other.
    function verifyTabs(names) {
        for (const name of names) {
            keyClick(Qt.Key_Tab)
            compare(window.activeFocusItem.objectName, name)
        }
    }

    /// No modifiers with the letter: for those the test would press another Control.
    function pressControl(key) {
        keyPress(Qt.Key_Control, Qt.ControlModifier)
        keyClick(key)
        keyRelease(Qt.Key_Control)
    }

    function open(row) {
        // A row that has just come moves the others with the next frame only.
        find("menuList").forceLayout()
        mouseClick(find("menuRow" + row))
        page = find("mainContent").item
    }

    function post(path) {
        return Service.requestBodies("/api/v1/" + path)
    }

    function prepare() {
    }

    /// What else a page does before it can be tested.
    function settled() {
    }

    /// A window at the question for the token.
    function start() {
        Service.reset()
        prepare()
        const component = Qt.createComponent("qrc:/qml/main.qml")
        verify(component.status === Component.Ready, component.errorString())
        window = createTemporaryObject(component, suite)
        window.requestActivate()
        // The check of the stored token, which is empty.
        Service.settle()
        tryVerify(() => window.active && find("menuRow7"))
    }

    function signIn(token) {
        AppModel.userInfo.token = token
        AppManager.checkUser()
        Service.settle()
        tryCompare(find("validateUserPopup"), "visible", false)
    }

    function init() {
        start()
        signIn(Service.adminToken)
        Service.settle()
        tryVerify(() => AppModel.globalConfig !== null)
        Service.clearRequests()
        open(menuRow)
        Service.settle()
        settled()
    }

    function cleanup() {
        compare(Service.warnings().filter(warning => !warning.includes("tabIndex is not defined")), [])
    }

    /// A label that bears such a text: one plain line within its bounds.
    function verifyLine(label, shown) {
        compare(label.text, shown)
        compare(label.textFormat, Text.PlainText)
        compare(label.lineCount, 1)
        verify(label.contentWidth <= label.width)
        verify(label.contentHeight <= label.height)
    }
}
