#include "PreviewProcess.h"

#include "Lines.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonDocument>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace Korvi {

using namespace Qt::Literals;

PreviewProcess::PreviewProcess(QObject* parent)
    : QObject(parent) {
    // A group of its own, for the engine's processes to end with it; and it ends with us, whatever ends us.
    m_process.setChildProcessModifier([] {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
    m_process.setStandardErrorFile(QProcess::nullDevice()); // what is said there may quote the page
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &PreviewProcess::read);
    connect(&m_process, &QProcess::finished, this, &PreviewProcess::ended);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            emit ended();
    });
}

PreviewProcess::~PreviewProcess() {
    m_process.disconnect(this);
    if (const auto pid = static_cast<pid_t>(m_process.processId()); pid > 0)
        kill(-pid, SIGKILL);
    m_process.kill();
    m_process.waitForFinished(1000);
}

QString PreviewProcess::program() {
    const QString named = qEnvironmentVariable("KORVI_PREVIEW");
    return named.isEmpty() ? QCoreApplication::applicationDirPath() + u"/korvi-preview"_s : named;
}

bool PreviewProcess::start() {
    const QString path = program();
    if (!QFileInfo(path).isExecutable())
        return false;
    QStringList arguments{QFileInfo(path).absolutePath() + u"/web"_s};
    arguments += qEnvironmentVariable("KORVI_PREVIEW_OPTIONS").split(u' ', Qt::SkipEmptyParts);
    m_process.start(path, arguments);
    return true;
}

void PreviewProcess::send(const QJsonObject& message) {
    m_process.write(QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n');
}

void PreviewProcess::read() {
    const QByteArrayList lines = takeLines(m_line, m_process.readAllStandardOutput());
    for (const QByteArray& line : lines)
        emit received(QJsonDocument::fromJson(line).object());
}

}
