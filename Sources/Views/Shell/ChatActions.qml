import QtQuick

// What can be done to a chat from wherever it is shown: its menu, and the dialogs that ask first.
Item {
    id: actions

    readonly property real menuChatId: menu.item ? menu.chatId : -1 // whose menu stands open

    readonly property bool asking: nameDialog.item !== null || deleteDialog.item !== null

    readonly property string module: "qrc:/qt-project.org/imports/Korvi/Views/"

    signal favoriteToggled(chatId: real)
    signal renamed(chatId: real, name: string)
    signal deleted(chatId: real)

    // At a place in `item`.
    function openMenu(chatId: real, name: string, isFavorite: bool, item: Item, x: real, y: real): void {
        const place = item.mapToItem(actions, x, y)
        menu.chatId = chatId
        menu.open({ chatName: name, isFavorite: isFavorite, x: place.x, y: place.y })
    }

    function askName(chatId: real, name: string): void {
        nameDialog.chatId = chatId
        nameDialog.name = name
        nameDialog.open({ title: "Переименовать чат", label: "Название", text: name, acceptText: "Сохранить" })
    }

    function askDeletion(chatId: real, name: string): void {
        deleteDialog.chatId = chatId
        deleteDialog.open({
            title: "Удалить чат?",
            message: "Чат «%1» и все его сообщения будут удалены. Вернуть их нельзя.".arg(name),
            acceptText: "Удалить",
            destructive: true
        })
    }

    OnDemand {
        id: menu

        property real chatId

        source: actions.module + "ChatMenu.qml"
    }
    // The dialogs come later: they take the keyboard once the menu has given it back.
    Connections {
        function onDeleteRequested(name) {
            Qt.callLater(actions.askDeletion, menu.chatId, name) // qmllint disable
        }
        function onFavoriteToggled() {
            actions.favoriteToggled(menu.chatId)
        }
        function onRenameRequested(name) {
            Qt.callLater(actions.askName, menu.chatId, name) // qmllint disable
        }

        target: menu.item
    }
    OnDemand {
        id: nameDialog

        property real chatId
        property string name

        source: actions.module + "FieldDialog.qml"
    }
    Connections {
        function onSubmitted(text) {
            if (text !== nameDialog.name)
                actions.renamed(nameDialog.chatId, text)
        }

        target: nameDialog.item
    }
    OnDemand {
        id: deleteDialog

        property real chatId

        source: actions.module + "ConfirmDialog.qml"
    }
    Connections {
        function onAccepted() {
            actions.deleted(deleteDialog.chatId)
        }

        target: deleteDialog.item
    }
}
