import QtQuick 2.15

/// Builds what it shows when that is first wanted, and keeps it from then on.
Loader {
    active: false

    onVisibleChanged: if (visible) active = true
    Component.onCompleted: if (visible) active = true
}
