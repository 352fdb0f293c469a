#pragma once

#include "FakeHttp.h"
#include "FakeSocket.h"
#include "SimulatedAnswer.h"
#include "VirtualScheduler.h"

#include <QJsonDocument>

#include <deque>
#include <map>

namespace Korvi::Test {

// The service as one session meets it, one step at a time: answers are written side by side and delivered one after
// the other; what was not confirmed is sent again on the next connection, text and what tools told from the beginning,
// reasoning piece by piece; an answer that is being written is not yet among the messages of its chat; one that ended
// more than 120 seconds ago is no longer repeated. A line can lose what is on it before it breaks.
class SimulatedService {
public:
    struct Message {
        bool isUser = false;
        QJsonArray content;
        SimulatedPieces pieces = {}; // of an answer
    };
    struct Script {
        SimulatedPieces pieces;
        bool fails = false; // it ends with an error
    };

    SimulatedService(FakeHttp& http, FakeWebSocketTransport& sockets, VirtualScheduler& virtualTime)
        : m_http(http)
        , m_sockets(sockets)
        , m_time(virtualTime) {}

    std::function<Script()> script; // of the next answer

    const std::map<int, std::vector<Message>>& chats() const { return m_chats; }
    bool isIdle() const { return m_outbox.empty(); }
    bool isOpen() const { return m_isAccepted && m_seen == m_sockets.count() && !connection().hasEnded; }

    // Each does something if there is something to do, and says whether.
    bool accept() {
        if (m_sockets.count() == 0 || m_seen == m_sockets.count() || connection().hasEnded || !connection().socket)
            return false;
        m_seen = m_sockets.count();
        m_isAccepted = true;
        m_isDoomed = false;
        m_read = 0;
        std::erase_if(m_outbox, [this](const Answer& answer) {
            return answer.hasEnded && m_time.elapsed() - answer.endedAt > std::chrono::seconds(120);
        });
        m_cursor = {};
        m_sockets.accept();
        return true;
    }
    // From now on nothing arrives, in either direction, and neither end knows.
    void doom() { m_isDoomed = true; }
    bool isDoomed() const { return m_isDoomed; }
    bool breakLine() {
        if (!isOpen())
            return false;
        m_isAccepted = false;
        m_sockets.breakOff();
        return true;
    }
    bool readFrame() {
        if (!isOpen() || m_read >= connection().frames.size())
            return false;
        const QString frame = connection().frames.at(m_read++);
        if (!m_isDoomed)
            take(QJsonDocument::fromJson(frame.toUtf8()).object());
        return true;
    }
    bool write(unsigned which) {
        std::vector<Answer*> running;
        for (Answer& answer : m_outbox) {
            if (!answer.hasEnded)
                running.push_back(&answer);
        }
        if (running.empty())
            return false;
        Answer& answer = *running[which % running.size()];
        if (answer.written < answer.pieces.size())
            ++answer.written;
        else
            endAnswer(answer, false);
        return true;
    }
    bool deliver() {
        if (!isOpen())
            return false;
        const auto frame = nextFrame();
        if (!frame)
            return false;
        qInfo().noquote() << ":: service sends" << (m_isDoomed ? "into nothing" : "")
                          << QJsonDocument(*frame).toJson(QJsonDocument::Compact);
        if (!m_isDoomed)
            m_sockets.push(QString::fromUtf8(QJsonDocument(*frame).toJson(QJsonDocument::Compact)));
        return true;
    }
    // The client has answered a ping that was sent behind everything so far.
    bool confirm() {
        if (!isOpen() || m_isDoomed)
            return false;
        for (; m_cursor.answer > 0; --m_cursor.answer)
            m_outbox.pop_front();
        if (m_outbox.empty())
            return true;
        if (m_cursor.isAtEnd) {
            m_outbox.pop_front();
            m_cursor = {};
            return true;
        }
        Answer& answer = m_outbox.front();
        answer.isCreateConfirmed = answer.isCreateConfirmed || m_cursor.toldOfChat;
        answer.confirmed = std::max(answer.confirmed, m_cursor.piece);
        return true;
    }
    // Works out the answer to the oldest open request; respond() hands it over, perhaps much later.
    bool serve() {
        for (std::size_t i = 0; i < m_http.count(); ++i) {
            FakeHttp::Exchange& exchange = m_http.at(i);
            if (!exchange.isOpen() || std::any_of(m_served.begin(), m_served.end(), [&](const auto& each) {
                    return each.first == &exchange;
                }))
                continue;
            m_served.emplace_back(&exchange, bodyFor(exchange.line()));
            return true;
        }
        return false;
    }
    bool respond() {
        while (!m_served.empty()) {
            FakeHttp::Exchange& exchange = *m_served.front().first;
            const QByteArray body = m_served.front().second;
            m_served.pop_front();
            if (!exchange.isOpen())
                continue;
            exchange.answer(body);
            return true;
        }
        return false;
    }

private:
    struct Answer {
        int chat = 0;
        bool createsChat = false;
        std::size_t message = 0; // index of the question in its chat
        SimulatedPieces pieces;
        bool fails = false;
        std::size_t written = 0;
        std::size_t confirmed = 0;
        bool isCreateConfirmed = false;
        bool hasEnded = false;
        std::chrono::milliseconds endedAt{};
    };
    struct Cursor {
        std::size_t answer = 0;
        std::size_t piece = 0;
        std::optional<std::size_t> lastThinking;
        bool toldOfChat = false;
        bool isAtEnd = false;
    };

    FakeConnection& connection() const { return m_sockets.connection(); }

