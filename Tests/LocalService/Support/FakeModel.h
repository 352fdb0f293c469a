#pragma once

#include "Core/Asio.h"

#include <atomic>
#include <future>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

namespace korvi::service::test {

/// The far end of the model provider: answers each request with the next script, written part by part. Requests for a
/// title of a chat, which come beside them, have scripts of their own.
class FakeModel {
public:
    struct Script {
        /// Written one after the other, each in a packet of its own.
        std::vector<std::string> parts;
        /// Keeps the connection open in silence until the peer closes it.
        bool hang = false;
        /// The parts wait for this, if it is valid.
        std::shared_future<void> gate = {};
        nlohmann::json request = {};
        std::string head = {};
    };

    explicit FakeModel(std::vector<Script> scripts, std::vector<Script> titles = {});
    ~FakeModel();
    FakeModel(const FakeModel&) = delete;
    FakeModel& operator=(const FakeModel&) = delete;

    std::string url() const;
    /// What came with the request that the script answered. To be called after the answer.
    const Script& script(std::size_t index) const { return scripts_[index]; }

    /// Returns once so many requests have come, those for titles aside.
    void waitForRequests(std::size_t count) const;

    bool givesTitles() const { return !titles_.empty(); }
    const Script& title(std::size_t index) const { return titles_[index]; }

private:
    void serve();
    static void answer(asio::ip::tcp::socket& socket, const Script& script);

    asio::io_context io_;
    asio::ip::tcp::acceptor acceptor_;
    std::vector<Script> scripts_;
    std::vector<Script> titles_;
    std::atomic<std::size_t> asked_ = 0;
    std::vector<std::jthread> threads_;
    std::thread thread_;
};

/// The head of an answer that streams.
std::string streamHead();
std::vector<std::string> jsonAnswer(const nlohmann::json& body, const std::string& status = "200 OK");
std::string event(const nlohmann::json& delta);

}
