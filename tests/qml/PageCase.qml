import QtQuick 2.15
import QtTest 1.15
import "scene.js" as Scene

/// A test of one page: every function starts with the administrator signed in, the farm of prepare() at the
/// service, and the page open in a window of its own; and must end without a warning of the scene.
TestCase {
    id: suite

    property var window
    property var page
    property int menuRow

    when: windowShown

    function find(name, within) {
        verify(within !== null, "there is something to find " + name + " in")
        return Scene.find(within || window, name)
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

    function open(row) {
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

    function init() {
        Service.reset()
        prepare()
        const component = Qt.createComponent("qrc:/qml/main.qml")
        verify(component.status === Component.Ready, component.errorString())
        window = createTemporaryObject(component, suite)
        window.requestActivate()
        tryCompare(window, "active", true)
        // The check of the stored token, which is empty.
        Service.settle()
        AppModel.userInfo.token = Service.adminToken
        AppManager.checkUser()
        tryCompare(find("validateUserPopup"), "visible", false)
        tryVerify(() => AppModel.globalConfig !== null)
        Service.settle()
        Service.clearRequests()
        open(menuRow)
        Service.settle()
        settled()
    }

    function cleanup() {
        compare(Service.warnings().filter(warning => !warning.includes("tabIndex is not defined")), [])
    }

    /// Texts that a row must bear, with what it shows of them.
    function hostileTexts() {
        return [
            { tag: "empty", text: "", shown: "" },
            { tag: "markup", text: "<img src='https://localhost/x'><b>x</b>", shown: "<img src='https://localhost/x'><b>x</b>" },
            { tag: "lines", text: "a\r\nb\u2028c", shown: "a b c" },
            { tag: "zero", text: "a\u0000b", shown: "a b" },
            { tag: "right to left", text: "\u202eשלום", shown: "\u202eשלום" },
            { tag: "emoji", text: "👩‍👩‍👧", shown: "👩‍👩‍👧" },
            { tag: "megabyte", text: "w".repeat(1 << 20), shown: "w".repeat(256) }
        ]
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
