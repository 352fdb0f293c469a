#include "Chat/ChatViewModel.h"

#include "Backend/UsersService.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/MessageComposition.h"
#include "Clock.h"
#include "Log.h"
#include "Match.h"
#include "NotificationCenter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcChat, "korvi.chat", QtInfoMsg)

namespace {

constexpr auto aiPlus = "aiplus"_L1; // the model that takes video and audio
constexpr auto slowHint = u"Это может занять время...";
const auto ownerKey = u"conversationsOwner"_s; // whose lists are cached
const auto draftKey = u"composerDraft"_s;
const auto leftInputsKey = u"leftComposerInputs"_s;

}

ChatViewModel::ChatViewModel(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_directory({dependencies.chatService, dependencies.cache, dependencies.notifications})
    , m_loader(dependencies.chatService, dependencies.scheduler)
    , m_stream({dependencies.chatService, dependencies.cache, dependencies.defaults, dependencies.scheduler,
                   dependencies.clock, dependencies.random},
          m_messages)
    , m_modelSelection(dependencies.defaults)
    , m_generationState(dependencies.defaults, dependencies.clock, dependencies.scheduler)
    , m_artifacts(m_messages)
    , m_uploads(dependencies.attachments, dependencies.scheduler,
          [this](quint64 serial, const AttachmentUploader::Uploaded& uploaded) { filesUploaded(serial, uploaded); }) {
    ChatService& service = m_dependencies.chatService;
    service.onEvent = [self = QPointer(this)](const SocketEvent& event) {
        if (self)
            self->handleSocketEvent(event);
    };
    service.onConnectionStatusChanged = [self = QPointer(this)](const QString& status) {
        if (!self)
            return;
        self->m_isConnecting = false;
        self->m_connectionStatus = status;
    };
    connect(&service, &ChatService::attemptFailed, this, &ChatViewModel::connectionFailed);
    connect(&service, &ChatService::disconnected, this, [this] {
        m_connectionStatus = u"Connecting..."_s; // whoever disconnects connects again, or nobody is signed in
        m_stream.disconnected();
    });
    connect(&m_dependencies.notifications, &NotificationCenter::organizationDidChange, this,
        &ChatViewModel::organizationChanged);
    connect(&m_stream, &AnswerStream::changed, this, &ChatViewModel::answerStateChanged);
    connect(&m_stream, &AnswerStream::generatingChatsChanged, m_directory.model(), &ChatListModel::setGenerating);
    connect(&m_stream, &AnswerStream::questionReturned, this, &ChatViewModel::takeBackQuestion);
    connect(&m_stream, &AnswerStream::toolsChanged, this, &ChatViewModel::toolStateChanged);
    connect(&m_stream, &AnswerStream::longTaskBegan, this,
        [this](qint64 chatId, const QString& type) { emit longTaskBegan(chatId, type, nameOf(chatId)); });
    connect(&m_stream, &AnswerStream::answerReady, this,
        [this](qint64 chatId, const QDateTime& askedAt) { emit answerReady(chatId, nameOf(chatId), askedAt); });
    connect(&m_stream, &AnswerStream::filesReturned, this, [this](quint64 serial) { m_uploads.giveBack(serial); });
    connect(attachments()->pending(), &AttachmentListModel::countChanged, this, [this] {
        emit hasAttachmentsChanged();
        emit canSendChanged();
    });
    connect(attachments(), &ComposerAttachments::imagePasted, this, [this](const QUrl& image) {
        setEditImage(image.toString(), m_currentInput); // what is typed already stays
    });
    connect(&m_stream, &AnswerStream::followed, this, [this] {
        ++m_contentUpdateTrigger;
        emit contentUpdateTriggerChanged();
        emit contentScrolled();
    });
    connect(&m_stream, &AnswerStream::touched, &m_loader, &MessageLoader::touch);
    connect(&m_stream, &AnswerStream::comparisonWanted, this, [this](qint64 chatId) {
        if (chatId > 0)
            m_loader.load(chatId);
    });
    connect(&m_loader, &MessageLoader::loaded, this, &ChatViewModel::messagesLoaded);
    connect(&m_loader, &MessageLoader::failed, this, &ChatViewModel::messagesFailed);
    connect(&m_directory, &ChatDirectory::chatChanged, this, [this](const Chat& chat) {
        if (m_activeChat && m_activeChat->id == chat.id && *m_activeChat != chat)
            setActiveChat(chat);
    });
    connect(&m_directory, &ChatDirectory::chatRemoved, this, [this](qint64 chatId) {
        m_stream.forget(chatId);
        if (activeChatId() != chatId)
            return;
        closeConversation();
    });
    m_models.setSelected(selectedModel());
    attachments()->setAIPlusMode(selectedModel() == aiPlus);
}

ChatViewModel::~ChatViewModel() = default;

// Start, and what is loaded

void ChatViewModel::restore(const QString& userId) {
    Defaults& defaults = m_dependencies.defaults;
    if (defaults.string(ownerKey) != userId) {
        m_dependencies.cache.clearAll();
        m_stream.forgetJournal();
        defaults.remove(draftKey);
        defaults.remove(leftInputsKey);
        defaults.setString(ownerKey, userId);
    }
    m_directory.loadCached();
    // Before the answers: a question that returns stands in front of what was being written.
    if (m_currentInput.isEmpty())
        setCurrentInput(defaults.string(draftKey).value_or(QString()));
    if (const auto record = m_generationState.getPending())
        m_recordedChatId = record->chatId;
    m_stream.restore();
    const QJsonObject left = QJsonDocument::fromJson(defaults.data(leftInputsKey).value_or(QByteArray())).object();
    for (auto it = left.begin(); it != left.end(); ++it)
        m_leftInputs.insert(it.key().toLongLong(), it.value().toString());
}

Task<void> ChatViewModel::loadData() {
    co_await fetchCurrentUser();
    co_await m_directory.load();
    connectToService();
}

Task<void> ChatViewModel::fetchCurrentUser() {
    try {
        User user = co_await m_dependencies.users.getSelf();
        m_user = std::move(user);
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcChat).noquote() << "❌ [ChatViewModel] Error loading user:" << error.what();
    }
}

