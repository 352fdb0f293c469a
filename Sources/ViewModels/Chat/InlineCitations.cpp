#include "Chat/InlineCitations.h"

#include <QLoggingCategory>

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcCitations, "korvi.chat.citations", QtInfoMsg)

namespace {

using Source = WebSearchAnswerItem::CitationSource;

constexpr auto readyText = u"Файл готов к скачиванию:";
constexpr auto ownFiles = u"korvihub";

// Runs of three line feeds and more, and the ends.
QString tidied(const QString& text) {
    QString result;
    result.reserve(text.size());
    qsizetype run = 0;
    for (const QChar character : text) {
        run = character == u'\n' ? run + 1 : 0;
        if (run <= 2)
            result += character;
    }
    return result.trimmed();
}

// Finds the next place of something in a text for questions that only go forward: all of them together cost one
// walk through the text.
class Ahead {
public:
    Ahead(const QString& text, QStringView what)
        : m_text(text)
        , m_what(what) {}

    // The end of the text when there is none.
    qsizetype from(qsizetype at) {
        if (m_found < at) {
            m_found = m_text.indexOf(m_what, at);
            if (m_found < 0)
                m_found = m_text.size();
        }
        return m_found;
    }

private:
    const QString& m_text;
    QStringView m_what;
    qsizetype m_found = -1;
};

// Links to the service's own files, found by hand: the regular expression for them takes quadratic time when brackets
// stay open.
class OwnLinks {
public:
    explicit OwnLinks(const QString& text)
        : m_text(text)
        , m_close(text, u")")
        , m_own(text, ownFiles) {}

    // Where the link ends whose address begins at `url`; absent when it is none.
    std::optional<qsizetype> endOf(qsizetype url) {
        const QStringView rest = QStringView(m_text).sliced(url);
        const qsizetype scheme = rest.startsWith(u"https://") ? 8 : rest.startsWith(u"http://") ? 7 : 0;
        if (scheme == 0)
            return std::nullopt;
        const qsizetype end = m_close.from(url + scheme);
        if (end == m_text.size() || m_own.from(url + scheme) + QStringView(ownFiles).size() > end)
            return std::nullopt;
        return end + 1;
    }

private:
    const QString& m_text;
    Ahead m_close;
    Ahead m_own;
};

// The words in front of a link that go with it.
qsizetype withReadyText(const QString& text, qsizetype from, qsizetype link) {
    qsizetype at = link;
    while (at > from && text.at(at - 1).isSpace())
        --at;
    const QStringView words(readyText);
    return at - from >= words.size() && QStringView(text).first(at).endsWith(words) ? at - words.size() : link;
}

bool removeOwnFileLinks(QString& text) {
    QString kept;
    qsizetype copied = 0; // what is before is in `kept`
    qsizetype open = -1;  // the first bracket that may begin the name of a link
    const qsizetype last = text.lastIndexOf(u')');
    OwnLinks links(text);
    for (qsizetype at = 0; at < last; ++at) {
        if (text.at(at) == u'[' && open < 0) {
            open = at;
        } else if (text.at(at) == u']') {
            const bool isName = open >= 0 && at > open + 1 && text.at(at + 1) == u'(';
            if (const auto end = isName ? links.endOf(at + 2) : std::nullopt) {
                const qsizetype from = withReadyText(text, copied, open);
                kept += QStringView(text).sliced(copied, from - copied);
                copied = *end;
                at = *end - 1;
            }
            open = -1;
        }
    }
    if (copied == 0)
        return false;
    kept += QStringView(text).sliced(copied);
    text = tidied(kept);
    return true;
}

WebSearchResult resultOf(const Source& source) {
    return {.title = source.domain,
        .url = source.url,
        .content = {},
        .favicon = u"https://www.google.com/s2/favicons?sz=32&domain="_s + source.domain};
}

}

bool cleanInlineCitations(std::vector<MessageContent>& content) {
    std::vector<Source> cited;
    bool isChanged = false;
    for (MessageContent& block : content) {
        auto* part = block.as<MessageContent::Text>();
        if (!part || !part->text.contains(u']'))
            continue;
        const WebSearchAnswerItem item(part->text);
        if (!item.citationSources.empty()) {
            part->text = item.cleanedText;
            isChanged = true;
        }
        for (const Source& source : item.citationSources) {
            if (std::none_of(cited.begin(), cited.end(), [&](const Source& each) { return each.url == source.url; }))
                cited.push_back(source);
        }
        if (removeOwnFileLinks(part->text)) {
            qCInfo(lcCitations) << "📄 [cleanInlineCitations] Removed file download link from text block";
            isChanged = true;
        }
    }
    if (cited.empty())
        return isChanged;
    std::stable_sort(cited.begin(), cited.end(), [](const Source& a, const Source& b) { return a.index < b.index; });
    WebSearchContent search;
    search.type = u"search"_s;
    search.results.emplace();
    for (const Source& source : cited)
        search.results->push_back(resultOf(source));
    content.push_back({std::move(search)});
    return true;
}

}
