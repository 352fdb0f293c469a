#include "Tools/ImageRun.h"

#include "Core/Json.h"
#include "Core/Text.h"

#include <algorithm>

namespace korvi::service {

using nlohmann::json;
using Phase = ProviderTool::Phase;
using namespace std::chrono_literals;

namespace {

/// The client gives up a picture after 180 s; we say so ourselves before that.
constexpr auto longestWait = 170s;
constexpr std::size_t longestAnswer = std::size_t{40} << 20U;

std::optional<std::string> fromBase64(std::string text) {
    std::erase_if(text, [](char c) { return c == '\n' || c == '\r'; });
    std::replace(text.begin(), text.end(), '+', '-');
    std::replace(text.begin(), text.end(), '/', '_');
    return fromBase64Url(text);
}

}

ImageRun::ImageRun(asio::io_context& io, CurlLoop& curl, FileStore& files, const ToolSettings& settings,
    std::string prompt, ToolOwner owner, ToolBox::Emit emit, ToolBox::Done done)
    : io_(io)
    , curl_(curl)
    , files_(files)
    , settings_(settings)
    , prompt_(std::move(prompt))
    , owner_(std::move(owner))
    , emit_(std::move(emit))
    , done_(std::move(done))
    , limit_(io) {
    asio::post(io_, [this, wanted = std::weak_ptr(alive_)] {
        if (!wanted.expired())
            begin();
    });
}

void ImageRun::begin() {
    const auto wanted = std::weak_ptr(alive_);
    emit_({Phase::start, "generateImage"});
    if (wanted.expired())
        return;
    limit_.expires_after(longestWait);
    limit_.async_wait([this, wanted](const boost::system::error_code& error) {
        if (!error && !wanted.expired())
            fail("время ожидания истекло");
    });
    HttpPost post;
    post.url = settings_.imagesUrl;
    post.headers = {"Content-Type: application/json", "Accept: application/json", "Expect:"};
    if (!settings_.key.empty())
        post.headers.push_back("Authorization: Bearer " + settings_.key);
    post.body = dumpJson({{"model", settings_.imageModel}, {"prompt", prompt_}, {"n", 1}});
    start(std::move(post), &ImageRun::generated);
}

void ImageRun::start(HttpPost post, void (ImageRun::*ended)(const HttpOutcome&)) {
    status_ = 0;
    body_.clear();
    post.idleTimeout = longestWait;
    post.onStatus = [this](long status, const std::string&, const std::string&) { status_ = status; };
    post.onBytes = [this](const std::string& bytes) {
        if (body_.size() + bytes.size() <= longestAnswer)
            body_ += bytes;
        else
            fail("ответ сервера слишком большой");
    };
    post.onEnd = [this, ended](const HttpOutcome& outcome) { (this->*ended)(outcome); };
    transfer_ = curl_.start(std::move(post));
}

void ImageRun::generated(const HttpOutcome& outcome) {
    if (outcome.kind != HttpOutcome::Kind::answered)
        return fail("сервер модели недоступен или не ответил вовремя");
    const json answer = parseJson(body_).value_or(json());
    if (status_ != 200) {
        const json error = answer.is_object() ? answer.value("error", json()) : json();
        const std::string said = error.is_string() ? error.get<std::string>() : stringAt(error, "message").value_or("");
        return fail("сервер модели ответил ошибкой " + std::to_string(status_) +
            (said.empty() ? "" : " («" + firstWords(said, 200) + "»)"));
    }
    const json data = answer.is_object() ? answer.value("data", json()) : json();
    const json first = data.is_array() && !data.empty() ? data.front() : json();
    if (const auto encoded = stringAt(first, "b64_json"); encoded && !encoded->empty()) {
        const auto bytes = fromBase64(*encoded);
        return bytes ? keep(*bytes) : fail("сервер модели прислал не картинку");
    }
    const std::string url = stringAt(first, "url").value_or("");
    if (!url.starts_with("http://") && !url.starts_with("https://"))
        return fail("сервер модели не прислал картинки");
    HttpPost get;
    get.isGet = true;
    get.url = url;
    start(std::move(get), &ImageRun::fetched);
}

void ImageRun::fetched(const HttpOutcome& outcome) {
    if (outcome.kind != HttpOutcome::Kind::answered || status_ != 200)
        return fail("готовую картинку не удалось забрать");
    keep(std::string(body_));
}

void ImageRun::keep(const std::string& bytes) {
    const std::string type = pictureType(bytes);
    if (type.empty())
        return fail("сервер модели прислал не картинку");
    try {
        const std::string extension = type == "image/jpeg" ? "jpg" : type.substr(6);
        const FileRow file = files_.keep(bytes, owner_.userId, owner_.chatId, "image." + extension, type);
        finish({{"type", "image"}, {"imageUrl", FileStore::storedAddress(file)}},
            {"The picture is drawn and the user sees it. Do not give an address of it.", false});
    } catch (const std::runtime_error& error) {
        fail(error.what());
    }
}

void ImageRun::fail(const std::string& why) {
    finish({{"type", "text"}, {"text", "Не удалось создать изображение: " + why}},
        {"Error: the picture could not be drawn.", true});
}

void ImageRun::finish(json content, ToolResult result) {
    const auto wanted = std::weak_ptr(alive_);
    const auto done = std::exchange(done_, nullptr);
    if (!done)
        return;
    limit_.cancel();
    transfer_.reset();
    emit_({Phase::end, "generateImage", std::move(content)});
    if (!wanted.expired())
        done(std::move(result));
}

}
