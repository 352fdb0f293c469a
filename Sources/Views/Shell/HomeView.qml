import QtQuick
import Korvi.ViewModels

FocusScope {
    id: home

    required property AuthViewModel auth
    required property ChatViewModel chat

    signal settingsRequested

    function startChat(): void {
        layout.close()
        chat.createChat()
        conversation.focusComposer()
    }

    focus: true

    Keys.onEscapePressed: event => {
        if (layout.open)
            layout.close()
        else if (home.chat.isGenerating)
            home.chat.stopGeneration()
        else
            event.accepted = false
    }

    Shortcut {
        sequence: "Ctrl+N"

        onActivated: home.startChat()
    }
    Shortcut {
        sequence: "Ctrl+L"

        onActivated: {
            layout.close()
            conversation.focusComposer()
        }
    }
    SidebarLayout {
        id: layout

        anchors.fill: parent
        focus: true

        sidebar: Sidebar {
            activeChatId: home.chat.activeChatId // qmllint disable
            anchors.fill: parent
            chats: home.chat.chats
            displayName: home.auth.displayName
            focus: true
            initials: home.auth.initials

            onChatChosen: chatId => {
                layout.close()
                home.chat.selectChat(chatId)
                conversation.focusComposer()
            }
            onLogout: home.auth.logout()
            onNewChat: home.startChat()
            onSettingsRequested: {
                layout.close()
                home.settingsRequested()
            }
        }

        ConversationView {
            id: conversation

            anchors.fill: parent
            chat: home.chat
            focus: true
            sidebarFolded: layout.folded

            onSidebarRequested: layout.toggle()
        }
    }
}
