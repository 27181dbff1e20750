import QtQuick 2.15
import "."
import "component"

Item {
    id: root

    readonly property int _MSG_TYPE_INFO: 0
    readonly property int _MSG_TYPE_WARNING: 1
    readonly property int _MSG_TYPE_ERROR: 2

    property int type: _MSG_TYPE_WARNING
    property bool shown: false

    y: shown ? 0 : -height
    visible: y > -height

    Accessible.role: Accessible.AlertMessage
    Accessible.ignored: !shown
    Accessible.name: message.text

    Behavior on y { Slide { easing.type: Easing.InOutCubic } }

    Rectangle {
        objectName: "notificationBackground"
        anchors.fill: parent
        radius: QmlDefines.fieldRadius
        opacity: 0.9
        color: root.type === root._MSG_TYPE_ERROR ? QmlDefines.errorColor
             : root.type === root._MSG_TYPE_WARNING ? QmlDefines.warningColor : QmlDefines.infoColor
    }

    PlainText {
        id: message

        objectName: "notificationText"
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width * 2 / 3
        height: parent.height
        horizontalAlignment: Text.AlignHCenter
        text: "Testing"
        wrapMode: Text.Wrap
        maximumLineCount: 2
        color: QmlDefines.textOnDarkColor
        font.pixelSize: QmlDefines.noteSize
        font.weight: Font.DemiBold
    }

    Timer {
        id: hideTimer

        objectName: "hideTimer"
        interval: 3000
        onTriggered: root.shown = false
    }

    Connections {
        target: AppManager

        function onPushNotification(type, content) {
            // The words can be the service's: what two lines cannot hold is not worth laying out.
            message.text = content.substring(0, 1000)
            root.type = type
            hideTimer.restart()
            root.shown = true
        }
    }
}
