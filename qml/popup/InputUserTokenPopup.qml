import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../component"

Sheet {
    veil: 0.8
    focus: true

    // The old token is selected, so that what is typed or pasted replaces it.
    onVisibleChanged: {
        if (visible) {
            tokenField.selectAll()
            tokenField.focus = true
        }
    }

    TextField {
        id: tokenField

        objectName: "tokenField"
        anchors.centerIn: parent
        width: 400
        height: 50
        focus: true
        placeholderText: qsTr("Enter user token")
        selectByMouse: true

        Accessible.name: placeholderText

        // The two controls hand the keyboard to each other: what lies under the sheet is out of its reach.
        KeyNavigation.tab: continueButton
        KeyNavigation.backtab: continueButton

        onAccepted: continueButton.clicked()
    }

    PButton {
        id: continueButton

        objectName: "continueButton"
        anchors { top: tokenField.bottom; topMargin: 20; horizontalCenter: parent.horizontalCenter }
        width: QmlDefines.buttonWidth
        height: 50
        text: qsTr("Continue")

        KeyNavigation.tab: tokenField
        KeyNavigation.backtab: tokenField

        onClicked: {
            AppModel.userInfo.token = tokenField.text
            AppManager.checkUser()
        }
    }
}
