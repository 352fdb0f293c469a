import QtQuick
import QtQuick.Templates as T

T.Menu {
    id: menu

    property int firstIndex: 0 // of the row that has the keyboard when the menu opens

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: menu
    }

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent // the button that opened it closes it
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Theme.px(Theme.menuWidth)
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
    // At once, not after the animation: the first key belongs to the menu. A text keeps its selection under a popup only when
    // told that it is one.
    onVisibleChanged: if (visible) itemAt(firstIndex).forceActiveFocus(Qt.PopupFocusReason)

    enter: Transition {
        NumberAnimation { duration: Theme.quick; from: 0; property: "opacity"; to: 1 }
    }
}
