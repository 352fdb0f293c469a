import QtQuick
import QtQuick.Templates as T

// Gives the keyboard back, when a popup closes, to what had it before; a popup by itself gives it to nobody.
QtObject {
    id: keeper

    required property T.Popup popup
    property Item before: null

    readonly property Connections connections: Connections {
        function onAboutToShow() {
            const parent = keeper.popup.parent
            keeper.before = parent && parent.Window.window ? parent.Window.window.activeFocusItem : null
        }
        function onClosed() {
            if (keeper.before)
                keeper.before.forceActiveFocus(Qt.PopupFocusReason)
            keeper.before = null
        }

        target: keeper.popup
    }
}
