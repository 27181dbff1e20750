import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15

/// A profile of the farm profile editor: its name, and its actions once it has been opened.
FocusScope {
    id: row

    readonly property bool current: ListView.isCurrentItem
    readonly property var view: ListView.view
    readonly property string name: profile ? profile.profileName : ""
    property alias head: nameField
    property bool expanded: false

    function expand() {
        view.currentIndex = index
        expanded = true
    }

    function save() {
        if (!nameField.readOnly)
            profile.profileName = nameField.text
        editor.item.write()
        AppManager.saveProfileSettings(profile)
    }

    objectName: "profileRow" + index
    width: view ? view.width : 0
    height: expanded ? Math.max(50, editor.height) : 50

    Accessible.role: Accessible.ListItem
    Accessible.name: nameField.text
    Accessible.onPressAction: expand()

    Keys.onReturnPressed: expand()
    Keys.onEnterPressed: expand()
    Keys.onSpacePressed: expand()

    onCurrentChanged: {
        if (!current)
            expanded = false
    }
    onExpandedChanged: {
        if (expanded)
            editor.active = true
    }

    MouseArea {
        objectName: "headArea"
        width: parent.width
        height: 50
        onClicked: {
            row.forceActiveFocus(Qt.MouseFocusReason)
            row.expand()
        }

        FocusFrame {
            objectName: "rowFrame"
            visible: row.Window.activeFocusItem === row
        }
    }

    TextField {
        id: nameField

        objectName: "profileName"
        width: 200
        height: 50
        leftPadding: 20
        maximumLength: 1000
        selectByMouse: true
        readOnly: !profile || !profile.temp
        text: row.name

        Accessible.name: qsTr("Profile name")

        onActiveFocusChanged: {
            if (activeFocus)
                row.expand()
        }

        background: Rectangle {
            color: "transparent"
            border.color: "#17a81a"
            border.width: !nameField.readOnly && nameField.activeFocus ? 1 : 0

            FocusFrame {
                border.width: 1
                visible: nameField.readOnly && nameField.activeFocus
            }
        }
    }

    // Stays once it is made: what has been edited survives a look at another profile.
    Loader {
        id: editor

        objectName: "editor"
        x: 200
        width: parent.width - x
        active: false
        visible: row.expanded

        // Up and down end at the first and the last action.
        Keys.onUpPressed: event.accepted = true
        Keys.onDownPressed: event.accepted = true

        sourceComponent: Item {
            function write() {
                for (let i = 0; i < actions.count; ++i)
                    actions.itemAtIndex(i).write()
            }

            height: actions.height + 50

            // All lines are there before anything is saved from them.
            Component.onCompleted: actions.forceLayout()

            ListView {
                id: actions

                objectName: "actions"
                width: parent.width
                height: count * 50
                interactive: false
                keyNavigationEnabled: true
                currentIndex: -1
                model: profile ? profile.farmActions : []

                delegate: FarmActionLine {
                    onReached: row.view.reveal(this)
                }
            }

            PButton {
                objectName: "save"
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 10
                width: 70
                height: 30
                text: qsTr("Save")
                enabled: nameField.text !== ""
                onActiveFocusChanged: {
                    if (activeFocus)
                        row.view.reveal(this)
                }
                onClicked: row.save()
            }
        }
    }

    Rectangle {
        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width - 10
        height: 1
        color: "#99ccff"
    }
}
