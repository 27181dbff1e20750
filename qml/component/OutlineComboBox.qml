import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import "../Format.js" as Format

ComboBox {
    id: root

    leftPadding: 5

    delegate: ComboRow {
        padding: 5
        text: root.textRole === "" ? modelData : modelData[root.textRole]
        textColor: "#4d94ff"
        highlighted: root.highlightedIndex === index
    }

    indicator: Canvas {
        id: triangle

        x: root.width - width - root.rightPadding
        y: root.topPadding + (root.availableHeight - height) / 2
        width: 12
        height: 8
        onPaint: {
            const context = getContext("2d")
            context.reset()
            context.moveTo(0, 0)
            context.lineTo(width, 0)
            context.lineTo(width / 2, height)
            context.closePath()
            context.fillStyle = "#4d94ff"
            context.fill()
        }

        Connections {
            target: root

            function onPressedChanged() {
                triangle.requestPaint()
            }
        }
    }

    contentItem: Text {
        rightPadding: root.indicator.width + root.spacing
        verticalAlignment: Text.AlignVCenter
        text: Format.line(root.displayText)
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: root.pressed ? "#17a81a" : "#4d94ff"
    }

    background: Rectangle {
        implicitWidth: 120
        implicitHeight: 40
        border.color: "#4d94ff"
        border.width: root.visualFocus ? 2 : 1
        radius: 2
    }

    popup: Popup {
        y: root.height - 1
        width: root.width
        height: Math.min(contentItem.implicitHeight + 2 * padding, root.Window.height - topMargin - bottomMargin)
        topMargin: 6
        bottomMargin: 6
        padding: 1

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: root.popup.visible ? root.delegateModel : null
            currentIndex: root.highlightedIndex

            ScrollIndicator.vertical: ScrollIndicator {}
        }

        background: Rectangle {
            border.color: "#4d94ff"
            radius: 2
        }
    }
}
