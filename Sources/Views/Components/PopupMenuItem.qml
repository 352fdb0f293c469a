import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

T.MenuItem {
    id: item

    property alias symbol: icon.name

    Accessible.name: text
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    implicitHeight: Theme.rowHeight
    implicitWidth: Theme.px(200)
    leftPadding: Theme.gap2

    background: Rectangle {
        color: item.highlighted || item.hovered ? Theme.sunk : "transparent"
        radius: Theme.radiusRow
    }
    contentItem: Row {
        spacing: Theme.gap2

        Symbol {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            size: Theme.icon
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: item.text
        }
    }
}
