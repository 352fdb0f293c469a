#pragma once

#include "Chat.h"
#include "ToolContent.h"
#include "URLError.h"

#include <variant>

namespace Korvi {

// A frame of the chat socket, decoded, or a change of its connection.
struct SocketEvent {
    struct Disconnected {
        std::optional<URLError> error;
    };
    struct TextChunk {
        QString content;
    };
    struct ThinkingChunk {
        QString content;
    };
    struct ToolStart {
        QString tool;
    };
    struct ToolEnd {
        QString tool;
        std::optional<QJsonObject> content;
    };
    struct Creation {
        Chat chat;
    };
    struct ArtifactChunk {
        QString tool;
        QJsonObject args;
    };
    struct Message {
        ToolContent content; // reserved: no frame produces it
    };
    struct Error {
        std::optional<qint64> chatId;
        QString message;
    };
    struct Connected {};
    struct StreamEnd {};
    using Value = std::variant<Disconnected, TextChunk, ThinkingChunk, ToolStart, ToolEnd, Creation, ArtifactChunk,
        Message, Error, Connected, StreamEnd>;

    Value value;
};

}
