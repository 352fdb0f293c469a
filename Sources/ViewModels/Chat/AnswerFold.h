#pragma once

#include "Chat/SeenText.h"
#include "MessageContent.h"

#include <QStringList>

namespace Korvi {

// Folds the pieces of a streamed answer into its blocks. Each piece is folded as it was received: after a
// reconnect the service sends a running answer again from its beginning, with the same borders, and what is
// already there is dropped.
class AnswerFold {
public:
    enum class Kind { text, thinking };

    struct Outcome {
        bool changed = false;
        bool follow = false; // the text grew by enough to be followed by the view
    };

    // The next pieces may repeat the answer from its beginning. Lasts until text comes that is new.
    void beginReplay();
    bool isReplaying() const { return m_isReplaying; }

    Outcome fold(std::vector<MessageContent>& content, const QStringList& pieces, Kind kind);

private:
    SeenText& seen(const std::vector<MessageContent>& content, Kind kind);
    QString withoutRepeat(Kind kind, const QString& piece);

    // The joined text and reasoning of the answer, kept from piece to piece.
    SeenText m_text;
    SeenText m_thinking;

    // What the service has sent of it. The answer may hold more, of a tool for instance, and less.
    QString m_textReceived;
    QString m_thinkingReceived;

    bool m_isReplaying = false;
    // How much of what was received the replay has repeated; absent when it has caught up or turned out not to be one.
    std::optional<qsizetype> m_textRepeated;
    std::optional<qsizetype> m_thinkingRepeated;
};

}
