#include "Providers/OpenAiProvider.h"

#include "Core/Json.h"
#include "Providers/SseParser.h"

#include <curl/curl.h>
#include <optional>
#include <stdexcept>

namespace korvi::service {

using nlohmann::json;

namespace {

constexpr std::size_t keptErrorBody = std::size_t{64} * 1024;
/// Older turns beyond this are left out: no model reads more, and a request has to stay sendable.
constexpr std::size_t historyBytes = std::size_t{512} * 1024;

std::string urlPart(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, 0) != CURLUE_OK)
        return {};
    std::string result(text);
    curl_free(text);
    return result;
}

void checkAddress(const OpenAiSettings& settings) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    if (curl_url_set(url.get(), CURLUPART_URL, settings.url.c_str(), 0) != CURLUE_OK)
        throw std::runtime_error("--openai-url: это не адрес: «" + settings.url + "»");
    const std::string scheme = urlPart(url.get(), CURLUPART_SCHEME);
    const std::string host = urlPart(url.get(), CURLUPART_HOST);
    const bool isLocal = host == "localhost" || host.starts_with("127.") || host == "[::1]";
    if (scheme == "https" || (scheme == "http" && (isLocal || settings.allowPlainHttp)))
        return;
    throw std::runtime_error(
        "--openai-url: для адреса вне своего компьютера нужен https:// — иначе ключ и разговоры пойдут "
        "открытым текстом. Если это своя доверенная сеть, добавьте --allow-plain-http.");
}

/// One turn in the protocol's form; absent if there is nothing to say in it.
std::optional<json> messageFrom(const ProviderTurn& turn) {
    std::string text;
    json images = json::array();
    for (const json& part : turn.content) {
        const auto type = stringAt(part, "type");
        if (type == "text")
            text += stringAt(part, "text").value_or("");
        else if (type == "file_url")
            text += "[Приложен файл: " + stringAt(part, "filename").value_or("без имени") + "]\n";
        else if (type == "image_url")
            if (const auto url = stringAt(part, "imageUrl");
                url && (url->starts_with("http") || url->starts_with("data:")))
                images.push_back({{"type", "image_url"}, {"image_url", {{"url", *url}}}});
    }
    if (images.empty())
        return text.empty() ? std::nullopt : std::optional(json{{"role", turn.role}, {"content", text}});
    if (!text.empty())
        images.push_back({{"type", "text"}, {"text", text}});
    return json{{"role", turn.role}, {"content", images}};
}

json messagesFrom(const std::vector<ProviderTurn>& history) {
    std::vector<json> newestFirst;
    std::size_t bytes = 0;
    for (auto turn = history.rbegin(); turn != history.rend(); ++turn) {
        auto message = messageFrom(*turn);
        if (!message)
            continue;
        bytes += dumpJson(*message).size();
        if (bytes > historyBytes && !newestFirst.empty())
            break;
        newestFirst.push_back(std::move(*message));
    }
    return json(std::vector<json>(newestFirst.rbegin(), newestFirst.rend()));
}

/// One answer: bytes in, deltas out.
class OpenAiStream : public ProviderStream {
public:
    OpenAiStream(CurlLoop& curl, HttpPost post, std::string model, ProviderSink sink)
        : url_(post.url)
        , model_(std::move(model))
        , idle_(post.idleTimeout)
        , sink_(std::move(sink)) {
        post.onStatus = [this](long status, const std::string& type, const std::string& retryAfter) {
            status_ = status;
            isStream_ = status == 200 && type.find("application/json") == std::string::npos;
            // The header may also hold a date, which helps nobody in a message.
            if (retryAfter.find_first_not_of("0123456789") == std::string::npos)
                retryAfter_ = retryAfter;
        };
        post.onBytes = [this](std::string bytes) { receive(bytes); };
        post.onEnd = [this](HttpOutcome outcome) { end(outcome); };
        transfer_ = curl.start(std::move(post));
    }

private:
    // The sink may destroy this stream with its last call, and with any other.
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

    void receive(const std::string& bytes) {
        if (!sink_)
            return;
        if (!isStream_) {
            if (body_.size() < (status_ == 200 ? SseParser::maximumEvent : keptErrorBody))
                body_ += bytes;
            return;
        }
        const auto alive = std::weak_ptr(alive_);
        for (const std::string& data : parser_.feed(bytes)) {
            takeEvent(data);
            if (alive.expired() || !sink_)
                return;
        }
        if (parser_.overflowed())
            conclude(ProviderFailed{"Сервер модели прислал слишком длинное событие. Текст до этого места сохранён."});
    }

    void takeEvent(const std::string& data) {
        if (data == "[DONE]")
            return conclude(ProviderFinished{});
        const auto event = parseJson(data);
        if (!event || !event->is_object())
            return conclude(ProviderFailed{"Ответ сервера модели не удалось разобрать: это не JSON. Проверьте адрес " +
                url_ + ". Текст до этого места сохранён."});
        if (const auto error = event->find("error"); error != event->end() && !error->is_null())
            return conclude(ProviderFailed{"Сервер модели сообщил об ошибке: " + errorText(*event) +
                ". Текст до этого места сохранён — отправьте сообщение ещё раз."});
        takeChoice(*event, "delta");
    }

