#pragma once

#include "Scheduler.h"

#include <QJsonObject>
#include <QObject>
#include <QProcess>

#include <deque>
#include <map>
#include <memory>

namespace Korvi {

// The program that lays formulas and diagrams out, as a child of this one. It runs from the first request on and ends
// when nothing was asked of it for a while, or when it does not answer. Its memory is all outside of the client.
class RenderProcess : public QObject {
    Q_OBJECT

public:
    // The request's answer; null when the process could not give one.
    using Answer = std::function<void(const QJsonValue&)>;

    static constexpr std::chrono::seconds patience{20}; // for an answer
    static constexpr std::chrono::minutes idleTime{3};

    // `program` and `bundle` are absolute paths.
    RenderProcess(QString program, QString bundle, Scheduler& scheduler, QObject* parent = nullptr);
    ~RenderProcess() override;

    void request(QJsonObject request, Answer answer);

    bool isRunning() const { return m_process != nullptr; }
    qint64 processId() const { return m_process ? m_process->processId() : 0; } // 0 while it does not run
    bool hasAnswered() const { return m_hasAnswered; }                          // at least once since it was started

private:
    struct Waiting {
        Answer answer;
        Timer limit;
    };

    void start();
    void read();
    void stop(); // kills it; what waits is answered with null
    void rest(); // lets it end

    QString m_program;
    QString m_bundle;
    Scheduler& m_scheduler;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_line; // what has come of the next one
    bool m_hasAnswered = false;
    int m_lastId = 0;
    std::map<int, Waiting> m_waiting;
    Timer m_idle;
};

}
