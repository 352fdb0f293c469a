import QtQuick
import "Links.js" as Links

// One source: its number and whose it is.
BaseButton {
    id: chip

    required property int number
    required property string url
    required property string domain

    // Nothing but web pages: an address comes from the model.
    readonly property bool canOpen: Links.isWeb(url)

    Accessible.description: url
    Accessible.role: Accessible.Link
    enabled: canOpen
    height: Theme.chipHeight
    hint: url
    implicitWidth: Math.min(Math.ceil(row.implicitWidth) + leftPadding + rightPadding, parent?.width ?? Infinity)
    leftPadding: Theme.gap2 + Theme.gap1 / 2
    objectName: "citationChip"
    radius: height / 2
    rightPadding: Theme.gap3
    text: "Источник %1: %2".arg(number).arg(domain)

    background: Rectangle {
        border.color: Theme.line2
        color: chip.down || chip.hovered ? Theme.hover : "transparent"
        radius: chip.radius
    }
    contentItem: Row {
        id: row

        spacing: Theme.gap2 - Theme.gap1 / 2

        Label {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t3
            font.pixelSize: Theme.fontSmall
            text: chip.number
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            elide: Text.ElideRight
            font.pixelSize: Theme.fontLabel
            text: chip.domain
            width: Math.min(implicitWidth, Theme.px(240))
        }
    }

    onClicked: Links.open(url)
}
