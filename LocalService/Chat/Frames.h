#pragma once

#include "Chat/Piece.h"

#include <nlohmann/json.hpp>
#include <string>

namespace korvi::service::frames {

std::string create(const nlohmann::json& chat);
std::string piece(const Piece& piece);
std::string end();
/// `chatId` 0: the error belongs to no chat.
std::string error(long long chatId, const std::string& message);

}
