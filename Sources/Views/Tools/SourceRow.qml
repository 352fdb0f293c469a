import QtQuick

// One source of a search with a few lines of what stands there.
BaseButton {
    id: row

    required property string url
    required property string domain
    required property string favicon
    required property string excerpt

    Accessible.description: domain
    Accessible.role: Accessible.Link
    hint: url
    implicitHeight: Math.ceil(body.implicitHeight) + Theme.gap2 * 2
    padding: Theme.gap2

    background: Rectangle {
        color: row.down || row.hovered ? Theme.hover : "transparent"
        radius: row.radius
    }
    contentItem: Item {
        Favicon {
            id: icon

            source: row.favicon
            y: Math.round((Theme.leading(Theme.fontBody) - height) / 2)
        }
        Column {
            id: body

            anchors.left: icon.right
            anchors.leftMargin: Theme.gap3
            anchors.right: parent.right

            Label {
                elide: Text.ElideRight
                font.weight: Font.Medium
                text: row.text
                width: parent.width
            }
            Label {
                color: Theme.t3
                elide: Text.ElideRight
                font.pixelSize: Theme.fontSmall
                text: row.domain
                width: parent.width
            }
            Label {
                color: Theme.t2
                elide: Text.ElideRight
                font.pixelSize: Theme.fontLabel
                maximumLineCount: 2
                text: row.excerpt
                topPadding: Theme.gap1 / 2
                visible: text.length > 0
                width: parent.width
                wrapMode: Text.Wrap
            }
        }
    }
}
