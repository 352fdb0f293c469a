#pragma once

#include "Chat/AnswerFold.h"
#include "ChatMessage.h"

#include <deque>

namespace Korvi {

// One answer that the service is working on.
struct Generation {
    enum class State {
        running,
        stopRequested, // before its chat had an id: the abort goes out with it
        stopped,       // the user has seen enough; what still comes is dropped
    };

    qint64 chatId = -1;
    bool isOpen = true; // its chat is the open conversation
    State state = State::running;
    std::vector<ChatMessage> parked; // the messages of its chat while another one is open
    AnswerFold fold;
    QStringList textPieces; // received, waiting for the next flush
    QStringList thinkingPieces;
};

// The answers under way, in the order in which they were asked for. Frames carry no chat; the service delivers
// one answer after the other, so what comes belongs to the first and its end makes place for the next.
class GenerationQueue {
public:
    bool isEmpty() const { return m_generations.empty(); }
    Generation& begin(qint64 chatId);
    Generation* current(); // whose frames come now; null when none is under way
    Generation* open();    // of the open conversation
    Generation* ofChat(qint64 chatId);
    Generation* withoutChat(); // the first whose chat has not been created yet
    void remove(const Generation* generation);
    void clear() { m_generations.clear(); }

private:
    template <class Predicate>
    Generation* find(Predicate predicate);

    std::deque<Generation> m_generations; // a deque keeps references valid at its ends
};

}