Task<void> ChatViewModel::prefetchRelatedData() {
    for (const qint64 chatId : m_directory.staleChats(m_dependencies.clock.now()))
        co_await m_loader.loadNow(chatId);
}

void ChatViewModel::connectToService() {
    m_isConnecting = true;
    if (!isConnected())
        m_connectionStatus = u"Connecting..."_s;
    m_dependencies.chatService.connect();
}

void ChatViewModel::reconnect() {
    m_dependencies.chatService.disconnect();
    connectToService();
}

// It is tried again later, but whoever asked for a connection is told.
void ChatViewModel::connectionFailed(const QString& reason) {
    if (!std::exchange(m_isConnecting, false))
        return;
    qCWarning(lcChat).noquote() << "❌ [ChatViewModel] Failed to connect:" << reason;
    m_connectionStatus = u"Failed"_s;
}

bool ChatViewModel::isConnected() const {
    return m_connectionStatus.value() == "Connected"_L1;
}

void ChatViewModel::organizationChanged() {
    m_directory.clear();
    m_loader.clear();
    m_uploads.clear();
    m_stream.dropAll();
    closeConversation();
    setCurrentInput({});
    m_leftInputs.clear();
    m_activeProjectId.reset();
    m_activeProjectName.reset();
    m_dependencies.cache.clearAll();
    m_dependencies.chatService.disconnect();
    m_scope.start([this]() -> Task<void> {
        co_await m_directory.load();
        connectToService();
    });
}

void ChatViewModel::reset() {
    m_scope.cancel();
    m_draftTimer.cancel();
    m_loader.clear();
    m_uploads.clear();
    attachments()->reset();
    m_stream.reset();
    m_user.reset();
    m_directory.clear();
    m_activeProjectId.reset();
    m_activeProjectName.reset();
    m_leftInputs.clear();
    m_currentInput.clear();
    emit currentInputChanged();
    setPendingEditImage(std::nullopt);
    closeConversation();
    dismissError();
}

// The composer

