import QtQuick
import Korvi.Views // the types written in C++

// A button that is one symbol; its text is the tool tip and the accessible name.
BaseButton {
    id: control

    property alias symbol: icon.name
    property color color: Theme.t2
    property real symbolSize: Theme.icon

    hint: text
    implicitHeight: Theme.rowHeight
    implicitWidth: Theme.rowHeight

    background: Rectangle {
        color: control.down || control.hovered ? Theme.hover : "transparent"
        radius: control.radius
    }
    contentItem: Item {
        Symbol {
            id: icon

            anchors.centerIn: parent
            color: control.color
            size: control.symbolSize
        }
    }
}
