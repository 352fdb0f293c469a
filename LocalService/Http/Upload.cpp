#include "Http/Upload.h"

#include "Core/Limits.h"

namespace korvi::service {

namespace {

constexpr std::size_t sniffedBytes = 16;

}

Response tooLarge(bool isMedia) {
    return failure(413,
        isMedia ? "Файл слишком большой. Видео и аудио: не больше 20 МБ." : "Файл слишком большой. Максимум: 10 МБ.");
}

Upload::Upload(FileStore& files, std::string userId, const std::string& boundary)
    : files_(files)
    , userId_(std::move(userId))
    , draft_(files.begin())
    , parser_(boundary, "file",
          {[this](const MultipartParser::Part& part) {
               name_ = safeFilename(part.filename);
               type_ = fileTypeOf(name_, part.type);
           },
              [this](std::string_view bytes) { return takeContent(bytes); }}) {}

bool Upload::takeContent(std::string_view bytes) {
    if (beginning_.size() < sniffedBytes)
        beginning_ += bytes.substr(0, sniffedBytes - beginning_.size());
    const bool isMedia = type_.kind == FileKind::media || beginsLikeMedia(beginning_);
    if (draft_->size() + bytes.size() > (isMedia ? limits::mediaUpload : limits::upload)) {
        refusal_ = tooLarge(isMedia);
        return false;
    }
    try {
        draft_->write(bytes);
    } catch (const FileError& error) {
        refusal_ = failure(507, error.what());
        return false;
    }
    return true;
}

std::optional<Response> Upload::take(std::string_view bytes) {
    if (parser_.feed(bytes))
        return std::nullopt;
    return refusal_ ? refusal_ : failure(400, "Тело запроса не разобрано: это не multipart/form-data.");
}

Response Upload::finish() {
    if (!parser_.isComplete())
        return failure(400, "Файл пришёл не полностью. Отправьте его ещё раз.");
    if (!parser_.hasPart())
        return failure(400, "В запросе нет файла: нужна часть с именем «file».");
    try {
        const FileRow row = files_.keep(*draft_, userId_, name_, type_.mime);
        return {200, {{"url", files_.publicAddress(row)}}, {}};
    } catch (const FileError& error) {
        return failure(507, error.what());
    }
}

}
