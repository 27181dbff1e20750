import QtQuick 2.15
import "../Format.js" as Format

Item {
    id: page

    readonly property var user: AppModel.userInfo

    objectName: "userInfoPage"

    Column {
        anchors.top: parent.top
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width - 100
        spacing: 1

        Repeater {
            model: [
                qsTr("Full Name: ") + page.user.fullName,
                qsTr("Username: ") + page.user.userName,
                qsTr("Token: ") + page.user.token,
                qsTr("Phonenumber: ") + page.user.phoneNumber,
                qsTr("Validated: ") + page.user.isValidated,
                qsTr("User type: ") + Format.userType(page.user.userType)
            ]

            delegate: Text {
                objectName: "userLine" + index
                width: parent.width
                height: 50
                padding: 5
                verticalAlignment: Text.AlignVCenter
                text: Format.line(modelData)
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.weight: Font.DemiBold
            }
        }
    }
}
