import QtQuick

// Around the control that has the keyboard: an accent halo, or, where the control itself has a strong colour that a halo
// is lost beside, a line with a gap.
Rectangle {
    required property bool shown
    property real around: Theme.radiusRow // radius of the control itself
    property bool apart: false

    readonly property int reach: apart ? Theme.gap1 : Theme.haloWidth

    anchors.fill: parent
    anchors.margins: -reach
    border.color: apart ? Theme.acc : Theme.halo
    border.width: apart ? Theme.gap1 / 2 : Theme.haloWidth
    color: "transparent"
    radius: around + reach
    visible: shown

    Rectangle {
        anchors.fill: parent
        anchors.margins: parent.reach
        border.color: Theme.acc
        border.width: Theme.hairline
        color: "transparent"
        radius: parent.around
        visible: !parent.apart
    }
}
