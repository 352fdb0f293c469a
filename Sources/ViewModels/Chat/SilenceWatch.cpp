#include "Chat/SilenceWatch.h"

#include "Chat/ChatService.h"
#include "Chat/GenerationQueue.h"
#include "Chat/MessageComposition.h"
#include "Clock.h"

#include <QLoggingCategory>

namespace Korvi {

Q_LOGGING_CATEGORY(lcSilence, "korvi.chat.silence", QtInfoMsg)

SilenceWatch::SilenceWatch(Dependencies dependencies, GenerationQueue& generations, Listener& listener)
    : m_dependencies(dependencies)
    , m_generations(generations)
    , m_listener(listener) {}

void SilenceWatch::connected(bool wasAwayTooLong) {
    m_wasAwayTooLong = wasAwayTooLong;
    listen();
    m_reconnectTimer = m_dependencies.scheduler.after(reconnectTimeout, [this] { giveUp(); });
}

void SilenceWatch::heardOf(const Generation& generation) {
    m_heardLately = true;
    if (&generation != m_generations.current())
        return;
    m_isSilent = false;
    m_silenceTimer.cancel();
}

void SilenceWatch::listen() {
    m_isSilent = true;
    askLater(silenceTimeout, false);
}

void SilenceWatch::rest() {
    m_reconnectTimer.cancel();
    m_silenceTimer.cancel();
    m_patienceTimer.cancel();
}

void SilenceWatch::cancel() {
    m_scope.cancel();
    rest();
}

void SilenceWatch::giveUp() {
    m_reconnectTimer.cancel();
    if (!m_generations.current())
        return;
    qCWarning(lcSilence) << "🔌 [ChatViewModel] Reconnect timeout (120s) — generation likely ended, resetting state";
    std::vector<Generation*> waiting;
    for (Generation& generation : m_generations.all()) {
        if (generation.isHeard() && generation.sawReconnect)
            waiting.push_back(&generation);
    }
    for (Generation* generation : waiting)
        m_listener.ended(*generation);
    // Of the others it is not known whether they arrived.
    m_isSilent = true;
    askLater(std::chrono::seconds(0), true);
}

void SilenceWatch::askLater(std::chrono::seconds delay, bool mayResend) {
    m_silenceTimer = m_dependencies.scheduler.after(
        delay, [this, mayResend] { m_scope.start([this, mayResend] { return askAboutSilence(mayResend); }); });
}

// What has been sent on this line only is waited for without asking.
Generation* SilenceWatch::awaited() const {
    Generation* generation = m_isSilent ? m_generations.current() : nullptr;
    return generation && (generation->isDoubtful() || generation->sawReconnect) ? generation : nullptr;
}

// Answers that ended while the line was down for long are not repeated, and a question may have been lost with the
// line: the messages of the chat tell. An answer that is still being worked on stays.
Task<void> SilenceWatch::askAboutSilence(bool mayResend) {
    for (Generation* generation = awaited(); generation; generation = awaited()) {
        const quint64 serial = generation->serial;
        const qint64 chatId = generation->chatId;
        if (generation->isForgotten) {
            m_listener.ended(*generation);
            continue;
        }
        bool isKnown = generation->isHeard();
        if (chatId > 0) {
            const std::optional<std::vector<ChatMessage>> stored = co_await storedMessages(chatId);
            if (!stored)
                co_return askLater(resendTimeout, false);
            generation = awaited();
            if (!generation || generation->serial != serial)
                co_return;
            // What was taken for its answer may have been another's. Only a new chat's question appears late.
            isKnown = knows(*stored, *generation) || (isKnown && generation->createsChat());
            if (isComplete(*generation, *stored)) {
                m_listener.answered(*generation, *stored);
                continue;
            }
        }
        if (isKnown) {
            m_listener.arrived(*generation);
            co_return askLater(resendTimeout, false);
        }
        // Of a new chat only its creation can tell.
        const std::chrono::seconds left = (chatId > 0 ? resendTimeout : creationTimeout) - unheardFor(serial);
        if (!mayResend && left > std::chrono::seconds(0))
            co_return askLater(left, true);
        m_unheard.reset();
        generation->stage = Generation::Stage::doubtful;
        // A new chat may have been made that we were never told of: not to be asked twice unseen. And what was
        // stopped is not to be asked again.
        const bool mayBeThere = chatId < 0 && (generation->isRestored || m_wasAwayTooLong);
        if (mayBeThere || generation->state != Generation::State::running) {
            m_listener.returned(*generation);
            continue;
        }
        qCInfo(lcSilence) << "📤 [ChatViewModel] A question was lost with the line, sending it again";
        m_listener.lost(*generation);
        co_return askLater(resendTimeout, false);
    }
}

// Counted over lines that do not last: on each of them it would have been heard of at once.
std::chrono::seconds SilenceWatch::unheardFor(quint64 serial) {
    const QDateTime now = m_dependencies.clock.now();
    if (!m_unheard || m_unheard->serial != serial || m_unheard->since > now)
        m_unheard = {.serial = serial, .since = now};
    return std::chrono::seconds(m_unheard->since.secsTo(now));
}

// As long as an answer is waited for, its chat is asked now and then whether it is there: should its end have been taken
// for another's, nothing else would tell.
void SilenceWatch::waitOn() {
    if (m_patienceTimer.isActive())
        return;
    m_heardLately = false;
    m_patienceTimer = m_dependencies.scheduler.after(patience, [this] {
        if (!m_generations.current())
            return;
        if (!m_heardLately && m_dependencies.chatService.isConnected())
            m_scope.start([this] { return askWhetherComplete(false); });
        m_patienceTimer.cancel();
        waitOn();
    });
}

void SilenceWatch::ask() {
    m_scope.start([this] { return askWhetherComplete(true); });
}

Task<void> SilenceWatch::askWhetherComplete(bool evenIfHeard) {
    const Generation* asked = m_generations.current();
    if (!asked || asked->chatId < 0 || asked->isForgotten)
        co_return;
    const quint64 serial = asked->serial;
    const qint64 chatId = asked->chatId;
    const std::optional<std::vector<ChatMessage>> stored = co_await storedMessages(chatId);
    Generation* generation = m_generations.current();
    if (!stored || !generation || generation->serial != serial)
        co_return;
    if ((m_heardLately && !evenIfHeard) || !isComplete(*generation, *stored))
        co_return;
    m_listener.answered(*generation, *stored);
}

void SilenceWatch::askAboutRefusal(quint64 serial) {
    m_scope.start([this, serial] { return settleRefusal(serial); });
}

Task<void> SilenceWatch::settleRefusal(quint64 serial) {
    const qint64 chatId = m_generations.find(serial)->chatId;
    const std::optional<std::vector<ChatMessage>> stored = co_await storedMessages(chatId);
    Generation* generation = m_generations.find(serial);
    if (!generation)
        co_return;
    // Unknown is taken for refused: rather once too often in the composer than gone.
    if (stored && knows(*stored, *generation))
        m_listener.ended(*generation);
    else
        m_listener.returned(*generation);
}

Task<std::optional<std::vector<ChatMessage>>> SilenceWatch::storedMessages(qint64 chatId) {
    try {
        std::vector<ChatMessage> messages = co_await m_dependencies.chatService.getMessages(chatId);
        co_return std::optional(std::move(messages));
    } catch (const TaskCancelled&) {
        throw;
    } catch (const std::exception& error) {
        qCWarning(lcSilence).noquote() << "❌ [ChatViewModel] Error loading messages:" << error.what();
        co_return std::nullopt;
    }
}

// How many messages there are does not tell: what was refused or given back may still stand here.
bool SilenceWatch::isComplete(const Generation& generation, const std::vector<ChatMessage>& stored) const {
    if (generation.state != Generation::State::running)
        return MessageComposition::answerTo(stored, generation.question.text, generation.timesAsked) != nullptr;
    return !stored.empty() && MessageComposition::isAnswer(stored.back()) && knows(stored, generation) &&
        MessageComposition::lastQuestion(stored) == MessageComposition::lastQuestion(m_listener.messagesOf(generation));
}

// Whether the service has the question, as often as it was asked.
bool SilenceWatch::knows(const std::vector<ChatMessage>& stored, const Generation& generation) const {
    return MessageComposition::timesAsked(stored, generation.question.text) >= generation.timesAsked;
}

}
