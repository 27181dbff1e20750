import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../Format.js" as Format

Rectangle {
    id: root

    property bool hidden: true

    signal selectAllChanged(var selected)
    signal addClones()
    signal deleteSelectedClones()
    signal resetSelectedClones()
    signal profileSelected(var profile)

    radius: QmlDefines.panelRadius
    color: QmlDefines.toolBoxColor

    Behavior on y { Slide { id: slide } }

    ExpandButton {
        id: expandButton

        objectName: "expandButton"
        anchors { bottom: parent.top; horizontalCenter: parent.horizontalCenter }
        width: 50
        height: QmlDefines.lineHeight
        onUpChanged: root.hidden = up
    }

    // Not a plain binding: the button's own click would end it.
    Binding {
        target: expandButton
        property: "up"
        value: root.hidden
    }

    Item {
        anchors.fill: parent
        // Out of sight, the bar is out of the keyboard's reach too.
        visible: !root.hidden || slide.running

        Row {
            x: QmlDefines.toolSpacing
            anchors.verticalCenter: parent.verticalCenter
            spacing: QmlDefines.toolSpacing

            ImageButton {
                objectName: "addButton"
                source: "qrc:/images/add_icon.ico"
                text: qsTr("Add Clone")
                onClicked: root.addClones()
            }

            ImageButton {
                objectName: "deleteButton"
                source: "qrc:/images/delete_icon.png"
                text: qsTr("Delete Clone")
                onClicked: root.deleteSelectedClones()
            }

            ImageButton {
                id: resetButton

                objectName: "resetButton"
                source: "qrc:/images/reset_icon.png"
                text: qsTr("Reset Clone")
                onClicked: root.resetSelectedClones()
            }

            Rectangle {
                width: profileIcon.width + profileBox.width + 10
                height: resetButton.height
                color: "transparent"
                border.color: QmlDefines.outlineColor
                border.width: profileBox.pressed ? 1 : 0
                radius: QmlDefines.entryRadius

                Icon {
                    id: profileIcon

                    x: 5
                    anchors.verticalCenter: parent.verticalCenter
                    size: 24
                    source: "qrc:/images/profile_icon.png"
                }

                ComboBox {
                    id: profileBox

                    objectName: "profileBox"
                    anchors { left: profileIcon.right; leftMargin: 5 }
                    width: QmlDefines.nameWidth
                    height: parent.height
                    model: AppModel.userInfo.farmProfiles
                    textRole: "profileName"
                    wheelEnabled: false

                    Accessible.name: qsTr("Farm profile")

                    // A profile goes to the service the moment it is chosen, so a closed box does not step
                    // through them.
                    Keys.onPressed: function(event) {
                        if (popup.visible || event.key === Qt.Key_Space)
                            return
                        const opens = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Home, Qt.Key_End, Qt.Key_Return, Qt.Key_Enter]
                        if (opens.includes(event.key))
                            popup.open()
                        event.accepted = opens.includes(event.key) || event.text > " "
                    }

                    onActivated: root.profileSelected(currentText)

                    contentItem: PlainText { leftPadding: 5; text: Format.line(profileBox.displayText) }

                    delegate: ComboRow {
                        text: modelData.profileName
                        highlighted: profileBox.highlightedIndex === index
                    }

                    background: Rectangle {
                        color: "transparent"

                        FocusFrame { visible: profileBox.visualFocus }
                    }
                }
            }
        }

        SelectAllCheckbox {
            objectName: "selectAll"
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            height: QmlDefines.buttonHeight
            onCheckedChanged: root.selectAllChanged(checked)
        }
    }
}
