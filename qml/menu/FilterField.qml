import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../component"
import "../Format.js" as Format

/// The filter of one column: each line of its value is one that a record may have. One line is shown and edited as
/// text. More than that are never laid out: their number stands in their place until they are emptied or replaced.
TextField {
    id: root

    /// What the values are, as in "40,000 uids".
    property string unit: qsTr("values")
    readonly property string value: folded === "" ? text : folded
    property string folded: ""
    property int foldedCount: 0
    /// What was folded before that, for taking back.
    property string unfolded: ""

    function setValue(newValue) {
        const lines = Format.lines(newValue)
        if (lines.length > 1) {
            foldedCount = lines.length
            folded = newValue
            // Not "text = ...", after which nothing could be taken back.
            remove(0, length)
        } else {
            unfold()
            text = lines.join("")
        }
    }

    function unfold() {
        if (folded !== "")
            unfolded = folded
        folded = ""
    }

    /// Inserts a text of several lines; answers whether it was one.
    function insertLines(added, start, end) {
        if (Format.lines(added).length < 2)
            return false
        setValue(folded === "" ? text.substring(0, start) + added + text.substring(end) : added)
        return true
    }

    function pressed(event) {
        if (event.matches(StandardKey.Paste))
            return insertLines(AppIO.clipboardText(), selectionStart, selectionEnd)
        if (event.matches(StandardKey.Undo) && !canUndo && folded === "" && unfolded !== "")
            setValue(unfolded)
        else if (folded !== "" && [Qt.Key_Escape, Qt.Key_Backspace, Qt.Key_Delete].includes(event.key))
            unfold()
        else if (event.key === Qt.Key_Escape && text !== "")
            remove(0, length)
        else
            return false
        return true
    }

    height: 25
    padding: 0
    leftPadding: 12
    rightPadding: 30
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : 0.3
    selectByMouse: true
    maximumLength: QmlDefines.nameLength
    placeholderText: folded === "" ? "" : Format.grouped(foldedCount, ",") + " " + unit
    placeholderTextColor: color

    Keys.priority: Keys.BeforeItem
    Keys.onPressed: function(event) { event.accepted = pressed(event) }

    onTextChanged: {
        if (/[\r\n]/.test(text))
            setValue(text)
        else if (text !== "")
            unfold()
    }

    background: FieldFrame { radius: width / 2; focusedColor: QmlDefines.editedColor }

    Icon {
        objectName: "mark"
        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        size: 16
        source: root.folded === "" ? "qrc:/images/search_icon.ico" : "qrc:/images/close_icon.png"

        Accessible.ignored: root.folded === ""
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Clear")
        Accessible.onPressAction: root.unfold()

        MouseArea {
            anchors.fill: parent
            enabled: root.folded !== ""
            cursorShape: Qt.PointingHandCursor
            onClicked: {
                root.forceActiveFocus(Qt.MouseFocusReason)
                root.unfold()
            }
        }
    }

    // A middle click inserts what is selected elsewhere.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.MiddleButton
        cursorShape: Qt.IBeamCursor
        onClicked: function(mouse) {
            const added = AppIO.clipboardText(true)
            const position = root.positionAt(mouse.x - root.leftPadding, 0)
            root.forceActiveFocus(Qt.MouseFocusReason)
            if (added !== "" && !root.insertLines(added, position, position))
                root.insert(position, added.trim())
        }
    }
}
