#pragma once

#include "Chat/AnswerFold.h"
#include "Chat/ToolEvents.h"

namespace Korvi {

// What has been received of an answer and waits for the next redraw of a list: pieces of its text and reasoning, and
// that there are some of an artifact (they wait in its ToolWork).
class AnswerPieces {
public:
    void add(const QString& piece, AnswerFold::Kind kind);
    void addArtifact() { m_hasArtifact = true; }
    bool isEmpty() const { return m_text.isEmpty() && m_thinking.isEmpty() && !m_hasArtifact; }
    void clear();

    // Folds them all into the answer.
    AnswerFold::Outcome foldInto(ChatMessage& answer, AnswerFold& fold, ToolWork& tools);

private:
    QStringList m_text;
    QStringList m_thinking;
    bool m_hasArtifact = false;
};

}
