#pragma once

#include "Backend.h"
#include "Backend/UsersService.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "Chat/ChatViewModel.h"
#include "Chat/ComposerAttachments.h"
#include "FakeRandom.h"
#include "FakeSocket.h"
#include "TestAttachments.h"

#include <QJsonArray>

#include <gmock/gmock.h>

namespace Korvi::Test {

// A ChatViewModel over the real services, with the far side in the test's hands.
class ChatViewModelTest : public testing::Test, public Backend {
protected:
    ChatViewModelTest() {
        signIn("tok");
        http.answer(QStringLiteral("/sockets/ticket"), R"({"ticket":"t"})");
        start();
        chat->connectToService();
        service.accept();
    }

    // The client begins, or begins again with what it has written down.
    void start() {
        client_.reset();
        client_ = std::make_unique<Client>(*this);
        chat = &client_->chat;
        files = &client_->files;
    }
    // The same, signed in.
    void restart() {
        start();
        chat->restore(QStringLiteral("u"));
        chat->connectToService();
        service.accept();
    }

    static QString frame(const QString& event, const QJsonObject& data) {
        return QString::fromUtf8(
            QJsonDocument(QJsonObject{{"event", event}, {"data", data}}).toJson(QJsonDocument::Compact));
    }
    static QJsonObject chatJson(
        int id, const QString& name = QStringLiteral("Имя"), const QString& mode = QStringLiteral("aiplus")) {
        return {{"id", id}, {"name", name}, {"mode", mode}, {"createdAt", "c"}, {"updatedAt", "u"}, {"userId", "u"}};
    }
    static QByteArray listJson(const QJsonArray& data) { return QJsonDocument(QJsonObject{{"data", data}}).toJson(); }
    // Questions and answers in turn, as the service stores them.
    static QByteArray messagesJson(int chatId, const QStringList& texts) {
        QJsonArray list;
        for (const QString& text : texts) {
            list.append(QJsonObject{{"id", chatId * 100 + static_cast<int>(list.size())}, {"createdAt", "c"},
                {"chatId", chatId}, {"role", list.size() % 2 == 0 ? "user" : "ai"}, {"usageTokens", 0},
                {"content", QJsonArray{QJsonObject{{"type", "text"}, {"text", text}}}}});
        }
        return listJson(list);
    }
    void load(const QJsonArray& chats) {
        http.answer(QStringLiteral("/chats"), listJson(chats));
        const Running<void> loading([&] { return chat->loadChats(); });
        http.hold(QStringLiteral("/chats"));
    }

    void created(int id) { service.push(frame(QStringLiteral("create"), chatJson(id))); }
    void chunk(const QString& text) { service.push(frame(QStringLiteral("chunk"), {{"content", text}})); }
    void thinking(const QString& text) { service.push(frame(QStringLiteral("thinking"), {{"content", text}})); }
    void toolStart(const QString& tool) { service.push(frame(QStringLiteral("tool_start"), {{"tool", tool}})); }
    void toolArgs(const QString& tool, const QJsonObject& args) {
        service.push(frame(QStringLiteral("tool_call_args"), {{"tool", tool}, {"args", args}}));
    }
    void toolEnd(const QString& tool, const QJsonObject& content) {
        service.push(frame(QStringLiteral("tool_end"), {{"tool", tool}, {"content", content}}));
    }
    void end() { service.push(frame(QStringLiteral("end"), {})); }
    void error(const QString& message, int chatId = 0) {
        QJsonObject data{{"message", message}};
        if (chatId != 0)
            data.insert(QLatin1String("chatId"), chatId);
        service.push(frame(QStringLiteral("error"), data));
    }
    void ask(const QString& text) {
        chat->setCurrentInput(text);
        chat->sendMessage();
    }
    // The socket is lost and comes back.
    void reconnect() {
        service.breakOff();
        virtualTime.advance(std::chrono::seconds(40));
        service.accept();
    }
    // "user: ..." and "ai: ...", oldest first.
    QStringList shown() {
        QStringList all;
        for (const ChatMessage& message : chat->messages()->messages())
            all.append(QString(rawValue(message.role)) + QStringLiteral(": ") + message.text());
        return all;
    }
    QStringList cached(qint64 chatId) {
        QStringList all;
        for (const ChatMessage& message : cache.getCachedMessages(chatId).value_or(std::vector<ChatMessage>()))
            all.append(QString(rawValue(message.role)) + QStringLiteral(": ") + message.text());
        return all;
    }
    QJsonObject lastFrame() { return QJsonDocument::fromJson(service.frames().last().toUtf8()).object(); }
    QString lastText() {
        return lastFrame()["data"].toObject()["content"].toArray().first().toObject()["text"].toString();
    }

    FakeRandom random;
    FakeWebSocketTransport service;
    UsersService users{client};
    DataCacheManager cache{defaults, virtualTime};
    ChatViewModel* chat = nullptr;
    TestAttachments* files = nullptr;

private:
    struct Client {
        explicit Client(ChatViewModelTest& test)
            : files(test)
            , service({test.client, test.service, test.virtualTime, test.random})
            , chat({service, test.users, test.cache, test.defaults, test.virtualTime, test.virtualTime, test.random,
                  test.notifications, attachments}) {}

        TestAttachments files;
        ComposerAttachments attachments{{files.intake, files.uploader, files.clipboard, files.random}};
        ChatService service;
        ChatViewModel chat;
    };
    std::unique_ptr<Client> client_;
};

}
