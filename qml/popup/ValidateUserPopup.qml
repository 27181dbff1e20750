import QtQuick 2.15
import ".."
import "../component"

Sheet {
    id: root

    veil: 0.8

    onVisibleChanged: otherTokenButton.offered = false

    // Nothing under the sheet is in the keyboard's reach.
    Keys.onTabPressed: function(event) { event.accepted = true }
    Keys.onBacktabPressed: function(event) { event.accepted = true }

    PlainText {
        id: message

        anchors.centerIn: parent
        text: qsTr("Validating user info ...")
        color: QmlDefines.textColor
    }

    WaitingDots {
        id: busyIndicator

        objectName: "busyIndicator"
        anchors { top: message.bottom; topMargin: 10; horizontalCenter: parent.horizontalCenter }
        running: root.visible
    }

    PButton {
        id: otherTokenButton

        property bool offered: false

        objectName: "otherTokenButton"
        anchors { top: busyIndicator.bottom; topMargin: 20; horizontalCenter: parent.horizontalCenter }
        visible: offered
        text: qsTr("Use another token")

        KeyNavigation.tab: otherTokenButton
        KeyNavigation.backtab: otherTokenButton

        onVisibleChanged: {
            if (visible && root.activeFocus)
                forceActiveFocus(Qt.TabFocusReason)
            else
                focus = visible
        }
        onClicked: AppModel.userInfo.token = ""
    }

    // A failed request is not reported, so it is tried again. A token that is never answered can be abandoned.
    Timer {
        objectName: "retryTimer"
        interval: 10000
        running: root.visible
        repeat: true
        onTriggered: AppManager.checkUser()
    }

    Timer {
        objectName: "offerTimer"
        interval: 5000
        running: root.visible
        onTriggered: otherTokenButton.offered = true
    }
}
