import QtQuick
import Korvi.Views // the types written in C++

// A symbol in a round field, a title and some words about it.
Item {
    id: row

    required property string symbol
    required property string title
    required property string text
    property color tint: Theme.acc
    property color field: Theme.accbg

    Accessible.name: "%1. %2".arg(title).arg(text)
    Accessible.role: Accessible.ListItem
    implicitHeight: Math.max(words.implicitHeight, badge.height)

    Rectangle {
        id: badge

        color: row.field
        height: width
        radius: Theme.radiusField
        width: Theme.px(36)

        Symbol {
            anchors.centerIn: parent
            color: row.tint
            name: row.symbol
            size: Theme.px(18)
        }
    }
    Column {
        id: words

        anchors.left: badge.right
        anchors.leftMargin: Theme.gap3
        anchors.right: parent.right
        y: Math.max(0, (badge.height - height) / 2)

        Label {
            Accessible.ignored: true
            font.weight: Font.DemiBold
            text: row.title
            width: parent.width
            wrapMode: Text.Wrap
        }
        Label {
            Accessible.ignored: true
            color: Theme.t2
            text: row.text
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
