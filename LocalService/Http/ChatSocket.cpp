#include "Http/ChatSocket.h"

#include "Core/Limits.h"
#include "Core/Log.h"

#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket.hpp>
#include <optional>
#include <string>

namespace korvi::service {

namespace websocket = boost::beast::websocket;
using boost::system::error_code;

namespace {

websocket::close_reason reasonFor(CloseReason reason) {
    switch (reason) {
    case CloseReason::replaced: return {websocket::close_code::normal, "replaced by a newer connection"};
    case CloseReason::signedOut: return {websocket::close_code::policy_error, "signed out"};
    case CloseReason::shutdown: return {websocket::close_code::going_away, "shutting down"};
    case CloseReason::flooding: return {websocket::close_code::policy_error, "too many unread errors"};
    }
    return {websocket::close_code::normal};
}

/// One connection: reads frames, and pulls what goes out from the session's outbox.
class ChatSocket : public Connection, public std::enable_shared_from_this<ChatSocket> {
public:
    ChatSocket(asio::ip::tcp::socket socket, UpgradeRequest request, SessionRow session, AnswerEngine& engine)
        : ws_(std::move(socket))
        , request_(std::move(request))
        , session_(std::move(session))
        , engine_(engine) {}

    void start() {
        // The stream's own pings find a dead peer; those sent below tell what a live one has got.
        ws_.set_option(websocket::stream_base::timeout{std::chrono::seconds(10), limits::socketIdle, true});
        ws_.read_message_max(limits::frame);
        ws_.text(true);
        error_code ignored;
        ws_.next_layer().set_option(asio::ip::tcp::no_delay(true), ignored);
        ws_.control_callback([this](websocket::frame_type kind, boost::beast::string_view payload) {
            if (kind == websocket::frame_type::pong && pingUnderWay_ && payload == std::to_string(pingNumber_))
                asio::post(
                    ws_.get_executor(), [self = shared_from_this(), number = pingNumber_] { self->arrived(number); });
        });
        ws_.async_accept(request_, [self = shared_from_this()](const error_code& error) {
            if (!error)
                self->opened();
        });
    }

    void wake() override {
        asio::post(ws_.get_executor(), [self = shared_from_this()] { self->pump(); });
    }

    void close(CloseReason reason) override {
        if (!outbox_)
            return;
        leave();
        ws_.async_close(reasonFor(reason), [self = shared_from_this()](const error_code&) {});
    }

private:
    void opened() {
        try {
            outbox_ = engine_.attach(session_, *this);
        } catch (const StoreError& error) {
            logLine(error.what());
            return;
        }
        read();
        pump();
    }

    void read() {
        ws_.async_read(buffer_, [self = shared_from_this()](const error_code& error, std::size_t) {
            if (error)
                return self->leave();
            const std::string text = boost::beast::buffers_to_string(self->buffer_.data());
            self->buffer_.consume(self->buffer_.size());
            if (self->outbox_)
                self->engine_.handleFrame(self->session_, text);
            self->read();
        });
    }

    void pump() {
        if (!outbox_ || writing_)
            return;
        auto frame = guarded([this] { return outbox_->next(); });
        if (!frame || !*frame) {
            ping();
            return;
        }
        writing_ = true;
        outgoing_ = std::move(**frame);
        ws_.async_write(asio::buffer(outgoing_), [self = shared_from_this()](const error_code& error, std::size_t) {
            self->writing_ = false;
            if (error)
                return self->leave();
            self->pump();
        });
    }

    /// A pong tells that everything sent before its ping has arrived.
    void ping() {
        if (!outbox_ || pingUnderWay_ || outbox_->mark() == confirmed_)
            return;
        pingUnderWay_ = true;
        pingMark_ = outbox_->mark();
        ++pingNumber_;
        ws_.async_ping(
            websocket::ping_data(std::to_string(pingNumber_)), [self = shared_from_this()](const error_code& error) {
                if (error)
                    self->leave();
            });
    }

    void arrived(unsigned number) {
        if (!outbox_ || !pingUnderWay_ || number != pingNumber_)
            return;
        pingUnderWay_ = false;
        confirmed_ = pingMark_;
        guarded([this] {
            outbox_->confirm(pingMark_);
            return true;
        });
        pump();
    }

    /// What fails in the database here is not lost: the connection ends, and the next one gets it again.
    template <class Work>
    auto guarded(Work work) -> std::optional<decltype(work())> {
        try {
            return work();
        } catch (const StoreError& error) {
            logLine(error.what());
            close(CloseReason::shutdown);
            return std::nullopt;
        }
    }

    void leave() {
        if (!outbox_)
            return;
        outbox_.reset();
        engine_.detach(session_.id, *this);
    }

    websocket::stream<asio::ip::tcp::socket> ws_;
    UpgradeRequest request_;
    SessionRow session_;
    AnswerEngine& engine_;
    // Present while the connection serves the session.
    std::shared_ptr<Outbox> outbox_;
    boost::beast::flat_buffer buffer_;
    std::string outgoing_;
    bool writing_ = false;
    bool pingUnderWay_ = false;
    unsigned pingNumber_ = 0;
    Outbox::Mark pingMark_;
    Outbox::Mark confirmed_;
};

}

void startChatSocket(asio::ip::tcp::socket socket, UpgradeRequest request, SessionRow session, AnswerEngine& engine) {
    std::make_shared<ChatSocket>(std::move(socket), std::move(request), std::move(session), engine)->start();
}

}
