// In a network of its own (with-network.sh), whose links come and go as the tests say.
#include "Linux/RoutePathMonitor.h"
#include "WaitFor.h"

#include <QProcess>
#include <QUrl>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

class Paths : public testing::Test {
protected:
    void SetUp() override {
        if (!qEnvironmentVariableIsSet("KORVI_OWN_NETWORK"))
            GTEST_SKIP() << "needs a network namespace of its own";
        ip(u"link set lo up"_s);
        // Two ends of a cable: pulling one takes the carrier from the other.
        ip(u"link add cable type veth peer name wall"_s);
    }
    void TearDown() override {
        if (qEnvironmentVariableIsSet("KORVI_OWN_NETWORK"))
            QProcess::execute(u"ip"_s, u"link del cable"_s.split(u' '));
    }

    static void ip(const QString& arguments) {
        ASSERT_EQ(QProcess::execute(u"ip"_s, arguments.split(u' ')), 0) << arguments.toStdString();
    }
    static void plugIn() {
        ip(u"link set wall up"_s);
        ip(u"link set cable up"_s);
        ip(u"addr add 10.1.2.3/24 dev cable"_s);
    }

    void watch(const QString& service) {
        m_monitor = std::make_unique<RoutePathMonitor>(QUrl(service));
        m_monitor->start([this](const NetworkPath& path) { seen.push_back(path); });
        ASSERT_TRUE(seen.empty()); // not inside the call
        ASSERT_TRUE(waitFor([this] { return !seen.empty(); }));
    }
    bool becomes(bool isSatisfied) {
        return waitFor([this, isSatisfied] { return seen.back().isSatisfied == isSatisfied; });
    }

    std::vector<NetworkPath> seen;

private:
    std::unique_ptr<RoutePathMonitor> m_monitor;
};

TEST_F(Paths, AHostByNameNeedsARouteToTheInternet) {
    watch(u"https://service.example/api/v1"_s);
    EXPECT_FALSE(seen.back().isSatisfied);
    plugIn(); // a neighbourhood alone is not the internet
    settle();
    EXPECT_FALSE(seen.back().isSatisfied);
    ip(u"route add default via 10.1.2.1"_s);
    ASSERT_TRUE(becomes(true));
    EXPECT_EQ(seen.back().interfaces, std::vector{NetworkPath::Interface::wiredEthernet});

    ip(u"link set wall down"_s); // the cable is pulled; the route stays
    ASSERT_TRUE(becomes(false));
    ip(u"link set wall up"_s);
    ASSERT_TRUE(becomes(true));
    ip(u"route del default"_s);
    ASSERT_TRUE(becomes(false));
    for (std::size_t i = 1; i < seen.size(); ++i)
        EXPECT_NE(seen[i], seen[i - 1]) << "told twice";
}

TEST_F(Paths, TheSecondProtocolIsEnough) {
    watch(u"https://service.example/api/v1"_s);
    ip(u"link set wall up"_s);
    ip(u"link set cable up"_s);
    ip(u"addr add fd12::2/64 dev cable nodad"_s);
    ip(u"-6 route add default via fd12::1"_s);
    EXPECT_TRUE(becomes(true));
}

TEST_F(Paths, AnAddressNearByNeedsNoInternet) {
    watch(u"https://10.1.2.9:8443/api/v1"_s);
    EXPECT_FALSE(seen.back().isSatisfied);
    plugIn();
    EXPECT_TRUE(becomes(true));
    ip(u"addr del 10.1.2.3/24 dev cable"_s);
    EXPECT_TRUE(becomes(false));
}

TEST_F(Paths, AServiceOnThisMachineIsAlwaysThere) {
    for (const QString& service :
        {u"http://127.0.0.1:8787/api/v1"_s, u"http://localhost:8787"_s, u"http://[::1]:1"_s}) {
        seen.clear();
        watch(service);
        EXPECT_TRUE(seen.back().isSatisfied);
        plugIn();
        ip(u"link set cable down"_s);
        ip(u"addr flush dev cable"_s);
        settle();
        EXPECT_EQ(seen.size(), 1U);
    }
}

}
}
