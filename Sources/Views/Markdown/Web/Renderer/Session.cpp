#include "Session.h"

#include "Renderer.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cerrno>
#include <unistd.h>

namespace Korvi {

Session::Session(Renderer& renderer, int input, int output, QObject* parent)
    : QObject(parent)
    , m_renderer(renderer)
    , m_notifier(input, QSocketNotifier::Read)
    , m_output(output) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &Session::read);
}

void Session::read() {
    char part[65536];
    const ssize_t size = ::read(static_cast<int>(m_notifier.socket()), part, sizeof part);
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size <= 0) {
        m_notifier.setEnabled(false);
        QCoreApplication::quit();
        return;
    }
    m_buffer.append(part, size);
    for (qsizetype end = m_buffer.indexOf('\n'); end >= 0; end = m_buffer.indexOf('\n')) {
        const QByteArray line = m_buffer.left(end);
        m_buffer.remove(0, end + 1);
        take(line);
    }
}

void Session::take(const QByteArray& line) {
    QJsonObject request = QJsonDocument::fromJson(line).object();
    const int id = request.take(QLatin1StringView("id")).toInt();
    m_renderer.run(request, [this, id](const QByteArray& answer) {
        write("{\"id\":" + QByteArray::number(id) + ",\"answer\":" + (answer.isEmpty() ? "null" : answer) + "}\n");
    });
}

void Session::write(const QByteArray& line) {
    for (qsizetype at = 0; at < line.size();) {
        const ssize_t size = ::write(m_output, line.constData() + at, static_cast<size_t>(line.size() - at));
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0) { // nobody reads any more
            QCoreApplication::quit();
            return;
        }
        at += size;
    }
}

}
