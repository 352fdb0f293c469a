#include "Http/MultipartParser.h"

#include "Core/Json.h"
#include "Core/Text.h"
#include "Http/Message.h"

#include <algorithm>

namespace korvi::service {

namespace {

constexpr std::size_t longestBoundary = 200;
constexpr std::size_t longestName = 120; // code points

std::string lowerAscii(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

/// The value of a parameter in `; name=value; name="value"`. Browsers and libraries write a quotation mark in a value as
/// \" or as %22.
std::optional<std::string> parameter(std::string_view header, std::string_view name) {
    std::size_t at = header.find(';');
    while (at != std::string_view::npos && at < header.size()) {
        ++at;
        while (at < header.size() && (header[at] == ' ' || header[at] == '\t' || header[at] == ';'))
            ++at;
        const auto equals = header.find('=', at);
        if (equals == std::string_view::npos)
            return std::nullopt;
        const std::string key = lowerAscii(trimmed(header.substr(at, equals - at)));
        std::string value;
        at = equals + 1;
        while (at < header.size() && (header[at] == ' ' || header[at] == '\t'))
            ++at;
        if (at < header.size() && header[at] == '"') {
            for (++at; at < header.size() && header[at] != '"'; ++at) {
                if (header[at] == '\\' && at + 1 < header.size() && (header[at + 1] == '"' || header[at + 1] == '\\'))
                    ++at;
                value += header[at];
            }
            at = header.find(';', std::min(at, header.size()));
        } else {
            const auto end = header.find(';', at);
            value = trimmed(header.substr(at, end == std::string_view::npos ? end : end - at));
            at = end;
        }
        if (key == name)
            return value;
    }
    return std::nullopt;
}

/// The file's name in a part's "Content-Disposition".
std::string filenameOf(std::string_view disposition) {
    constexpr std::string_view utf8 = "utf-8''";
    if (const auto extended = parameter(disposition, "filename*"); extended && lowerAscii(*extended).starts_with(utf8))
        return percentDecoded(std::string_view(*extended).substr(utf8.size()));
    std::string name = parameter(disposition, "filename").value_or("");
    for (std::size_t at = 0; (at = name.find("%22", at)) != std::string::npos; ++at)
        name.replace(at, 3, "\"");
    return name;
}

}

std::optional<std::string> multipartBoundary(std::string_view contentType) {
    const auto semicolon = contentType.find(';');
    if (lowerAscii(trimmed(contentType.substr(0, semicolon))) != "multipart/form-data")
        return std::nullopt;
    auto boundary = parameter(contentType, "boundary");
    if (!boundary || boundary->empty() || boundary->size() > longestBoundary)
        return std::nullopt;
    return boundary;
}

MultipartParser::MultipartParser(const std::string& boundary, std::string wanted, Handlers handlers)
    : delimiter_("\r\n--" + boundary)
    , wanted_(std::move(wanted))
    , handlers_(std::move(handlers))
    // The first delimiter may stand at the very beginning: it looks like all others then.
    , pending_("\r\n") {}

bool MultipartParser::feed(std::string_view bytes) {
    if (state_ == State::epilogue)
        return true;
    if (state_ == State::failed)
        return false;
    pending_ += bytes;
    while (step()) {
    }
    return state_ != State::failed;
}

/// True if it may be worth calling again at once.
bool MultipartParser::step() {
    switch (state_) {
    case State::preamble:
    case State::skipped:
    case State::taken: return passContent();
    case State::delimiter: return passDelimiter();
    case State::header: return passHeader();
    case State::epilogue: pending_.clear(); return false;
    case State::failed: return false;
    }
    return false;
}

bool MultipartParser::passContent() {
    const auto found = pending_.find(delimiter_);
    const std::size_t certain = found != std::string::npos ? found
        : pending_.size() >= delimiter_.size()             ? pending_.size() - delimiter_.size() + 1
                                                           : 0;
    std::string_view content = std::string_view(pending_).substr(0, certain);
    const std::size_t ofHeader = std::min(headerEnd_, content.size());
    content.remove_prefix(ofHeader);
    headerEnd_ -= ofHeader;
    if (state_ == State::taken && !content.empty() && !give(content))
        return false;
    if (found == std::string::npos) {
        pending_.erase(0, certain);
        return false;
    }
    pending_.erase(0, found + delimiter_.size());
    state_ = State::delimiter;
    return true;
}

/// Behind a delimiter stand "--" (the end), or blanks and a line break (another part).
bool MultipartParser::passDelimiter() {
    if (pending_.size() < 2)
        return false;
    if (pending_.starts_with("--")) {
        state_ = State::epilogue;
        return true;
    }
    const auto text = pending_.find_first_not_of(" \t");
    if (text == std::string::npos || text + 1 >= pending_.size()) {
        if (pending_.size() > maximumHeader)
            state_ = State::failed;
        return false;
    }
    if (pending_.compare(text, 2, "\r\n") != 0 || ++parts_ > maximumParts) {
        state_ = State::failed;
        return false;
    }
    // The line break stays: a header without a line ends at once.
    pending_.erase(0, text);
    state_ = State::header;
    return true;
}

bool MultipartParser::passHeader() {
    const auto end = pending_.find("\r\n\r\n");
    if (end > maximumHeader) { // or not there
        if (pending_.size() > maximumHeader)
            state_ = State::failed;
        return false;
    }
    std::string disposition;
    Part part;
    std::string_view lines = std::string_view(pending_).substr(0, end);
    while (!lines.empty()) {
        const auto line = lines.substr(0, lines.find("\r\n"));
        lines.remove_prefix(std::min(lines.size(), line.size() + 2));
        const auto colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        const std::string name = lowerAscii(trimmed(line.substr(0, colon)));
        if (name == "content-disposition")
            disposition = trimmed(line.substr(colon + 1));
        else if (name == "content-type")
            part.type = trimmed(line.substr(colon + 1));
    }
    const bool isWanted = !hasPart_ && parameter(disposition, "name") == wanted_;
    // The last line break belongs to the delimiter if the part is empty.
    pending_.erase(0, end + 2);
    headerEnd_ = 2;
    if (!isWanted) {
        state_ = State::skipped;
        return true;
    }
    part.filename = filenameOf(disposition);
    hasPart_ = true;
    state_ = State::taken;
    handlers_.onPart(part);
    return true;
}

bool MultipartParser::give(std::string_view bytes) {
    if (handlers_.onBytes(bytes))
        return true;
    state_ = State::failed;
    return false;
}

std::string safeFilename(std::string_view name) {
    if (const auto slash = name.find_last_of("/\\"); slash != std::string_view::npos)
        name.remove_prefix(slash + 1);
    // Not UTF-8: what JSON would make of it.
    const std::string text = dumpJson(std::string(name));
    std::string clean = parseJson(text).value_or("").get<std::string>();
    std::erase_if(clean, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; });
    clean = trimmed(clean);
    while (clean.starts_with("."))
        clean.erase(0, 1);
    const auto dot = clean.rfind('.');
    std::string extension = dot == std::string::npos || clean.size() - dot > 16 ? std::string() : clean.substr(dot);
    std::string stem = clean.substr(0, clean.size() - extension.size());
    std::size_t points = 0;
    for (std::size_t i = 0; i < stem.size(); ++i) {
        if ((static_cast<unsigned char>(stem[i]) & 0xC0U) != 0x80U && points++ == longestName) {
            stem.resize(i);
            break;
        }
    }
    clean = stem + extension;
    return clean.empty() ? "file" : clean;
}

}
