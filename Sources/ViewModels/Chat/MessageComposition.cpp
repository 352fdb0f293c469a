#include "Chat/MessageComposition.h"

#include "Chat/ArtifactDraft.h"
#include "Clock.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace Korvi::MessageComposition {

using namespace Qt::Literals;

namespace {

using Text = MessageContent::Text;
using File = MessageContent::File;

ChatMessage message(ChatMessage::Role role, std::vector<MessageContent> content, qint64 chatId,
    const QString& createdAt, Random& random) {
    ChatMessage made;
    made.id = random.integer(1000, 9999);
    made.createdAt = createdAt;
    made.chatId = chatId;
    made.role = role;
    made.content = std::move(content);
    return made;
}

const std::vector<MessageContent>& blocksOf(const ChatMessage& message) {
    static const std::vector<MessageContent> none;
    return message.content ? *message.content : none;
}

template <class Block>
QString joined(const ChatMessage& message, QStringView separator) {
    QStringList parts;
    for (const MessageContent& block : blocksOf(message)) {
        if (const auto* part = block.as<Block>())
            parts.append(part->text);
    }
    return parts.join(separator);
}

// It never came to the service: its message went without it.
bool isLocal(const QString& url) {
    return QUrl(url).isLocalFile();
}

// What the service may not have of a message.
struct Attached {
    std::vector<MessageContent> lostImages;
    std::vector<MessageContent> lostFiles;
    std::vector<MessageContent> files; // all of them

    bool isEmpty() const { return lostImages.empty() && files.empty(); }
};

Attached attachedTo(const ChatMessage& message) {
    Attached attached;
    for (const MessageContent& block : blocksOf(message)) {
        if (const auto* image = block.as<MessageContent::Image>(); image && isLocal(image->url))
            attached.lostImages.push_back(block);
        const auto* file = block.as<File>();
        if (file)
            attached.files.push_back(block);
        if (file && isLocal(file->url))
            attached.lostFiles.push_back(block);
    }
    return attached;
}

bool isOfUser(const ChatMessage& message) {
    return message.role == ChatMessage::Role::user;
}

struct TypeRule {
    QStringView word;
    QStringView type;
};

// The first word that is in the text decides.
constexpr std::array typeRules{
    TypeRule{u"нарисуй", u"image"},
    TypeRule{u"создай изображение", u"image"},
    TypeRule{u"сгенерируй картинку", u"image"},
    TypeRule{u"draw", u"image"},
    TypeRule{u"generate image", u"image"},
    TypeRule{u"видео", u"video"},
    TypeRule{u"video", u"video"},
    TypeRule{u"поиск", u"search"},
    TypeRule{u"найди", u"search"},
    TypeRule{u"search", u"search"},
};

}

bool isAnswer(const ChatMessage& message) {
    return message.role == ChatMessage::Role::ai || message.role == ChatMessage::Role::assistant;
}

std::optional<int> rowOfLastAnswer(const std::vector<ChatMessage>& messages) {
    const auto answer = std::find_if(messages.rbegin(), messages.rend(), isAnswer);
    return answer == messages.rend() ? std::nullopt : std::optional(static_cast<int>(messages.rend() - answer) - 1);
}

std::vector<MessageContent> contentOf(const QString& text, const std::optional<QString>& editImageUrl,
    const std::vector<ChatFileAttachment>& attachments) {
    const auto isImage = [](const ChatFileAttachment& each) { return each.category == FileTypeCategory::image; };
    const auto addressOf = [](const ChatFileAttachment& each) {
        return each.remoteURL.value_or(each.localURL.value_or(QUrl()).toString());
    };
    std::vector<MessageContent> content;
    const auto image = std::find_if(attachments.begin(), attachments.end(), isImage);
    if (editImageUrl)
        content.push_back({MessageContent::Image{*editImageUrl}});
    else if (image != attachments.end())
        content.push_back({MessageContent::Image{image->localURL.value_or(QUrl()).toString()}});
    for (const ChatFileAttachment& each : attachments) {
        if (!isImage(each))
            content.push_back({File{.url = addressOf(each),
                .filename = each.filename,
                .mimetype = each.mimeType.value_or(u"application/octet-stream"_s)}});
    }
    if (!text.isEmpty())
        content.push_back({Text{text}});
    return content;
}

bool relocate(ChatMessage& message, const QHash<QString, QString>& places) {
    if (!message.content)
        return false;
    bool isChanged = false;
    for (MessageContent& block : *message.content) {
        auto* image = block.as<MessageContent::Image>();
        auto* file = block.as<File>();
        QString* url = image ? &image->url : file ? &file->url : nullptr;
        const auto place = url ? places.find(*url) : places.end();
        if (place == places.end())
            continue;
        *url = *place;
        isChanged = true;
    }
    return isChanged;
}

