#pragma once

#include "StreamingDocument.h"

namespace Korvi::Markdown {

// What is wrong with a change that is told to have led from one list of segments to the other; empty if nothing is.
QString faultOf(const Change& change, const std::vector<Segment>& before, const std::vector<Segment>& after);

}
