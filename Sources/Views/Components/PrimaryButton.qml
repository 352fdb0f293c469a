import QtQuick

// The one action that a form is about.
BaseButton {
    id: control

    property bool busy: false
    property bool destructive: false

    enabled: !busy
    filled: true
    horizontalPadding: Theme.gap4
    implicitHeight: Theme.fieldHeight
    radius: Theme.radiusField

    background: Rectangle {
        readonly property bool lit: control.down || control.hovered

        color: control.destructive ? (lit ? Theme.errHover : Theme.err) : lit ? Theme.accHover : Theme.acc
        opacity: control.enabled || control.busy ? 1 : 0.5
        radius: control.radius
    }
    contentItem: Item {
        implicitHeight: label.implicitHeight
        implicitWidth: label.implicitWidth

        Label {
            id: label

            anchors.centerIn: parent
            color: Theme.onacc
            elide: Text.ElideRight
            font.weight: Font.DemiBold
            text: control.text
            visible: !control.busy
            width: Math.min(implicitWidth, parent.width)
        }
        Spinner {
            anchors.centerIn: parent
            color: Theme.onacc
            running: control.busy
        }
    }
}
