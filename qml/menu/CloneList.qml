import QtQuick 2.15
import "../component"
import "../Format.js" as Format
import "../popup"

Item {
    id: page

    readonly property var columns: [
        { id: 0, label: qsTr("Uid (total: ") + AppModel.totalFilteredClones + ")", filterable: true },
        { id: 1, label: qsTr("Network"), filterable: false },
        { id: 2, label: qsTr("Device"), filterable: true },
        { id: 3, label: qsTr("Status"), filterable: true },
        { id: 4, label: qsTr("Restriction"), filterable: false },
        { id: 5, label: qsTr("Farm Profile"), filterable: true }
    ]
    /// Accepted values by column id; an empty list accepts all.
    property var filters: ({ 0: [], 2: [], 3: [], 5: [] })
    /// The filters of a page that is being built are no change: the clones stay filtered as they were.
    property bool opened: false
    readonly property bool filtering: filters[0].length + filters[2].length + filters[3].length + filters[5].length > 0

    function setFilter(column, text) {
        const changed = Object.assign({}, filters)
        changed[column] = Format.lines(text)
        filters = changed
    }

    function applyFilters() {
        AppManager.updateFilteredClone({
            "uid": filters[0],
            "device_id": filters[2],
            "status": filters[3].map(Format.cloneStatusCode),
            "farm_profile": filters[5]
        })
    }

    objectName: "cloneListPage"

    onFiltersChanged: {
        if (!opened)
            return
        applyFilters()
        list.currentIndex = -1
        list.positionViewAtBeginning()
    }

    Component.onCompleted: opened = true

    Timer {
        interval: 100
        running: true
        onTriggered: AppManager.getCloneList()
    }

    Connections {
        target: AppModel

        // New clones all pass.
        function onCloneListChanged() {
            if (page.filtering)
                page.applyFilters()
        }
    }

    Connections {
        target: AppIO
        // Over the page, these keys belong to the popup or to the window's overlays.
        enabled: !popup.visible && AppModel.userInfo.isValidated

        function onKeyboardSelectAll() {
            AppManager.selectAllClone(true)
        }

        function onKeyboardCopy() {
            AppManager.copyUIDsSelectedClones()
        }
    }

    Item {
        anchors.fill: parent
        enabled: !popup.visible

        Row {
            id: heads

            width: parent.width
            height: 60

            Repeater {
                // The number of columns, not the columns: a changed total must not make new fields.
                model: page.columns.length

                delegate: Item {
                    readonly property var column: page.columns[index]

                    width: heads.width / page.columns.length
                    height: heads.height

                    Rectangle {
                        width: 1
                        height: parent.height
                        color: "#4d4d4d"
                    }

                    Rectangle {
                        anchors.right: parent.right
                        width: 1
                        height: parent.height
                        color: "#4d4d4d"
                    }

                    Text {
                        objectName: "head" + index
                        width: parent.width
                        height: 30
                        padding: 4
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        text: column.label
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font.bold: true
                    }

                    FilterField {
                        objectName: "filter" + index
                        y: 30
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: parent.width - 20
                        enabled: column.filterable

                        Accessible.name: qsTr("Filter") + " " + column.label

                        onTextChanged: page.setFilter(column.id, text)
                    }
                }
            }
        }

        Rectangle {
            id: area

            anchors.top: heads.bottom
            anchors.topMargin: 10
            anchors.horizontalCenter: parent.horizontalCenter
            width: parent.width - 20
            height: parent.height - 50
            color: "white"

            PListView {
                id: list

                property bool wide: false
                property bool checkable: false

                function widen() {
                    wide = true
                }

                objectName: "cloneView"
                // The area reaches below the page; the last row stands clear of that and of the tool box.
                anchors.fill: parent
                anchors.bottomMargin: area.y + area.height - page.height + (toolBox.hidden ? 0 : toolBox.height)
                // Keeps the rows around the view built: bit by bit, but not those that a first layout asks for.
                cacheBuffer: wide ? 100 * height : 0
                clip: true
                currentIndex: -1
                model: AppModel.filteredCloneList

                Accessible.role: Accessible.List
                Accessible.name: qsTr("Clones")

                onPullToRefreshReleased: AppManager.getCloneList()

                Component.onCompleted: Qt.callLater(list.widen)

                delegate: CloneRow {
                    columnWidth: page.width / page.columns.length
                    checkable: list.checkable
                    onHeld: toolBox.hidden = false
                }

                EmptyNote {
                    objectName: "emptyNote"
                    view: list
                    text: page.filtering ? qsTr("No clones pass the filter") : qsTr("No clones")
                }
            }
        }

        // Without height at the page's lower edge: the tool box slides out of it, and never on a resize.
        Item {
            anchors.bottom: parent.bottom
            width: parent.width

            CloneToolBox {
                id: toolBox

                objectName: "cloneToolBox"
                y: hidden ? 0 : -height
                width: parent.width
                height: 50

                // The rows in view change at once, the many around it are built anew in the background.
                onHiddenChanged: {
                    list.wide = false
                    list.checkable = !hidden
                    Qt.callLater(list.widen)
                }
                onSelectAllChanged: AppManager.selectAllClone(selected)
                onProfileSelected: AppManager.updateFarmProfile(profile)
                onAddClones: popup.visible = true
                onDeleteSelectedClones: AppManager.deleteSelectedClone()
                onResetSelectedClones: AppManager.resetSelectedClone()
            }
        }
    }

    InputClonesPopup {
        id: popup

        objectName: "inputClonesPopup"
        anchors.fill: parent
        visible: false
        onVisibleChanged: {
            if (!visible)
                list.forceActiveFocus(Qt.TabFocusReason)
        }
    }
}
