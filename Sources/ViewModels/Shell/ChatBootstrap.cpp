#include "Shell/ChatBootstrap.h"

namespace Korvi {

ChatBootstrap::ChatBootstrap(Dependencies dependencies)
    : m_dependencies(std::move(dependencies)) {}

Task<void> ChatBootstrap::bootstrapChatDataIfNeeded(bool force) {
    if (!m_dependencies.isAuthenticated() || m_state == State::running || (m_state == State::finished && !force))
        co_return;
    const State before = std::exchange(m_state, State::running);
    try {
        co_await m_dependencies.loadData();
    } catch (...) {
        m_state = before;
        throw;
    }
    m_state = State::finished;
    m_dependencies.prefetchRelatedData();
}

}
