import QtQuick 2.15
import ".."

/// How panels come and go.
NumberAnimation {
    duration: QmlDefines.slideTime
    easing.type: Easing.OutCubic
}
