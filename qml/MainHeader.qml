import QtQuick 2.15
import QtQuick.Controls 2.15
import "component"
import "Format.js" as Format

Item {
    id: root

    readonly property real iconWidth: logo.paintedWidth
    readonly property string fullName: Format.line(AppModel.userInfo.fullName)

    Image {
        id: logo

        objectName: "logo"
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        height: parent.height - 4
        fillMode: Image.PreserveAspectFit
        source: "qrc:/images/velstrand_logo.png"
    }

    AbstractButton {
        id: userBlock

        objectName: "userBlock"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        // Without a name, or with a very short one, the icon still has its room.
        width: Math.max(userName.contentWidth, userIcon.width) + 10
        height: userIcon.height + userName.height + 10
        padding: 0

        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Account: %1").arg(root.fullName)

        Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
        Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
        Keys.onReleased: event.accepted = event.isAutoRepeat
        Keys.onEscapePressed: accountPanel.hidden = true

        onClicked: accountPanel.hidden = !accountPanel.hidden

        contentItem: Item {
            Image {
                id: userIcon

                anchors.top: parent.top
                anchors.horizontalCenter: parent.horizontalCenter
                width: 30
                height: 30
                source: "qrc:/images/user_icon.png"
            }

            Text {
                id: userName

                objectName: "userName"
                anchors.top: userIcon.bottom
                anchors.topMargin: 10
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(implicitWidth, accountPanel.width)
                height: 10
                horizontalAlignment: Text.AlignHCenter
                // Letters are taller than the line: they grow upwards, clear of the panel.
                verticalAlignment: Text.AlignBottom
                text: qsTr(root.fullName)
                textFormat: Text.PlainText
                elide: Text.ElideRight
            }
        }

        FocusFrame {
            anchors.margins: -4
            visible: userBlock.visualFocus
        }
    }

    Rectangle {
        id: accountPanel

        property bool hidden: true

        objectName: "accountPanel"
        anchors.top: userBlock.bottom
        anchors.right: parent.right
        width: 400
        height: hidden ? 0 : currentUser.height + otherUsers.height + addAccount.height
        visible: height > 0
        clip: true
        radius: 10
        color: "#cce6ff"

        Keys.onEscapePressed: {
            hidden = true
            userBlock.forceActiveFocus(Qt.TabFocusReason)
        }

        Behavior on height {
            NumberAnimation {
                duration: 500
                easing.type: Easing.InOutCubic
            }
        }

        // The panel lies over the page: what is pressed or rolled here is not meant for the page.
        MouseArea {
            anchors.fill: parent
            onWheel: wheel.accepted = true
        }

        Item {
            id: currentUser

            objectName: "currentUser"
            anchors.top: parent.top
            width: parent.width
            height: 70

            Rectangle {
                anchors.centerIn: currentIcon
                width: currentIcon.width + 6
                height: width
                radius: width / 2
                color: "green"
            }

            Image {
                id: currentIcon

                anchors.left: parent.left
                anchors.leftMargin: 30
                anchors.verticalCenter: parent.verticalCenter
                width: 30
                height: 30
                source: "qrc:/images/user_icon.png"
            }

            Text {
                id: currentText

                objectName: "currentUserText"
                anchors.left: currentIcon.right
                anchors.leftMargin: 15
                anchors.right: parent.right
                anchors.rightMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr(shortName.elidedText + "\n" + shortToken.elidedText)
                textFormat: Text.PlainText
            }

            // A text of several lines does not cut each of them by itself.
            TextMetrics {
                id: shortName

                elide: Text.ElideRight
                elideWidth: currentText.width
                font: currentText.font
                text: root.fullName
            }

            TextMetrics {
                id: shortToken

                elide: Text.ElideRight
                elideWidth: currentText.width
                font: currentText.font
                text: Format.line(AppModel.userInfo.token)
            }

            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: 1
                color: "white"
            }
        }

        // Room for further accounts.
        Item {
            id: otherUsers

            anchors.top: currentUser.bottom
            width: parent.width
            height: 0
        }

        AbstractButton {
            id: addAccount

            objectName: "addAccount"
            anchors.top: otherUsers.bottom
            width: parent.width
            height: 50
            enabled: !accountPanel.hidden
            text: qsTr("Add new account")

            Accessible.role: Accessible.Button
            Accessible.name: text

            Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
            Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
            Keys.onReleased: event.accepted = event.isAutoRepeat

            onClicked: {
                AppModel.userInfo.token = ""
                accountPanel.hidden = !accountPanel.hidden
            }

            contentItem: Item {
                Image {
                    id: addIcon

                    anchors.left: parent.left
                    anchors.leftMargin: 30
                    anchors.verticalCenter: parent.verticalCenter
                    width: 30
                    height: 30
                    source: "qrc:/images/add_user_icon.png"
                }

                Text {
                    anchors.left: addIcon.right
                    anchors.leftMargin: 15
                    anchors.verticalCenter: parent.verticalCenter
                    text: addAccount.text
                    textFormat: Text.PlainText
                }
            }

            background: Rectangle {
                radius: accountPanel.radius
                color: addAccount.hovered || addAccount.down ? "#99ccff" : "transparent"

                FocusFrame {
                    visible: addAccount.visualFocus
                }
            }
        }
    }
}
