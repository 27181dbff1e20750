import QtQuick 2.15
import ".."
import "../component"

Item {
    objectName: "homePage"

    Image {
        id: logo

        objectName: "homeLogo"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors { verticalCenter: parent.verticalCenter; verticalCenterOffset: -100 }
        width: parent.width / 4
        fillMode: Image.PreserveAspectFit
        source: "qrc:/images/velstrand_logo.png"
    }

    PlainText {
        objectName: "welcome"
        anchors { top: logo.bottom; topMargin: 20; horizontalCenter: parent.horizontalCenter }
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Welcome to Velstrand\nGoodluck for you")
        color: QmlDefines.textColor
        font.pixelSize: 30
    }
}
