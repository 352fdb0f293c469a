#include "Tools/ArtifactWriter.h"

#include "Core/Secrets.h"
#include "Core/Text.h"

#include <algorithm>

namespace korvi::service {

using Phase = ProviderTool::Phase;

namespace {

constexpr std::size_t worthTelling = 48; // bytes
constexpr std::size_t longestId = 64;

/// What can stand in an address; empty if nothing of it can.
std::string cleanId(std::string_view given) {
    std::string id;
    for (const char c : given) {
        const bool plain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
        if (plain && id.size() < longestId)
            id += c;
    }
    return id;
}

}

ArtifactWriter::ArtifactWriter()
    : id_("artifact-" + randomId().substr(0, 8)) {}

void ArtifactWriter::begin(Events& events) {
    hasStarted_ = true;
    events.push_back({Phase::start, "artifact"});
}

void ArtifactWriter::feed(std::string_view arguments, Events& events) {
    for (auto& part : stream_.feed(arguments)) {
        if (part.key == "id") {
            givenId_ += part.text;
            if (part.ends && !idTold_) {
                if (const std::string id = cleanId(givenId_); !id.empty())
                    id_ = id;
                tellId(events);
            }
        } else if (part.key == "kind") {
            kind_ += part.text;
            if (part.ends) {
                kind_ = lowerCase(trimmed(kind_));
                tellId(events);
                flush(events);
                events.push_back({Phase::arguments, "artifact", {{"kind", kind_}}});
            }
        } else if (part.key == "title" || part.key == "text") {
            tellId(events);
            (part.key == "title" ? title_ : text_) += part.text;
            if (pendingKey_ != part.key)
                flush(events);
            pendingKey_ = part.key;
            pending_ += part.text;
            if (part.ends || pending_.size() >= worthTelling)
                flush(events);
        }
    }
}

void ArtifactWriter::tellId(Events& events) {
    if (!std::exchange(idTold_, true))
        events.push_back({Phase::arguments, "artifact", {{"id", id_}}});
}

void ArtifactWriter::flush(Events& events) {
    if (!pending_.empty())
        events.push_back({Phase::arguments, "artifact", {{pendingKey_, std::exchange(pending_, {})}}});
}

void ArtifactWriter::finish(Events& events) {
    flush(events);
    hasFinished_ = true;
    // A late word about which one is meant counts, too.
    if (const std::string id = cleanId(givenId_); !id.empty())
        id_ = id;
    if (kind_.empty())
        kind_ = "markdown";
    if (title_.empty())
        title_ = "Документ";
    events.push_back({Phase::end, "artifact", {{"id", id_}, {"title", title_}, {"kind", kind_}, {"text", text_}}});
}

}
