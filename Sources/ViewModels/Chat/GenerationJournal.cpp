#include "Chat/GenerationJournal.h"

#include "Cache/DataCacheManager.h"
#include "Chat/MessageComposition.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcJournal, "korvi.chat.journal", QtInfoMsg)

namespace {

const auto journalKey = u"runningGenerations"_s;
const auto endedKey = u"endedGenerations"_s;

struct EndedEntry {
    ReplayGuard::Ended answer;

    static EndedEntry fromJson(const JsonReader& json) {
        return {{.chatId = json.integer("chatId"_L1),
            .textHead = json.string("textHead"_L1),
            .thinkingTail = json.string("thinkingTail"_L1),
            .at = QDateTime::fromMSecsSinceEpoch(json.integer("at"_L1), Qt::UTC),
            .toolHead = json.optionalString("toolHead"_L1).value_or(QString()).toULongLong()}};
    }
    QJsonObject toJson() const {
        return {{"chatId"_L1, answer.chatId}, {"textHead"_L1, answer.textHead},
            {"thinkingTail"_L1, answer.thinkingTail}, {"toolHead"_L1, QString::number(answer.toolHead)},
            {"at"_L1, answer.at.toMSecsSinceEpoch()}};
    }
};

struct FileEntry {
    SocketFrame::File file;

    static FileEntry fromJson(const JsonReader& json) {
        return {{.url = json.string("url"_L1),
            .filename = json.string("filename"_L1),
            .mimetype = json.string("mimetype"_L1)}};
    }
    QJsonObject toJson() const {
        return {{"url"_L1, file.url}, {"filename"_L1, file.filename}, {"mimetype"_L1, file.mimetype}};
    }
};

struct Entry {
    Question question;
    qint64 chatId = -1;
    bool isStopped = false;
    bool joins = false;
    bool isHeld = false;
    bool hasLeft = false;
    bool isHeard = false;
    bool wasDoubtful = false;
    bool isForgotten = false;
    qint64 timesAsked = 1;         // this question in its chat, this time included
    std::vector<ChatMessage> turn; // question and answer as they are shown

    static Entry fromJson(const JsonReader& json) {
        const JsonReader asked = json.object("question"_L1);
        QStringList imageUrls;
        for (const QJsonValue url : asked.raw().value("imageUrls"_L1).toArray())
            imageUrls.append(url.toString());
        std::vector<SocketFrame::File> files;
        for (FileEntry& entry : asked.optionalArray<FileEntry>("files"_L1).value_or(std::vector<FileEntry>()))
            files.push_back(std::move(entry.file));
        return {
            .question = {.chatId = asked.integer("chatId"_L1),
                .model = asked.string("model"_L1),
                .text = asked.string("text"_L1),
                .imageUrls = imageUrls,
                .files = files,
                .projectId = asked.optionalInteger("projectId"_L1)},
            .chatId = json.integer("chatId"_L1),
            .isStopped = json.boolean("isStopped"_L1),
            .joins = json.boolean("joins"_L1),
            .isHeld = json.optionalBoolean("isHeld"_L1).value_or(false),
            .hasLeft = json.boolean("hasLeft"_L1),
            .isHeard = json.boolean("isHeard"_L1),
            .wasDoubtful = json.boolean("wasDoubtful"_L1),
            .isForgotten = json.boolean("isForgotten"_L1),
            .timesAsked = json.integer("timesAsked"_L1),
            .turn = json.array<ChatMessage>("turn"_L1),
        };
    }
    QJsonObject toJson() const {
        QJsonObject asked{{"chatId"_L1, question.chatId}, {"model"_L1, question.model}, {"text"_L1, question.text},
            {"imageUrls"_L1, QJsonArray::fromStringList(question.imageUrls)}};
        insertIfPresent(asked, "projectId"_L1, question.projectId);
        QJsonArray files;
        for (const SocketFrame::File& file : question.files)
            files.append(FileEntry{file}.toJson());
        if (!files.isEmpty())
            asked.insert("files"_L1, files);
        return {{"question"_L1, asked}, {"chatId"_L1, chatId}, {"isStopped"_L1, isStopped}, {"joins"_L1, joins},
            {"isHeld"_L1, isHeld}, {"hasLeft"_L1, hasLeft}, {"isHeard"_L1, isHeard}, {"wasDoubtful"_L1, wasDoubtful},
            {"isForgotten"_L1, isForgotten}, {"timesAsked"_L1, timesAsked}, {"turn"_L1, toJsonArray(turn)}};
    }
};

// The messages may have been read from the service while the answer was growing: then they hold the question and what
// there was of its answer. False when the question is not among them.
bool cutBehind(std::vector<ChatMessage>& messages, const QString& question, qint64 timesAsked) {
    const auto found = std::find_if(messages.begin(), messages.end(),
        [&](const ChatMessage& message) { return MessageComposition::asks(message, question) && --timesAsked == 0; });
    if (found == messages.end())
        return false;
    messages.erase(found + 1, messages.end());
    return true;
}

// The line that a question left on is gone. One that had been refused is asked again.
Generation::Stage stageOf(const Entry& entry) {
    if (entry.isHeard)
        return Generation::Stage::heard;
    return entry.hasLeft ? Generation::Stage::doubtful : Generation::Stage::waiting;
}

// The answer begins anew: the service sends it from its beginning.
ChatMessage emptied(ChatMessage answer) {
    answer.content = std::vector<MessageContent>{{MessageContent::Text{}}};
    return answer;
}

}

