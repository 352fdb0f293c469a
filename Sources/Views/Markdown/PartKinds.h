#pragma once

#include <QLatin1String>

#include <array>

namespace Korvi {

enum class AnswerPartKind {
    text, // paragraphs, with formulas in them
    code,
    mermaid,
    latex, // a formula on a line of its own
    table,
    image,
    video,
    music,
    file,
    artifact,
    search,
    searching,
    generating,
};

// How the kinds are called in the role `kind`, in the order of the enum.
inline constexpr std::array answerPartNames{
    QLatin1String("text"),
    QLatin1String("code"),
    QLatin1String("mermaid"),
    QLatin1String("latex"),
    QLatin1String("table"),
    QLatin1String("image"),
    QLatin1String("video"),
    QLatin1String("music"),
    QLatin1String("file"),
    QLatin1String("artifact"),
    QLatin1String("search"),
    QLatin1String("searching"),
    QLatin1String("generating"),
};

}
