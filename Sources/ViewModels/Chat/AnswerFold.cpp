#include "Chat/AnswerFold.h"

#include <QLoggingCategory>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcAnswerFold, "korvi.chat.fold", QtInfoMsg)

namespace {

using Text = MessageContent::Text;
using Thinking = MessageContent::Thinking;

// A repeat of fewer characters is more likely meant than sent again.
constexpr int shortestRepeat = 10;
constexpr qsizetype followStep = 300;
constexpr qsizetype followStepBehindSearch = 500;

// Some models leave escape sequences in their text.
QString withoutEscapes(QString text) {
    constexpr std::array rows{
        std::pair{R"(\134n)"_L1, "\n"_L1},
        std::pair{R"(\n)"_L1, "\n"_L1},
        std::pair{R"(\134t)"_L1, "\t"_L1},
        std::pair{R"(\134")"_L1, "\""_L1},
    };
    if (!text.contains(u'\\'))
        return text;
    for (const auto& [residue, plain] : rows)
        text.replace(residue, plain);
    return text;
}

// Whether the text has that many characters, as a reader counts them.
bool hasCharacters(const QString& text, int count) {
    if (text.size() < count)
        return false;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i < count; ++i) {
        if (finder.toNextBoundary() < 0)
            return false;
    }
    return true;
}

template <class Block>
QString joined(const std::vector<MessageContent>& content) {
    QString result;
    for (const MessageContent& block : content) {
        if (const auto* part = block.as<Block>())
            result += part->text;
    }
    return result;
}

template <class Block>
qsizetype length(const std::vector<MessageContent>& content) {
    qsizetype result = 0;
    for (const MessageContent& block : content) {
        if (const auto* part = block.as<Block>())
            result += part->text.size();
    }
    return result;
}

template <class Block>
bool has(const std::vector<MessageContent>& content) {
    return std::any_of(
        content.begin(), content.end(), [](const MessageContent& block) { return block.as<Block>() != nullptr; });
}

// Appends to the block and says whether a step of its length was passed.
bool grow(QString& text, const QString& piece, qsizetype step) {
    const bool follow = text.size() % step < piece.size();
    text += piece;
    return follow;
}

// Text behind search results belongs behind them.
bool appendText(std::vector<MessageContent>& content, const QString& piece) {
    const auto search = std::find_if(content.rbegin(), content.rend(),
        [](const MessageContent& block) { return block.as<WebSearchContent>() != nullptr; });
    if (search != content.rend()) {
        const auto behind = std::find_if(
            search.base(), content.end(), [](const MessageContent& block) { return block.as<Text>() != nullptr; });
        if (behind != content.end())
            return grow(behind->as<Text>()->text, piece, followStepBehindSearch);
    } else if (!content.empty()) {
        if (auto* last = content.back().as<Text>())
            return grow(last->text, piece, followStep);
    }
    content.push_back({Text{piece}});
    return true;
}

}

void AnswerFold::beginReplay() {
    m_isReplaying = true;
    m_textRepeated = 0;
    m_thinkingRepeated = 0;
}

SeenText& AnswerFold::seen(const std::vector<MessageContent>& content, Kind kind) {
    SeenText& seen = kind == Kind::text ? m_text : m_thinking;
    // Text changes elsewhere only by whole blocks, a tool's for instance: its length tells.
    if (seen.text().size() != (kind == Kind::text ? length<Text>(content) : length<Thinking>(content)))
        seen.reset(kind == Kind::text ? joined<Text>(content) : joined<Thinking>(content));
    return seen;
}

QString AnswerFold::withoutRepeat(Kind kind, const QString& piece) {
    const QString& received = kind == Kind::text ? m_textReceived : m_thinkingReceived;
    auto& repeated = kind == Kind::text ? m_textRepeated : m_thinkingRepeated;
    if (!repeated)
        return piece;
    const QStringView rest = QStringView(received).mid(*repeated);
    if (rest.startsWith(piece)) {
        *repeated += piece.size();
        return {};
    }
    repeated.reset();
    // The piece that reaches beyond what is there: only its end is new. With nothing left it is all new, and a
    // piece that does not fit is not a repeat.
    return piece.startsWith(rest) ? piece.mid(rest.size()) : piece;
}

AnswerFold::Outcome AnswerFold::fold(std::vector<MessageContent>& content, const QStringList& pieces, Kind kind) {
    Outcome outcome;
    SeenText& whole = seen(content, kind);
    const bool hasPlaceholder = has<MessageContent::Generating>(content);
    for (const QString& received : pieces) {
        const QString piece = withoutRepeat(kind, withoutEscapes(received));
        if (piece.isEmpty())
            continue;
        if (kind == Kind::thinking) {
            if (hasCharacters(piece, shortestRepeat) && whole.text().endsWith(piece)) {
                qCInfo(lcAnswerFold) << "⚠️ [ChatViewModel] Duplicate thinking chunk detected, skipping";
                continue;
            }
            m_thinkingReceived += piece;
            if (auto* last = content.empty() ? nullptr : content.back().as<Thinking>())
                last->text += piece;
            else
                content.push_back({Thinking{piece}});
        } else {
            m_textReceived += piece;
            if (hasCharacters(piece, hasPlaceholder ? 1 : shortestRepeat) && whole.contains(piece))
                continue;
            if (m_isReplaying) {
                qCInfo(lcAnswerFold).nospace() << "🔌 [ChatViewModel] New content after replay (" << piece.size() << ")";
                m_isReplaying = false;
            }
            outcome.follow = appendText(content, piece) || outcome.follow;
        }
        whole.append(piece);
        outcome.changed = true;
    }
    return outcome;
}

}