Turn begin(std::vector<MessageContent> content, qint64 chatId, const Clock& clock, Random& random) {
    const QString now = clock.now().toString(Qt::ISODate);
    ChatMessage question = message(ChatMessage::Role::user, std::move(content), chatId, now, random);
    ChatMessage answer = message(ChatMessage::Role::ai, {{Text{}}}, chatId, now, random);
    return {std::move(question), std::move(answer)};
}

QString detectGenerationType(const QString& text, bool hasImage) {
    if (hasImage)
        return u"image"_s;
    const QString lower = text.toLower();
    for (const TypeRule& rule : typeRules) {
        if (lower.contains(rule.word))
            return rule.type.toString();
    }
    return u"text"_s;
}

std::vector<ChatMessage> mergeFileAttachments(const std::vector<ChatMessage>& local, std::vector<ChatMessage> server) {
    // Counted from the end: the same words may have been sent more than once, with other files or without.
    QHash<QString, std::vector<Attached>> known;
    bool isAnyAttached = false;
    for (const ChatMessage& each : local) {
        if (!isOfUser(each))
            continue;
        Attached attached = attachedTo(each);
        isAnyAttached = isAnyAttached || !attached.isEmpty();
        known[joinedText(each, u" ")].push_back(std::move(attached));
    }
    if (!isAnyAttached)
        return server;
    for (auto each = server.rbegin(); each != server.rend(); ++each) {
        const auto sent = isOfUser(*each) ? known.find(joinedText(*each, u" ")) : known.end();
        if (sent == known.end() || sent->empty())
            continue;
        const Attached attached = std::move(sent->back());
        sent->pop_back();
        if (attached.isEmpty())
            continue;
        const bool hasFiles = !attachedTo(*each).files.empty();
        const std::vector<MessageContent>& files = hasFiles ? attached.lostFiles : attached.files;
        if (!each->content)
            each->content.emplace();
        each->content->insert(each->content->begin(), attached.lostImages.begin(), attached.lostImages.end());
        each->content->insert(each->content->end(), files.begin(), files.end());
    }
    return server;
}

QString joinedText(const ChatMessage& message, QStringView separator) {
    return joined<Text>(message, separator);
}

QString joinedThinking(const ChatMessage& message) {
    return joined<MessageContent::Thinking>(message, {});
}

bool removePlaceholders(ChatMessage& message) {
    if (!message.content)
        return false;
    return std::erase_if(*message.content, [](const MessageContent& block) {
        const auto* artifact = block.as<Artifact>();
        return block.as<MessageContent::Generating>() || block.as<MessageContent::SearchInProgress>() ||
            (artifact && ArtifactDraft::isPlaceholder(*artifact) && artifact->text.isEmpty());
    }) > 0;
}

std::optional<std::ptrdiff_t> rowOfQuestion(const std::vector<ChatMessage>& messages, const QString& text) {
    for (std::ptrdiff_t row = std::ssize(messages) - 2; row >= 0; --row) {
        const auto message = messages.begin() + row;
        if (asks(*message, text) && isAnswer(*(message + 1)))
            return row;
    }
    return std::nullopt;
}

bool asks(const ChatMessage& message, const QString& text) {
    return isOfUser(message) && message.text().trimmed() == text.trimmed();
}

std::ptrdiff_t timesAsked(const std::vector<ChatMessage>& messages, const QString& text) {
    return std::count_if(
        messages.begin(), messages.end(), [&text](const ChatMessage& message) { return asks(message, text); });
}

const ChatMessage* answerTo(const std::vector<ChatMessage>& messages, const QString& text, std::ptrdiff_t time) {
    const auto question = std::find_if(messages.begin(), messages.end(),
        [&](const ChatMessage& message) { return asks(message, text) && --time == 0; });
    const bool isAnswered = question != messages.end() && question + 1 != messages.end() && isAnswer(*(question + 1));
    return isAnswered ? &*(question + 1) : nullptr;
}

std::optional<QString> lastQuestion(const std::vector<ChatMessage>& messages) {
    const auto question = std::find_if(messages.rbegin(), messages.rend(), isOfUser);
    if (question == messages.rend() || !question->content)
        return std::nullopt;
    for (const MessageContent& block : *question->content) {
        if (const auto* text = block.as<Text>())
            return text->text;
    }
    return std::nullopt;
}

}
