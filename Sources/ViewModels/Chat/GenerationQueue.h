#pragma once

#include "Chat/AnswerPieces.h"
#include "Chat/SocketFrame.h"
#include "ChatMessage.h"
#include "Scheduler.h"

#include <QDateTime>
#include <QSet>

#include <list>

namespace Korvi {

// What was asked, as it goes out to the service.
struct Question {
    qint64 chatId = -1; // -1: it begins a chat
    QString model;      // of a new chat
    QString text;
    QStringList imageUrls;
    std::vector<SocketFrame::File> files;
    std::optional<qint64> projectId; // of a new chat

    bool operator==(const Question&) const = default;
};

// One answer that the service is working on.
struct Generation {
    // What became of its question, from "not given away" to "the service has it". Sent ones become doubtful with the
    // line, doubtful ones are sent again, and both are heard with the first thing that comes of their answer.
    enum class Stage {
        waiting,  // for a line, or for the one before it
        refused,  // an error came before anything else did: being looked into
        doubtful, // sent on a line that was lost before anything was heard of it
        sent,     // given to the socket: on its way, or arrived
        heard,    // the service has it
    };
    enum class State {
        running,
        stopRequested, // before its chat had an id: the abort goes out with it
        stopped,       // the user has seen enough; what still comes is dropped
    };

    quint64 serial = 0; // given by the queue
    Question question;
    qint64 chatId = -1;
    qint64 timesAsked = 1;     // its question in its chat, this time included
    bool isOpen = true;        // its chat is the open conversation
    bool joins = false;        // goes into the chat that the one before it in the queue is about to create
    bool isRestored = false;   // asked for before the last start of the client
    bool isUnheardEnd = false; // its end was learned from the messages of its chat
    bool isForgotten = false;  // its chat is gone: nobody asks for its question any more
    bool lacksHistory = false; // messages of its chat may be missing here
    bool wasDoubtful = false;  // what was taken for its answer may have been another's
    bool sawReconnect = false; // its frames may have been repeated
    Stage stage = Stage::waiting;
    State state = State::running;
    std::vector<ChatMessage> parked; // the messages of its chat while another one is open
    AnswerFold fold;
    ToolWork tools;
    bool isHeld = false;    // its files are still on their way to the service
    bool isOverdue = false; // a tool has failed, and its end may never come: not waited for, and stopped
    QDateTime askedAt;      // UTC; invalid when that was before the last start
    Timer imageWatchdog;
    Timer endWatchdog;
    QString textHead; // of all that was received, shown or not
    QString thinkingTail;
    AnswerPieces pieces;

    bool createsChat() const { return question.chatId < 0; }
    bool isWaiting() const { return stage == Stage::waiting; }
    bool isDoubtful() const { return stage == Stage::doubtful; }
    bool hasLeft() const { return stage >= Stage::doubtful; }
    bool isHeard() const { return stage == Stage::heard; }
};

// The answers under way, in the order in which they were asked for. Frames carry no chat; the service delivers
// one answer after the other, so what comes belongs to the first and its end makes place for the next. A stopped
// answer keeps its place until its end has come: what is still on its way is not taken for another's.
class GenerationQueue {
public:
    bool isEmpty() const { return m_generations.empty(); }
    Generation& begin(Generation generation);
    Generation* find(quint64 serial);
    Generation* current();                // the first that has left: whose frames come now; null when none is under way
    Generation* open();                   // the newest of the open conversation
    Generation* runningOf(qint64 chatId); // the newest of that chat that has not been stopped
    Generation* firstOf(qint64 chatId);   // the one of that chat whose frames come first
    Generation* withoutChat();            // the first whose chat has not been created yet, of those that have left
    void remove(const Generation* generation);
    // What comes of these is nobody's any more, but must not become another's. Their messages are dropped.
    void forgo(qint64 chatId);
    void forgoAll();
    void clear() { m_generations.clear(); }

    QSet<qint64> runningChats() const; // in which an answer is waited for
    std::list<Generation>& all() { return m_generations; }
    const std::list<Generation>& all() const { return m_generations; }

private:
    std::list<Generation> m_generations; // a list keeps references valid
    quint64 m_lastSerial = 0;
};

}
