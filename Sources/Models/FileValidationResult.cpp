#include "FileValidationResult.h"

#include "Match.h"
#include "SupportedFileTypes.h"

namespace Korvi {

using namespace Qt::Literals;

QString FileValidationResult::errorMessage() const {
    return match(
        value, [](const Valid&) { return QString(); },
        [](const UnsupportedFormat& error) {
            return (error.extension.isEmpty() ? u"Файл без расширения"_s : error.extension) + u" не поддерживается"_s;
        },
        [](const FileTooLarge& error) {
            return u"Файл слишком большой. Максимум: "_s + SupportedFileTypes::byteCount(error.maxSize);
        },
        [](const MediaRequiresAIPlus&) { return u"Видео и аудио доступны только в режиме AI+"_s; });
}

}
