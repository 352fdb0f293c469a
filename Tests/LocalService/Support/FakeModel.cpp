#include "Support/FakeModel.h"

#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

namespace korvi::service::test {

using asio::ip::tcp;

FakeModel::FakeModel(std::vector<Script> scripts, std::vector<Script> titles)
    : acceptor_(io_, tcp::endpoint(asio::ip::address_v4::loopback(), 0))
    , scripts_(std::move(scripts))
    , titles_(std::move(titles))
    , thread_([this] { serve(); }) {}

FakeModel::~FakeModel() {
    // A last connection of our own frees the thread if a script was never asked for.
    boost::system::error_code ignored;
    tcp::socket waker(io_);
    waker.connect(acceptor_.local_endpoint(), ignored);
    waker.close(ignored);
    thread_.join();
}

std::string FakeModel::url() const {
    return "http://127.0.0.1:" + std::to_string(acceptor_.local_endpoint().port()) + "/v1";
}

void FakeModel::waitForRequests(std::size_t count) const {
    for (std::size_t asked = asked_; asked < count; asked = asked_)
        asked_.wait(asked);
}

void FakeModel::serve() {
    for (std::size_t answers = 0, titles = 0; answers < scripts_.size() || titles < titles_.size();) {
        boost::system::error_code error;
        tcp::socket socket = acceptor_.accept();
        socket.set_option(tcp::no_delay(true));
        std::string text;
        const auto head = asio::read_until(socket, asio::dynamic_buffer(text), "\r\n\r\n", error);
        if (error)
            return;
        const auto field = text.find("Content-Length: ");
        const auto length = field == std::string::npos ? 0 : std::stoul(text.substr(field + 16));
        if (text.size() < head + length)
            asio::read(socket, asio::dynamic_buffer(text), asio::transfer_exactly(head + length - text.size()), error);
        const auto request = nlohmann::json::parse(text.substr(head), nullptr, false);
        const bool isTitle =
            request.is_object() && request.contains("messages") && request["messages"][0]["role"] == "system";
        if (isTitle ? titles == titles_.size() : answers == scripts_.size())
            continue;
        Script& script = isTitle ? titles_[titles++] : scripts_[answers++];
        script.head = text.substr(0, head);
        script.request = request;
        asked_ = answers;
        asked_.notify_all();
        if (isTitle || script.gate.valid())
            threads_.emplace_back([&script, own = std::move(socket)]() mutable { answer(own, script); });
        else
            answer(socket, script);
    }
}

void FakeModel::answer(tcp::socket& socket, const Script& script) {
    if (script.gate.valid())
        script.gate.wait();
    boost::system::error_code error;
    for (const auto& part : script.parts)
        asio::write(socket, asio::buffer(part), error);
    char byte = 0;
    if (script.hang)
        socket.read_some(asio::buffer(&byte, 1), error);
    socket.shutdown(tcp::socket::shutdown_both, error);
}

std::string streamHead() {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n";
}

std::vector<std::string> jsonAnswer(const nlohmann::json& body, const std::string& status) {
    const std::string text = body.dump();
    return {"HTTP/1.1 " + status + "\r\nContent-Type: application/json\r\nContent-Length: " +
        std::to_string(text.size()) + "\r\nConnection: close\r\n\r\n" + text};
}

std::string event(const nlohmann::json& delta) {
    return "data: " + nlohmann::json{{"choices", {{{"index", 0}, {"delta", delta}}}}}.dump() + "\n\n";
}

}
