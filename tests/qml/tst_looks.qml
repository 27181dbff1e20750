import QtQuick 2.15

/// What a person sees besides the data: pictures, labels, colours, forms and fixed sizes.
PageCase {
    /// What shows of @p root: its size ("60x40", "60x", "x40") and of all that is in it pictures by file name, texts,
    /// colours ("#rrggbb"; gradients with the stop and borders with the width before it), radii ("r4"), opacities
    /// ("o0.8") and fonts ("px30", "bold", "demibold").
    function look(root) {
        const [width, height] = [Math.round(root.width), Math.round(root.height)]
        const seen = [width + "x" + height, width + "x", "x" + height]
        function see(item) {
            if (!item.visible || item.opacity === 0)
                return
            seen.push("o" + item.opacity)
            for (const picture of [item.source, item.icon && item.icon.source])
                seen.push(String(picture).replace("qrc:/images/", ""))
            if (item.color !== undefined)
                seen.push(String(item.color))
            if (item.border && item.radius !== undefined)
                seen.push("r" + Math.round(item.radius), item.border.width + String(item.border.color))
            for (let i = 0; item.gradient && i < item.gradient.stops.length; ++i)
                seen.push(item.gradient.stops[i].position + String(item.gradient.stops[i].color))
            if (item.text && item.font)
                seen.push(item.text, "px" + item.font.pixelSize, { 63: "demibold", 75: "bold" }[item.font.weight])
            Array.from(item.children).forEach(see)
        }
        see(root)
        return seen
    }

    function button(label, size) {
        return [label, size, "#99ccff", "1#26282a", "r4"]
    }

    name: "Looks"
    menuRow: 0

    function test_looks_data() {
        const user = Service.user(Service.adminToken)
        return [
            { tag: "window", page: 0, looks: {
                mainHeader: ["1280x100"], logo: ["velstrand_logo.png", "x96"], userBlock: ["user_icon.png", "x50"],
                mainMenu: ["0#0f008000", "1#f0008000", "r10"],
                menuRow0: ["Home", "0#808080", "1#0f008000", "#cce6ff", "#ffffff", "x50"], menuRow1: ["Devices", "0#00000000"],
                menuRow2: ["Clones"], menuRow3: ["Admin Settings"], menuRow4: ["Settings"], menuRow5: ["Make money"],
                menuRow6: ["Utils"], menuRow7: ["User information"],
                homePage: ["Welcome to Velstrand\nGoodluck for you", "#4da6ff", "px30"], homeLogo: ["velstrand_logo.png", "268x"],
                notificationsBar: ["1280x50", "r2", "o0.9", "px15", "demibold", "#ffffff"] } },
            { tag: "account", page: 0, show: () => click("userBlock"), looks: {
                accountPanel: ["#cce6ff", "r10", "400x120"], currentUser: ["user_icon.png", "#008000", "#ffffff", "r18", "x70"],
                addAccount: ["add_user_icon.png", "Add new account", "x50"] } },
            { tag: "devices", page: 1, show: () => click("deviceRow0/label"), looks: {
                head0: ["Device (total: 12)", "bold", "x30"], head1: ["Model"], head2: ["Status"], head3: ["Clone"],
                head4: ["Connectivity"], head5: ["Label"], head6: ["Last Getting Jobs"],
                deviceListPage: ["#4d4d4d", "#ffffff"], deviceRow0: ["1", "#3f4d94ff", "r16", "x100"],
                deviceRow1: ["2", "#99ccff", "x50"], "deviceRow0/label": ["2#21be2b", "r16"], "deviceRow1/label": ["1#bdbdbd"],
                "deviceRow0/toolBox": ["#e6f0ff", "r10", "x50"], confirmButton: ["confirm_icon.png", "Confirm device"],
                deleteButton: ["delete_icon.png", "Delete device"], saveButton: ["save_icon.png", "Save change"],
                detailsButton: ["details_icon.png", "Details"] } },
            { tag: "clones", page: 2, show: () => {
                mouseDoubleClickSequence(find("cloneRow0/uid"))
                find("filter0").forceActiveFocus() }, looks: {
                head0: ["Uid (total: 60)", "bold"], head1: ["Network"], head2: ["Device"], head3: ["Status"],
                head4: ["Restriction"], head5: ["Farm Profile"], filter0: ["1#21be2b", "r79", "x25"],
                filter1: ["1#808080", "search_icon.ico", "o0.3"], filter2: ["1#808080", "search_icon.ico", "o1"],
                cloneListPage: ["#4d4d4d", "#ffffff"], cloneRow0: ["1", "#3f4d94ff", "r16", "x50", "Copied", "#808080", "o0.5", "r5"],
                expandButton: ["expand_up_icon.png", "50x30"] } },
            { tag: "clone tools", page: 2, show: () => click("expandButton"), looks: {
                cloneToolBox: ["#e6f0ff", "r10", "x50", "profile_icon.png"], expandButton: ["expand_down_icon.png"],
                addButton: ["add_icon.ico", "Add Clone"], deleteButton: ["delete_icon.png", "Delete Clone"],
                resetButton: ["reset_icon.png", "Reset Clone"], profileBox: ["200x40"], selectAll: ["un_select_all_icon.png", "Select all", "x40"] } },
            { tag: "all clones", page: 2, show: () => {
                click("expandButton")
                find("selectAll").checked = true }, looks: { selectAll: ["select_all_icon.png"] } },
            { tag: "import", page: 2, show: () => find("inputClonesPopup").visible = true, looks: {
                inputClonesPopup: ["#ffffff", "o0.98", "Select network: ", "Select profile: ", "1#4d94ff",
                                   "Enter Clones (format: UID|PASSWORD|2FA)"],
                networkBox: ["none", "#4d94ff", "1#4d94ff", "r2", "100x40"], "inputClonesPopup/profileBox": ["200x40"],
                clonesField: ["798x398"], "inputClonesPopup/addButton": button("Add", "80x50") } },
            { tag: "admin", page: 3, looks: {
                androidAppVersion: ["VS android app verion: ", "bold", "r10", "x50"], androidAppPath: ["VS android app path: "],
                facebookAppVersion: ["Facebook app verion: "], managerAppVersion: ["VS manager app verion: "],
                managerAppPath: ["VS manager app path: "], definitionsVersion: ["VS definitions version: "],
                uploadNewDefinitions: button("Upload new definitions", "x30"), apply: button("Apply", "60x40") } },
            { tag: "upload", page: 3, show: () => click("uploadNewDefinitions"), looks: {
                uploadSheet: ["#ffffff", "o0.98", "Version: ", "File: "],
                version: ["enter definitions version", "500x30", "1#4d94ff"], path: ["enter file path", "500x30", "1#808080"],
                browser: button("Browser", "100x30"), upload: button("Upload", "x40") } },
            { tag: "profiles", page: 4, show: () => {
                tryVerify(() => find("profileRow0"))
                mouseClick(find("profileRow0"), 300, 25)
                find("action0/enable").forceActiveFocus() }, looks: {
                tab0: ["Farm Profile", "0#2f008000", "0.5#08008000", "1#00000000", "200x100"], profileRow1: ["#99ccff", "x50"],
                addProfile: button("Add Profile", "100x30"), profileName: ["0#17a81a", "200x50"],
                action0: ["random percent: ", "#0f4d94ff", "r4", "x50"], "action0/enable": ["#21be2b", "1#21be2b", "r3", "20x20"],
                "action0/percent": ["40x30"], save: button("Save", "70x30") } },
            { tag: "new profile", page: 4, show: () => click("addProfile"), looks: { "profileRow3/profileName": ["1#17a81a"] } },
            { tag: "reports", page: 5, looks: {
                reportRow0: ["#99ccff"], "reportRow0/jobs": ["#e6f2ff", "r5"],
                "reportRow0/summary": ["400x40"], "reportRow0/details": button("Details", "80x40") } },
            { tag: "income", page: 5, show: () => click("reportRow0/details"), looks: {
                incomeDetails: ["#f5f5f5", "r10"], close: ["close_icon.png", "40x40"],
                incomeRow0: ["#e6f2ff", "r5", "x30", "#000000", "o0.8", "#99ccff"] } },
            { tag: "user", page: 7, looks: {
                userLine0: ["Full Name: " + user.fullname, "x50", "demibold"],
                userLine1: ["Username: " + user.username], userLine2: ["Token: " + Service.adminToken],
                userLine3: ["Phonenumber: " + user.phonenumber], userLine4: ["Validated: true"],
                userLine5: ["User type: Admin"] } },
            { tag: "token", page: 0, show: () => AppModel.userInfo.token = "", looks: {
                inputUserTokenPopup: ["#ffffff", "o0.8"], tokenField: ["Enter user token", "400x50"], continueButton: button("Continue", "80x50") } },
            { tag: "validation", page: 0, show: () => {
                AppModel.userInfo.token = ""
                AppModel.userInfo.token = "x" }, looks: {
                validateUserPopup: ["#ffffff", "o0.8", "Validating user info ...", "#4da6ff"] } }
        ]
    }

    function test_looks(data) {
        open(data.page)
        Service.settle()
        // The clones come a moment after their page, in place of those that it shows.
        if (data.page === 2)
            tryVerify(() => post("clone/list").length === 1)
        Service.settle()
        if (data.show)
            data.show()
        for (const name in data.looks)
            tryVerify(() => find(name) && data.looks[name].every(trait => look(find(name)).includes(trait)), 5000,
                      name + " lacks " + data.looks[name].filter(trait => !look(find(name)).includes(trait)))
    }
}
