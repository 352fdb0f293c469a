#include "Http/Api.h"

#include "Auth/StandIns.h"
#include "Core/Json.h"
#include "Core/Limits.h"
#include "Core/Text.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace korvi::service {

using nlohmann::json;

namespace {

constexpr auto deadSession = "Сессия недействительна. Войдите снова.";
constexpr auto noSuchChat = "Чат не найден: возможно, он был удалён.";

/// Whether `path` fits a pattern of fixed parts and at most one "{id}", and the number that stands there.
std::optional<long long> matched(std::string_view pattern, std::string_view path) {
    const auto hole = pattern.find("{id}");
    if (hole == std::string_view::npos)
        return pattern == path ? std::optional(0LL) : std::nullopt;
    const auto tail = pattern.substr(hole + 4);
    if (path.size() <= hole + tail.size() || !path.starts_with(pattern.substr(0, hole)) || !path.ends_with(tail))
        return std::nullopt;
    const auto digits = path.substr(hole, path.size() - hole - tail.size());
    long long id = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || end != digits.data() + digits.size() || id <= 0)
        return std::nullopt;
    return id;
}

json userJson(const UserRow& user) {
    return {{"id", user.id}, {"email", user.email}, {"isBlocked", false}, {"createdAt", user.createdAt},
        {"settings_includeChatHistory", true}};
}

}

Api::Api(SignIn& signIn, AccountStore& accounts, ChatStore& chats, FileStore& files, AnswerEngine& engine,
    Typesetter& typesetter, bool devProviders)
    : signIn_(signIn)
    , accounts_(accounts)
    , chats_(chats)
    , files_(files)
    , engine_(engine)
    , typesetter_(typesetter)
    , devProviders_(devProviders) {}

const std::vector<Api::Route>& Api::routes() {
    static const std::vector<Route> table{
        {"POST", "/auth/email", Access::open, &Api::requestCode},
        {"POST", "/auth/email/verify", Access::open, &Api::verifyCode},
        {"POST", "/auth/google", Access::open, &Api::googleSignIn},
        {"POST", "/auth/vk", Access::open, &Api::vkSignIn},
        {"POST", "/auth/yandex", Access::open, &Api::yandexSignIn},
        {"POST", "/auth/apple", Access::open, &Api::appleSignIn},
        {"GET", "/auth/vk/mobile-callback", Access::page, &Api::vkCallback},
        {"GET", "/auth/yandex/mobile-callback", Access::page, &Api::yandexCallback},
        {"GET", "/auth/apple/mobile-callback", Access::page, &Api::appleCallback},
        {"POST", "/auth/apple/mobile-callback", Access::page, &Api::appleCallback},
        {"GET", "/auth", Access::signedIn, &Api::authenticationRecord},
        {"POST", "/auth/logout", Access::signedIn, &Api::logOut},
        {"GET", "/user", Access::signedIn, &Api::self},
        {"DELETE", "/user", Access::signedIn, &Api::deleteSelf},
        {"GET", "/sockets/ticket", Access::signedIn, &Api::ticket},
        {"GET", "/chats", Access::signedIn, &Api::chats},
        {"GET", "/chats/{id}/messages", Access::signedIn, &Api::messages},
        {"PATCH", "/chats/{id}", Access::signedIn, &Api::renameChat},
        {"PUT", "/chats/{id}/favorite", Access::signedIn, &Api::setFavorite},
        {"DELETE", "/chats/{id}", Access::signedIn, &Api::deleteChat},
    };
    return table;
}

void Api::handle(const Request& request, const Respond& respond) {
    if (!artifactPdf(request, respond))
        respond(handle(request));
}

Response Api::handle(const Request& request) {
    const std::string_view path(request.path);
    if (path.starts_with("/files/")) {
        try {
            return file(request);
        } catch (const StoreError& error) {
            return failure(500, error.what());
        }
    }
    std::string allowed;
    if (path.starts_with(basePath)) {
        for (const Route& route : routes()) {
            const auto id = matched(route.path, path.substr(std::string_view(basePath).size()));
            if (!id)
                continue;
            if (request.method == route.method)
                return run(route, request, *id);
            allowed += (allowed.empty() ? "" : ", ") + std::string(route.method);
        }
    }
    if (allowed.empty())
        return failure(404, "Такого адреса нет: " + request.path);
    auto response = failure(405, "Здесь допустимы только: " + allowed);
    response.headers.emplace_back("Allow", allowed);
    return response;
}

Response Api::run(const Route& route, const Request& request, long long id) {
    try {
        Context context{request, {}, json::object(), id};
        if (route.access == Access::signedIn) {
            const auto session = signIn_.sessionOf(request.bearer);
            if (!session)
                return failure(401, deadSession);
            context.session = *session;
        }
        if (!request.body.empty() && route.access != Access::page) {
            const auto body = parseJson(request.body);
            if (!body || !body->is_object())
                return failure(400, "Тело запроса должно быть объектом JSON.");
            context.body = *body;
        }
        return (this->*route.handler)(context);
    } catch (const StoreError& error) {
        return failure(500, error.what());
    }
}

