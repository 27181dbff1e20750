import QtQuick 2.15
import QtQuick.Controls 2.15

/// A row of a combo box list that shows its text as it is: no markup, no mnemonics, one line.
ItemDelegate {
    id: root

    property color textColor: palette.text

    width: ListView.view ? ListView.view.width : 0

    contentItem: Text {
        verticalAlignment: Text.AlignVCenter
        text: root.text.substring(0, 200)
        textFormat: Text.PlainText
        maximumLineCount: 1
        elide: Text.ElideRight
        color: root.textColor
    }
}
