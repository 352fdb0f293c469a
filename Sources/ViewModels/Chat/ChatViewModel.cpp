#include "Chat/ChatViewModel.h"

#include "Chat/ChatService.h"
#include "Clock.h"
#include "Log.h"
#include "Match.h"
#include "NotificationCenter.h"

#include <QPointer>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcChat, "korvi.chat", QtInfoMsg)

namespace {

constexpr auto defaultModel = u"aiplus";
constexpr auto slowHint = u"Это может занять время...";

bool isAnswer(const ChatMessage& message) {
    return message.role == ChatMessage::Role::ai || message.role == ChatMessage::Role::assistant;
}

void removePlaceholders(ChatMessage& message) {
    if (!message.content)
        return;
    std::erase_if(*message.content, [](const MessageContent& block) {
        return block.as<MessageContent::Generating>() || block.as<MessageContent::SearchInProgress>();
    });
}

}

ChatViewModel::ChatViewModel(Dependencies dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_selectedModel(QStringView(defaultModel).toString()) {
    ChatService& service = m_dependencies.chatService;
    service.onEvent = [self = QPointer(this)](const SocketEvent& event) {
        if (self)
            self->handleSocketEvent(event);
    };
    service.onConnectionStatusChanged = [self = QPointer(this)](const QString& status) {
        if (self)
            self->m_connectionStatus = status;
    };
}

ChatViewModel::~ChatViewModel() = default;

Task<void> ChatViewModel::loadData() {
    co_await loadChats();
    connectToService();
}

Task<void> ChatViewModel::loadChats() {
    try {
        std::vector<Chat> chats = co_await m_dependencies.chatService.getChats();
        m_chats.setChats(std::move(chats));
    } catch (const std::exception& error) {
        qCWarning(lcChat).noquote() << "❌ [ChatViewModel] Error loading chats:" << error.what();
    }
}

void ChatViewModel::connectToService() {
    m_dependencies.chatService.connect();
}

void ChatViewModel::reconnect() {
    m_dependencies.chatService.disconnect();
    connectToService();
}

bool ChatViewModel::isConnected() const {
    return m_connectionStatus.value() == "Connected"_L1;
}

void ChatViewModel::setCurrentInput(const QString& text) {
    if (m_currentInput == text)
        return;
    m_currentInput = text;
    emit currentInputChanged();
}

bool ChatViewModel::canSend() const {
    return !m_currentInput.trimmed().isEmpty();
}

void ChatViewModel::createChat() {
    openConversation(std::nullopt, {});
    setCurrentInput({});
    emit inputFocusRequested();
}

void ChatViewModel::selectChat(qint64 chatId) {
    const Chat* chat = m_chats.find(chatId);
    if (!chat || (m_activeChat && m_activeChat->id == chatId))
        return;
    openConversation(*chat, {});
    m_scope.start([this, chatId] { return loadMessages(chatId); });
}

void ChatViewModel::openConversation(std::optional<Chat> chat, std::vector<ChatMessage> messages) {
    park();
    m_activeChat = std::move(chat);
    if (!m_activeChat || !unpark(m_activeChat->id))
        m_messages.setMessages(std::move(messages));
    refreshGenerating();
    emit activeChatChanged();
}

// The answer goes on at the service; its chat's messages wait here until they are shown again.
void ChatViewModel::park() {
    if (Generation* generation = m_generations.open()) {
        flushPieces();
        generation->parked = m_messages.messages();
        generation->isOpen = false;
    }
}

bool ChatViewModel::unpark(qint64 chatId) {
    Generation* generation = m_generations.ofChat(chatId);
    if (!generation)
        return false;
    flushPieces();
    m_messages.setMessages(std::exchange(generation->parked, {}));
    generation->isOpen = true;
    return true;
}

Task<void> ChatViewModel::loadMessages(qint64 chatId) {
    try {
        std::vector<ChatMessage> messages = co_await m_dependencies.chatService.getMessages(chatId);
        if (activeChatId() != chatId)
            co_return;
        if (m_generations.open()) {
            qCInfo(lcChat) << "⏳ [ChatViewModel] Skipping message refresh — streaming in progress";
            co_return;
        }
        m_messages.setMessages(std::move(messages));
    } catch (const std::exception& error) {
        qCWarning(lcChat).noquote() << "❌ [ChatViewModel] Error loading messages:" << error.what();
    }
}

void ChatViewModel::sendMessage() {
    if (!canSend() || m_isGenerating)
        return;
    send(m_currentInput);
}

void ChatViewModel::send(QString text) {
    const QString createdAt = m_dependencies.clock.now().toString(Qt::ISODate);
    const qint64 chatId = activeChatId();
    // The ids are local: the service's own come with the next reload.
    ChatMessage question{
        .id = m_dependencies.random.integer(1000, 9999),
        .createdAt = createdAt,
        .chatId = chatId,
        .role = ChatMessage::Role::user,
        .content = std::vector<MessageContent>{{MessageContent::Text{text}}},
        .providerId = std::nullopt,
        .usageTokens = 0,
    };
    ChatMessage answer{
        .id = m_dependencies.random.integer(1000, 9999),
        .createdAt = createdAt,
        .chatId = chatId,
        .role = ChatMessage::Role::ai,
        .content = std::vector<MessageContent>{{MessageContent::Text{}}},
        .providerId = std::nullopt,
        .usageTokens = 0,
    };
    m_generations.begin(chatId);
    m_messages.append({std::move(question), std::move(answer)});
    setCurrentInput({});
    dismissError();
    refreshGenerating();
    restartHintTimer();

    if (m_activeChat)
        m_dependencies.chatService.sendMessage(chatId, text);
    else
        m_dependencies.chatService.createChat(m_selectedModel, text);
}

void ChatViewModel::stopGeneration() {
    Generation* generation = m_generations.open();
    if (!m_isGenerating || !generation) {
        qCInfo(lcChat) << "🛑 [ChatViewModel] stopGeneration: not generating or no active chat";
        return;
    }
    flushPieces();
    if (m_activeChat) {
        m_dependencies.chatService.stopGeneration(m_activeChat->id);
        generation->state = Generation::State::stopped;
    } else {
        generation->state = Generation::State::stopRequested;
    }
    refreshGenerating();
    for (int row = m_messages.count() - 1; row >= 0; --row) {
        ChatMessage message = m_messages.messages()[static_cast<std::size_t>(row)];
        if (!isAnswer(message))
            continue;
        removePlaceholders(message);
        m_messages.replace(row, std::move(message));
        break;
    }
}

void ChatViewModel::retryLastMessage() {
    if (m_isGenerating)
        return;
    const auto& messages = m_messages.messages();
    const auto question = std::find_if(messages.rbegin(), messages.rend(),
        [](const ChatMessage& message) { return message.role == ChatMessage::Role::user; });
    const MessageContent::Text* text = nullptr;
    if (question != messages.rend() && question->content) {
        for (const MessageContent& block : *question->content) {
            text = block.as<MessageContent::Text>();
            if (text)
                break;
        }
    }
    if (!text) {
        qCWarning(lcChat) << "❌ [ChatViewModel] retryLastMessage: no user message found";
        return;
    }
    const QString again = text->text;
    for (int row = m_messages.count() - 1; row >= 0; --row) {
        if (isAnswer(m_messages.messages()[static_cast<std::size_t>(row)])) {
            m_messages.remove(row);
            break;
        }
    }
    send(again);
}

void ChatViewModel::dismissError() {
    m_bannerTimer.cancel();
    m_generationError = QString();
}

void ChatViewModel::reset() {
    m_scope.cancel();
    m_generations.clear();
    m_flushTimer.cancel();
    m_reconnectTimer.cancel();
    m_activeChat.reset();
    m_messages.setMessages({});
    m_chats.setChats({});
    setCurrentInput({});
    dismissError();
    refreshGenerating();
    emit activeChatChanged();
}

void ChatViewModel::handleSocketEvent(const SocketEvent& event) {
    // Any of these proves the stream alive.
    const bool isOfStream = !std::holds_alternative<SocketEvent::Connected>(event.value) &&
        !std::holds_alternative<SocketEvent::Disconnected>(event.value) &&
        !std::holds_alternative<SocketEvent::Error>(event.value) &&
        !std::holds_alternative<SocketEvent::Message>(event.value);
    if (isOfStream)
        m_reconnectTimer.cancel();
    match(
        event.value,
        [this](const SocketEvent::TextChunk& chunk) { receivePiece(chunk.content, AnswerFold::Kind::text); },
        [this](const SocketEvent::ThinkingChunk& chunk) { receivePiece(chunk.content, AnswerFold::Kind::thinking); },
        [this](const SocketEvent::Creation& creation) { created(creation.chat); },
        [this](const SocketEvent::Connected&) { connected(); },
        [this](const SocketEvent::Error& error) { failed(error); },
        [this](const SocketEvent::StreamEnd&) { streamEnded(); }, [](const SocketEvent::ToolStart&) {},
        [](const SocketEvent::ToolEnd&) {}, [](const SocketEvent::ArtifactChunk&) {},
        [](const SocketEvent::Disconnected&) {}, [](const SocketEvent::Message&) {});
}

void ChatViewModel::created(const Chat& chat) {
    m_chats.upsert(chat);
    // A replay tells of the chat again: then its answer has it already.
    Generation* generation = m_generations.ofChat(chat.id) ? nullptr : m_generations.withoutChat();
    if (!generation)
        return;
    generation->chatId = chat.id;
    if (generation->isOpen) {
        m_activeChat = chat;
        emit activeChatChanged();
    } else {
        qCInfo(lcChat) << "💾 [ChatViewModel] Chat created while user is in another chat, saved to background:"
                       << chat.id;
    }
    if (generation->state == Generation::State::stopRequested) {
        m_dependencies.chatService.stopGeneration(chat.id);
        generation->state = Generation::State::stopped;
    }
}

void ChatViewModel::connected() {
    Generation* generation = m_generations.current();
    if (!generation)
        return;
    flushPieces();
    qCInfo(lcChat) << "🔌 [ChatViewModel] Reconnected during generation — enabling replay dedup";
    generation->fold.beginReplay();
    m_reconnectTimer = m_dependencies.scheduler.after(reconnectTimeout, [this] {
        m_reconnectTimer.cancel();
        if (m_generations.isEmpty())
            return;
        qCWarning(lcChat) << "🔌 [ChatViewModel] Reconnect timeout (120s) — generation likely ended, resetting state";
        m_generations.clear();
        refreshGenerating();
    });
}

void ChatViewModel::failed(const SocketEvent::Error& error) {
    flushPieces();
    m_reconnectTimer.cancel();
    Generation* generation = error.chatId ? m_generations.ofChat(*error.chatId) : nullptr;
    if (!generation)
        generation = m_generations.current();
    const bool concernsOpenChat = !generation || generation->isOpen;
    finish(generation);
    if (concernsOpenChat)
        showError(error.message);
}

void ChatViewModel::streamEnded() {
    flushPieces();
    Generation* generation = m_generations.current();
    if (!generation)
        return;
    finish(generation);
    emit m_dependencies.notifications.didCompleteAIResponse();
}

void ChatViewModel::finish(const Generation* generation) {
    m_generations.remove(generation);
    refreshGenerating();
}

void ChatViewModel::receivePiece(const QString& piece, AnswerFold::Kind kind) {
    Generation* generation = m_generations.current();
    if (!generation || generation->state != Generation::State::running) {
        qCInfo(lcChat) << "⚠️ [ChatViewModel] Dropped a piece: no answer is under way";
        return;
    }
    (kind == AnswerFold::Kind::text ? generation->textPieces : generation->thinkingPieces).append(piece);
    if (m_flushTimer.isActive())
        return;
    // The first piece shows without delay, what follows in steps that a list can redraw.
    flushPieces();
    m_flushTimer = m_dependencies.scheduler.every(streamFlushInterval, [this] {
        const Generation* running = m_generations.current();
        const bool isQuiet = !running || (running->textPieces.isEmpty() && running->thinkingPieces.isEmpty());
        flushPieces();
        // Without news there is nothing to wake up for; the next piece starts the timer again.
        if (isQuiet)
            m_flushTimer.cancel();
    });
}

void ChatViewModel::flushPieces() {
    Generation* generation = m_generations.current();
    if (!generation || (generation->textPieces.isEmpty() && generation->thinkingPieces.isEmpty()))
        return;
    if (!generation->isOpen) {
        if (!generation->parked.empty())
            foldInto(*generation, generation->parked.back());
        return;
    }
    const int last = m_messages.count() - 1;
    if (last < 0)
        return;
    m_messages.update(last, [&](ChatMessage& answer) { return foldInto(*generation, answer); });
}

bool ChatViewModel::foldInto(Generation& generation, ChatMessage& answer) {
    const QStringList thinking = std::exchange(generation.thinkingPieces, {});
    const QStringList text = std::exchange(generation.textPieces, {});
    if (answer.role != ChatMessage::Role::ai) {
        qCWarning(lcChat) << "⚠️ [ChatViewModel] updateLastMessage: last message is not AI, it's"
                          << rawValue(answer.role);
        return false;
    }
    if (!answer.content)
        answer.content.emplace();
    const AnswerFold::Outcome thought = generation.fold.fold(*answer.content, thinking, AnswerFold::Kind::thinking);
    const AnswerFold::Outcome told = generation.fold.fold(*answer.content, text, AnswerFold::Kind::text);
    if (generation.isOpen && (thought.follow || told.follow)) {
        ++m_contentUpdateTrigger;
        emit contentUpdateTriggerChanged();
        emit contentScrolled();
    }
    return thought.changed || told.changed;
}

void ChatViewModel::refreshGenerating() {
    const Generation* generation = m_generations.open();
    m_isGenerating = generation && generation->state == Generation::State::running;
    m_messages.setStreaming(m_isGenerating);
    if (m_generations.isEmpty()) {
        m_flushTimer.cancel();
        m_reconnectTimer.cancel();
    }
    if (!m_isGenerating) {
        m_hintTimer.cancel();
        m_generationHint = QString();
    }
}

void ChatViewModel::showError(const QString& message) {
    m_generationError = message;
    m_bannerTimer = m_dependencies.scheduler.after(bannerTime, [this] { dismissError(); });
}

void ChatViewModel::restartHintTimer() {
    m_hintTimer = m_dependencies.scheduler.after(hintDelay, [this] {
        if (m_isGenerating)
            m_generationHint = QStringView(slowHint).toString();
    });
}

}
