import QtQuick
import Korvi.Views // the types written in C++

// A name on the left and what it is about on the right; the latter moves below when the two do not fit side by side.
Item {
    id: row

    required property string title
    property string symbol
    property bool separated: false // a hairline above, between rows
    default property alias control: slot.data

    readonly property real inset: Theme.gap4
    readonly property real textX: icon.visible ? icon.x + icon.width + Theme.gap3 : inset
    readonly property bool stacked: slot.childrenRect.width > 0 &&
        textX + label.implicitWidth + Theme.gap4 + slot.childrenRect.width + inset > width

    implicitHeight: stacked ? Theme.gap3 + label.height + Theme.gap2 + slot.height + Theme.gap3 : Math.max(Theme.px(52), slot.height + Theme.gap2 * 2)
    width: parent ? parent.width : 0

    Rectangle {
        color: Theme.line
        height: Theme.hairline
        visible: row.separated
        width: parent.width - row.inset * 2
        x: row.inset
    }
    Symbol {
        id: icon

        anchors.verticalCenter: label.verticalCenter
        color: Theme.t2
        name: row.symbol
        size: Theme.px(18)
        visible: row.symbol.length > 0
        x: row.inset
    }
    Label {
        id: label

        elide: Text.ElideRight
        text: row.title
        width: Math.min(implicitWidth, row.width - row.textX - row.inset)
        x: row.textX
        y: row.stacked ? Theme.gap3 : Math.round((row.height - height) / 2)
    }
    Item {
        id: slot

        height: childrenRect.height
        width: childrenRect.width
        x: row.stacked ? row.textX : row.width - width - row.inset
        y: row.stacked ? Theme.gap3 + label.height + Theme.gap2 : Math.round((row.height - height) / 2)
    }
}
