import QtQuick
import QtQuick.Templates as T

// A choice of a menu with a line under its title, and a mark when it is the one in force.
T.MenuItem {
    id: item

    property string symbol
    property string subtitle

    readonly property bool lit: highlighted || hovered

    Accessible.checked: checked
    Accessible.description: subtitle
    Accessible.name: text
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    implicitHeight: Theme.tallRowHeight
    implicitWidth: Theme.px(Theme.wideMenuWidth) - Theme.gap2
    leftPadding: Theme.gap2
    rightPadding: Theme.gap2

    background: Rectangle {
        color: item.lit ? Theme.pick : "transparent"
        radius: Theme.radiusRow
    }
    contentItem: TitledRow {
        checked: item.checked
        lit: item.lit
        subtitle: item.subtitle
        symbol: item.symbol
        title: item.text
    }
}
