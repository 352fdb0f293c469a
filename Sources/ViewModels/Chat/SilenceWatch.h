#pragma once

#include "ChatMessage.h"
#include "Scheduler.h"
#include "TaskScope.h"

#include <QDateTime>

namespace Korvi {

class ChatService;
class Clock;
class GenerationQueue;
struct Generation;

// What to do when nothing is heard of an answer. The messages of its chat tell whether the question has arrived, and
// whether the answer is there; what follows from that is the listener's to do. Main thread only.
class SilenceWatch {
public:
    // A service that has something to repeat does so at once. What stays silent that long after a connect is asked
    // for over REST, and what the service does not know after another while is sent again.
    static constexpr auto silenceTimeout = std::chrono::seconds(3);
    static constexpr auto resendTimeout = std::chrono::seconds(7);
    static constexpr auto creationTimeout = std::chrono::seconds(27);
    static constexpr auto patience = std::chrono::seconds(30);
    static constexpr auto reconnectTimeout = std::chrono::seconds(120);

    class Listener {
    public:
        // The conversation as it is known here.
        virtual const std::vector<ChatMessage>& messagesOf(const Generation& generation) const = 0;
        virtual void arrived(Generation& generation) = 0; // the service has the question and is at work
        virtual void answered(Generation& generation, const std::vector<ChatMessage>& stored) = 0;
        virtual void ended(Generation& generation) = 0;    // though its end was not heard here
        virtual void lost(Generation& generation) = 0;     // the question is to be sent again
        virtual void returned(Generation& generation) = 0; // the question is not to be sent again

    protected:
        ~Listener() = default;
    };

    struct Dependencies {
        ChatService& chatService;
        Scheduler& scheduler;
        Clock& clock;
    };

    SilenceWatch(Dependencies dependencies, GenerationQueue& generations, Listener& listener);

    // The line is up again. After `wasAwayTooLong` the service does not repeat what has ended meanwhile.
    void connected(bool wasAwayTooLong);
    void lineIsAlive() { m_reconnectTimer.cancel(); }
    void heardOf(const Generation& generation);
    // Nothing may come any more of the answer that is waited for.
    void listen();
    // Perhaps the answer that is waited for has just ended.
    void ask();
    bool isListening() const { return m_silenceTimer.isActive(); }
    // An error came before anything else did: was the question refused, and is it stored nowhere?
    void askAboutRefusal(quint64 serial);
    void waitOn(); // as long as there are generations
    void rest();   // when there are none any more
    void cancel(); // whatever was to be asked

private:
    Generation* awaited() const;                     // of which nothing is heard
    std::chrono::seconds unheardFor(quint64 serial); // since it was asked about first
    void giveUp();
    void askLater(std::chrono::seconds delay, bool mayResend);
    Task<void> askAboutSilence(bool mayResend);
    Task<void> askWhetherComplete(bool evenIfHeard);
    Task<void> settleRefusal(quint64 serial);
    // Absent when the service cannot be asked.
    Task<std::optional<std::vector<ChatMessage>>> storedMessages(qint64 chatId);
    bool isComplete(const Generation& generation, const std::vector<ChatMessage>& stored) const;
    bool knows(const std::vector<ChatMessage>& stored, const Generation& generation) const;

    Dependencies m_dependencies;
    GenerationQueue& m_generations;
    Listener& m_listener;
    bool m_isSilent = false; // nothing came of the current answer since the line is up
    bool m_heardLately = false;
    bool m_wasAwayTooLong = false;
    struct Unheard {
        quint64 serial;
        QDateTime since;
    };
    std::optional<Unheard> m_unheard;
    Timer m_reconnectTimer;
    Timer m_silenceTimer;
    Timer m_patienceTimer; // active while an answer is waited for
    TaskScope m_scope;     // last: its tasks end before anything they use
};

}
