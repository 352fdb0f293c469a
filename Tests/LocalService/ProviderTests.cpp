#include "Support/Client.h"

#include <gmock/gmock.h>

namespace korvi::service::test {
namespace {

using nlohmann::json;

struct Way {
    const char* path;
    json body;
    const char* email;
    const char* record; // the key under which GET /auth names the account; empty for none
};

/// {"sub":"dev-anna","nonce":"<SHA-256 of raw-nonce>","name":"Анна?>"}, which has a "-" or a "_" in base64.
const std::string annaToken =
    "eyJhbGciOiJub25lIn0."
    "eyJzdWIiOiJkZXYtYW5uYSIsIm5vbmNlIjoiMmM1ZDEwNzkzODA1M2EyMjc1ZjAyMmMxNTNjOWE3MWY2NWVlMDc3NTRiOGJjYTU0"
    "M2VlOTdhMGMzY2M2Njk5MCIsIm5hbWUiOiLQkNC90L3QsD8-In0.";

const std::vector<Way> ways{
    {"/auth/google", {{"code", "dev-anna"}, {"redirectUri", "x:/y"}, {"isTrusted", true}}, "anna@google.example",
        "googleId"},
    {"/auth/google", {{"idToken", "dev-anna"}}, "anna@google.example", "googleId"},
    {"/auth/vk", {{"silentToken", "dev-anna"}, {"uuid", "u"}}, "anna@vk.example", "vkId"},
    {"/auth/yandex", {{"oauthToken", "dev-anna"}}, "anna@yandex.example", "yandexId"},
};

TEST(Providers, AStandInAccountIsAlwaysTheSameUser) {
    TemporaryFolder folder;
    const ServiceProcess service(folder.path(), {"--dev-providers"});
    for (const Way& way : ways) {
        const auto first = request(service.port(), "POST", way.path, way.body.dump());
        ASSERT_EQ(first.status, 200) << way.path << first.body;
        EXPECT_EQ(first.body["email"], way.email);
        EXPECT_EQ(first.body["session"]["isTrusted"], true);
        const auto again = request(service.port(), "POST", way.path, way.body.dump());
        EXPECT_EQ(again.body["id"], first.body["id"]);
        EXPECT_EQ(again.body["isRegistration"], false);
        const std::string token = again.body["session"]["opaqueToken"];
        EXPECT_EQ(request(service.port(), "GET", "/user", {}, token).body["id"], first.body["id"]);
        EXPECT_EQ(request(service.port(), "GET", "/auth", {}, token).body,
            json({{"userId", first.body["id"]}, {way.record, "anna"}}));
    }
}

TEST(Providers, AnIdentityTokenCountsWithTheNonceItWasMadeFor) {
    TemporaryFolder folder;
    const ServiceProcess service(folder.path(), {"--dev-providers"});
    const auto post = [&](const char* user, const char* nonce) {
        return request(service.port(), "POST", "/auth/apple",
            json{{"identityToken", annaToken}, {"userID", user}, {"nonce", nonce}}.dump());
    };
    EXPECT_EQ(post("dev-anna", "raw-nonce").body["email"], "anna@apple.example");
    EXPECT_EQ(post("dev-anna", "another").status, 401);
    EXPECT_EQ(post("dev-boris", "raw-nonce").status, 401);
}

TEST(Providers, WhatIsMissingOrNotAStandInIsRefusedWithAMessage) {
    TemporaryFolder folder;
    const ServiceProcess service(folder.path(), {"--dev-providers"});
    const std::vector<std::tuple<const char*, json, long>> rows{
        {"/auth/google", json::object(), 400},
        {"/auth/google", {{"code", "dev-anna"}}, 400},
        {"/auth/google", {{"code", "4/0AX4XfWh"}, {"redirectUri", "x"}}, 401},
        {"/auth/vk", {{"silentToken", "dev-anna"}}, 400},
        {"/auth/vk", {{"silentToken", "dev-"}, {"uuid", "u"}}, 401},
        {"/auth/yandex", {{"oauthToken", 1}}, 400},
        {"/auth/yandex", {{"oauthToken", "dev-Анна@x"}}, 401},
        {"/auth/apple", {{"identityToken", "a.b.c"}, {"userID", "u"}, {"nonce", "n"}}, 401},
        {"/auth/apple", {{"identityToken", "a"}, {"userID", "u"}, {"nonce", "n"}}, 401},
    };
    for (const auto& [path, body, status] : rows) {
        const auto reply = request(service.port(), "POST", path, body.dump());
        EXPECT_EQ(reply.status, status) << path << ' ' << body;
        EXPECT_TRUE(reply.body["message"].is_string()) << path << ' ' << body;
    }
}

TEST(Providers, WithoutTheOptionEveryWayIsClosed) {
    TemporaryFolder folder;
    const ServiceProcess service(folder.path());
    for (const char* provider : {"google", "vk", "yandex", "apple"}) {
        const auto reply = request(service.port(), "POST", std::string("/auth/") + provider, "{}");
        EXPECT_EQ(reply.status, 501) << provider;
        EXPECT_TRUE(reply.body["message"].is_string()) << provider;
    }
    for (const char* provider : {"vk", "yandex", "apple"}) {
        const auto reply =
            request(service.port(), "GET", std::string("/auth/") + provider + "/mobile-callback?state=1");
        EXPECT_EQ(reply.status, 501) << provider;
        EXPECT_EQ(reply.location, "") << provider;
    }
}

TEST(Providers, ThePagesLeadBackToTheApplication) {
    TemporaryFolder folder;
    const ServiceProcess service(folder.path(), {"--dev-providers"});
    const std::string payload = "%7B%22token%22%3A%22dev-anna%22%2C%22uuid%22%3A%22u-1%22%2C"
                                "%22user%22%3A%7B%22first_name%22%3A%22%D0%90%26%22%2C%22last_name%22%3Anull%7D%7D";
    const std::vector<std::array<std::string, 4>> rows{
        {"GET", "/auth/vk/mobile-callback?state=s&payload=" + payload, "",
            "korviapp://auth/vk?state=s&silentToken=dev-anna&uuid=u-1&firstName=%D0%90%26"},
        {"GET", "/auth/vk/mobile-callback?state=s&payload=[]&silentToken=t", "",
            "korviapp://auth/vk?state=s&silentToken=t"},
        {"GET", "/auth/yandex/mobile-callback?error=access_denied&x=%0D%0AEvil:%201", "",
            "korviapp://auth/yandex?error=access_denied&x=%0D%0AEvil%3A%201"},
        {"GET", "/auth/yandex/mobile-callback", "", "korviapp://auth/yandex"},
        {"POST", "/auth/apple/mobile-callback", "state=s&id_token=a.b-c_d.&user=%7B+%7D",
            "korviapp://auth/apple?state=s&id_token=a.b-c_d.&user=%7B%20%7D"},
    };
    for (const auto& [method, path, body, location] : rows) {
        const auto reply = request(service.port(), method, path, body);
        EXPECT_EQ(reply.status, method == "POST" ? 303 : 302) << path;
        EXPECT_EQ(reply.location, location);
    }
}

}
}
