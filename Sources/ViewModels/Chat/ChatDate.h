#pragma once

#include <QDateTime>

#include <optional>

namespace Korvi {

// When a chat was used last, from the text that the service gives; absent when it is in none of the forms in use.
// A text without a time zone is UTC.
std::optional<QDateTime> parseChatDate(const QString& text);

// How long before `now` that was, as short as a row can hold it: "сейчас", "5 мин", "2 ч", "вчера", "3 дн.", "2 нед.",
// "4 мес.", "1 г."; "через 2 ч" when the service's clock is ahead by more than a minute. Whole days are those of the
// local calendar. A text that cannot be read comes back unchanged.
QString formatChatDate(const QString& text, const QDateTime& now);

}
