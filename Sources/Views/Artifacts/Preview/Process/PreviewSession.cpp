#include "PreviewSession.h"

#include "PrintPage.h"
#include "Stage.h"
#include "WebPage.h"

#include <QJsonDocument>

namespace Korvi {

using namespace Qt::Literals;

PreviewSession::PreviewSession(const QString& bundle, int input, int output)
    : m_bundle(bundle)
    , m_client(input, output, [this](const QByteArray& line) { take(QJsonDocument::fromJson(line).object()); }) {}

PreviewSession::~PreviewSession() = default;

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
    m_client.send(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

}
