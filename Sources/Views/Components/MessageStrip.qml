import QtQuick
import Korvi.Views // the types written in C++

// One line or a few about something that went wrong or takes long, with an action and a way to dismiss it.
Rectangle {
    id: strip

    required property string text
    property string symbol: "exclamationmark.triangle"
    property string actionText
    property bool dismissible: false
    property color tint: Theme.err

    signal action
    signal dismissed

    Accessible.name: text
    Accessible.role: Accessible.AlertMessage
    color: Theme.errbg
    implicitHeight: Math.max(label.implicitHeight + Theme.gap2 * 2, Theme.px(36))
    radius: Theme.radiusRow

    Symbol {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: Theme.gap3
        color: strip.tint
        name: strip.symbol
        size: Theme.icon
        y: Math.round((Theme.px(36) - height) / 2)
    }
    Label {
        id: label

        anchors.left: icon.right
        anchors.leftMargin: Theme.gap2
        anchors.right: buttons.left
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter
        color: strip.tint
        text: strip.text
        wrapMode: Text.Wrap
    }
    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: Theme.gap1
        anchors.verticalCenter: parent.verticalCenter

        LinkButton {
            anchors.verticalCenter: parent.verticalCenter
            color: strip.tint
            text: strip.actionText
            visible: strip.actionText.length > 0

            onClicked: strip.action()
        }
        IconButton {
            color: strip.tint
            implicitHeight: Theme.px(28)
            implicitWidth: Theme.px(28)
            symbol: "xmark"
            text: "Скрыть"
            visible: strip.dismissible

            onClicked: strip.dismissed()
        }
    }
}
