#pragma once

#include "Block.h"

namespace Korvi::Markdown {

// The blocks of a cleaned text (see Cleaners.h), in their order. There are no errors: what is nothing else is a
// paragraph, and an open fence or formula reaches to the end. Linear in the text's length.
// `isTailOpen`: whether code or a formula is open there.
std::vector<Block> parseBlocks(QStringView text, bool* isTailOpen = nullptr);

}
