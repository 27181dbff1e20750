import QtQuick 2.15
import QtQuick.Window 2.15
import "popup"

Window {
    width: 1280
    height: 720
    visible: true
    title: qsTr("Velstrand Manager v" + AppManager.appVersion)

    // The pages find the menu among the siblings of the page area, by its object name.
    MainMenu {
        id: menu

        objectName: "mainMenu"
        focus: !tokenPopup.visible && !validatePopup.visible
        anchors.top: header.bottom
        anchors.left: parent.left
        width: header.iconWidth
        height: parent.height - header.height
    }

    MainContent {
        objectName: "mainContent"
        anchors.top: menu.top
        anchors.left: menu.right
        anchors.right: parent.right
        height: menu.height
        source: menu.currentSource
    }

    MainHeader {
        id: header

        objectName: "mainHeader"
        width: parent.width
        height: 100
    }

    // An overlay takes the keyboard while it shows, and the menu has it after that.
    InputUserTokenPopup {
        id: tokenPopup

        objectName: "inputUserTokenPopup"
        anchors.fill: parent
        visible: AppModel.userInfo.token === ""
        focus: visible
    }

    ValidateUserPopup {
        id: validatePopup

        objectName: "validateUserPopup"
        anchors.fill: parent
        visible: AppModel.userInfo.token !== "" && !AppModel.userInfo.isValidated
        focus: visible

        Component.onCompleted: AppManager.checkUser()
    }

    NotificationsBar {
        id: messageBar

        objectName: "notificationsBar"
        width: parent.width
        height: 50
    }
}
