.pragma library

// Whether an address is one for the browser: nothing but pages of the web is ever handed to it.
function isWeb(url) {
    return /^https?:\/\/[^\s/]/i.test(url)
}

// Whether the client itself may fetch from there: without encryption only from this machine.
function isMedia(url) {
    return /^https:\/\/[^\s/]/i.test(url) || /^http:\/\/(127(\.\d{1,3}){3}|localhost|\[::1\])(:\d+)?\//i.test(url)
}

function open(url) {
    if (isWeb(url))
        Qt.openUrlExternally(url)
}
