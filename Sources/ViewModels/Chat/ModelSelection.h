#pragma once

#include "Chat/ModelCatalogue.h"

#include <QSet>

#include <vector>

namespace Korvi {

class Defaults;

// Which model the next new chat runs on, and which ones beside the default the user wants to see; both are kept.
class ModelSelection {
public:
    explicit ModelSelection(Defaults& defaults);

    // The one used last; it need not be in the catalogue.
    const QString& selectedModel() const { return m_selectedModel; }
    void select(const QString& id);
    const ModelInfo* selectedModelInfo() const; // null when the catalogue does not know it
    QString chatModelName() const;              // for the toolbar

    std::vector<ModelInfo> availableModels() const; // the automatic one, then the enabled extra ones
    std::vector<ModelInfo> extraModelsForSettings() const;
    bool hasExtraModelsEnabled() const;
    bool isExtraModelEnabled(const QString& id) const;
    void toggleExtraModel(const QString& id);

private:
    QSet<QString> enabledExtraModelIds() const;

    Defaults& m_defaults;
    QString m_selectedModel;
};

}
