#include "Chat/ModelSelection.h"

#include "Defaults.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto selectedKey = u"lastSelectedModel"_s;
const auto extraKey = u"enabledExtraModelIds"_s;

}

ModelSelection::ModelSelection(Defaults& defaults)
    : m_defaults(defaults)
    , m_selectedModel(defaults.string(selectedKey).value_or(ModelCatalogue::defaultModelId.toString())) {}

void ModelSelection::select(const QString& id) {
    m_selectedModel = id;
    m_defaults.setString(selectedKey, id);
}

const ModelInfo* ModelSelection::selectedModelInfo() const {
    return ModelCatalogue::find(m_selectedModel);
}

QString ModelSelection::chatModelName() const {
    const ModelInfo* info = selectedModelInfo();
    return info ? info->displayName.toString() : u"Модель"_s;
}

std::vector<ModelInfo> ModelSelection::availableModels() const {
    const QSet<QString> enabled = enabledExtraModelIds();
    std::vector<ModelInfo> models;
    for (const ModelInfo& model : ModelCatalogue::allModels()) {
        if (model.id == ModelCatalogue::defaultModelId || (!model.isDefault && enabled.contains(model.id.toString())))
            models.push_back(model);
    }
    return models;
}

std::vector<ModelInfo> ModelSelection::extraModelsForSettings() const {
    std::vector<ModelInfo> models;
    std::ranges::copy_if(
        ModelCatalogue::allModels(), std::back_inserter(models), std::logical_not(), &ModelInfo::isDefault);
    return models;
}

bool ModelSelection::hasExtraModelsEnabled() const {
    return availableModels().size() > 1;
}

bool ModelSelection::isExtraModelEnabled(const QString& id) const {
    return enabledExtraModelIds().contains(id);
}

void ModelSelection::toggleExtraModel(const QString& id) {
    QSet<QString> enabled = enabledExtraModelIds();
    if (!enabled.remove(id))
        enabled.insert(id);
    m_defaults.setData(extraKey,
        QJsonDocument(QJsonArray::fromStringList(QStringList(enabled.begin(), enabled.end())))
            .toJson(QJsonDocument::Compact));
}

// What does not decode counts as the empty set.
QSet<QString> ModelSelection::enabledExtraModelIds() const {
    QSet<QString> enabled;
    for (const QJsonValue id : QJsonDocument::fromJson(m_defaults.data(extraKey).value_or(QByteArray())).array()) {
        if (!id.isString())
            return {};
        enabled.insert(id.toString());
    }
    return enabled;
}

}
