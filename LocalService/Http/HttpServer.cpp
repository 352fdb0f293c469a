// The only file that includes RESTinio: it takes long to compile.
#include "Http/HttpServer.h"

#include "Core/Json.h"
#include "Core/Limits.h"
#include "Http/ChatSocket.h"

#include <restinio/all.hpp>

namespace korvi::service {

namespace {

using namespace std::chrono_literals;

/// Counts the open HTTP connections and refuses more than are allowed. Not RESTinio's own limiter: that one has to outlive
/// the connections, some of which the io_context keeps until its end.
class ConnectionCount {
public:
    void state_changed(const restinio::connection_state::notice_t& notice) noexcept {
        if (std::holds_alternative<restinio::connection_state::accepted_t>(notice.cause()))
            ++open_;
        else if (std::holds_alternative<restinio::connection_state::closed_t>(notice.cause()))
            --open_;
    }
    /// The connection has become a chat socket, which is counted by user.
    void handedOver() { --open_; }
    restinio::ip_blocker::inspection_result_t inspect(const restinio::ip_blocker::incoming_info_t&) const noexcept {
        return open_ < limits::httpConnections ? restinio::ip_blocker::allow() : restinio::ip_blocker::deny();
    }

private:
    std::size_t open_ = 0;
};

struct Traits : restinio::default_single_thread_traits_t {
    using connection_state_listener_t = ConnectionCount;
    using ip_blocker_t = ConnectionCount;
};

Request requestFrom(const restinio::request_t& carried) {
    Request request;
    request.method = carried.header().method().c_str();
    setTarget(request, std::string(carried.header().request_target()));
    constexpr std::string_view scheme = "Bearer ";
    const std::string authorization = carried.header().get_field_or(restinio::http_field::authorization, "");
    if (authorization.starts_with(scheme))
        request.bearer = authorization.substr(scheme.size());
    request.body = carried.body();
    return request;
}

restinio::request_handling_status_t answer(restinio::request_t& request, const Response& response) {
    const restinio::http_status_line_t status{restinio::http_status_code_t{static_cast<std::uint16_t>(response.status)},
        response.status < 400 ? "OK" : "Error"};
    auto builder = request.create_response(status);
    builder.append_header(restinio::http_field::content_type, "application/json; charset=utf-8");
    builder.append_header(restinio::http_field::cache_control, "no-store");
    for (const auto& [name, value] : response.headers)
        builder.append_header(name, value);
    builder.set_body(dumpJson(response.body));
    return builder.done();
}

bool asksForWebSocket(const restinio::request_t& request) {
    return request.header().connection() == restinio::http_connection_header_t::upgrade &&
        restinio::impl::is_equal_caseless(request.header().get_field_or("Upgrade", ""), "websocket");
}

/// RESTinio's own WebSocket reads a frame of any size into memory. So the socket is taken over by one that does not.
void handOver(restinio::request_t& request, SessionRow session, AnswerEngine& engine) {
    namespace http = boost::beast::http;
    UpgradeRequest handshake{http::verb::get, std::string(request.header().request_target()), 11};
    request.header().for_each_field([&](const restinio::http_header_field_t& field) {
        handshake.insert(std::string(field.name()), std::string(field.value()));
    });
    // RESTinio has consumed the header that decides how to go on.
    handshake.set(http::field::connection, "Upgrade");
    const auto holder = std::move(restinio::impl::access_req_connection(request));
    auto& connection = dynamic_cast<restinio::impl::connection_t<Traits>&>(*holder);
    auto internals = connection.move_upgrade_internals();
    startChatSocket(std::move(internals.m_socket), std::move(handshake), std::move(session), engine);
}

}

struct HttpServer::Impl {
    Api& api;
    AnswerEngine& engine;
    std::uint16_t port = 0;
    std::shared_ptr<ConnectionCount> count;
    std::unique_ptr<restinio::http_server_t<Traits>> server;

    restinio::request_handling_status_t handle(const restinio::request_handle_t& carried) {
        const Request request = requestFrom(*carried);
        if (request.path != Api::socketPath)
            return answer(*carried, api.handle(request));
        if (!asksForWebSocket(*carried)) {
            auto refusal = failure(426, "По этому адресу доступно только подключение WebSocket.");
            refusal.headers.emplace_back("Upgrade", "websocket");
            return answer(*carried, refusal);
        }
        auto admission = api.admit(request);
        if (const auto* refusal = std::get_if<Response>(&admission))
            return answer(*carried, *refusal);
        count->handedOver();
        handOver(*carried, std::get<SessionRow>(std::move(admission)), engine);
        return restinio::request_accepted();
    }
};

HttpServer::HttpServer(
    asio::io_context& io, Api& api, AnswerEngine& engine, const std::string& host, std::uint16_t port)
    : impl_(std::make_unique<Impl>(Impl{api, engine, 0, std::make_shared<ConnectionCount>(), nullptr})) {
    Impl& impl = *impl_;
    impl.server =
        std::make_unique<restinio::http_server_t<Traits>>(restinio::external_io_context(io), [&](auto& settings) {
            settings.address(host)
                .port(port)
                .request_handler([&impl](restinio::request_handle_t request) { return impl.handle(request); })
                .connection_state_listener(impl.count)
                .ip_blocker(impl.count)
                .incoming_http_msg_limits(restinio::incoming_http_msg_limits_t{}
                                              .max_url_size(4096)
                                              .max_field_name_size(256)
                                              .max_field_value_size(8192)
                                              .max_field_count(64)
                                              .max_body_size(limits::parsedBody))
                .read_next_http_message_timelimit(60s)
                .write_http_response_timelimit(60s)
                .acceptor_post_bind_hook(
                    [&impl](asio::ip::tcp::acceptor& acceptor) { impl.port = acceptor.local_endpoint().port(); });
        });
    try {
        impl.server->open_sync();
    } catch (const std::exception& error) {
        throw std::runtime_error("Не удаётся занять адрес " + host + ":" + std::to_string(port) + ": " + error.what() +
            ". Возможно, порт занят другой программой: выберите другой ключом --port.");
    }
}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::port() const {
    return impl_->port;
}

void HttpServer::stop() {
    impl_->server->close_sync();
}

}
