import QtQuick

// One source of a search among others in a row.
BaseButton {
    id: card

    required property string url
    required property string domain
    required property string favicon

    Accessible.description: domain
    Accessible.role: Accessible.Link
    hint: url
    implicitHeight: Theme.px(84)
    implicitWidth: Theme.px(204)
    padding: Theme.gap3
    radius: Theme.radiusCard

    background: Rectangle {
        border.color: Theme.line
        color: card.down || card.hovered ? Theme.sunk : "transparent"
        radius: card.radius
    }
    contentItem: Item {
        Favicon {
            id: icon

            source: card.favicon
        }
        Label {
            anchors.left: icon.right
            anchors.leftMargin: Theme.gap2
            anchors.right: parent.right
            anchors.verticalCenter: icon.verticalCenter
            color: Theme.t2
            elide: Text.ElideRight
            font.pixelSize: Theme.fontSmall
            text: card.domain
        }
        Label {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: icon.bottom
            anchors.topMargin: Theme.gap1
            elide: Text.ElideRight
            font.pixelSize: Theme.fontLabel
            font.weight: Font.Medium
            maximumLineCount: 2
            text: card.text
            verticalAlignment: Text.AlignTop
            wrapMode: Text.Wrap
        }
    }
}
