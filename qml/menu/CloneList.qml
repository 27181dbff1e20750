import QtQuick 2.15
import ".."
import "../component"
import "../Format.js" as Format

Item {
    id: page

    readonly property var columns: [
        { name: "uid", label: qsTr("Uid (total: ") + AppModel.totalFilteredClones + ")", filterable: true, unit: qsTr("uids") },
        { name: "network", label: qsTr("Network"), filterable: false },
        { name: "device_id", label: qsTr("Device"), filterable: true, unit: qsTr("devices") },
        { name: "status", label: qsTr("Status"), filterable: true, unit: qsTr("statuses") },
        { name: "restriction", label: qsTr("Restriction"), filterable: false },
        { name: "farm_profile", label: qsTr("Farm Profile"), filterable: true, unit: qsTr("profiles") }
    ]
    /// Accepted values by column name; an empty list accepts all.
    property var filters: ({ uid: [], device_id: [], status: [], farm_profile: [] })
    /// The filters of a page that is being built are no change: the clones stay filtered as they were.
    property bool opened: false
    property bool filtersApplied: false
    readonly property bool filtering: Object.values(filters).some(values => values.length > 0)

    function setFilter(column, values) {
        filters = Object.assign({}, filters, { [column]: values })
    }

    function applyFilters() {
        filtersApplied = true
        AppManager.updateFilteredClone(
                    Object.assign({}, filters, { status: filters.status.map(Format.cloneStatusCode) }))
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
        target: AppManager

        // From the first list on that this page has asked for, its own filters hold.
        function onGetCloneListDone() {
            if (!page.filtersApplied)
                page.applyFilters()
        }
    }

    Connections {
        target: AppIO
        // Over the page, these keys belong to the popup or to the window's overlays.
        enabled: !popup.visible && AppModel.userInfo.isValidated

        function onKeyboardSelectAll() { AppManager.selectAllClone(true) }

        function onKeyboardCopy() { AppManager.copyUIDsSelectedClones() }
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

                delegate: ColumnHead {
                    id: head

                    required property int index
                    readonly property var column: page.columns[index]

                    objectName: "head" + index
                    width: heads.width / page.columns.length
                    height: heads.height
                    text: column.label

                    Rectangle {
                        anchors.right: parent.right
                        width: 1
                        height: parent.height
                        color: QmlDefines.headRuleColor
                    }

                    FilterField {
                        objectName: "filter" + head.index
                        y: QmlDefines.lineHeight
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: parent.width - 20
                        enabled: head.column.filterable
                        unit: head.column.unit || ""

                        Accessible.name: qsTr("Filter") + " " + head.text

                        onValuesChanged: page.setFilter(head.column.name, values)
                    }
                }
            }
        }

        Rectangle {
            id: area

            anchors { top: heads.bottom; topMargin: 10; horizontalCenter: parent.horizontalCenter }
            width: parent.width - 20
            height: parent.height - 50
            color: QmlDefines.sheetColor

            RecordView {
                id: list

                property bool wide: false
                property bool checkable: false

                function widen() { wide = true }

                objectName: "cloneView"
                // The area reaches below the page; the last row stands clear of that, of the tool box and of the note.
                anchors.fill: parent
                anchors.bottomMargin: area.y + area.height - page.height + (toolBox.hidden ? 0 : toolBox.height)
                                      + (ticksNote.visible ? ticksNote.height : 0)
                // Keeps the rows around the view built: bit by bit, but not those that a first layout asks for.
                cacheBuffer: wide ? 3 * height : 0
                model: AppModel.cloneModel
                emptyText: page.filtering ? qsTr("No clones pass the filter") : qsTr("No clones")

                Accessible.name: qsTr("Clones")

                onPullToRefreshReleased: AppManager.getCloneList()

                Component.onCompleted: Qt.callLater(list.widen)

                delegate: CloneRow {
                    columnWidth: page.width / page.columns.length
                    checkable: list.checkable
                    onToolBoxRequested: toolBox.hidden = false
                }
            }
        }

        // A strip without height at the page's lower edge. The tool box slides out of it, but not when the window
        // is resized.
        Item {
            anchors.bottom: parent.bottom
            width: parent.width

            Rectangle {
                id: ticksNote

                readonly property int ticked: AppModel.cloneModel.ticked
                readonly property int hidden: AppModel.cloneModel.tickedHidden

                objectName: "ticksNote"
                x: QmlDefines.toolSpacing
                y: toolBox.y - height
                width: ticksText.width + 2 * QmlDefines.panelRadius
                height: QmlDefines.lineHeight
                visible: ticked > 0
                radius: QmlDefines.panelRadius
                color: QmlDefines.toolBoxColor

                PlainText {
                    id: ticksText

                    objectName: "ticksText"
                    anchors.centerIn: parent
                    text: ticksNote.hidden > 0
                          ? qsTr("%1 selected, %2 hidden by the filter").arg(ticksNote.ticked).arg(ticksNote.hidden)
                          : qsTr("%1 selected").arg(ticksNote.ticked)
                }
            }

            CloneToolBox {
                id: toolBox

                objectName: "cloneToolBox"
                y: hidden ? 0 : -height
                width: parent.width
                height: QmlDefines.rowHeight

                // The rows in view change at once, the many around it are built anew in the background.
                onHiddenChanged: {
                    list.wide = false
                    list.checkable = !hidden
                    Qt.callLater(list.widen)
                }
                onSelectAllChanged: function(selected) { AppManager.selectAllClone(selected) }
                onProfileSelected: function(profile) { AppManager.updateFarmProfile(profile) }
                onAddClones: popup.visible = true
                onDeleteSelectedClones: AppManager.deleteSelectedClone()
                onResetSelectedClones: AppManager.resetSelectedClone()
            }
        }
    }

    LateLoader {
        id: popup

        objectName: "inputClonesPopup"
        anchors.fill: parent
        visible: false
        source: "qrc:/qml/popup/InputClonesPopup.qml"
        onVisibleChanged: if (!visible) list.forceActiveFocus(Qt.TabFocusReason)
    }

    Connections {
        target: popup.item

        function onClosed() { popup.visible = false }
    }
}
