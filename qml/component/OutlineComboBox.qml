import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import ".."
import "../Format.js" as Format

ComboBox {
    id: root

    leftPadding: 5

    delegate: ComboRow {
        padding: 5
        text: root.textRole === "" ? modelData : modelData[root.textRole]
        textColor: QmlDefines.inputColor
        highlighted: root.highlightedIndex === index
    }

    indicator: Canvas {
        readonly property bool pressed: root.pressed

        x: root.width - width - root.rightPadding
        y: root.topPadding + (root.availableHeight - height) / 2
        width: 12
        height: 8
        onPressedChanged: requestPaint()
        onPaint: {
            const context = getContext("2d")
            context.reset()
            context.moveTo(0, 0)
            context.lineTo(width, 0)
            context.lineTo(width / 2, height)
            context.closePath()
            context.fillStyle = QmlDefines.inputColor
            context.fill()
        }
    }

    contentItem: PlainText {
        rightPadding: root.indicator.width + root.spacing
        text: Format.line(root.displayText)
        color: root.pressed ? QmlDefines.pressedColor : QmlDefines.inputColor
    }

    background: Rectangle {
        implicitWidth: 120
        implicitHeight: 40
        border.color: QmlDefines.inputColor
        border.width: root.visualFocus ? 2 : 1
        radius: QmlDefines.fieldRadius
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

        background: Rectangle { border.color: QmlDefines.inputColor; radius: QmlDefines.fieldRadius }
    }
}
