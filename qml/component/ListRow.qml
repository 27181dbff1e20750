import QtQuick 2.15

/// A row of a list, as wide as that.
FocusScope {
    readonly property bool current: ListView.isCurrentItem
    readonly property ListView view: ListView.view as ListView

    width: view ? view.width : 0

    Accessible.role: Accessible.ListItem
}
