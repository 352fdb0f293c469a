#include "RenderProcess.h"

#include "Lines.h"

#include <QJsonDocument>
#include <QLoggingCategory>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace Korvi {

using namespace Qt::Literals;

namespace {

Q_LOGGING_CATEGORY(renderLog, "korvi.render")

}

RenderProcess::RenderProcess(QString program, QString bundle, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_program(std::move(program))
    , m_bundle(std::move(bundle))
    , m_scheduler(scheduler) {}

RenderProcess::~RenderProcess() {
    m_waiting.clear();
    stop();
}

void RenderProcess::request(QJsonObject request, Answer answer) {
    if (!m_process)
        start();
    m_idle.cancel();
    const int id = ++m_lastId;
    request.insert("id"_L1, id);
    m_waiting[id] = {std::move(answer), m_scheduler.after(patience, [this] {
                         qCWarning(renderLog, "⚠️ [RenderProcess] No answer in time");
                         stop();
                     })};
    m_process->write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
}

void RenderProcess::start() {
    m_hasAnswered = false;
    m_line.clear();
    m_process = std::make_unique<QProcess>();
    // A group of its own, for the engine's processes to end with it; and it ends with us, whatever ends us.
    m_process->setChildProcessModifier([] {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
    m_process->setStandardErrorFile(QProcess::nullDevice());
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &RenderProcess::read);
    // Not from inside the process's own signal: stop() deletes it.
    const auto ended = [this, process = m_process.get()] {
        QMetaObject::invokeMethod(
            this,
            [this, process] {
                if (process == m_process.get())
                    stop();
            },
            Qt::QueuedConnection);
    };
    connect(m_process.get(), &QProcess::finished, this, ended);
    connect(m_process.get(), &QProcess::errorOccurred, this, ended);
    m_process->start(m_program, {m_bundle});
}

void RenderProcess::read() {
    const QProcess* process = m_process.get();
    const QByteArrayList lines = takeLines(m_line, m_process->readAllStandardOutput());
    for (const QByteArray& line : lines) {
        const QJsonObject message = QJsonDocument::fromJson(line).object();
        const auto found = m_waiting.find(message.value("id"_L1).toInt());
        if (found == m_waiting.end())
            continue;
        m_hasAnswered = true;
        const Answer answer = std::move(found->second.answer);
        m_waiting.erase(found);
        if (m_waiting.empty())
            m_idle = m_scheduler.after(idleTime, [this] { rest(); });
        answer(message.value("answer"_L1));
        if (m_process.get() != process)
            return; // another one by now, or none
    }
}

void RenderProcess::stop() {
    m_idle.cancel();
    if (const auto process = std::exchange(m_process, nullptr)) {
        process->disconnect(this);
        if (const auto pid = static_cast<pid_t>(process->processId()); pid > 0)
            kill(-pid, SIGKILL);
        process->kill();
        process->waitForFinished(1000);
    }
    for (auto waiting = std::exchange(m_waiting, {}); auto& [id, one] : waiting)
        one.answer({});
}

void RenderProcess::rest() {
    qCDebug(renderLog, "[RenderProcess] Ends until it is needed again");
    stop();
}

}
