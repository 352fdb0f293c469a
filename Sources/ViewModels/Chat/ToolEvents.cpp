#include "Chat/ToolEvents.h"

#include "Chat/ArtifactFinder.h"
#include "Chat/ToolNames.h"
#include "Chat/WebSearchParsing.h"
#include "Clock.h"

#include <QLoggingCategory>

#include <algorithm>

namespace Korvi::ToolEvents {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcTools, "korvi.chat.tools", QtInfoMsg)

namespace {

using Content = std::vector<MessageContent>;
using Text = MessageContent::Text;
using Generating = MessageContent::Generating;
using SearchInProgress = MessageContent::SearchInProgress;

constexpr auto imageKind = u"image";
constexpr auto imageTimeoutText = u"Не удалось создать изображение: время ожидания истекло";

template <class Block>
auto firstOf(Content& content) {
    return std::find_if(
        content.begin(), content.end(), [](const MessageContent& block) { return block.as<Block>() != nullptr; });
}

bool isGenerating(const MessageContent& block, QStringView kind) {
    const auto* generating = block.as<Generating>();
    return generating && generating->kind == kind;
}

std::optional<QString> stringAt(const QJsonObject& object, QLatin1String key) {
    const QJsonValue value = object.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

QString joinedText(const Content& content) {
    QString joined;
    for (const MessageContent& block : content) {
        if (const auto* text = block.as<Text>())
            joined += text->text;
    }
    return joined;
}

// One answer, its tools and what becomes of a frame.
struct Fold {
    ToolWork& work;
    Content& content;
    Outcome outcome = {};

    void append(MessageContent block) {
        content.push_back(std::move(block));
        outcome.isChanged = true;
    }

    void appendGeneratingPlaceholder(const QString& type) {
        work.hasGeneratingPlaceholder = true;
        work.generatingPlaceholderType = type;
        if (type == QStringView(imageKind))
            work.showImageSkeleton = true;
        if (firstOf<Generating>(content) != content.end()) {
            qCInfo(lcTools) << "⚠️ [ChatViewModel] appendGeneratingPlaceholder: already has generating placeholder";
            return;
        }
        append({Generating{type}});
    }

    // All of that kind, or the first only.
    void removeGenerating(QStringView kind, bool onlyFirst = false) {
        auto end = content.end();
        if (onlyFirst) {
            end = std::find_if(content.begin(), content.end(),
                [kind](const MessageContent& block) { return isGenerating(block, kind); });
            if (end != content.end())
                ++end;
        }
        const auto from = std::remove_if(
            content.begin(), end, [kind](const MessageContent& block) { return isGenerating(block, kind); });
        outcome.isChanged = outcome.isChanged || from != end;
        content.erase(from, end);
    }

    void forgetPlaceholder() {
        work.hasGeneratingPlaceholder = false;
        work.generatingPlaceholderType.clear();
    }

    void updateSearchPlaceholder(const QString& query) {
        const auto block = firstOf<SearchInProgress>(content);
        if (block == content.end())
            return append({SearchInProgress{query}});
        auto* search = block->as<SearchInProgress>();
        outcome.isChanged = outcome.isChanged || search->query != query;
        search->query = query;
    }

    void appendArtifactPlaceholder(Random& random) {
        const bool exists = std::any_of(content.begin(), content.end(), [](const MessageContent& block) {
            const auto* artifact = block.as<Artifact>();
            return artifact && ArtifactDraft::isPlaceholder(*artifact);
        });
        if (exists) {
            qCInfo(lcTools) << "⚠️ [ChatViewModel] Artifact placeholder already exists, skipping";
            return;
        }
        append({ArtifactDraft::placeholder(random.uuid().toString(QUuid::WithoutBraces))});
    }

    void finalizeArtifact() {
        if (Artifact* artifact = ArtifactFinder::lastOf(content)) {
            outcome.isChanged = work.artifactBuffer.applyTo(*artifact) || outcome.isChanged;
            outcome.finished = *artifact;
            qCInfo(lcTools).noquote() << "💾 [ChatViewModel] Saved artifact for recovery: id=" + artifact->id;
        }
        work.artifactBuffer.clear();
    }

    // An image of an answer is Markdown in its text.
    void appendImageText(const QString& markdown) {
        const auto last = std::find_if(
            content.rbegin(), content.rend(), [](const MessageContent& block) { return block.as<Text>() != nullptr; });
        if (last == content.rend())
            return append({Text{markdown}});
        last->as<Text>()->text += u"\n\n"_s + markdown;
        outcome.isChanged = true;
    }

    // Whether an image came.
    bool endImage(const QJsonObject& body) {
        forgetPlaceholder();
        work.showImageSkeleton = false;
        removeGenerating(imageKind, true);
        auto url = stringAt(body, "imageUrl"_L1);
        if (!url)
            url = stringAt(body.value("content"_L1).toObject(), "imageUrl"_L1);
        const QString text = stringAt(body, "text"_L1).value_or(QString());
        if (url) {
            if (joinedText(content).contains(*url))
                qCInfo(lcTools) << "🖼️ [ChatViewModel] Image URL already in text, skipping duplicate";
            else
                appendImageText(u"![image]("_s + *url + u')');
        } else if (text.contains("!["_L1)) {
            appendImageText(text);
        } else if (!text.isEmpty()) {
            qCWarning(lcTools) << "⚠️ [ChatViewModel] Image generation failed, showing error";
            append({Text{text}});
        }
        return url.has_value();
    }

    void start(const QString& tool, Random& random) {
        const ToolClass toolClass = ToolNames::classOf(tool);
        outcome.tracked = ToolNames::trackedAs(tool);
        switch (toolClass) {
        case ToolClass::artifact:
            work.artifactBuffer.clear();
            appendArtifactPlaceholder(random);
            return;
        case ToolClass::webSearch:
            work.webSearchState = {.isSearching = true, .query = {}, .content = {}};
            if (firstOf<SearchInProgress>(content) == content.end())
                append({SearchInProgress{}});
            return;
        case ToolClass::image: outcome.wait = Wait::forImage; [[fallthrough]];
        case ToolClass::video:
        case ToolClass::document: appendGeneratingPlaceholder(ToolNames::placeholderOf(toolClass)); break;
        case ToolClass::other: break;
        }
        work.currentToolStatus = ToolNames::startStatus(tool);
    }

    void args(const QString& tool, const QJsonObject& args) {
        if (tool == "artifact"_L1) {
            work.artifactBuffer.take(args);
            outcome.wantsFlush = true;
        } else if (ToolNames::isWebSearchTool(tool)) {
            if (const auto query = stringAt(args, "query"_L1)) {
                work.webSearchState.query = *query;
                work.webSearchState.isSearching = true;
                updateSearchPlaceholder(*query);
            }
        } else {
            work.currentToolStatus = ToolNames::workStatus(tool, args);
            if (ToolNames::announcesImage(tool) && firstOf<Generating>(content) == content.end())
                appendGeneratingPlaceholder(QStringView(imageKind).toString());
        }
    }

    void end(const QString& tool, const std::optional<QJsonObject>& body) {
        switch (ToolNames::classOf(tool)) {
        case ToolClass::artifact:
            if (body)
                work.artifactBuffer.settle(*body);
            finalizeArtifact();
            break;
        case ToolClass::webSearch: return endSearch(body);
        case ToolClass::video: endVideo(body.value_or(QJsonObject())); break;
        case ToolClass::image:
            if (!endImageTool(body))
                return;
            break;
        case ToolClass::document: endDocument(body.value_or(QJsonObject())); break;
        case ToolClass::other: qCInfo(lcTools) << "🔧 [ChatViewModel] A tool of no known kind has ended"; break;
        }
        work.currentToolStatus.clear();
    }

    void endSearch(const std::optional<QJsonObject>& body) {
        if (body) {
            std::erase_if(content, [](const MessageContent& block) { return block.as<SearchInProgress>() != nullptr; });
            append({WebSearchParsing::parseSearch(*body, work.webSearchState.query)});
        }
        work.webSearchState = {};
    }

    void endVideo(const QJsonObject& body) {
        const QString url = body.value("videoUrl"_L1).toString();
        if (!url.isEmpty()) {
            forgetPlaceholder();
            removeGenerating(u"video");
            append({MessageContent::Video{url}});
        } else if (const auto text = stringAt(body, "text"_L1)) {
            qCWarning(lcTools) << "❌ [ChatViewModel] Video tool_end without videoUrl";
            append({Text{*text}});
        }
    }

    void endDocument(const QJsonObject& body) {
        const auto first = [&](std::initializer_list<QLatin1String> keys) {
            for (const QLatin1String key : keys) {
                if (auto value = stringAt(body, key))
                    return *value;
            }
            return QString();
        };
        forgetPlaceholder();
        removeGenerating(u"file");
        QString url = first({"fileUrl"_L1, "file_url"_L1});
        if (url.isEmpty()) {
            qCWarning(lcTools) << "⚠️ [ChatViewModel] Document tool_end without fileUrl";
            return;
        }
        const QString type = first({"mimeType"_L1, "mime_type"_L1});
        append({MessageContent::File{.url = std::move(url),
            .filename = stringAt(body, "filename"_L1).value_or(u"file"_s),
            .mimetype = type.isEmpty() ? u"application/octet-stream"_s : type}});
    }

    // Whether the tool is through.
    bool endImageTool(const std::optional<QJsonObject>& body) {
        outcome.wait = Wait::noLonger;
        if (!body) {
            qCWarning(lcTools) << "❌ [ChatViewModel] content is nil!";
            return true;
        }
        if (body->value("loading"_L1).toBool()) { // it goes on
            appendGeneratingPlaceholder(QStringView(imageKind).toString());
            work.currentToolStatus = ToolNames::startStatus(u"generateimage"_s);
            outcome.wait = Wait::forImage;
            return false;
        }
        if (!endImage(*body)) {
            qCWarning(lcTools)
                << "⚠️ [ChatViewModel] Image tool_end without imageUrl — scheduling safety finish in 5s";
            outcome.wait = Wait::forEnd;
        }
        return true;
    }
};

Content& contentOf(ChatMessage& answer) {
    if (!answer.content)
        answer.content.emplace();
    return *answer.content;
}

}

Outcome take(ToolWork& work, ChatMessage& answer, const ToolFrame& frame, Random& random) {
    Fold fold{work, contentOf(answer)};
    switch (frame.kind) {
    case ToolFrame::Kind::start: fold.start(frame.tool, random); break;
    case ToolFrame::Kind::args: fold.args(frame.tool, frame.content.value_or(QJsonObject())); break;
    case ToolFrame::Kind::end: fold.end(frame.tool, frame.content); break;
    }
    return fold.outcome;
}

bool applyArtifact(ToolWork& work, ChatMessage& answer) {
    Artifact* artifact = answer.content ? ArtifactFinder::lastOf(*answer.content) : nullptr;
    return artifact && work.artifactBuffer.applyTo(*artifact);
}

bool imageTimedOut(ToolWork& work, ChatMessage& answer) {
    Fold fold{work, contentOf(answer)};
    fold.endImage({{"type"_L1, "text"_L1}, {"text"_L1, QStringView(imageTimeoutText).toString()}});
    return fold.outcome.isChanged;
}

bool repairPlaceholder(const ToolWork& work, ChatMessage& answer) {
    Content& content = contentOf(answer);
    if (!work.hasGeneratingPlaceholder || work.generatingPlaceholderType.isEmpty() ||
        firstOf<Generating>(content) != content.end())
        return false;
    qCWarning(lcTools) << "🔧 [ChatViewModel] updateLastMessage: RACE CONDITION DETECTED! Flag is true but .generating "
                          "missing. Re-adding it";
    content.push_back({Generating{work.generatingPlaceholderType}});
    return true;
}

void rest(ToolWork& work) {
    static_cast<ToolState&>(work) = {};
    work.artifactBuffer.clear();
}

}
