#pragma once

#include "Chat/ArtifactDraft.h"
#include "Chat/ToolReplay.h"
#include "Chat/WebSearchState.h"
#include "ChatMessage.h"

namespace Korvi {

class Random;

// What a reader is told of tools at work.
struct ToolState {
    bool hasGeneratingPlaceholder = false;
    QString generatingPlaceholderType; // "image", "video" or "file" while the block is to stand in the answer
    bool showImageSkeleton = false;
    QString currentToolStatus; // empty when no tool is at work
    WebSearchState webSearchState;

    bool operator==(const ToolState&) const = default;
};

// What the tools of one answer are at. Belongs to the answer, open or not: shown again, it tells the same.
struct ToolWork : ToolState {
    ArtifactDraft artifactBuffer;
    ToolReplay replay;
};

// Folds what tools tell of themselves into the answer: placeholders while they work, then what came out of it. Pure:
// an answer, its tools and a frame in, the changed answer and what to wait for out.
namespace ToolEvents {

// What may never come, and has to be watched for.
enum class Wait {
    none,     // as before
    forImage, // the image tool's end
    forEnd,   // a failed image tool's answer may be left without its end
    noLonger, // for an image
};

struct Outcome {
    bool isChanged = false;  // the answer
    bool wantsFlush = false; // pieces of an artifact wait for applyArtifact()
    Wait wait = Wait::none;
    std::optional<QString> tracked; // a long task has begun, of that type
    std::optional<Artifact> finished;
};

Outcome take(ToolWork& work, ChatMessage& answer, const ToolFrame& frame, Random& random);

// Brings the artifact that is being written up to date. Whether that changed the answer.
bool applyArtifact(ToolWork& work, ChatMessage& answer);
// No end came of the image tool.
bool imageTimedOut(ToolWork& work, ChatMessage& answer);
// A placeholder that got lost while its tool works is put back. Whether one was.
bool repairPlaceholder(const ToolWork& work, ChatMessage& answer);

// The answer is over, or not waited for any more: no tool is at work.
void rest(ToolWork& work);

}

}

Q_DECLARE_METATYPE(Korvi::WebSearchState)
