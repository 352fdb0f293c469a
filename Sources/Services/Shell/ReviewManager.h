#pragma once

#include "TaskScope.h"

#include <chrono>

class QString;

namespace Korvi {

class Clock;
class Defaults;
class Info;
class Scheduler;

// Decides when a user who has seen enough of the application would be asked for a review, and remembers that the
// moment was used. No dialog follows: the desktop has none to ask for.
class ReviewManager {
public:
    static constexpr qint64 firstSessionThreshold = 4;
    static constexpr qint64 firstMessageThreshold = 10;
    static constexpr qint64 recurringMessageInterval = 50;
    static constexpr int minDaysBetweenPrompts = 30;
    static constexpr auto delay = std::chrono::seconds(2);

    ReviewManager(Defaults& defaults, const Info& info, Clock& clock, Scheduler& scheduler);
    ~ReviewManager();

    void recordSession();
    void recordMessage();
    void requestReviewIfAppropriate();

private:
    bool canPrompt() const;
    void add(const QString& key);
    qint64 count(const QString& key) const;
    Task<void> prompt();
    void remember();

    Defaults& m_defaults;
    const Info& m_info;
    Clock& m_clock;
    Scheduler& m_scheduler;
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
