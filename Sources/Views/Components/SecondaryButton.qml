import QtQuick

BaseButton {
    id: control

    horizontalPadding: Theme.gap4
    implicitHeight: Theme.buttonHeight
    radius: Theme.radiusField

    background: Rectangle {
        border.color: Theme.line2
        color: control.enabled && (control.down || control.hovered) ? Theme.sunk : "transparent"
        radius: control.radius
    }
    contentItem: Label {
        color: control.enabled ? Theme.t1 : Theme.t3
        elide: Text.ElideRight
        font.weight: Font.Medium
        horizontalAlignment: Text.AlignHCenter
        text: control.text
    }
}
