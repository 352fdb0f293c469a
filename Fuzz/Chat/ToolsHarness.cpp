// Frames of an answer and of its tools, one a line; an empty line breaks the line, and all is sent again. Whatever comes,
// the answer is the same as without a loss, nothing is at work at its end, and its search bodies can be stored.
#include "Chat/AnswerFold.h"
#include "Chat/InlineCitations.h"
#include "Chat/MessageComposition.h"
#include "Chat/SocketFrame.h"
#include "Chat/ToolEvents.h"
#include "Clock.h"
#include "Match.h"

#include <cstdlib>

using namespace Korvi;

namespace {

class Numbers : public Random {
public:
    double uniform() override { return 0; }
    qint64 integer(qint64 low, qint64) override { return low; }
    QUuid uuid() override { return QUuid(++m_last, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0); }

private:
    unsigned m_last = 0;
};

struct Answer {
    ChatMessage message;
    ToolWork work;
    AnswerFold fold;
    Numbers numbers;

    Answer() {
        message.role = ChatMessage::Role::ai;
        message.content = std::vector<MessageContent>{{MessageContent::Text{}}};
    }
    void take(const SocketEvent& event) {
        match(
            event.value, [&](const SocketEvent::TextChunk& e) { text(e.content, AnswerFold::Kind::text); },
            [&](const SocketEvent::ThinkingChunk& e) { text(e.content, AnswerFold::Kind::thinking); },
            [&](const SocketEvent::ToolStart& e) {
                tool({ToolFrame::Kind::start, e.tool, std::nullopt});
            },
            [&](const SocketEvent::ArtifactChunk& e) {
                tool({ToolFrame::Kind::args, e.tool, e.args});
            },
            [&](const SocketEvent::ToolEnd& e) {
                tool({ToolFrame::Kind::end, e.tool, e.content});
            },
            [](const auto&) {});
    }
    void breakLine() {
        fold.beginReplay();
        work.replay.begin();
    }
    void end() {
        MessageComposition::removePlaceholders(message);
        cleanInlineCitations(*message.content);
        ToolEvents::rest(work);
    }

private:
    void text(const QString& piece, AnswerFold::Kind kind) {
        fold.fold(*message.content, {piece}, kind);
        ToolEvents::repairPlaceholder(work, message);
    }
    void tool(const ToolFrame& frame) {
        if (work.replay.isRepeat(frame))
            return;
        ToolEvents::take(work, message, frame, numbers);
        ToolEvents::applyArtifact(work, message);
    }
};

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayList lines =
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)).split('\n');
    Answer answer;
    for (const QByteArray& line : lines) {
        if (line.isEmpty())
            answer.breakLine();
        for (const SocketEvent& event : SocketFrame::parse(line))
            answer.take(event);
    }
    answer.end();
    for (const MessageContent& block : *answer.message.content) {
        const auto* artifact = block.as<Artifact>();
        if (block.as<MessageContent::Generating>() || block.as<MessageContent::SearchInProgress>() ||
            (artifact && artifact->text.isEmpty() && ArtifactDraft::isPlaceholder(*artifact)))
            std::abort();
    }
    // What cannot be stored and read back is lost with the next start.
    const QByteArray stored = QJsonDocument(answer.message.toJson()).toJson(QJsonDocument::Compact);
    if (!(decodeJson<ChatMessage>(stored) == answer.message))
        std::abort();
    return 0;
}
