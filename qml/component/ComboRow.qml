import QtQuick 2.15
import QtQuick.Controls 2.15
import "../Format.js" as Format

/// A row of a combo box list that shows its text as it is: no markup, no mnemonics, one line.
ItemDelegate {
    id: root

    required property var modelData
    required property int index
    property color textColor: palette.text

    width: ListView.view ? ListView.view.width : 0

    contentItem: PlainText { text: Format.line(root.text); color: root.textColor }
}
