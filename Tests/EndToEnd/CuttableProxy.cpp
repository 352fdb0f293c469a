#include "CuttableProxy.h"

#include <QTcpSocket>

namespace Korvi::Test {

CuttableProxy::CuttableProxy(quint16 servicePort)
    : m_servicePort(servicePort) {
    connect(this, &QTcpServer::newConnection, this, &CuttableProxy::accept);
    listen(QHostAddress::LocalHost);
}

void CuttableProxy::accept() {
    while (QTcpSocket* client = nextPendingConnection()) {
        if (m_isDown) {
            client->abort();
            client->deleteLater();
            continue;
        }
        ++m_connections;
        client->setParent(this);
        auto* service = new QTcpSocket(client);
        service->connectToHost(QHostAddress::LocalHost, m_servicePort);
        connect(client, &QTcpSocket::readyRead, service, [client, service] { service->write(client->readAll()); });
        connect(service, &QTcpSocket::readyRead, client, [client, service] { client->write(service->readAll()); });
        connect(service, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
        connect(service, &QTcpSocket::errorOccurred, client, [client] { client->abort(); });
        connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    }
}

void CuttableProxy::cut() {
    for (QTcpSocket* client : findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly))
        client->abort();
}

}
