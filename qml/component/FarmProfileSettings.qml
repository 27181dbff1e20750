import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15

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
        const openName = list.currentItem && list.currentItem.expanded ? list.currentItem.name : undefined
        const y = list.contentY
        rows.clear()
        list.currentIndex = -1
        for (let i = 0; i < profiles.length; ++i)
            rows.append({ profile: profiles[i] })
        const open = openName === undefined ? -1 : profiles.findIndex(profile => profile.profileName === openName)
        if (open < 0)
            return
        list.currentIndex = open
        list.currentItem.expand()
        list.forceLayout()
        list.contentY = y
        list.returnToBounds()
    }

    objectName: "farmProfileSettings"

    Component.onCompleted: syncRows()

    ListModel {
        id: rows
    }

    Connections {
        target: AppModel.userInfo

        function onFarmProfilesChanged() {
            page.syncRows()
        }
    }

    PButton {
        id: addButton

        objectName: "addProfile"
        anchors.top: parent.top
        anchors.topMargin: 20
        anchors.right: parent.right
        anchors.rightMargin: 10
        width: 100
        height: 30
        text: qsTr("Add Profile")
        onClicked: {
            AppModel.userInfo.createTempProfile()
            list.currentIndex = list.count - 1
            list.currentItem.head.forceActiveFocus(Qt.TabFocusReason)
            list.positionViewAtIndex(list.currentIndex, ListView.Beginning)
        }
    }

    ListView {
        id: list

        /// Scrolls as little as shows all of @p item.
        function reveal(item) {
            const top = item.mapToItem(contentItem, 0, 0).y
            contentY = Math.min(top, Math.max(contentY, top + item.height - height))
        }

        objectName: "profileView"
        anchors.top: addButton.bottom
        anchors.topMargin: 10
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
        activeFocusOnTab: true
        currentIndex: -1
        highlightFollowsCurrentItem: false
        // An open editor is taller than the view, and closed ones must not be made again while it is passed.
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
        onCurrentItemChanged: {
            if (currentItem && activeFocus)
                reveal(currentItem.head)
        }

        delegate: FarmProfileRow {}

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
