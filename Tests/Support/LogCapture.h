#pragma once

#include <QStringList>

namespace Korvi::Test {

// Everything that is logged while this stands; not printed. One at a time.
class LogCapture {
public:
    LogCapture()
        : m_previous(qInstallMessageHandler(&record)) {
        lines().clear();
    }
    ~LogCapture() { qInstallMessageHandler(m_previous); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QString text() const { return lines().join(u'\n'); }
    qsizetype count(const QString& part) const { return lines().filter(part).size(); }

private:
    static QStringList& lines() {
        static QStringList all;
        return all;
    }
    static void record(QtMsgType, const QMessageLogContext&, const QString& line) { lines().append(line); }

    QtMessageHandler m_previous;
};

}
