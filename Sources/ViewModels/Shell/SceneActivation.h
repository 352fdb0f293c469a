#pragma once

#include "TaskScope.h"

#include <QDateTime>
#include <QObject>

#include <chrono>

namespace Korvi {

class AuthViewModel;
class ChatViewModel;
class Clock;
class ReviewManager;
class SleepMonitor;

// What the application does whenever it comes to the front: it looks whether anything about the user has changed,
// and counts. After having been away, and after the machine's sleep, it finds out what became of the answer.
class SceneActivation : public QObject {
    Q_OBJECT

public:
    // The first check at the start has just asked for the user: an activation so soon after it need not.
    static constexpr auto freshAfterCheck = std::chrono::seconds(10);

    SceneActivation(AuthViewModel& auth, ChatViewModel& chat, ReviewManager& reviews, SleepMonitor& sleep, Clock& clock,
        QObject* parent = nullptr);
    ~SceneActivation() override;

    void becameActive();
    void becameInactive() { m_wasAway = true; }

private:
    bool wasJustChecked() const;

    AuthViewModel& m_auth;
    ChatViewModel& m_chat;
    ReviewManager& m_reviews;
    Clock& m_clock;
    bool m_wasAway = false;
    QDateTime m_checkedAt; // invalid until the first check is over
    TaskScope m_scope;     // last: its tasks end before anything they use
};

}
