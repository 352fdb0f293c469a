// The chat calls of ChatService that do not stream.
#include "Backend/APIClient.h"
#include "ChatService.h"

#include <QLoggingCategory>
#include <QUrl>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcChatRequests, "korvi.chat.requests", QtInfoMsg)

namespace {

QString pathOf(qint64 chatId, const QString& rest = {}) {
    return u"/chats/"_s + QString::number(chatId) + rest;
}

}

Task<std::vector<Chat>> ChatService::getChats() {
    ChatListResponse response = co_await m_dependencies.client.request<ChatListResponse>(u"/chats"_s);
    co_return std::move(response.data);
}

// The list comes wrapped or bare; which of them is only known when it has come.
Task<std::vector<ChatMessage>> ChatService::getMessages(qint64 chatId) {
    const QString path = pathOf(chatId, u"/messages"_s);
    const QByteArray bytes = co_await m_dependencies.client.requestData(path);
    try {
        MessageListResponse response = decodeJson<MessageListResponse>(bytes);
        qCInfo(lcChatRequests) << "📥 [ChatService] Decoded" << response.data.size() << "messages";
        co_return std::move(response.data);
    } catch (const DecodingError& error) {
        qCWarning(lcChatRequests).noquote() << "❌ [ChatService] Error getting messages:" << error.what();
    }
    std::vector<ChatMessage> messages = co_await m_dependencies.client.requestArray<ChatMessage>(path);
    co_return std::move(messages);
}

Task<Chat> ChatService::renameChat(qint64 chatId, QString name) {
    const QJsonObject body{{"name"_L1, name}};
    Chat chat = co_await m_dependencies.client.request<Chat>(pathOf(chatId), "PATCH", body);
    co_return std::move(chat);
}

Task<Chat> ChatService::setFavorite(qint64 chatId, bool isFavorite) {
    const QString path = pathOf(chatId, isFavorite ? u"/favorite?isFavorite=true"_s : u"/favorite?isFavorite=false"_s);
    Chat chat = co_await m_dependencies.client.request<Chat>(path, "PUT");
    co_return std::move(chat);
}

// That the answer is a success is all that counts.
Task<void> ChatService::deleteChat(qint64 chatId) {
    co_await m_dependencies.client.request<EmptyResponse>(pathOf(chatId), "DELETE");
}

Task<QByteArray> ChatService::downloadArtifactPDF(qint64 chatId, QString artifactId, qint64 version) {
    const QString path = pathOf(chatId,
        u"/artifacts/"_s + QString::fromLatin1(QUrl::toPercentEncoding(artifactId)) + u'/' + QString::number(version) +
            u"/pdf"_s);
    QByteArray bytes = co_await m_dependencies.client.requestData(path);
    co_return std::move(bytes);
}

}
