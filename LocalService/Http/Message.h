#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace korvi::service {

/// An HTTP request as the routes see it, whatever server carries it.
struct Request {
    std::string method;
    /// Without the query, percent-encoding removed.
    std::string path;
    std::vector<std::pair<std::string, std::string>> query;
    /// The token of "Authorization: Bearer ...", or empty.
    std::string bearer;
    std::string body;
    // Header fields as they came, or empty.
    std::string contentType;
    std::string range;
    std::string ifRange;
    std::string ifNoneMatch;

    /// The value of a query key, or empty.
    std::string queryValue(const std::string& key) const {
        for (const auto& [name, value] : query)
            if (name == key)
                return value;
        return {};
    }
};

/// A descriptor that is closed with its last owner.
class OpenFile {
public:
    explicit OpenFile(int descriptor)
        : descriptor_(descriptor) {}
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

/// A body that is not JSON: bytes in memory, or `size` bytes of a file from `offset`.
struct Payload {
    std::string type;
    std::string bytes;
    std::shared_ptr<const OpenFile> file;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

struct Response {
    int status = 200;
    nlohmann::json body = nlohmann::json::object();
    std::vector<std::pair<std::string, std::string>> headers;
    /// In place of `body`.
    std::shared_ptr<const Payload> payload = nullptr;
};

inline Response failure(int status, std::string message) {
    return {status, {{"message", std::move(message)}}, {}};
}

/// The fields of a form that a browser posts.
std::vector<std::pair<std::string, std::string>> formFields(const std::string& body);

/// For one name or value in the query of a URL.
std::string percentEncoded(const std::string& text);

/// Percent-encoding removed.
std::string percentDecoded(std::string_view text);

/// Splits a request target into path and query and removes percent-encoding.
void setTarget(Request& request, const std::string& target);

}
