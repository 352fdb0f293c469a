#pragma once

#include "Chat/Piece.h"

#include <nlohmann/json.hpp>
#include <string>

namespace korvi::service::frames {

std::string create(const nlohmann::json& chat);
std::string piece(const Piece& piece);
std::string toolStart(const std::string& tool);
std::string toolArguments(const std::string& tool, const nlohmann::json& arguments);
/// The tool is still at work.
std::string toolProgress(const std::string& tool);
std::string toolEnd(const std::string& tool, const nlohmann::json& content);
std::string end();
/// `chatId` 0: the error belongs to no chat.
std::string error(long long chatId, const std::string& message);

}
