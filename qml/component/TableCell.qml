import QtQuick 2.15

/// One line in the middle of a table's cell.
PlainText {
    padding: 4
    horizontalAlignment: Text.AlignHCenter
    maximumLineCount: 1
}
