#pragma once

#include <QtGlobal>

#include <functional>

namespace Korvi {

class ChatService;
class GenerationQueue;
struct Generation;

// Hands the questions to the service: in their order, and none past one of which it is not known whether it arrived, for
// the answers come in the order of the questions and could not be told apart.
class QuestionOutbox {
public:
    // `written` is called before a question goes out: it is to be remembered as sent.
    QuestionOutbox(ChatService& chatService, GenerationQueue& generations, std::function<void()> written);

    // Those whose turn it is. Asks for a line if there is none. What was stopped while it waited is dropped.
    void sendNext();
    void send(Generation& generation);
    // What was asked in a chat that had no number yet: it has one, or (-1) has none to come and is begun anew.
    void joinFollowers(qint64 chatId);
    // What left on a line that is lost may be lost with it.
    void doubt();

private:
    ChatService& m_chatService;
    GenerationQueue& m_generations;
    std::function<void()> m_written;
};

}
