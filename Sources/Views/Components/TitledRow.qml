import QtQuick
import Korvi.Views // the types written in C++

// The inside of a choice: a symbol, a title, a smaller line under it, and a mark when it is the one in force.
Item {
    id: row

    required property string symbol
    required property string title
    required property string subtitle
    required property bool checked
    property bool lit: false // on a background of its own, which takes contrast away

    implicitHeight: texts.implicitHeight

    Symbol {
        id: icon

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        color: row.checked ? Theme.acc : Theme.t2
        name: row.symbol
        size: Theme.icon
    }
    Column {
        id: texts

        anchors.left: icon.right
        anchors.leftMargin: Theme.gap3
        anchors.right: mark.left
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter

        Label {
            Accessible.ignored: true
            elide: Text.ElideRight
            font.weight: Font.Medium
            lineHeight: Theme.px(18)
            text: row.title
            width: parent.width
        }
        Label {
            Accessible.ignored: true
            color: row.lit ? Theme.t2 : Theme.t3
            elide: Text.ElideRight
            font.pixelSize: Theme.fontSmall
            lineHeight: Theme.px(16)
            maximumLineCount: 2
            text: row.subtitle
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
    Symbol {
        id: mark

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.acc
        name: "checkmark"
        opacity: row.checked ? 1 : 0
        size: Theme.icon
    }
}
