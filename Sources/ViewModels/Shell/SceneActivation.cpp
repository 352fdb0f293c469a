#include "Shell/SceneActivation.h"

#include "Chat/ChatViewModel.h"
#include "Clock.h"
#include "Shell/AuthViewModel.h"
#include "Shell/ReviewManager.h"
#include "SleepMonitor.h"

namespace Korvi {

SceneActivation::SceneActivation(AuthViewModel& auth, ChatViewModel& chat, ReviewManager& reviews, SleepMonitor& sleep,
    Clock& clock, QObject* parent)
    : QObject(parent)
    , m_auth(auth)
    , m_chat(chat)
    , m_reviews(reviews)
    , m_clock(clock) {
    connect(&m_auth, &AuthViewModel::isInitialCheckCompleteChanged, this, [this] { m_checkedAt = m_clock.now(); });
    connect(&sleep, &SleepMonitor::awoke, &m_chat, &ChatViewModel::recoverFromBackground);
}

SceneActivation::~SceneActivation() = default;

void SceneActivation::becameActive() {
    if (!wasJustChecked()) {
        // Of two at a time the older is not needed.
        m_scope.cancel();
        m_scope.start([this] { return m_auth.refreshUserData(); });
    }
    if (std::exchange(m_wasAway, false))
        m_chat.recoverFromBackground();
    m_reviews.recordSession();
    m_reviews.requestReviewIfAppropriate();
}

bool SceneActivation::wasJustChecked() const {
    return m_checkedAt.isValid() && m_clock.now() - m_checkedAt < freshAfterCheck;
}

}
