#include "Tools/ToolCall.h"

#include "Core/Json.h"

namespace korvi::service {

using nlohmann::json;

std::size_t ToolCallCollector::callFor(const json& delta) {
    const auto index = delta.find("index");
    const auto id = stringAt(delta, "id").value_or("");
    const bool hasIndex = index != delta.end() && index->is_number_integer();
    // Without an index, a delta with a name of its own begins a call, and any other goes on with the last one.
    const auto function = delta.find("function");
    const bool named = function != delta.end() && !stringAt(*function, "name").value_or("").empty();
    if (hasIndex) {
        const auto found = byIndex_.find(index->get<long long>());
        if (found != byIndex_.end() &&
            (id.empty() || calls_[found->second].id.empty() || calls_[found->second].id == id))
            return found->second;
    } else if (!calls_.empty() && !named) {
        return calls_.size() - 1;
    }
    if (calls_.size() == maximumCalls)
        return maximumCalls;
    calls_.emplace_back();
    if (hasIndex)
        byIndex_[index->get<long long>()] = calls_.size() - 1;
    return calls_.size() - 1;
}

std::vector<ToolCallCollector::Change> ToolCallCollector::take(const json& deltas) {
    std::vector<Change> changes;
    if (!deltas.is_array())
        return changes;
    for (const json& delta : deltas) {
        if (!delta.is_object())
            continue;
        const std::size_t at = callFor(delta);
        if (at == maximumCalls)
            continue;
        ToolCall& call = calls_[at];
        if (const auto id = stringAt(delta, "id"); id && !id->empty())
            call.id = *id;
        Change change{at, {}};
        if (const auto function = delta.find("function"); function != delta.end() && function->is_object()) {
            if (const auto name = stringAt(*function, "name"); name && !name->empty())
                call.name = *name;
            const auto arguments = function->find("arguments");
            if (arguments != function->end() && arguments->is_string())
                change.added = arguments->get<std::string>();
            else if (arguments != function->end() && arguments->is_object())
                // Some servers give the object itself.
                change.added = dumpJson(*arguments);
        }
        call.arguments += change.added;
        changes.push_back(std::move(change));
    }
    return changes;
}

}
