import QtQuick 2.15
import QtQuick.Controls 2.15
import Velstrand 1.0
import ".."

/// A field for lines of text, of which there can be very many. While they are few it is a text area. Beyond that a
/// summary stands in its place and the text is kept unseen; a part of it can be edited as text.
FocusScope {
    id: root

    /// The whole of a text that is kept unseen, and whether there is one.
    readonly property LongText kept: LongText {}
    property bool folded: false
    /// Whether the text area shows a part of it.
    readonly property bool editing: kept.partCount > 0
    property alias placeholderText: area.placeholderText
    readonly property bool empty: !folded && area.length === 0

    function text() {
        commit()
        return folded ? kept.text() : area.text
    }

    function selectAll() {
        commit()
        summary.selected = folded
        area.selectAll()
        takeFocus()
    }

    function takeFocus() {
        if (folded && !editing)
            summary.takeFocus()
        else
            area.forceActiveFocus()
    }

    /// Has the text area show so many lines around one, with its cursor in front of that or behind the last one.
    function edit(line, most) {
        const part = kept.openPart(line, most)
        if (!editing)
            return
        area.text = part
        area.cursorPosition = Math.min(kept.startOf(line) - kept.startOf(kept.partStart), area.length)
        takeFocus()
    }

    /// Takes an edited part over into the whole.
    function commit() {
        if (!editing)
            return
        kept.closePart(area.text)
        settle()
    }

    /// The text area where it can show the whole, the summary where not.
    function settle() {
        const focused = activeFocus
        summary.selected = false
        folded = kept.tooLong
        if (!folded && area.text !== kept.text()) {
            area.text = kept.text()
            area.cursorPosition = area.length
        }
        if (focused)
            takeFocus()
    }

    /// Puts @p added in the place of a range of the text area where the text is too long for that then; answers
    /// whether it was.
    function foldAround(added, start, end) {
        if (kept.fitsWith(area.text, area.lineCount, added))
            return false
        let offset = 0
        if (editing) {
            offset = kept.startOf(kept.partStart)
            kept.closePart(area.text)
        } else {
            kept.reset(area.text)
        }
        kept.replace(offset + start, end - start, added)
        settle()
        return true
    }

    /// Puts a text at the end of the unseen one, or in its place while it is selected.
    function add(added) {
        const length = kept.startOf(kept.lineCount)
        kept.replace(summary.selected ? 0 : length, summary.selected ? length : 0, added)
        settle()
    }

    FieldFrame {
        anchors.fill: parent
        radius: 0
        color: "transparent"
        focused: area.activeFocus || summary.activeFocus
    }

    Item {
        id: partHead

        anchors { top: parent.top; left: parent.left; right: parent.right }
        height: visible ? 40 : 0
        visible: root.editing

        PlainText {
            objectName: "partLabel"
            anchors { left: parent.left; leftMargin: 10; right: doneButton.left; verticalCenter: parent.verticalCenter }
            text: summary.lineRange(root.kept.partStart, root.kept.partCount)
        }

        PButton {
            id: doneButton

            objectName: "doneButton"
            anchors { right: parent.right; rightMargin: 5; verticalCenter: parent.verticalCenter }
            height: QmlDefines.lineHeight
            text: qsTr("Done")
            onClicked: {
                root.commit()
                root.takeFocus()
            }
        }
    }

    ScrollView {
        anchors { fill: parent; margins: 1; topMargin: partHead.height + 1 }
        clip: true
        visible: !root.folded || root.editing

        TextArea {
            id: area

            objectName: "clonesField"
            focus: true
            verticalAlignment: TextArea.AlignTop
            textFormat: TextEdit.PlainText
            selectByMouse: true

            Accessible.name: placeholderText

            // Tab moves the focus on; it is never part of a clone.
            Keys.priority: Keys.BeforeItem
            Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
            Keys.onPressed: function(event) {
                if (event.matches(StandardKey.Paste))
                    event.accepted = root.foldAround(AppIO.clipboardText(), selectionStart, selectionEnd)
            }

            // A middle click inserts what is selected elsewhere.
            MouseArea {
                anchors.fill: parent
                acceptedButtons: Qt.MiddleButton
                cursorShape: Qt.IBeamCursor
                onClicked: function(mouse) {
                    const added = AppIO.clipboardText(true)
                    const position = area.positionAt(mouse.x, mouse.y)
                    area.forceActiveFocus()
                    if (added === "" || root.foldAround(added, position, position))
                        return
                    area.insert(position, added)
                    area.cursorPosition = position + added.length
                }
            }
        }
    }

    LinesSummary {
        id: summary

        objectName: "clonesSummary"
        anchors { fill: parent; margins: 1 }
        visible: root.folded && !root.editing
        lines: root.kept
        onEditRequested: function(line) { root.edit(line, 1000) }
        onTyped: function(letters) {
            if (selected) {
                root.add(letters)
            } else {
                root.edit(root.kept.lineCount, 100)
                area.insert(area.length, letters)
            }
        }
        onPasted: function(added) { root.add(added) }
        onCleared: {
            selected = true
            root.add("")
        }
        onUndone: { root.kept.undo(); root.settle() }
        onRedone: { root.kept.redo(); root.settle() }
    }
}
