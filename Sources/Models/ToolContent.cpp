#include "ToolContent.h"

namespace Korvi {

using namespace Qt::Literals;

ToolContent ToolContent::fromJson(const JsonReader& json) {
    ToolContent body;
    body.type = json.optionalString("type"_L1);
    body.text = json.optionalString("text"_L1);
    body.content = json.optionalString("content"_L1);
    body.event = json.optionalString("event"_L1);
    body.tool = json.optionalString("tool"_L1);
    if (body.content && body.text.value_or(QString()).isEmpty())
        body.text = body.content;
    return body;
}

ToolContentWrapper ToolContentWrapper::fromJson(const JsonReader& json) {
    return {.event = json.string("event"_L1), .data = ToolContent::fromJson(json.object("data"_L1))};
}

}
