#pragma once

#include "Chat/SearchText.h"

#include <QAbstractItemModel>

namespace Korvi::FoundChat {

// What a search adds to the roles of a list of chats: "marks", where the query is in the name (start, length, start,
// length ...), and "age" (ChatDate.h).
constexpr int MarksRole = Qt::UserRole + 1000;
constexpr int AgeRole = MarksRole + 1;

// With those of the source, if there is one.
QHash<int, QByteArray> roleNames(const QAbstractItemModel* source);
// The source's roles by their names.
QHash<QByteArray, int> rolesOf(const QAbstractItemModel& source);
QVariantList marks(const std::vector<TextRange>& ranges);

}
