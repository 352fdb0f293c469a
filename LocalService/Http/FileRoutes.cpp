// Files that users upload and answers make.
#include "Core/Limits.h"
#include "Core/Secrets.h"
#include "Core/Text.h"
#include "Http/Api.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace korvi::service {

using nlohmann::json;

namespace {

constexpr std::string_view uploadPath = "/storage/upload";
constexpr std::string_view filesPath = "/files/";

struct Slice {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

std::optional<std::uint64_t> numberFrom(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && error == std::errc() && end == text.data() + text.size() ? std::optional(value)
                                                                                     : std::nullopt;
}

/// The part of a file that a "Range" field asks for (RFC 9110, 14.1.2). Absent: it is not a single range of bytes, which
/// is as good as none. A size of 0: the file has no such part.
std::optional<Slice> sliceFrom(std::string_view range, std::uint64_t size) {
    constexpr std::string_view unit = "bytes=";
    if (!range.starts_with(unit) || range.find(',') != std::string_view::npos)
        return std::nullopt;
    range.remove_prefix(unit.size());
    const auto dash = range.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const auto first = numberFrom(trimmed(range.substr(0, dash)));
    const auto last = numberFrom(trimmed(range.substr(dash + 1)));
    const bool hasFirst = !trimmed(range.substr(0, dash)).empty();
    const bool hasLast = !trimmed(range.substr(dash + 1)).empty();
    if (hasFirst != first.has_value() || hasLast != last.has_value() || (!first && !last))
        return std::nullopt;
    if (!first) {
        const auto count = std::min(*last, size);
        return Slice{size - count, count};
    }
    if (last && *last < *first)
        return std::nullopt;
    if (*first >= size)
        return Slice{};
    return Slice{*first, std::min(last.value_or(size - 1), size - 1) - *first + 1};
}

bool names(std::string_view fields, const std::string& tag) {
    while (!fields.empty()) {
        std::string_view each = fields.substr(0, fields.find(','));
        fields.remove_prefix(std::min(fields.size(), each.size() + 1));
        const std::string text = trimmed(each);
        if (text == "*" || text == tag || text == "W/" + tag)
            return true;
    }
    return false;
}

}

bool Api::isUpload(const Request& request) const {
    return request.method == "POST" && request.path == std::string(basePath) + std::string(uploadPath);
}

std::variant<Response, std::unique_ptr<Upload>> Api::beginUpload(
    const Request& request, std::optional<std::uint64_t> length) {
    try {
        const auto session = signIn_.sessionOf(request.bearer);
        if (!session)
            return failure(401, "Сессия недействительна. Войдите снова.");
        const auto boundary = multipartBoundary(request.contentType);
        if (!boundary)
            return failure(400, "Тело запроса должно быть multipart/form-data с указанной границей.");
        if (length && *length > limits::mediaUpload + limits::uploadFrame)
            return tooLarge(true);
        return std::make_unique<Upload>(files_, session->userId, *boundary);
    } catch (const FileError& error) {
        return failure(507, error.what());
    } catch (const StoreError& error) {
        return failure(500, error.what());
    }
}

Response Api::finishUpload(Upload& upload) {
    try {
        return upload.finish();
    } catch (const StoreError& error) {
        return failure(500, error.what());
    }
}

Response Api::file(const Request& request) {
    if (request.method != "GET" && request.method != "HEAD") {
        auto refusal = failure(405, "Здесь допустимы только: GET, HEAD");
        refusal.headers.emplace_back("Allow", "GET, HEAD");
        return refusal;
    }
    const auto rest = std::string_view(request.path).substr(filesPath.size());
    const auto row = files_.find(std::string(rest.substr(0, rest.find('/'))));
    const auto opened = row ? files_.open(*row) : nullptr;
    if (!opened)
        return failure(404, "Такого файла нет: возможно, его чат был удалён.");

    const std::string tag = "\"" + sha256Hex(row->id).substr(0, 32) + "\"";
    Response response;
    const bool isShown =
        row->type.starts_with("image/") || row->type.starts_with("video/") || row->type.starts_with("audio/");
    response.headers = {{"ETag", tag}, {"Accept-Ranges", "bytes"},
        // Whoever has the address may keep the file: it never changes.
        {"Cache-Control", "private, max-age=31536000, immutable"},
        // A page or a picture with a script in it is nobody's program here.
        {"Content-Security-Policy", "sandbox; default-src 'none'; style-src 'unsafe-inline'; img-src data:"},
        {"Referrer-Policy", "no-referrer"}, {"Cross-Origin-Resource-Policy", "cross-origin"}};
    if (!isShown)
        response.headers.emplace_back(
            "Content-Disposition", "attachment; filename*=UTF-8''" + percentEncoded(row->name));
    if (!request.ifNoneMatch.empty() && names(request.ifNoneMatch, tag)) {
        response.status = 304;
        return response;
    }
    Slice slice{0, row->size};
    if (request.method == "GET" && !request.range.empty() && (request.ifRange.empty() || request.ifRange == tag)) {
        if (const auto asked = sliceFrom(request.range, row->size)) {
            if (asked->size == 0) {
                auto refusal = failure(416, "В файле нет такой части.");
                refusal.headers.emplace_back("Content-Range", "bytes */" + std::to_string(row->size));
                return refusal;
            }
            slice = *asked;
            response.status = 206;
            response.headers.emplace_back("Content-Range",
                "bytes " + std::to_string(slice.offset) + "-" + std::to_string(slice.offset + slice.size - 1) + "/" +
                    std::to_string(row->size));
        }
    }
    response.payload = std::make_shared<const Payload>(Payload{row->type, {}, opened, slice.offset, slice.size});
    return response;
}

bool Api::artifactPdf(const Request& request, const Respond& respond) {
    // /chats/ID/artifacts/ARTIFACT/VERSION/pdf
    std::string_view rest(request.path);
    const auto drop = [&rest](std::string_view prefix) {
        const bool fits = rest.starts_with(prefix);
        rest.remove_prefix(fits ? prefix.size() : 0);
        return fits;
    };
    if (!drop(basePath) || !drop("/chats/") || !rest.ends_with("/pdf"))
        return false;
    rest.remove_suffix(4);
    const auto chatEnd = rest.find("/artifacts/");
    const auto idEnd = rest.rfind('/');
    if (chatEnd == std::string_view::npos || idEnd <= chatEnd + 10)
        return false;
    const auto chatId = numberFrom(rest.substr(0, chatEnd));
    const auto version = numberFrom(rest.substr(idEnd + 1));
    const std::string id(rest.substr(chatEnd + 11, idEnd - chatEnd - 11));
    if (request.method != "GET")
        return false;
    try {
        const auto session = signIn_.sessionOf(request.bearer);
        if (!session) {
            respond(failure(401, "Сессия недействительна. Войдите снова."));
            return true;
        }
        const auto artifact = chatId && version && *chatId <= LLONG_MAX && *version <= INT_MAX
            ? chats_.artifact(session->userId, static_cast<long long>(*chatId), id, static_cast<int>(*version))
            : std::nullopt;
        if (!artifact)
            respond(failure(404, "Такого документа или такой его версии нет."));
        else if (lowerCase(artifact->kind) != "latex")
            respond(failure(400, "Служба делает PDF только из документов LaTeX."));
        else if (!typesetter_.isAvailable())
            respond(failure(501,
                "На компьютере службы нет LaTeX: установите, например, пакет texlive-latex-recommended. Текст "
                "документа можно скопировать."));
        else
            typesetArtifact(artifact->text, respond);
    } catch (const StoreError& error) {
        respond(failure(500, error.what()));
    }
    return true;
}

void Api::typesetArtifact(const std::string& text, const Respond& respond) {
    const unsigned number = ++lastRun_;
    runs_[number] = typesetter_.typeset(text, [this, number, respond](const Typeset& result) {
        if (!result.error.empty())
            respond(failure(424, result.error));
        else
            respond({200, {}, {}, std::make_shared<const Payload>(Payload{"application/pdf", result.pdf, {}, 0, 0})});
        runs_.erase(number);
    });
}

}
