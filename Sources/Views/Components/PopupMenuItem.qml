import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

T.MenuItem {
    id: item

    property alias symbol: icon.name
    property string hint // the key that does the same
    property bool destructive: false

    readonly property bool lit: highlighted || hovered
    readonly property color tint: destructive ? Theme.err : Theme.t1

    Accessible.name: text
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    implicitHeight: Theme.rowHeight
    implicitWidth: Theme.px(200)
    leftPadding: Theme.gap2
    rightPadding: Theme.gap2

    background: Rectangle {
        color: item.lit ? item.destructive ? Theme.errbg : Theme.pick : "transparent"
        radius: Theme.radiusRow
    }
    contentItem: Item {
        Symbol {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            color: item.destructive ? item.tint : Theme.t2
            size: Theme.icon
        }
        Label {
            anchors.left: icon.right
            anchors.leftMargin: Theme.gap2
            anchors.right: hintLabel.left
            anchors.verticalCenter: parent.verticalCenter
            color: item.tint
            elide: Text.ElideRight
            text: item.text
        }
        Label {
            id: hintLabel

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: item.lit ? Theme.t2 : Theme.t3
            font.pixelSize: Theme.fontSmall
            text: item.hint
        }
    }
}
