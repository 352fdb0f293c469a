#include "AuthenticationRecord.h"
#include "AuthenticationResponse.h"
#include "Chat.h"
#include "ChatMessage.h"
#include "Printing.h"
#include "ToolContent.h"
#include "User.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

// "keyPath: reason", or "decoded".
template <class T>
std::string outcome(const QByteArray& json) {
    try {
        decodeJson<T>(json);
        return "decoded";
    } catch (const DecodingError& error) {
        return error.what();
    }
}

QByteArray with(QByteArray json, const QByteArray& from, const QByteArray& to) {
    return json.replace(from, to);
}

const QByteArray chat = R"({"id":7,"name":"Н","mode":"m","createdAt":"t","updatedAt":"t","userId":"u"})";
const QByteArray message =
    R"({"id":1,"createdAt":"t","chatId":7,"role":"ai","usageTokens":1.5,"content":[{"type":"text","text":"т"}]})";
const QByteArray member =
    R"({"id":"m","email":"e","role":"ADMIN","organizationId":"o","organization":{"id":"o","name":"О"}})";
const QByteArray user =
    R"({"id":"u","isBlocked":false,"createdAt":"t","settings_includeChatHistory":true,"organizationMembers":[)" +
    member + "]}";

TEST(Decoding, AnErrorNamesThePlaceAndHoldsNoValue) {
    const QByteArray list = R"({"data":[)" + message + "," + message + "]}";
    EXPECT_EQ(outcome<MessageListResponse>(list), "decoded");
    EXPECT_EQ(outcome<MessageListResponse>(with(list, R"("text":"т")", R"("text":5)")),
        "data[0].content[0].text: a string is required");
    EXPECT_EQ(outcome<MessageListResponse>(R"({"data":[)" + message + R"(,7]})"), "data[1]: an object is required");
    EXPECT_EQ(outcome<MessageListResponse>(R"({"data":{}})"), "data: an array is required");
    EXPECT_EQ(outcome<MessageListResponse>("[]"), "(document): an object is required");
    EXPECT_NE(outcome<MessageListResponse>("{\"secret"), "decoded");
    EXPECT_EQ(outcome<MessageListResponse>("{\"secret").find("secret"), std::string::npos);
    EXPECT_EQ(outcome<User>(with(user, "ADMIN", "secret")), "organizationMembers[0].role: not a role");
    EXPECT_EQ(outcome<User>(with(user, R"("name":"О")", R"("name":null)")),
        "organizationMembers[0].organization.name: a string is required");
    EXPECT_EQ(outcome<ToolContentWrapper>(R"({"event":"e","data":{"text":1}})"), "data.text: a string is required");
}

TEST(Decoding, AnIntegerIsAnyNumberWithAnExactValue) {
    struct Row {
        const char* json;
        std::optional<qint64> value;
    };
    for (const Row& row : {
             Row{"0", 0},
             Row{"-0", 0},
             Row{"1", 1},
             Row{"-1", -1},
             Row{"1.0", 1},
             Row{"1e3", 1000},
             Row{"9007199254740993", 9007199254740993},
             Row{"9223372036854775807", std::numeric_limits<qint64>::max()},
             Row{"-9223372036854775808", std::numeric_limits<qint64>::min()},
             Row{"1.5", std::nullopt},
             Row{"0.1", std::nullopt},
             Row{"9223372036854775808", std::nullopt},
             Row{"1e30", std::nullopt},
             Row{"\"1\"", std::nullopt},
             Row{"true", std::nullopt},
             Row{"null", std::nullopt},
             Row{"[1]", std::nullopt},
         }) {
        const QByteArray json = with(chat, R"("id":7)", QByteArray(R"("id":)") + row.json);
        if (row.value) {
            ASSERT_EQ(outcome<Chat>(json), "decoded") << row.json;
            EXPECT_EQ(decodeJson<Chat>(json).id, *row.value) << row.json;
            const QByteArray again = QJsonDocument(decodeJson<Chat>(json).toJson()).toJson();
            EXPECT_EQ(decodeJson<Chat>(again).id, *row.value) << row.json << " after a round through the cache";
        } else {
            EXPECT_EQ(outcome<Chat>(json), "id: an integer is required") << row.json;
        }
    }
}

// Each key in turn is left out, null, and of another type.
template <class T>
void expectKeys(const QByteArray& json, const QByteArrayList& required, const QByteArrayList& optional) {
    const QJsonObject whole = QJsonDocument::fromJson(json).object();
    ASSERT_EQ(outcome<T>(json), "decoded");
    const auto outcomeWith = [&](const QByteArray& key, const QJsonValue& value) {
        QJsonObject object = whole;
        if (value.isUndefined())
            object.remove(QLatin1String(key));
        else
            object.insert(QLatin1String(key), value);
        return outcome<T>(QJsonDocument(object).toJson());
    };
    for (const QByteArray& key : required) {
        EXPECT_EQ(outcomeWith(key, QJsonValue::Undefined).rfind(key.toStdString() + ": ", 0), 0u) << key.constData();
        EXPECT_EQ(outcomeWith(key, QJsonValue::Null).rfind(key.toStdString() + ": ", 0), 0u) << key.constData();
    }
    for (const QByteArray& key : optional) {
        EXPECT_EQ(outcomeWith(key, QJsonValue::Undefined), "decoded") << key.constData();
        EXPECT_EQ(outcomeWith(key, QJsonValue::Null), "decoded") << key.constData();
        // No optional key is at once a string, a number, a list, an object and a boolean.
        int refused = 0;
        for (const QJsonValue& value :
            {QJsonValue(u"x"_s), QJsonValue(1.5), QJsonValue(true), QJsonValue(QJsonObject())})
            refused += outcomeWith(key, value) == "decoded" ? 0 : 1;
        EXPECT_GE(refused, 3) << key.constData();
    }
}

