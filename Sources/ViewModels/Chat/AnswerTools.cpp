// What AnswerStream hears of tools, and of files that belong to questions.
#include "Cache/DataCacheManager.h"
#include "Chat/AnswerStream.h"
#include "Chat/MessageComposition.h"
#include "Chat/MessageListModel.h"
#include "Chat/ToolNames.h"

#include <QLoggingCategory>

#include <algorithm>

namespace Korvi {

Q_LOGGING_CATEGORY(lcAnswerTools, "korvi.chat.tools", QtInfoMsg)

// An answer that is not waited for any more gives way to the one behind it.
Generation* AnswerStream::addressee() {
    const auto hasFollower = [this](const Generation* generation) {
        return std::any_of(m_generations.all().begin(), m_generations.all().end(),
            [generation](const Generation& each) { return &each != generation && each.hasLeft(); });
    };
    Generation* generation = m_generations.current();
    while (generation && generation->isOverdue && hasFollower(generation)) {
        finish(generation);
        generation = m_generations.current();
        m_mayBeShifted = true; // should it have been of the one before after all
    }
    // A new chat is told of before its answer begins.
    return generation && generation->chatId >= 0 ? generation : nullptr;
}

void AnswerStream::receive(const ToolFrame& frame) {
    if (m_guard.ownsTool(frame.fingerprint()))
        return;
    Generation* generation = addressee();
    if (generation)
        takeNotice(*generation);
    if (!generation || generation->state != Generation::State::running) {
        qCInfo(lcAnswerTools) << "⚠️ [ChatViewModel] Dropped what a tool tells: no answer is under way";
        return;
    }
    generation->endWatchdog.cancel();
    if (generation->tools.replay.isRepeat(frame))
        return;
    // Text and blocks keep their order; an artifact grows where it is.
    const bool isArtifactPiece =
        frame.kind == ToolFrame::Kind::args && ToolNames::classOf(frame.tool) == ToolClass::artifact;
    if (!isArtifactPiece)
        flush();
    ToolEvents::Outcome outcome;
    m_messages.change(*generation, [&](ChatMessage& answer) {
        outcome = ToolEvents::take(generation->tools, answer, frame, m_dependencies.random);
        if (outcome.finished)
            m_lastStreamedArtifact = {
                .chatId = generation->chatId, .messageId = answer.id, .artifact = *outcome.finished};
        return outcome.isChanged;
    });
    watch(*generation, outcome.wait);
    if (outcome.tracked && generation->chatId > 0)
        emit longTaskBegan(generation->chatId, *outcome.tracked);
    if (outcome.wantsFlush) {
        generation->pieces.addArtifact();
        return flushLater();
    }
    if (generation->isOpen) {
        emit toolsChanged();
        if (outcome.isChanged)
            emit followed();
    }
}

void AnswerStream::watch(Generation& generation, ToolEvents::Wait wait) {
    Scheduler& scheduler = m_dependencies.scheduler;
    const quint64 serial = generation.serial;
    switch (wait) {
    case ToolEvents::Wait::none: break;
    case ToolEvents::Wait::forImage:
        generation.imageWatchdog = scheduler.after(imageTimeout, [this, serial] { imageIsLate(serial); });
        break;
    case ToolEvents::Wait::forEnd:
        generation.endWatchdog = scheduler.after(endTimeout, [this, serial] { endIsLate(serial); });
        [[fallthrough]];
    case ToolEvents::Wait::noLonger: generation.imageWatchdog.cancel(); break;
    }
}

void AnswerStream::imageIsLate(quint64 serial) {
    Generation* generation = m_generations.find(serial);
    if (!generation || generation->state != Generation::State::running || !generation->tools.showImageSkeleton)
        return;
    qCWarning(lcAnswerTools) << "⏱️ [ChatViewModel] Image watchdog fired — no tool_end in 180s, force-finishing";
    flush();
    m_messages.change(
        *generation, [&](ChatMessage& answer) { return ToolEvents::imageTimedOut(generation->tools, answer); });
    stopWaiting(*generation);
}

void AnswerStream::endIsLate(quint64 serial) {
    Generation* generation = m_generations.find(serial);
    if (!generation || generation->state != Generation::State::running)
        return;
    qCWarning(lcAnswerTools)
        << "⚠️ [ChatViewModel] Safety finish: no streamEnd received after tool_end error, finishing now";
    stopWaiting(*generation);
}

// Its end may still come, and would otherwise be taken for the end of the next one: it keeps its place until then, or
// until something comes of the next one.
void AnswerStream::stopWaiting(Generation& generation) {
    flush();
    m_messages.change(generation, [](ChatMessage& answer) { return MessageComposition::removePlaceholders(answer); });
    const std::vector<ChatMessage>& messages = messagesOf(generation);
    if (generation.chatId > 0 && !messages.empty())
        m_dependencies.cache.cacheMessages(messages, generation.chatId);
    ToolEvents::rest(generation.tools);
    generation.imageWatchdog.cancel();
    generation.state = Generation::State::stopped;
    generation.isOverdue = true;
    generation.lacksHistory = true;
    generation.endWatchdog = m_dependencies.scheduler.after(overdueLife, [this, serial = generation.serial] {
        if (Generation* overdue = m_generations.find(serial))
            finish(overdue);
    });
    settled();
}

const ToolWork* AnswerStream::openTools() {
    const Generation* open = m_generations.open();
    return open && open->state == Generation::State::running ? &open->tools : nullptr;
}

void AnswerStream::lookAgain(qint64 chatId) {
    Generation* generation = m_generations.current();
    if (!generation || generation->chatId != chatId || !generation->isHeard())
        return;
    generation->sawReconnect = true;
    m_silence.listen();
}

void AnswerStream::giveUp(qint64 chatId) {
    Generation* generation = m_generations.firstOf(chatId);
    if (generation && generation->isHeard() && generation->state == Generation::State::running)
        stopWaiting(*generation);
}

void AnswerStream::supply(quint64 serial, const QStringList& imageUrls, const std::vector<SocketFrame::File>& files,
    const QHash<QString, QString>& places) {
    Generation* generation = m_generations.find(serial);
    if (!generation || !generation->isHeld)
        return;
    generation->isHeld = false;
    if (!imageUrls.isEmpty())
        generation->question.imageUrls = imageUrls;
    generation->question.files = files;
    m_messages.relocate(*generation, places);
    settled();
}

bool AnswerStream::hasText(quint64 serial) {
    const Generation* generation = m_generations.find(serial);
    return generation && (!generation->question.text.isEmpty() || !generation->question.imageUrls.isEmpty());
}

bool AnswerStream::hasImage(quint64 serial) {
    const Generation* generation = m_generations.find(serial);
    return generation && !generation->question.imageUrls.isEmpty();
}

void AnswerStream::withdraw(quint64 serial) {
    Generation* generation = m_generations.find(serial);
    if (!generation || !generation->isHeld)
        return;
    giveBack(*generation);
    settled();
}

}
