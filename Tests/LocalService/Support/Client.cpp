#include "Support/Client.h"

#include "Core/Asio.h"

#include <algorithm>
#include <boost/asio/connect.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket.hpp>
#include <cctype>
#include <curl/curl.h>

namespace korvi::service::test {

using nlohmann::json;
namespace websocket = boost::beast::websocket;

namespace {

std::size_t append(char* data, std::size_t, std::size_t size, void* user) {
    static_cast<std::string*>(user)->append(data, size);
    return size;
}

asio::ip::tcp::endpoint loopback(int port) {
    return {asio::ip::address_v4::loopback(), static_cast<unsigned short>(port)};
}

}

Reply request(
    int port, const std::string& method, const std::string& path, const std::string& body, const std::string& token) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy(curl_easy_init(), curl_easy_cleanup);
    const std::string url = "http://127.0.0.1:" + std::to_string(port) + "/api/v1" + path;
    const std::string authorization = "Authorization: Bearer " + token;
    curl_slist* headers = curl_slist_append(nullptr, "Expect:");
    if (!token.empty())
        headers = curl_slist_append(headers, authorization.c_str());
    std::string answer;
    curl_easy_setopt(easy.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_NOPROXY, "*");
    curl_easy_setopt(easy.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_HTTPHEADER, headers);
    if (!body.empty()) {
        curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDS, body.c_str());
    }
    curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &answer);
    Reply reply;
    if (curl_easy_perform(easy.get()) == CURLE_OK) {
        curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &reply.status);
        const char* location = nullptr;
        curl_easy_getinfo(easy.get(), CURLINFO_REDIRECT_URL, &location);
        reply.location = location ? location : "";
    }
    curl_slist_free_all(headers);
    reply.body = json::parse(answer, nullptr, false);
    return reply;
}

namespace {

std::size_t takeHeader(char* data, std::size_t, std::size_t size, void* user) {
    std::string line(data, size);
    const auto colon = line.find(':');
    if (colon != std::string::npos) {
        std::string name = line.substr(0, colon);
        std::transform(
            name.begin(), name.end(), name.begin(), [](char c) { return static_cast<char>(std::tolower(c)); });
        const auto begin = line.find_first_not_of(' ', colon + 1);
        (*static_cast<std::map<std::string, std::string>*>(user))[name] = line.substr(begin, line.size() - begin - 2);
    }
    return size;
}

}

Fetched fetch(const std::string& url, const std::vector<std::string>& headers, const std::string& method,
    const std::string& body) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy(curl_easy_init(), curl_easy_cleanup);
    curl_slist* lines = curl_slist_append(nullptr, "Expect:");
    for (const auto& header : headers)
        lines = curl_slist_append(lines, header.c_str());
    Fetched fetched;
    curl_easy_setopt(easy.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_NOPROXY, "*");
    if (method == "HEAD")
        curl_easy_setopt(easy.get(), CURLOPT_NOBODY, 1L);
    else
        curl_easy_setopt(easy.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_HTTPHEADER, lines);
    if (!body.empty()) {
        curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDS, body.c_str());
    }
    curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &fetched.body);
    curl_easy_setopt(easy.get(), CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(easy.get(), CURLOPT_HEADERDATA, &fetched.headers);
    if (curl_easy_perform(easy.get()) == CURLE_OK)
        curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &fetched.status);
    curl_slist_free_all(lines);
    return fetched;
}

std::string multipart(const std::string& filename, const std::string& type, const std::string& bytes) {
    return "--korvi-boundary\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + filename +
        "\"\r\nContent-Type: " + type + "\r\n\r\n" + bytes + "\r\n--korvi-boundary--\r\n";
}

Fetched upload(int port, const std::string& token, const std::string& form) {
    return fetch("http://127.0.0.1:" + std::to_string(port) + "/api/v1/storage/upload",
        {"Content-Type: multipart/form-data; boundary=korvi-boundary", "Authorization: Bearer " + token}, "POST", form);
}

