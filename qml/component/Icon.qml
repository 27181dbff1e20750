import QtQuick 2.15
import ".."

/// A square picture.
Image {
    property real size: QmlDefines.iconSize

    width: size
    height: size
}
