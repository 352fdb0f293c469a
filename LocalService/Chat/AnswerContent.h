#pragma once

#include "Chat/Answer.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace korvi::service {

/// The content blocks of an answer made of these pieces, in the order in which a client that saw them stream shows them: so
/// a chat looks the same when it is opened again. What a tool has not finished leaves no block, except for an artifact of
/// which there is text. In an answer that is `done`, citations in the text have become a "search" block, as in the client.
nlohmann::json contentOf(const std::vector<Piece>& pieces, AnswerState state);

/// Whether a text that comes next goes on in one that is there, even if a tool has worked in between.
bool endsWithText(const std::vector<Piece>& pieces);

/// The picture of a finished image tool, in the form in which it joins the text.
std::string imageMarkdown(const std::string& address);

}
