import QtQuick 2.15
import "."
import "component"
import "Format.js" as Format

Item {
    id: root

    readonly property real iconWidth: logo.paintedWidth
    readonly property string fullName: Format.line(AppModel.userInfo.fullName)

    component ShortLine: TextMetrics {
        elide: Text.ElideRight
        elideWidth: currentText.width
        font: currentText.font
    }

    Image {
        id: logo

        objectName: "logo"
        anchors { left: parent.left; verticalCenter: parent.verticalCenter }
        height: parent.height - 4
        fillMode: Image.PreserveAspectFit
        source: "qrc:/images/velstrand_logo.png"
    }

    BaseButton {
        id: userBlock

        objectName: "userBlock"
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        horizontalPadding: 5
        verticalPadding: 0

        Accessible.name: qsTr("Account: %1").arg(root.fullName)

        Keys.onEscapePressed: accountPanel.hidden = true

        onClicked: accountPanel.hidden = !accountPanel.hidden

        // Without a name, or with a very short one, the icon still has its room.
        contentItem: Column {
            spacing: 10

            Icon { anchors.horizontalCenter: parent.horizontalCenter; source: "qrc:/images/user_icon.png" }

            PlainText {
                objectName: "userName"
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(implicitWidth, accountPanel.width)
                height: 10
                horizontalAlignment: Text.AlignHCenter
                // Letters are taller than the line: they grow upwards, clear of the panel.
                verticalAlignment: Text.AlignBottom
                text: qsTr(root.fullName)
            }
        }

        background: Item {
            FocusFrame { anchors.margins: -4; visible: userBlock.visualFocus }
        }
    }

    Rectangle {
        id: accountPanel

        property bool hidden: true

        objectName: "accountPanel"
        anchors { top: userBlock.bottom; right: parent.right }
        width: 400
        height: hidden ? 0 : currentUser.height + otherUsers.height + addAccount.height
        visible: height > 0
        clip: true
        radius: QmlDefines.panelRadius
        color: QmlDefines.panelColor

        Keys.onEscapePressed: {
            hidden = true
            userBlock.forceActiveFocus(Qt.TabFocusReason)
        }

        Behavior on height { Slide { easing.type: Easing.InOutCubic } }

        // The panel lies over the page: what is pressed or rolled here is not meant for the page.
        MouseArea {
            anchors.fill: parent
            onWheel: function(wheel) { wheel.accepted = true }
        }

        Item {
            id: currentUser

            objectName: "currentUser"
            anchors.top: parent.top
            width: parent.width
            height: 70

            Rectangle {
                x: 27
                anchors.verticalCenter: parent.verticalCenter
                width: QmlDefines.iconSize + 6
                height: width
                radius: width / 2
                color: QmlDefines.userColor

                Icon { anchors.centerIn: parent; source: "qrc:/images/user_icon.png" }
            }

            PlainText {
                id: currentText

                objectName: "currentUserText"
                x: 75
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width - x - 10
                text: qsTr(shortName.elidedText + "\n" + shortToken.elidedText)
                elide: Text.ElideNone
            }

            // A text of several lines cannot elide each of them.
            ShortLine { id: shortName; text: root.fullName }

            ShortLine { id: shortToken; text: Format.line(AppModel.userInfo.token) }

            Rule { width: parent.width; color: QmlDefines.sheetColor }
        }

        // Room for further accounts.
        Item {
            id: otherUsers

            anchors.top: currentUser.bottom
            width: parent.width
            height: 0
        }

        BaseButton {
            id: addAccount

            objectName: "addAccount"
            anchors.top: otherUsers.bottom
            width: parent.width
            height: QmlDefines.rowHeight
            leftPadding: 30
            enabled: !accountPanel.hidden
            text: qsTr("Add new account")
            fillColor: hovered || down ? QmlDefines.buttonColor : "transparent"
            radius: accountPanel.radius

            onClicked: {
                AppModel.userInfo.token = ""
                accountPanel.hidden = !accountPanel.hidden
            }

            contentItem: Row {
                spacing: 15

                Icon { anchors.verticalCenter: parent.verticalCenter; source: "qrc:/images/add_user_icon.png" }

                PlainText { anchors.verticalCenter: parent.verticalCenter; text: addAccount.text }
            }
        }
    }
}
