import QtQuick
import Korvi.ViewModels

FocusScope {
    id: home

    required property AuthViewModel auth
    required property ChatViewModel chat
    required property FileDownloads downloads
    required property ArtifactExport artifactFiles

    readonly property string module: "qrc:/qt-project.org/imports/Korvi/Views/"

    // What the window's shortcuts do, by their names in the table.
    readonly property var actions: ({
        newChat: startChat,
        quickSwitch: () => quickSwitch.open({ chats: chat.chats, activeChatId: chat.activeChatId }),
        search: () => {
            layout.reveal()
            sidebar.focusSearch()
        },
        focusComposer: focusComposer,
        chooseModel: () => conversation.chooseModel(),
        attach: () => conversation.chooseFiles(0),
        settings: openSettings,
        shortcuts: () => shortcutSheet.open({}),
    })

    signal settingsRequested

    function startChat(): void {
        sidebar.clearSearch()
        chat.createChat()
        focusComposer()
    }

    function openChat(chatId: real): void {
        chat.selectChat(chatId)
        focusComposer()
    }

    function focusComposer(): void {
        layout.close()
        conversation.focusComposer()
    }

    function openSettings(): void {
        layout.close()
        settingsRequested()
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

    ShortcutSet {
        onActivated: id => home.actions[id]()
    }
    SidebarLayout {
        id: layout

        anchors.fill: parent
        focus: true

        sidebar: Sidebar {
            id: sidebar

            readonly property bool isConnecting: home.chat.connectionStatus === "Connecting..."

            activeChatId: home.chat.activeChatId // qmllint disable
            anchors.fill: parent
            chats: home.chat.chats
            displayName: home.auth.displayName
            focus: true
            initials: home.auth.initials
            menuChatId: chatActions.menuChatId
            // The chats come before the line is up, or else with it.
            loading: isConnecting || home.chat.areChatsOutdated
            online: isConnecting || home.chat.isConnected

            onChatChosen: chatId => home.openChat(chatId)
            onDeleteRequested: (chatId, name) => chatActions.askDeletion(chatId, name)
            onLogout: logoutDialog.ask()
            onMenuRequested: (chatId, name, isFavorite, item, x, y) =>
                chatActions.openMenu(chatId, name, isFavorite, item, x, y)
            onNewChat: home.startChat()
            onRenameRequested: (chatId, name) => chatActions.askName(chatId, name)
            onSettingsRequested: home.openSettings()
            onShortcutsRequested: home.actions.shortcuts()
        }

        SidePanel {
            anchors.fill: parent
            focus: true
            open: home.chat.artifacts.isOpen

            onCloseWanted: home.chat.artifacts.close()

            panel: Component {
                Loader {
                    // By address: a start pays for no document.
                    // qmllint disable unqualified
                    Component.onCompleted: setSource(home.module + "ArtifactPanel.qml", {
                        artifacts: home.chat.artifacts, files: home.artifactFiles,
                        chatId: Qt.binding(() => home.chat.activeChatId), focus: true,
                    })
                    // qmllint enable unqualified
                    focus: true
                }
            }

            ConversationView {
                id: conversation

                anchors.fill: parent
                chat: home.chat
                downloads: home.downloads
                focus: true
                sidebarFolded: layout.folded

                onMenuRequested: (item, x, y) => chatActions.openMenu(home.chat.activeChatId, home.chat.activeChatName,
                    home.chat.chats.isFavorite(home.chat.activeChatId), item, x, y)
                onSidebarRequested: layout.toggle()
            }
        }
    }
    ChatActions {
        id: chatActions

        onDeleted: chatId => home.chat.deleteChat(chatId)
        onFavoriteToggled: chatId => home.chat.toggleFavorite(chatId)
        onRenamed: (chatId, name) => home.chat.renameChat(chatId, name)
    }
    OnDemand {
        id: quickSwitch

        source: home.module + "QuickSwitch.qml"
    }
    Connections {
        function onChosen(chatId) {
            home.openChat(chatId)
        }

        target: quickSwitch.item
    }
    OnDemand {
        id: shortcutSheet

        source: home.module + "ShortcutSheet.qml"
    }
    OnDemand {
        id: logoutDialog

        function ask(): void {
            open({ title: "Выйти из аккаунта?", message: "Вы уверены, что хотите выйти?", acceptText: "Выйти" })
        }

        source: home.module + "ConfirmDialog.qml"
    }
    Connections {
        function onAccepted() {
            home.auth.logout()
        }

        target: logoutDialog.item
    }
}
