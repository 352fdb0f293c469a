#include "Backend/AuthenticationService.h"
#include "Backend.h"

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

TEST(AuthenticationService, EveryWayIsAskedForInItsOwnWords) {
    Backend backend;
    AuthenticationService service(backend.client);
    const auto none = std::nullopt;
    struct Row {
        std::function<Task<AuthenticationResponse>()> call;
        QString line;
        QByteArray body;
    };
    const std::vector<Row> rows{
        {[&] { return service.validateEmailCode(u"a@b.c"_s, u"1234"_s); }, u"POST /auth/email/verify"_s,
            R"({"email":"a@b.c","code":"1234","isTrusted":true})"},
        {[&] { return service.googleLogin(none, u"c"_s, u"x:/y"_s); }, u"POST /auth/google"_s,
            R"({"code":"c","redirectUri":"x:/y","isTrusted":true})"},
        {[&] { return service.googleLogin(u"i"_s, none, none, u"spring"_s); }, u"POST /auth/google"_s,
            R"({"idToken":"i","campaign":"spring","isTrusted":true})"},
        {[&] { return service.vkLogin(u"t"_s, u"u"_s, u"Анна"_s, none); }, u"POST /auth/vk"_s,
            R"({"silentToken":"t","uuid":"u","firstName":"Анна"})"},
        {[&] { return service.yandexLogin(u"t"_s); }, u"POST /auth/yandex"_s, R"({"oauthToken":"t","isTrusted":true})"},
        {[&] { return service.appleLogin(u"t"_s, u"u"_s, u"n"_s); }, u"POST /auth/apple"_s,
            R"({"identityToken":"t","userID":"u","nonce":"n","isTrusted":true})"},
    };
    for (const Row& row : rows) {
        backend.signIn("kept");
        const Running<AuthenticationResponse> asking(row.call);
        EXPECT_EQ(backend.http.last().line(), row.line);
        EXPECT_EQ(QJsonDocument::fromJson(backend.http.last().request.body).object(),
            QJsonDocument::fromJson(row.body).object());
        backend.http.last().answer("{}", 401);
        EXPECT_EQ(asking.error<APIError>()->asServerError()->status, 401);
        EXPECT_EQ(backend.token(), "kept") << row.line.toStdString();
    }
}

TEST(AuthenticationService, TellsWhatIsLinkedAndLogsOut) {
    Backend backend;
    AuthenticationService service(backend.client);
    backend.http.answer(u"/auth"_s, R"({"userId":"u1","googleId":"g","vkId":null})");
    const Running<AuthenticationRecord> reading([&] { return service.getAuthenticationRecord(); });
    EXPECT_EQ(reading.value(), (AuthenticationRecord{u"u1"_s, u"g"_s, {}, {}, {}}));
    backend.http.answer(u"/auth/logout"_s, R"({"success":true})");
    const Running<bool> leaving([&] { return service.logout(); });
    EXPECT_TRUE(leaving.value());
    EXPECT_EQ(backend.http.requests(), (QStringList{u"GET /auth"_s, u"POST /auth/logout"_s}));
}

}
}
