import QtQuick

FocusScope {
    id: sidebar

    required property var chats // a list model with the roles chatId, name, isFavorite, updatedAt
    required property real activeChatId
    required property string displayName
    required property string initials
    property bool loading: false // chats are on their way
    property bool online: true
    property alias menuChatId: list.menuChatId

    signal newChat
    signal chatChosen(chatId: real)
    signal renameRequested(chatId: real, name: string)
    signal deleteRequested(chatId: real, name: string)
    signal menuRequested(chatId: real, name: string, isFavorite: bool, item: Item, x: real, y: real)
    signal settingsRequested
    signal shortcutsRequested
    signal logout

    function focusSearch(): void {
        search.forceActiveFocus(Qt.ShortcutFocusReason)
        search.selectAll()
    }

    function clearSearch(): void {
        search.clear()
    }

    Accessible.name: "Чаты"
    Accessible.role: Accessible.Pane
    objectName: "sidebar"

    Rectangle {
        anchors.fill: parent
        color: Theme.side
    }
    Rectangle {
        anchors.right: parent.right
        color: Theme.line
        height: parent.height
        width: Theme.hairline
    }
    Row {
        id: brand

        height: Theme.headerHeight
        leftPadding: Theme.gap4
        spacing: Theme.gap2

        BrandMark {
            anchors.verticalCenter: parent.verticalCenter
            size: Theme.px(24)
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            font.weight: Font.DemiBold
            text: "Korvi"
        }
    }
    SidebarRow {
        id: newChatRow

        Accessible.description: "Ctrl+N"
        KeyNavigation.down: search
        anchors.top: brand.bottom
        focus: true
        detail: hovered || visualFocus ? "Ctrl+N" : ""
        objectName: "newChatButton"
        symbol: "plus.message"
        text: "Новый чат"
        width: parent.width - Theme.gap2 * 2
        x: Theme.gap2

        onClicked: sidebar.newChat()
    }
    SearchField {
        id: search

        KeyNavigation.up: newChatRow
        anchors.top: newChatRow.bottom
        clearText: "Очистить поиск"
        objectName: "chatSearch"
        placeholderText: "Поиск по чатам"
        width: parent.width - Theme.gap2 * 2
        x: Theme.gap2

        Keys.onDownPressed: {
            if (list.rows > 0) {
                list.currentIndex = 0
                list.forceActiveFocus(Qt.TabFocusReason)
            }
        }
        Keys.onEnterPressed: if (length > 0) list.open(0)
        Keys.onReturnPressed: if (length > 0) list.open(0)
    }
    ChatList {
        id: list

        activeChatId: sidebar.activeChatId
        anchors.bottom: profile.top
        anchors.bottomMargin: Theme.gap2
        anchors.top: search.bottom
        chats: sidebar.chats
        query: search.text
        width: parent.width

        onChosen: chatId => sidebar.chatChosen(chatId)
        onDeleteRequested: (chatId, name) => sidebar.deleteRequested(chatId, name)
        onLeftUpwards: search.forceActiveFocus(Qt.TabFocusReason)
        onMenuRequested: (chatId, name, isFavorite, item, x, y) =>
            sidebar.menuRequested(chatId, name, isFavorite, item, x, y)
        onRenameRequested: (chatId, name) => sidebar.renameRequested(chatId, name)
        onTyped: text => {
            search.forceActiveFocus(Qt.TabFocusReason)
            search.insert(search.length, text)
        }
    }
    ChatListNotice {
        anchors.fill: list
        kind: list.rows > 0 ? "" : search.length > 0 ? "nothingFound" : !sidebar.online ? "offline"
            : sidebar.loading ? "loading" : "empty"
    }
    Rectangle {
        anchors.bottom: profile.top
        anchors.bottomMargin: Theme.gap1
        color: Theme.line
        height: Theme.hairline
        width: parent.width - Theme.gap2 * 2
        x: Theme.gap2
    }
    ProfileRow {
        id: profile

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gap1
        displayName: sidebar.displayName
        initials: sidebar.initials
        width: parent.width - Theme.gap2 * 2
        x: Theme.gap2

        onLogout: sidebar.logout()
        onSettingsRequested: sidebar.settingsRequested()
        onShortcutsRequested: sidebar.shortcutsRequested()
    }
}
