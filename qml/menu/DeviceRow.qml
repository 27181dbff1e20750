import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import "../component"
import "../Format.js" as Format

/// A device of the device page with its tool box, which is open at most while the row is the current one.
FocusScope {
    id: row

    readonly property bool current: ListView.isCurrentItem
    readonly property var view: ListView.view
    readonly property real cellWidth: width / 7
    /// The label as the field holds it while nobody has typed: a field bounds what it takes.
    readonly property string storedLabel: modelData.deviceConfig.deviceLabel.substring(0, labelField.maximumLength)
    readonly property bool labelEdited: labelField.text !== storedLabel
    readonly property bool edited: labelEdited
                                   || connectivityBox.currentIndex !== modelData.deviceConfig.connectivityType
    property bool open: false

    signal detailsRequested()

    component Cell: Text {
        width: row.cellWidth
        height: 50
        padding: 4
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
    }

    component FieldFrame: Rectangle {
        property bool focused

        radius: 16
        border.color: focused ? "#21be2b" : "#bdbdbd"
        border.width: focused ? 2 : 1
    }

    function activate() {
        view.currentIndex = index
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

    objectName: "deviceRow" + index
    width: view ? view.width : 0
    height: 50 + toolBox.height

    Accessible.role: Accessible.ListItem
    Accessible.name: Format.line(modelData.androidId)
    Accessible.selected: current
    Accessible.onPressAction: activate()

    Keys.onReturnPressed: edit(event)
    Keys.onEnterPressed: edit(event)
    Keys.onSpacePressed: edit(event)
    Keys.onEscapePressed: {
        open = false
        takeFocus(Qt.TabFocusReason)
    }

    onCurrentChanged: {
        if (!current)
            open = false
    }
    onOpenChanged: {
        if (open)
            toolBox.active = true
    }
    // The tool box of the last row opens below the edge of the view.
    onHeightChanged: {
        if (open && view)
            view.positionViewAtIndex(index, ListView.Contain)
    }

    Rectangle {
        width: parent.width
        height: 50
        radius: 16
        color: row.current ? "#3f4d94ff" : "transparent"
    }

    Rectangle {
        y: 48
        width: parent.width
        height: 2
        color: "#99ccff"
        visible: !row.current
    }

    MouseArea {
        objectName: "rowArea"
        width: parent.width
        height: 50
        onClicked: {
            row.activate()
            row.takeFocus(Qt.MouseFocusReason)
        }
    }

    Row {
        width: parent.width
        height: 50

        Cell {
            width: 30
            padding: 0
            text: index + 1
            fontSizeMode: Text.HorizontalFit
            minimumPointSize: 6
        }

        Cell {
            objectName: "androidId"
            width: row.cellWidth - 30
            padding: 0
            text: Format.line(modelData.androidId)
            // Sixteen digits beside the number.
            font.pixelSize: 11
        }

        Cell {
            objectName: "model"
            text: Format.line(modelData.model)
        }

        Cell {
            objectName: "status"
            text: Format.deviceStatus(modelData.status)
        }

        Cell {
            objectName: "cloneCount"
            text: modelData.cloneCount
        }

        Item {
            width: row.cellWidth
            height: 50

            ComboBox {
                id: connectivityBox

                objectName: "connectivity"
                anchors.centerIn: parent
                width: parent.width - 20
                height: 36
                model: ["wifi", "cellular"]
                currentIndex: modelData.deviceConfig.connectivityType

                Accessible.name: qsTr("Connectivity")

                onActiveFocusChanged: {
                    if (activeFocus)
                        row.activate()
                }

                background: FieldFrame {
                    focused: connectivityBox.activeFocus
                }
            }
        }

        Item {
            width: row.cellWidth
            height: 50

            TextField {
                id: labelField

                objectName: "label"
                anchors.centerIn: parent
                width: parent.width - 20
                height: 36
                leftPadding: 12
                rightPadding: 12
                maximumLength: 1000
                selectByMouse: true
                text: row.storedLabel

                Accessible.name: qsTr("Label")

                onActiveFocusChanged: {
                    if (activeFocus)
                        row.activate()
                }

                background: FieldFrame {
                    focused: labelField.activeFocus
                }
            }
        }

        Cell {
            objectName: "lastGettingJobs"
            text: Format.line(modelData.lastGettingJobs)
            fontSizeMode: Text.HorizontalFit
            minimumPointSize: 7
        }
    }

    Loader {
        id: toolBox

        objectName: "toolBox"
        y: 50
        anchors.horizontalCenter: parent.horizontalCenter
        active: false

        sourceComponent: DeviceToolBox {
            height: 0
            deviceObject: modelData
            saveChangeEnable: row.edited

            onConfirmSelectedDevice: AppManager.confirmSelectedDevice(modelData)
            onDeleteSelectedDevice: AppManager.deleteSelectedDevice(modelData)
            onSaveSelectedDeviceConfig: row.save()
            onViewSelectedDevice: row.detailsRequested()
            onHeightChanged: {
                if (height === 0 && !row.open)
                    toolBox.active = false
            }

            // Bound only now, so that the opening is animated too.
            Component.onCompleted: height = Qt.binding(() => row.open ? 50 : 0)
        }
    }
}