std::variant<SessionRow, Response> Api::admit(const Request& request) {
    try {
        const auto session = tickets_.redeem(request.queryValue("ticket"));
        if (!session)
            return failure(403, "Билет недействителен: он уже использован или устарел. Запросите новый.");
        // The session may have ended since the ticket was issued.
        const auto bearer = request.bearer.empty() ? std::nullopt : signIn_.sessionOf(request.bearer);
        if (!request.bearer.empty() && !bearer)
            return failure(401, deadSession);
        if (bearer && bearer->id != session->id)
            return failure(403, "Билет выдан другой сессии.");
        if (!accounts_.user(session->userId))
            return failure(401, deadSession);
        if (!engine_.mayConnect(session->userId))
            return failure(429, "Слишком много подключений одного пользователя. Закройте лишние окна.");
        return *session;
    } catch (const StoreError& error) {
        return failure(500, error.what());
    }
}

// Sign-in

Response Api::requestCode(const Context& context) {
    const auto email = SignIn::normalized(stringAt(context.body, "email").value_or(""));
    if (!email)
        return failure(400, "Это не похоже на адрес электронной почты. Проверьте его.");
    if (const auto wait = signIn_.requestCode(*email)) {
        const std::string seconds = std::to_string(wait->count());
        auto response = failure(429, "Слишком много запросов кода. Повторите через " + seconds + " с.");
        response.headers.emplace_back("Retry-After", seconds);
        return response;
    }
    return {};
}

Response Api::verifyCode(const Context& context) {
    const auto email = SignIn::normalized(stringAt(context.body, "email").value_or(""));
    const auto code = stringAt(context.body, "code");
    const auto result = email && code ? signIn_.verify(*email, trimmed(*code)) : std::nullopt;
    if (!result)
        return failure(400, "Неверный или устаревший код. Проверьте его или запросите новый.");
    return signedIn(context, *result);
}

Response Api::signedIn(const Context& context, const SignedIn& result) {
    Response response;
    response.body = userJson(result.user);
    response.body["isRegistration"] = result.isRegistration;
    response.body["session"] = {{"id", result.session.id},
        {"isTrusted", context.body.value("isTrusted", json(true)) == true}, {"opaqueToken", result.token},
        {"createdAt", result.session.createdAt}};
    return response;
}

Response Api::authenticationRecord(const Context& context) {
    Response response{200, {{"userId", context.session.userId}}, {}};
    const auto user = devProviders_ ? accounts_.user(context.session.userId) : std::nullopt;
    for (const char* provider : {"google", "vk", "yandex"})
        if (const auto account = user ? standins::accountOf(provider, user->email) : std::nullopt)
            response.body[std::string(provider) + "Id"] = *account;
    return response;
}

Response Api::logOut(const Context& context) {
    accounts_.removeSession(context.session.id);
    engine_.sessionRemoved(context.session.id);
    return {200, {{"success", true}}, {}};
}

Response Api::self(const Context& context) {
    const auto user = accounts_.user(context.session.userId);
    if (!user)
        return failure(401, deadSession);
    Response response{200, userJson(*user), {}};
    response.body["organizationMembers"] = json::array();
    return response;
}

Response Api::deleteSelf(const Context& context) {
    engine_.userRemoved(context.session.userId);
    accounts_.removeUser(context.session.userId);
    files_.userRemoved(context.session.userId);
    return {200, {{"success", true}}, {}};
}

Response Api::ticket(const Context& context) {
    return {200, {{"ticket", tickets_.issue(context.session)}}, {}};
}

// Chats

Response Api::chats(const Context& context) {
    json data = json::array();
    for (const ChatRow& chat : chats_.chats(context.session.userId))
        data.push_back(chat.toJson());
    return {200, {{"data", std::move(data)}}, {}};
}

Response Api::messages(const Context& context) {
    if (!chats_.chat(context.session.userId, context.id))
        return failure(404, noSuchChat);
    json data = json::array();
    for (const MessageRow& message : chats_.messages(context.session.userId, context.id, context.session.id))
        data.push_back(files_.published(message.toJson()));
    return {200, {{"data", std::move(data)}}, {}};
}

Response Api::renameChat(const Context& context) {
    const std::string given = stringAt(context.body, "name").value_or("");
    const std::string name = firstWords(given, given.size());
    if (name.empty() || utf16Length(name) > limits::chatName)
        return failure(400, "Название чата должно содержать от 1 до 200 знаков.");
    const auto chat = chats_.rename(context.session.userId, context.id, name);
    if (chat)
        engine_.chatRenamed(context.id);
    return chat ? Response{200, chat->toJson(), {}} : failure(404, noSuchChat);
}

Response Api::setFavorite(const Context& context) {
    const std::string value = context.request.queryValue("isFavorite");
    if (value != "true" && value != "false")
        return failure(400, "Параметр isFavorite должен быть true или false.");
    const auto chat = chats_.setFavorite(context.session.userId, context.id, value == "true");
    return chat ? Response{200, chat->toJson(), {}} : failure(404, noSuchChat);
}

Response Api::deleteChat(const Context& context) {
    if (!chats_.chat(context.session.userId, context.id))
        return failure(404, noSuchChat);
    const auto files = files_.onlyUsedBy(context.id);
    chats_.removeChat(context.session.userId, context.id);
    engine_.chatRemoved(context.session.userId, context.id);
    files_.remove(files);
    return {200, {{"success", true}}, {}};
}

}
