#pragma once

#include <QObject>
#include <QQmlEngine>

namespace Korvi {

class Defaults;

// Whether the user has agreed that what they write is passed to the providers of the models.
class AIDataConsent : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the application")
    Q_PROPERTY(bool aiDataConsentGiven READ aiDataConsentGiven NOTIFY aiDataConsentGivenChanged)

public:
    explicit AIDataConsent(Defaults& defaults, QObject* parent = nullptr);

    bool aiDataConsentGiven() const { return m_given; }
    Q_INVOKABLE void give();

signals:
    void aiDataConsentGivenChanged();

private:
    Defaults& m_defaults;
    bool m_given;
};

}
