import QtQuick 2.15
import QtTest 1.15

PageCase {
    id: suite

    /// Leads through every page and opens what it can show; ends on the first one.
    function round() {
        for (let index = 0; index < 8; ++index) {
            open(index)
            Service.settle()
            const visit = [null, devices, clones, admin, profiles, reports, null, user][index]
            if (visit)
                visit()
            else
                compare(page === null, index === 6)
        }
        open(0)
        Service.settle()
    }

    function devices() {
        tryVerify(() => find("deviceRow3") !== null)
        mouseClick(find("deviceRow3"), 10, 20)
        mouseClick(find("deviceRow1"), 10, 20)
        tryVerify(() => find("toolBox", find("deviceRow1")).height > 0)
    }

    function clones() {
        tryVerify(() => find("cloneRow2") !== null)
        click("expandButton")
        mouseDoubleClickSequence(find("uid", find("cloneRow1")))
        find("filter3").text = "live"
        find("filter3").text = "nothing"
        tryCompare(find("emptyNote"), "visible", true)
        // Left while rows are built in the background.
        find("filter3").text = ""
    }

    function admin() {
        tryVerify(() => find("editor", find("managerAppVersion")).text !== "loading ...")
        click("uploadNewDefinitions")
        verify(find("uploadSheet").visible)
    }

    function profiles() {
        tryVerify(() => find("profileRow0") !== null)
        mouseClick(find("profileRow0"), 100, 25)
        mouseClick(find("profileRow1"), 100, 25)
    }

    function reports() {
        tryVerify(() => find("reportRow0") !== null)
        click("details", find("reportRow0"))
        tryVerify(() => find("incomeDetails").height > 200)
    }

    function user() {
        const holder = AppModel.userInfo
        compare([0, 1, 2, 3, 4, 5].map(index => text("userLine" + index)), [
            "Full Name: " + holder.fullName, "Username: " + holder.userName, "Token: " + Service.adminToken,
            "Phonenumber: " + holder.phoneNumber, "Validated: true", "User type: Admin"
        ])
        compare(find("userLine0").height, 50)
    }

    /// What is left when nothing is under way.
    function level() {
        Service.settle()
        let balance
        let last
        do {
            last = balance
            gc()
            wait(50)
            balance = Service.objectBalance()
        } while (balance !== last)
        return balance
    }

    name: "Tour"
    menuRow: 0

    function test_tenRoundsLeaveNothingBehind() {
        const levels = []
        for (let i = 0; i < 10; ++i) {
            round()
            levels.push(level())
        }
        compare(Service.warnings(), [])
        // The first rounds fill caches.
        verify(levels[9] <= levels[2], "objects after each round: " + levels)
    }
}
