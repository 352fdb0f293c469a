import QtQuick

PopupMenu {
    id: menu

    required property string chatName
    required property bool isFavorite

    signal favoriteToggled
    signal renameRequested(name: string)
    signal deleteRequested(name: string)

    objectName: "chatMenu"

    PopupMenuItem {
        objectName: "favoriteItem"
        symbol: menu.isFavorite ? "pin.slash" : "pin"
        text: menu.isFavorite ? "Открепить" : "Закрепить"

        onTriggered: menu.favoriteToggled()
    }
    PopupMenuItem {
        hint: "F2"
        objectName: "renameItem"
        symbol: "pencil"
        text: "Переименовать"

        onTriggered: menu.renameRequested(menu.chatName)
    }
    PopupMenuItem {
        destructive: true
        hint: "Delete"
        objectName: "deleteItem"
        symbol: "trash"
        text: "Удалить"

        onTriggered: menu.deleteRequested(menu.chatName)
    }
}
