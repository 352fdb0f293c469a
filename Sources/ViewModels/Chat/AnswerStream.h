#pragma once

#include "Chat/ArtifactFinder.h"
#include "Chat/ConversationMessages.h"
#include "Chat/ExpectedAnswers.h"
#include "Chat/GenerationJournal.h"
#include "Chat/GenerationQueue.h"
#include "Chat/QuestionOutbox.h"
#include "Chat/SilenceWatch.h"
#include "Scheduler.h"

#include <QDateTime>
#include <QObject>
#include <QSet>

namespace Korvi {

class ChatService;
class Clock;
class MessageListModel;
class Random;

// The life of the answers: from the question to the end, through lost lines, other chats being opened, and restarts.
// Writes the open conversation's answer into the list that is shown, and the others' into their parked messages.
class AnswerStream : public QObject, private SilenceWatch::Listener {
    Q_OBJECT

public:
    struct Dependencies {
        ChatService& chatService;
        DataCacheManager& cache;
        Defaults& defaults;
        Scheduler& scheduler;
        Clock& clock;
        Random& random;
    };

    static constexpr auto flushInterval = std::chrono::milliseconds(80);
    // What is repeated is repeated at once.
    static constexpr auto replayTimeout = std::chrono::seconds(3);
    static constexpr auto imageTimeout = std::chrono::seconds(180);
    // After a failed image tool, without a word.
    static constexpr auto endTimeout = std::chrono::seconds(5);
    // An end that is not waited for may still come, as long as nothing was asked since.
    static constexpr auto overdueLife = std::chrono::minutes(10);

    // What became of an answer.
    struct Ending {
        qint64 chatId = -1;
        bool wasOpen = false;
        bool createdChat = false;
    };

    AnswerStream(Dependencies dependencies, MessageListModel& shown, QObject* parent = nullptr);

    // Sends the question. The last two messages that are shown are it and its answer. One that is held keeps its place
    // in the order until its files are there.
    enum class Files { none, onTheirWay };
    quint64 begin(Question question, Files files = Files::none);
    // The files of a held question are at the service; `places` are their addresses by those in the messages so far.
    void supply(quint64 serial, const QStringList& imageUrls, const std::vector<SocketFrame::File>& files,
        const QHash<QString, QString>& places);
    // Whether the held question says anything without its files.
    bool hasText(quint64 serial);
    bool hasImage(quint64 serial); // of its own, that was at the service before
    void withdraw(quint64 serial); // a held question has nothing left to say
    // The open conversation's answer, if one is running: what comes of it from now on is dropped. Its text stays.
    bool stop();
    // Another conversation is about to be shown: the answer goes on at the service and grows out of sight.
    void park();
    // Shows the messages of that chat, if an answer is under way in it.
    bool unpark(qint64 chatId);
    // Messages of the chat came in while its answer was growing, and were not shown.
    void noteMissingHistory(qint64 chatId);
    void forget(qint64 chatId); // the chat has been deleted
    void dropAll();             // what still comes is nobody's, but must not become another's

    // Takes up what was under way when the client ended last.
    void restore();
    // Another session of the same user: nothing is repeated to it.
    void forgetEnds() { m_guard.clear(); }
    void forgetJournal();
    void reset(); // another user, or none

    enum class Owner { none, open, parked };
    Owner created(qint64 chatId); // whose the new chat is
    void receive(const QString& piece, AnswerFold::Kind kind);
    void receive(const ToolFrame& frame);
    void connected();
    void disconnected();
    std::optional<Ending> end();
    std::optional<Ending> fail(std::optional<qint64> chatId);
    void heard() { m_silence.lineIsAlive(); } // anything of a stream

    // Compares what the service has stored with what has ended here. False when the list comes too early for that.
    bool compare(qint64 chatId, const std::vector<ChatMessage>& stored);
    QList<qint64> chatsToCompare() const { return m_expected.chats(); }
    void forgetExpected(qint64 chatId) { m_expected.forget(chatId); }

    bool isGenerating() const { return m_isGenerating; } // the open conversation's answer is running
    // Of the open conversation's running answer; null without one.
    const ToolWork* openTools();
    const std::optional<StreamedArtifact>& lastStreamedArtifact() const { return m_lastStreamedArtifact; }
    // The newest answer of that chat that is waited for; -1: of one that has no number yet. 0 without one.
    quint64 runningIn(qint64 chatId);
    // The chat of an answer that is waited for, -1 while it has no number. Absent when it has ended or was stopped.
    std::optional<qint64> chatOfRunning(quint64 serial);
    // The answer of that chat may have ended unheard: the service is asked.
    void lookAgain(qint64 chatId);
    // It is not waited for any more. What the service has of it, or will have, is what there is.
    void giveUp(qint64 chatId);
    bool isUnderWay(qint64 chatId) { return m_generations.firstOf(chatId) != nullptr; }
    bool isEmpty() const { return m_generations.isEmpty(); }
    void flush();

signals:
    void changed();  // isGenerating or the chats that generate
    void followed(); // the open conversation's text grew by enough to be followed
    void generatingChatsChanged(const QSet<qint64>& chatIds);
    void toolsChanged(); // openTools()
    void longTaskBegan(qint64 chatId, const QString& type);
    void answerReady(qint64 chatId, const QDateTime& askedAt);
    void filesReturned(quint64 serial);         // of a held question that does not go
    void questionReturned(const QString& text); // it never reached the service, as far as one can tell
    void touched(qint64 chatId);                // what is known of the chat's messages is outdated
    void comparisonWanted(qint64 chatId);       // of its messages with those of the service

private:
    void flushLater();
    Generation* addressee(); // whose a frame of an answer is; null when it is nobody's
    void watch(Generation& generation, ToolEvents::Wait wait);
    void imageIsLate(quint64 serial);
    void endIsLate(quint64 serial);
    void stopWaiting(Generation& generation);
    Ending finish(Generation* generation);
    void settled(); // after every change of the queue
    void giveBack(Generation& generation);
    void takeNotice(Generation& generation);
    void relaxLater();
    void saveJournal();

    // What was learned of an answer of which nothing was heard.
    const std::vector<ChatMessage>& messagesOf(const Generation& generation) const override;
    void arrived(Generation& generation) override;
    void answered(Generation& generation, const std::vector<ChatMessage>& stored) override;
    void ended(Generation& generation) override;
    void lost(Generation& generation) override;
    void returned(Generation& generation) override;

    Dependencies m_dependencies;
    GenerationQueue m_generations;
    ConversationMessages m_messages;
    QuestionOutbox m_outbox;
    ReplayGuard m_guard;
    GenerationJournal m_journal;
    ExpectedAnswers m_expected;
    SilenceWatch m_silence;
    std::optional<StreamedArtifact> m_lastStreamedArtifact;
    QSet<qint64> m_answeredNewChats; // whose creation may be told again
    bool m_isGenerating = false;
    bool m_mayBeShifted = false;       // an end may have been another's, and so may all that came since
    std::optional<QDateTime> m_lostAt; // when the line was lost
    Timer m_flushTimer;                // active while pieces keep coming
    Timer m_guardTimer;
};

}
