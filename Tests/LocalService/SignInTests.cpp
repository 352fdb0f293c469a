#include "Auth/SignIn.h"
#include "Auth/Tickets.h"
#include "Core/Limits.h"
#include "Options.h"
#include "Support/ServiceProcess.h"

#include <gmock/gmock.h>

namespace korvi::service {
namespace {

using namespace std::chrono_literals;

struct SignInTest : testing::Test {
    test::TemporaryFolder folder;
    Database database{folder.path() / "korvi.db"};
    AccountStore store{database};
    std::string code;
    WallClock::time_point now = WallClock::now();
    SignIn signIn{store, [this](const std::string&, const std::string& sent) { code = sent; }, [this] { return now; }};
    const std::string email = "user@example.com";

    /// A code that was not sent.
    std::string wrong() const { return code == "0000" ? "0001" : "0000"; }
};

TEST_F(SignInTest, ACodeWorksOnce) {
    signIn.requestCode(email);
    EXPECT_EQ(code.size(), 4U);
    const auto first = signIn.verify(email, code);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->isRegistration);
    EXPECT_EQ(signIn.sessionOf(first->token)->userId, first->user.id);
    EXPECT_FALSE(signIn.verify(email, code));
    signIn.requestCode(email);
    const auto second = signIn.verify(email, code);
    ASSERT_TRUE(second);
    EXPECT_FALSE(second->isRegistration);
    EXPECT_EQ(second->user.id, first->user.id);
    EXPECT_NE(second->token, first->token);
}

TEST_F(SignInTest, ACodeEndsWithItsTimeItsTriesAndTheNextCode) {
    signIn.requestCode(email);
    now += limits::codeLife;
    EXPECT_FALSE(signIn.verify(email, code)) << "expired";

    signIn.requestCode(email);
    for (int i = 0; i < limits::codeTries; ++i)
        EXPECT_FALSE(signIn.verify(email, wrong()));
    EXPECT_FALSE(signIn.verify(email, code)) << "guessed at too often";

    signIn.requestCode(email);
    for (int i = 1; i < limits::codeTries; ++i)
        EXPECT_FALSE(signIn.verify(email, wrong()));
    EXPECT_FALSE(signIn.verify("other@example.com", code));
    EXPECT_TRUE(signIn.verify(email, code)) << "one try was left";
}

TEST_F(SignInTest, CodesAreNotSentWithoutEnd) {
    for (std::size_t i = 0; i < limits::codesPerEmail; ++i)
        EXPECT_FALSE(signIn.requestCode(email));
    const auto wait = signIn.requestCode(email);
    ASSERT_TRUE(wait);
    EXPECT_GT(*wait, 0s);
    EXPECT_LE(*wait, 601s);
    EXPECT_FALSE(signIn.requestCode("other@example.com"));
}

TEST(SignIn, AddressesAreComparedWithoutCaseAndNonsenseIsRefused) {
    EXPECT_EQ(SignIn::normalized("  Иван@Пример.РФ "), "иван@пример.рф");
    for (const char* bad : {"", "user", "@example.com", "user@", "a@b@c", "a b@c.d", "a@b\nКод входа для x@y.z: 1234"})
        EXPECT_FALSE(SignIn::normalized(bad)) << bad;
}

TEST(Tickets, ServeOnceAndNotForLong) {
    Tickets tickets;
    const SessionRow session{"s", "u", ""};
    const auto now = Tickets::Clock::now();
    const auto used = tickets.issue(session, now);
    EXPECT_EQ(tickets.redeem(used, now)->id, "s");
    EXPECT_FALSE(tickets.redeem(used, now));
    const auto late = tickets.issue(session, now);
    EXPECT_FALSE(tickets.redeem(late, now + limits::ticketLife));
    EXPECT_FALSE(tickets.redeem("", now));
    const auto oldest = tickets.issue(session, now);
    for (std::size_t i = 0; i < limits::ticketsPerSession; ++i)
        tickets.issue(session, now);
    EXPECT_FALSE(tickets.redeem(oldest, now));
}

TEST(Options, AreReadFromTheTableAndRefusedClearly) {
    const auto options = parseOptions({"--port", "80", "--provider=openai", "--model-for", "fast=small",
        "--model-for=deep=big", "--data", "/tmp/x", "--demo-delay-ms", "0"});
    EXPECT_EQ(options.port, 80);
    EXPECT_EQ(options.provider, ProviderKind::openai);
    EXPECT_EQ(options.modelForMode.at("deep"), "big");
    EXPECT_EQ(options.demoDelay, 0ms);
    for (const std::vector<std::string>& bad :
        std::vector<std::vector<std::string>>{{"--port", "70000"}, {"--port", "-1"}, {"--port"}, {"--nothing"},
            {"--provider", "x"}, {"--model-for", "=x"}, {"--help=1"}, {"--dev-providers", "--host", "0.0.0.0"}})
        EXPECT_THROW(parseOptions(bad), OptionsError) << bad.front();
}

}
}
