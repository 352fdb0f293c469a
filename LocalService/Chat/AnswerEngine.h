#pragma once

#include "Chat/ChatTitles.h"
#include "Chat/ClientFrame.h"
#include "Chat/Connection.h"
#include "Chat/Outbox.h"
#include "Chat/PieceCutter.h"
#include "Core/Asio.h"
#include "Files/FileStore.h"
#include "Providers/Provider.h"
#include "Store/AccountStore.h"
#include "Store/ChatStore.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace korvi::service {

/// Runs the answers and hands them to the sessions that asked for them.
///
/// An answer belongs to the service: it goes on and is stored while nobody is connected. Its pieces are committed before
/// they are sent, so what a client has seen is in the database whatever happens next. Used from the service's thread.
class AnswerEngine : private Outbox::Host {
public:
    AnswerEngine(asio::io_context& io, ChatStore& store, FileStore& files, Provider& provider, ChatTitles& titles);

    /// At start-up: closes what a crash has left running and readies what sessions may come back for.
    void recover();
    /// Ends all answers with what they have and closes all connections.
    void shutdown();

    /// The session's outbox from its beginning goes to `connection`; an older connection of the session is closed.
    std::shared_ptr<Outbox> attach(const SessionRow& session, Connection& connection);
    void detach(const std::string& sessionId, const Connection& connection);
    bool mayConnect(const std::string& userId) const;
    void handleFrame(const SessionRow& session, std::string_view text);

    void chatRenamed(long long chatId) { titles_.cancel(chatId); }
    void chatRemoved(const std::string& userId, long long chatId);
    void sessionRemoved(const std::string& sessionId);
    void userRemoved(const std::string& userId);

private:
    struct Running {
        std::shared_ptr<Answer> answer;
        PieceCutter cutter;
        std::unique_ptr<ProviderStream> stream;
        std::size_t size = 0;
        /// A tool has ended, and what is said next goes on in the text before it: as a paragraph of its own.
        bool nextIsParagraph = false;
    };
    struct Session {
        std::string userId;
        std::shared_ptr<Outbox> outbox;
        Connection* connection = nullptr;
    };

    void perform(const SessionRow& session, const CreateFrame& frame);
    void perform(const SessionRow& session, const SendFrame& frame);
    void perform(const SessionRow& session, const AbortFrame& frame);
    void perform(const SessionRow& session, const BadFrame& frame);
    static std::shared_ptr<Answer> answerFor(const SessionRow& session);
    void start(const std::shared_ptr<Answer>& answer, const std::string& mode);
    bool hasRoomFor(const std::string& userId) const;

    void receive(long long messageId, ProviderEvent event);
    void append(Running& running, PieceKind kind, std::string text);
    void append(Running& running, ProviderTool tool);
    void keepPieces(Running& running, std::vector<Piece> pieces);
    void finish(long long messageId, AnswerState state, const std::string& error);
    void scheduleStore(Answer& answer);
    void storeNow();

    Session& sessionFor(const std::string& sessionId, const std::string& userId);
    void wake(const std::string& sessionId);
    void scheduleExpiry();
    void expire();

    std::string createFrame(const Answer& answer) override;
    std::string outgoing(std::string frame) override { return files_.publishedText(std::move(frame)); }
    void confirmed(const Answer& answer) override;
    void delivered(const Answer& answer) override;

    asio::io_context& io_;
    ChatStore& store_;
    FileStore& files_;
    Provider& provider_;
    ChatTitles& titles_;
    asio::steady_timer storeTimer_;
    asio::steady_timer expiryTimer_;
    bool expiryScheduled_ = false;
    bool storeScheduled_ = false;
    std::chrono::steady_clock::time_point lastStore_{};
    std::map<long long, Running> running_;
    std::set<long long> unstored_;
    std::map<std::string, Session> sessions_;
};

}
