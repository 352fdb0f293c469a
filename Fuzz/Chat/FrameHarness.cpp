// A frame from the far side: no crash, the same events each time, and never more than an image tool's two.
#include "Match.h"
#include "SocketFrame.h"

#include <cstdlib>

using namespace Korvi;

namespace {

QByteArray json(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray describe(const SocketEvent& event) {
    return match(
        event.value, [](const SocketEvent::TextChunk& e) { return "text" + e.content.toUtf8(); },
        [](const SocketEvent::ThinkingChunk& e) { return "thinking" + e.content.toUtf8(); },
        [](const SocketEvent::ToolStart& e) { return "start" + e.tool.toUtf8(); },
        [](const SocketEvent::ToolEnd& e) {
            return "end-of" + e.tool.toUtf8() + json(e.content.value_or(QJsonObject()));
        },
        [](const SocketEvent::Creation& e) { return "chat" + json(e.chat.toJson()); },
        [](const SocketEvent::ArtifactChunk& e) { return "args" + e.tool.toUtf8() + json(e.args); },
        [](const SocketEvent::Error& e) {
            return "error" + QByteArray::number(e.chatId.value_or(-1)) + e.message.toUtf8();
        },
        [](const SocketEvent::StreamEnd&) { return QByteArray("end"); },
        // Changes of the connection never come out of a frame.
        [](const SocketEvent::Message&) -> QByteArray { std::abort(); },
        [](const SocketEvent::Disconnected&) -> QByteArray { std::abort(); },
        [](const SocketEvent::Connected&) -> QByteArray { std::abort(); });
}

QByteArrayList parsed(const QByteArray& bytes) {
    QByteArrayList all;
    for (const SocketEvent& event : SocketFrame::parse(bytes))
        all.append(describe(event));
    return all;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QByteArrayList events = parsed(bytes);
    if (events.size() > 2 || events != parsed(bytes))
        std::abort();
    return 0;
}
