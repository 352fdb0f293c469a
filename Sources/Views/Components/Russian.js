.pragma library

// "1 источник", "2 источника", "5 источников"
function counted(count, one, few, many) {
    const tens = count % 100
    const ones = count % 10
    const form = tens >= 11 && tens <= 14 ? many : ones === 1 ? one : ones >= 2 && ones <= 4 ? few : many
    return count + " " + form
}

// "1,4 с"
function seconds(time) {
    return time.toFixed(time < 10 ? 1 : 0).replace(".", ",") + " с"
}

// "0:07", "1:02:03"
function clock(milliseconds) {
    const all = Math.max(0, Math.floor(milliseconds / 1000))
    const two = number => String(number).padStart(2, "0")
    const minutes = Math.floor(all / 60)
    const hours = Math.floor(minutes / 60)
    return hours > 0 ? hours + ":" + two(minutes % 60) + ":" + two(all % 60) : minutes + ":" + two(all % 60)
}
