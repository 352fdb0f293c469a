#pragma once

#include "TaskScope.h"

#include <functional>

namespace Korvi {

// The first load of the main screen's data: once, again only when forced, never twice at a time.
class ChatBootstrap {
public:
    enum class State { idle, running, finished };

    struct Dependencies {
        std::function<bool()> isAuthenticated;
        std::function<Task<void>()> loadData;
        std::function<void()> prefetchRelatedData; // after a load; returns at once
    };

    explicit ChatBootstrap(Dependencies dependencies);

    Task<void> bootstrapChatDataIfNeeded(bool force);
    // The main screen is gone; the next one begins anew. Not while a load runs.
    void reset() { m_state = State::idle; }

    State state() const { return m_state; }

private:
    Dependencies m_dependencies;
    State m_state = State::idle;
};

}
