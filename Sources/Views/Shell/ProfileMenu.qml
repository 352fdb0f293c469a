import QtQuick

PopupMenu {
    id: menu

    signal settingsRequested
    signal shortcutsRequested
    signal logout

    y: -implicitHeight - Theme.gap1

    PopupMenuItem {
        hint: "Ctrl+,"
        objectName: "settingsItem"
        symbol: "gear"
        text: "Настройки"

        onTriggered: menu.settingsRequested()
    }
    PopupMenuItem {
        hint: "Ctrl+/"
        objectName: "shortcutsItem"
        symbol: "keyboard"
        text: "Сочетания клавиш"

        onTriggered: menu.shortcutsRequested()
    }
    PopupMenuItem {
        objectName: "logoutItem"
        symbol: "rectangle.portrait.and.arrow.right"
        text: "Выйти"

        onTriggered: menu.logout()
    }
}
