#include "ProviderPages.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QUrlQuery>

namespace Korvi::Test {

using namespace Qt::Literals;

namespace {

QByteArray redirect(const QString& address) {
    return "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " + address.toUtf8() + "\r\n\r\n";
}

QByteArray page(const QByteArray& body) {
    return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
        body;
}

}

ProviderPages::ProviderPages() {
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* socket = m_server.nextPendingConnection();
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            const QByteArray head = socket->peek(65536);
            if (!head.contains("\r\n\r\n"))
                return;
            socket->readAll();
            socket->write(answer(QUrl::fromEncoded(head.split(' ').value(1))));
            socket->disconnectFromHost();
        });
    });
}

QUrl ProviderPages::page(const QString& provider) const {
    return QUrl(u"http://127.0.0.1:%1/%2"_s.arg(m_server.serverPort()).arg(provider));
}

QByteArray ProviderPages::answer(const QUrl& asked) const {
    const QUrlQuery query(asked);
    const auto said = [&query](const QString& key) { return query.queryItemValue(key, QUrl::FullyDecoded); };
    const QString back = said(u"redirect_uri"_s);
    const QString state = said(u"state"_s);
    if (isIdle)
        return Test::page("Войти?");
    if (asked.path() == "/google"_L1)
        return redirect(back + u"?code=dev-anna&state="_s + state);
    if (asked.path() == "/yandex"_L1)
        return redirect(back + u"#access_token=dev-anna&token_type=bearer&state="_s + state);
    if (asked.path() == "/vk"_L1) {
        const QJsonObject payload{{"token", "dev-anna"}, {"uuid", said(u"uuid"_s)},
            {"user", QJsonObject{{"first_name", "Анна"}, {"last_name", "Ким"}}}};
        const QByteArray encoded =
            QUrl::toPercentEncoding(QString::fromUtf8(QJsonDocument(payload).toJson(QJsonDocument::Compact)));
        return redirect(back + u"?state="_s + state + u"&payload="_s + QString::fromLatin1(encoded));
    }
    if (asked.path() == "/apple"_L1) {
        const QByteArray claims =
            QJsonDocument(QJsonObject{{"sub", "dev-anna"}, {"nonce", said(u"nonce"_s)}}).toJson(QJsonDocument::Compact);
        const QByteArray token = "e30." + claims.toBase64(QByteArray::Base64UrlEncoding) + ".";
        // In place of a page whose script sends a form.
        return Test::page("POST " + back.toUtf8() + "\nstate=" + state.toUtf8() + "&code=c&id_token=" + token);
    }
    return "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n";
}

}
