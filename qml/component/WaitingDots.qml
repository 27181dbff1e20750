import QtQuick 2.15
import ".."

/// A ring of dots around which a bright one walks while something is waited for: one step a second, once round.
/// Then it rests, as each step paints the whole window.
Item {
    id: root

    property bool running: false
    property int step: 0

    implicitWidth: 40
    implicitHeight: 40

    onRunningChanged: step = 0

    Repeater {
        id: dots

        model: 10

        delegate: Rectangle {
            required property int index
            readonly property real angle: 2 * Math.PI * index / dots.count

            x: root.width / 2 + 16 * Math.sin(angle) - width / 2
            y: root.height / 2 - 16 * Math.cos(angle) - height / 2
            width: 6
            height: width
            radius: width / 2
            color: index === root.step % dots.count ? QmlDefines.inputColor : QmlDefines.panelColor
        }
    }

    Timer {
        objectName: "stepTimer"
        interval: 1000
        repeat: true
        running: root.running && root.step < dots.count
        onTriggered: ++root.step
    }
}
