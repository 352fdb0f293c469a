#pragma once

#include <QWebEngineUrlRequestInterceptor>

namespace Korvi {

// Refuses every request that is not for the bundle or for what a page carries in itself.
class RequestGate : public QWebEngineUrlRequestInterceptor {
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void interceptRequest(QWebEngineUrlRequestInfo& info) override;
};

}
