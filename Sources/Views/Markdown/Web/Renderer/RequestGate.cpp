#include "RequestGate.h"

#include "WebPage.h"

namespace Korvi {

void RequestGate::interceptRequest(QWebEngineUrlRequestInfo& info) {
    const QString scheme = info.requestUrl().scheme();
    if (scheme != QLatin1StringView(WebPage::scheme) && scheme != QLatin1StringView("data"))
        info.block(true);
}

}
