#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QUrl>

namespace Korvi {

class Info;

// What the installation says of itself.
class AboutViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(QString version MEMBER m_version CONSTANT)
    // Empty unless the build names an address, which must be HTTPS.
    Q_PROPERTY(QUrl privacyPolicyUrl MEMBER m_privacyPolicyUrl CONSTANT)
    Q_PROPERTY(QUrl termsOfUseUrl MEMBER m_termsOfUseUrl CONSTANT)
    Q_PROPERTY(bool hasPrivacyPolicy READ hasPrivacyPolicy CONSTANT)
    Q_PROPERTY(bool hasTermsOfUse READ hasTermsOfUse CONSTANT)

public:
    explicit AboutViewModel(const Info& info, QObject* parent = nullptr);

    bool hasPrivacyPolicy() const { return !m_privacyPolicyUrl.isEmpty(); }
    bool hasTermsOfUse() const { return !m_termsOfUseUrl.isEmpty(); }

private:
    QString m_version;
    QUrl m_privacyPolicyUrl;
    QUrl m_termsOfUseUrl;
};

}
