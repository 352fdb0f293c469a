#pragma once

#include "ChatMessage.h"

#include <QJsonArray>
#include <QStringList>

namespace Korvi {

class DataCacheManager;
class Defaults;

// Answers that have ended here in doubt: their frames may have been repeated or incomplete, and their end may have been
// another's. What the service has stored tells; until it has been seen they are remembered, also over a restart.
class ExpectedAnswers {
public:
    struct Expected {
        qint64 chatId = -1;
        QString question;
        qint64 timesAsked = 1;     // this question in its chat, this time included
        bool mayBeMissing = false; // the question itself, for it may never have arrived

        bool operator==(const Expected&) const = default;
    };
    struct Comparison {
        bool isTooEarly = false; // an answer is not stored yet
        QStringList missing;     // questions that are not there
    };

    ExpectedAnswers(Defaults& defaults, DataCacheManager& cache);

    void restore();
    void add(Expected expected);
    // What is there, or is missing, is expected no longer.
    Comparison compare(qint64 chatId, const std::vector<ChatMessage>& stored);
    void forget(qint64 chatId);
    void clear();
    QList<qint64> chats() const; // in which something is expected

private:
    void save();

    Defaults& m_defaults;
    DataCacheManager& m_cache;
    std::vector<Expected> m_expected; // in the order of their ends
};

}