void ChatViewModel::setCurrentInput(const QString& text) {
    if (m_currentInput == text)
        return;
    m_currentInput = text;
    m_draftTimer = m_dependencies.scheduler.after(draftDelay, [this] { saveDraft(); });
    emit currentInputChanged();
    emit canSendChanged();
}

void ChatViewModel::saveDraft() {
    m_draftTimer.cancel();
    if (m_currentInput.isEmpty())
        m_dependencies.defaults.remove(draftKey);
    else
        m_dependencies.defaults.setString(draftKey, m_currentInput);
}

void ChatViewModel::saveLeftInputs() {
    QJsonObject left;
    for (auto it = m_leftInputs.begin(); it != m_leftInputs.end(); ++it)
        left.insert(QString::number(it.key()), it.value());
    m_dependencies.defaults.setData(leftInputsKey, QJsonDocument(left).toJson(QJsonDocument::Compact));
}

bool ChatViewModel::canSend() const {
    return hasAttachments() || !m_currentInput.trimmed().isEmpty();
}

bool ChatViewModel::hasAttachments() const {
    return m_pendingEditImageUrl || m_dependencies.attachments.pending()->count() > 0;
}

void ChatViewModel::setEditImage(const QString& url, const QString& prompt) {
    if (const QUrl image(url); image.isLocalFile() && !attachments()->isPasted(image)) {
        qCWarning(lcChat) << "❌ [ChatViewModel] A local file is not an image to be edited";
        return;
    }
    setPendingEditImage(url);
    setCurrentInput(prompt);
    emit inputFocusRequested();
}

void ChatViewModel::clearPendingEditImage() {
    setPendingEditImage(std::nullopt);
}

void ChatViewModel::setPendingEditImage(std::optional<QString> url) {
    if (m_pendingEditImageUrl == url)
        return;
    m_pendingEditImageUrl = std::move(url);
    emit pendingEditImageUrlChanged();
    emit hasAttachmentsChanged();
    emit canSendChanged();
}

void ChatViewModel::takeBackQuestion(const QString& text) {
    if (text.isEmpty())
        return showError(u"Вложения не дошли до сервиса."_s);
    setCurrentInput(m_currentInput.isEmpty() ? text : text + u"\n\n"_s + m_currentInput);
    saveDraft();
    showError(u"Сообщение не дошло до сервиса. Его текст снова в поле ввода."_s);
}

QString ChatViewModel::lastQuestion() const {
    return MessageComposition::lastQuestion(m_messages.messages()).value_or(QString());
}

// Which conversation is open

void ChatViewModel::createChat() {
    if (m_activeChat && !m_currentInput.isEmpty()) {
        m_leftInputs.insert(m_activeChat->id, m_currentInput);
        saveLeftInputs();
    }
    openConversation(std::nullopt);
    setCurrentInput({});
    setPendingEditImage(std::nullopt);
    m_activeProjectId.reset();
    m_activeProjectName.reset();
    emit inputFocusRequested();
}

void ChatViewModel::createChatInProject(qint64 projectId, const QString& projectName) {
    createChat();
    m_activeProjectId = projectId;
    m_activeProjectName = projectName;
}

void ChatViewModel::selectChat(qint64 chatId) {
    const Chat* chat = m_directory.find(chatId);
    if (!chat)
        return;
    if (activeChatId() != chatId) {
        const QString mode = chat->mode;
        openConversation(*chat);
        if (m_currentInput.isEmpty() && m_leftInputs.contains(chatId)) {
            setCurrentInput(m_leftInputs.take(chatId));
            saveDraft();
            saveLeftInputs();
        }
        if (ModelCatalogue::find(mode))
            selectModel(mode);
        else
            qCWarning(lcChat).noquote().nospace()
                << "⚠️ [ChatViewModel] Chat mode '" << mode << "' is not in the catalogue";
    }
    m_loader.load(chatId);
}

void ChatViewModel::navigateToChat(qint64 chatId) {
    selectChat(chatId);
    setCompletedInOtherChat(std::nullopt);
}

void ChatViewModel::openConversation(std::optional<Chat> chat) {
    m_stream.park();
    dismissError();
    if (!chat)
        return closeConversation();
    m_areMessagesLoaded = false;
    if (!m_stream.unpark(chat->id))
        m_messages.reset(m_dependencies.cache.getCachedMessages(chat->id).value_or(std::vector<ChatMessage>()));
    setActiveChat(std::move(chat));
}

