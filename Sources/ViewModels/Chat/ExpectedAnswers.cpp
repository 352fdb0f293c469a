#include "Chat/ExpectedAnswers.h"

#include "Cache/DataCacheManager.h"
#include "Chat/MessageComposition.h"

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto expectedKey = u"expectedAnswers"_s;

struct Entry {
    ExpectedAnswers::Expected expected;

    static Entry fromJson(const JsonReader& json) {
        return {{.chatId = json.integer("chatId"_L1),
            .question = json.string("question"_L1),
            .timesAsked = json.integer("timesAsked"_L1),
            .mayBeMissing = json.boolean("mayBeMissing"_L1)}};
    }
    QJsonObject toJson() const {
        return {{"chatId"_L1, expected.chatId}, {"question"_L1, expected.question},
            {"timesAsked"_L1, expected.timesAsked}, {"mayBeMissing"_L1, expected.mayBeMissing}};
    }
};

}

ExpectedAnswers::ExpectedAnswers(Defaults& defaults, DataCacheManager& cache)
    : m_defaults(defaults)
    , m_cache(cache) {}

void ExpectedAnswers::restore() {
    m_expected.clear();
    for (Entry& entry : m_cache.loadFromDisk<Entry>(expectedKey).value_or(std::vector<Entry>()))
        m_expected.push_back(std::move(entry.expected));
}

void ExpectedAnswers::add(Expected expected) {
    m_expected.push_back(std::move(expected));
    save();
}

ExpectedAnswers::Comparison ExpectedAnswers::compare(qint64 chatId, const std::vector<ChatMessage>& stored) {
    Comparison comparison;
    const auto before = m_expected.size();
    std::erase_if(m_expected, [&](const Expected& each) {
        if (each.chatId != chatId)
            return false;
        if (each.mayBeMissing && MessageComposition::timesAsked(stored, each.question) < each.timesAsked) {
            comparison.missing.append(each.question);
            return true;
        }
        const bool isThere = MessageComposition::answerTo(stored, each.question, each.timesAsked) != nullptr;
        comparison.isTooEarly = comparison.isTooEarly || !isThere;
        return isThere;
    });
    if (m_expected.size() != before)
        save();
    return comparison;
}

void ExpectedAnswers::forget(qint64 chatId) {
    if (std::erase_if(m_expected, [chatId](const Expected& each) { return each.chatId == chatId; }) > 0)
        save();
}

void ExpectedAnswers::clear() {
    m_expected.clear();
    m_defaults.remove(expectedKey);
}

QList<qint64> ExpectedAnswers::chats() const {
    QList<qint64> ids;
    for (const Expected& each : m_expected) {
        if (!ids.contains(each.chatId))
            ids.append(each.chatId);
    }
    return ids;
}

void ExpectedAnswers::save() {
    if (m_expected.empty())
        return m_defaults.remove(expectedKey);
    std::vector<Entry> entries;
    for (const Expected& each : m_expected)
        entries.push_back({each});
    m_cache.saveToDisk(toJsonArray(entries), expectedKey);
}

}
