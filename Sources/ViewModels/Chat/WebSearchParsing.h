#pragma once

#include "WebSearchContent.h"

namespace Korvi {

// The body of a finished web search, as the service's search tools write it. What is of another shape counts as
// absent, and an entry that lacks what it cannot do without is left out.
namespace WebSearchParsing {

std::optional<std::vector<WebSearchResult>> parseSearchResults(const QJsonObject& body);
std::optional<std::vector<WebSearchImage>> parseSearchImages(const QJsonObject& body);
std::optional<std::vector<WebSearchAnswerItem>> parseSearchAnswer(const QJsonObject& body);

// `knownQuery` is what was searched for, should the body not tell.
WebSearchContent parseSearch(const QJsonObject& body, const QString& knownQuery);

}

}
