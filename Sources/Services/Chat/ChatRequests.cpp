// The chat calls of ChatService that do not stream.
#include "Backend/APIClient.h"
#include "ChatService.h"

#include <QJsonDocument>
#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcChatRequests, "korvi.chat.requests", QtInfoMsg)

namespace {

std::vector<ChatMessage> decodeMessages(const QByteArray& bytes) {
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    // The list comes wrapped or bare.
    return document.isArray() ? JsonReader::arrayOf<ChatMessage>(document.array())
                              : decodeJson<MessageListResponse>(bytes).data;
}

}

Task<std::vector<Chat>> ChatService::getChats() {
    ChatListResponse response = co_await m_dependencies.client.request<ChatListResponse>(u"/chats"_s);
    co_return std::move(response.data);
}

Task<std::vector<ChatMessage>> ChatService::getMessages(qint64 chatId) {
    const QString path = u"/chats/%1/messages"_s.arg(chatId);
    const QByteArray bytes = co_await m_dependencies.client.requestData(path);
    try {
        std::vector<ChatMessage> messages = decodeMessages(bytes);
        qCInfo(lcChatRequests) << "📥 [ChatService] Decoded" << messages.size() << "messages";
        co_return messages;
    } catch (const DecodingError& error) {
        qCWarning(lcChatRequests).noquote() << "❌ [ChatService] Error getting messages:" << error.what();
        throw APIError::decodingError(error);
    }
}

}
