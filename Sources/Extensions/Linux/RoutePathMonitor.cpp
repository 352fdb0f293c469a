#include "RoutePathMonitor.h"

#include "Log.h"
#include "Loopback.h"

#include <QFile>
#include <QHostAddress>
#include <QMetaObject>
#include <QNetworkInterface>
#include <QSocketNotifier>
#include <QUrl>

#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// Addresses that nobody has (RFC 5737, RFC 3849): only the default route leads there.
const auto anywhere4 = u"203.0.113.1"_s;
const auto anywhere6 = u"2001:db8::1"_s;
constexpr in_port_t discardPort = 9;

struct SocketAddress {
    explicit SocketAddress(const QHostAddress& host) {
        std::memset(&storage, 0, sizeof storage);
        if (host.protocol() == QAbstractSocket::IPv4Protocol) {
            auto* address = reinterpret_cast<sockaddr_in*>(&storage);
            address->sin_family = AF_INET;
            address->sin_port = htons(discardPort);
            address->sin_addr.s_addr = htonl(host.toIPv4Address());
            length = sizeof *address;
        } else {
            auto* address = reinterpret_cast<sockaddr_in6*>(&storage);
            address->sin6_family = AF_INET6;
            address->sin6_port = htons(discardPort);
            const Q_IPV6ADDR bytes = host.toIPv6Address();
            std::memcpy(&address->sin6_addr, &bytes, sizeof bytes);
            length = sizeof *address;
        }
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }

    sockaddr_storage storage;
    socklen_t length = 0;
};

// The address of ours from which a packet would leave for the host; connecting a datagram socket asks the routing
// table and sends nothing.
std::optional<QHostAddress> sourceFor(const QString& host) {
    SocketAddress target{QHostAddress(host)};
    const int probe = ::socket(target.get()->sa_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return std::nullopt;
    std::optional<QHostAddress> source;
    if (::connect(probe, target.get(), target.length) == 0 && ::getsockname(probe, target.get(), &target.length) == 0)
        source = QHostAddress(target.get());
    ::close(probe);
    return source;
}

NetworkPath::Interface kindOf(const QNetworkInterface& interface) {
    QFile facts(u"/sys/class/net/%1/uevent"_s.arg(interface.name()));
    const QByteArray text = facts.open(QIODevice::ReadOnly) ? facts.readAll() : QByteArray();
    if (interface.type() == QNetworkInterface::Wifi || text.contains("DEVTYPE=wlan"))
        return NetworkPath::Interface::wifi;
    if (text.contains("DEVTYPE=wwan"))
        return NetworkPath::Interface::cellular;
    if (interface.type() == QNetworkInterface::Ethernet)
        return NetworkPath::Interface::wiredEthernet;
    return NetworkPath::Interface::other;
}

}

RoutePathMonitor::RoutePathMonitor(const QUrl& service, QObject* parent)
    : QObject(parent) {
    if (isLoopback(service))
        return;
    const QHostAddress host(service.host());
    if (host.isNull())
        m_targets = {anywhere4, anywhere6};
    else
        m_targets = {host.toString()};
}

RoutePathMonitor::~RoutePathMonitor() {
    m_notifier.reset();
    if (m_socket >= 0)
        ::close(m_socket);
}

void RoutePathMonitor::start(Handler handler) {
    m_handler = std::move(handler);
    QMetaObject::invokeMethod(
        this, [this] { m_handler(m_last = path()); }, Qt::QueuedConnection);
    if (m_targets.empty())
        return;
    m_socket = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    sockaddr_nl local{};
    local.nl_family = AF_NETLINK;
    local.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    if (m_socket < 0 || ::bind(m_socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0) {
        qCWarning(lcPlatform) << "⚠️ [RoutePathMonitor] The kernel announces no changes of the network here";
        m_targets.clear();
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &RoutePathMonitor::changed);
}

// What the announcements say does not matter, and one that was lost neither: the table is asked afresh.
void RoutePathMonitor::changed() {
    std::array<char, 16384> buffer;
    for (;;) {
        const ssize_t size = ::recv(m_socket, buffer.data(), buffer.size(), 0);
        if (size < 0 && (errno == EINTR || errno == ENOBUFS))
            continue;
        if (size <= 0)
            break;
    }
    look();
}

void RoutePathMonitor::look() {
    NetworkPath now = path();
    if (now == m_last)
        return;
    m_last = std::move(now);
    m_handler(m_last);
}

NetworkPath RoutePathMonitor::path() const {
    if (m_targets.empty())
        return {};
    NetworkPath found{.isSatisfied = false, .interfaces = {}};
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QString& target : m_targets) {
        const std::optional<QHostAddress> source = sourceFor(target);
        if (!source)
            continue;
        for (const QNetworkInterface& interface : interfaces) {
            const QList<QNetworkAddressEntry> entries = interface.addressEntries();
            const bool isOurs = std::any_of(entries.begin(), entries.end(),
                [&](const QNetworkAddressEntry& entry) { return entry.ip().isEqual(*source); });
            // A route stays when the cable is pulled; the interface knows.
            if (!isOurs || !interface.flags().testFlag(QNetworkInterface::IsRunning))
                continue;
            found.isSatisfied = true;
            const NetworkPath::Interface kind = kindOf(interface);
            if (std::find(found.interfaces.begin(), found.interfaces.end(), kind) == found.interfaces.end())
                found.interfaces.push_back(kind);
        }
    }
    return found;
}

}
