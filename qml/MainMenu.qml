import QtQuick 2.15
import "."
import "component"

FocusScope {
    id: root

    property alias currentIndex: list.currentIndex
    readonly property string currentSource: menuModel[currentIndex].source
    readonly property var menuModel: [
        { id: QmlDefines._HOME, label: qsTr("Home"), source: "qrc:/qml/menu/Home.qml", visible: true },
        { id: QmlDefines._DEVICES, label: qsTr("Devices"), source: "qrc:/qml/menu/DeviceList.qml", visible: true },
        { id: QmlDefines._CLONES, label: qsTr("Clones"), source: "qrc:/qml/menu/CloneList.qml", visible: true },
        { id: QmlDefines._ADMIN_SETTINGS, label: qsTr("Admin Settings"),
          source: "qrc:/qml/menu/AdminSettings.qml", visible: AppModel.userInfo.userType === 255 },
        { id: QmlDefines._SETTINGS, label: qsTr("Settings"), source: "qrc:/qml/menu/Settings.qml", visible: true },
        { id: QmlDefines._MAKE_MONEY, label: qsTr("Make money"),
          source: "qrc:/qml/menu/ReportsList.qml", visible: true },
        { id: QmlDefines._UTILS, label: qsTr("Utils"), source: "", visible: true },
        { id: QmlDefines._USER_INFO, label: qsTr("User information"),
          source: "qrc:/qml/menu/UserInfo.qml", visible: true }
    ]

    /// Moves the keyboard focus from a row to the next visible one, up (-1) or down (1).
    function stepFocus(index, step) {
        let next = index + step
        while (next >= 0 && next < list.count && !menuModel[next].visible)
            next += step
        if (next < 0 || next >= list.count)
            return
        list.positionViewAtIndex(next, ListView.Contain)
        list.itemAtIndex(next).forceActiveFocus(Qt.TabFocusReason)
    }

    component FooterText: PlainText {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 80
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Velstrand\nYour farm in view")
        color: QmlDefines.textOnDarkColor
    }

    // An ordinary user who signs in on the administrator's page must not stay there.
    onMenuModelChanged: if (!menuModel[currentIndex].visible) currentIndex = QmlDefines._HOME

    Rectangle {
        anchors.centerIn: parent
        width: parent.height
        height: parent.width
        radius: QmlDefines.panelRadius
        rotation: 90
        gradient: Gradient {
            GradientStop { position: 0.0; color: QmlDefines.menuFaintColor }
            GradientStop { position: 1.0; color: QmlDefines.menuFullColor }
        }
    }

    ListView {
        id: list

        objectName: "menuList"
        anchors.centerIn: parent
        width: parent.width
        height: parent.height - 10
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        currentIndex: 0
        // The number of rows, not the rows: a list whose model is replaced starts again at its first row.
        model: root.menuModel.length

        delegate: BaseButton {
            id: row

            required property int index
            readonly property var entry: root.menuModel[index]
            readonly property bool current: ListView.isCurrentItem

            objectName: "menuRow" + index
            width: ListView.view.width
            height: visible ? QmlDefines.rowHeight : 0
            horizontalPadding: 5
            visible: entry.visible
            text: entry.label

            Accessible.role: Accessible.MenuItem
            Accessible.selected: current

            Keys.onUpPressed: root.stepFocus(index, -1)
            Keys.onDownPressed: root.stepFocus(index, 1)

            onVisualFocusChanged: if (visualFocus) list.positionViewAtIndex(index, ListView.Contain)
            onClicked: list.currentIndex = index

            contentItem: PlainText { text: row.text; color: QmlDefines.textOnDarkColor }

            background: Rectangle {
                gradient: Gradient {
                    orientation: Gradient.Horizontal

                    GradientStop { position: 0.0; color: row.current ? QmlDefines.dimColor : "transparent" }
                    GradientStop { position: 1.0; color: QmlDefines.menuFaintColor }
                }

                Rule { width: parent.width; color: QmlDefines.menuRuleColor }

                FocusFrame { visible: row.visualFocus; border.color: QmlDefines.textOnDarkColor }
            }
        }
    }

    // A shadow of its own: the raised style of a text is one more shader, and those cost most of the first frame.
    FooterText { anchors.bottomMargin: -1; color: QmlDefines.textShadowColor; Accessible.ignored: true }

    FooterText { objectName: "menuFooter" }
}
