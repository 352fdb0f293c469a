#include "Providers/ModelMessages.h"

#include "Core/Json.h"
#include "Core/Text.h"
#include "Tools/TextFile.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace korvi::service {

using nlohmann::json;

namespace {

/// Older turns beyond this are left out: no model reads more, and a request has to stay sendable.
constexpr std::size_t historyBytes = std::size_t{512} * 1024;
constexpr std::size_t picturesInAll = std::size_t{16} << 20U;
constexpr std::size_t textOfOne = std::size_t{64} * 1024;
constexpr std::size_t textInAll = std::size_t{256} * 1024;
constexpr int mostPdfs = 8;

std::string toBase64(std::string_view bytes) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        unsigned group = 0;
        for (std::size_t j = 0; j < 3; ++j)
            group = (group << 8U) | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        for (std::size_t j = 0; j < 4; ++j)
            text += j <= count ? alphabet[(group >> (18 - 6 * j)) & 63U] : '=';
    }
    return text;
}

/// Whole characters of at most `limit` bytes, whatever the bytes are.
std::string readable(std::string text, std::size_t limit) {
    const bool isCut = text.size() > limit;
    if (isCut) {
        text.resize(limit);
        while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0U) == 0x80U)
            text.pop_back();
        if (!text.empty() && static_cast<unsigned char>(text.back()) >= 0xC0U)
            text.pop_back();
    }
    std::erase(text, '\0');
    std::string clean = parseJson(dumpJson(text)).value_or("").get<std::string>();
    return isCut ? clean + "\n[...]" : clean;
}

std::string nameOf(const json& part) {
    return stringAt(part, "filename").value_or("без имени");
}

/// What an answer's picture is in its text, for a model that could not see it anyway.
std::string withoutPictures(std::string text) {
    constexpr std::string_view mark = "![image](korvi-file:";
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos;) {
        const auto end = text.find(')', at);
        text.replace(at, end == std::string::npos ? end : end + 1 - at, "[Показана картинка]");
    }
    return text;
}

/// A finished search in an earlier answer: its results, briefly.
std::string searchText(const json& block) {
    std::string text = "[Поиск в сети: " + stringAt(block, "query").value_or("источники") + "]\n";
    const json results = block.value("results", json::array());
    for (std::size_t i = 0; i < results.size() && i < 5; ++i)
        text +=
            "- " + stringAt(results[i], "title").value_or("") + " " + stringAt(results[i], "url").value_or("") + "\n";
    return text;
}

std::optional<json> messageFrom(const ProviderTurn& turn, const Attachments& attachments) {
    std::string text;
    json images = json::array();
    const auto attachment = [&](const std::string& address) {
        const auto found = attachments.find(address);
        return found == attachments.end() ? nullptr : &found->second;
    };
    for (const json& part : turn.content) {
        const std::string type = stringAt(part, "type").value_or("");
        if (type == "text") {
            text += turn.role == "assistant" ? withoutPictures(stringAt(part, "text").value_or(""))
                                             : stringAt(part, "text").value_or("");
        } else if (type == "file_url") {
            const auto* file = attachment(stringAt(part, "fileUrl").value_or(""));
            const bool isRead = file && !file->text.empty();
            text += (turn.role == "assistant" ? "[Передан файл: " : "[Приложен файл: ") + nameOf(part) + "]\n";
            if (isRead)
                text += file->text + "\n[Конец файла]\n";
        } else if (type == "image_url") {
            const std::string url = stringAt(part, "imageUrl").value_or("");
            const auto* file = attachment(url);
            if (file && !file->dataUrl.empty())
                images.push_back({{"type", "image_url"}, {"image_url", {{"url", file->dataUrl}}}});
            else if (file && !file->text.empty())
                text += "[Приложена картинка]\n" + file->text + "\n[Конец файла]\n";
            else if (url.starts_with("http") || url.starts_with("data:"))
                images.push_back({{"type", "image_url"}, {"image_url", {{"url", url}}}});
            else
                text += "[Приложена картинка]\n";
        } else if (type == "artifact") {
            text += "\n[Показан документ: id " + stringAt(part, "id").value_or("") + ", " +
                stringAt(part, "kind").value_or("") + ", «" + stringAt(part, "title").value_or("") + "»]\n" +
                stringAt(part, "text").value_or("") + "\n[Конец документа]\n";
        } else if (type == "search" && !part.value("results", json::array()).empty()) {
            text += searchText(part);
        }
    }
    if (images.empty())
        return text.empty() ? std::nullopt : std::optional(json{{"role", turn.role}, {"content", text}});
    if (!text.empty())
        images.push_back({{"type", "text"}, {"text", text}});
    return json{{"role", turn.role}, {"content", images}};
}

