import QtQuick

FocusScope {
    id: sidebar

    required property var chats // a list model with the roles chatId, name, isFavorite, updatedAt
    required property real activeChatId
    required property string displayName
    required property string initials

    signal newChat
    signal chatChosen(chatId: real)
    signal logout
    signal settingsRequested

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

        anchors.top: brand.bottom
        focus: true
        hint: "Ctrl+N"
        objectName: "newChatButton"
        symbol: "bubble.plus"
        text: "Новый чат"
        width: parent.width - Theme.gap2 * 2
        x: Theme.gap2

        onClicked: sidebar.newChat()
    }
    ChatList {
        activeChatId: sidebar.activeChatId
        anchors.bottom: profile.top
        anchors.bottomMargin: Theme.gap2
        anchors.top: newChatRow.bottom
        chats: sidebar.chats
        width: parent.width

        onChosen: chatId => sidebar.chatChosen(chatId)
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
    }
}
