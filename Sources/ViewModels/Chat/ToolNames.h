#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace Korvi {

enum class ToolClass { artifact, webSearch, video, image, document, other };

// Tools are known by their names, which come from the service and are no closed list.
namespace ToolNames {

ToolClass classOf(const QString& tool);
bool isWebSearchTool(const QString& tool);
// Whether its arguments alone announce an image.
bool announcesImage(const QString& tool);

// The kind of the placeholder that stands in the answer while the tool works; empty without one.
QString placeholderOf(ToolClass toolClass);
// As what a long task of the tool is tracked: "video", "search", "file" or "image"; absent for the others.
std::optional<QString> trackedAs(const QString& tool);

// The status line when the tool begins, and when its arguments come. Empty without one.
QString startStatus(const QString& tool);
QString workStatus(const QString& tool, const QJsonObject& args);

}

}
