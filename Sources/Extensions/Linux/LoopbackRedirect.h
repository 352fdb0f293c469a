#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>

namespace Korvi {

// A port of this machine that waits for the one request by which a browser brings a redirect. Everything else that
// knocks (a request for an icon, another program) is turned away.
class LoopbackRedirect : public QObject {
    Q_OBJECT

public:
    // The path is what others cannot guess.
    explicit LoopbackRedirect(const QString& path, QObject* parent = nullptr);

    // http://127.0.0.1:PORT/PATH; empty when no port is to be had.
    QUrl address() const;
    // No new requests. Once the answers under way have left, it deletes itself.
    void retire();

    // Asked for each request of the path, with the whole URL: whether it is the one. The answer to the browser is on
    // its way when `arrived` comes.
    std::function<bool(const QUrl&)> isExpected;

signals:
    void arrived(const QUrl& url);

private:
    void accept();
    void leaveWhenQuiet();
    void read(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const QByteArray& status, const QByteArray& text);

    QTcpServer m_server;
    QString m_path;
    int m_connections = 0;
    bool m_isRetired = false;
};

}
