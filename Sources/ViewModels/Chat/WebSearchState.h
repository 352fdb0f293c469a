#pragma once

#include "WebSearchContent.h"

#include <QObject>

namespace Korvi {

// A web search as long as it runs.
struct WebSearchState {
    Q_GADGET
    Q_PROPERTY(bool isSearching MEMBER isSearching)
    Q_PROPERTY(QString query MEMBER query) // empty until the tool tells it

public:
    bool isSearching = false;
    QString query;
    std::optional<WebSearchContent> content;

    bool operator==(const WebSearchState&) const = default;
};

}
