import QtQuick 2.15

/// A test of the clone page with six clones.
PageCase {
    function clone(index, uid, device, status, profile, restriction) {
        return { id: "id" + index, uid: uid, device_id: device, status: status, farm_profile: profile, network: "facebook",
                 restriction: restriction, cookies: "", email: "", firstname: "", lastname: "", mail_password: "",
                 novery: false, password: "p" + index, secretkey: "", secure_flags: 0, user_id: "u1" }
    }

    function prepare() {
        const profiles = Object.keys(Service.user(Service.adminToken).farm_profiles)
        Service.clones = [
            clone(0, "100", "dev-a", 1, profiles[0], 1), clone(1, "101", "dev-b", 2, profiles[1], 6),
            clone(2, "102", "dev-a", 4, profiles[1], 31), clone(3, "103", "dev-c", 8, "", 16),
            clone(4, "104", "dev-b", 1, profiles[0], 0), clone(5, "105", "", 3, "", 1)
        ]
    }

    function row(place) {
        return find("cloneRow" + place)
    }

    /// Numbers of the rows that the page shows.
    function numbers() {
        const shown = []
        for (let place = 0; place < 8; ++place) {
            if (row(place) && row(place).visible && row(place).height === 50)
                shown.push(Number(text("number", row(place))))
        }
        return shown
    }

    function verifyNumbers(expected) {
        tryVerify(() => JSON.stringify(numbers()) === JSON.stringify(expected), 5000, "rows " + numbers())
        compare(text("head0"), "Uid (total: " + expected.length + ")")
    }

    function selection() {
        return [0, 1, 2, 3, 4, 5].filter(place => row(place) && find("rowBackground", row(place)).color.a > 0)
    }

    function setFilter(column, lines) {
        find("filter" + column).setValue(lines)
    }

    function controlClick(place) {
        keyPress(Qt.Key_Control, Qt.ControlModifier)
        mouseClick(row(place))
        keyRelease(Qt.Key_Control)
    }

    function openToolBox() {
        click("expandButton")
        tryCompare(find("cloneToolBox"), "y", -50)
    }

    function settled() {
        // The page asks for the list 100 ms after it is opened.
        tryVerify(() => post("clone/list").length === 1)
        Service.settle()
        verifyNumbers([1, 2, 3, 4, 5, 6])
    }

    menuRow: 2
}
