#pragma once

#include "Chat/GenerationQueue.h"
#include "Chat/ReplayGuard.h"

#include <QJsonArray>

namespace Korvi {

class DataCacheManager;
class Defaults;

// Remembers over a restart which answers are under way, so that they go on where they were, and which have ended
// lately. Kept in the settings store: for each generation its question and the two messages of its turn.
class GenerationJournal {
public:
    GenerationJournal(Defaults& defaults, DataCacheManager& cache);

    // `shown` are the messages of the open conversation.
    void save(const GenerationQueue& queue, const ReplayGuard& guard, const std::vector<ChatMessage>& shown);
    // The generations of the last run, parked, with the cached messages of their chats. What does not decode is left
    // out.
    std::vector<Generation> restore();
    std::vector<ReplayGuard::Ended> restoreEnded();
    void clear();

private:
    Defaults& m_defaults;
    DataCacheManager& m_cache;
    QJsonArray m_saved;
    QJsonArray m_savedEnded;
};

}
