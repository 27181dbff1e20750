import QtQuick 2.15

PageCase {
    function prepare() {
        setProfiles({ Alpha: { facebook_feed: 60, someday: 9, facebook_share_create_profile_page: 0 }, Beta: {} })
    }

    function setProfiles(profiles) {
        Service.setUser(Service.adminToken, Object.assign(Service.user(Service.adminToken), { farm_profiles: profiles }))
    }

    function stored() {
        return Service.user(Service.adminToken).farm_profiles
    }

    function row(index) {
        return find("profileRow" + index)
    }

    function openRow(index) {
        mouseClick(row(index), 100, 25)
        verify(row(index).expanded)
        return row(index)
    }

    function action(profile, index) {
        return find("action" + index, profile)
    }

    function setPercent(profile, index, digits) {
        const field = find("percent", action(profile, index))
        field.forceActiveFocus(Qt.TabFocusReason)
        retype(digits)
        return field
    }

    /// "name+percent" of an enabled action, "name-percent" of another.
    function shown(profile, index) {
        const line = action(profile, index)
        return text("actionName", line) + (find("enable", line).checked ? "+" : "-") + text("percent", line)
    }

    function save(profile) {
        find("save", profile).forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Return)
        compare(post("user/upsert-farm-profile").length, 1)
        Service.settle()
    }

    function settled() {
        tryVerify(() => row(1) !== null)
    }

    name: "Profiles"
    menuRow: 4

    function test_showsTheProfiles() {
        compare(find("profileView").count, 2)
        compare([text("profileName", row(0)), text("profileName", row(1))], ["Alpha", "Beta"])
        compare([row(0).height, row(1).height], [50, 50])
        // The first click of all, on the name of a row that is not the first.
        verify(find("profileName", openRow(1)).activeFocus)
        compare(find("profileView").currentIndex, 1)
        const alpha = openRow(0)
        compare([0, 1, 11].map(index => shown(alpha, index)),
                ["facebook_feed+60", "facebook_feed_like-0", "facebook_share_create_profile_page+0"])
        verify(find("profileName", alpha).readOnly)
        tryCompare(row(1), "y", 50 * 13)
        openRow(0)
        find("profileName", row(1)).forceActiveFocus()
        verify(row(1).expanded && !row(0).expanded)
        compare(row(0).height, 50)
    }

    function test_editAndReadBack() {
        const alpha = openRow(0)
        click("enable", action(alpha, 0))
        click("enable", action(alpha, 2))
        setPercent(alpha, 2, "45")
        find("enable", action(alpha, 4)).forceActiveFocus(Qt.TabFocusReason)
        keyClick(Qt.Key_Space)
        click("enable", action(alpha, 6))
        find("actionName", action(alpha, 6)).text = "renamed"
        compare(stored().Alpha.facebook_watch, undefined)
        save(alpha)
        compare(stored().Alpha, { facebook_watch: 45, facebook_add_suggest_friend: 0, renamed: 0,
                                  facebook_share_create_profile_page: 0 })
        compare(stored().Beta, {})
        tryVerify(() => row(0) !== alpha && row(0).expanded)
        compare([shown(row(0), 2), shown(row(0), 0)], ["facebook_watch+45", "facebook_feed-0"])
    }

    function test_createAProfile() {
        const alpha = openRow(0)
        setPercent(alpha, 1, "7")
        click("addProfile")
        compare(find("profileView").count, 3)
        const fresh = row(2)
        verify(fresh.expanded && !alpha.expanded)
        verify(find("profileName", fresh).activeFocus && !find("profileName", fresh).readOnly)
        compare(text("profileName", fresh), "Profile-0")
        // What is being edited elsewhere stays.
        compare(text("percent", action(alpha, 1)), "7")

        retype("")
        verify(!find("save", fresh).enabled)
        type("Aardvark")
        find("enable", action(fresh, 3)).forceActiveFocus()
        keyClick(Qt.Key_Space)
        setPercent(fresh, 3, "100")
        save(fresh)
        compare(Object.keys(stored()).sort(), ["Aardvark", "Alpha", "Beta"])
        compare(stored().Aardvark, { facebook_watch_like: 100 })
        // The service sorts by name; the open one is still the open one.
        tryVerify(() => row(0) !== alpha && text("profileName", row(0)) === "Aardvark" && row(0).expanded)
        verify(find("profileName", row(0)).readOnly)
    }

    function test_profilesFromElsewhere() {
        setProfiles({ One: {}, Three: {}, Two: { facebook_feed: 8 } })
        AppManager.checkUser()
        Service.settle()
        tryVerify(() => row(2) !== null)
        compare([0, 1, 2].map(index => text("profileName", row(index))), ["One", "Three", "Two"])
        compare(shown(openRow(2), 0), "facebook_feed+8")
    }

    function test_percentField_data() {
        return [["00", "0"], ["05", "05"], ["100", "100"], ["101", "10"], ["1x2", "12"], ["", ""]]
            .map(([typed, shown]) => ({ tag: typed || "empty", typed: typed, shown: shown }))
    }

    function test_percentField(data) {
        compare(setPercent(openRow(0), 0, data.typed).text, data.shown)
        save(row(0))
        compare(stored().Alpha.facebook_feed, parseInt(data.shown) || 0)
    }

    function test_failedSaveKeepsTheEdits() {
        Service.fail("/api/v1/user/upsert-farm-profile")
        const alpha = openRow(0)
        setPercent(alpha, 0, "33")
        find("save", alpha).forceActiveFocus()
        keyClick(Qt.Key_Space)
        compare(text("notificationText"), "Save profile failure!")
        compare(stored().Alpha.facebook_feed, 60)
        compare(text("percent", action(alpha, 0)), "33")
        verify(alpha.expanded)
    }

    function test_focusScrollsIntoView() {
        const alpha = openRow(0)
        const view = find("profileView")
        find("enable", action(alpha, 0)).forceActiveFocus(Qt.TabFocusReason)
        for (let i = 0; i < 3 * 11; ++i)
            keyClick(Qt.Key_Tab)
        verify(find("enable", action(alpha, 11)).activeFocus)
        const y = action(alpha, 11).mapToItem(view, 0, 0).y
        verify(y >= 0 && y + 50 <= view.height, y)
        keyClick(Qt.Key_Down)
        verify(alpha.expanded)
        keyClick(Qt.Key_Up)
        verify(action(alpha, 10).activeFocus)
    }

    function test_tabClickIsAScriptError() {
        click("tab0")
        compare(Service.warnings().length, 1)
        verify(Service.warnings()[0].includes("tabIndex is not defined"))
        compare(find("tabStrip").currentIndex, 0)
        compare(find("tabContent").item.objectName, "farmProfileSettings")
    }
}
