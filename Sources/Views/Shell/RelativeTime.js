.pragma library

const minute = 60 * 1000
const hour = 60 * minute
const months = ["янв", "фев", "мар", "апр", "мая", "июн", "июл", "авг", "сен", "окт", "ноя", "дек"]

function startOfDay(date) {
    return new Date(date.getFullYear(), date.getMonth(), date.getDate()).getTime()
}

// How long ago, as short as a row can hold it: "сейчас", "5 мин", "2 ч", "вчера", "3 дн.", "4 мар", "4 мар 2024".
// Empty when the time cannot be read.
function describe(iso, now) {
    const then = new Date(iso)
    if (isNaN(then.getTime()))
        return ""
    const passed = now.getTime() - then.getTime()
    if (passed < minute)
        return "сейчас"
    if (passed < hour)
        return Math.floor(passed / minute) + " мин"
    const days = Math.round((startOfDay(now) - startOfDay(then)) / (24 * hour))
    if (days === 0)
        return Math.floor(passed / hour) + " ч"
    if (days === 1)
        return "вчера"
    if (days < 7)
        return days + " дн."
    const day = then.getDate() + " " + months[then.getMonth()]
    return then.getFullYear() === now.getFullYear() ? day : day + " " + then.getFullYear()
}