void ChatViewModel::closeConversation() {
    m_messages.reset({});
    setActiveChat(std::nullopt);
    m_areMessagesLoaded = true;
}

void ChatViewModel::setActiveChat(std::optional<Chat> chat) {
    if (m_activeChat == chat)
        return;
    m_activeChat = std::move(chat);
    emit activeChatChanged();
}

void ChatViewModel::messagesLoaded(qint64 chatId, const std::vector<ChatMessage>& messages) {
    DataCacheManager& cache = m_dependencies.cache;
    if (m_stream.isUnderWay(chatId)) {
        qCInfo(lcChat) << "⏳ [ChatViewModel] Skipping message refresh — streaming in progress";
        cache.cacheMessages(messages, chatId);
        m_stream.noteMissingHistory(chatId);
        return;
    }
    if (!m_stream.compare(chatId, messages)) {
        if (m_loader.loadLater(chatId))
            return;
        m_stream.forgetExpected(chatId); // what is stored is what there is
    }
    if (chatId == activeChatId())
        show(messages);
    else
        cache.cacheMessages(messages, chatId);
}

void ChatViewModel::messagesFailed(qint64 chatId, bool isGone) {
    if (isGone) {
        m_stream.forgetExpected(chatId);
        m_areMessagesLoaded = m_areMessagesLoaded || chatId == activeChatId();
    } else if (m_stream.chatsToCompare().contains(chatId) || (chatId == activeChatId() && !m_areMessagesLoaded)) {
        m_loader.loadLater(chatId); // and with the next connection
    }
}

void ChatViewModel::show(std::vector<ChatMessage> messages) {
    if (std::exchange(m_restoresArtifactOf, std::nullopt) == activeChatId() && m_stream.lastStreamedArtifact())
        ArtifactFinder::restoreArtifactIfNeeded(messages, *m_stream.lastStreamedArtifact());
    m_messages.setMessages(MessageComposition::mergeFileAttachments(m_messages.messages(), std::move(messages)));
    m_dependencies.cache.cacheMessages(m_messages.messages(), activeChatId());
    m_areMessagesLoaded = true;
}

// The model

void ChatViewModel::selectModel(const QString& id) {
    m_modelSelection.select(id);
    m_models.setSelected(id);
    attachments()->setAIPlusMode(id == aiPlus);
    emit selectedModelChanged();
}

void ChatViewModel::chooseModel(const QString& id) {
    // A chat never changes its model.
    if (m_activeChat && id != selectedModel())
        createChat();
    selectModel(id);
    setShowingModelSelector(false);
}

void ChatViewModel::setShowingModelSelector(bool showing) {
    if (m_showingModelSelector == showing)
        return;
    m_showingModelSelector = showing;
    emit showingModelSelectorChanged();
}

// The chats

void ChatViewModel::toggleFavorite(qint64 chatId) {
    m_scope.start([this, chatId] { return m_directory.toggleFavorite(chatId); });
}

void ChatViewModel::renameChat(qint64 chatId, const QString& newName) {
    m_scope.start([this, chatId, newName] { return m_directory.rename(chatId, newName); });
}

void ChatViewModel::deleteChat(qint64 chatId) {
    m_scope.start([this, chatId] { return m_directory.remove(chatId); });
}

// A turn of the conversation

void ChatViewModel::sendMessage() {
    sendMessage(m_currentInput);
}

void ChatViewModel::sendMessage(QString text) {
    const bool isEmpty = text.trimmed().isEmpty() && !hasAttachments();
    if (isEmpty || m_isGenerating)
        return;
    const auto editImageUrl = m_pendingEditImageUrl;
    setCurrentInput({});
    setPendingEditImage(std::nullopt);
    send(text, editImageUrl, attachments()->takePending());
    saveDraft(); // only now that the journal has the question: a kill in between would take it
}

void ChatViewModel::sendSeparately(const QUrl& localURL) {
    if (m_isGenerating)
        return;
    if (auto file = attachments()->takeFailed(localURL))
        send({}, std::nullopt, {*std::move(file)});
}

