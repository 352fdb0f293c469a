import QtQuick
import QtQuick.Templates as T

// A surface in the middle of the dimmed window that has the keyboard to itself until it is closed; then the keyboard
// goes back to where it was. Esc closes it as `rejected`, unless it says that it cannot be dismissed.
T.Dialog {
    id: sheet

    property bool dismissible: true
    property real naturalWidth: Theme.px(Theme.dialogWidth)
    property Item firstFocus: null // has the keyboard when the sheet opens
    property Item focusBefore: null

    anchors.centerIn: parent
    closePolicy: dismissible ? T.Popup.CloseOnEscape : T.Popup.NoAutoClose
    focus: true
    height: parent ? Math.min(implicitHeight, parent.height - Theme.gap4 * 2) : implicitHeight
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: parent ? Math.min(naturalWidth, parent.width - Theme.gap4 * 2) : naturalWidth
    modal: true
    padding: Theme.gap6
    parent: T.Overlay.overlay

    background: Rectangle {
        border.color: Theme.line2
        color: Theme.raise
        radius: Theme.radiusComposer

        SoftShadow {
            around: Theme.radiusComposer
            z: -1
        }
    }
    enter: Transition {
        NumberAnimation { duration: Theme.quick; from: 0; property: "opacity"; to: 1 }
    }
    exit: Transition {
        NumberAnimation { duration: Theme.quick; from: 1; property: "opacity"; to: 0 }
    }

    T.Overlay.modal: Rectangle {
        color: Theme.scrim

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }
    }

    onAboutToShow: focusBefore = parent && parent.Window.window ? parent.Window.window.activeFocusItem : null
    // At once, not after the animation: the first key belongs to the sheet.
    onVisibleChanged: {
        if (visible && firstFocus)
            firstFocus.forceActiveFocus(Qt.TabFocusReason)
    }
    onClosed: {
        if (focusBefore)
            focusBefore.forceActiveFocus(Qt.PopupFocusReason)
        focusBefore = null
    }
}
