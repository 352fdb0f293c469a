#include "Providers/OpenAiProvider.h"

#include "Core/Json.h"
#include "Providers/ModelMessages.h"
#include "Providers/OpenAiRound.h"
#include "Tools/ArtifactWriter.h"
#include "Tools/ToolCall.h"

#include <curl/curl.h>
#include <map>
#include <optional>
#include <stdexcept>

namespace korvi::service {

using nlohmann::json;

namespace {

/// How often a model may come back for more tools in one answer; then it has to answer without.
constexpr int mostRounds = 8;

std::string urlPart(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, 0) != CURLUE_OK)
        return {};
    std::string result(text);
    curl_free(text);
    return result;
}

void checkAddress(const std::string& option, const std::string& address, bool allowPlainHttp) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    if (curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0) != CURLUE_OK)
        throw std::runtime_error(option + ": это не адрес: «" + address + "»");
    const std::string scheme = urlPart(url.get(), CURLUPART_SCHEME);
    const std::string host = urlPart(url.get(), CURLUPART_HOST);
    const bool isLocal = host == "localhost" || host.starts_with("127.") || host == "[::1]";
    if (scheme == "https" || (scheme == "http" && (isLocal || allowPlainHttp)))
        return;
    throw std::runtime_error(option +
        ": для адреса вне своего компьютера нужен https:// — иначе ключ и разговоры пойдут "
        "открытым текстом. Если это своя доверенная сеть, добавьте --allow-plain-http.");
}

/// One answer: rounds of a request and the tools that the model asks for in it.
class OpenAiAnswer : public ProviderStream {
public:
    struct Parts {
        asio::io_context& io;
        CurlLoop& curl;
        FileStore& files;
        PdfText& pdfText;
        ToolBox& tools;
    };

    OpenAiAnswer(const Parts& parts, const OpenAiSettings& settings, std::string model, const ProviderRequest& request,
        ProviderSink sink)
        : parts_(parts)
        , settings_(settings)
        , model_(std::move(model))
        , owner_{request.userId, request.chatId}
        , offersTools_(settings.offersTools && request.chatId != 0)
        , sink_(std::move(sink))
        , reader_(std::make_unique<AttachmentReader>(parts.io, parts.files, parts.pdfText, request.history,
              [this, history = request.history](const Attachments& attachments) {
                  messages_ = modelMessages(history, attachments);
                  ask();
              })) {}

private:
    // The sink may destroy this answer with its last call, and with any other.
    void emit(ProviderEvent event) {
        const auto sink = sink_;
        if (sink)
            sink(std::move(event));
    }

    void conclude(ProviderEvent event) {
        const auto sink = std::exchange(sink_, nullptr);
        if (sink)
            sink(std::move(event));
    }

    void ask() {
        calls_ = {};
        writers_.clear();
        said_.clear();
        json body{{"model", model_}, {"stream", true}, {"messages", messages_}};
        if (offersTools_ && rounds_ < mostRounds)
            body["tools"] = parts_.tools.definitions();
        ++rounds_;
        HttpPost post;
        post.url = settings_.url + "/chat/completions";
        post.headers = {"Content-Type: application/json", "Accept: text/event-stream", "Expect:"};
        if (!settings_.key.empty())
            post.headers.push_back("Authorization: Bearer " + settings_.key);
        post.body = dumpJson(body);
        post.idleTimeout = settings_.idleTimeout;
        OpenAiRound::Handlers handlers;
        handlers.onDelta = [this](ProviderDelta delta) {
            if (delta.kind == PieceKind::text)
                said_ += delta.text;
            emit(std::move(delta));
        };
        handlers.onToolCalls = [this](const json& deltas) { takeCalls(deltas); };
        handlers.onFinished = [this] { finishRound(); };
        handlers.onFailed = [this](const std::string& message, bool refusesTools) {
            if (refusesTools && std::exchange(offersTools_, false))
                return ask();
            conclude(ProviderFailed{message});
        };
        // Dropped here, its predecessor may be the one that called.
        const auto before = std::exchange(
            round_, std::make_unique<OpenAiRound>(parts_.curl, std::move(post), model_, std::move(handlers)));
    }

    /// An artifact is shown while the model still writes it; all other tools wait until it has said everything.
    void takeCalls(const json& deltas) {
        ArtifactWriter::Events events;
        for (const auto& change : calls_.take(deltas)) {
            const ToolCall& call = calls_.calls()[change.call];
            if (call.name != "artifact" || !offersTools_)
                continue;
            const auto [writer, isNew] = writers_.try_emplace(change.call);
            if (isNew) {
                // The client writes one at a time.
                for (auto& [at, other] : writers_)
                    if (at != change.call && other.hasStarted() && !other.hasFinished())
                        other.finish(events);
                writer->second.begin(events);
                writer->second.feed(call.arguments, events);
            } else if (!writer->second.hasFinished()) {
                writer->second.feed(change.added, events);
            }
        }
        tell(std::move(events));
    }