void ChatViewModel::send(
    const QString& text, const std::optional<QString>& editImageUrl, std::vector<ChatFileAttachment> files) {
    const qint64 chatId = activeChatId();
    MessageComposition::Turn turn = MessageComposition::begin(
        MessageComposition::contentOf(text, editImageUrl, files), chatId, m_dependencies.clock, m_dependencies.random);
    const bool hasImage = turn.question.content->front().as<MessageContent::Image>() != nullptr;
    // A pasted image is a file of ours, which has to be uploaded like the others.
    const QUrl edited(editImageUrl.value_or(QString()));
    if (edited.isLocalFile())
        files.insert(files.begin(), ComposerAttachments::attachmentOf(edited, m_dependencies.random.uuid()));
    m_messages.append({std::move(turn.question), std::move(turn.answer)});
    dismissError();
    if (m_activeChat)
        m_directory.touch(chatId, m_dependencies.clock.now().toString(Qt::ISODateWithMs));
    noteQuestion(text, hasImage);
    const bool isAtService = editImageUrl && !edited.isLocalFile();
    const quint64 serial = m_stream.begin({.chatId = chatId,
                                              .model = selectedModel(),
                                              .text = text,
                                              .imageUrls = isAtService ? QStringList(*editImageUrl) : QStringList(),
                                              .files = {},
                                              .projectId = m_activeProjectId},
        files.empty() ? AnswerStream::Files::none : AnswerStream::Files::onTheirWay);
    if (!files.empty())
        m_uploads.start(serial, std::move(files));
    if (!m_areMessagesLoaded)
        m_stream.noteMissingHistory(chatId);
}

void ChatViewModel::stopGeneration() {
    if (!m_stream.stop()) {
        qCInfo(lcChat) << "🛑 [ChatViewModel] stopGeneration: not generating or no active chat";
        return;
    }
    for (int row = m_messages.count() - 1; row >= 0; --row) {
        ChatMessage message = m_messages.messages()[static_cast<std::size_t>(row)];
        if (!MessageComposition::isAnswer(message))
            continue;
        MessageComposition::removePlaceholders(message);
        m_messages.replace(row, std::move(message));
        break;
    }
    if (m_activeChat)
        m_dependencies.cache.cacheMessages(m_messages.messages(), m_activeChat->id);
}

void ChatViewModel::retryLastMessage() {
    if (m_isGenerating)
        return;
    const auto again = MessageComposition::lastQuestion(m_messages.messages());
    if (!again || again->isEmpty()) {
        qCWarning(lcChat) << "❌ [ChatViewModel] retryLastMessage: no user message found";
        return;
    }
    for (int row = m_messages.count() - 1; row >= 0; --row) {
        if (MessageComposition::isAnswer(m_messages.messages()[static_cast<std::size_t>(row)])) {
            m_messages.remove(row);
            break;
        }
    }
    send(*again, std::nullopt);
}

void ChatViewModel::deleteMessage(qint64 id) {
    const auto& messages = m_messages.messages();
    const auto message =
        std::find_if(messages.begin(), messages.end(), [id](const ChatMessage& each) { return each.id == id; });
    // The answer that is still growing has to stay the last one.
    if (message == messages.end() || (m_isGenerating && message == messages.end() - 1))
        return;
    m_messages.remove(static_cast<int>(message - messages.begin()));
}

