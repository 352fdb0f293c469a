#pragma once

#include "Segment.h"

#include <ostream>
#include <string>

namespace Korvi::Markdown {

// Blocks, runs and segments written down in one line each, for tests that compare them: `h1 {Title}`, `p {a *b*}`.
std::string written(const Block& block);
std::string written(const Segment& segment);
std::string written(const std::vector<Run>& runs);

template <class T>
std::vector<std::string> writtenAll(const std::vector<T>& all) {
    std::vector<std::string> lines;
    for (const T& one : all)
        lines.push_back(written(one));
    return lines;
}

}