    /// False if nobody listens any more.
    bool tell(ArtifactWriter::Events events) {
        const auto wanted = std::weak_ptr(alive_);
        for (auto& event : events) {
            emit(std::move(event));
            if (wanted.expired())
                return false;
        }
        return true;
    }

    void finishRound() {
        ArtifactWriter::Events events;
        for (auto& [at, writer] : writers_)
            if (!writer.hasFinished())
                writer.finish(events);
        if (!tell(std::move(events)))
            return;
        if (calls_.calls().empty() || !offersTools_)
            return conclude(ProviderFinished{});
        json calls = json::array();
        for (std::size_t i = 0; i < calls_.calls().size(); ++i) {
            const ToolCall& call = calls_.calls()[i];
            calls.push_back({{"id", idOf(i)}, {"type", "function"},
                {"function", {{"name", call.name}, {"arguments", call.arguments.empty() ? "{}" : call.arguments}}}});
        }
        messages_.push_back({{"role", "assistant"}, {"content", said_}, {"tool_calls", std::move(calls)}});
        nextCall_ = 0;
        endsAnswer_ = false;
        runNext();
    }

    std::string idOf(std::size_t call) const {
        const std::string& id = calls_.calls()[call].id;
        return id.empty() ? "call_" + std::to_string(rounds_) + "_" + std::to_string(call) : id;
    }

    void runNext() {
        while (nextCall_ < calls_.calls().size()) {
            const std::size_t at = nextCall_++;
            if (const auto writer = writers_.find(at); writer != writers_.end()) {
                const std::string id = " Its id is \"" + writer->second.id() + "\".";
                answerCall(at,
                    writer->second.isComplete()
                        ? "The user sees the document." + id
                        : "The arguments broke off. The user sees the document as far as it came." + id);
                continue;
            }
            const auto done = [this, at](const ToolResult& result) {
                endsAnswer_ = endsAnswer_ || result.endsAnswer;
                answerCall(at, result.text);
                runNext();
            };
            // As with rounds: the one before may be the one that called.
            const auto before = std::exchange(run_,
                parts_.tools.run(
                    calls_.calls()[at], owner_, [this](ProviderTool event) { emit(std::move(event)); }, done));
            return;
        }
        if (endsAnswer_)
            return conclude(ProviderFinished{});
        if (rounds_ > mostRounds)
            return conclude(
                ProviderFailed{"Модель слишком долго пользуется инструментами и так и не ответила. Спросите иначе."});
        ask();
    }

    void answerCall(std::size_t call, const std::string& text) {
        messages_.push_back({{"role", "tool"}, {"tool_call_id", idOf(call)}, {"content", text}});
    }

    Parts parts_;
    const OpenAiSettings& settings_;
    std::string model_;
    ToolOwner owner_;
    bool offersTools_;
    ProviderSink sink_;
    json messages_ = json::array();
    int rounds_ = 0;
    std::string said_;
    ToolCallCollector calls_;
    std::map<std::size_t, ArtifactWriter> writers_;
    std::size_t nextCall_ = 0;
    bool endsAnswer_ = false;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    // Last: destroyed first, so that nothing above is called once they are going.
    std::unique_ptr<AttachmentReader> reader_;
    std::unique_ptr<OpenAiRound> round_;
    std::unique_ptr<ToolRun> run_;
};

ToolSettings toolsFrom(const OpenAiSettings& settings) {
    return {settings.searchUrl, settings.url + "/images/generations", settings.imageModel, settings.key};
}

OpenAiSettings checked(OpenAiSettings settings) {
    checkAddress("--openai-url", settings.url, settings.allowPlainHttp);
    if (!settings.searchUrl.empty())
        checkAddress("--search-url", settings.searchUrl, settings.allowPlainHttp);
    while (settings.url.ends_with('/'))
        settings.url.pop_back();
    return settings;
}

}

OpenAiProvider::OpenAiProvider(
    asio::io_context& io, FileStore& files, PdfText& pdfText, Typesetter& typesetter, OpenAiSettings settings)
    : io_(io)
    , files_(files)
    , pdfText_(pdfText)
    , settings_(checked(std::move(settings)))
    , curl_(io)
    , tools_(io, curl_, files, typesetter, toolsFrom(settings_)) {}

std::string OpenAiProvider::modelFor(const std::string& mode) const {
    const auto found = settings_.modelForMode.find(mode);
    if (found != settings_.modelForMode.end())
        return found->second;
    return settings_.model.empty() ? mode : settings_.model;
}

std::unique_ptr<ProviderStream> OpenAiProvider::start(const ProviderRequest& request, ProviderSink sink) {
    return std::make_unique<OpenAiAnswer>(OpenAiAnswer::Parts{io_, curl_, files_, pdfText_, tools_}, settings_,
        modelFor(request.mode), request, std::move(sink));
}

}
