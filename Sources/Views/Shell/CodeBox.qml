import QtQuick

Rectangle {
    id: box

    required property string character
    required property bool current
    required property bool selected
    required property bool failed
    required property bool dimmed

    Accessible.ignored: true
    border.color: failed ? Theme.err : Theme.line2
    color: selected ? Theme.accbg : "transparent"
    implicitHeight: Theme.px(60)
    implicitWidth: Theme.px(52)
    radius: Theme.radiusCard

    Label {
        anchors.centerIn: parent
        color: box.dimmed ? Theme.t3 : Theme.t1
        font.pixelSize: Theme.fontTitle
        font.weight: Font.DemiBold
        text: box.character
    }
    FocusRing {
        around: box.radius
        shown: box.current
    }
}
