#include "Chat/ArtifactFinder.h"

#include <QLoggingCategory>

#include <algorithm>
#include <array>

namespace Korvi::ArtifactFinder {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcArtifact, "korvi.chat.artifact", QtInfoMsg)

namespace {

struct LabelRow {
    QLatin1String kind; // lowercase
    QLatin1String label;
};

constexpr std::array labelRows{
    LabelRow{"python"_L1, "Python"_L1}, LabelRow{"javascript"_L1, "JavaScript"_L1},
    LabelRow{"typescript"_L1, "TypeScript"_L1}, LabelRow{"swift"_L1, "Swift"_L1}, LabelRow{"html"_L1, "HTML"_L1},
    LabelRow{"react"_L1, "React"_L1}, LabelRow{"vue"_L1, "Vue"_L1}, LabelRow{"svelte"_L1, "Svelte"_L1},
    LabelRow{"svg"_L1, "SVG"_L1}, LabelRow{"mermaid"_L1, "Diagram"_L1}, LabelRow{"markdown"_L1, "Markdown"_L1},
    LabelRow{"code"_L1, "Code"_L1}, LabelRow{"loading"_L1, ""_L1}, // nobody has told yet
};

std::vector<const Artifact*> artifactsOf(const ChatMessage& message) {
    std::vector<const Artifact*> artifacts;
    if (!message.content)
        return artifacts;
    for (const MessageContent& block : *message.content) {
        if (const auto* artifact = block.as<Artifact>())
            artifacts.push_back(artifact);
    }
    return artifacts;
}

// Each word with a capital at its beginning and small letters behind.
QString capitalized(const QString& text) {
    QString result = text.toLower();
    bool isInWord = false;
    for (QChar& character : result) {
        if (!isInWord)
            character = character.toUpper();
        isInWord = character.isLetterOrNumber();
    }
    return result;
}

}

ArtifactName nameOf(const Artifact& artifact) {
    return {.id = artifact.id, .version = artifact.version};
}

const Artifact* find(const std::vector<ChatMessage>& messages, const ArtifactName& name) {
    const Artifact* namesake = nullptr;
    const Artifact* lastWithText = nullptr;
    for (const ChatMessage& message : messages) {
        for (const Artifact* artifact : artifactsOf(message)) {
            if (nameOf(*artifact) == name)
                return artifact;
            if (!namesake && artifact->id == name.id)
                namesake = artifact;
            if (!artifact->text.isEmpty())
                lastWithText = artifact;
        }
    }
    return namesake ? namesake : lastWithText;
}

Artifact* lastOf(std::vector<MessageContent>& content) {
    for (auto block = content.rbegin(); block != content.rend(); ++block) {
        if (auto* artifact = block->as<Artifact>())
            return artifact;
    }
    return nullptr;
}

std::vector<const Artifact*> ofLast(const std::vector<ChatMessage>& messages) {
    return messages.empty() ? std::vector<const Artifact*>() : artifactsOf(messages.back());
}

bool restoreArtifactIfNeeded(std::vector<ChatMessage>& messages, const StreamedArtifact& saved) {
    const auto message = std::find_if(
        messages.begin(), messages.end(), [&](const ChatMessage& each) { return each.id == saved.messageId; });
    if (message == messages.end()) {
        qCWarning(lcArtifact) << "⚠️ [ChatViewModel] restoreArtifact: message" << saved.messageId
                              << "not found in fetched messages";
        return false;
    }
    if (!message->content)
        message->content.emplace();
    if (lastOf(*message->content)) {
        qCInfo(lcArtifact) << "✅ [ChatViewModel] Server message already contains artifact, no restoration needed";
        return false;
    }
    message->content->push_back({saved.artifact});
    qCInfo(lcArtifact).noquote() << "🔧 [ChatViewModel] Restored artifact" << saved.artifact.id;
    return true;
}

QString labelOf(const QString& kind) {
    const QString lower = kind.toLower();
    const auto* row =
        std::find_if(labelRows.begin(), labelRows.end(), [&](const LabelRow& each) { return each.kind == lower; });
    return row == labelRows.end() ? capitalized(kind) : QString(row->label);
}

}
