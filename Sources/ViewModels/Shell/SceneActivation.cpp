#include "Shell/SceneActivation.h"

#include "Clock.h"
#include "Shell/AuthViewModel.h"
#include "Shell/ReviewManager.h"

namespace Korvi {

SceneActivation::SceneActivation(AuthViewModel& auth, ReviewManager& reviews, Clock& clock, QObject* parent)
    : QObject(parent)
    , m_auth(auth)
    , m_reviews(reviews)
    , m_clock(clock) {
    connect(&m_auth, &AuthViewModel::isInitialCheckCompleteChanged, this, [this] { m_checkedAt = m_clock.now(); });
}

SceneActivation::~SceneActivation() = default;

void SceneActivation::becameActive() {
    if (!wasJustChecked()) {
        // Of two at a time the older is not needed.
        m_scope.cancel();
        m_scope.start([this] { return m_auth.refreshUserData(); });
    }
    m_reviews.recordSession();
    m_reviews.requestReviewIfAppropriate();
}

bool SceneActivation::wasJustChecked() const {
    return m_checkedAt.isValid() && m_clock.now() - m_checkedAt < freshAfterCheck;
}

}
