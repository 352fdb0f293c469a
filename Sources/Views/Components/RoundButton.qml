import QtQuick
import Korvi.Views // the types written in C++

// Send, stop, scroll to the end.
BaseButton {
    id: control

    property alias symbol: icon.name
    property bool prominent: false // on the accent

    filled: prominent
    hint: text
    implicitHeight: Theme.roundButton
    implicitWidth: Theme.roundButton
    radius: height / 2

    background: Rectangle {
        readonly property bool lit: control.enabled && (control.down || control.hovered)

        border.color: Theme.line2
        border.width: control.prominent || !control.enabled ? 0 : Theme.hairline
        color: !control.enabled ? Theme.sunk : control.prominent ? (lit ? Theme.accHover : Theme.acc)
            : lit ? Theme.sunk : Theme.raise
        radius: control.radius
    }
    contentItem: Item {
        Symbol {
            id: icon

            anchors.centerIn: parent
            color: !control.enabled ? Theme.t3 : control.prominent ? Theme.onacc : Theme.t2
            size: Theme.icon
        }
    }
}
