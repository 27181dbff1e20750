import QtQuick 2.15

Loader {}
