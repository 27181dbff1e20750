import QtQuick 2.15
import "qrc:/qml/Format.js" as Format

PageCase {
    readonly property string someFile: Format.localPath(Qt.resolvedUrl("scene.js"))

    function prepare() {
        Service.globalConfig = {
            velstrand_android_app_version: "112", velstrand_android_app_path: "https://localhost/a.apk",
            facebook_app_version: "431", velstrand_manager_app_version: "18",
            velstrand_manager_app_path: "https://localhost/m.zip", velstrand_definition_version: "27"
        }
    }

    function edit(setting, value) {
        click("editor", find(setting))
        retype(value)
    }

    name: "AdminSettings"
    menuRow: 3

    function test_apply_data() {
        return [
            { tag: "nothing", edits: {}, changed: {} },
            { tag: "all", edits: { androidAppVersion: "113", androidAppPath: "https://x/b c", facebookAppVersion: "432",
                                   managerAppVersion: "17", managerAppPath: "https://x/m", definitionsVersion: "28" },
              changed: { velstrand_android_app_version: "113", velstrand_android_app_path: "https://x/b c",
                         facebook_app_version: "432", velstrand_manager_app_version: "17",
                         velstrand_manager_app_path: "https://x/m", velstrand_definition_version: "28" } },
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
        tryVerify(() => text("editor", find("facebookAppVersion")) === expected.facebook_app_version)
    }

    function test_upload() {
        const sheet = find("uploadSheet")
        const upload = find("upload", sheet)
        find("uploadNewDefinitions").forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Return)
        verify(sheet.visible && find("version", sheet).activeFocus && !find("apply").enabled)
        compare([sheet.width, sheet.height], [page.width, page.height])
        for (const [version, path, enabled] of [["28", "", false], ["0", "/x", false], ["-3", "/x", false],
                                                ["abc", "/x", false], ["", "/x", false], ["28", someFile, true]]) {
            retype(version)
            find("path", sheet).text = path
            compare(upload.enabled, enabled, version + " " + path)
        }
        verifyTabs(["path", "browser", "upload"])
        keyClick(Qt.Key_Return)
        verify(!sheet.visible && find("apply").enabled)
        tryVerify(() => Service.definitions()[0] === 28)
        const [, fileName, size] = Service.definitions()
        verify(fileName === "scene.js" && size > 0)

        click("uploadNewDefinitions")
        keyClick(Qt.Key_Escape)
        verify(!sheet.visible)
    }

    function test_withoutAConfiguration() {
        Service.reset()
        Service.fail("/api/v1/config/get-global")
        AppModel.userInfo.token = Service.adminToken
        AppManager.checkUser()
        tryCompare(find("validateUserPopup"), "visible", false)
        open(menuRow)
        compare(text("editor", find("managerAppPath")), "loading ...")
        verify(!find("apply").enabled && !find("uploadNewDefinitions").enabled)
    }
}
