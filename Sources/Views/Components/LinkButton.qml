import QtQuick

// A quiet action that reads as text.
BaseButton {
    id: control

    property color color: Theme.acc

    horizontalPadding: Theme.gap2
    implicitHeight: Theme.px(28)

    background: Rectangle {
        color: control.enabled && (control.down || control.hovered) ? Theme.hover : "transparent"
        radius: control.radius
    }
    contentItem: Label {
        color: control.enabled ? control.color : Theme.t3
        elide: Text.ElideRight
        font.weight: Font.Medium
        horizontalAlignment: Text.AlignHCenter
        text: control.text
    }
}