GenerationJournal::GenerationJournal(Defaults& defaults, DataCacheManager& cache)
    : m_defaults(defaults)
    , m_cache(cache) {}

void GenerationJournal::save(
    const GenerationQueue& queue, const ReplayGuard& guard, const std::vector<ChatMessage>& shown) {
    std::vector<EndedEntry> ended;
    for (const ReplayGuard::Ended& answer : guard.recent())
        ended.push_back({answer});
    if (QJsonArray savedEnded = toJsonArray(ended); savedEnded != m_savedEnded) {
        m_savedEnded = std::move(savedEnded);
        m_cache.saveToDisk(m_savedEnded, endedKey);
    }
    std::vector<Entry> entries;
    for (const Generation& generation : queue.all()) {
        const std::vector<ChatMessage>& messages = generation.isOpen ? shown : generation.parked;
        Entry entry{.question = generation.question,
            .chatId = generation.chatId,
            .isStopped = generation.state != Generation::State::running,
            .joins = generation.joins,
            .isHeld = generation.isHeld,
            .hasLeft = generation.hasLeft(),
            .isHeard = generation.isHeard(),
            .wasDoubtful = generation.wasDoubtful,
            .isForgotten = generation.isForgotten,
            .timesAsked = generation.timesAsked,
            .turn = {}};
        if (messages.size() >= 2 && !entry.isStopped) {
            entry.turn = {messages[messages.size() - 2], emptied(messages.back())};
        }
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
    m_savedEnded = {};
    m_defaults.remove(journalKey);
    m_defaults.remove(endedKey);
}

std::vector<Generation> GenerationJournal::restore() {
    std::vector<Generation> generations;
    for (Entry& entry : m_cache.loadFromDisk<Entry>(journalKey).value_or(std::vector<Entry>())) {
        Generation generation;
        generation.chatId = entry.chatId;
        generation.question = entry.question;
        generation.timesAsked = entry.timesAsked;
        generation.isForgotten = entry.isForgotten;
        generation.isOpen = false;
        generation.isRestored = true;
        generation.lacksHistory = true;
        generation.sawReconnect = entry.hasLeft;
        generation.joins = entry.joins;
        generation.isHeld = entry.isHeld;
        generation.stage = stageOf(entry);
        generation.wasDoubtful = entry.wasDoubtful || generation.isDoubtful();
        if (entry.isStopped || entry.turn.size() != 2) {
            generation.state = entry.chatId > 0 ? Generation::State::stopped : Generation::State::stopRequested;
        } else {
            if (entry.chatId > 0)
                generation.parked = m_cache.getCachedMessages(entry.chatId).value_or(std::vector<ChatMessage>());
            if (!cutBehind(generation.parked, entry.question.text, entry.timesAsked))
                generation.parked.push_back(std::move(entry.turn.front()));
            generation.parked.push_back(std::move(entry.turn.back()));
        }
        generations.push_back(std::move(generation));
    }
    if (!generations.empty())
        qCInfo(lcJournal) << "💾 [ChatViewModel] Answers under way at the last end:" << generations.size();
    return generations;
}

std::vector<ReplayGuard::Ended> GenerationJournal::restoreEnded() {
    std::vector<ReplayGuard::Ended> answers;
    for (EndedEntry& entry : m_cache.loadFromDisk<EndedEntry>(endedKey).value_or(std::vector<EndedEntry>()))
        answers.push_back(std::move(entry.answer));
    return answers;
}

}
