#include "Support/FakeModel.h"

#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

namespace korvi::service::test {

using asio::ip::tcp;

FakeModel::FakeModel(std::vector<Script> scripts)
    : acceptor_(io_, tcp::endpoint(asio::ip::address_v4::loopback(), 0))
    , scripts_(std::move(scripts))
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

void FakeModel::serve() {
    for (Script& script : scripts_) {
        boost::system::error_code error;
        tcp::socket socket = acceptor_.accept();
        socket.set_option(tcp::no_delay(true));
        std::string text;
        const auto head = asio::read_until(socket, asio::dynamic_buffer(text), "\r\n\r\n", error);
        if (error)
            return;
        script.head = text.substr(0, head);
        const auto length = std::stoul(script.head.substr(script.head.find("Content-Length: ") + 16));
        if (text.size() < head + length)
            asio::read(socket, asio::dynamic_buffer(text), asio::transfer_exactly(head + length - text.size()), error);
        script.request = nlohmann::json::parse(text.substr(head), nullptr, false);
        for (const auto& part : script.parts)
            asio::write(socket, asio::buffer(part), error);
        char byte = 0;
        if (script.hang)
            socket.read_some(asio::buffer(&byte, 1), error);
        socket.shutdown(tcp::socket::shutdown_both, error);
    }
}

std::string streamHead() {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n";
}

std::string event(const nlohmann::json& delta) {
    return "data: " + nlohmann::json{{"choices", {{{"index", 0}, {"delta", delta}}}}}.dump() + "\n\n";
}

}
