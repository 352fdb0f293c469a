#include "Chat/AnswerContent.h"

#include "Core/Json.h"
#include "Core/Text.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>

namespace korvi::service {

using nlohmann::json;

namespace {

bool is(const json& block, const char* type) {
    return block["type"] == type;
}

json textBlock(std::string text) {
    return {{"type", "text"}, {"text", std::move(text)}};
}

std::string& textOf(json& block) {
    return block["text"].get_ref<std::string&>();
}

/// Folds pieces into blocks by the client's rules.
class Fold {
public:
    void take(const Piece& piece) {
        switch (piece.kind) {
        case PieceKind::text: return takeText(piece.body);
        case PieceKind::thinking: return takeThinking(piece.body);
        case PieceKind::tool: return takeTool(piece.body);
        }
    }

    json finish() {
        std::erase_if(blocks_, [](const json& block) {
            return (is(block, "text") || is(block, "artifact")) && block["text"].get_ref<const std::string&>().empty();
        });
        return json(std::move(blocks_));
    }

    bool endsWithText() {
        const json* const block = openText();
        return block && !block->at("text").get_ref<const std::string&>().empty();
    }

private:
    /// The block in which text that comes now goes on; null if it gets one of its own.
    json* openText() {
        const auto search =
            std::find_if(blocks_.rbegin(), blocks_.rend(), [](const json& block) { return is(block, "search"); });
        if (search == blocks_.rend())
            return is(blocks_.back(), "text") ? &blocks_.back() : nullptr;
        // Text behind search results belongs behind them.
        const auto behind =
            std::find_if(search.base(), blocks_.end(), [](const json& block) { return is(block, "text"); });
        return behind == blocks_.end() ? nullptr : &*behind;
    }

    void takeText(const std::string& text) {
        if (json* const block = openText())
            textOf(*block) += text;
        else
            blocks_.push_back(textBlock(text));
    }

    void takeThinking(const std::string& text) {
        if (is(blocks_.back(), "thinking"))
            textOf(blocks_.back()) += text;
        else
            blocks_.push_back({{"type", "thinking"}, {"text", text}});
    }

    void takeTool(const std::string& body) {
        const json frame = parseJson(body).value_or(json());
        if (!frame.is_object() || !frame.contains("data"))
            return;
        const json& data = frame["data"];
        const std::string event = frame.value("event", "");
        const std::string tool = data.value("tool", "");
        if (event == "tool_start" && tool == "artifact")
            blocks_.push_back({{"type", "artifact"}, {"id", ""}, {"title", ""}, {"kind", ""}, {"text", ""}});
        else if (event == "tool_call_args" && tool == "artifact")
            growArtifact(data["args"]);
        else if (event == "tool_end" && data.contains("content"))
            endTool(tool, data["content"]);
    }

    json* lastArtifact() {
        const auto found =
            std::find_if(blocks_.rbegin(), blocks_.rend(), [](const json& block) { return is(block, "artifact"); });
        return found == blocks_.rend() ? nullptr : &*found;
    }

    void growArtifact(const json& args) {
        json* const block = lastArtifact();
        if (!block)
            return;
        for (const auto& [key, value] : args.items()) {
            if ((key == "id" || key == "title" || key == "text") && value.is_string())
                (*block)[key].get_ref<std::string&>() += value.get_ref<const std::string&>();
            else if (key == "kind" || key == "version")
                (*block)[key] = value;
        }
    }

    void endTool(const std::string& tool, const json& content) {
        if (tool == "artifact") {
            if (json* const block = lastArtifact())
                for (const auto& [key, value] : content.items())
                    (*block)[key] = value;
        } else if (tool == "web_search") {
            json block = content;
            block["type"] = "search";
            blocks_.push_back(std::move(block));
        } else if (tool == "video") {
            if (const auto url = stringAt(content, "videoUrl"))
                blocks_.push_back({{"type", "video_url"}, {"videoUrl", *url}});
            else if (const auto text = stringAt(content, "text"))
                blocks_.push_back(textBlock(*text));
        } else if (tool == "generateImage") {
            endImage(content);
        } else if (tool == "createDocument") {
            if (const auto url = stringAt(content, "fileUrl"))
                blocks_.push_back(
                    {{"type", "file_url"}, {"fileUrl", *url}, {"filename", content.value("filename", "file")},
                        {"mimetype", content.value("mimeType", "application/octet-stream")}});
        }
    }

