#pragma once

#include "Core/Asio.h"
#include "Providers/Provider.h"
#include "Store/ChatStore.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace korvi::service {

/// Has the model name new chats, beside the answer. A chat bears the first words of its question until then, and for good
/// if nothing fit to be a title comes in time. Used from the service's thread.
class ChatTitles {
public:
    /// Without a provider it does nothing.
    ChatTitles(asio::io_context& io, ChatStore& store, Provider* provider);

    void begin(const ChatRow& chat, const nlohmann::json& question);
    /// Its user has named it or removed it: what the model still says does not count.
    void cancel(long long chatId);
    void cancelAll(const std::string& userId);

private:
    struct Request {
        ChatRow chat;
        std::string text;
        std::unique_ptr<asio::steady_timer> limit;
        std::unique_ptr<ProviderStream> stream;
    };

    void receive(long long chatId, const ProviderEvent& event);
    void store(const Request& request);

    asio::io_context& io_;
    ChatStore& store_;
    Provider* provider_;
    std::map<long long, Request> requests_;
};

/// The title in what a model said when it was asked for one: one line without marks and quotes. Absent if it is none.
std::optional<std::string> titleFromModel(std::string_view said);

}
