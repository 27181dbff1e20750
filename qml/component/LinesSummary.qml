import QtQuick 2.15
import QtQuick.Controls 2.15
import Velstrand 1.0
import ".."
import "../Format.js" as Format

/// What shows of a text that is too long to be shown: how many lines it has, the first and the last of them. It takes
/// the keys that a text area takes, with the cursor behind the last line.
FocusScope {
    id: root

    property LongText lines: LongText {}
    /// All of the text or nothing.
    property bool selected: false
    readonly property int shownLines: 6

    signal editRequested(int line)
    signal typed(string letters)
    signal pasted(string added)
    signal cleared()
    signal undone()
    signal redone()

    /// Not the field or the button that had the focus last.
    function takeFocus() { keys.forceActiveFocus() }

    /// "Lines 1 to 6 of 100,000".
    function lineRange(first, count) {
        return qsTr("Lines %1 to %2 of %3").arg(Format.grouped(first + 1, ","))
            .arg(Format.grouped(Math.min(first + count, lines.filledLines), ",")).arg(Format.grouped(lines.filledLines, ","))
    }

    /// Some lines from one on, as a Repeater takes them; none while they do not show.
    function sample(first, shown) {
        return shown ? Array.from(lines.lines(first, shownLines), (text, index) => ({
            number: Format.grouped(first + index + 1, ","), text: Format.line(text)
        })) : []
    }

    function pressed(event) {
        if (event.matches(StandardKey.Paste)) {
            const added = AppIO.clipboardText()
            if (added !== "")
                pasted(added)
        } else if (event.matches(StandardKey.SelectAll)) {
            selected = true
        } else if (event.matches(StandardKey.Undo)) {
            undone()
        } else if (event.matches(StandardKey.Redo)) {
            redone()
        } else if (selected && (event.matches(StandardKey.Copy) || event.matches(StandardKey.Cut))) {
            AppIO.sendToClibboard(lines.text())
            if (event.matches(StandardKey.Cut))
                cleared()
        } else if (selected && (event.key === Qt.Key_Delete || event.key === Qt.Key_Backspace)) {
            cleared()
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            typed("\n")
        } else if (event.text >= " " && event.text !== "\x7f"
                   && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))) {
            typed(event.text)
        } else {
            return false
        }
        return true
    }

    Accessible.role: Accessible.Grouping
    Accessible.name: title.text

    Component {
        id: sampleLine

        Row {
            id: line

            required property var modelData

            spacing: 10

            PlainText {
                width: 80
                horizontalAlignment: Text.AlignRight
                text: line.modelData.number
                color: QmlDefines.dimColor
            }

            PlainText {
                objectName: "line" + line.modelData.number
                width: root.width - 110
                text: line.modelData.text
            }
        }
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.MiddleButton
        onClicked: function(mouse) {
            keys.forceActiveFocus(Qt.MouseFocusReason)
            root.selected = false
            const added = mouse.button === Qt.MiddleButton ? AppIO.clipboardText(true) : ""
            if (added !== "")
                root.pasted(added)
        }
    }

    Rectangle {
        anchors { fill: content; margins: -5 }
        visible: root.selected
        color: QmlDefines.currentRowColor
    }

    Item {
        id: keys

        objectName: "summaryKeys"
        anchors.fill: parent
        focus: true
        activeFocusOnTab: true

        Accessible.role: Accessible.EditableText
        Accessible.name: title.text

        Keys.onPressed: function(event) { event.accepted = root.pressed(event) }
    }

    Column {
        id: content

        anchors { top: parent.top; left: parent.left; right: parent.right; margins: 10 }
        spacing: 10

        PlainText {
            id: title

            objectName: "linesTitle"
            text: qsTr("%1 lines").arg(Format.grouped(root.lines.filledLines, ","))
            color: QmlDefines.inputColor
            font.pixelSize: QmlDefines.noteSize
            font.bold: true
        }

        Column {
            Repeater { model: root.sample(0, root.visible, root.lines.revision); delegate: sampleLine }
        }

        PlainText { leftPadding: 90; text: "..."; color: QmlDefines.dimColor }

        Column {
            Repeater {
                model: root.sample(Math.max(root.shownLines, root.lines.filledLines - root.shownLines),
                                   root.visible, root.lines.revision)
                delegate: sampleLine
            }
        }
    }

    Row {
        anchors { left: parent.left; bottom: parent.bottom; margins: 10 }
        spacing: 10

        PButton {
            id: editButton

            objectName: "editButton"
            height: QmlDefines.lineHeight
            text: qsTr("Edit as text")
            onClicked: root.editRequested(Math.max(0, Format.integer(lineField.text) - 1))
        }

        PlainText { anchors.verticalCenter: parent.verticalCenter; text: qsTr("around line") }

        TextField {
            id: lineField

            objectName: "lineField"
            width: 80
            height: QmlDefines.lineHeight
            padding: 0
            leftPadding: 8
            placeholderText: "1"
            selectByMouse: true
            maximumLength: 7
            validator: IntValidator { bottom: 1 }

            background: FieldFrame {}

            Accessible.name: qsTr("around line")

            onAccepted: editButton.clicked()
        }

        PButton {
            objectName: "clearButton"
            height: QmlDefines.lineHeight
            text: qsTr("Clear")
            onClicked: root.cleared()
        }
    }
}
