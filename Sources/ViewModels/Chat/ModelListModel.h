#pragma once

#include "Chat/ModelCatalogue.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace Korvi {

// The rows of the model picker, grouped by provider: groups in the order of their first member.
class ModelListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by ChatViewModel")
    Q_PROPERTY(int count READ count CONSTANT)

public:
    enum Role {
        ModelIdRole = Qt::UserRole + 1, // "modelId", string
        NameRole,                       // "name", string
        DescriptionRole,                // "description", string
        IconNameRole,                   // "iconName", string: name of a Symbol
        ProviderRole,                   // "provider", string: title of the group
        IsSelectedRole,                 // "isSelected", bool
    };
    Q_ENUM(Role)

    explicit ModelListModel(QObject* parent = nullptr);

    int count() const { return static_cast<int>(m_models.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setSelected(const QString& id);

private:
    std::vector<ModelInfo> m_models;
    QString m_selected;
};

}
