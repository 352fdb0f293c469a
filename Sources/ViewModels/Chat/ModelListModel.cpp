#include "Chat/ModelListModel.h"

namespace Korvi {

ModelListModel::ModelListModel(QObject* parent)
    : QAbstractListModel(parent) {
    std::vector<ModelProvider> groups;
    for (const ModelInfo& model : ModelCatalogue::allModelsForSelector()) {
        const ModelProvider provider = ModelCatalogue::provider(model.id);
        if (std::find(groups.begin(), groups.end(), provider) == groups.end())
            groups.push_back(provider);
    }
    for (const ModelProvider group : groups) {
        for (const ModelInfo& model : ModelCatalogue::allModelsForSelector()) {
            if (ModelCatalogue::provider(model.id) == group)
                m_models.push_back(model);
        }
    }
}

int ModelListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ModelListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const ModelInfo& model = m_models[static_cast<std::size_t>(index.row())];
    switch (role) {
    case ModelIdRole: return model.id.toString();
    case NameRole: return model.displayName.toString();
    case DescriptionRole: return model.description.toString();
    case IconNameRole: return model.iconName.toString();
    case ProviderRole: return ModelCatalogue::title(ModelCatalogue::provider(model.id)).toString();
    case IsSelectedRole: return model.id == m_selected;
    default: return {};
    }
}

QHash<int, QByteArray> ModelListModel::roleNames() const {
    return {
        {ModelIdRole, "modelId"},
        {NameRole, "name"},
        {DescriptionRole, "description"},
        {IconNameRole, "iconName"},
        {ProviderRole, "provider"},
        {IsSelectedRole, "isSelected"},
    };
}

void ModelListModel::setSelected(const QString& id) {
    if (m_selected == id)
        return;
    m_selected = id;
    emit dataChanged(index(0), index(count() - 1), {IsSelectedRole});
}

}
