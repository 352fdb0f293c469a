#pragma once

#include <QAbstractListModel>
#include <QRectF>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// Places in a text over or under which something is drawn. A change announces the places that moved; those that stay
// keep their items.
class PlaceListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("filled by ParagraphDocument")

public:
    struct Place {
        QString text;
        QRectF rect; // pixels, in the text item

        bool operator==(const Place&) const = default;
    };
    enum Role {
        TextRole = Qt::UserRole + 1, // "placeText", string
        RectRole,                    // "place", rectangle
    };

    using QAbstractListModel::QAbstractListModel;

    void assign(std::vector<Place> places);
    const std::vector<Place>& places() const { return m_places; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<Place> m_places;
};

}
