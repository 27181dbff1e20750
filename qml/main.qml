import QtQuick 2.15
import QtQuick.Window 2.15
import "."
import "component"
import "popup"

Window {
    width: 1280
    height: 720
    visible: true
    title: qsTr("Velstrand Manager v" + AppManager.appVersion)

    MainMenu {
        id: menu

        objectName: "mainMenu"
        focus: !tokenPopup.visible && !validatePopup.visible
        anchors { top: header.bottom; left: parent.left }
        width: header.iconWidth
        height: parent.height - header.height
    }

    MainContent {
        id: content

        objectName: "mainContent"
        anchors { top: menu.top; left: menu.right; right: parent.right }
        height: menu.height
        source: menu.currentSource
    }

    // A page may ask for another one, by the id of its menu row.
    Connections {
        target: content.item
        ignoreUnknownSignals: true

        function onPageRequested(id) { menu.currentIndex = id }
    }

    MainHeader {
        id: header

        objectName: "mainHeader"
        width: parent.width
        height: 100
    }

    // An overlay takes the keyboard while it shows, and the menu has it after that.
    LateLoader {
        id: tokenPopup

        objectName: "inputUserTokenPopup"
        anchors.fill: parent
        visible: AppModel.userInfo.token === ""
        focus: visible
        source: "qrc:/qml/popup/InputUserTokenPopup.qml"
    }

    ValidateUserPopup {
        id: validatePopup

        objectName: "validateUserPopup"
        visible: AppModel.userInfo.token !== "" && !AppModel.userInfo.isValidated
        focus: visible

        Component.onCompleted: AppManager.checkUser()
    }

    NotificationsBar {
        objectName: "notificationsBar"
        width: parent.width
        height: QmlDefines.rowHeight
    }
}
