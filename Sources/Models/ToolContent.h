#pragma once

#include "JsonReader.h"

namespace Korvi {

// A loose event body. When "text" is absent or empty and "content" is there, `text` takes its value.
struct ToolContent {
    std::optional<QString> type;
    std::optional<QString> text;
    std::optional<QString> content;
    std::optional<QString> event;
    std::optional<QString> tool;

    // The client's own, never on the wire.
    std::optional<QString> thinkingText;
    std::optional<QString> attributedText;
    bool isComplete = false;

    static ToolContent fromJson(const JsonReader& json);
    bool operator==(const ToolContent&) const = default;
};

struct ToolContentWrapper {
    QString event;
    ToolContent data;

    static ToolContentWrapper fromJson(const JsonReader& json);
    bool operator==(const ToolContentWrapper&) const = default;
};

}
