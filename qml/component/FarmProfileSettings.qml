import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import ".."

Item {
    id: page

    /// Brings the rows in line with the user's profiles. A profile that came last leaves the other rows, and
    /// what is being edited in them, as they are; otherwise all are new, and the open one is found by its name.
    /// Profiles are few: a loop over them costs nothing.
    function syncRows() {
        const profiles = AppModel.userInfo.farmProfiles
        if (rows.count > 0 && profiles.length === rows.count + 1 && profiles[0] === rows.get(0).profile) {
            rows.append({ profile: profiles[rows.count] })
            return
        }
        const current = list.currentRow
        const openName = current && current.expanded ? current.name : undefined
        const y = list.contentY
        rows.clear()
        list.currentIndex = -1
        for (let i = 0; i < profiles.length; ++i)
            rows.append({ profile: profiles[i] })
        const open = openName === undefined ? -1 : profiles.findIndex(profile => profile.profileName === openName)
        if (open < 0)
            return
        list.currentIndex = open
        list.currentRow.expand()
        list.forceLayout()
        list.contentY = y
        list.returnToBounds()
    }

    objectName: "farmProfileSettings"

    Component.onCompleted: syncRows()

    ListModel { id: rows }

    Connections {
        target: AppModel.userInfo

        function onFarmProfilesChanged() { page.syncRows() }
    }

    PButton {
        id: addButton

        objectName: "addProfile"
        anchors { top: parent.top; topMargin: 20; right: parent.right; rightMargin: 10 }
        width: 100
        height: QmlDefines.lineHeight
        text: qsTr("Add Profile")
        onClicked: {
            AppModel.userInfo.createTempProfile()
            list.currentIndex = list.count - 1
            list.currentRow.head.forceActiveFocus(Qt.TabFocusReason)
            list.positionViewAtIndex(list.currentIndex, ListView.Beginning)
        }
    }

    ListView {
        id: list

        readonly property FarmProfileRow currentRow: currentItem as FarmProfileRow

        /// Scrolls as little as shows all of @p item.
        function reveal(item) {
            const top = item.mapToItem(contentItem, 0, 0).y
            contentY = Math.min(top, Math.max(contentY, top + item.height - height))
        }

        objectName: "profileView"
        anchors { top: addButton.bottom; topMargin: 10; bottom: parent.bottom }
        width: parent.width
        clip: true
        activeFocusOnTab: true
        currentIndex: -1
        highlightFollowsCurrentItem: false
        // An open editor is taller than the view: closed rows are not to be rebuilt while scrolling past it.
        cacheBuffer: 2000
        model: rows

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Farm profiles")

        ScrollBar.vertical: ScrollBar {}

        // The keyboard needs a row to start from; a row that is clicked becomes the current one by itself.
        onActiveFocusChanged: {
            if (activeFocus && currentIndex < 0 && count > 0 && Window.activeFocusItem === list)
                currentIndex = 0
        }
        onCurrentItemChanged: if (currentRow && activeFocus) reveal(currentRow.head)
        // As in PListView: a row that is being built would be left behind.
        Component.onDestruction: model = null

        delegate: FarmProfileRow { onRevealRequested: function(item) { list.reveal(item) } }

        EmptyNote {
            objectName: "emptyNote"
            view: list
            text: qsTr("No farm profiles")
        }

        FocusFrame {
            parent: list
            border.width: 1
            visible: list.Window.activeFocusItem === list
        }
    }
}
