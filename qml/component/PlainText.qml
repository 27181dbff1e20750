import QtQuick 2.15

/// A text that is shown as it is, without markup, and cut where it is too long.
Text {
    verticalAlignment: Text.AlignVCenter
    textFormat: Text.PlainText
    elide: Text.ElideRight
}
