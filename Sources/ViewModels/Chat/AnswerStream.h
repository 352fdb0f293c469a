#pragma once

#include "Chat/ExpectedAnswers.h"
#include "Chat/GenerationJournal.h"
#include "Chat/GenerationQueue.h"
#include "Chat/SilenceWatch.h"
#include "Scheduler.h"

#include <QDateTime>
#include <QObject>
#include <QSet>

namespace Korvi {

class ChatService;
class Clock;
class MessageListModel;

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
    };

    static constexpr auto flushInterval = std::chrono::milliseconds(80);
    // What is repeated is repeated at once.
    static constexpr auto replayTimeout = std::chrono::seconds(3);

    // What became of an answer.
    struct Ending {
        qint64 chatId = -1;
        bool wasOpen = false;
        bool createdChat = false;
    };

    AnswerStream(Dependencies dependencies, MessageListModel& shown, QObject* parent = nullptr);

    // Sends the question. The last two messages that are shown are it and its answer.
    void begin(Question question);
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
    bool isUnderWay(qint64 chatId) { return m_generations.firstOf(chatId) != nullptr; }
    bool isEmpty() const { return m_generations.isEmpty(); }
    void flush();

signals:
    void changed();  // isGenerating or the chats that generate
    void followed(); // the open conversation's text grew by enough to be followed
    void generatingChatsChanged(const QSet<qint64>& chatIds);
    void questionReturned(const QString& text); // it never reached the service, as far as one can tell
    void touched(qint64 chatId);                // what is known of the chat's messages is outdated
    void comparisonWanted(qint64 chatId);       // of its messages with those of the service

private:
    bool foldInto(Generation& generation, ChatMessage& answer); // whether it changed the answer
    Ending finish(Generation* generation);
    void settled(); // after every change of the queue
    void submitNext();
    void submit(Generation& generation);
    void joinFollowers(qint64 chatId);
    void giveBack(Generation& generation);
    void takeOffScreen(const Generation& generation);
    void takeNotice(Generation& generation);
    void doubt();
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
    MessageListModel& m_shown;
    GenerationQueue m_generations;
    ReplayGuard m_guard;
    GenerationJournal m_journal;
    ExpectedAnswers m_expected;
    SilenceWatch m_silence;
    QSet<qint64> m_answeredNewChats; // whose creation may be told again
    bool m_isGenerating = false;
    std::optional<QDateTime> m_lostAt; // when the line was lost
    Timer m_flushTimer;                // active while pieces keep coming
    Timer m_guardTimer;
};

}
