// Signing in with an account of another provider, in development only.
#include "Auth/StandIns.h"
#include "Core/Json.h"
#include "Core/Secrets.h"
#include "Http/Api.h"

namespace korvi::service {

using nlohmann::json;

namespace {

constexpr auto notHere = "Эта служба не поддерживает вход через других провайдеров. Войдите по коду. "
                         "Для разработки есть ключ --dev-providers.";
constexpr auto notTaken = "Провайдер не подтвердил вход. Попробуйте ещё раз.";

using Fields = std::vector<std::pair<std::string, std::string>>;

/// Where the browser goes next: to the application. A fragment it has (the token of Yandex) it takes along by itself.
Response toApplication(int status, const std::string& provider, const Fields& fields) {
    std::string location = "korviapp://auth/" + provider;
    char separator = '?';
    for (const auto& [name, value] : fields) {
        location += separator + percentEncoded(name) + "=" + percentEncoded(value);
        separator = '&';
    }
    Response response{status, json::object(), {}};
    response.headers.emplace_back("Location", location);
    return response;
}

}

Response Api::signInAs(const Context& context, const std::optional<std::string>& email) {
    if (!email)
        return failure(401, notTaken);
    return signedIn(context, signIn_.signInAs(*email));
}

Response Api::googleSignIn(const Context& context) {
    if (!devProviders_)
        return failure(501, notHere);
    const auto idToken = stringAt(context.body, "idToken");
    const auto code = stringAt(context.body, "code");
    // A code is bound to the address that it was sent to.
    if (!idToken && (!code || !stringAt(context.body, "redirectUri")))
        return failure(400, "Нужен idToken, или code вместе с redirectUri.");
    return signInAs(context, standins::emailOf("google", idToken ? *idToken : *code));
}

Response Api::vkSignIn(const Context& context) {
    if (!devProviders_)
        return failure(501, notHere);
    const auto token = stringAt(context.body, "silentToken");
    if (!token || !stringAt(context.body, "uuid"))
        return failure(400, "Нужны silentToken и uuid.");
    return signInAs(context, standins::emailOf("vk", *token));
}

Response Api::yandexSignIn(const Context& context) {
    if (!devProviders_)
        return failure(501, notHere);
    const auto token = stringAt(context.body, "oauthToken");
    if (!token)
        return failure(400, "Нужен oauthToken.");
    return signInAs(context, standins::emailOf("yandex", *token));
}

Response Api::appleSignIn(const Context& context) {
    if (!devProviders_)
        return failure(501, notHere);
    const auto token = stringAt(context.body, "identityToken");
    const auto userId = stringAt(context.body, "userID");
    const auto nonce = stringAt(context.body, "nonce");
    if (!token || !userId || !nonce)
        return failure(400, "Нужны identityToken, userID и nonce.");
    const auto claims = standins::claimsOf(*token);
    // The token belongs to this request only if it holds the hash of the nonce that was made for it.
    if (!claims || claims->subject != *userId || claims->nonce != sha256Hex(*nonce))
        return failure(401, notTaken);
    return signInAs(context, standins::emailOf("apple", claims->subject));
}

Response Api::vkCallback(const Context& context) {
    if (!devProviders_)
        return failure(501, notHere);
    Fields fields;
    for (const auto& [name, value] : context.request.query)
        if (name != "payload")
            fields.emplace_back(name, value);
    const json payload = parseJson(context.request.queryValue("payload")).value_or(json());
    const json user = payload.is_object() ? payload.value("user", json()) : json();
    const auto take = [&fields](const json& object, const char* from, const char* to) {
        if (const auto value = stringAt(object, from))
            fields.emplace_back(to, *value);
    };
    take(payload, "token", "silentToken");
    take(payload, "uuid", "uuid");
    take(user, "first_name", "firstName");
    take(user, "last_name", "lastName");
    return toApplication(302, "vk", fields);
}

Response Api::yandexCallback(const Context& context) {
    return devProviders_ ? toApplication(302, "yandex", context.request.query) : failure(501, notHere);
}

Response Api::appleCallback(const Context& context) {
    if (!devProviders_)
        return failure(501, notHere);
    // Apple posts a form; the application gets it with GET.
    const bool isForm = context.request.method == "POST";
    return toApplication(303, "apple", isForm ? formFields(context.request.body) : context.request.query);
}

}
