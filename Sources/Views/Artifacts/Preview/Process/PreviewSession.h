#pragma once

#include "BundleHandler.h"
#include "RequestGate.h"

#include <QJsonObject>
#include <QSocketNotifier>
#include <QWebEngineProfile>

#include <memory>

namespace Korvi {

class PrintPage;
class Stage;

// The client's end of this process: messages come and go as lines of JSON. Ends the application when the client is gone.
//   {"open": page}, {"size": {...}}, {"input": {...}}, {"taken": true}: see Stage
//   {"print": page, "isReady": expression}: answered with {"pdf": base64}; empty when it did not work out
class PreviewSession : public QObject {
    Q_OBJECT

public:
    // Both descriptors stay the caller's.
    PreviewSession(const QString& bundle, int input, int output, QObject* parent = nullptr);
    ~PreviewSession() override;

private:
    void read();
    void take(const QJsonObject& message);
    void print(const QString& page, const QString& isReady);
    void write(const QJsonObject& message);
    Stage& stage();

    BundleHandler m_bundle;
    RequestGate m_gate;
    QSocketNotifier m_notifier;
    int m_output;
    QByteArray m_buffer;
    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<QWebEngineProfile> m_profile; // of pages that are printed
    std::unique_ptr<PrintPage> m_print;
};

}
