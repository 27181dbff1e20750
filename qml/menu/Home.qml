import QtQuick 2.15
import ".."

Item {
    objectName: "homePage"

    Image {
        id: logo

        objectName: "homeLogo"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: -100
        width: parent.width / 4
        fillMode: Image.PreserveAspectFit
        mipmap: true
        source: "qrc:/images/velstrand_logo.png"
    }

    Text {
        objectName: "welcome"
        anchors.top: logo.bottom
        anchors.topMargin: 20
        anchors.horizontalCenter: parent.horizontalCenter
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Welcome to Velstrand\nGoodluck for you")
        textFormat: Text.PlainText
        color: QmlDefines.textColor
        font.pixelSize: 30
    }
}