void ChatViewModel::handleSocketEvent(const SocketEvent& event) {
    // Any of these proves the stream alive.
    const bool isOfStream = !std::holds_alternative<SocketEvent::Connected>(event.value) &&
        !std::holds_alternative<SocketEvent::Disconnected>(event.value) &&
        !std::holds_alternative<SocketEvent::Error>(event.value) &&
        !std::holds_alternative<SocketEvent::Message>(event.value);
    if (isOfStream)
        m_stream.heard();
    match(
        event.value,
        [this](const SocketEvent::TextChunk& chunk) { m_stream.receive(chunk.content, AnswerFold::Kind::text); },
        [this](
            const SocketEvent::ThinkingChunk& chunk) { m_stream.receive(chunk.content, AnswerFold::Kind::thinking); },
        [this](const SocketEvent::Creation& creation) { created(creation.chat); },
        [this](const SocketEvent::Connected&) { connected(); },
        [this](const SocketEvent::Error& error) { failed(error); },
        [this](const SocketEvent::StreamEnd&) { streamEnded(); },
        [this](const SocketEvent::ToolStart& start) {
            m_stream.receive({ToolFrame::Kind::start, start.tool, std::nullopt});
        },
        [this](const SocketEvent::ArtifactChunk& chunk) {
            m_stream.receive({ToolFrame::Kind::args, chunk.tool, chunk.args});
        },
        [this](const SocketEvent::ToolEnd& end) {
            m_stream.receive({ToolFrame::Kind::end, end.tool, end.content});
        },
        [this](const SocketEvent::Disconnected&) { m_stream.disconnected(); }, [](const SocketEvent::Message&) {});
}

void ChatViewModel::connected() {
    m_stream.connected();
    for (const qint64 chatId : m_stream.chatsToCompare())
        m_loader.load(chatId);
    if (!m_areMessagesLoaded)
        m_loader.load(activeChatId());
}

void ChatViewModel::created(const Chat& chat) {
    m_directory.add(chat);
    const auto record = m_generationState.getPending();
    if (record && record->chatId < 0) {
        m_recordedChatId = chat.id;
        m_generationState.markStarted(chat.id, record->lastMessageCount, record->type, chat.name);
    }
    switch (m_stream.created(chat.id)) {
    case AnswerStream::Owner::open: setActiveChat(chat); break;
    case AnswerStream::Owner::parked:
        qCInfo(lcChat) << "💾 [ChatViewModel] Chat created while user is in another chat, saved to background:"
                       << chat.id;
        // It may have been opened from the list before this was told.
        if (activeChatId() == chat.id && !m_isGenerating)
            m_stream.unpark(chat.id);
        break;
    case AnswerStream::Owner::none: break;
    }
    if (chat.projectId)
        emit m_dependencies.notifications.projectChatCreated(chat);
}

void ChatViewModel::failed(const SocketEvent::Error& error) {
    const auto ending = m_stream.fail(error.chatId);
    const qint64 chatId = ending ? ending->chatId : error.chatId.value_or(-1);
    const bool isOpen = ending ? ending->wasOpen : chatId == activeChatId();
    const Chat* chat = isOpen ? nullptr : m_directory.find(chatId);
    // The banner stands in the open conversation: of another one it says so.
    showError(chat ? u"«%1»: %2"_s.arg(chat->name, error.message) : error.message);
    m_canRetryError = ending && ending->wasOpen && !m_isGenerating;
}

void ChatViewModel::streamEnded() {
    const auto ending = m_stream.end();
    if (!ending) {
        // An answer that nobody waited for any more: the open chat may be its own.
        if (m_activeChat)
            m_loader.load(m_activeChat->id);
        return;
    }
    emit m_dependencies.notifications.didCompleteAIResponse();
    if (ending->createdChat) // it has got its title by now
        m_scope.start([this] { return m_directory.load(); });
}

void ChatViewModel::answerStateChanged() {
    m_isGenerating = m_stream.isGenerating();
    m_artifacts.setAnswerRunning(m_isGenerating);
    toolStateChanged();
    if (m_recordedChatId && !m_stream.isRunning(*m_recordedChatId))
        endGenerationRecord();
    if (!m_isGenerating) {
        m_hintTimer.cancel();
        m_generationHint = QString();
    } else if (!m_hintTimer.isActive() && m_generationHint.value().isEmpty()) {
        m_hintTimer =
            m_dependencies.scheduler.after(hintDelay, [this] { m_generationHint = QStringView(slowHint).toString(); });
    }
}

// Banners and hints

void ChatViewModel::dismissError() {
    m_bannerTimer.cancel();
    m_generationError = QString();
    m_canRetryError = false;
}

void ChatViewModel::showError(const QString& message) {
    m_generationError = message;
    m_canRetryError = false;
    m_bannerTimer = m_dependencies.scheduler.after(bannerTime, [this] { dismissError(); });
}

}
