import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import Velstrand 1.0
import ".."
import "../component"
import "../Format.js" as Format

/// A device of the device page with its tool box, which is open at most while the row is the current one.
ListRow {
    id: row

    required property DeviceInfo modelData
    readonly property real cellWidth: width / 7
    /// The label as the field holds it while nobody has typed: a field bounds what it takes.
    readonly property string storedLabel: modelData.deviceConfig.deviceLabel.substring(0, labelField.maximumLength)
    readonly property int storedConnectivity: modelData.deviceConfig.connectivityType
    readonly property bool labelEdited: labelField.text !== storedLabel
    readonly property bool edited: labelEdited
                                   || connectivityBox.currentIndex !== storedConnectivity
    property bool open: false
    /// What the program has put into the fields. As long as it still stands there nobody is editing, and the fields
    /// follow what the service has.
    property string shownLabel
    property int shownConnectivity: -1

    signal detailsRequested()

    component Cell: TableCell {
        width: row.cellWidth
        height: QmlDefines.rowHeight
    }

    component RoundFrame: FieldFrame {
        radius: QmlDefines.rowRadius
        focusedColor: QmlDefines.editedColor
        restColor: QmlDefines.cellFieldColor
        border.width: focused ? 2 : 1
    }

    function followLabel() {
        if (labelField.text === shownLabel)
            labelField.text = storedLabel
        if (labelField.text === storedLabel)
            shownLabel = labelField.text
    }

    function followConnectivity() {
        if (connectivityBox.currentIndex === shownConnectivity)
            connectivityBox.currentIndex = storedConnectivity
        if (connectivityBox.currentIndex === storedConnectivity)
            shownConnectivity = storedConnectivity
    }

    function activate() {
        view.currentIndex = view.model.rowOf(modelData)
        open = true
    }

    /// Gives the keyboard to the row itself, whichever of its fields had it before.
    function takeFocus(reason) {
        forceActiveFocus(reason)
        for (let item = Window.activeFocusItem; item && item !== row; item = Window.activeFocusItem)
            item.focus = false
    }

    /// Opens the row and goes to its first field.
    function edit(event) {
        event.accepted = Window.activeFocusItem === row
        if (event.accepted) {
            activate()
            connectivityBox.forceActiveFocus(Qt.TabFocusReason)
        }
    }

    function save() {
        modelData.deviceConfig.connectivityType = connectivityBox.currentIndex
        if (labelEdited)
            modelData.deviceConfig.deviceLabel = labelField.text
        AppManager.saveDeviceConfig(modelData)
    }

    objectName: "deviceRow" + modelData.place
    height: QmlDefines.rowHeight + toolBox.height

    Accessible.name: Format.line(modelData.androidId)
    Accessible.selected: current
    Accessible.onPressAction: activate()

    Keys.onReturnPressed: function(event) { edit(event) }
    Keys.onEnterPressed: function(event) { edit(event) }
    Keys.onSpacePressed: function(event) { edit(event) }
    Keys.onEscapePressed: {
        open = false
        takeFocus(Qt.TabFocusReason)
    }

    Component.onCompleted: {
        modelData.keepFor(row)
        shownConnectivity = connectivityBox.currentIndex
        followConnectivity()
    }

    onStoredLabelChanged: followLabel()
    onStoredConnectivityChanged: followConnectivity()
    onCurrentChanged: if (!current) open = false
    onOpenChanged: if (open) toolBox.active = true
    // The tool box of the last row opens below the edge of the view.
    onHeightChanged: if (open && view) view.positionViewAtIndex(view.model.rowOf(modelData), ListView.Contain)

    Rectangle {
        width: parent.width
        height: QmlDefines.rowHeight
        radius: QmlDefines.rowRadius
        color: row.current ? QmlDefines.currentRowColor : "transparent"

        Rule {
            width: parent.width
            height: 2
            visible: !row.current
        }
    }

    MouseArea {
        objectName: "rowArea"
        width: parent.width
        height: QmlDefines.rowHeight
        onClicked: {
            row.activate()
            row.takeFocus(Qt.MouseFocusReason)
        }
    }

    Cell {
        width: 30
        padding: 0
        text: row.modelData.place + 1
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 6
    }

    Cell {
        objectName: "androidId"
        x: 30
        width: row.cellWidth - 30
        padding: 0
        text: Format.line(row.modelData.androidId)
        // Sixteen digits beside the number.
        font.pixelSize: 11
    }

    Cell { objectName: "model"; x: row.cellWidth; text: Format.line(row.modelData.model) }
    Cell { objectName: "status"; x: 2 * row.cellWidth; text: Format.deviceStatus(row.modelData.status) }
    Cell { objectName: "cloneCount"; x: 3 * row.cellWidth; text: row.modelData.cloneCount }

    ComboBox {
        id: connectivityBox

        objectName: "connectivity"
        x: 4 * row.cellWidth + 10
        y: 7
        width: row.cellWidth - 20
        height: QmlDefines.fieldHeight
        model: ["wifi", "cellular"]

        Accessible.name: qsTr("Connectivity")

        onActiveFocusChanged: if (activeFocus) row.activate()

        background: RoundFrame {}
    }

    TextField {
        id: labelField

        objectName: "label"
        x: 5 * row.cellWidth + 10
        y: 7
        width: row.cellWidth - 20
        height: QmlDefines.fieldHeight
        leftPadding: 12
        rightPadding: 12
        maximumLength: QmlDefines.nameLength
        selectByMouse: true

        Accessible.name: qsTr("Label")

        onActiveFocusChanged: if (activeFocus) row.activate()

        background: RoundFrame {}
    }

    Cell {
        objectName: "lastGettingJobs"
        x: 6 * row.cellWidth
        text: Format.line(row.modelData.lastGettingJobs)
        fontSizeMode: Text.HorizontalFit
        minimumPointSize: 7
    }

    Loader {
        id: toolBox

        objectName: "toolBox"
        y: QmlDefines.rowHeight
        anchors.horizontalCenter: parent.horizontalCenter
        active: false

        sourceComponent: DeviceToolBox {
            height: 0
            deviceObject: row.modelData
            saveChangeEnable: row.edited

            onConfirmSelectedDevice: AppManager.confirmSelectedDevice(row.modelData)
            onDeleteSelectedDevice: AppManager.deleteSelectedDevice(row.modelData)
            onSaveSelectedDeviceConfig: row.save()
            onViewSelectedDevice: row.detailsRequested()
            onHeightChanged: if (height === 0 && !row.open) toolBox.active = false

            // Bound only now, so that the opening is animated too.
            Component.onCompleted: height = Qt.binding(() => row.open ? QmlDefines.rowHeight : 0)
        }
    }
}