std::string uploaded(int port, const std::string& token, const std::string& filename, const std::string& bytes,
    const std::string& type) {
    return json::parse(upload(port, token, multipart(filename, type, bytes)).body).at("url");
}

std::string signIn(ServiceProcess& service, const std::string& email) {
    request(service.port(), "POST", "/auth/email", json{{"email", email}}.dump());
    const std::string line = service.readLine();
    const std::string code = line.substr(line.rfind(' ') + 1);
    const auto reply = request(service.port(), "POST", "/auth/email/verify",
        json{{"email", email}, {"code", code}, {"isTrusted", true}}.dump());
    return reply.body.at("session").at("opaqueToken");
}

struct ChatClient::Impl {
    asio::io_context io;
    websocket::stream<asio::ip::tcp::socket> ws{io};
    boost::beast::flat_buffer buffer;
};

ChatClient::ChatClient(int port, const std::string& token)
    : impl_(std::make_unique<Impl>()) {
    const std::string ticket = request(port, "GET", "/sockets/ticket", {}, token).body.at("ticket");
    impl_->ws.next_layer().connect(loopback(port));
    impl_->ws.next_layer().set_option(asio::ip::tcp::no_delay(true));
    impl_->ws.set_option(websocket::stream_base::decorator(
        [token](websocket::request_type& handshake) { handshake.set("Authorization", "Bearer " + token); }));
    impl_->ws.handshake("127.0.0.1", "/ws/v1/chats?ticket=" + ticket);
}

ChatClient::~ChatClient() = default;
ChatClient::ChatClient(ChatClient&&) noexcept = default;

void ChatClient::send(const json& frame) {
    sendText(frame.dump());
}

void ChatClient::sendText(const std::string& text) {
    boost::system::error_code ignored;
    impl_->ws.write(asio::buffer(text), ignored);
}

json ChatClient::receive() {
    boost::system::error_code error;
    impl_->ws.read(impl_->buffer, error);
    if (error)
        return nullptr;
    const std::string text = boost::beast::buffers_to_string(impl_->buffer.data());
    impl_->buffer.consume(impl_->buffer.size());
    return json::parse(text);
}

std::vector<json> ChatClient::receiveAnswer() {
    std::vector<json> frames;
    for (json frame = receive(); !frame.is_null(); frame = receive()) {
        frames.push_back(frame);
        if (frame["event"] == "end" || frame["event"] == "error")
            break;
    }
    return frames;
}

int ChatClient::closeCode() const {
    return impl_->ws.reason().code;
}

void ChatClient::cut() {
    boost::system::error_code ignored;
    impl_->ws.next_layer().close(ignored);
}

json createFrame(const std::string& text) {
    return {{"event", "create"},
        {"data", {{"mode", "auto"}, {"content", json::array({{{"type", "text"}, {"text", text}}})}}}};
}

json sendFrame(long long chatId, const std::string& text) {
    return {{"event", "send"},
        {"data", {{"chatId", chatId}, {"content", json::array({{{"type", "text"}, {"text", text}}})}}}};
}

std::string joined(const std::vector<json>& frames, const std::string& event) {
    std::string text;
    for (const json& frame : frames)
        if (frame["event"] == event)
            text += frame["data"]["content"].get<std::string>();
    return text;
}

std::string rawUpgrade(int port, const std::string& ticket, const std::string& token) {
    asio::io_context io;
    asio::ip::tcp::socket socket(io);
    socket.connect(loopback(port));
    std::string head = "GET /ws/v1/chats?ticket=" + ticket + " HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\n" +
        "Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";
    if (!token.empty())
        head += "Authorization: Bearer " + token + "\r\n";
    asio::write(socket, asio::buffer(head + "\r\n"));
    std::string answer;
    char bytes[4096];
    boost::system::error_code error;
    while (answer.find("\r\n\r\n") == std::string::npos || answer.find("403") != std::string::npos) {
        const auto count = socket.read_some(asio::buffer(bytes), error);
        if (error)
            break;
        answer.append(bytes, count);
    }
    return answer;
}

}
