#include "Chat/ConversationMessages.h"

#include "Chat/GenerationQueue.h"
#include "Chat/MessageComposition.h"
#include "Chat/MessageListModel.h"

#include <QLoggingCategory>

namespace Korvi {

Q_LOGGING_CATEGORY(lcConversation, "korvi.chat.stream", QtInfoMsg)

ConversationMessages::ConversationMessages(GenerationQueue& generations, MessageListModel& shown)
    : m_generations(generations)
    , m_shown(shown) {}

const std::vector<ChatMessage>& ConversationMessages::of(const Generation& generation) const {
    return generation.isOpen ? m_shown.messages() : generation.parked;
}

const std::vector<ChatMessage>& ConversationMessages::shown() const {
    return m_shown.messages();
}

bool ConversationMessages::change(Generation& generation, const std::function<bool(ChatMessage&)>& apply) {
    if (!generation.isOpen)
        return !generation.parked.empty() && apply(generation.parked.back());
    const int last = m_shown.count() - 1;
    if (last < 0) {
        qCWarning(lcConversation) << "⚠️ [ChatViewModel] updateLastMessage: no messages";
        return false;
    }
    bool isChanged = false;
    m_shown.update(last, [&](ChatMessage& answer) { return isChanged = apply(answer); });
    return isChanged;
}

void ConversationMessages::replace(Generation& generation, std::vector<ChatMessage> messages) {
    if (generation.isOpen)
        m_shown.setMessages(std::move(messages));
    else
        generation.parked = std::move(messages);
}

void ConversationMessages::relocate(Generation& generation, const QHash<QString, QString>& places) {
    for (ChatMessage& message : generation.parked)
        MessageComposition::relocate(message, places);
    for (int row = 0; generation.isOpen && row < m_shown.count(); ++row) {
        ChatMessage message = m_shown.messages()[static_cast<std::size_t>(row)];
        if (MessageComposition::relocate(message, places))
            m_shown.replace(row, std::move(message));
    }
}

void ConversationMessages::takeOff(const Generation& generation) {
    const QString& question = generation.question.text;
    bool isShown = false;
    bool isOfChat = false;
    for (Generation& each : m_generations.all()) {
        // Of a chat without a number are those that wait to join it.
        isOfChat =
            &each == &generation || (generation.chatId < 0 ? isOfChat && each.joins : each.chatId == generation.chatId);
        if (!isOfChat)
            continue;
        isShown = isShown || each.isOpen;
        if (each.question.text == question && each.timesAsked > generation.timesAsked)
            --each.timesAsked;
        if (const auto row = MessageComposition::rowOfQuestion(each.parked, question))
            each.parked.erase(each.parked.begin() + *row, each.parked.begin() + *row + 2);
    }
    const auto row = isShown ? MessageComposition::rowOfQuestion(m_shown.messages(), question) : std::nullopt;
    if (row) {
        m_shown.remove(static_cast<int>(*row) + 1);
        m_shown.remove(static_cast<int>(*row));
    }
}

void ConversationMessages::park() {
    Generation* newest = m_generations.open();
    if (newest && newest->state != Generation::State::stopped)
        newest->parked = m_shown.messages();
    for (Generation& generation : m_generations.all())
        generation.isOpen = false;
}

void ConversationMessages::unpark(Generation& generation) {
    m_shown.reset(std::exchange(generation.parked, {}));
    generation.isOpen = true;
}

void ConversationMessages::setStreaming(bool streaming) {
    m_shown.setStreaming(streaming);
}

}
