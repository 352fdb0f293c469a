#pragma once

#include "Support/Client.h"
#include "Support/FakeModel.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace korvi::service::test {

/// The service in front of a model that follows these scripts.
struct Conversation {
    /// Not for the service: without it among `more`, the model is offered no tools.
    static constexpr const char* toolsOption = "(tools)";

    explicit Conversation(std::vector<FakeModel::Script> scripts, std::vector<std::string> more = {},
        std::vector<FakeModel::Script> titles = {})
        : model(std::move(scripts), std::move(titles)) {
        std::vector<std::string> arguments{
            "--provider", "openai", "--openai-url", model.url(), "--model-for", "auto=small-model"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        if (!model.givesTitles())
            arguments.push_back("--no-model-titles");
        if (std::find(more.begin(), more.end(), toolsOption) == more.end())
            arguments.push_back("--no-tools");
        std::erase(arguments, std::string(toolsOption));
        ::setenv("KORVI_OPENAI_KEY", "key-of-the-test", 1);
        service = std::make_unique<ServiceProcess>(folder.path(), arguments);
        ::unsetenv("KORVI_OPENAI_KEY");
        token = signIn(*service, "user@example.com");
        client = std::make_unique<ChatClient>(service->port(), token);
    }

    std::vector<nlohmann::json> ask(const std::string& text) {
        client->send(createFrame(text));
        return client->receiveAnswer();
    }

    nlohmann::json messages(long long chat) const {
        return request(service->port(), "GET", "/chats/" + std::to_string(chat) + "/messages", {}, token).body["data"];
    }
    std::string nameOf(long long chat) const {
        const nlohmann::json chats = request(service->port(), "GET", "/chats", {}, token).body["data"];
        for (const auto& each : chats)
            if (each["id"] == chat)
                return each["name"];
        return {};
    }
    /// Waits for it; a name that does not come is found by the test's time limit.
    void expectName(long long chat, const std::string& name) const {
        while (nameOf(chat) != name)
            std::this_thread::yield();
    }

    TemporaryFolder folder;
    FakeModel model;
    std::unique_ptr<ServiceProcess> service;
    std::string token;
    std::unique_ptr<ChatClient> client;
};

inline std::vector<std::string> split(const std::string& text, std::size_t size) {
    std::vector<std::string> parts{streamHead()};
    for (std::size_t at = 0; at < text.size(); at += size)
        parts.push_back(text.substr(at, size));
    return parts;
}

}
