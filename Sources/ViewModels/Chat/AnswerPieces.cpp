#include "Chat/AnswerPieces.h"

#include <QLoggingCategory>

#include <utility>

namespace Korvi {

Q_LOGGING_CATEGORY(lcPieces, "korvi.chat.stream", QtInfoMsg)

void AnswerPieces::add(const QString& piece, AnswerFold::Kind kind) {
    (kind == AnswerFold::Kind::text ? m_text : m_thinking).append(piece);
}

void AnswerPieces::clear() {
    *this = {};
}

AnswerFold::Outcome AnswerPieces::foldInto(ChatMessage& answer, AnswerFold& fold, ToolWork& tools) {
    const AnswerPieces pieces = std::exchange(*this, {});
    if (answer.role != ChatMessage::Role::ai) {
        qCWarning(lcPieces) << "⚠️ [ChatViewModel] updateLastMessage: last message is not AI, it's"
                            << rawValue(answer.role);
        return {};
    }
    if (!answer.content)
        answer.content.emplace();
    const AnswerFold::Outcome thought = fold.fold(*answer.content, pieces.m_thinking, AnswerFold::Kind::thinking);
    const AnswerFold::Outcome told = fold.fold(*answer.content, pieces.m_text, AnswerFold::Kind::text);
    const bool hasGrown = pieces.m_hasArtifact && ToolEvents::applyArtifact(tools, answer);
    const bool isRepaired = ToolEvents::repairPlaceholder(tools, answer);
    return {.changed = thought.changed || told.changed || hasGrown || isRepaired,
        .follow = thought.follow || told.follow || hasGrown};
}

}
