#include "Chat/ConversationLoader.h"

#include "Cache/DataCacheManager.h"
#include "Chat/AnswerStream.h"
#include "Chat/ArtifactFinder.h"
#include "Chat/MessageComposition.h"
#include "Chat/MessageListModel.h"

#include <QLoggingCategory>

namespace Korvi {

Q_LOGGING_CATEGORY(lcLoader, "korvi.chat", QtInfoMsg)

ConversationLoader::ConversationLoader(Dependencies dependencies, AnswerStream& stream, MessageListModel& shown)
    : m_dependencies(dependencies)
    , m_stream(stream)
    , m_shown(shown)
    , m_loader(dependencies.chatService, dependencies.scheduler) {
    connect(&m_loader, &MessageLoader::loaded, this, &ConversationLoader::loaded);
    connect(&m_loader, &MessageLoader::failed, this, &ConversationLoader::failed);
    connect(&m_stream, &AnswerStream::touched, &m_loader, &MessageLoader::touch);
    connect(&m_stream, &AnswerStream::comparisonWanted, this, [this](qint64 chatId) {
        if (chatId > 0)
            m_loader.load(chatId);
    });
}

void ConversationLoader::open(qint64 chatId) {
    m_openChatId = chatId;
    m_areMessagesLoaded = chatId < 0;
}

void ConversationLoader::created(qint64 chatId) {
    m_openChatId = chatId;
}

void ConversationLoader::loadAnswer(qint64 chatId) {
    m_restoresArtifactOf = chatId;
    m_loader.load(chatId);
}

void ConversationLoader::connected() {
    for (const qint64 chatId : m_stream.chatsToCompare())
        m_loader.load(chatId);
    if (!m_areMessagesLoaded)
        m_loader.load(m_openChatId);
}

void ConversationLoader::clear() {
    m_loader.clear();
}

void ConversationLoader::loaded(qint64 chatId, const std::vector<ChatMessage>& messages) {
    DataCacheManager& cache = m_dependencies.cache;
    if (m_stream.isUnderWay(chatId)) {
        qCInfo(lcLoader) << "⏳ [ChatViewModel] Skipping message refresh — streaming in progress";
        cache.cacheMessages(messages, chatId);
        m_stream.noteMissingHistory(chatId);
        return;
    }
    if (!m_stream.compare(chatId, messages)) {
        if (m_loader.loadLater(chatId))
            return;
        m_stream.forgetExpected(chatId); // what is stored is what there is
    }
    if (chatId == m_openChatId)
        show(messages);
    else
        cache.cacheMessages(messages, chatId);
}

void ConversationLoader::failed(qint64 chatId, bool isGone) {
    if (isGone) {
        m_stream.forgetExpected(chatId);
        m_areMessagesLoaded = m_areMessagesLoaded || chatId == m_openChatId;
    } else if (m_stream.chatsToCompare().contains(chatId) || (chatId == m_openChatId && !m_areMessagesLoaded)) {
        m_loader.loadLater(chatId); // and with the next connection
    }
}

void ConversationLoader::show(std::vector<ChatMessage> messages) {
    const auto& artifact = m_stream.lastStreamedArtifact();
    const bool isRecovered = std::exchange(m_restoresArtifactOf, std::nullopt) == m_openChatId;
    if (isRecovered && artifact && artifact->chatId == m_openChatId)
        ArtifactFinder::restoreArtifactIfNeeded(messages, *artifact);
    m_shown.setMessages(MessageComposition::mergeFileAttachments(m_shown.messages(), std::move(messages)));
    m_dependencies.cache.cacheMessages(m_shown.messages(), m_openChatId);
    m_areMessagesLoaded = true;
}

}
