import QtQuick
import QtQuick.Templates as T

T.ScrollBar {
    id: bar

    implicitHeight: Theme.gap3
    implicitWidth: Theme.gap3
    minimumSize: 0.06
    padding: pressed || hovered ? Theme.gap1 / 2 : Theme.gap1
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1

    contentItem: Rectangle {
        color: bar.pressed || bar.hovered ? Theme.t3 : Theme.line2
        opacity: bar.active || bar.hovered ? 1 : 0.6
        radius: Math.min(width, height) / 2

        Behavior on opacity { NumberAnimation { duration: Theme.calm } }
    }
}
