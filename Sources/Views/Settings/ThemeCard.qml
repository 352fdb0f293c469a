import QtQuick

// One theme to choose, with a small window that looks like it.
BaseButton {
    id: card

    required property string scheme // "system", "light" or "dark"
    required property bool chosen

    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.role: Accessible.RadioButton
    focusShown: false // the frame shows it
    implicitHeight: implicitContentHeight
    radius: Theme.radiusCard

    contentItem: Column {
        spacing: Theme.gap2

        Rectangle {
            id: frame

            readonly property size inner: Qt.size(width - Theme.gap1 * 2, height - Theme.gap1 * 2)

            border.color: card.chosen ? Theme.acc : card.hovered ? Theme.t3 : Theme.line2
            border.width: card.chosen ? 2 : Theme.hairline
            color: "transparent"
            height: Math.round(width * 0.62)
            radius: Theme.radiusCard
            width: parent.width

            FocusRing {
                around: parent.radius
                shown: card.visualFocus
            }
            // Where the desktop decides: one half of each.
            Item {
                id: light

                clip: true
                height: frame.inner.height
                visible: card.scheme !== "dark"
                width: card.scheme === "system" ? Math.round(frame.inner.width / 2) : frame.inner.width
                x: Theme.gap1
                y: Theme.gap1

                ThemePreview {
                    dark: false
                    height: frame.inner.height
                    width: frame.inner.width
                }
            }
            Item {
                clip: true
                height: frame.inner.height
                visible: card.scheme !== "light"
                width: frame.inner.width - (light.visible ? light.width : 0)
                x: Theme.gap1 + frame.inner.width - width
                y: Theme.gap1

                ThemePreview {
                    dark: true
                    height: frame.inner.height
                    width: frame.inner.width
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
