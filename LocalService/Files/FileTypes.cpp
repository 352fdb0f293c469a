#include "Files/FileTypes.h"

#include "Core/Text.h"

#include <algorithm>
#include <array>

namespace korvi::service {

namespace {

struct Row {
    std::string_view extension;
    std::string_view mime;
    FileKind kind;
};

constexpr std::array rows{
    Row{"png", "image/png", FileKind::image},
    Row{"jpg", "image/jpeg", FileKind::image},
    Row{"jpeg", "image/jpeg", FileKind::image},
    Row{"gif", "image/gif", FileKind::image},
    Row{"webp", "image/webp", FileKind::image},
    Row{"heic", "image/heic", FileKind::image},
    Row{"heif", "image/heif", FileKind::image},
    Row{"bmp", "image/bmp", FileKind::image},
    Row{"tif", "image/tiff", FileKind::image},
    Row{"tiff", "image/tiff", FileKind::image},
    Row{"svg", "image/svg+xml", FileKind::text},
    Row{"mp4", "video/mp4", FileKind::media},
    Row{"m4v", "video/mp4", FileKind::media},
    Row{"mpeg", "video/mpeg", FileKind::media},
    Row{"mpg", "video/mpeg", FileKind::media},
    Row{"mov", "video/quicktime", FileKind::media},
    Row{"avi", "video/x-msvideo", FileKind::media},
    Row{"flv", "video/x-flv", FileKind::media},
    Row{"webm", "video/webm", FileKind::media},
    Row{"wmv", "video/x-ms-wmv", FileKind::media},
    Row{"3gp", "video/3gpp", FileKind::media},
    Row{"wav", "audio/wav", FileKind::media},
    Row{"mp3", "audio/mpeg", FileKind::media},
    Row{"aiff", "audio/aiff", FileKind::media},
    Row{"aac", "audio/aac", FileKind::media},
    Row{"m4a", "audio/mp4", FileKind::media},
    Row{"ogg", "audio/ogg", FileKind::media},
    Row{"flac", "audio/flac", FileKind::media},
    Row{"pdf", "application/pdf", FileKind::document},
    Row{"doc", "application/msword", FileKind::document},
    Row{"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document", FileKind::document},
    Row{"xls", "application/vnd.ms-excel", FileKind::document},
    Row{"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", FileKind::document},
    Row{"ppt", "application/vnd.ms-powerpoint", FileKind::document},
    Row{"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation", FileKind::document},
    Row{"odt", "application/vnd.oasis.opendocument.text", FileKind::document},
    Row{"ods", "application/vnd.oasis.opendocument.spreadsheet", FileKind::document},
    Row{"odp", "application/vnd.oasis.opendocument.presentation", FileKind::document},
    Row{"rtf", "application/rtf", FileKind::document},
    Row{"epub", "application/epub+zip", FileKind::document},
    Row{"mobi", "application/x-mobipocket-ebook", FileKind::document},
    Row{"fb2", "application/x-fictionbook+xml", FileKind::text},
    Row{"txt", "text/plain; charset=utf-8", FileKind::text},
    Row{"md", "text/markdown; charset=utf-8", FileKind::text},
    Row{"csv", "text/csv; charset=utf-8", FileKind::text},
    Row{"html", "text/html; charset=utf-8", FileKind::text},
    Row{"htm", "text/html; charset=utf-8", FileKind::text},
    Row{"xhtml", "application/xhtml+xml", FileKind::text},
    Row{"css", "text/css; charset=utf-8", FileKind::text},
    Row{"json", "application/json", FileKind::text},
    Row{"xml", "application/xml", FileKind::text},
    Row{"tex", "application/x-tex", FileKind::text},
    Row{"js", "text/javascript; charset=utf-8", FileKind::text},
    Row{"zip", "application/zip", FileKind::other},
};

/// Plain text by another name: delivered as such, and shown to a model.
constexpr std::array<std::string_view, 103> textExtensions{"c", "cpp", "cxx", "cc", "cs", "java", "py", "rb", "ts",
    "php", "swift", "go", "rs", "kt", "scala", "lua", "pl", "sh", "bat", "ps1", "h", "hpp", "m", "asm", "s", "r",
    "dart", "groovy", "hs", "lhs", "erl", "ex", "exs", "lisp", "lsp", "scm", "clj", "cljs", "ml", "mli", "vbs", "vb",
    "f", "for", "f90", "pas", "p", "dpr", "dpk", "sql", "jsx", "tsx", "hx", "yaml", "yml", "scss", "sass", "less",
    "rst", "log", "ini", "config", "toml", "conf", "properties", "make", "mk", "cmake", "gradle", "lock", "gitignore",
    "dockerignore", "dockerfile", "htaccess", "env", "tf", "rq", "ttl", "rdf", "owl", "n3", "nfo", "cfg", "latex",
    "qml", "vue", "svelte", "diff", "patch", "bib", "srt", "vtt", "tsv", "zsh", "bash", "fish", "zig", "nim", "jl",
    "proto", "graphql", "mmd", "adoc"};

bool isType(std::string_view text) {
    return !text.empty() && text.size() <= 100 && text.find('/') != std::string_view::npos &&
        std::all_of(text.begin(), text.end(), [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' || c == '.' ||
                c == '-' || c == '+';
        });
}

}

FileType fileTypeOf(std::string_view filename, std::string_view declared) {
    const auto dot = filename.rfind('.');
    const std::string extension = lowerCase(dot == std::string_view::npos ? filename : filename.substr(dot + 1));
    for (const Row& row : rows)
        if (row.extension == extension)
            return {std::string(row.mime), row.kind};
    if (std::find(textExtensions.begin(), textExtensions.end(), extension) != textExtensions.end())
        return {"text/plain; charset=utf-8", FileKind::text};
    const std::string type = lowerCase(trimmed(declared.substr(0, declared.find(';'))));
    for (const Row& row : rows)
        if (row.mime.substr(0, row.mime.find(';')) == type)
            return {std::string(row.mime), row.kind};
    if (!isType(type))
        return {"application/octet-stream", FileKind::other};
    if (type.starts_with("video/") || type.starts_with("audio/"))
        return {type, FileKind::media};
    if (type.starts_with("image/"))
        return {type, FileKind::image};
    if (type.starts_with("text/"))
        return {"text/plain; charset=utf-8", FileKind::text};
    return {type, FileKind::other};
}

bool beginsLikeMedia(std::string_view bytes) {
    const auto at = [&](std::size_t offset, std::string_view mark) {
        return bytes.size() >= offset + mark.size() && bytes.substr(offset, mark.size()) == mark;
    };
    return at(4, "ftyp") || at(0, "\x1A\x45\xDF\xA3") || at(0, "OggS") || at(0, "fLaC") || at(0, "ID3") ||
        (at(0, "RIFF") && (at(8, "AVI ") || at(8, "WAVE")));
}

std::string pictureType(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG\r\n\x1A\n"))
        return "image/png";
    if (bytes.starts_with("\xFF\xD8\xFF"))
        return "image/jpeg";
    if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a"))
        return "image/gif";
    if (bytes.starts_with("RIFF") && bytes.size() >= 12 && bytes.substr(8, 4) == "WEBP")
        return "image/webp";
    return {};
}

}
