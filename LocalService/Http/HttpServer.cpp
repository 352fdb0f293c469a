#include "Http/HttpServer.h"

#include "Core/Json.h"
#include "Core/Limits.h"
#include "Core/Log.h"
#include "Http/ChatSocket.h"
#include "Http/PayloadBody.h"

#include <array>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <limits>
#include <optional>
#include <stdexcept>

namespace korvi::service {

namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;
using tcp = asio::ip::tcp;
using namespace std::chrono_literals;

struct HttpServer::Impl : std::enable_shared_from_this<Impl> {
    Api& api;
    AnswerEngine& engine;
    tcp::acceptor acceptor;
    std::size_t open = 0;

    Impl(asio::io_context& io, Api& routes, AnswerEngine& answers)
        : api(routes)
        , engine(answers)
        , acceptor(io) {}
    void accept();
};

namespace {

/// Longest silence of a peer in the middle of a request or a response, and between two requests.
constexpr auto patience = 60s;
/// How long, and how much of it, a refused request is listened to: who closes at once takes the answer away from a peer
/// that is still sending.
constexpr auto lingering = 10s;
constexpr std::size_t lingeringBytes = std::size_t{64} * 1024 * 1024;
constexpr std::uint32_t headerBytes = 16 * 1024;

using Parser = http::request_parser<http::buffer_body>;

std::string field(const Parser& parser, http::field name) {
    return std::string(parser.get()[name]);
}

Request requestFrom(const Parser& parser) {
    Request request;
    request.method = std::string(parser.get().method_string());
    setTarget(request, std::string(parser.get().target()));
    constexpr std::string_view scheme = "Bearer ";
    const std::string authorization = field(parser, http::field::authorization);
    if (authorization.starts_with(scheme))
        request.bearer = authorization.substr(scheme.size());
    request.contentType = field(parser, http::field::content_type);
    request.range = field(parser, http::field::range);
    request.ifRange = field(parser, http::field::if_range);
    request.ifNoneMatch = field(parser, http::field::if_none_match);
    return request;
}

/// One connection: reads a request, answers it, reads the next.
class HttpSession : public std::enable_shared_from_this<HttpSession> {
public:
    HttpSession(tcp::socket socket, Api& api, AnswerEngine& engine, std::function<void()> onClosed)
        : stream_(std::move(socket))
        , api_(api)
        , engine_(engine)
        , onClosed_(std::move(onClosed)) {}
    ~HttpSession() {
        if (onClosed_)
            onClosed_();
    }
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;

    void readHeader() {
        parser_.emplace();
        parser_->header_limit(headerBytes);
        // The limits are checked here, where a refusal can be put into words.
        parser_->body_limit(std::numeric_limits<std::uint64_t>::max());
        upload_.reset();
        body_.clear();
        stream_.expires_after(patience);
        http::async_read_header(
            stream_, buffer_, *parser_, [self = shared_from_this()](const error_code& error, std::size_t) {
                if (error == http::error::header_limit)
                    self->refuse(failure(431, "Заголовки запроса слишком длинные."));
                else if (error && error.category() == http::make_error_code(http::error::bad_version).category() &&
                    error != http::error::end_of_stream && error != http::error::partial_message)
                    self->refuse(failure(400, "Это не запрос HTTP."));
                else if (!error)
                    self->begin();
            });
    }

private:
    void begin() {
        request_ = requestFrom(*parser_);
        isHead_ = request_.method == "HEAD";
        if (request_.path == Api::socketPath)
            return beginSocket();
        const auto length = parser_->content_length();
        if (api_.isUpload(request_)) {
            auto begun = api_.beginUpload(request_, length ? std::optional<std::uint64_t>(*length) : std::nullopt);
            if (auto* refusal = std::get_if<Response>(&begun))
                return refuse(*refusal);
            upload_ = std::get<std::unique_ptr<Upload>>(std::move(begun));
        } else if (length && *length > limits::body) {
            return refuse(failure(413, "Запрос слишком большой: можно не больше 1 МБ."));
        }
        if (beast::iequals(parser_->get()[http::field::expect], "100-continue") && !parser_->is_done())
            return inviteBody();
        readBody();
    }

    void inviteBody() {
        static constexpr std::string_view invitation = "HTTP/1.1 100 Continue\r\n\r\n";
        asio::async_write(stream_, asio::buffer(invitation.data(), invitation.size()),
            [self = shared_from_this()](const error_code& error, std::size_t) {
                if (!error)
                    self->readBody();
            });
    }

    void readBody() {
        if (parser_->is_done())
            return perform();
        auto& body = parser_->get().body();
        body.data = chunk_.data();
        body.size = chunk_.size();
        stream_.expires_after(patience);
        http::async_read(stream_, buffer_, *parser_, [self = shared_from_this()](error_code error, std::size_t) {
            if (error == http::error::need_buffer)
                error = {};
            if (!error)
                return self->takeBody();
            if (error.category() == http::make_error_code(http::error::bad_version).category() &&
                error != http::error::partial_message && error != http::error::end_of_stream)
                self->refuse(failure(400, "Тело запроса не разобрано."));
        });
    }

    void takeBody() {
        const std::string_view bytes(chunk_.data(), chunk_.size() - parser_->get().body().size);
        if (upload_) {
            if (const auto refusal = upload_->take(bytes))
                return refuse(*refusal);
        } else {
            if (body_.size() + bytes.size() > limits::body)
                return refuse(failure(413, "Запрос слишком большой: можно не больше 1 МБ."));
            body_ += bytes;
        }
        readBody();
    }

