#pragma once

#include "TaskScope.h"

#include <QDateTime>
#include <QObject>

#include <chrono>

namespace Korvi {

class AuthViewModel;
class Clock;
class ReviewManager;

// What the application does whenever it comes to the front: it looks whether anything about the user has changed,
// and counts.
class SceneActivation : public QObject {
    Q_OBJECT

public:
    // The first check at the start has just asked for the user: an activation so soon after it need not.
    static constexpr auto freshAfterCheck = std::chrono::seconds(10);

    SceneActivation(AuthViewModel& auth, ReviewManager& reviews, Clock& clock, QObject* parent = nullptr);
    ~SceneActivation() override;

    void becameActive();

private:
    bool wasJustChecked() const;

    AuthViewModel& m_auth;
    ReviewManager& m_reviews;
    Clock& m_clock;
    QDateTime m_checkedAt; // invalid until the first check is over
    TaskScope m_scope;     // last: its tasks end before anything they use
};

}
