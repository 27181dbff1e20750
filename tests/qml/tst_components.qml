import QtQuick 2.15
import QtTest 1.15
import "scene.js" as Scene

TestCase {
    id: suite

    readonly property string listView: "PListView { width: 300; height: 400; delegate: Item { width: 300; height: 50 } }"

    name: "Components"
    when: windowShown
    width: 1100
    height: 640
    visible: true

    function make(component, properties) {
        const object = createTemporaryQmlObject("import QtQuick 2.15; import 'qrc:/qml/component'; " + component, suite)
        return Object.assign(object, properties || {})
    }

    function spyOn(target, signalName) {
        const spy = createTemporaryQmlObject("import QtTest 1.15; SignalSpy {}", suite)
        return Object.assign(spy, { target: target, signalName: signalName })
    }

    function rows(count) {
        return Array.from({ length: count }, (unused, index) => index)
    }

    function init() {
        Service.reset()
    }

    function cleanup() {
        compare(Service.warnings(), [])
    }

    function test_buttons_data() {
        const keys = [Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter]
        return [
            { tag: "PButton", component: "PButton {}", heard: "clicked", keys: keys },
            { tag: "ImageButton", component: "ImageButton { source: 'qrc:/images/save_icon.png' }", heard: "clicked", keys: keys },
            { tag: "ExpandButton", component: "ExpandButton {}", heard: "upChanged", keys: keys },
            { tag: "SelectAllCheckbox", component: "SelectAllCheckbox { height: 40 }", heard: "checkedChanged", keys: keys },
            { tag: "SquareCheckBox", component: "SquareCheckBox {}", heard: "checkedChanged", keys: [Qt.Key_Space] }
        ]
    }

    function test_buttons(row) {
        const button = make(row.component)
        const heard = spyOn(button, row.heard)
        mouseClick(button, 2, 2)
        compare(heard.count, 1)
        button.forceActiveFocus(Qt.TabFocusReason)
        row.keys.forEach((key, index) => {
            Service.holdKey(key)
            keyRelease(key)
            compare(heard.count, index + 2)
        })
    }

    function test_pullToRefresh() {
        const list = make(listView, { model: rows(3) })
        const heard = spyOn(list, "pullToRefreshReleased")
        const indicator = Scene.find(list, "pullIndicator")
        for (const [pulled, refreshes] of [[100, 0], [101, 1]]) {
            list.contentY = -pulled
            compare([indicator.height, indicator.visible], [pulled, refreshes > 0])
            verify(Scene.search(indicator, item => item.text === "Pull to refresh" && item.font.pixelSize === 15))
            list.dragEnded()
            compare(heard.count, refreshes)
        }
        list.contentY = 0
        mouseDrag(list, 150, 20, 0, 360)
        compare(heard.count, 2)
        list.forceActiveFocus()
        Service.holdKey(Qt.Key_F5)
        compare(heard.count, 3)
    }

    function test_placeOverReplacement_data() {
        return [[200, 1000, 25], [5000, 1000, 25], [24, 800, 23], [3, 0, 2], [0, 0, -1]]
            .map(([count, y, index]) => ({ tag: count + " rows", count: count, y: y, index: index }))
    }

    function test_placeOverReplacement(row) {
        const list = make(listView, { model: rows(200) })
        list.currentIndex = 25
        list.contentY = 1000
        tryCompare(list, "keptY", 1000)
        list.model = rows(row.count)
        compare([list.contentY - list.originY, list.currentIndex], [row.y, row.index])
        // Nothing scrolls on once the event loop has come round.
        let turned = false
        Qt.callLater(() => turned = true)
        tryVerify(() => turned)
        compare([list.contentY - list.originY, list.currentIndex], [row.y, row.index])
    }

    function test_keyboardFollowsTheCurrentRow() {
        const list = make(listView, { model: rows(50), currentIndex: 7 })
        list.forceActiveFocus()
        for (let i = 0; i < 5; ++i)
            keyClick(Qt.Key_Down)
        compare([list.currentIndex, list.contentY], [12, 250])
    }

    // The timer is run faster.
    function test_waitingComesToRest() {
        const dots = make("WaitingDots {}")
        const timer = Array.from(dots.data).find(child => child.objectName === "stepTimer")
        const looks = () => dots.children.length + Array.from(dots.children).map(dot => dot.color).join()
        compare([timer.running, timer.interval], [false, 1000])
        timer.interval = 10
        for (let round = 0; round < 2; ++round) {
            const before = looks()
            dots.running = true
            tryVerify(() => looks() !== before)
            tryCompare(dots, "step", 10)
            verify(!timer.running)
            dots.running = false
        }
    }

    function test_settingItem() {
        const item = make("GlobalSettingBaseItem { labelText: 'Label: '; defaultValue: 18 }")
        const edits = spyOn(item, "valueEdited")
        const editor = Scene.find(item, "editor")
        item.defaultValue = null
        compare([edits.count, edits.signalArguments[0][0]], [1, ""])

        mouseMove(item, 5, 5)
        tryCompare(item, "color", "#f5f5dc")
        editor.forceActiveFocus()
        mouseMove(suite, 500, 500)
        tryCompare(editor, "activeFocus", false)
        compare(item.color.a, 0)
    }
}