TEST(Decoding, RequiredKeysAreRequiredAndOptionalOnesMayBeAbsentOrNullButNotOfAnotherType) {
    expectKeys<Chat>(chat, {"id", "name", "mode", "createdAt", "updatedAt", "userId"},
        {"description", "language", "organizationId", "projectId", "isFavorite"});
    expectKeys<ChatMessage>(message, {"id", "createdAt", "chatId", "role", "usageTokens"}, {"content", "providerId"});
    expectKeys<User>(user, {"id", "isBlocked", "createdAt", "settings_includeChatHistory"},
        {"email", "firstName", "lastName", "phoneNumber", "organizationMembers", "campaign"});
    expectKeys<AuthenticationRecord>(R"({"userId":"u"})", {"userId"}, {"googleId", "vkId", "yandexId", "mailRuId"});
    expectKeys<AuthenticationResponse>(
        R"({"id":"u","isBlocked":false,"createdAt":"t","settings_includeChatHistory":true,)"
        R"("session":{"id":"s","isTrusted":true,"opaqueToken":"t","createdAt":"t"}})",
        {"id", "isBlocked", "createdAt", "settings_includeChatHistory", "session"}, {"isRegistration"});
    expectKeys<Session>(R"({"id":"s","isTrusted":true,"opaqueToken":"t","createdAt":"t"})",
        {"id", "isTrusted", "opaqueToken", "createdAt"}, {"deviceId", "locationId"});
    expectKeys<OrganizationMember>(
        member, {"id", "email", "role", "organizationId"}, {"userId", "createdAt", "updatedAt"});
    expectKeys<Organization>(R"({"id":"o","name":"n"})", {"id", "name"},
        {"members", "settings_availableChatModes", "settings_availableTools", "settings_availableTaskModels"});
    expectKeys<ToolContent>("{}", {}, {"type", "text", "content", "event", "tool"});
}

TEST(Decoding, AChatComesBackFromItsJsonWithAndWithoutTheOptionalFields) {
    for (const QByteArray& json : {chat, QByteArray(R"({"id":-1,"name":"","description":"","language":"ru","mode":"m",
            "createdAt":"t","updatedAt":"u","userId":"u","organizationId":"o","projectId":0,"isFavorite":false})")}) {
        const Chat first = decodeJson<Chat>(json);
        EXPECT_EQ(first.toJson(), QJsonDocument::fromJson(json).object());
        EXPECT_EQ(decodeJson<Chat>(QJsonDocument(first.toJson()).toJson()), first);
    }
}

TEST(Decoding, EveryRoleIsKnownAndNoOther) {
    for (const char* role : {"system", "user", "ai", "assistant", "tool"}) {
        const ChatMessage decoded = decodeJson<ChatMessage>(with(message, R"("ai")", QByteArray("\"") + role + "\""));
        EXPECT_EQ(rawValue(decoded.role), QLatin1String(role));
        EXPECT_EQ(decoded.toJson().value("role"_L1).toString(), QLatin1String(role));
    }
    EXPECT_EQ(outcome<ChatMessage>(with(message, R"("ai")", R"("AI")")), "role: not a role");
}

TEST(Decoding, ASignInKeepsNoMembershipsEvenWhenTheyAreDamaged) {
    const auto response = decodeJson<AuthenticationResponse>(
        R"({"id":"u","isBlocked":false,"createdAt":"t","settings_includeChatHistory":true,"organizationMembers":7,)"
        R"("session":{"id":"s","isTrusted":true,"opaqueToken":"t","createdAt":"t",)"
        R"("location":{"city":"Омск"},"device":{}}})");
    EXPECT_EQ(response.user.organizationMembers, std::nullopt);
    EXPECT_EQ(response.session.location->city, u"Омск"_s);
    EXPECT_EQ(response.session.device->name, std::nullopt);
}

TEST(Decoding, AUserIsNamedAfterWhatIsThere) {
    struct Row {
        const char* extra;
        QString name;
    };
    for (const Row& row : {Row{R"("firstName":"Анна","lastName":"К","email":"e")", u"Анна К"_s},
             Row{R"("firstName":"Анна","email":"e")", u"Анна"_s}, Row{R"("lastName":"К","email":"e")", u"e"_s},
             Row{R"("lastName":"К")", u"User"_s}}) {
        EXPECT_EQ(decodeJson<User>(with(user, R"("isBlocked":false)", QByteArray(R"("isBlocked":false,)") + row.extra))
                      .displayName(),
            row.name);
    }
}

TEST(Decoding, InvitedAndDeletedMembershipsDoNotCount) {
    for (const auto& [role, counts] :
        {std::pair{"OWNER", true}, {"ADMIN", true}, {"MEMBER", true}, {"INVITED", false}, {"DELETED", false}}) {
        const User decoded = decodeJson<User>(with(user, "ADMIN", role));
        EXPECT_EQ(decoded.validOrganizations().size(), counts ? 1u : 0u) << role;
    }
}

TEST(Decoding, AToolBodyTakesItsTextFromContentWhenItHasNone) {
    for (const auto& [json, text] : {std::pair{R"({"text":"t","content":"c"})", "t"},
             {R"({"text":"","content":"c"})", "c"}, {R"({"content":"c"})", "c"}, {R"({"text":""})", ""}}) {
        EXPECT_EQ(decodeJson<ToolContent>(json).text, QString::fromLatin1(text)) << json;
    }
    EXPECT_EQ(decodeJson<ToolContent>("{}").text, std::nullopt);
    EXPECT_FALSE(decodeJson<ToolContent>(R"({"isComplete":true})").isComplete);
}

}
}
