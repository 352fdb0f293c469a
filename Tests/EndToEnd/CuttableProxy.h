#pragma once

#include <QTcpServer>

namespace Korvi::Test {

// Stands between the client and the service, so that a test can cut the line without either of them knowing why.
class CuttableProxy : public QTcpServer {
    Q_OBJECT

public:
    explicit CuttableProxy(quint16 servicePort);

    void setServicePort(quint16 port) { m_servicePort = port; }
    // Breaks every connection off. What was on its way is lost.
    void cut();
    // New connections are dropped at once until restore().
    void holdDown() { m_isDown = true; }
    void restore() { m_isDown = false; }
    int connections() const { return m_connections; } // so far

private:
    void accept();

    quint16 m_servicePort;
    bool m_isDown = false;
    int m_connections = 0;
};

}
