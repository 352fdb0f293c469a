#include "Core/Asio.h"
#include "Support/Client.h"

#include <boost/asio/write.hpp>
#include <csignal>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>

namespace korvi::service::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct FileTest : testing::Test {
    TemporaryFolder folder;
    ServiceProcess service{folder.path(), {"--demo-delay-ms", "0"}};
    std::string token = signIn(service, "user@example.com");

    /// How many files lie in the folder, finished or not.
    std::size_t filesOnDisk() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path() / "files"))
            count += entry.is_regular_file() ? 1 : 0;
        return count;
    }
    Fetched send(const std::string& filename, const std::string& bytes) const {
        return upload(service.port(), token, multipart(filename, "application/octet-stream", bytes));
    }
    static std::string messageOf(const Fetched& fetched) {
        const json body = json::parse(fetched.body, nullptr, false);
        return body.is_object() ? body.value("message", "") : "(no JSON) " + fetched.body;
    }
};

TEST_F(FileTest, AreTakenUpToTheirLimitAndRefusedInWordsBeyondIt) {
    constexpr std::size_t limit = 10'000'000;
    EXPECT_EQ(send("report.bin", std::string(limit, 'x')).status, 200);
    const auto refused = send("report.bin", std::string(limit + 1, 'x'));
    EXPECT_EQ(refused.status, 413);
    EXPECT_EQ(messageOf(refused), "Файл слишком большой. Максимум: 10 МБ.");
    EXPECT_EQ(send("film.MP4", std::string(limit + 1, 'x')).status, 200) << "by its name";
    EXPECT_EQ(send("film", "\x1A\x45\xDF\xA3" + std::string(limit, 'x')).status, 200) << "by its content";
    EXPECT_EQ(send("film.mp4", std::string(2 * limit, 'x')).status, 200);
    EXPECT_EQ(send("film.mp4", std::string(2 * limit + 1, 'x')).status, 413);
    EXPECT_EQ(messageOf(send("film.mp4", std::string(8 * limit, 'x'))),
        "Файл слишком большой. Видео и аудио: не больше 20 МБ.")
        << "although the peer is still sending";
    EXPECT_EQ(filesOnDisk(), 4U) << "what was refused leaves nothing";
}

