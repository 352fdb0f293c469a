#pragma once

#include "Support/ServiceProcess.h"

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace korvi::service::test {

struct Reply {
    long status = 0;
    nlohmann::json body;
    /// Where a redirect leads; not followed.
    std::string location;
};

Reply request(int port, const std::string& method, const std::string& path, const std::string& body = {},
    const std::string& token = {});

struct Fetched {
    long status = 0;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
};

/// Any address, any body.
Fetched fetch(const std::string& url, const std::vector<std::string>& headers = {}, const std::string& method = "GET",
    const std::string& body = {});
/// A form with one file, as the client sends it.
std::string multipart(const std::string& filename, const std::string& type, const std::string& bytes);
Fetched upload(int port, const std::string& token, const std::string& form);
/// The address of a file that has been uploaded.
std::string uploaded(int port, const std::string& token, const std::string& filename, const std::string& bytes,
    const std::string& type = "application/octet-stream");

/// A signed-in session of the user with this address; the code is read from the service's console.
std::string signIn(ServiceProcess& service, const std::string& email);

/// One connection to the chat socket. Pings are answered while it reads.
class ChatClient {
public:
    ChatClient(int port, const std::string& token);
    ~ChatClient();
    ChatClient(ChatClient&&) noexcept;

    void send(const nlohmann::json& frame);
    void sendText(const std::string& text);
    /// The next frame, or null if the connection has ended.
    nlohmann::json receive();
    /// Frames up to and with the first "end" or "error".
    std::vector<nlohmann::json> receiveAnswer();
    int closeCode() const;
    /// The TCP connection is gone, without a word.
    void cut();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

nlohmann::json createFrame(const std::string& text);
nlohmann::json sendFrame(long long chatId, const std::string& text);
/// The contents of all frames with this event, joined.
std::string joined(const std::vector<nlohmann::json>& frames, const std::string& event);

/// The answer to an upgrade request as it stands on the wire.
std::string rawUpgrade(int port, const std::string& ticket, const std::string& token);

}
