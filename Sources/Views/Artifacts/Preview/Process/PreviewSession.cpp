#include "PreviewSession.h"

#include "PrintPage.h"
#include "Stage.h"
#include "WebPage.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cerrno>
#include <unistd.h>

namespace Korvi {

using namespace Qt::Literals;

PreviewSession::PreviewSession(const QString& bundle, int input, int output, QObject* parent)
    : QObject(parent)
    , m_bundle(bundle)
    , m_notifier(input, QSocketNotifier::Read)
    , m_output(output) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &PreviewSession::read);
}

PreviewSession::~PreviewSession() = default;

void PreviewSession::read() {
    char part[65536];
    const ssize_t size = ::read(static_cast<int>(m_notifier.socket()), part, sizeof part);
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size <= 0) {
        m_notifier.setEnabled(false);
        QCoreApplication::quit();
        return;
    }
    const QByteArrayView piece(part, size);
    qsizetype begin = 0;
    for (qsizetype end = piece.indexOf('\n'); end >= 0; end = piece.indexOf('\n', begin)) {
        const QByteArray line = m_buffer + piece.sliced(begin, end - begin).toByteArray();
        m_buffer.clear();
        begin = end + 1;
        take(QJsonDocument::fromJson(line).object());
    }
    m_buffer += piece.sliced(begin).toByteArray();
}

void PreviewSession::take(const QJsonObject& message) {
    if (message.contains("size"_L1))
        stage().resize(message["size"_L1].toObject());
    if (message.contains("open"_L1))
        stage().open(message["open"_L1].toString());
    if (message.contains("input"_L1))
        stage().input(message["input"_L1].toObject());
    if (message.contains("taken"_L1))
        stage().taken();
    if (message.contains("print"_L1))
        print(message["print"_L1].toString(), message["isReady"_L1].toString());
}

void PreviewSession::print(const QString& page, const QString& isReady) {
    if (!m_profile) {
        m_profile = std::make_unique<QWebEngineProfile>();
        m_profile->setUrlRequestInterceptor(&m_gate);
        m_profile->installUrlSchemeHandler(WebPage::scheme, &m_bundle);
    }
    const QUrl address = m_bundle.addPage(u"print.html"_s, page);
    m_print = std::make_unique<PrintPage>(m_profile.get(), address, isReady, [this](const QByteArray& pdf) {
        write({{u"pdf"_s, QString::fromLatin1(pdf.toBase64())}});
    });
}

Stage& PreviewSession::stage() {
    if (!m_stage)
        m_stage = std::make_unique<Stage>(m_bundle, m_gate, [this](const QJsonObject& message) { write(message); });
    return *m_stage;
}

void PreviewSession::write(const QJsonObject& message) {
    const QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
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
