#pragma once

#include <QStringView>

#include <span>

namespace Korvi {

// A chat model as the picker shows it. The identifier is the service's: it travels as the mode of a new chat, and does
// not always name the version that is shown.
struct ModelInfo {
    QStringView id;
    QStringView name;
    QStringView displayName;
    QStringView description;
    QStringView iconName; // of a Symbol
    bool isDefault = false;
};

enum class ModelProvider { automatic, openai, claude, deepseek, gemini, grok };

// The models that this build knows, compiled in.
namespace ModelCatalogue {

std::span<const ModelInfo> allModels();
inline std::span<const ModelInfo> allModelsForSelector() {
    return allModels();
}
inline constexpr QStringView defaultModelId = u"aiplus";

const ModelInfo* find(QStringView id); // null when it is not in the catalogue
// `openai` for an unknown identifier.
ModelProvider provider(QStringView id);
QStringView title(ModelProvider provider); // "Авто", "OpenAI", ...

}

}
