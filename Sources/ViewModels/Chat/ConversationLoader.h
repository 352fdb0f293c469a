#pragma once

#include "Chat/MessageLoader.h"

#include <QProperty>

namespace Korvi {

class AnswerStream;
class DataCacheManager;
class MessageListModel;

// Brings what the service has stored of the chats to where it belongs: into the list that is shown, into the cache, and
// before the answers that have ended in doubt. While an answer is growing, what is shown stays. Main thread only.
class ConversationLoader : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        ChatService& chatService;
        DataCacheManager& cache;
        Scheduler& scheduler;
    };

    ConversationLoader(Dependencies dependencies, AnswerStream& stream, MessageListModel& shown);

    void open(qint64 chatId);    // it is shown, as it was cached; -1: a new chat has no messages to come
    void created(qint64 chatId); // the new chat that is shown
    qint64 openChatId() const { return m_openChatId; }
    void load(qint64 chatId) { m_loader.load(chatId); }
    Task<void> loadNow(qint64 chatId) { return m_loader.loadNow(chatId); }
    // The open chat's, and the artifact that was seen being written stays if it is not among them.
    void loadAnswer(qint64 chatId);
    void connected(); // the line is up: what is missing is asked for
    void clear();     // what is on its way is not wanted

    // The open chat's messages are those of the service, not only what was cached.
    bool areMessagesLoaded() const { return m_areMessagesLoaded; }
    QBindable<bool> bindableAreMessagesLoaded() { return &m_areMessagesLoaded; }

signals:
    void areMessagesLoadedChanged();

private:
    void loaded(qint64 chatId, const std::vector<ChatMessage>& messages);
    void failed(qint64 chatId, bool isGone);
    void show(std::vector<ChatMessage> messages);

    Dependencies m_dependencies;
    AnswerStream& m_stream;
    MessageListModel& m_shown;
    MessageLoader m_loader;
    qint64 m_openChatId = -1;
    std::optional<qint64> m_restoresArtifactOf;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(
        ConversationLoader, bool, m_areMessagesLoaded, true, &ConversationLoader::areMessagesLoadedChanged)
};

}
