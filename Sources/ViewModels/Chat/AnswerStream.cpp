#include "Chat/AnswerStream.h"

#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/MessageComposition.h"
#include "Chat/MessageListModel.h"
#include "Clock.h"

#include <QLoggingCategory>

namespace Korvi {

Q_LOGGING_CATEGORY(lcStream, "korvi.chat.stream", QtInfoMsg)

AnswerStream::AnswerStream(Dependencies dependencies, MessageListModel& shown, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_shown(shown)
    , m_journal(dependencies.defaults, dependencies.cache) {}

void AnswerStream::begin(Question question) {
    Generation generation;
    generation.chatId = question.chatId;
    generation.question = question;
    generation.lengthWithAnswer = static_cast<std::size_t>(m_shown.count());
    m_generations.begin(std::move(generation));
    settled(); // written down before it goes out
    submit(question);
}

void AnswerStream::submit(const Question& question) {
    ChatService& service = m_dependencies.chatService;
    if (question.chatId < 0)
        service.createChat(question.model, question.text, question.imageUrls, {}, question.projectId);
    else
        service.sendMessage(question.chatId, question.text, question.imageUrls);
}

bool AnswerStream::stop() {
    Generation* generation = m_generations.open();
    if (!generation || generation->state != Generation::State::running)
        return false;
    flush();
    generation->textPieces.clear();
    generation->thinkingPieces.clear();
    if (generation->chatId > 0) {
        m_dependencies.chatService.stopGeneration(generation->chatId);
        generation->state = Generation::State::stopped;
    } else {
        generation->state = Generation::State::stopRequested;
    }
    settled();
    return true;
}

void AnswerStream::park() {
    flush();
    Generation* newest = m_generations.open();
    if (newest && newest->state != Generation::State::stopped)
        newest->parked = m_shown.messages();
    for (Generation& generation : m_generations.all())
        generation.isOpen = false;
    settled();
}

bool AnswerStream::unpark(qint64 chatId) {
    Generation* generation = m_generations.runningOf(chatId);
    if (!generation)
        return false;
    flush();
    m_shown.reset(std::exchange(generation->parked, {}));
    generation->isOpen = true;
    settled();
    return true;
}

void AnswerStream::forget(qint64 chatId) {
    for (Generation& generation : m_generations.all()) {
        if (generation.chatId != chatId)
            continue;
        generation.state = Generation::State::stopped;
        generation.isOpen = false;
        generation.parked.clear();
    }
    settled();
}

void AnswerStream::dropAll() {
    for (Generation& generation : m_generations.all()) {
        if (generation.state == Generation::State::running)
            generation.state = generation.chatId > 0 ? Generation::State::stopped : Generation::State::stopRequested;
        generation.isOpen = false;
        generation.parked.clear();
    }
    settled();
}

void AnswerStream::restore() {
    for (Generation& generation : m_journal.restore())
        m_generations.begin(std::move(generation));
    settled();
}

void AnswerStream::reset() {
    m_scope.cancel();
    m_generations.clear();
    m_answeredNewChats.clear();
    m_isGenerating = false;
    m_flushTimer.cancel();
    m_reconnectTimer.cancel();
    m_silenceTimer.cancel();
    m_shown.setStreaming(false);
    emit generatingChatsChanged({});
    emit changed();
}

AnswerStream::Owner AnswerStream::created(qint64 chatId) {
    // A replay tells of the chat again: then its answer has it already, or has had its end.
    const bool isRepeated = m_generations.firstOf(chatId) || m_answeredNewChats.contains(chatId);
    Generation* generation = isRepeated ? nullptr : m_generations.withoutChat();
    if (!generation)
        return Owner::none;
    generation->chatId = chatId;
    const bool isOpen = generation->isOpen;
    if (generation->state == Generation::State::stopRequested) {
        m_dependencies.chatService.stopGeneration(chatId);
        generation->state = Generation::State::stopped;
    }
    settled();
    return isOpen ? Owner::open : Owner::parked;
}

void AnswerStream::receive(const QString& piece, AnswerFold::Kind kind) {
    Generation* generation = m_generations.current();
    if (!generation || generation->state != Generation::State::running) {
        qCInfo(lcStream) << "⚠️ [ChatViewModel] Dropped a piece: no answer is under way";
        return;
    }
    (kind == AnswerFold::Kind::text ? generation->textPieces : generation->thinkingPieces).append(piece);
    if (m_flushTimer.isActive())
        return;
    // The first piece shows without delay, what follows in steps that a list can redraw.
    flush();
    m_flushTimer = m_dependencies.scheduler.every(flushInterval, [this] {
        const Generation* running = m_generations.current();
        const bool isQuiet = !running || (running->textPieces.isEmpty() && running->thinkingPieces.isEmpty());
        flush();
        // Without news there is nothing to wake up for; the next piece starts the timer again.
        if (isQuiet)
            m_flushTimer.cancel();
    });
}

void AnswerStream::flush() {
    Generation* generation = m_generations.current();
    if (!generation || (generation->textPieces.isEmpty() && generation->thinkingPieces.isEmpty()))
        return;
    if (!generation->isOpen) {
        if (!generation->parked.empty())
            foldInto(*generation, generation->parked.back());
        return;
    }
    const int last = m_shown.count() - 1;
    if (last < 0) {
        qCWarning(lcStream) << "⚠️ [ChatViewModel] updateLastMessage: no messages";
        return;
    }
    m_shown.update(last, [&](ChatMessage& answer) { return foldInto(*generation, answer); });
}

bool AnswerStream::foldInto(Generation& generation, ChatMessage& answer) {
    const QStringList thinking = std::exchange(generation.thinkingPieces, {});
    const QStringList text = std::exchange(generation.textPieces, {});
    if (answer.role != ChatMessage::Role::ai) {
        qCWarning(lcStream) << "⚠️ [ChatViewModel] updateLastMessage: last message is not AI, it's"
                            << rawValue(answer.role);
        return false;
    }
    if (!answer.content)
        answer.content.emplace();
    const AnswerFold::Outcome thought = generation.fold.fold(*answer.content, thinking, AnswerFold::Kind::thinking);
    const AnswerFold::Outcome told = generation.fold.fold(*answer.content, text, AnswerFold::Kind::text);
    if (generation.isOpen && (thought.follow || told.follow))
        emit followed();
    return thought.changed || told.changed;
}

void AnswerStream::heard() {
    m_heardSinceConnect = true;
    m_reconnectTimer.cancel();
    m_silenceTimer.cancel();
}

void AnswerStream::disconnected() {
    if (!m_lostAt)
        m_lostAt = m_dependencies.clock.now();
}

void AnswerStream::connected() {
    m_wasAwayTooLong = m_lostAt && m_lostAt->secsTo(m_dependencies.clock.now()) >= replayLife.count();
    m_lostAt.reset();
    Generation* generation = m_generations.current();
    if (!generation)
        return;
    flush();
    qCInfo(lcStream) << "🔌 [ChatViewModel] Reconnected during generation — enabling replay dedup";
    generation->fold.beginReplay();
    m_heardSinceConnect = false;
    // The word to stop may have been lost with the line.
    for (const Generation& each : m_generations.all()) {
        if (each.state == Generation::State::stopped && !m_generations.runningOf(each.chatId))
            m_dependencies.chatService.stopGeneration(each.chatId);
    }
    askLater(silenceTimeout, false);
    m_reconnectTimer = m_dependencies.scheduler.after(reconnectTimeout, [this] {
        m_reconnectTimer.cancel();
        if (m_generations.isEmpty())
            return;
        qCWarning(lcStream) << "🔌 [ChatViewModel] Reconnect timeout (120s) — generation likely ended, resetting state";
        std::vector<qint64> chats;
        while (Generation* left = m_generations.current())
            chats.push_back(finish(left).chatId);
        for (const qint64 chatId : chats)
            emit waitingEnded(chatId);
    });
}

void AnswerStream::askLater(std::chrono::seconds delay, bool mayResend) {
    m_silenceTimer = m_dependencies.scheduler.after(
        delay, [this, mayResend] { m_scope.start([this, mayResend] { return askAboutSilence(mayResend); }); });
}

// Answers that ended while the line was down for long are not repeated, and a question may have been lost with the
// line: the messages of the chat tell. An answer that is still being worked on stays.
Task<void> AnswerStream::askAboutSilence(bool mayResend) {
    while (Generation* generation = m_generations.current()) {
        if (m_heardSinceConnect)
            co_return;
        const quint64 serial = generation->serial;
        const qint64 chatId = generation->chatId;
        if (generation->state != Generation::State::running) {
            finish(generation);
            continue;
        }
        std::vector<ChatMessage> messages;
        if (chatId > 0) {
            try {
                messages = co_await m_dependencies.chatService.getMessages(chatId);
            } catch (const TaskCancelled&) {
                throw;
            } catch (const std::exception& error) {
                qCWarning(lcStream).noquote() << "❌ [ChatViewModel] Error loading messages:" << error.what();
                co_return askLater(resendTimeout, false);
            }
            generation = m_generations.current();
            if (!generation || generation->serial != serial || m_heardSinceConnect)
                co_return;
            if (isComplete(*generation, messages)) {
                adopt(*generation, messages);
                finish(generation);
                continue;
            }
            if (knows(messages, *generation))
                co_return;
        }
        if (!mayResend)
            co_return askLater(resendTimeout, true);
        const bool mayHaveBeenAnswered = chatId < 0 && (generation->isRestored || m_wasAwayTooLong);
        if (!mayHaveBeenAnswered) {
            qCInfo(lcStream) << "📤 [ChatViewModel] A question was lost with the line, sending it again";
            co_return submit(generation->question);
        }
        emit questionReturned(generation->question.text);
        if (generation->isOpen)
            dropTurn();
        generation->parked.clear();
        generation->isOpen = false;
        finish(generation);
    }
}

const std::vector<ChatMessage>& AnswerStream::messagesOf(const Generation& generation) const {
    return generation.isOpen ? m_shown.messages() : generation.parked;
}

bool AnswerStream::isComplete(const Generation& generation, const std::vector<ChatMessage>& messages) const {
    return messages.size() >= generation.lengthWithAnswer && !messages.empty() &&
        MessageComposition::isAnswer(messages.back()) &&
        MessageComposition::lastQuestion(messages) == MessageComposition::lastQuestion(messagesOf(generation));
}

// Whether the service has the question: as often as it stands here.
bool AnswerStream::knows(const std::vector<ChatMessage>& messages, const Generation& generation) const {
    const auto count = [&](const std::vector<ChatMessage>& list) {
        return std::count_if(list.begin(), list.end(), [&](const ChatMessage& message) {
            return message.role == ChatMessage::Role::user && message.text() == generation.question.text;
        });
    };
    return count(messages) >= count(messagesOf(generation));
}

void AnswerStream::adopt(Generation& generation, const std::vector<ChatMessage>& messages) {
    if (generation.isOpen)
        m_shown.setMessages(messages);
    else
        generation.parked = messages;
}

// The question and the empty answer are no longer part of the open conversation.
void AnswerStream::dropTurn() {
    for (int i = 0; i < 2 && m_shown.count() > 0; ++i)
        m_shown.remove(m_shown.count() - 1);
}

std::optional<AnswerStream::Ending> AnswerStream::end() {
    flush();
    Generation* generation = m_generations.current();
    return generation ? std::optional(finish(generation)) : std::nullopt;
}

std::optional<AnswerStream::Ending> AnswerStream::fail(std::optional<qint64> chatId) {
    flush();
    heard();
    Generation* generation = chatId ? m_generations.firstOf(*chatId) : nullptr;
    if (!generation)
        generation = m_generations.current();
    return generation ? std::optional(finish(generation)) : std::nullopt;
}

AnswerStream::Ending AnswerStream::finish(Generation* generation) {
    const Ending ending{.chatId = generation->chatId,
        .wasOpen = generation->isOpen,
        .createdChat = generation->createsChat(),
        .wasRestored = generation->isRestored};
    const std::vector<ChatMessage>& messages = messagesOf(*generation);
    if (ending.chatId > 0) {
        if (!messages.empty())
            m_dependencies.cache.cacheMessages(messages, ending.chatId);
        if (ending.createdChat)
            m_answeredNewChats.insert(ending.chatId);
    }
    m_generations.remove(generation);
    settled();
    return ending;
}

void AnswerStream::settled() {
    const Generation* open = m_generations.open();
    m_isGenerating = open && open->state == Generation::State::running;
    m_shown.setStreaming(m_isGenerating);
    if (m_generations.isEmpty()) {
        m_flushTimer.cancel();
        m_reconnectTimer.cancel();
        m_silenceTimer.cancel();
    }
    m_journal.save(m_generations, m_shown.messages());
    QSet<qint64> generating;
    for (const Generation& generation : m_generations.all()) {
        if (generation.state == Generation::State::running && generation.chatId > 0)
            generating.insert(generation.chatId);
    }
    emit generatingChatsChanged(generating);
    emit changed();
}

}
