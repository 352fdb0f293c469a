import QtQuick
import Korvi.Views // the types written in C++

// A row that is a button: leads somewhere, or starts something. One that cannot be used says why, and can still be
// reached to be read.
BaseButton {
    id: row

    required property string symbol
    property string trailing: "chevron.right"
    property string unavailable // why it cannot be used; empty when it can
    property bool destructive: false
    property bool separated: false // a hairline above, between rows

    readonly property color ink: unavailable.length > 0 ? Theme.t3 : destructive ? Theme.err : Theme.t1

    signal triggered

    hint: unavailable
    horizontalPadding: Theme.gap4
    implicitHeight: Math.max(Theme.px(52), implicitContentHeight + Theme.gap3 * 2)
    radius: Theme.radiusCard
    width: parent ? parent.width : 0

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.gap1
            color: row.unavailable.length === 0 && (row.down || row.hovered) ? Theme.hover : "transparent"
            radius: Theme.radiusRow
        }
        Rectangle {
            color: Theme.line
            height: Theme.hairline
            visible: row.separated
            width: parent.width - Theme.gap4 * 2
            x: Theme.gap4
        }
    }
    contentItem: Item {
        implicitHeight: label.implicitHeight

        Symbol {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            color: row.unavailable.length > 0 ? Theme.t3 : row.destructive ? Theme.err : Theme.t2
            name: row.symbol
            size: Theme.px(18)
        }
        Label {
            id: label

            anchors.left: icon.right
            anchors.leftMargin: Theme.gap3
            anchors.right: arrow.left
            anchors.rightMargin: Theme.gap3
            anchors.verticalCenter: parent.verticalCenter
            color: row.ink
            text: row.text
            wrapMode: Text.Wrap
        }
        Symbol {
            id: arrow

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t3
            name: row.trailing
            size: Theme.icon
            visible: row.unavailable.length === 0 && name.length > 0
        }
    }

    onClicked: {
        if (unavailable.length === 0)
            triggered()
    }
}
