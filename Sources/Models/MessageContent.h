#pragma once

#include "Artifact.h"
#include "WebSearchContent.h"

#include <variant>

namespace Korvi {

// One typed block of a message. Decoding is tolerant where a stored conversation may hold what this client does
// not know: an unknown type, or a media block without an address, becomes `Unknown` and the message survives.
// A block without "type", or without a key that its type cannot do without, throws DecodingError.
// toJson() is the form of the disk cache; fromJson() reads it back to the same value.
struct MessageContent {
    struct Text {
        QString text;
        bool operator==(const Text&) const = default;
    };
    struct Image {
        QString url;
        bool operator==(const Image&) const = default;
    };
    struct Video {
        QString url;
        bool operator==(const Video&) const = default;
    };
    struct Music {
        QString url;
        bool operator==(const Music&) const = default;
    };
    struct File {
        QString url;
        QString filename;
        QString mimetype;
        bool operator==(const File&) const = default;
    };
    struct Thinking {
        QString text; // reasoning, shown folded
        bool operator==(const Thinking&) const = default;
    };
    struct Generating {
        QString kind; // "image", "video" or "file": a tool at work
        bool operator==(const Generating&) const = default;
    };
    struct SearchInProgress {
        QString query; // may be empty
        bool operator==(const SearchInProgress&) const = default;
    };
    struct Unknown {
        bool operator==(const Unknown&) const = default;
    };
    using Value = std::variant<Text, Image, Video, Music, File, Artifact, Thinking, Generating, WebSearchContent,
        SearchInProgress, Unknown>;

    Value value;

    template <class T>
    const T* as() const {
        return std::get_if<T>(&value);
    }
    template <class T>
    T* as() {
        return std::get_if<T>(&value);
    }

    static MessageContent fromJson(const JsonReader& json);
    QJsonObject toJson() const;

    bool operator==(const MessageContent&) const = default;
};

}
