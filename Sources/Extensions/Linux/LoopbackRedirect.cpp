#include "LoopbackRedirect.h"

#include <QTimer>

#include <chrono>

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr qsizetype longestHead = 16384;
constexpr auto patience = std::chrono::seconds(10);

// The whole page. It loads nothing, and tells nobody its address.
QByteArray page(const QByteArray& text) {
    return "<!doctype html><html lang=\"ru\"><meta charset=\"utf-8\"><title>Korvi</title>"
           "<style>html{color-scheme:light dark;font:16px sans-serif}"
           "body{display:grid;place-items:center;min-height:90vh;margin:0}</style><p>" +
        text + "</p></html>";
}

}

LoopbackRedirect::LoopbackRedirect(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(u'/' + path) {
    m_server.setMaxPendingConnections(8);
    connect(&m_server, &QTcpServer::newConnection, this, &LoopbackRedirect::accept);
    m_server.listen(QHostAddress::LocalHost);
}

QUrl LoopbackRedirect::address() const {
    return m_server.isListening() ? QUrl(u"http://127.0.0.1:%1%2"_s.arg(m_server.serverPort()).arg(m_path)) : QUrl();
}

void LoopbackRedirect::retire() {
    m_isRetired = true;
    isExpected = nullptr;
    m_server.close();
    leaveWhenQuiet();
}

void LoopbackRedirect::leaveWhenQuiet() {
    if (m_isRetired && m_connections == 0)
        deleteLater();
}

void LoopbackRedirect::accept() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        ++m_connections;
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            socket->deleteLater();
            --m_connections;
            leaveWhenQuiet();
        });
        QTimer::singleShot(patience, socket, [socket] { socket->abort(); });
    }
}

void LoopbackRedirect::read(QTcpSocket* socket) {
    const QByteArray head = socket->peek(longestHead);
    if (!head.contains("\r\n\r\n")) {
        if (head.size() == longestHead)
            socket->abort();
        return;
    }
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    const QByteArrayList words = head.left(head.indexOf("\r\n")).split(' ');
    QUrl url = address();
    const QUrl target = QUrl::fromEncoded(words.value(1));
    url.setQuery(target.query(QUrl::FullyEncoded));
    const bool isOurs = m_server.isListening() && words.size() == 3 && words.first() == "GET" && target.isRelative() &&
        target.path() == m_path && (!isExpected || isExpected(url));
    if (!isOurs)
        return answer(socket, "404 Not Found", "Здесь ничего нет.");
    answer(socket, "200 OK", "Можно вернуться в Korvi.");
    emit arrived(url);
}

void LoopbackRedirect::answer(QTcpSocket* socket, const QByteArray& status, const QByteArray& text) {
    const QByteArray body = page(text);
    socket->write("HTTP/1.1 " + status +
        "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + QByteArray::number(body.size()) +
        "\r\nConnection: close\r\nCache-Control: no-store\r\nReferrer-Policy: no-referrer\r\n"
        "Content-Security-Policy: default-src 'none'; style-src 'unsafe-inline'\r\n\r\n" +
        body);
    socket->disconnectFromHost(); // when all is written
}

}
