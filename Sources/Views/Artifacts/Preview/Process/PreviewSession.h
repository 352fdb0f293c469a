#pragma once

#include "BundleHandler.h"
#include "ClientLine.h"
#include "RequestGate.h"

#include <QJsonObject>
#include <QWebEngineProfile>

#include <memory>

namespace Korvi {

class PrintPage;
class Stage;

// This process at work: messages come from the client and go to it as lines of JSON.
//   {"open": page}, {"size": {...}}, {"input": {...}}, {"taken": true}: see Stage
//   {"print": page, "isReady": expression}: answered with {"pdf": base64}; empty when it did not work out
class PreviewSession {
public:
    // Both descriptors stay the caller's.
    PreviewSession(const QString& bundle, int input, int output);
    ~PreviewSession();

private:
    void take(const QJsonObject& message);
    void print(const QString& page, const QString& isReady);
    void write(const QJsonObject& message);
    Stage& stage();

    BundleHandler m_bundle;
    RequestGate m_gate;
    ClientLine m_client;
    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<QWebEngineProfile> m_profile; // of pages that are printed
    std::unique_ptr<PrintPage> m_print;
};

}
