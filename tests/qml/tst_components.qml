import QtQuick 2.15
import QtQuick.Window 2.15
import QtTest 1.15
import "qrc:/qml/component"
import "qrc:/qml/popup"
import "scene.js" as Scene

Item {
    id: root

    width: 1100
    height: 640

    Component { id: pButton; PButton {} }
    Component { id: imageButton; ImageButton { source: "qrc:/images/save_icon.png" } }
    Component { id: expandButton; ExpandButton {} }
    Component { id: selectAll; SelectAllCheckbox { height: 40 } }
    Component { id: squareBox; SquareCheckBox {} }
    Component { id: baseItem; GlobalSettingBaseItem {} }
    Component { id: deviceTools; DeviceToolBox { height: 50 } }
    Component { id: clonesPopup; InputClonesPopup { anchors.fill: parent; visible: false } }
    Component { id: spy; SignalSpy {} }

    Component {
        id: cloneTools

        CloneToolBox {
            width: parent.width
            height: 50
            y: hidden ? parent.height : parent.height - height
        }
    }

    Component {
        id: listView

        PListView {
            width: 300
            height: 400
            delegate: Item { width: 300; height: 50 }
        }
    }

    TestCase {
        id: suite

        name: "Components"
        when: windowShown

        function make(component, properties) {
            const object = createTemporaryObject(component, root, properties || {})
            verify(object)
            return object
        }

        function spyOn(target, signalName) {
            return createTemporaryObject(spy, suite, { target: target, signalName: signalName })
        }

        function rows(count) {
            return Array.from({ length: count }, (unused, index) => index)
        }

        function init() {
            Service.reset()
            AppModel.userInfo.token = Service.adminToken
            AppManager.checkUser()
            tryCompare(AppModel.userInfo, "isValidated", true)
            Service.settle()
            verify(AppModel.userInfo.farmProfiles.length >= 2)
        }

        function cleanup() {
            compare(Service.warnings(), [])
        }

        function test_buttons_data() {
            const data = []
            const components = { PButton: pButton, ImageButton: imageButton, ExpandButton: expandButton,
                                 SelectAllCheckbox: selectAll, SquareCheckBox: squareBox }
            for (const name in components) {
                for (const act of name === "SquareCheckBox" ? ["click", "Space"] : ["click", "Return", "Enter", "Space"])
                    data.push({ tag: name + " " + act, component: components[name], act: act })
            }
            return data
        }

        function test_buttons(row) {
            const button = make(row.component)
            const changes = button.up !== undefined ? "upChanged"
                          : button.checked !== undefined && !button.clicked ? "checkedChanged" : "clicked"
            const heard = spyOn(button, changes)
            if (row.act === "click") {
                mouseClick(button)
            } else {
                button.forceActiveFocus(Qt.TabFocusReason)
                Service.holdKey({ Return: Qt.Key_Return, Enter: Qt.Key_Enter, Space: Qt.Key_Space }[row.act])
                keyRelease(Qt.Key_Space)
            }
            compare(heard.count, 1)
        }

        function test_selectAllCheckbox() {
            const box = make(selectAll)
            compare(box.width, Scene.findText(box, "Select all").width + 20 + 30)
            mouseClick(box, 2, 2)
            verify(box.checked && box.activeFocus)
        }

        function test_pullToRefresh_data() {
            return [
                { tag: "100", pulled: 100, refreshes: 0 },
                { tag: "101", pulled: 101, refreshes: 1 },
                { tag: "scrolled", pulled: -500, refreshes: 0 }
            ]
        }

        function test_pullToRefresh(row) {
            const list = make(listView, { model: rows(100) })
            const heard = spyOn(list, "pullToRefreshReleased")
            list.contentY = -row.pulled
            const indicator = Scene.find(list, "pullIndicator")
            compare(indicator.height, row.pulled)
            compare(indicator.visible, row.refreshes > 0)
            list.dragEnded()
            compare(heard.count, row.refreshes)
        }

        function test_pullByMouseAndKey() {
            const list = make(listView, { model: rows(3) })
            const heard = spyOn(list, "pullToRefreshReleased")
            mouseDrag(list, 150, 20, 0, 60)
            compare(heard.count, 0)
            tryCompare(list, "contentY", 0)
            mouseDrag(list, 150, 20, 0, 360)
            compare(heard.count, 1)
            tryCompare(list, "contentY", 0)
            list.forceActiveFocus()
            keyClick(Qt.Key_F5)
            compare(heard.count, 2)
        }

        function test_placeOverReplacement_data() {
            return [
                { tag: "same length", count: 200, y: 1000, index: 25 },
                { tag: "longer", count: 5000, y: 1000, index: 25 },
                { tag: "shorter", count: 24, y: 800, index: 23 },
                { tag: "fits the view", count: 3, y: 0, index: 2 },
                { tag: "empty", count: 0, y: 0, index: -1 }
            ]
        }

        function test_placeOverReplacement(row) {
            const list = make(listView, { model: rows(200) })
            list.currentIndex = 25
            list.contentY = 1000
            tryCompare(list, "keptY", 1000)
            list.model = rows(row.count)
            compare([list.contentY - list.originY, list.currentIndex], [row.y, row.index])
            // Nothing scrolls on afterwards.
            wait(0)
            compare([list.contentY - list.originY, list.currentIndex], [row.y, row.index])
        }

        function test_keyboardFollowsTheCurrentRow() {
            const list = make(listView, { model: rows(50), currentIndex: 7 })
            list.forceActiveFocus()
            for (let i = 0; i < 5; ++i)
                keyClick(Qt.Key_Down)
            compare([list.currentIndex, list.contentY], [12, 250])
        }

        function test_settingItem() {
            const edits = []
            const item = make(baseItem, { labelText: "Label: " })
            item.valueEdited.connect(value => edits.push(value))
            const editor = Scene.find(item, "editor")
            item.defaultValue = 18
            item.defaultValue = "a <b>path</b>"
            item.defaultValue = "a <b>path</b>"
            mouseClick(editor)
            keyClick(Qt.Key_End)
            keyClick("x")
            item.defaultValue = null
            compare(edits, ["18", "a <b>path</b>", "a <b>path</b>x", ""])
            compare([item.width, item.height], [root.width, 50])

            mouseMove(item, 5, 5)
            tryCompare(item, "color", "#f5f5dc")
            editor.forceActiveFocus()
            mouseMove(root, 500, 500)
            tryCompare(editor, "activeFocus", false)
            compare(item.color.a, 0)
        }

        function test_settingItemTellsItsFirstValue() {
            const item = Qt.createQmlObject('import QtQuick 2.15; import "qrc:/qml/component";
                GlobalSettingBaseItem { property var edits: []; defaultValue: 7; onValueEdited: edits.push(newValue) }',
                root)
            compare(item.edits, ["7"])
            item.destroy()
        }

        function test_deviceToolBox_data() {
            return [
                { tag: "no device", device: undefined, save: true, confirms: false },
                { tag: "gone device", device: null, save: true, confirms: false },
                { tag: "not verified", device: { status: 0 }, save: false, confirms: true },
                { tag: "verified", device: { status: 1 }, save: true, confirms: false }
            ]
        }

        function test_deviceToolBox(row) {
            const box = make(deviceTools, { deviceObject: row.device, saveChangeEnable: row.save })
            const buttons = [
                { name: "confirmButton", text: "Confirm device", signal: "confirmSelectedDevice",
                  enabled: row.confirms },
                { name: "deleteButton", text: "Delete device", signal: "deleteSelectedDevice", enabled: true },
                { name: "saveButton", text: "Save change", signal: "saveSelectedDeviceConfig", enabled: row.save },
                { name: "detailsButton", text: "Details", signal: "viewSelectedDevice", enabled: true }
            ]
            let x = 0
            for (const expected of buttons) {
                const button = Scene.find(box, expected.name)
                const heard = spyOn(box, expected.signal)
                mouseClick(button)
                compare([button.text, button.enabled, button.x, heard.count],
                        [expected.text, expected.enabled, x, expected.enabled ? 1 : 0])
                x += button.width + 30
            }
            compare(box.width, x - 30)
            box.height = 0
            tryVerify(() => box.height > 0 && box.height < 50)
            tryCompare(box, "visible", false)
        }

        function test_cloneToolBoxOpensAndCloses() {
            const box = make(cloneTools)
            const arrow = Scene.find(box, "expandButton")
            const add = Scene.find(box, "addButton")
            compare([arrow.width, arrow.height, arrow.y, arrow.up], [50, 30, -30, true])
            verify(String(arrow.icon.source).endsWith("/expand_up_icon.png"))
            verify(!add.visible)
            mouseClick(arrow)
            compare([box.hidden, arrow.up, add.visible], [false, false, true])
            verify(String(arrow.icon.source).endsWith("/expand_down_icon.png"))
            tryVerify(() => box.y > 590 && box.y < 640)
            tryCompare(box, "y", 590)
            // The page opens and closes it too; the arrow still follows afterwards.
            box.hidden = true
            compare(arrow.up, true)
            tryCompare(add, "visible", false)
            box.hidden = false
            compare(arrow.up, false)
            mouseClick(arrow)
            compare(box.hidden, true)
        }

        function test_cloneToolBoxSignals() {
            const box = make(cloneTools, { hidden: false })
            const names = { addButton: "addClones", deleteButton: "deleteSelectedClones",
                            resetButton: "resetSelectedClones" }
            for (const name in names) {
                const heard = spyOn(box, names[name])
                mouseClick(Scene.find(box, name))
                compare(heard.count, 1)
            }
            compare(Scene.find(box, "addButton").x, 30)
            const all = spyOn(box, "selectAllChanged")
            mouseClick(Scene.find(box, "selectAll"))
            mouseClick(Scene.find(box, "selectAll"))
            compare([all.signalArguments[0][0], all.signalArguments[1][0]], [true, false])
        }

        function test_profileIsChosenOnlyOnPurpose() {
            AppModel.userInfo.createTempProfile()
            AppModel.userInfo.farmProfiles[1].profileName = "<b>A & B</b>"
            const box = make(cloneTools, { hidden: false })
            const combo = Scene.find(box, "profileBox")
            const heard = spyOn(box, "profileSelected")
            compare([combo.width, combo.count], [200, AppModel.userInfo.farmProfiles.length])
            compare(combo.displayText, AppModel.userInfo.farmProfiles[0].profileName)

            combo.forceActiveFocus()
            keyClick("a")
            mouseWheel(combo, 10, 10, 0, -120)
            compare(heard.count, 0)
            keyClick(Qt.Key_Down)
            tryCompare(combo.popup, "opened", true)
            compare(heard.count, 0)
            keyClick(Qt.Key_Down)
            tryVerify(() => Scene.search(root.Window.window, item => item.text === "<b>A & B</b>"
                                                                     && item.textFormat === Text.PlainText))
            keyClick(Qt.Key_Return)
            compare(heard.count, 1)
            compare(heard.signalArguments[0][0], "<b>A & B</b>")
            tryCompare(combo.popup, "visible", false)

            // Choosing the same one again counts.
            mouseClick(combo)
            tryCompare(combo.popup, "opened", true)
            keyClick(Qt.Key_Return)
            compare(heard.count, 2)
        }

        function test_addClones_data() {
            return [
                { tag: "nothing", text: "", network: 0, enabled: false },
                { tag: "no network", text: "1|a|b", network: 0, enabled: false },
                { tag: "no text", text: "", network: 1, enabled: false },
                { tag: "facebook", text: "1|a|b\n2|c|d", network: 1, enabled: true },
                { tag: "tiktok", text: "1|a|b", network: 2, enabled: true }
            ]
        }

        function test_addClones(row) {
            const popup = make(clonesPopup)
            popup.visible = true
            const field = Scene.find(popup, "clonesField")
            const add = Scene.find(popup, "addButton")
            const profileBox = Scene.find(popup, "profileBox")
            verify(field.activeFocus)
            compare([Scene.find(popup, "networkBox").currentText, profileBox.currentIndex], ["none", 0])
            field.text = row.text
            Scene.find(popup, "networkBox").currentIndex = row.network
            profileBox.currentIndex = 1
            const profile = profileBox.currentText
            compare(add.enabled, row.enabled)
            mouseClick(add)
            compare(popup.visible, !row.enabled)
            const bodies = Service.requestBodies("/api/v1/clone/add")
            compare(bodies.length, row.enabled ? 1 : 0)
            if (row.enabled) {
                compare(bodies[0].network, row.tag)
                compare(bodies[0].clones.length, row.text.split("\n").length)
                compare(bodies[0].clones[0].farm_profile, profile)
            }
        }
    }
}
