import QtQuick
import Korvi.ViewModels

// The open conversation: what was said, what goes wrong, and the composer at its foot. A new chat, or an empty one, has
// the composer in the middle under a greeting.
FocusScope {
    id: view

    required property ChatViewModel chat
    required property bool sidebarFolded
    property FileDownloads downloads: null

    readonly property real margin: sidebarFolded ? Theme.gap4 : Theme.gap6
    readonly property real columnWidth: Math.min(Theme.px(Theme.readingWidth), width - margin * 2)
    readonly property real chatId: chat.activeChatId // qmllint disable
    readonly property bool fresh: chat.areMessagesLoaded && chat.messages.count === 0
    property real shownChatId: -1
    property string mode: "none" // of InputMode.js

    signal sidebarRequested
    signal menuRequested(item: Item, x: real, y: real) // of the open chat

    function chooseModel(): void {
        chat.showingModelSelector = true
    }

    function focusComposer(): void {
        composer.takeFocus()
    }

    function chooseFiles(filter: int): void {
        fileQuestion.ask(chat.attachments.nameFilters(), filter)
    }

    function send(): void {
        chat.sendMessage()
        list.showLastTurn()
    }

    function retry(): void {
        chat.retryLastMessage()
        list.showLastTurn()
    }

    Keys.onPressed: event => {
        if (list.scrollByKey(event.key))
            event.accepted = true
    }

    onChatIdChanged: {
        // A new chat that gets its number while its first answer comes is the same conversation.
        if (!(shownChatId < 0 && chat.isGenerating && list.turnIsHeld)) {
            list.showEnd()
            mode = "none"
        }
        shownChatId = chatId
    }

    Connections {
        function onInputFocusRequested() {
            view.focusComposer()
        }

        target: view.chat
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.bg
    }
    AnswerContext {
        id: context

        artifacts: view.chat.artifacts
        attachments: view.chat.attachments
        canSend: !view.chat.isGenerating
        downloads: view.downloads
        hasPlaceholder: view.chat.hasGeneratingPlaceholder
        toolStatus: view.chat.currentToolStatus

        onDiagramWanted: code => viewers.showDiagram(code)
        onImagesWanted: (images, index) => viewers.showImages(images, index)
        onSendWanted: file => {
            view.chat.sendSeparately(file)
            list.showLastTurn()
        }
    }
    AnswerViewers {
        id: viewers

        onCopyWanted: text => list.copy(text)
    }
    MessageList {
        id: list

        anchors.bottom: notices.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: header.bottom
        canRetry: !view.chat.isGenerating
        columnWidth: view.columnWidth
        context: context
        messages: view.chat.messages
        visible: !view.fresh

        onDeletionWanted: messageId => view.chat.deleteMessage(messageId)
        onRetryWanted: view.retry()
    }
    Rectangle {
        anchors.bottom: list.bottom
        gradient: Gradient {
            GradientStop { color: Qt.alpha(Theme.bg, 0); position: 0 }
            GradientStop { color: Theme.bg; position: 1 }
        }
        height: Theme.gap4
        visible: list.visible
        width: parent.width - Theme.gap4 // not over the scroll bar
    }
    ConversationPlaceholder {
        anchors.centerIn: list
        isConnected: view.chat.isConnected
        visible: !view.fresh && list.count === 0
        width: view.columnWidth
    }
    ConversationHeader {
        id: header

        choosingModel: view.chat.showingModelSelector
        lined: list.visible && !list.atYBeginning
        modelName: view.chat.chatModelName
        models: view.chat.models
        sidebarFolded: view.sidebarFolded
        status: view.chat.connectionStatus
        title: view.chat.activeChatName
        width: parent.width

        onMenuRequested: (item, x, y) => view.menuRequested(item, x, y)
        onModelChosen: modelId => {
            view.chat.chooseModel(modelId)
            view.focusComposer()
        }
        onModelsClosed: view.chat.showingModelSelector = false
        onModelsRequested: view.chat.showingModelSelector = !view.chat.showingModelSelector
        onReconnect: view.chat.reconnect()
        onSidebarRequested: view.sidebarRequested()
    }
    RoundButton {
        anchors.bottom: notices.top
        anchors.bottomMargin: Theme.gap2
        anchors.horizontalCenter: parent.horizontalCenter
        enabled: opacity > 0
        objectName: "scrollToEndButton"
        opacity: list.visible && list.farFromEnd ? 1 : 0
        symbol: "arrow.down"
        text: "К последнему сообщению"
        visible: opacity > 0

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }

        onClicked: list.jumpToEnd()
    }
    NoticeArea {
        id: notices

        anchors.bottom: composer.top
        anchors.horizontalCenter: parent.horizontalCenter
        canRetry: view.chat.canRetryError
        error: view.chat.generationError
        hint: view.chat.generationHint
        readyChat: view.chat.completedInOtherChatName
        width: view.columnWidth

        onDismissed: view.chat.dismissError()
        onReadyChatWanted: view.chat.navigateToChat(view.chat.completedInOtherChatId) // qmllint disable
        onRetry: view.retry()
    }
    Label {
        Accessible.role: Accessible.Heading
        anchors.bottom: notices.top
        anchors.bottomMargin: Theme.gap2
        font.pixelSize: Theme.fontDisplay
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        opacity: 1 - composer.lowered
        text: "Чем могу помочь?"
        visible: opacity > 0
        width: view.columnWidth
        wrapMode: Text.Wrap
        x: (view.width - width) / 2
    }
    Composer {
        id: composer

        // 0 in the middle of an empty chat, 1 at the foot.
        property real lowered: view.fresh ? 0 : 1
        readonly property real middle: Math.round((view.height + header.height - height) / 2)
        readonly property real foot: view.height - height - (view.sidebarFolded ? Theme.gap4 : Theme.gap5)

        anchors.horizontalCenter: parent.horizontalCenter
        attachmentError: view.chat.attachments.fileValidationError
        attachments: view.chat.pendingFileAttachments
        canSend: view.chat.canSend
        editImage: view.chat.pendingEditImageUrl
        focus: true
        generating: view.chat.isGenerating
        maximumHeight: Math.max(Theme.px(120), view.height / 2)
        mode: view.mode
        paste: () => view.chat.attachments.paste()
        text: view.chat.currentInput
        width: view.columnWidth
        y: Math.round(middle + (foot - middle) * lowered)

        Behavior on lowered { NumberAnimation { duration: Theme.calm; easing.type: Easing.OutCubic } }

        onAttachmentErrorDismissed: view.chat.attachments.dismissValidationError()
        onAttachmentRemoved: attachmentId => view.chat.attachments.removeFileAttachment(attachmentId)
        onEdited: text => {
            view.chat.currentInput = text
            view.chat.attachments.dismissValidationError()
        }
        onEditingImageCancelled: view.chat.clearPendingEditImage()
        onFilesWanted: filter => view.chooseFiles(filter)
        onModeChosen: mode => view.mode = mode
        onRecallRequested: composer.recall(view.chat.lastQuestion())
        onSend: view.send()
        onStop: view.chat.stopGeneration()
    }
    DropOverlay {
        anchors.fill: parent

        onTaken: (urls, image, type) => {
            view.chat.attachments.addDropped(urls, image, type)
            view.focusComposer()
        }
    }
    FileQuestion {
        id: fileQuestion

        onAnswered: files => view.chat.attachments.addFiles(files)
        onClosed: view.focusComposer()
    }
}
