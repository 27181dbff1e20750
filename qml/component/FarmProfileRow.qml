import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import Velstrand 1.0
import ".."

/// A profile of the farm profile editor: its name, and its actions once it has been opened.
ListRow {
    id: row

    required property int index
    required property FarmProfile profile
    readonly property string name: profile ? profile.profileName : ""
    property alias head: nameField
    property bool expanded: false

    /// All of @p item is to be seen.
    signal revealRequested(Item item)

    function expand() {
        view.currentIndex = index
        expanded = true
    }

    objectName: "profileRow" + index
    height: expanded ? Math.max(QmlDefines.rowHeight, editor.height) : QmlDefines.rowHeight

    Accessible.name: nameField.text
    Accessible.onPressAction: expand()

    Keys.onReturnPressed: expand()
    Keys.onEnterPressed: expand()
    Keys.onSpacePressed: expand()

    onCurrentChanged: if (!current) expanded = false
    onExpandedChanged: if (expanded) editor.active = true

    MouseArea {
        objectName: "headArea"
        width: parent.width
        height: QmlDefines.rowHeight
        onClicked: {
            row.forceActiveFocus(Qt.MouseFocusReason)
            row.expand()
        }

        FocusFrame { objectName: "rowFrame"; visible: row.Window.activeFocusItem === row }
    }

    TextField {
        id: nameField

        objectName: "profileName"
        width: QmlDefines.nameWidth
        height: QmlDefines.rowHeight
        leftPadding: 20
        maximumLength: QmlDefines.nameLength
        selectByMouse: true
        readOnly: !row.profile || !row.profile.temp
        text: row.name

        Accessible.name: qsTr("Profile name")

        onActiveFocusChanged: if (activeFocus) row.expand()

        background: Rectangle {
            color: "transparent"
            border.color: QmlDefines.pressedColor
            border.width: !nameField.readOnly && nameField.activeFocus ? 1 : 0

            FocusFrame { border.width: 1; visible: nameField.readOnly && nameField.activeFocus }
        }
    }

    // Stays once it is made: what has been edited survives a look at another profile.
    Loader {
        id: editor

        objectName: "editor"
        x: QmlDefines.nameWidth
        width: parent.width - x
        active: false
        visible: row.expanded

        // Up and down end at the first and the last action.
        Keys.onUpPressed: function(event) { event.accepted = true }
        Keys.onDownPressed: function(event) { event.accepted = true }

        sourceComponent: Item {
            id: form

            function save() {
                if (!nameField.readOnly)
                    row.profile.profileName = nameField.text
                for (let i = 0; i < actions.count; ++i)
                    (actions.itemAtIndex(i) as FarmActionLine).write()
                AppManager.saveProfileSettings(row.profile)
            }

            height: actions.height + QmlDefines.rowHeight

            // All lines are there before anything is saved from them.
            Component.onCompleted: actions.forceLayout()

            ListView {
                id: actions

                objectName: "actions"
                width: parent.width
                height: count * QmlDefines.rowHeight
                interactive: false
                keyNavigationEnabled: true
                currentIndex: -1
                model: row.profile ? row.profile.farmActions : []

                delegate: FarmActionLine { onReached: row.revealRequested(this) }
            }

            PButton {
                objectName: "save"
                anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 10 }
                width: 70
                height: QmlDefines.lineHeight
                text: qsTr("Save")
                enabled: nameField.text !== ""
                onActiveFocusChanged: if (activeFocus) row.revealRequested(this)
                onClicked: form.save()
            }
        }
    }

    Rule {}
}