TEST_F(FileTest, AnUploadThatIsBrokenOffOrMalformedLeavesNothing) {
    struct Case {
        std::string form;
        const char* message;
    };
    const std::string head =
        "--korvi-boundary\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a\"\r\n\r\n";
    for (const Case& each : std::vector<Case>{{head + "bytes", "не полностью"}, {"bytes", "не полностью"},
             {"--korvi-boundary\r\nContent-Disposition: form-data; name=\"other\"\r\n\r\nx\r\n--korvi-boundary--",
                 "«file»"},
             {"--korvi-boundary?\r\n\r\n", "не разобрано"}, {head + std::string(20'000, 'x'), "не полностью"},
             {"--korvi-boundary\r\n" + std::string(20'000, 'x'), "не разобрано"}}) {
        const auto reply = upload(service.port(), token, each.form);
        EXPECT_EQ(reply.status, 400) << each.form.substr(0, 60);
        EXPECT_THAT(messageOf(reply), HasSubstr(each.message)) << each.form.substr(0, 60);
    }
    EXPECT_EQ(upload(service.port(), "wrong", head).status, 401);
    EXPECT_EQ(filesOnDisk(), 0U);

    asio::io_context io;
    asio::ip::tcp::socket socket(io);
    socket.connect({asio::ip::address_v4::loopback(), static_cast<unsigned short>(service.port())});
    asio::write(socket,
        asio::buffer("POST /api/v1/storage/upload HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer " + token +
            "\r\nContent-Type: multipart/form-data; boundary=korvi-boundary\r\nContent-Length: 900000\r\n\r\n" + head +
            std::string(300'000, 'x')));
    while (filesOnDisk() == 0)
        std::this_thread::yield();
    socket.close();
    while (filesOnDisk() != 0)
        std::this_thread::yield();
}

TEST_F(FileTest, ADraftThatACrashLeftIsSweptAway) {
    const std::string address = uploaded(service.port(), token, "kept.txt", "text");
    service.signal(SIGKILL);
    service.wait();
    const auto draft = folder.path() / "files" / "draft-abcdef";
    ASSERT_EQ(::mkdir((folder.path() / "files" / "someone").c_str(), 0700), 0);
    for (const auto& path : {draft, folder.path() / "files" / "someone" / "stray"})
        std::fclose(std::fopen(path.c_str(), "w"));
    const ServiceProcess again(folder.path());
    ASSERT_NE(again.port(), 0);
    EXPECT_EQ(filesOnDisk(), 1U);
    const std::string path = address.substr(address.find("/files/"));
    EXPECT_EQ(fetch("http://127.0.0.1:" + std::to_string(again.port()) + path).body, "text");
}

TEST_F(FileTest, LieUnderRandomNamesThatNobodyElseMayRead) {
    uploaded(service.port(), token, "../../etc/passwd", "secret");
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path() / "files"))
        if (entry.is_regular_file())
            found.push_back(entry.path());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].filename().string().size(), 43U);
    struct stat status {};
    ASSERT_EQ(::stat(found[0].c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    const std::string own = request(service.port(), "GET", "/user", {}, token).body["id"];
    EXPECT_EQ(found[0].parent_path().filename(), own);
}

TEST_F(FileTest, NamesAreMadeHarmless) {
    const std::string longName = std::string(300, 'a') + ".txt";
    for (const auto& [given, kept] : std::vector<std::pair<std::string, std::string>>{{"../../etc/passwd", "passwd"},
             {"C:\\\\docs\\\\отчёт.pdf", "%D0%BE%D1%82%D1%87%D1%91%D1%82.pdf"}, {"...hidden", "hidden"}, {"", "file"},
             {"/", "file"}, {"a\tb.txt", "ab.txt"}, {"a%22b.txt", "a%22b.txt"},
             {longName, std::string(120, 'a') + ".txt"}, {"\xFF.txt", "%EF%BF%BD.txt"}}) {
        const std::string address = uploaded(service.port(), token, given, "x");
        EXPECT_EQ(address.substr(address.rfind('/') + 1), kept) << given;
    }
}

TEST_F(FileTest, AreDeliveredInRangesWithoutAToken) {
    std::string bytes;
    for (int i = 0; i < 100'000; ++i)
        bytes += std::to_string(i) + " ";
    const std::string address = uploaded(service.port(), token, "film.webm", bytes);
    const auto whole = fetch(address);
    EXPECT_EQ(whole.status, 200);
    EXPECT_EQ(whole.body, bytes);
    EXPECT_EQ(whole.headers.at("content-type"), "video/webm");
    EXPECT_EQ(whole.headers.at("content-length"), std::to_string(bytes.size()));
    EXPECT_EQ(whole.headers.at("x-content-type-options"), "nosniff");
    EXPECT_EQ(whole.headers.count("content-disposition"), 0U);

    const std::string size = std::to_string(bytes.size());
    struct Case {
        std::string range;
        long status;
        std::size_t from;
        std::size_t count;
    };
    const std::size_t last = bytes.size() - 1;
    for (const Case& each : std::vector<Case>{{"bytes=0-0", 206, 0, 1}, {"bytes=10-19", 206, 10, 10},
             {"bytes=100-", 206, 100, bytes.size() - 100}, {"bytes=-7", 206, bytes.size() - 7, 7},
             {"bytes=-99999999", 206, 0, bytes.size()}, {"bytes=5-99999999", 206, 5, bytes.size() - 5},
             {"bytes=" + std::to_string(last) + "-", 206, last, 1}, {"bytes=" + size + "-", 416, 0, 0},
             {"bytes=-0", 416, 0, 0}, {"bytes=1-2,4-5", 200, 0, bytes.size()}, {"bytes=9-2", 200, 0, bytes.size()},
             {"bytes=x", 200, 0, bytes.size()}, {"lines=1-2", 200, 0, bytes.size()},
             {"bytes=99999999999999999999-", 200, 0, bytes.size()}}) {
        const auto part = fetch(address, {"Range: " + each.range});
        EXPECT_EQ(part.status, each.status) << each.range;
        if (each.status == 416) {
            EXPECT_EQ(part.headers.at("content-range"), "bytes */" + size);
            continue;
        }
        EXPECT_EQ(part.body, bytes.substr(each.from, each.count)) << each.range;
        if (each.status == 206) {
            EXPECT_EQ(part.headers.at("content-range"),
                "bytes " + std::to_string(each.from) + "-" + std::to_string(each.from + each.count - 1) + "/" + size);
        }
    }
    const auto head = fetch(address, {}, "HEAD");
    EXPECT_EQ(head.headers.at("content-length"), size);
    EXPECT_EQ(head.body, "");
    const std::string tag = head.headers.at("etag");
    const auto same = fetch(address, {"If-None-Match: \"x\", " + tag});
    EXPECT_EQ(same.status, 304);
    EXPECT_EQ(same.body, "");
    EXPECT_EQ(fetch(address, {"Range: bytes=0-1", "If-Range: " + tag}).status, 206);
    EXPECT_EQ(fetch(address, {"Range: bytes=0-1", "If-Range: \"x\""}).status, 200);

    std::string other = address;
    other[other.find("/files/") + 8] ^= 1;
    EXPECT_EQ(fetch(other).status, 404);
    EXPECT_EQ(fetch(address, {}, "POST", "x").status, 405);
}

TEST_F(FileTest, PagesAndDrawingsRunNoScripts) {
    for (const auto& [name, type, isShown] :
        std::vector<std::tuple<std::string, std::string, bool>>{{"a.svg", "image/svg+xml", true},
            {"a.html", "text/html; charset=utf-8", false}, {"a.pdf", "application/pdf", false},
            {"a.py", "text/plain; charset=utf-8", false}, {"a", "application/octet-stream", false}}) {
        const auto got = fetch(uploaded(service.port(), token, name, "<svg/>"));
        EXPECT_EQ(got.headers.at("content-type"), type);
        EXPECT_THAT(got.headers.at("content-security-policy"), StartsWith("sandbox; default-src 'none'"));
        EXPECT_EQ(got.headers.count("content-disposition"), isShown ? 0U : 1U) << name;
    }
    const std::string odd = uploaded(service.port(), token, "x", "y", "text/html\r\nX-Evil: 1");
    EXPECT_EQ(fetch(odd).headers.count("x-evil"), 0U);
}

TEST_F(FileTest, GoWithTheLastChatThatUsesThem) {
    const std::string shared = uploaded(service.port(), token, "shared.txt", "shared");
    const std::string single = uploaded(service.port(), token, "single.txt", "single");
    ChatClient client(service.port(), token);
    const auto ask = [&](const std::vector<std::string>& addresses) {
        json content = json::array();
        for (const auto& address : addresses)
            content.push_back(
                {{"type", "file_url"}, {"fileUrl", address}, {"filename", "a.txt"}, {"mimetype", "text/plain"}});
        client.send({{"event", "create"}, {"data", {{"mode", "auto"}, {"content", content}}}});
        const long long chat = client.receiveAnswer()[0]["data"]["id"];
        const json stored =
            request(service.port(), "GET", "/chats/" + std::to_string(chat) + "/messages", {}, token).body["data"];
        EXPECT_EQ(stored[0]["content"], content) << "the addresses come back as they were given";
        return "/chats/" + std::to_string(chat);
    };
    const std::string first = ask({shared, single});
    const std::string second = ask({shared});
    request(service.port(), "DELETE", first, {}, token);
    EXPECT_EQ(fetch(single).status, 404);
    EXPECT_EQ(fetch(shared).body, "shared");
    request(service.port(), "DELETE", second, {}, token);
    EXPECT_EQ(fetch(shared).status, 404);
    EXPECT_EQ(filesOnDisk(), 0U);

    const std::string last = uploaded(service.port(), token, "last.txt", "last");
    request(service.port(), "DELETE", "/user", {}, token);
    EXPECT_EQ(fetch(last).status, 404);
    EXPECT_EQ(filesOnDisk(), 0U);
}

TEST_F(FileTest, ConnectionsServeOneRequestAfterAnotherAndOddOnesAreAnswered) {
    asio::io_context io;
    asio::ip::tcp::socket socket(io);
    socket.connect({asio::ip::address_v4::loopback(), static_cast<unsigned short>(service.port())});
    const auto exchange = [&](const std::string& sent, const std::string& until) {
        asio::write(socket, asio::buffer(sent));
        std::string got;
        char bytes[4096];
        boost::system::error_code error;
        while (!error && got.find(until) == std::string::npos)
            got.append(bytes, socket.read_some(asio::buffer(bytes), error));
        return got;
    };
    EXPECT_THAT(exchange("GET /api/v1/chats HTTP/1.1\r\nHost: x\r\n\r\n", "Войдите"), StartsWith("HTTP/1.1 401"));
    EXPECT_THAT(exchange("PATCH /api/v1/chats/1 HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer " + token +
                        "\r\nTransfer-Encoding: chunked\r\n\r\nc\r\n{\"name\":\"x\"}\r\n0\r\n\r\n",
                    "Чат не найден"),
        StartsWith("HTTP/1.1 404"));
    EXPECT_THAT(exchange("GET /x HTTP/1.1\r\nA: " + std::string(40'000, 'x') + "\r\n\r\n", "слишком длинные"),
        StartsWith("HTTP/1.1 431"));
    socket = asio::ip::tcp::socket(io);
    socket.connect({asio::ip::address_v4::loopback(), static_cast<unsigned short>(service.port())});
    EXPECT_THAT(exchange("nonsense\r\n\r\n", "не запрос HTTP"), StartsWith("HTTP/1.1 400"));
}

}
}
