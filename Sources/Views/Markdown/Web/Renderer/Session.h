#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace Korvi {

class Renderer;

// The client's end of a renderer process: requests come as lines of JSON, {"id": 7, ...}, and go back as
// {"id": 7, "answer": ...}, in the order in which they are done. Ends the application when the client is gone.
class Session : public QObject {
    Q_OBJECT

public:
    // Both descriptors stay the caller's.
    Session(Renderer& renderer, int input, int output, QObject* parent = nullptr);

private:
    void read();
    void take(const QByteArray& line);
    void write(const QByteArray& line);

    Renderer& m_renderer;
    QSocketNotifier m_notifier;
    int m_output;
    QByteArray m_buffer;
};

}
