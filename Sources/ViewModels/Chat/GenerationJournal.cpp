#include "Chat/GenerationJournal.h"

#include "Cache/DataCacheManager.h"
#include "Chat/MessageComposition.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcJournal, "korvi.chat.journal", QtInfoMsg)

namespace {

const auto journalKey = u"runningGenerations"_s;

struct Entry {
    Question question;
    qint64 chatId = -1;
    bool isStopped = false;
    std::vector<ChatMessage> turn; // question and answer as they are shown

    static Entry fromJson(const JsonReader& json) {
        const JsonReader asked = json.object("question"_L1);
        QStringList imageUrls;
        for (const QJsonValue url : asked.raw().value("imageUrls"_L1).toArray())
            imageUrls.append(url.toString());
        return {
            .question = {.chatId = asked.integer("chatId"_L1),
                .model = asked.string("model"_L1),
                .text = asked.string("text"_L1),
                .imageUrls = imageUrls,
                .projectId = asked.optionalInteger("projectId"_L1)},
            .chatId = json.integer("chatId"_L1),
            .isStopped = json.boolean("isStopped"_L1),
            .turn = json.array<ChatMessage>("turn"_L1),
        };
    }
    QJsonObject toJson() const {
        QJsonObject asked{{"chatId"_L1, question.chatId}, {"model"_L1, question.model}, {"text"_L1, question.text},
            {"imageUrls"_L1, QJsonArray::fromStringList(question.imageUrls)}};
        insertIfPresent(asked, "projectId"_L1, question.projectId);
        return {
            {"question"_L1, asked}, {"chatId"_L1, chatId}, {"isStopped"_L1, isStopped}, {"turn"_L1, toJsonArray(turn)}};
    }
};

// The answer begins anew: the service sends it from its beginning.
ChatMessage emptied(ChatMessage answer) {
    answer.content = std::vector<MessageContent>{{MessageContent::Text{}}};
    return answer;
}

}

GenerationJournal::GenerationJournal(Defaults& defaults, DataCacheManager& cache)
    : m_defaults(defaults)
    , m_cache(cache) {}

void GenerationJournal::save(const GenerationQueue& queue, const std::vector<ChatMessage>& shown) {
    std::vector<Entry> entries;
    for (const Generation& generation : queue.all()) {
        const std::vector<ChatMessage>& messages = generation.isOpen ? shown : generation.parked;
        Entry entry{.question = generation.question,
            .chatId = generation.chatId,
            .isStopped = generation.state != Generation::State::running,
            .turn = {}};
        if (messages.size() >= 2 && !entry.isStopped)
            entry.turn = {messages[messages.size() - 2], emptied(messages.back())};
        entries.push_back(std::move(entry));
    }
    QJsonArray saved = toJsonArray(entries);
    if (saved == m_saved)
        return;
    m_saved = std::move(saved);
    if (entries.empty())
        m_defaults.remove(journalKey);
    else
        m_cache.saveToDisk(m_saved, journalKey);
}

void GenerationJournal::clear() {
    m_saved = {};
    m_defaults.remove(journalKey);
}

std::vector<Generation> GenerationJournal::restore() {
    std::vector<Generation> generations;
    for (Entry& entry : m_cache.loadFromDisk<Entry>(journalKey).value_or(std::vector<Entry>())) {
        Generation generation;
        generation.chatId = entry.chatId;
        generation.question = entry.question;
        generation.isOpen = false;
        generation.isRestored = true;
        if (entry.isStopped || entry.turn.size() != 2) {
            generation.state = Generation::State::stopped;
        } else {
            if (entry.chatId > 0)
                generation.parked = m_cache.getCachedMessages(entry.chatId).value_or(std::vector<ChatMessage>());
            const bool hasQuestion = !generation.parked.empty() &&
                generation.parked.back().role == ChatMessage::Role::user &&
                generation.parked.back().content == entry.turn.front().content;
            if (!hasQuestion)
                generation.parked.push_back(std::move(entry.turn.front()));
            generation.parked.push_back(std::move(entry.turn.back()));
            generation.lengthWithAnswer = generation.parked.size();
        }
        generations.push_back(std::move(generation));
    }
    if (!generations.empty())
        qCInfo(lcJournal) << "💾 [ChatViewModel] Answers under way at the last end:" << generations.size();
    return generations;
}

}
