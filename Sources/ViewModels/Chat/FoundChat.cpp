#include "Chat/FoundChat.h"

namespace Korvi::FoundChat {

QHash<int, QByteArray> roleNames(const QAbstractItemModel* source) {
    QHash<int, QByteArray> names = source ? source->roleNames() : QHash<int, QByteArray>();
    names.insert(MarksRole, "marks");
    names.insert(AgeRole, "age");
    return names;
}

QHash<QByteArray, int> rolesOf(const QAbstractItemModel& source) {
    QHash<QByteArray, int> roles;
    const auto names = source.roleNames();
    for (auto it = names.begin(); it != names.end(); ++it)
        roles.insert(it.value(), it.key());
    return roles;
}

QVariantList marks(const std::vector<TextRange>& ranges) {
    QVariantList marks;
    for (const TextRange& range : ranges)
        marks << range.start << range.length;
    return marks;
}

}
