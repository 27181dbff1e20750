import QtQuick 2.15
import ".."

/// The head of a table's column: a rule at its left, and its label at the top.
Item {
    property alias text: label.text

    Rectangle {
        width: 1
        height: parent.height
        color: QmlDefines.headRuleColor
    }

    TableCell {
        id: label

        width: parent.width
        height: QmlDefines.lineHeight
        font.bold: true
    }
}
