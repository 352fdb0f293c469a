import QtQuick
import QtQuick.Templates as T

// A surface in the middle of the dimmed window that has the keyboard to itself until it is closed; then the keyboard
// goes back to where it was. Esc closes it as `rejected`, unless it says that it cannot be dismissed.
T.Dialog {
    id: sheet

    property bool dismissible: true
    property real naturalWidth: Theme.px(Theme.dialogWidth)
    property Item firstFocus: null // has the keyboard when the sheet opens
    property Item focusBefore: null // gets the keyboard back
    property Item focusInside: null
    property bool closing: false

    anchors.centerIn: parent
    closePolicy: dismissible ? T.Popup.CloseOnEscape : T.Popup.NoAutoClose
    focus: true
    height: parent ? Math.min(implicitHeight, parent.height - Theme.gap4 * 2) : implicitHeight
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: parent ? Math.min(naturalWidth, parent.width - Theme.gap4 * 2) : naturalWidth
    modal: true
    padding: Theme.gap6
    parent: T.Overlay.overlay

    function keepFocus(): void {
        if (!closing && focusInside)
            focusInside.forceActiveFocus(Qt.TabFocusReason)
    }

    function isWithin(item: Item, ancestor: Item): bool {
        let above = item
        while (above && above !== ancestor)
            above = above.parent
        return above !== null
    }

    // A screen below that comes up meanwhile reaches for the keyboard; it gets it when the sheet is gone.
    readonly property Connections keeper: Connections {
        function onActiveFocusItemChanged() {
            const item = sheet.parent.Window.window.activeFocusItem
            // On its way out a popup leaves the keyboard to nobody, before it says that it hides.
            if (!item || item === sheet.parent.Window.window.contentItem)
                return
            if (sheet.isWithin(item, sheet.contentItem)) {
                sheet.focusInside = item
            } else if (!sheet.isWithin(item, sheet.parent)) {
                sheet.focusBefore = item
                sheet.keepFocus()
            }
        }

        target: sheet.visible ? sheet.parent.Window.window : null
    }

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

    onAboutToShow: {
        focusBefore = parent.Window.window.activeFocusItem
        focusInside = firstFocus
        closing = false
    }
    onAboutToHide: closing = true
    // At once, not after the animation: the first key belongs to the sheet.
    onVisibleChanged: {
        if (visible)
            keepFocus()
    }
    onClosed: {
        // Another sheet that is open by now takes the keyboard from it, and returns it in its turn.
        if (focusBefore)
            focusBefore.forceActiveFocus(Qt.PopupFocusReason)
        focusBefore = null
    }
}
