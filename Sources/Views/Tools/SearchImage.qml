import QtQuick
import Korvi.Views // the types written in C++

// One picture that a search has found.
BaseButton {
    id: tile

    required property string url

    Accessible.role: Accessible.Button
    hint: text
    implicitHeight: Theme.px(112)
    implicitWidth: Theme.px(150)
    radius: Theme.radiusRow
    text: "Картинка"

    background: Rectangle {
        color: Theme.sunk
        radius: tile.radius
    }
    contentItem: Item {
        WebPicture {
            id: picture

            anchors.fill: parent
            longestSide: 480
            crops: true
            opacity: tile.hovered && !tile.down ? 0.9 : 1
            radius: tile.radius
            source: tile.url
        }
        Symbol {
            anchors.centerIn: parent
            color: Theme.t3
            name: picture.status === WebPicture.Failed ? "photo.badge.exclamationmark" : "photo"
            size: Theme.px(20)
            visible: picture.status !== WebPicture.Ready
        }
    }
}