    void perform() {
        request_.body = std::move(body_);
        const auto respond = [self = shared_from_this()](const Response& response) {
            self->answer(response, self->parser_->get().keep_alive());
        };
        // A handler may take its time, while the peer waits in silence.
        stream_.expires_never();
        if (upload_)
            respond(api_.finishUpload(*std::exchange(upload_, nullptr)));
        else
            api_.handle(request_, respond);
    }

    void beginSocket() {
        const bool isUpgrade = beast::http::token_list(parser_->get()[http::field::connection]).exists("upgrade") &&
            beast::iequals(parser_->get()[http::field::upgrade], "websocket");
        if (!isUpgrade) {
            auto refusal = failure(426, "По этому адресу доступно только подключение WebSocket.");
            refusal.headers.emplace_back("Upgrade", "websocket");
            return refuse(refusal);
        }
        auto admission = api_.admit(request_);
        if (const auto* refusal = std::get_if<Response>(&admission))
            return refuse(*refusal);
        UpgradeRequest handshake{http::verb::get, parser_->get().target(), 11};
        for (const auto& each : parser_->get())
            handshake.insert(each.name_string(), each.value());
        // From here on it is counted by user.
        std::exchange(onClosed_, nullptr)();
        startChatSocket(
            stream_.release_socket(), std::move(handshake), std::get<SessionRow>(std::move(admission)), engine_);
    }

    /// An answer to a request whose body may still be coming: the connection ends with it.
    void refuse(const Response& response) {
        upload_.reset();
        answer(response, false);
    }

    void answer(const Response& response, bool keepAlive) {
        const auto status = static_cast<unsigned>(response.status);
        const bool hasBody = response.status != 204 && response.status != 304;
        response_.emplace();
        response_->version(11);
        response_->result(status);
        response_->keep_alive(keepAlive);
        auto& payload = response_->body();
        if (response.payload) {
            payload = *response.payload;
        } else {
            payload.type = "application/json; charset=utf-8";
            payload.bytes = dumpJson(response.body);
            response_->set(http::field::cache_control, "no-store");
        }
        if (hasBody)
            response_->set(http::field::content_type, payload.type);
        response_->set("X-Content-Type-Options", "nosniff");
        for (const auto& [name, value] : response.headers)
            response_->set(name, value);
        if (hasBody)
            response_->content_length(PayloadBody::size(payload));
        if (isHead_ || !hasBody)
            payload = {};
        serializer_.emplace(*response_);
        write(keepAlive);
    }

    void write(bool keepAlive) {
        stream_.expires_after(patience);
        http::async_write_some(
            stream_, *serializer_, [self = shared_from_this(), keepAlive](const error_code& error, std::size_t) {
                if (error)
                    return;
                if (!self->serializer_->is_done())
                    return self->write(keepAlive);
                self->serializer_.reset();
                self->response_.reset();
                if (keepAlive)
                    self->readHeader();
                else
                    self->linger();
            });
    }

    void linger() {
        error_code ignored;
        stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
        stream_.expires_after(lingering);
        discard(0);
    }

    void discard(std::size_t so_far) {
        stream_.async_read_some(
            asio::buffer(chunk_), [self = shared_from_this(), so_far](const error_code& error, std::size_t count) {
                if (!error && so_far + count < lingeringBytes)
                    self->discard(so_far + count);
            });
    }

    beast::tcp_stream stream_;
    Api& api_;
    AnswerEngine& engine_;
    std::function<void()> onClosed_;
    beast::flat_buffer buffer_{std::size_t{128} * 1024};
    std::array<char, std::size_t{64} * 1024> chunk_{};
    std::optional<Parser> parser_;
    Request request_;
    bool isHead_ = false;
    std::string body_;
    std::unique_ptr<Upload> upload_;
    std::optional<http::response<PayloadBody>> response_;
    std::optional<http::response_serializer<PayloadBody>> serializer_;
};

}

void HttpServer::Impl::accept() {
    acceptor.async_accept([self = shared_from_this()](const error_code& error, tcp::socket socket) {
        if (!self->acceptor.is_open())
            return;
        if (error) {
            // Out of descriptors, most likely: a moment later there may be some.
            auto pause = std::make_shared<asio::steady_timer>(self->acceptor.get_executor(), 100ms);
            return pause->async_wait([self, pause](const error_code&) {
                if (self->acceptor.is_open())
                    self->accept();
            });
        }
        if (self->open < limits::httpConnections) {
            ++self->open;
            const auto closed = [weak = self->weak_from_this()] {
                if (const auto server = weak.lock())
                    --server->open;
            };
            error_code ignored;
            socket.set_option(tcp::no_delay(true), ignored);
            std::make_shared<HttpSession>(std::move(socket), self->api, self->engine, closed)->readHeader();
        }
        self->accept();
    });
}

HttpServer::HttpServer(
    asio::io_context& io, Api& api, AnswerEngine& engine, const std::string& host, std::uint16_t port)
    : impl_(std::make_shared<Impl>(io, api, engine)) {
    try {
        const tcp::endpoint endpoint(asio::ip::make_address(host), port);
        impl_->acceptor.open(endpoint.protocol());
        impl_->acceptor.set_option(tcp::acceptor::reuse_address(true));
        impl_->acceptor.bind(endpoint);
        impl_->acceptor.listen();
    } catch (const std::exception& error) {
        throw std::runtime_error("Не удаётся занять адрес " + host + ":" + std::to_string(port) + ": " + error.what() +
            ". Возможно, порт занят другой программой: выберите другой ключом --port.");
    }
    impl_->accept();
}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::port() const {
    return impl_->acceptor.local_endpoint().port();
}

void HttpServer::stop() {
    error_code ignored;
    impl_->acceptor.close(ignored);
}

}
