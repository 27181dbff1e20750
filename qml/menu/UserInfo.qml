import QtQuick 2.15
import Velstrand 1.0
import ".."
import "../component"
import "../Format.js" as Format

Item {
    id: page

    readonly property UserInfo user: AppModel.userInfo

    objectName: "userInfoPage"

    Column {
        anchors { top: parent.top; horizontalCenter: parent.horizontalCenter }
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

            delegate: PlainText {
                required property string modelData
                required property int index

                objectName: "userLine" + index
                width: parent.width
                height: QmlDefines.rowHeight
                padding: 5
                text: Format.line(modelData)
                font.weight: Font.DemiBold
            }
        }
    }
}
