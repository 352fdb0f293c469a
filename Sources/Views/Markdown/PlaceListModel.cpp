#include "PlaceListModel.h"

namespace Korvi {

void PlaceListModel::assign(std::vector<Place> places) {
    const std::size_t common = std::min(places.size(), m_places.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (m_places[i] == places[i])
            continue;
        m_places[i] = std::move(places[i]);
        emit dataChanged(index(static_cast<int>(i)), index(static_cast<int>(i)));
    }
    if (m_places.size() > common) {
        beginRemoveRows({}, static_cast<int>(common), static_cast<int>(m_places.size()) - 1);
        m_places.resize(common);
        endRemoveRows();
    } else if (places.size() > common) {
        beginInsertRows({}, static_cast<int>(common), static_cast<int>(places.size()) - 1);
        m_places.insert(m_places.end(), std::make_move_iterator(places.begin() + static_cast<std::ptrdiff_t>(common)),
            std::make_move_iterator(places.end()));
        endInsertRows();
    }
}

int PlaceListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_places.size());
}

QVariant PlaceListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Place& place = m_places[static_cast<std::size_t>(index.row())];
    switch (role) {
    case TextRole: return place.text;
    case RectRole: return place.rect;
    default: return {};
    }
}

QHash<int, QByteArray> PlaceListModel::roleNames() const {
    return {{TextRole, "placeText"}, {RectRole, "place"}};
}

}
