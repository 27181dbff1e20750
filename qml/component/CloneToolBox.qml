import QtQuick 2.15
import QtQuick.Controls 2.15
import "../Format.js" as Format

Rectangle {
    id: root

    property bool hidden: true

    signal selectAllChanged(var selected)
    signal addClones()
    signal deleteSelectedClones()
    signal resetSelectedClones()
    signal profileSelected(var profile)

    radius: 10
    color: "#e6f0ff"

    Behavior on y {
        NumberAnimation {
            id: slide

            duration: 500
            easing.type: Easing.OutCubic
        }
    }

    ExpandButton {
        id: expandButton

        objectName: "expandButton"
        anchors.bottom: parent.top
        anchors.horizontalCenter: parent.horizontalCenter
        width: 50
        height: 30
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

        ImageButton {
            id: addButton

            objectName: "addButton"
            anchors.left: parent.left
            anchors.leftMargin: 30
            anchors.verticalCenter: parent.verticalCenter
            source: "qrc:/images/add_icon.ico"
            text: qsTr("Add Clone")
            onClicked: root.addClones()
        }

        ImageButton {
            id: deleteButton

            objectName: "deleteButton"
            anchors.left: addButton.right
            anchors.leftMargin: 30
            anchors.verticalCenter: parent.verticalCenter
            source: "qrc:/images/delete_icon.png"
            text: qsTr("Delete Clone")
            onClicked: root.deleteSelectedClones()
        }

        ImageButton {
            id: resetButton

            objectName: "resetButton"
            anchors.left: deleteButton.right
            anchors.leftMargin: 30
            anchors.verticalCenter: parent.verticalCenter
            source: "qrc:/images/reset_icon.png"
            text: qsTr("Reset Clone")
            onClicked: root.resetSelectedClones()
        }

        Rectangle {
            anchors.left: resetButton.right
            anchors.leftMargin: 30
            anchors.verticalCenter: parent.verticalCenter
            width: profileIcon.width + profileBox.width + 10
            height: resetButton.height
            color: "transparent"
            border.color: "black"
            border.width: profileBox.pressed ? 1 : 0
            radius: 5

            Image {
                id: profileIcon

                anchors.left: parent.left
                anchors.leftMargin: 5
                anchors.verticalCenter: parent.verticalCenter
                width: 24
                height: 24
                source: "qrc:/images/profile_icon.png"
            }

            ComboBox {
                id: profileBox

                objectName: "profileBox"
                anchors.left: profileIcon.right
                anchors.leftMargin: 5
                width: 200
                height: parent.height
                model: AppModel.userInfo.farmProfiles
                textRole: "profileName"
                wheelEnabled: false

                Accessible.name: qsTr("Farm profile")

                // A profile goes to the service the moment it is chosen, so a closed box does not step through them.
                Keys.onPressed: {
                    if (popup.visible || event.key === Qt.Key_Space)
                        return
                    const opens = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Home, Qt.Key_End, Qt.Key_Return, Qt.Key_Enter]
                    if (opens.includes(event.key))
                        popup.open()
                    event.accepted = opens.includes(event.key) || event.text > " "
                }

                onActivated: root.profileSelected(currentText)

                contentItem: Text {
                    leftPadding: 5
                    verticalAlignment: Text.AlignVCenter
                    text: Format.line(profileBox.displayText)
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                }

                delegate: ComboRow {
                    text: modelData.profileName
                    highlighted: profileBox.highlightedIndex === index
                }

                background: Rectangle {
                    color: "transparent"

                    FocusFrame {
                        visible: profileBox.visualFocus
                    }
                }
            }
        }

        SelectAllCheckbox {
            objectName: "selectAll"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            height: 40
            onCheckedChanged: root.selectAllChanged(checked)
        }
    }
}
