import QtQuick

// The accent halo around the control that has the keyboard.
Rectangle {
    required property bool shown
    property real around: Theme.radiusRow // radius of the control itself

    anchors.fill: parent
    anchors.margins: -Theme.haloWidth
    border.color: Theme.halo
    border.width: Theme.haloWidth
    color: "transparent"
    radius: around + Theme.haloWidth
    visible: shown

    Rectangle {
        anchors.fill: parent
        anchors.margins: Theme.haloWidth
        border.color: Theme.acc
        border.width: Theme.hairline
        color: "transparent"
        radius: parent.around
    }
}
