#include "Chat/QuestionOutbox.h"

#include "Chat/ChatService.h"
#include "Chat/GenerationQueue.h"

namespace Korvi {

QuestionOutbox::QuestionOutbox(ChatService& chatService, GenerationQueue& generations, std::function<void()> written)
    : m_chatService(chatService)
    , m_generations(generations)
    , m_written(std::move(written)) {}

void QuestionOutbox::sendNext() {
    std::erase_if(m_generations.all(), [](const Generation& generation) {
        return generation.isWaiting() && generation.state != Generation::State::running;
    });
    for (Generation& generation : m_generations.all()) {
        if (generation.isDoubtful())
            return;
        if (!generation.isWaiting())
            continue;
        if (generation.joins || generation.isHeld)
            return;
        if (!m_chatService.isConnected())
            return m_chatService.connect();
        send(generation);
    }
}

void QuestionOutbox::send(Generation& generation) {
    generation.stage = Generation::Stage::sent;
    m_written();
    const Question& question = generation.question;
    if (question.chatId < 0)
        m_chatService.createChat(question.model, question.text, question.imageUrls, question.files, question.projectId);
    else
        m_chatService.sendMessage(question.chatId, question.text, question.imageUrls, question.files);
}

void QuestionOutbox::joinFollowers(qint64 chatId) {
    for (Generation& generation : m_generations.all()) {
        if (generation.chatId >= 0)
            continue;
        if (!generation.joins)
            return;
        generation.joins = false;
        if (chatId < 0)
            return;
        generation.chatId = chatId;
        generation.question.chatId = chatId;
    }
}

void QuestionOutbox::doubt() {
    for (Generation& generation : m_generations.all()) {
        if (generation.stage != Generation::Stage::sent)
            continue;
        generation.stage = Generation::Stage::doubtful;
        generation.wasDoubtful = true;
    }
}

}
