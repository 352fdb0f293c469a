#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <functional>

namespace Korvi {

// The client's end of a process that works for it: lines come and go. Ends the application when the client is gone.
class ClientLine : public QObject {
    Q_OBJECT

public:
    using Take = std::function<void(const QByteArray& line)>;

    // Both descriptors stay the caller's.
    ClientLine(int input, int output, Take take, QObject* parent = nullptr);

    void send(QByteArray line); // without its end; waits until it is written

private:
    void read();

    QSocketNotifier m_notifier;
    int m_output;
    Take m_take;
    QByteArray m_open; // what has come of the next line
};

}
