#include "Providers/OpenAiRound.h"

#include "Core/Json.h"
#include "Core/Text.h"

#include <utility>

namespace korvi::service {

using nlohmann::json;

namespace {

constexpr std::size_t keptErrorBody = std::size_t{64} * 1024;

std::string errorText(const json& body) {
    const auto error = body.is_object() ? body.find("error") : body.end();
    if (body.is_object() && error != body.end())
        return error->is_string() ? error->get<std::string>() : stringAt(*error, "message").value_or("без пояснения");
    return {};
}

}

OpenAiRound::OpenAiRound(CurlLoop& curl, HttpPost post, std::string model, Handlers handlers)
    : url_(post.url)
    , model_(std::move(model))
    , idle_(post.idleTimeout)
    , handlers_(std::move(handlers)) {
    post.onStatus = [this](long status, const std::string& type, const std::string& retryAfter) {
        status_ = status;
        isStream_ = status == 200 && type.find("application/json") == std::string::npos;
        // The header may also hold a date, which helps nobody in a message.
        if (retryAfter.find_first_not_of("0123456789") == std::string::npos)
            retryAfter_ = retryAfter;
    };
    post.onBytes = [this](const std::string& bytes) { receive(bytes); };
    post.onEnd = [this](const HttpOutcome& outcome) { end(outcome); };
    transfer_ = curl.start(std::move(post));
}

void OpenAiRound::finish() {
    if (std::exchange(concluded_, true))
        return;
    const auto tell = handlers_.onFinished;
    tell();
}

void OpenAiRound::fail(const std::string& message) {
    if (std::exchange(concluded_, true))
        return;
    const auto tell = handlers_.onFailed;
    tell(message, refusesTools());
}

void OpenAiRound::receive(const std::string& bytes) {
    if (concluded_)
        return;
    if (!isStream_) {
        if (body_.size() < (status_ == 200 ? SseParser::maximumEvent : keptErrorBody))
            body_ += bytes;
        return;
    }
    const auto alive = std::weak_ptr(alive_);
    for (const std::string& data : parser_.feed(bytes)) {
        takeEvent(data);
        if (alive.expired() || concluded_)
            return;
    }
    if (parser_.overflowed())
        fail("Сервер модели прислал слишком длинное событие. Текст до этого места сохранён.");
}

void OpenAiRound::takeEvent(const std::string& data) {
    if (data == "[DONE]")
        return finish();
    const auto event = parseJson(data);
    if (!event || !event->is_object())
        return fail("Ответ сервера модели не удалось разобрать: это не JSON. Проверьте адрес " + url_ +
            ". Текст до этого места сохранён.");
    if (const auto error = event->find("error"); error != event->end() && !error->is_null())
        return fail("Сервер модели сообщил об ошибке: " + errorText(*event) +
            ". Текст до этого места сохранён — отправьте сообщение ещё раз.");
    takeChoice(*event, "delta");
}

void OpenAiRound::takeChoice(const json& event, const char* key) {
    const auto choices = event.find("choices");
    if (choices == event.end() || !choices->is_array() || choices->empty() || !choices->front().is_object())
        return;
    const json& choice = choices->front();
    isComplete_ = isComplete_ || stringAt(choice, "finish_reason");
    const auto delta = choice.find(key);
    if (delta == choice.end() || !delta->is_object())
        return;
    const auto alive = std::weak_ptr(alive_);
    const auto say = handlers_.onDelta;
    for (const char* name : {"reasoning_content", "reasoning"}) {
        if (const auto text = stringAt(*delta, name); text && !text->empty()) {
            say(ProviderDelta{PieceKind::thinking, *text});
            break;
        }
    }
    if (alive.expired())
        return;
    if (const auto text = stringAt(*delta, "content"); text && !text->empty()) {
        hasText_ = true;
        say(ProviderDelta{PieceKind::text, *text});
    }
    if (alive.expired())
        return;
    if (const auto calls = delta->find("tool_calls"); calls != delta->end() && calls->is_array() && !calls->empty()) {
        hasCalls_ = true;
        const auto tell = handlers_.onToolCalls;
        tell(*calls);
    }
}

void OpenAiRound::end(const HttpOutcome& outcome) {
    if (concluded_)
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
        return finish();
    fail(failureText(outcome));
}

bool OpenAiRound::refusesTools() const {
    return status_ >= 400 && status_ < 500 &&
        lowerCase(errorText(parseJson(body_).value_or(json()))).find("tool") != std::string::npos;
}

std::string OpenAiRound::failureText(const HttpOutcome& outcome) const {
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
        return "На сервере модели ошибка (" + std::to_string(status_) + "). Отправьте сообщение ещё раз чуть позже." +
            why;
    if (status_ != 200)
        return "Сервер модели ответил ошибкой " + std::to_string(status_) + "." + why;
    if (hasText_)
        return "Соединение с моделью оборвалось. Текст до этого места сохранён — отправьте сообщение ещё раз.";
    return "Ответ сервера модели не похож на ответ модели. Проверьте адрес " + url_ + "." + why;
}

}
