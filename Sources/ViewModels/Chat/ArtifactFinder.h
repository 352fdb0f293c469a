#pragma once

#include "ChatMessage.h"

namespace Korvi {

// An artifact that was finished lately, and the message that it belongs to.
struct StreamedArtifact {
    qint64 messageId = 0;
    Artifact artifact;

    bool operator==(const StreamedArtifact&) const = default;
};

namespace ArtifactFinder {

// The artifact of that identifier; else the last one with a text, for the service's identifier replaces the temporary
// one while it grows. Null without one. Valid until the messages change.
const Artifact* find(const std::vector<ChatMessage>& messages, const QString& artifactId);
// The last artifact of an answer, or null.
Artifact* lastOf(std::vector<MessageContent>& content);
// Whether the last message holds it: there it may still be growing.
bool isInLast(const std::vector<ChatMessage>& messages, const QString& artifactId);

// Puts the artifact back into its message, should the service's form of it lack it. Whether it did.
bool restoreArtifactIfNeeded(std::vector<ChatMessage>& messages, const StreamedArtifact& saved);

// What a kind is called: "Python", "Diagram" ...
QString labelOf(const QString& kind);

}

}
