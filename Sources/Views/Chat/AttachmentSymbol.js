.pragma library

const symbols = {
    image: "photo",
    document: "doc.text",
    code: "chevron.left.forwardslash.chevron.right",
    video: "video",
    audio: "music.note",
}

// "image", "document", "code", "video", "audio"
function of(category) {
    return symbols[category] ?? "doc"
}

// Of a file that only its MIME type is known of.
function ofType(mimetype) {
    const kind = mimetype.split("/")[0]
    return kind === "text" && mimetype !== "text/plain" ? symbols.code : kind in symbols ? symbols[kind] : "doc.text"
}