    void endImage(const json& content) {
        const auto url = stringAt(content, "imageUrl");
        if (!url) {
            if (const auto text = stringAt(content, "text"); text && !text->empty())
                blocks_.push_back(textBlock(*text));
            return;
        }
        const bool isThere = std::any_of(blocks_.begin(), blocks_.end(), [&](const json& block) {
            return is(block, "text") && block["text"].get_ref<const std::string&>().find(*url) != std::string::npos;
        });
        if (isThere)
            return;
        // There is one: the answer begins with it.
        const auto text =
            std::find_if(blocks_.rbegin(), blocks_.rend(), [](const json& block) { return is(block, "text"); });
        textOf(*text) += imageMarkdown(*url);
    }

    // The client's answer begins with one empty text.
    std::vector<json> blocks_{textBlock({})};
};

struct Citation {
    std::size_t begin = 0;
    std::size_t end = 0;
    int index = 0;
    std::string url;
};

/// The next "[[1]](https://...)", with single or double brackets on either side, at or behind `from`.
std::optional<Citation> nextCitation(std::string_view text, std::size_t from) {
    for (std::size_t open = text.find('[', from); open != std::string_view::npos; open = text.find('[', open + 1)) {
        std::size_t at = open + 1;
        at += at < text.size() && text[at] == '[' ? 1 : 0;
        Citation citation{open, 0, 0, {}};
        std::size_t digits = 0;
        for (; at < text.size() && digits < 2 && text[at] >= '0' && text[at] <= '9'; ++at, ++digits)
            citation.index = citation.index * 10 + (text[at] - '0');
        if (digits == 0 || at >= text.size() || text[at] != ']')
            continue;
        ++at;
        at += at < text.size() && text[at] == ']' ? 1 : 0;
        if (at >= text.size() || text[at] != '(')
            continue;
        const auto address = text.substr(at + 1);
        const std::size_t scheme = address.starts_with("http://") ? 7 : address.starts_with("https://") ? 8 : 0;
        const auto close = scheme == 0 ? 0 : address.find(')');
        if (scheme != 0 && close == std::string_view::npos)
            // Nor is there one for any that follows: looking again each time would take quadratic time.
            return std::nullopt;
        if (scheme == 0 || close <= scheme)
            continue;
        citation.url = address.substr(0, close);
        citation.end = at + 1 + close + 1;
        return citation;
    }
    return std::nullopt;
}

std::string domainOf(std::string_view url) {
    std::string_view host = url.substr(url.find("//") + 2);
    host = host.substr(0, host.find_first_of("/?#"));
    if (const auto user = host.rfind('@'); user != std::string_view::npos)
        host.remove_prefix(user + 1);
    if (!host.starts_with("["))
        host = host.substr(0, host.find(':'));
    std::string domain = lowerCase(host);
    for (std::size_t at = 0; (at = domain.find("www.", at)) != std::string::npos;)
        domain.erase(at, 4);
    return domain.empty() ? std::string(url) : domain;
}

/// Runs of three or more line feeds become two.
std::string withoutGaps(std::string_view text) {
    std::string result;
    std::size_t feeds = 0;
    for (const char c : text) {
        feeds = c == '\n' ? feeds + 1 : 0;
        if (feeds <= 2)
            result += c;
    }
    return trimmed(result);
}

/// Citations leave the text and become a block of results.
void gatherCitations(json& blocks) {
    std::vector<Citation> all;
    std::set<std::string> known;
    for (json& block : blocks) {
        if (!is(block, "text"))
            continue;
        const std::string text = textOf(block);
        std::string rest;
        std::size_t at = 0;
        while (const auto citation = nextCitation(text, at)) {
            rest.append(text, at, citation->begin - at);
            at = citation->end;
            if (known.insert(citation->url).second)
                all.push_back(*citation);
        }
        if (at > 0)
            textOf(block) = withoutGaps(rest + text.substr(at));
    }
    if (all.empty())
        return;
    std::stable_sort(all.begin(), all.end(), [](const Citation& a, const Citation& b) { return a.index < b.index; });
    json results = json::array();
    for (const Citation& each : all) {
        const std::string domain = domainOf(each.url);
        results.push_back({{"title", domain}, {"url", each.url}, {"content", ""},
            {"favicon", "https://www.google.com/s2/favicons?sz=32&domain=" + domain}});
    }
    blocks.push_back({{"type", "search"}, {"results", std::move(results)}});
}

}

std::string imageMarkdown(const std::string& address) {
    return "\n\n![image](" + address + ")";
}

bool endsWithText(const std::vector<Piece>& pieces) {
    Fold fold;
    for (const Piece& piece : pieces)
        fold.take(piece);
    return fold.endsWithText();
}

json contentOf(const std::vector<Piece>& pieces, AnswerState state) {
    Fold fold;
    for (const Piece& piece : pieces)
        fold.take(piece);
    json blocks = fold.finish();
    if (state == AnswerState::done)
        gatherCitations(blocks);
    return blocks;
}

}
