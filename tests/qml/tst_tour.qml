import QtQuick 2.15

PageCase {
    function prepare() {
        // More than fit into the view and what it builds at once.
        const profiles = {}
        for (let i = 0; i < 55; ++i)
            profiles["profile" + i] = {}
        Service.setUser(Service.adminToken, Object.assign(Service.user(Service.adminToken), { farm_profiles: profiles }))
    }

    /// Objects once nothing is under way and nobody holds what is no longer used.
    function objects() {
        Service.settle()
        gc()
        Service.settle()
        return Service.objectBalance()
    }

    name: "Tour"
    menuRow: 0

    function test_leavesNothingBehind_data() {
        return [
            { tag: "Home", row: 0 }, { tag: "Utils", row: 6 }, { tag: "User information", row: 7 },
            { tag: "Devices", row: 1, view: "deviceView", visit: () => {
                click("deviceRow3/androidId")
                click("deviceRow1/androidId")
                tryVerify(() => find("deviceRow1/toolBox").height > 0) } },
            { tag: "Clones", row: 2, view: "cloneView", visit: () => {
                click("expandButton")
                mouseDoubleClickSequence(find("cloneRow1/uid"))
                find("filter3").text = "nothing"
                tryCompare(find("emptyNote"), "visible", true)
                find("filter3").text = "" } },
            { tag: "Admin Settings", row: 3, visit: () => click("uploadNewDefinitions") },
            { tag: "Settings", row: 4, view: "profileView", visit: () => {
                click("profileRow0/profileName")
                click("profileRow1/profileName") } },
            { tag: "Make money", row: 5, view: "reportsPage", visit: () => {
                click("reportRow0/details")
                tryVerify(() => find("incomeDetails").height > 200) } }
        ]
    }

    function test_leavesNothingBehind(data) {
        let before = 0
        Service.holdBuilding()
        for (let i = 0; i < 60; ++i) {
            find("mainMenu").currentIndex = data.row
            compare(find("mainContent").item === null, data.row === 6)
            // Left at once, with a row in one of the states that it is built in, or after a look round.
            if (i % 10 === 9) {
                Service.settle()
                if (data.view)
                    tryVerify(() => find(data.view).itemAtIndex(0) !== null)
                if (data.visit)
                    data.visit()
            } else if (i % 5 % 4 > 0 && data.view) {
                find(data.view).positionViewAtIndex(data.row === 4 ? 9 : 0, ListView.Beginning)
                tryVerify(() => Service.building())
                for (let part = 0; part < i % 5; ++part)
                    Service.buildPart()
            }
            find("mainMenu").currentIndex = 0
            Service.settle()
            // The first visits fill caches.
            if (i === 9)
                before = objects()
        }
        compare(Service.warnings(), [])
        // Less than a row.
        tryVerify(() => objects() < before + 10, 5000, "objects more: " + (objects() - before))
    }
}
