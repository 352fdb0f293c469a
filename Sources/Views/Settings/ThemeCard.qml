import QtQuick

// One theme to choose, with a small window that looks like it.
BaseButton {
    id: card

    required property string scheme // "system", "light" or "dark"
    required property bool chosen

    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.role: Accessible.RadioButton
    implicitHeight: implicitContentHeight
    radius: Theme.radiusCard

    contentItem: Column {
        spacing: Theme.gap2

        Rectangle {
            id: frame

            border.color: card.chosen ? Theme.acc : card.hovered ? Theme.t3 : Theme.line2
            border.width: card.chosen ? 2 : Theme.hairline
            color: "transparent"
            height: Math.round(width * 0.62)
            radius: Theme.radiusCard
            width: parent.width

            ThemePreview {
                anchors.fill: parent
                anchors.margins: Theme.gap1
                dark: card.scheme === "dark"
            }
            // Where the desktop decides: one half of each.
            Item {
                anchors.bottom: parent.bottom
                anchors.margins: Theme.gap1
                anchors.right: parent.right
                anchors.top: parent.top
                clip: true
                visible: card.scheme === "system"
                width: frame.width / 2 - Theme.gap1

                ThemePreview {
                    dark: true
                    height: parent.height
                    width: frame.width - Theme.gap1 * 2
                    x: parent.width - width
                }
            }
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            color: card.chosen ? Theme.acc : Theme.t1
            font.weight: card.chosen ? Font.DemiBold : Font.Normal
            text: card.text
        }
    }
}
