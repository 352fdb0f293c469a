#pragma once

#include <array>
#include <string_view>

namespace korvi::service {

struct DemoArtifact {
    /// Any of these, separated by blanks, in a question asks for it.
    std::string_view words;
    std::string_view id;
    std::string_view kind;
    std::string_view title;
    std::string_view text;
};

/// The first one is shown if the question does not say which.
extern const std::array<DemoArtifact, 6> demoArtifacts;

}
