#pragma once

#include "ChatMessage.h"

#include <QHash>

#include <functional>

namespace Korvi {

class GenerationQueue;
class MessageListModel;
struct Generation;

// Where the messages of answers under way are: those of the open conversation in the list that is shown, those of the
// others parked with their generation. Each answer is the last message of its own.
class ConversationMessages {
public:
    ConversationMessages(GenerationQueue& generations, MessageListModel& shown);

    const std::vector<ChatMessage>& of(const Generation& generation) const;
    const std::vector<ChatMessage>& shown() const;
    // Changes the answer where it is. `apply` says whether it did, and so does the result.
    bool change(Generation& generation, const std::function<bool(ChatMessage&)>& apply);
    void replace(Generation& generation, std::vector<ChatMessage> messages);
    // Files have got their addresses at the service.
    void relocate(Generation& generation, const QHash<QString, QString>& places);
    // The question and its answer go, out of later turns of the chat too.
    void takeOff(const Generation& generation);

    void park(); // of the open conversation: another one is about to be shown
    void unpark(Generation& generation);
    void setStreaming(bool streaming); // the last message that is shown is growing

private:
    GenerationQueue& m_generations;
    MessageListModel& m_shown;
};

}
