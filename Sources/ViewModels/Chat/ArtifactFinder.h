#pragma once

#include "ChatMessage.h"

namespace Korvi {

// What tells an artifact from the others of its conversation: its versions share their identifier.
struct ArtifactName {
    QString id;
    std::optional<qint64> version;

    bool operator==(const ArtifactName&) const = default;
};

// An artifact that was finished lately, and the message that it belongs to.
struct StreamedArtifact {
    qint64 chatId = -1;
    qint64 messageId = 0;
    Artifact artifact;

    bool operator==(const StreamedArtifact&) const = default;
};

namespace ArtifactFinder {

ArtifactName nameOf(const Artifact& artifact);

// The artifact of that name; else the first of that identifier; else the last one with a text, for the service's
// identifier replaces the temporary one while it grows. Null without one. Valid until the messages change.
const Artifact* find(const std::vector<ChatMessage>& messages, const ArtifactName& name);
// The last artifact of an answer, or null.
Artifact* lastOf(std::vector<MessageContent>& content);
// Those of the last message: there they may still be growing. Valid until the messages change.
std::vector<const Artifact*> ofLast(const std::vector<ChatMessage>& messages);

// Puts the artifact back into its message, should the service's form of it lack it. Whether it did.
bool restoreArtifactIfNeeded(std::vector<ChatMessage>& messages, const StreamedArtifact& saved);

// What a kind is called: "Python", "Diagram" ...
QString labelOf(const QString& kind);

}

}