    void takeChoice(const json& event, const char* key) {
        const auto choices = event.find("choices");
        if (choices == event.end() || !choices->is_array() || choices->empty() || !choices->front().is_object())
            return;
        const json& choice = choices->front();
        isComplete_ = isComplete_ || stringAt(choice, "finish_reason");
        const auto delta = choice.find(key);
        if (delta == choice.end())
            return;
        const auto alive = std::weak_ptr(alive_);
        for (const char* name : {"reasoning_content", "reasoning"}) {
            if (const auto text = stringAt(*delta, name); text && !text->empty()) {
                emit(ProviderDelta{PieceKind::thinking, *text});
                break;
            }
        }
        if (alive.expired())
            return;
        if (const auto text = stringAt(*delta, "content"); text && !text->empty()) {
            hasText_ = true;
            emit(ProviderDelta{PieceKind::text, *text});
        }
    }

    void end(const HttpOutcome& outcome) {
        if (!sink_)
            return;
        if (outcome.kind == HttpOutcome::Kind::answered && status_ == 200 && !isStream_) {
            // An endpoint that does not stream answers all at once.
            const auto whole = parseJson(body_);
            const auto alive = std::weak_ptr(alive_);
            if (whole && whole->is_object())
                takeChoice(*whole, "message");
            if (alive.expired())
                return;
        }
        if (outcome.kind == HttpOutcome::Kind::answered && status_ == 200 && (isComplete_ || hasWholeAnswer()))
            return conclude(ProviderFinished{});
        conclude(ProviderFailed{failureText(outcome)});
    }

    bool hasWholeAnswer() const { return !isStream_ && hasText_; }

    static std::string errorText(const json& body) {
        const auto error = body.is_object() ? body.find("error") : body.end();
        if (body.is_object() && error != body.end())
            return error->is_string() ? error->get<std::string>()
                                      : stringAt(*error, "message").value_or("без пояснения");
        return {};
    }

    std::string failureText(const HttpOutcome& outcome) const {
        switch (outcome.kind) {
        case HttpOutcome::Kind::unreachable:
            return "Модель недоступна: не удаётся подключиться к " + url_ +
                ". Проверьте, что её сервер запущен и адрес --openai-url верен.";
        case HttpOutcome::Kind::timedOut:
            return "Модель не отвечает больше " + std::to_string(idle_.count()) +
                " с. Текст до этого места сохранён. Проверьте сервер модели и отправьте сообщение ещё раз.";
        case HttpOutcome::Kind::untrusted:
            return "Сервер модели не подтвердил, что он — тот, за кого себя выдаёт: " + outcome.detail +
                ". Ключ и сообщение ему не отправлены.";
        case HttpOutcome::Kind::cut:
            return "Соединение с моделью оборвалось. Текст до этого места сохранён — отправьте сообщение ещё раз.";
        case HttpOutcome::Kind::answered: break;
        }
        const std::string said = errorText(parseJson(body_).value_or(json()));
        const std::string why = said.empty() ? "" : " Сервер пояснил: «" + said + "».";
        if (status_ == 401 || status_ == 403)
            return "Сервер модели не принял ключ. Проверьте KORVI_OPENAI_KEY или --openai-key-file." + why;
        if (status_ == 404)
            return "Сервер модели не знает адреса " + url_ + " или модели «" + model_ +
                "». Проверьте --openai-url и --model." + why;
        if (status_ == 429)
            return "Сервер модели просит подождать: слишком много запросов или исчерпана квота. Повторите " +
                (retryAfter_.empty() ? "позже." : "через " + retryAfter_ + " с.") + why;
        if (status_ >= 500)
            return "На сервере модели ошибка (" + std::to_string(status_) +
                "). Отправьте сообщение ещё раз чуть позже." + why;
        if (status_ != 200)
            return "Сервер модели ответил ошибкой " + std::to_string(status_) + "." + why;
        if (hasText_)
            return "Соединение с моделью оборвалось. Текст до этого места сохранён — отправьте сообщение ещё раз.";
        return "Ответ сервера модели не похож на ответ модели. Проверьте адрес " + url_ + "." + why;
    }

    std::string url_;
    std::string model_;
    std::chrono::seconds idle_;
    ProviderSink sink_;
    SseParser parser_;
    std::string body_;
    std::string retryAfter_;
    long status_ = 0;
    bool isStream_ = false;
    bool isComplete_ = false;
    bool hasText_ = false;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    // Last: destroyed first, so that nothing above is called once it is going.
    std::shared_ptr<void> transfer_;
};

}

OpenAiProvider::OpenAiProvider(asio::io_context& io, OpenAiSettings settings)
    : settings_(std::move(settings))
    , curl_(io) {
    checkAddress(settings_);
    while (settings_.url.ends_with('/'))
        settings_.url.pop_back();
}

std::string OpenAiProvider::modelFor(const std::string& mode) const {
    const auto found = settings_.modelForMode.find(mode);
    if (found != settings_.modelForMode.end())
        return found->second;
    return settings_.model.empty() ? mode : settings_.model;
}

std::unique_ptr<ProviderStream> OpenAiProvider::start(const ProviderRequest& request, ProviderSink sink) {
    const std::string model = modelFor(request.mode);
    HttpPost post;
    post.url = settings_.url + "/chat/completions";
    post.headers = {"Content-Type: application/json", "Accept: text/event-stream", "Expect:"};
    if (!settings_.key.empty())
        post.headers.push_back("Authorization: Bearer " + settings_.key);
    post.body = dumpJson({{"model", model}, {"stream", true}, {"messages", messagesFrom(request.history)}});
    post.idleTimeout = settings_.idleTimeout;
    return std::make_unique<OpenAiStream>(curl_, std::move(post), model, std::move(sink));
}

}
