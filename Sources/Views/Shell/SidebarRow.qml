import QtQuick
import Korvi.Views // the types written in C++

BaseButton {
    id: row

    property string symbol
    property string detail // small, at the right end
    property bool selected: false
    property bool bare: false // only the symbol

    horizontalPadding: Theme.gap2
    implicitHeight: Theme.rowHeight

    background: Rectangle {
        color: row.selected ? Theme.sideSel : row.down || row.hovered ? Theme.hover : "transparent"
        radius: row.radius
    }
    contentItem: Item {
        Symbol {
            id: icon

            anchors.horizontalCenter: row.bare ? parent.horizontalCenter : undefined
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            name: row.symbol
            size: Theme.icon
            visible: row.symbol.length > 0
        }
        Label {
            id: label

            anchors.left: icon.visible ? icon.right : parent.left
            anchors.leftMargin: icon.visible ? Theme.gap2 : 0
            anchors.right: detailLabel.left
            anchors.rightMargin: detailLabel.text.length > 0 ? Theme.gap2 : 0
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideRight
            text: row.text
            visible: !row.bare
        }
        Label {
            id: detailLabel

            anchors.baseline: label.baseline
            anchors.right: parent.right
            color: Theme.t3
            font.pixelSize: Theme.fontSmall
            text: row.detail
        }
    }
}
