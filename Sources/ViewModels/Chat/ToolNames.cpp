#include "Chat/ToolNames.h"

#include <algorithm>
#include <array>

namespace Korvi::ToolNames {

using namespace Qt::Literals;

namespace {

enum class How { equals, contains };

struct NameRule {
    QLatin1String word; // lowercase
    How how;
    ToolClass toolClass;
};

// The first rule that holds decides. Web searches have rules of their own and come second.
constexpr std::array nameRules{
    NameRule{"artifact"_L1, How::equals, ToolClass::artifact},
    NameRule{"video"_L1, How::equals, ToolClass::video},
    NameRule{"animateimage"_L1, How::equals, ToolClass::video},
    NameRule{"generateimage"_L1, How::equals, ToolClass::image},
    NameRule{"dalle"_L1, How::contains, ToolClass::image},
    NameRule{"image"_L1, How::contains, ToolClass::image},
    NameRule{"draw"_L1, How::contains, ToolClass::image},
    NameRule{"recraft"_L1, How::contains, ToolClass::image},
    NameRule{"paint"_L1, How::contains, ToolClass::image},
    NameRule{"document"_L1, How::contains, ToolClass::document},
    NameRule{"createdocument"_L1, How::contains, ToolClass::document},
    NameRule{"create-document"_L1, How::contains, ToolClass::document},
};

// As they stand, and in lowercase.
constexpr std::array searchNames{"web-search"_L1, "searchWeb"_L1, "webSearch"_L1, "google_search"_L1, "browser"_L1};
constexpr std::array lowerSearchNames{"tavily"_L1, "brave_search"_L1, "duckduckgo"_L1};

struct TrackRule {
    QLatin1String word;
    QLatin1String type;
};

constexpr std::array trackRules{
    TrackRule{"video"_L1, "video"_L1},
    TrackRule{"search"_L1, "search"_L1},
    TrackRule{"document"_L1, "file"_L1},
    TrackRule{"image"_L1, "image"_L1},
    TrackRule{"dalle"_L1, "image"_L1},
    TrackRule{"recraft"_L1, "image"_L1},
};

struct ClassRow {
    ToolClass toolClass;
    QLatin1String placeholder;
    QStringView status;
};

constexpr std::array classRows{
    ClassRow{ToolClass::artifact, {}, {}},
    ClassRow{ToolClass::webSearch, {}, {}},
    ClassRow{ToolClass::video, "video"_L1, u"Создание видео..."},
    ClassRow{ToolClass::image, "image"_L1, u"Generating image..."},
    ClassRow{ToolClass::document, "file"_L1, u"Создаю файл..."},
};

// What a tool is said to be doing, with the argument that tells more.
struct WorkRow {
    QLatin1String tool; // as it stands
    QLatin1String argument;
    QLatin1String with;
    QLatin1String without;
};

constexpr std::array workRows{
    WorkRow{"dalle"_L1, "prompt"_L1, "Generating image"_L1, "Generating image..."_L1},
    WorkRow{"browser"_L1, "query"_L1, "Searching web"_L1, "Searching web..."_L1},
    WorkRow{"python"_L1, {}, {}, "Analyzing data with Python..."_L1},
};

constexpr qsizetype longestArgument = 50;

const ClassRow* rowOf(ToolClass toolClass) {
    const auto* row = std::find_if(
        classRows.begin(), classRows.end(), [toolClass](const ClassRow& each) { return each.toolClass == toolClass; });
    return row == classRows.end() ? nullptr : row;
}

}

bool isWebSearchTool(const QString& tool) {
    const QString lower = tool.toLower();
    const auto isOf = [](const auto& names, const QString& name) {
        return std::any_of(names.begin(), names.end(), [&](QLatin1String each) { return each == name; });
    };
    return isOf(searchNames, tool) || (lower.contains("search"_L1) && lower.contains("web"_L1)) ||
        isOf(lowerSearchNames, lower) || lower.startsWith("search"_L1);
}

ToolClass classOf(const QString& tool) {
    const QString lower = tool.toLower();
    const auto holds = [&](const NameRule& rule) {
        return rule.how == How::equals ? lower == rule.word : lower.contains(rule.word);
    };
    if (holds(nameRules.front()))
        return ToolClass::artifact;
    if (isWebSearchTool(tool))
        return ToolClass::webSearch;
    const auto* rule = std::find_if(nameRules.begin(), nameRules.end(), holds);
    return rule == nameRules.end() ? ToolClass::other : rule->toolClass;
}

bool announcesImage(const QString& tool) {
    const QString lower = tool.toLower();
    return std::any_of(nameRules.begin(), nameRules.end(),
        [&](const NameRule& rule) { return rule.toolClass == ToolClass::image && lower.contains(rule.word); });
}

QString placeholderOf(ToolClass toolClass) {
    const ClassRow* row = rowOf(toolClass);
    return row ? QString(row->placeholder) : QString();
}

std::optional<QString> trackedAs(const QString& tool) {
    const QString lower = tool.toLower();
    const auto* rule = std::find_if(
        trackRules.begin(), trackRules.end(), [&](const TrackRule& each) { return lower.contains(each.word); });
    return rule == trackRules.end() ? std::nullopt : std::optional<QString>(rule->type);
}

QString startStatus(const QString& tool) {
    const ClassRow* row = rowOf(classOf(tool));
    return row ? row->status.toString() : u"Starting "_s + tool + u"..."_s;
}

QString workStatus(const QString& tool, const QJsonObject& args) {
    for (const WorkRow& row : workRows) {
        if (tool != row.tool)
            continue;
        const QJsonValue argument = row.argument.isEmpty() ? QJsonValue() : args.value(row.argument);
        return argument.isString() ? row.with + u": \""_s + argument.toString() + u"\"..."_s : QString(row.without);
    }
    QString status = u"Using "_s + tool;
    if (const QJsonValue first = args.isEmpty() ? QJsonValue() : *args.begin();
        first.isString() && first.toString().size() < longestArgument)
        status += u": "_s + first.toString();
    return status + u"..."_s;
}

}
