#include "Chat/Frames.h"

#include "Core/Json.h"

namespace korvi::service::frames {

using nlohmann::json;

namespace {

std::string frame(const char* event, json data) {
    return dumpJson({{"event", event}, {"data", std::move(data)}});
}

}

std::string create(const json& chat) {
    return frame("create", chat);
}

std::string piece(const Piece& piece) {
    if (piece.kind == PieceKind::tool)
        return piece.body;
    return frame(piece.kind == PieceKind::text ? "chunk" : "thinking", {{"content", piece.body}});
}

std::string toolStart(const std::string& tool) {
    return frame("tool_start", {{"tool", tool}});
}

std::string toolArguments(const std::string& tool, const json& arguments) {
    return frame("tool_call_args", {{"tool", tool}, {"args", arguments}});
}

std::string toolProgress(const std::string& tool) {
    return frame("tool_end", {{"tool", tool}, {"loading", true}});
}

std::string toolEnd(const std::string& tool, const json& content) {
    return frame("tool_end", {{"tool", tool}, {"content", content}});
}

std::string end() {
    return frame("end", json::object());
}

std::string error(long long chatId, const std::string& message) {
    json data{{"message", message}};
    if (chatId != 0)
        data["chatId"] = chatId;
    return frame("error", std::move(data));
}

}
