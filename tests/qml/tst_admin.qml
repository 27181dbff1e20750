import QtQuick 2.15
import QtTest 1.15
import "qrc:/qml/Format.js" as Format

PageCase {
    id: suite

    readonly property string someFile: Format.localPath(Qt.resolvedUrl("scene.js"))

    function prepare() {
        Service.globalConfig = {
            velstrand_android_app_version: "112", velstrand_android_app_path: "https://localhost/a.apk",
            facebook_app_version: "431", velstrand_manager_app_version: "18",
            velstrand_manager_app_path: "https://localhost/m.zip", velstrand_definition_version: "27"
        }
    }

    function edit(setting, value) {
        mouseClick(find("editor", find(setting)))
        keyClick(Qt.Key_A, Qt.ControlModifier)
        keyClick(Qt.Key_Delete)
        type(value)
    }

    name: "AdminSettings"
    menuRow: 3

    function test_showsTheConfiguration() {
        compare(["androidAppVersion", "androidAppPath", "facebookAppVersion", "managerAppVersion", "managerAppPath",
                 "definitionsVersion"].map(name => text("editor", find(name))),
                ["112", "https://localhost/a.apk", "431", "18", "https://localhost/m.zip", "27"])
        compare([find("apply").width, find("apply").height, find("uploadNewDefinitions").height], [60, 40, 30])
    }

    function test_apply_data() {
        return [
            { tag: "nothing", edits: {}, changed: {} },
            { tag: "versions", edits: { androidAppVersion: "113", definitionsVersion: "28" },
              changed: { velstrand_android_app_version: "113", velstrand_definition_version: "28" } },
            { tag: "path", edits: { androidAppPath: "https://x/b c" }, changed: { velstrand_android_app_path: "https://x/b c" } },
            { tag: "emptied fields", edits: { facebookAppVersion: "", managerAppPath: "" }, changed: {} }
        ]
    }

    function test_apply(data) {
        const expected = Object.assign(Service.globalConfig, data.changed)
        for (const setting in data.edits)
            edit(setting, data.edits[setting])
        compare(post("config/update-global"), [])
        click("apply")
        compare(text("notificationText"), "Save global config successful!")
        compare(post("config/update-global").length, 1)
        compare(Service.globalConfig, expected)
        Service.settle()
        tryVerify(() => text("editor", find("facebookAppVersion")) === "431")
    }

    function test_emptiedFieldsAreLeftOut() {
        edit("facebookAppVersion", "")
        edit("androidAppPath", "")
        click("apply")
        const sent = JSON.stringify(post("config/update-global")[0])
        verify(!sent.includes("facebook_app_version") && !sent.includes("android_app_path"), sent)
        verify(sent.includes("velstrand_manager_app_path"))
    }

    function test_uploadNeedsVersionAndFile_data() {
        return [
            { tag: "both", version: "28", path: "/x", enabled: true },
            { tag: "no path", version: "28", path: "", enabled: false },
            { tag: "zero", version: "0", path: "/x", enabled: false },
            { tag: "negative", version: "-3", path: "/x", enabled: false },
            { tag: "word", version: "abc", path: "/x", enabled: false },
            { tag: "none", version: "", path: "/x", enabled: false }
        ]
    }

    function test_uploadNeedsVersionAndFile(data) {
        const sheet = find("uploadSheet")
        verify(!sheet.visible)
        click("uploadNewDefinitions")
        verify(sheet.visible && find("version", sheet).activeFocus)
        compare([sheet.width, sheet.height], [page.width, page.height])
        type(data.version)
        find("path", sheet).text = data.path
        compare(find("upload", sheet).enabled, data.enabled)
        verify(!find("apply").enabled)
        keyClick(Qt.Key_Escape)
        verify(!sheet.visible && find("apply").enabled)
    }

    function test_upload() {
        const sheet = find("uploadSheet")
        find("uploadNewDefinitions").forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Return)
        type("28")
        keyClick(Qt.Key_Tab)
        verify(find("path", sheet).activeFocus)
        find("path", sheet).text = someFile
        keyClick(Qt.Key_Tab)
        verify(find("browser", sheet).activeFocus)
        keyClick(Qt.Key_Tab)
        keyClick(Qt.Key_Return)
        verify(!sheet.visible)
        tryVerify(() => Service.definitions().version === 28)
        compare(Service.definitions().fileName, "scene.js")
        verify(Service.definitions().size > 0)
    }

    function test_withoutAConfiguration() {
        Service.reset()
        Service.setFault("/api/v1/config/get-global", "HttpError")
        AppModel.userInfo.token = Service.adminToken
        AppManager.checkUser()
        tryCompare(find("validateUserPopup"), "visible", false)
        open(menuRow)
        compare(text("editor", find("managerAppPath")), "loading ...")
        verify(!find("apply").enabled && !find("uploadNewDefinitions").enabled)
    }
}
