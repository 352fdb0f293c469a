#include "ClientLine.h"

#include "Lines.h"

#include <QCoreApplication>

#include <cerrno>
#include <unistd.h>

namespace Korvi {

ClientLine::ClientLine(int input, int output, Take take, QObject* parent)
    : QObject(parent)
    , m_notifier(input, QSocketNotifier::Read)
    , m_output(output)
    , m_take(std::move(take)) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &ClientLine::read);
}

void ClientLine::read() {
    char part[65536];
    const ssize_t size = ::read(static_cast<int>(m_notifier.socket()), part, sizeof part);
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size <= 0) {
        m_notifier.setEnabled(false);
        QCoreApplication::quit();
        return;
    }
    const QByteArrayList lines = takeLines(m_open, QByteArrayView(part, size));
    for (const QByteArray& line : lines)
        m_take(line);
}

void ClientLine::send(QByteArray line) {
    line += '\n';
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
