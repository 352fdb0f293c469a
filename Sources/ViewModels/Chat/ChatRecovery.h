#pragma once

#include "Chat/GenerationStateManager.h"
#include "Scheduler.h"

#include <QObject>
#include <QProperty>

#include <functional>

namespace Korvi {

class AnswerStream;

// Keeps the record of the question that was asked last until its answer is there, over a restart too, and finds out
// what became of the answer while nobody looked. Main thread only.
class ChatRecovery : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        ChatService& chatService;
        Defaults& defaults;
        Clock& clock;
        Scheduler& scheduler;
    };
    struct Completed {
        qint64 chatId = -1;
        QString chatName;

        bool operator==(const Completed&) const = default;
    };

    static constexpr auto completedTime = std::chrono::seconds(5);

    // `nameOf` a chat, empty when it is not known.
    ChatRecovery(Dependencies dependencies, AnswerStream& stream, std::function<QString(qint64)> nameOf);

    // Before a question is asked: in a chat with so many messages, or in a new one (-1).
    void noteQuestion(qint64 chatId, qint64 messageCount, const QString& type);
    void follow(quint64 serial); // the answer of the question noted last
    void restore();              // what was noted before the last end, once the stream has been restored
    void streamChanged();

    // The application has come back to the front, or the machine from its sleep. `open` tells, when asked, the open chat.
    void recover(std::function<qint64()> open);
    void reset();

    bool isRecovering() const { return m_isRecovering; }
    QBindable<bool> bindableIsRecovering() { return &m_isRecovering; }
    // An answer that came in another chat than the open one; for a moment.
    const std::optional<Completed>& completedInOtherChat() const { return m_completed; }
    void setCompletedInOtherChat(std::optional<Completed> completed);

signals:
    void isRecoveringChanged();
    void completedInOtherChatChanged();
    void generationEnded();                 // of the question that was asked last
    void storedAnswerWanted(qint64 chatId); // the open chat's answer is at the service

private:
    // The answer that the record is of.
    struct Followed {
        quint64 serial = 0;
        bool hasChat = false;
    };

    Task<void> findOut(std::function<qint64()> open);
    void answerIsThere(qint64 chatId, qint64 openChatId, const std::optional<QString>& chatName);

    Dependencies m_dependencies;
    AnswerStream& m_stream;
    std::function<QString(qint64)> m_nameOf;
    GenerationStateManager m_record;
    std::optional<Followed> m_followed;
    std::optional<Completed> m_completed;
    Timer m_completedTimer;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ChatRecovery, bool, m_isRecovering, false, &ChatRecovery::isRecoveringChanged)
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
