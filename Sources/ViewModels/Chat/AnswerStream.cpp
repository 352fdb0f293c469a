#include "Chat/AnswerStream.h"

#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/InlineCitations.h"
#include "Chat/MessageComposition.h"
#include "Clock.h"

#include <QLoggingCategory>

namespace Korvi {

Q_LOGGING_CATEGORY(lcStream, "korvi.chat.stream", QtInfoMsg)

AnswerStream::AnswerStream(Dependencies dependencies, MessageListModel& shown, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_messages(m_generations, shown)
    , m_outbox(dependencies.chatService, m_generations, [this] { saveJournal(); })
    , m_journal(dependencies.defaults, dependencies.cache)
    , m_expected(dependencies.defaults, dependencies.cache)
    , m_silence({dependencies.chatService, dependencies.scheduler, dependencies.clock}, m_generations, *this) {}

quint64 AnswerStream::begin(Question question, Files files) {
    Generation generation;
    generation.isHeld = files == Files::onTheirWay;
    generation.askedAt = m_dependencies.clock.now();
    generation.chatId = question.chatId;
    generation.question = std::move(question);
    generation.timesAsked = MessageComposition::timesAsked(m_messages.shown(), generation.question.text);
    const Generation* before = m_generations.open();
    generation.joins = generation.chatId < 0 && before && before->chatId < 0;
    emit touched(generation.chatId);
    const quint64 serial = m_generations.begin(std::move(generation)).serial;
    settled();
    return serial;
}

bool AnswerStream::stop() {
    Generation* generation = m_generations.open();
    if (!generation || generation->state != Generation::State::running)
        return false;
    flush();
    generation->pieces.clear();
    ToolEvents::rest(generation->tools);
    generation->imageWatchdog.cancel();
    generation->endWatchdog.cancel();
    m_messages.change(*generation, [generation](ChatMessage& answer) {
        const bool wasAtWork = MessageComposition::removePlaceholders(answer);
        generation->lacksHistory = generation->lacksHistory || MessageComposition::hasSplitText(answer);
        return wasAtWork;
    });
    if (generation->isWaiting()) {
        giveBack(*generation);
    } else if (generation->chatId > 0) {
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
    m_messages.park();
    settled();
}

bool AnswerStream::unpark(qint64 chatId) {
    Generation* generation = m_generations.runningOf(chatId);
    if (!generation)
        return false;
    flush();
    m_messages.unpark(*generation);
    settled();
    return true;
}

void AnswerStream::noteMissingHistory(qint64 chatId) {
    for (Generation& generation : m_generations.all())
        generation.lacksHistory = generation.lacksHistory || generation.chatId == chatId;
}

void AnswerStream::forget(qint64 chatId) {
    m_generations.forgo(chatId);
    m_expected.forget(chatId);
    settled();
}

void AnswerStream::dropAll() {
    m_generations.forgoAll();
    m_expected.clear();
    m_lastStreamedArtifact.reset();
    settled();
}

void AnswerStream::restore() {
    for (ReplayGuard::Ended& answer : m_journal.restoreEnded()) {
        m_guard.ended(std::move(answer));
    }
    m_expected.restore();
    for (Generation& generation : m_journal.restore())
        m_generations.begin(std::move(generation));
    // Their files were on their way, and are not there any more.
    std::vector<Generation*> held;
    for (Generation& generation : m_generations.all()) {
        if (generation.isHeld && generation.state == Generation::State::running)
            held.push_back(&generation);
    }
    for (Generation* generation : held)
        giveBack(*generation);
    settled();
}

void AnswerStream::forgetJournal() {
    m_journal.clear();
    m_expected.clear();
}

void AnswerStream::reset() {
    m_silence.cancel();
    m_generations.clear();
    m_guard.clear();
    m_answeredNewChats.clear();
    m_lastStreamedArtifact.reset();
    m_isGenerating = false;
    m_flushTimer.cancel();
    m_guardTimer.cancel();
    m_messages.setStreaming(false);
    emit generatingChatsChanged({});
    emit changed();
}

AnswerStream::Owner AnswerStream::created(qint64 chatId) {
    if (m_guard.ownsCreation(chatId))
        return Owner::none;
    // A replay tells of the chat again: then its answer has it already, or has had its end.
    Generation* current = m_generations.current();
    if (current && current->chatId == chatId) {
        if (current->createsChat())
            takeNotice(*current);
        else
            m_guard.swallowOne(); // the answer that the chat began with had its end
        return Owner::none;
    }
    Generation* generation = m_answeredNewChats.contains(chatId) ? nullptr : m_generations.withoutChat();
    if (!generation)
        return Owner::none;
    // Those before it have had their ends, though not here.
    while (m_generations.current() != generation)
        ended(*m_generations.current());
    generation->chatId = chatId;
    m_outbox.joinFollowers(chatId);
    const bool isOpen = generation->isOpen;
    if (generation->state == Generation::State::stopRequested) {
        m_dependencies.chatService.stopGeneration(chatId);
        generation->state = Generation::State::stopped;
    }
    takeNotice(*generation);
    settled();
    return isOpen ? Owner::open : Owner::parked;
}

void AnswerStream::receive(const QString& piece, AnswerFold::Kind kind) {
    if (m_guard.ownsPiece(piece, kind))
        return;
    Generation* generation = addressee();
    if (generation) {
        takeNotice(*generation);
        if (kind == AnswerFold::Kind::text && generation->textHead.size() < ReplayGuard::headLength)
            generation->textHead += piece;
        if (kind == AnswerFold::Kind::thinking)
            generation->thinkingTail = (generation->thinkingTail + piece).right(ReplayGuard::tailLength);
    }
    if (!generation || generation->state != Generation::State::running) {
        qCInfo(lcStream) << "⚠️ [ChatViewModel] Dropped a piece: no answer is under way";
        return;
    }
    generation->endWatchdog.cancel();
    generation->pieces.add(piece, kind);
    flushLater();
}

void AnswerStream::flushLater() {
    if (m_flushTimer.isActive())
        return;
    // The first piece shows without delay, what follows in steps that a list can redraw.
    flush();
    m_flushTimer = m_dependencies.scheduler.every(flushInterval, [this] {
        const Generation* running = m_generations.current();
        const bool isQuiet = !running || running->pieces.isEmpty();
        flush();
        // Without news there is nothing to wake up for; the next piece starts the timer again.
        if (isQuiet)
            m_flushTimer.cancel();
    });
}

void AnswerStream::flush() {
    Generation* generation = m_generations.current();
    if (!generation || generation->pieces.isEmpty())
        return;
    AnswerFold::Outcome outcome;
    m_messages.change(*generation, [&](ChatMessage& answer) {
        outcome = generation->pieces.foldInto(answer, generation->fold, generation->tools);
        return outcome.changed;
    });
    if (generation->isOpen && outcome.follow)
        emit followed();
}

// The service has the question, since this is of its answer.
void AnswerStream::takeNotice(Generation& generation) {
    m_silence.heardOf(generation);
    if (!generation.isHeard())
        arrived(generation);
}

void AnswerStream::disconnected() {
    if (!m_lostAt)
        m_lostAt = m_dependencies.clock.now();
    m_outbox.doubt();
}

void AnswerStream::connected() {
    const QDateTime now = m_dependencies.clock.now();
    const bool wasAwayTooLong = m_lostAt && m_lostAt->secsTo(now) >= ReplayGuard::replayLife.count();
    m_lostAt.reset();
    flush();
    m_outbox.doubt();
    m_guard.connected(now);
    relaxLater();
    for (Generation& generation : m_generations.all()) {
        generation.sawReconnect = generation.sawReconnect || generation.hasLeft();
        // The word to stop may have been lost with the line.
        if (generation.state == Generation::State::stopped && !generation.isOverdue &&
            !m_generations.runningOf(generation.chatId))
            m_dependencies.chatService.stopGeneration(generation.chatId);
    }
    m_outbox.sendNext();
    saveJournal();
    Generation* generation = m_generations.current();
    if (!generation)
        return;
    qCInfo(lcStream) << "🔌 [ChatViewModel] Reconnected during generation — enabling replay dedup";
    generation->fold.beginReplay();
    generation->tools.replay.begin();
    m_silence.connected(wasAwayTooLong);
}

void AnswerStream::relaxLater() {
    if (m_guard.isWatching())
        m_guardTimer = m_dependencies.scheduler.after(replayTimeout, [this] { m_guard.relax(); });
}

const std::vector<ChatMessage>& AnswerStream::messagesOf(const Generation& generation) const {
    return m_messages.of(generation);
}

void AnswerStream::arrived(Generation& generation) {
    if (generation.hasLeft())
        generation.stage = Generation::Stage::heard;
    m_outbox.sendNext();
    saveJournal();
}

void AnswerStream::answered(Generation& generation, const std::vector<ChatMessage>& stored) {
    const bool isRunning = generation.state == Generation::State::running;
    if (isRunning) {
        std::vector<ChatMessage> messages = stored;
        if (m_lastStreamedArtifact && m_lastStreamedArtifact->chatId == generation.chatId)
            ArtifactFinder::restoreArtifactIfNeeded(messages, *m_lastStreamedArtifact);
        m_messages.replace(generation, std::move(messages));
    }
    // Its frames may still come.
    if (const auto* answer = MessageComposition::answerTo(stored, generation.question.text, generation.timesAsked)) {
        generation.textHead = MessageComposition::joinedText(*answer).left(ReplayGuard::headLength);
        generation.thinkingTail = MessageComposition::joinedThinking(*answer).right(ReplayGuard::tailLength);
    }
    generation.isUnheardEnd = true;
    if (isRunning)
        emit answerReady(generation.chatId, generation.askedAt);
    finish(&generation);
}

void AnswerStream::ended(Generation& generation) {
    generation.stage = Generation::Stage::heard;
    // What has been stored is what there is.
    generation.sawReconnect = true;
    finish(&generation);
}

void AnswerStream::lost(Generation& generation) {
    m_outbox.send(generation);
    m_outbox.sendNext();
}

void AnswerStream::returned(Generation& generation) {
    giveBack(generation);
    settled();
}

// The question, which the service does not have, returns to the one who asked it.
void AnswerStream::giveBack(Generation& generation) {
    const Question question = generation.question;
    const qint64 chatId = generation.chatId;
    qCInfo(lcStream) << "↩️ [ChatViewModel] Question" << generation.serial << "of chat" << chatId
                     << "did not arrive";
    m_messages.takeOff(generation);
    const bool hadFiles = generation.isHeld;
    const quint64 serial = generation.serial;
    m_generations.remove(&generation);
    m_outbox.joinFollowers(-1);
    emit questionReturned(question.text);
    if (hadFiles)
        emit filesReturned(serial);
    emit touched(chatId);
    emit comparisonWanted(chatId);
}

bool AnswerStream::compare(qint64 chatId, const std::vector<ChatMessage>& stored) {
    const ExpectedAnswers::Comparison comparison = m_expected.compare(chatId, stored);
    for (const QString& question : comparison.missing) {
        qCInfo(lcStream) << "↩️ [ChatViewModel] A question of chat" << chatId << "is not stored";
        emit questionReturned(question);
    }
    return !comparison.isTooEarly;
}

std::optional<AnswerStream::Ending> AnswerStream::end() {
    flush();
    Generation* generation = m_generations.current();
    if (generation && generation->chatId < 0)
        generation = nullptr;
    if (m_guard.ownsEnd(generation && generation->isHeard() && generation->textHead.isEmpty())) {
        // Two answers may begin alike: then it was the one that is waited for, and its chat has it.
        if (generation) {
            generation->sawReconnect = true;
            m_mayBeShifted = true;
            m_silence.listen();
            m_silence.ask();
        }
        return std::nullopt;
    }
    if (!generation)
        return std::nullopt;
    const bool isRunning = generation->state == Generation::State::running;
    if (isRunning) {
        m_messages.change(*generation, [generation](ChatMessage& answer) {
            // A tool that never came to its end: the service may know of it.
            const bool wasAtWork = MessageComposition::removePlaceholders(answer);
            generation->lacksHistory =
                generation->lacksHistory || wasAtWork || MessageComposition::hasSplitText(answer);
            const bool isCleaned = answer.content && cleanInlineCitations(*answer.content);
            return wasAtWork || isCleaned;
        });
    }
    if (isRunning) // before its end, with which what is remembered of it goes
        emit answerReady(generation->chatId, generation->askedAt);
    return finish(generation);
}

std::optional<AnswerStream::Ending> AnswerStream::fail(std::optional<qint64> chatId) {
    flush();
    heard();
    Generation* generation = chatId ? m_generations.firstOf(*chatId) : m_generations.current();
    if (m_guard.ownsEnd(generation != nullptr) || !generation)
        return std::nullopt;
    // What says that a tool is at work stays until the stored answer has been seen.
    if (ChatMessage answer; !messagesOf(*generation).empty()) {
        answer = messagesOf(*generation).back();
        generation->lacksHistory = MessageComposition::removePlaceholders(answer) ||
            MessageComposition::hasSplitText(answer) || generation->lacksHistory;
    }
    if (generation->isHeard() || !generation->hasLeft())
        return finish(generation);
    // Nothing came of the question: it may have been refused, and then it is stored nowhere.
    if (generation->chatId < 0) {
        giveBack(*generation);
        settled();
        return std::nullopt;
    }
    // Out of the way of the frames that follow. If the client ends before it knows, the next one asks again.
    generation->stage = Generation::Stage::refused;
    const quint64 serial = generation->serial;
    settled();
    m_silence.askAboutRefusal(serial);
    return std::nullopt;
}

AnswerStream::Ending AnswerStream::finish(Generation* generation) {
    qCInfo(lcStream) << "🏁 [ChatViewModel] Answer" << generation->serial << "of chat" << generation->chatId << "ended";
    const Ending ending{
        .chatId = generation->chatId, .wasOpen = generation->isOpen, .createdChat = generation->createsChat()};
    const std::vector<ChatMessage>& messages = messagesOf(*generation);
    // Its frames may have been repeated or incomplete, or another's; what was read from the service is as it is stored.
    const bool isAdopted = generation->isUnheardEnd && generation->state == Generation::State::running;
    const bool isInDoubt = (generation->sawReconnect || generation->lacksHistory || m_mayBeShifted) && !isAdopted;
    if (ending.chatId > 0 && ending.createdChat)
        m_answeredNewChats.insert(ending.chatId);
    if (ending.chatId > 0 && !generation->isForgotten) {
        if (!messages.empty())
            m_dependencies.cache.cacheMessages(messages, ending.chatId);
        if (isInDoubt)
            m_expected.add({.chatId = ending.chatId,
                .question = generation->question.text,
                .timesAsked = generation->timesAsked,
                .mayBeMissing = generation->wasDoubtful && !generation->createsChat()});
        emit touched(ending.chatId);
    }
    if (generation->hasLeft()) {
        m_guard.ended({.chatId = ending.chatId,
            .textHead = generation->textHead,
            .thinkingTail = generation->thinkingTail,
            .at = m_dependencies.clock.now(),
            .toolHead = generation->tools.replay.head()});
        if (generation->isUnheardEnd) {
            m_guard.watch();
            relaxLater();
        }
    }
    const bool wasCurrent = generation == m_generations.current();
    m_generations.remove(generation);
    if (ending.chatId < 0)
        m_outbox.joinFollowers(-1);
    settled();
    // Whether the next one arrived is not known yet.
    const Generation* next = m_generations.current();
    if (wasCurrent && next && next->isDoubtful() && !m_silence.isListening())
        m_silence.listen();
    if (m_expected.chats().contains(ending.chatId))
        emit comparisonWanted(ending.chatId);
    return ending;
}

quint64 AnswerStream::runningIn(qint64 chatId) {
    const Generation* generation = m_generations.runningOf(chatId);
    return generation ? generation->serial : 0;
}

std::optional<qint64> AnswerStream::chatOfRunning(quint64 serial) {
    const Generation* generation = m_generations.find(serial);
    const bool isRunning = generation && generation->state == Generation::State::running;
    return isRunning ? std::optional(generation->chatId) : std::nullopt;
}

void AnswerStream::saveJournal() {
    m_journal.save(m_generations, m_guard, m_messages.shown());
}

void AnswerStream::settled() {
    m_mayBeShifted = m_mayBeShifted && m_generations.current();
    m_outbox.sendNext();
    const Generation* open = m_generations.open();
    m_isGenerating = open && open->state == Generation::State::running;
    m_messages.setStreaming(m_isGenerating);
    if (m_generations.isEmpty()) {
        m_flushTimer.cancel();
        m_silence.rest();
    } else {
        m_silence.waitOn();
    }
    saveJournal();
    emit generatingChatsChanged(m_generations.runningChats());
    emit changed();
}

}
