import QtQuick
import Korvi.Views // the types written in C++

// The model in force, and the way to another one.
BaseButton {
    id: button

    property bool open: false

    Accessible.name: "Модель: %1".arg(text)
    Accessible.role: Accessible.ButtonMenu
    hint: open ? "" : "Выбрать модель (Ctrl+M)"
    horizontalPadding: Theme.gap2
    implicitHeight: Theme.rowHeight
    implicitWidth: Math.ceil(label.implicitWidth) + Theme.gap1 + chevron.width + leftPadding + rightPadding
    objectName: "modelButton"

    background: Rectangle {
        color: button.down || button.hovered || button.open ? Theme.hover : "transparent"
        radius: button.radius
    }
    contentItem: Item {
        Label {
            id: label

            anchors.left: parent.left
            anchors.right: chevron.left
            anchors.rightMargin: Theme.gap1
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideRight
            font.weight: Font.DemiBold
            text: button.text
        }
        Symbol {
            id: chevron

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            name: "chevron.down"
            size: Theme.px(14)
        }
    }
}
