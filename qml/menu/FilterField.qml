import QtQuick 2.15
import QtQuick.Controls 2.15
import ".."
import "../component"
import "../Format.js" as Format

/// The filter of one column: each line is a value that a record may have. One line is shown and edited as text. More
/// than that are never laid out: their number stands in their place until they are emptied or replaced.
TextField {
    id: root

    /// What the values are, as in "40,000 uids".
    property string unit: qsTr("values")
    /// The lines, trimmed and without the empty ones.
    property var values: []
    readonly property bool folded: values.length > 1
    /// Those that were folded last, for taking back.
    property var unfolded: []

    function setValue(text) { show(Format.lines(text)) }

    function show(lines) {
        const line = lines.length > 1 ? "" : lines.join("")
        if (lines.length > 1 || text === line)
            hold(lines)
        // Not "text = ...", after which nothing could be taken back.
        if (line === "")
            remove(0, length)
        else
            text = line
    }

    function hold(lines) {
        if (folded)
            unfolded = values
        values = lines
    }

    /// Inserts a text of several lines; answers whether it was one.
    function insertLines(added, start, end) {
        const lines = Format.lines(added)
        if (lines.length < 2)
            return false
        if (!folded) {
            lines[0] = text.substring(0, start) + lines[0]
            lines[lines.length - 1] += text.substring(end)
        }
        show(lines)
        return true
    }

    function pressed(event) {
        if (event.matches(StandardKey.Paste))
            return insertLines(AppIO.clipboardText(), selectionStart, selectionEnd)
        if (event.matches(StandardKey.Undo) && !canUndo && !folded && unfolded.length > 0)
            show(unfolded)
        else if (event.key === Qt.Key_Escape && values.length > 0)
            show([])
        else if (folded && (event.key === Qt.Key_Backspace || event.key === Qt.Key_Delete))
            show([])
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
    placeholderText: folded ? Format.grouped(values.length, ",") + " " + unit : ""
    placeholderTextColor: color

    Keys.priority: Keys.BeforeItem
    Keys.onPressed: function(event) { event.accepted = pressed(event) }

    onTextChanged: {
        if (/[\r\n]/.test(text))
            setValue(text)
        else if (text !== "" || !folded)
            hold(Format.lines(text))
    }

    background: FieldFrame { radius: width / 2; focusedColor: QmlDefines.editedColor }

    Icon {
        objectName: "mark"
        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        size: 16
        source: root.folded ? "qrc:/images/close_icon.png" : "qrc:/images/search_icon.ico"

        Accessible.ignored: !root.folded
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Clear")
        Accessible.onPressAction: root.show([])

        MouseArea {
            anchors.fill: parent
            enabled: root.folded
            cursorShape: Qt.PointingHandCursor
            onClicked: {
                root.forceActiveFocus(Qt.MouseFocusReason)
                root.show([])
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
