.pragma library

// Whether an address is one for the browser.
function isWeb(url) {
    return /^https?:\/\/[^\s/]/i.test(url)
}

// Whether the client itself may fetch from there: without encryption only from this machine.
function isMedia(url) {
    return /^https:\/\/[^\s/]/i.test(url) || /^http:\/\/(127(\.\d{1,3}){3}|localhost|\[::1\])(:\d+)?\//i.test(url)
}

// An address to write to, and nothing else: what stands behind a question mark may attach files.
function isMail(url) {
    return /^mailto:[^\s?@]+@[^\s?@]+$/i.test(url)
}

// Nothing else is ever handed to another program, and only when the user has clicked on it.
function open(url) {
    if (isWeb(url) || isMail(url))
        Qt.openUrlExternally(url)
}
