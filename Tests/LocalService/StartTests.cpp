#include "Support/Client.h"

#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace korvi::service::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(Start, OneLineTellsAddressAndFolderAndTheFilesAreClosedToOthers) {
    const TemporaryFolder folder;
    const auto data = folder.path() / "new" / "data";
    ServiceProcess service(data);
    EXPECT_EQ(service.startLine(),
        "korvi-service 0.1.0: http://127.0.0.1:" + std::to_string(service.port()) +
            "/api/v1, данные: " + data.string());
    const auto mode = [](const std::filesystem::path& path) {
        struct stat info {};
        ::stat(path.c_str(), &info);
        return info.st_mode & 0777U;
    };
    EXPECT_EQ(mode(data), 0700U);
    for (const auto& file : std::filesystem::directory_iterator(data))
        EXPECT_EQ(mode(file.path()), file.is_directory() ? 0700U : 0600U) << file.path();
    service.signal(SIGTERM);
    EXPECT_EQ(service.wait(), 0);
    EXPECT_EQ(service.errors(), "");
}

TEST(Start, WhatStandsInTheWayIsSaid) {
    const TemporaryFolder folder;
    ServiceProcess first(folder.path() / "a");
    const auto failure = [&](const std::filesystem::path& data, std::vector<std::string> arguments) {
        ServiceProcess service(data, std::move(arguments));
        EXPECT_EQ(service.startLine(), "");
        EXPECT_EQ(service.wait(), 1);
        return service.errors();
    };
    EXPECT_THAT(failure(folder.path() / "b", {"--port", std::to_string(first.port())}),
        HasSubstr("127.0.0.1:" + std::to_string(first.port())));
    EXPECT_THAT(failure(folder.path() / "a", {}), HasSubstr("другой экземпляр"));
    EXPECT_THAT(failure("/proc/korvi", {}), HasSubstr("/proc/korvi"));
    EXPECT_THAT(failure(folder.path() / "c", {"--provider", "openai", "--openai-url", "http://models.example/v1"}),
        HasSubstr("--allow-plain-http"));
    EXPECT_THAT(failure(folder.path() / "c", {"--wrong"}), HasSubstr("--wrong"));
}

TEST(Start, ADamagedDatabaseIsNamedAndNotTouched) {
    const TemporaryFolder folder;
    {
        ServiceProcess service(folder.path());
        signIn(service, "user@example.com");
        service.signal(SIGTERM);
        EXPECT_EQ(service.wait(), 0);
    }
    const auto file = folder.path() / "korvi.db";
    {
        // The root page of a table: the file still looks like a database from outside.
        std::fstream damage(file, std::ios::in | std::ios::out | std::ios::binary);
        damage.seekp(4096);
        damage << std::string(8192, '\xA5');
    }
    const auto size = std::filesystem::file_size(file);
    ServiceProcess service(folder.path());
    EXPECT_EQ(service.startLine(), "");
    EXPECT_EQ(service.wait(), 1);
    const std::string said = service.errors();
    EXPECT_THAT(said, HasSubstr(file.string()));
    EXPECT_THAT(said, HasSubstr("повреждён"));
    EXPECT_EQ(std::filesystem::file_size(file), size);
}

TEST(Start, AFullDiskIsReportedToWhoeverAsksAndNothingStoredIsLost) {
    const TemporaryFolder folder;
    std::string token;
    {
        ServiceProcess service(folder.path());
        token = signIn(service, "user@example.com");
        service.signal(SIGTERM);
        service.wait();
    }
    // No file may grow beyond what is there: writes fail as they do on a full disk.
    const auto limit = std::filesystem::file_size(folder.path() / "korvi.db") / 2;
    ServiceProcess service(folder.path(), {"--demo-delay-ms", "0"}, limit);
    ASSERT_NE(service.port(), 0) << service.errors();
    ChatClient client(service.port(), token);
    std::string message;
    for (int i = 0; i < 20 && message.empty(); ++i) {
        client.send(createFrame("длинный ответ"));
        const auto last = client.receiveAnswer().back();
        if (last["event"] == "error")
            message = last["data"]["message"];
    }
    EXPECT_THAT(message, HasSubstr("на диске нет места"));
    EXPECT_EQ(request(service.port(), "GET", "/user", {}, token).status, 200);
    service.signal(SIGTERM);
    EXPECT_EQ(service.wait(), 0);
    ServiceProcess again(folder.path());
    EXPECT_EQ(request(again.port(), "GET", "/user", {}, token).status, 200);
}

}
}