/// Without pictures, which have a limit of their own.
std::size_t textSize(const json& message) {
    const json& content = message["content"];
    if (content.is_string())
        return content.get_ref<const std::string&>().size();
    std::size_t size = 0;
    for (const json& part : content)
        size += stringAt(part, "text").value_or("").size();
    return size;
}

}

AttachmentReader::AttachmentReader(asio::io_context& io, FileStore& files, PdfText& pdfText,
    const std::vector<ProviderTurn>& history, std::function<void(Attachments)> onEnd)
    : files_(files)
    , pdfText_(pdfText)
    , onEnd_(std::move(onEnd)) {
    // Taken from the back: the newest first.
    for (const ProviderTurn& turn : history)
        for (const json& part : turn.content)
            if (turn.role == "user")
                for (const char* key : {"imageUrl", "fileUrl"})
                    if (auto address = stringAt(part, key); address && address->starts_with("korvi-file:"))
                        waiting_.push_back(std::move(*address));
    asio::post(io, [this, wanted = std::weak_ptr(alive_)] {
        if (!wanted.expired())
            next();
    });
}

void AttachmentReader::next() {
    while (!waiting_.empty()) {
        const std::string address = std::move(waiting_.back());
        waiting_.pop_back();
        if (read_.contains(address))
            continue;
        read(address);
        if (reading_)
            return;
    }
    const auto tell = std::move(onEnd_);
    tell(std::move(read_));
}

void AttachmentReader::read(const std::string& address) {
    const auto file = files_.fileAt(address);
    if (!file)
        return;
    const FileType type = fileTypeOf(file->name, file->type);
    if (type.kind == FileKind::image) {
        if (pictureBytes_ + file->size > picturesInAll)
            return;
        const std::string bytes = files_.read(*file, static_cast<std::size_t>(file->size));
        // By what it is: models know these four.
        const std::string picture = pictureType(bytes);
        if (picture.empty())
            return;
        pictureBytes_ += bytes.size();
        read_[address].dataUrl = "data:" + picture + ";base64," + toBase64(bytes);
    } else if (type.kind == FileKind::text) {
        // Twice: two bytes of another encoding may be one of ours.
        keepText(address, textOfFile(files_.read(*file, 2 * (textOfOne + 1))));
    } else if (type.mime == "application/pdf" && pdfText_.isAvailable() && textBytes_ < textInAll &&
        pdfs_++ < mostPdfs) {
        reading_ = pdfText_.read(
            files_.pathOf(*file), textOfOne + 1, [this, address, wanted = std::weak_ptr(alive_)](std::string text) {
                if (wanted.expired())
                    return;
                reading_.reset();
                keepText(address, std::move(text));
                next();
            });
    }
}

void AttachmentReader::keepText(const std::string& address, std::string text) {
    const std::size_t room = textInAll - std::min(textInAll, textBytes_);
    text = trimmed(text).empty() ? std::string() : readable(std::move(text), std::min(textOfOne, room));
    textBytes_ += text.size();
    if (room > 0)
        read_[address].text = std::move(text);
}

json modelMessages(const std::vector<ProviderTurn>& history, const Attachments& attachments) {
    std::vector<json> newestFirst;
    std::size_t bytes = 0;
    for (auto turn = history.rbegin(); turn != history.rend(); ++turn) {
        auto message = messageFrom(*turn, attachments);
        if (!message)
            continue;
        bytes += textSize(*message);
        if (bytes > historyBytes && !newestFirst.empty())
            break;
        newestFirst.push_back(std::move(*message));
    }
    return json(std::vector<json>(newestFirst.rbegin(), newestFirst.rend()));
}

}