    void take(const QJsonObject& frame) {
        const QString event = frame["event"].toString();
        qInfo().noquote() << ":: service reads" << QJsonDocument(frame).toJson(QJsonDocument::Compact);
        const QJsonObject data = frame["data"].toObject();
        int chat = data["chatId"].toInt();
        if (event == QLatin1String("abort")) {
            for (Answer& answer : m_outbox) {
                if (answer.chat == chat && !answer.hasEnded)
                    endAnswer(answer, true);
            }
            return;
        }
        Answer answer;
        answer.createsChat = event == QLatin1String("create");
        if (answer.createsChat)
            chat = ++m_lastChat;
        answer.chat = chat;
        answer.message = m_chats[chat].size();
        Script next = script();
        answer.pieces = std::move(next.pieces);
        answer.fails = next.fails;
        m_chats[chat].push_back({true, data["content"].toArray()});
        m_outbox.push_back(std::move(answer));
    }

    void endAnswer(Answer& answer, bool isAborted) {
        answer.pieces.resize(answer.written);
        answer.hasEnded = true;
        answer.fails = answer.fails && !isAborted;
        answer.endedAt = m_time.elapsed();
        const bool isComplete = !answer.fails && !isAborted;
        const Message message{false, SimulatedContent::of(answer.pieces, answer.written, isComplete), answer.pieces};
        auto& messages = m_chats[answer.chat];
        messages.insert(messages.begin() + static_cast<std::ptrdiff_t>(answer.message) + 1, message);
        for (Answer& other : m_outbox) {
            if (&other != &answer && other.chat == answer.chat && other.message > answer.message)
                ++other.message;
        }
    }

    QJsonObject chatJson(int id) const {
        return {{"id", id}, {"name", QStringLiteral("Чат %1").arg(id)}, {"mode", "aiplus"}, {"createdAt", "c"},
            {"updatedAt", QString::number(id)}, {"userId", "u"}};
    }

    std::optional<QJsonObject> nextFrame() {
        const auto frame = [](const char* event, const QJsonObject& data) {
            return QJsonObject{{"event", event}, {"data", data}};
        };
        while (m_cursor.answer < m_outbox.size()) {
            const Answer& answer = m_outbox[m_cursor.answer];
            if (m_cursor.isAtEnd) {
                ++m_cursor.answer;
                m_cursor = {.answer = m_cursor.answer, .lastThinking = {}};
                continue;
            }
            if (answer.createsChat && !answer.isCreateConfirmed && !m_cursor.toldOfChat) {
                m_cursor.toldOfChat = true;
                return frame("create", chatJson(answer.chat));
            }
            while (m_cursor.piece < answer.written) {
                const SimulatedPiece& piece = answer.pieces[m_cursor.piece];
                const bool isThinking = piece.kind == SimulatedPiece::Kind::thinking;
                if (isThinking) {
                    if (m_cursor.piece < answer.confirmed) {
                        ++m_cursor.piece;
                        continue;
                    }
                    if (m_cursor.lastThinking && *m_cursor.lastThinking >= answer.confirmed)
                        return std::nullopt;
                    m_cursor.lastThinking = m_cursor.piece;
                }
                ++m_cursor.piece;
                if (piece.kind == SimulatedPiece::Kind::tool)
                    return piece.frame;
                return frame(isThinking ? "thinking" : "chunk", {{"content", piece.text}});
            }
            if (!answer.hasEnded)
                return std::nullopt;
            m_cursor.isAtEnd = true;
            if (answer.fails)
                return frame("error", {{"message", "Не вышло."}, {"chatId", answer.chat}});
            return frame("end", {});
        }
        return std::nullopt;
    }

    QByteArray bodyFor(const QString& line) const {
        if (line.contains(QLatin1String("/sockets/ticket")))
            return R"({"ticket":"t"})";
        if (line.endsWith(QLatin1String("/user")))
            return R"({"id":"u","isBlocked":false,"createdAt":"c","settings_includeChatHistory":true})";
        QJsonArray list;
        const QString id = line.section(QLatin1Char('/'), 2, 2);
        if (id.isEmpty()) {
            for (const auto& [chat, messages] : m_chats)
                list.append(chatJson(chat));
        } else {
            const int chat = id.toInt();
            const auto messages = m_chats.find(chat);
            for (std::size_t i = 0; messages != m_chats.end() && i < messages->second.size(); ++i) {
                const bool isHidden = std::any_of(m_outbox.begin(), m_outbox.end(), [&](const Answer& answer) {
                    return answer.chat == chat && answer.createsChat && !answer.hasEnded && answer.message == i;
                });
                if (!isHidden)
                    list.append(messageJson(chat, static_cast<int>(i), messages->second[i]));
            }
        }
        return QJsonDocument(QJsonObject{{"data", list}}).toJson(QJsonDocument::Compact);
    }

    static QJsonObject messageJson(int chat, int index, const Message& message) {
        return {{"id", chat * 10000 + index}, {"createdAt", "c"}, {"chatId", chat},
            {"role", message.isUser ? "user" : "ai"}, {"usageTokens", 0}, {"content", message.content}};
    }

    FakeHttp& m_http;
    FakeWebSocketTransport& m_sockets;
    VirtualScheduler& m_time;
    std::map<int, std::vector<Message>> m_chats;
    std::deque<Answer> m_outbox;
    Cursor m_cursor;
    std::deque<std::pair<FakeHttp::Exchange*, QByteArray>> m_served;
    std::size_t m_seen = 0; // connections
    qsizetype m_read = 0;   // frames of the newest one
    int m_lastChat = 0;
    bool m_isAccepted = false;
    bool m_isDoomed = false;
};

}
