import QtQuick
import QtQuick.Templates as T

T.Menu {
    id: menu

    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Theme.px(220)
    margins: Theme.gap2
    padding: Theme.gap1

    background: Rectangle {
        border.color: Theme.line2
        color: Theme.raise
        radius: Theme.radiusCard

        SoftShadow {
            around: Theme.radiusCard
            z: -1
        }
    }
    contentItem: ListView {
        currentIndex: menu.currentIndex
        implicitHeight: contentHeight
        interactive: false
        model: menu.contentModel
    }
    enter: Transition {
        NumberAnimation { duration: Theme.quick; from: 0; property: "opacity"; to: 1 }
    }
}
