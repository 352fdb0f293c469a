#pragma once

#include "Core/Asio.h"

#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

namespace korvi::service::test {

/// The far end of the model provider: answers each request with the next script, written part by part.
class FakeModel {
public:
    struct Script {
        /// Written one after the other, each in a packet of its own.
        std::vector<std::string> parts;
        /// Keeps the connection open in silence until the peer closes it.
        bool hang = false;
        nlohmann::json request = {};
        std::string head = {};
    };

    explicit FakeModel(std::vector<Script> scripts);
    ~FakeModel();
    FakeModel(const FakeModel&) = delete;
    FakeModel& operator=(const FakeModel&) = delete;

    std::string url() const;
    /// What came with the request that the script answered. To be called after the answer.
    const Script& script(std::size_t index) const { return scripts_[index]; }

private:
    void serve();

    asio::io_context io_;
    asio::ip::tcp::acceptor acceptor_;
    std::vector<Script> scripts_;
    std::thread thread_;
};

/// The head of an answer that streams.
std::string streamHead();
std::string event(const nlohmann::json& delta);

}
