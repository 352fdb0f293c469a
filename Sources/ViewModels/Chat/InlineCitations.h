#pragma once

#include "MessageContent.h"

namespace Korvi {

// Takes the citations such as "[[1]](https://...)" out of the text of a finished answer, and the links to the
// service's own files, which stand in the answer as blocks already. What was cited becomes one block of search
// results at the end. Whether anything changed.
bool cleanInlineCitations(std::vector<MessageContent>& content);

}
