import QtQuick
import QtQuick.Templates as T

T.ToolTip {
    id: tip

    delay: Theme.toolTipDelay
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    margins: Theme.gap2
    horizontalPadding: Theme.gap2
    verticalPadding: Theme.gap1
    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: parent ? parent.height + Theme.gap1 : 0

    background: Rectangle {
        border.color: Theme.line2
        color: Theme.raise
        radius: Theme.radiusRow
    }
    contentItem: Label {
        color: Theme.t1
        font.pixelSize: Theme.fontLabel
        text: tip.text
    }
}
