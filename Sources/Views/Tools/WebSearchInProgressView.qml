import QtQuick
import Korvi.Views // the types written in C++

// A web search is under way.
CardPart {
    id: view

    required property string query // may be empty

    readonly property string title: "Ищу в интернете"

    Accessible.name: query.length > 0 ? "%1: %2".arg(title).arg(query) : title
    Accessible.role: Accessible.StaticText
    implicitHeight: Theme.px(42)
    objectName: "searching"

    Shimmer {
        anchors.fill: parent
        border.color: Theme.line
        lit: Theme.sunk
        radius: Theme.radiusCard
        unlit: Theme.bg
    }
    Symbol {
        id: globe

        anchors.left: parent.left
        anchors.leftMargin: Theme.gap3 + Theme.gap1 / 2
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.acc
        name: "globe"
        size: Theme.icon
    }
    Label {
        id: label

        Accessible.ignored: true
        anchors.left: globe.right
        anchors.leftMargin: Theme.gap2 + Theme.gap1 / 2
        anchors.verticalCenter: parent.verticalCenter
        font.weight: Font.DemiBold
        text: view.title
    }
    Label {
        Accessible.ignored: true
        anchors.left: label.right
        anchors.right: parent.right
        anchors.rightMargin: Theme.gap3
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.t2
        elide: Text.ElideRight
        text: view.query.length > 0 ? " · «%1»…".arg(view.query) : "…"
    }
}
