#pragma once

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

    /// The value of a query key, or empty.
    std::string queryValue(const std::string& key) const {
        for (const auto& [name, value] : query)
            if (name == key)
                return value;
        return {};
    }
};

struct Response {
    int status = 200;
    nlohmann::json body = nlohmann::json::object();
    std::vector<std::pair<std::string, std::string>> headers;
};

inline Response failure(int status, std::string message) {
    return {status, {{"message", std::move(message)}}, {}};
}

/// The fields of a form that a browser posts.
std::vector<std::pair<std::string, std::string>> formFields(const std::string& body);

/// For one name or value in the query of a URL.
std::string percentEncoded(const std::string& text);

/// Splits a request target into path and query and removes percent-encoding.
void setTarget(Request& request, const std::string& target);

}
