#include "Chat/ChatViewModel.h"

#include "Backend/UsersService.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/MessageComposition.h"
#include "Clock.h"
#include "Log.h"
#include "NotificationCenter.h"

#include <QPointer>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcChat, "korvi.chat", QtInfoMsg)

namespace {

constexpr auto aiPlus = "aiplus"_L1; // the model that takes video and audio
constexpr auto slowHint = u"Это может занять время...";
const auto ownerKey = u"conversationsOwner"_s; // whose lists are cached

}

ChatViewModel::ChatViewModel(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_connection(dependencies.chatService)
    , m_directory({dependencies.chatService, dependencies.cache, dependencies.notifications})
    , m_stream({dependencies.chatService, dependencies.cache, dependencies.defaults, dependencies.scheduler,
                   dependencies.clock, dependencies.random},
          m_messages)
    , m_loader({dependencies.chatService, dependencies.cache, dependencies.scheduler}, m_stream, m_messages)
    , m_recovery({dependencies.chatService, dependencies.defaults, dependencies.clock, dependencies.scheduler},
          m_stream, [this](qint64 chatId) { return nameOf(chatId); })
    , m_router({m_stream, m_directory, m_loader, dependencies.notifications})
    , m_modelSelection(dependencies.defaults)
    , m_input(dependencies.defaults, dependencies.scheduler)
    , m_artifacts(m_messages)
    , m_uploads(dependencies.attachments, m_stream, dependencies.scheduler) {
    ChatService& service = m_dependencies.chatService;
    service.onEvent = [self = QPointer(this)](const SocketEvent& event) {
        if (self)
            self->m_router.handle(event);
    };
    connect(&service, &ChatService::disconnected, &m_stream, &AnswerStream::disconnected);
    connect(&m_connection, &ConnectionState::statusChanged, this, &ChatViewModel::connectionStatusChanged);
    connect(&m_dependencies.notifications, &NotificationCenter::organizationDidChange, this,
        &ChatViewModel::organizationChanged);
    connect(&m_router, &SocketEventRouter::openChatCreated, this, [this](const Chat& chat) {
        setActiveChat(chat);
        m_loader.created(chat.id);
    });
    connect(&m_router, &SocketEventRouter::failed, this, &ChatViewModel::showError);
    connect(&m_router, &SocketEventRouter::chatsOutdated, this,
        [this] { m_scope.start([this] { return m_directory.load(); }); });
    connect(&m_stream, &AnswerStream::changed, this, &ChatViewModel::answerStateChanged);
    connect(&m_stream, &AnswerStream::generatingChatsChanged, m_directory.model(), &ChatListModel::setGenerating);
    connect(&m_stream, &AnswerStream::questionReturned, this, &ChatViewModel::takeBackQuestion);
    connect(&m_stream, &AnswerStream::toolsChanged, this, &ChatViewModel::toolStateChanged);
    connect(&m_stream, &AnswerStream::longTaskBegan, this,
        [this](qint64 chatId, const QString& type) { emit longTaskBegan(chatId, type, nameOf(chatId)); });
    connect(&m_stream, &AnswerStream::answerReady, this,
        [this](qint64 chatId, const QDateTime& askedAt) { emit answerReady(chatId, nameOf(chatId), askedAt); });
    connect(&m_stream, &AnswerStream::filesReturned, this, [this](quint64 serial) {
        if (!m_uploads.giveBack(serial))
            showError(u"Сообщение не дошло до сервиса, файлы к нему прикрепите ещё раз."_s);
    });
    connect(attachments()->pending(), &AttachmentListModel::countChanged, this, [this] {
        emit hasAttachmentsChanged();
        emit canSendChanged();
    });
    connect(attachments(), &ComposerAttachments::imagePasted, this, [this](const QUrl& image) {
        setEditImage(image.toString(), currentInput()); // what is typed already stays
    });
    connect(&m_stream, &AnswerStream::followed, this, [this] {
        ++m_contentUpdateTrigger;
        emit contentUpdateTriggerChanged();
        emit contentScrolled();
    });
    connect(&m_loader, &ConversationLoader::areMessagesLoadedChanged, this, &ChatViewModel::areMessagesLoadedChanged);
    connect(&m_recovery, &ChatRecovery::isRecoveringChanged, this, &ChatViewModel::isRecoveringChanged);
    connect(&m_recovery, &ChatRecovery::completedInOtherChatChanged, this, &ChatViewModel::completedInOtherChatChanged);
    connect(&m_recovery, &ChatRecovery::generationEnded, this, &ChatViewModel::generationEnded);
    connect(&m_recovery, &ChatRecovery::storedAnswerWanted, &m_loader, &ConversationLoader::loadAnswer);
    connect(&m_input, &ComposerInput::textChanged, this, [this] {
        emit currentInputChanged();
        emit canSendChanged();
    });
    connect(&m_input, &ComposerInput::editImageChanged, this, [this] {
        emit pendingEditImageUrlChanged();
        emit hasAttachmentsChanged();
        emit canSendChanged();
    });
    connect(&m_directory, &ChatDirectory::isOutdatedChanged, this, &ChatViewModel::areChatsOutdatedChanged);
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
        m_input.forgetStored();
        defaults.setString(ownerKey, userId);
    }
    m_directory.loadCached();
    // Before the answers: a question that returns stands in front of what was being written.
    m_input.restore();
    m_stream.restore();
    m_recovery.restore();
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

void ChatViewModel::organizationChanged() {
    m_directory.clear();
    m_loader.clear();
    m_uploads.clear();
    m_stream.dropAll();
    closeConversation();
    m_input.clear();
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
    m_recovery.reset();
    m_loader.clear();
    m_uploads.clear();
    attachments()->reset();
    m_stream.reset();
    m_user.reset();
    m_directory.clear();
    m_activeProjectId.reset();
    m_activeProjectName.reset();
    m_input.reset();
    closeConversation();
    dismissError();
}

// The composer

bool ChatViewModel::canSend() const {
    return hasAttachments() || !currentInput().trimmed().isEmpty();
}

bool ChatViewModel::hasAttachments() const {
    return m_input.editImageUrl() || m_dependencies.attachments.pending()->count() > 0;
}

void ChatViewModel::setEditImage(const QString& url, const QString& prompt) {
    if (const QUrl image(url); image.isLocalFile() && !attachments()->isPasted(image)) {
        qCWarning(lcChat) << "❌ [ChatViewModel] A local file is not an image to be edited";
        return;
    }
    replaceEditImage(url);
    m_input.setText(prompt);
    emit inputFocusRequested();
}

void ChatViewModel::replaceEditImage(const std::optional<QString>& url) {
    const auto before = m_input.editImageUrl();
    m_input.setEditImageUrl(url);
    if (before && before != url)
        attachments()->discardPasted(QUrl(*before));
}

void ChatViewModel::takeBackQuestion(const QString& text) {
    if (text.isEmpty())
        return showError(u"Вложения не дошли до сервиса."_s);
    m_input.putInFront(text);
    showError(u"Сообщение не дошло до сервиса. Его текст снова в поле ввода."_s);
}

QString ChatViewModel::lastQuestion() const {
    return MessageComposition::lastQuestion(m_messages.messages()).value_or(QString());
}

// Which conversation is open

void ChatViewModel::createChat() {
    if (m_activeChat)
        m_input.leaveIn(m_activeChat->id);
    openConversation(std::nullopt);
    m_input.setText({});
    replaceEditImage(std::nullopt);
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
        m_input.takeUpFrom(chatId);
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
    m_recovery.setCompletedInOtherChat(std::nullopt);
}

void ChatViewModel::openConversation(std::optional<Chat> chat) {
    m_stream.park();
    dismissError();
    if (!chat)
        return closeConversation();
    m_loader.open(chat->id);
    if (!m_stream.unpark(chat->id))
        m_messages.reset(m_dependencies.cache.getCachedMessages(chat->id).value_or(std::vector<ChatMessage>()));
    setActiveChat(std::move(chat));
}

void ChatViewModel::closeConversation() {
    m_messages.reset({});
    setActiveChat(std::nullopt);
    m_loader.open(-1);
}

void ChatViewModel::setActiveChat(std::optional<Chat> chat) {
    if (m_activeChat == chat)
        return;
    m_activeChat = std::move(chat);
    emit activeChatChanged();
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
    sendMessage(currentInput());
}

void ChatViewModel::sendMessage(QString text) {
    const bool isEmpty = text.trimmed().isEmpty() && !hasAttachments();
    if (isEmpty || m_isGenerating)
        return;
    const auto editImageUrl = m_input.editImageUrl();
    m_input.setText({});
    m_input.setEditImageUrl(std::nullopt);
    send(text, editImageUrl, attachments()->takePending());
    m_input.save(); // only now that the journal has the question: a kill in between would take it
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
    m_recovery.noteQuestion(chatId, m_messages.count(), MessageComposition::detectGenerationType(text, hasImage));
    const bool isAtService = editImageUrl && !edited.isLocalFile();
    const quint64 serial = m_stream.begin({.chatId = chatId,
                                              .model = selectedModel(),
                                              .text = text,
                                              .imageUrls = isAtService ? QStringList(*editImageUrl) : QStringList(),
                                              .files = {},
                                              .projectId = m_activeProjectId},
        files.empty() ? AnswerStream::Files::none : AnswerStream::Files::onTheirWay);
    m_recovery.follow(serial);
    if (!files.empty())
        m_uploads.start(serial, std::move(files));
    if (!m_loader.areMessagesLoaded())
        m_stream.noteMissingHistory(chatId);
}

void ChatViewModel::stopGeneration() {
    if (!m_stream.stop()) {
        qCInfo(lcChat) << "🛑 [ChatViewModel] stopGeneration: not generating or no active chat";
        return;
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
    if (const auto row = MessageComposition::rowOfLastAnswer(m_messages.messages()))
        m_messages.remove(*row);
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

void ChatViewModel::answerStateChanged() {
    m_isGenerating = m_stream.isGenerating();
    m_artifacts.setAnswerRunning(m_isGenerating);
    toolStateChanged();
    m_recovery.streamChanged();
    if (!m_isGenerating) {
        m_hintTimer.cancel();
        m_generationHint = QString();
    } else if (!m_hintTimer.isActive() && m_generationHint.value().isEmpty()) {
        m_hintTimer =
            m_dependencies.scheduler.after(hintDelay, [this] { m_generationHint = QStringView(slowHint).toString(); });
    }
}

void ChatViewModel::toolStateChanged() {
    const ToolWork* work = m_stream.openTools();
    const ToolState now = work ? static_cast<const ToolState&>(*work) : ToolState();
    if (now == m_tools)
        return;
    m_tools = now;
    emit toolsChanged();
}

QString ChatViewModel::nameOf(qint64 chatId) const {
    const Chat* chat = m_directory.find(chatId);
    return chat ? chat->name : QString();
}

// Banners and hints

void ChatViewModel::dismissError() {
    m_bannerTimer.cancel();
    m_generationError = QString();
    m_canRetryError = false;
}

void ChatViewModel::showError(const QString& message, bool canRetry) {
    m_generationError = message;
    m_canRetryError = canRetry;
    m_bannerTimer = m_dependencies.scheduler.after(bannerTime, [this] { dismissError(); });
}

}
