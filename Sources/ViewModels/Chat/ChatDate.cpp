#include "Chat/ChatDate.h"

#include <QRegularExpression>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// In seconds.
constexpr qint64 minute = 60;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;

// One number with the word that Russian wants behind it.
QString counted(qint64 number, QStringView one, QStringView few, QStringView many) {
    const qint64 tens = number % 100;
    const qint64 ones = number % 10;
    const bool teen = tens >= 11 && tens <= 14;
    const QStringView unit = !teen && ones == 1 ? one : !teen && ones >= 2 && ones <= 4 ? few : many;
    return QString::number(number) + u' ' + unit.toString();
}

QString counted(qint64 number, QStringView unit) {
    return counted(number, unit, unit, unit);
}

// Months that have passed in full between two days.
int monthsBetween(QDate from, QDate to) {
    const int months = (to.year() - from.year()) * 12 + to.month() - from.month();
    return from.addMonths(months) > to ? months - 1 : months;
}

// The largest unit that fits; `earlier` is not after `later`.
QString span(const QDateTime& earlier, const QDateTime& later) {
    const qint64 seconds = earlier.secsTo(later);
    if (seconds < hour)
        return counted(seconds / minute, u"мин");
    if (seconds < day)
        return counted(seconds / hour, u"ч");
    const QDate from = earlier.toLocalTime().date();
    const QDate to = later.toLocalTime().date();
    const int months = monthsBetween(from, to);
    if (months >= 12)
        return counted(months / 12, u"г.", u"г.", u"л.");
    if (months >= 1)
        return counted(months, u"мес.");
    const qint64 days = from.daysTo(to);
    return days >= 7 ? counted(days / 7, u"нед.") : counted(days, u"дн.");
}

}

std::optional<QDateTime> parseChatDate(const QString& text) {
    // 2026-03-10T09:30:00.000+0300, the same with Z or +03:00, with or without a fraction; 2026-03-10 06:30:00.
    static const QRegularExpression form(
        u"^(\\d{4}-\\d\\d-\\d\\d)(?:T(\\d\\d:\\d\\d:\\d\\d)(?:\\.(\\d{1,9}))?(?:Z|([+-])(\\d\\d):?(\\d\\d))| "
        u"(\\d\\d:\\d\\d:\\d\\d))$"_s);
    const auto match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QDate date = QDate::fromString(match.captured(1), Qt::ISODate);
    const QTime time = QTime::fromString(match.captured(match.hasCaptured(7) ? 7 : 2), Qt::ISODate);
    const int offset = (match.captured(5).toInt() * 60 + match.captured(6).toInt()) * 60;
    if (!date.isValid() || !time.isValid() || offset > 14 * hour)
        return std::nullopt;
    const int milliseconds = match.captured(3).leftJustified(3, u'0', true).toInt();
    const QDateTime utc(date, time.addMSecs(milliseconds), Qt::UTC);
    return utc.addSecs(match.captured(4) == u"-" ? offset : -offset);
}

QString formatChatDate(const QString& text, const QDateTime& now) {
    const auto then = parseChatDate(text);
    if (!then)
        return text;
    const qint64 passed = then->secsTo(now);
    if (passed > -minute && passed < minute)
        return u"сейчас"_s;
    if (passed < 0)
        return u"через "_s + span(now, *then);
    if (passed >= day && then->toLocalTime().date().daysTo(now.toLocalTime().date()) == 1)
        return u"вчера"_s;
    return span(*then, now);
}

}
