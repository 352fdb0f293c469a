#include "SupportedFileTypes.h"

#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>

#include <algorithm>
#include <array>

namespace Korvi::SupportedFileTypes {

using namespace Qt::Literals;

namespace {

struct Set {
    FileTypeCategory category;
    QStringView extensions; // each between two blanks
};

// The first set that holds the extension decides.
constexpr std::array sets{
    Set{FileTypeCategory::image, u" png jpg jpeg gif webp heic heif bmp tiff svg "},
    Set{FileTypeCategory::video, u" mp4 mpeg mpg mov avi flv webm wmv 3gp "},
    Set{FileTypeCategory::audio, u" wav mp3 aiff aac ogg flac "},
    Set{FileTypeCategory::document, u" doc docx xls xlsx ppt pptx odt ods odp rtf pdf epub mobi fb2 nfo cfg latex "},
    Set{FileTypeCategory::code,
        u" c cpp cxx cc cs java py rb js ts php swift go rs kt scala lua pl sh bat ps1 h hpp m asm s r dart groovy hs "
        u"lhs "
        u"erl ex exs lisp lsp scm clj cljs ml mli vbs vb f for f90 pas p dpr dpk sql jsx tsx hx "},
    Set{FileTypeCategory::code, // configuration
        u" json xml yml yaml html htm xhtml css scss sass less md tex rst txt csv log ini config toml conf properties "
        u"make "
        u"mk cmake gradle lock gitignore dockerignore dockerfile htaccess env tf rq ttl rdf owl n3 "},
};

struct MimeRule {
    QLatin1String part;
    bool isPrefix;
    FileTypeCategory category;
};

constexpr std::array mimeRules{
    MimeRule{"image/"_L1, true, FileTypeCategory::image},
    MimeRule{"video/"_L1, true, FileTypeCategory::video},
    MimeRule{"audio/"_L1, true, FileTypeCategory::audio},
    MimeRule{"text/"_L1, true, FileTypeCategory::code},
    MimeRule{"pdf"_L1, false, FileTypeCategory::document},
    MimeRule{"document"_L1, false, FileTypeCategory::document},
    MimeRule{"spreadsheet"_L1, false, FileTypeCategory::document},
};

struct TypeRow {
    QLatin1String extension;
    QLatin1String type;
};

// For what the platform does not know.
constexpr std::array typeRows{
    TypeRow{"jpg"_L1, "image/jpeg"_L1},
    TypeRow{"jpeg"_L1, "image/jpeg"_L1},
    TypeRow{"png"_L1, "image/png"_L1},
    TypeRow{"gif"_L1, "image/gif"_L1},
    TypeRow{"webp"_L1, "image/webp"_L1},
    TypeRow{"heic"_L1, "image/heic"_L1},
    TypeRow{"heif"_L1, "image/heif"_L1},
    TypeRow{"bmp"_L1, "image/bmp"_L1},
    TypeRow{"tiff"_L1, "image/tiff"_L1},
    TypeRow{"svg"_L1, "image/svg+xml"_L1},
    TypeRow{"pdf"_L1, "application/pdf"_L1},
    TypeRow{"txt"_L1, "text/plain"_L1},
    TypeRow{"md"_L1, "text/plain"_L1},
    TypeRow{"json"_L1, "application/json"_L1},
    TypeRow{"swift"_L1, "text/plain"_L1},
    TypeRow{"ts"_L1, "text/plain"_L1},
    TypeRow{"js"_L1, "text/plain"_L1},
    TypeRow{"html"_L1, "text/plain"_L1},
    TypeRow{"css"_L1, "text/plain"_L1},
};

constexpr auto anyType = "application/octet-stream"_L1;

std::optional<FileTypeCategory> categoryOf(const QString& extension) {
    if (extension.isEmpty() || extension.contains(u' '))
        return std::nullopt;
    const QString wanted = u' ' + extension.toLower() + u' ';
    const auto* set =
        std::find_if(sets.begin(), sets.end(), [&](const Set& each) { return each.extensions.contains(wanted); });
    return set == sets.end() ? std::nullopt : std::optional(set->category);
}

bool isMedia(FileTypeCategory category) {
    return category == FileTypeCategory::video || category == FileTypeCategory::audio;
}

}

bool isExtensionSupported(const QString& extension, bool includeMedia) {
    const auto category = categoryOf(extension);
    return category && (includeMedia || !isMedia(*category));
}

FileTypeCategory getCategory(const QString& filename, const std::optional<QString>& mimeType) {
    if (const auto category = categoryOf(QFileInfo(filename).suffix()))
        return *category;
    if (!mimeType)
        return FileTypeCategory::unsupported;
    const auto* rule = std::find_if(mimeRules.begin(), mimeRules.end(), [&](const MimeRule& each) {
        return each.isPrefix ? mimeType->startsWith(each.part) : mimeType->contains(each.part);
    });
    return rule == mimeRules.end() ? FileTypeCategory::unsupported : rule->category;
}

FileValidationResult validateFile(
    const QString& filename, qint64 fileSize, const std::optional<QString>& mimeType, bool isAIPlusMode) {
    const FileTypeCategory category = getCategory(filename, mimeType);
    if (category == FileTypeCategory::unsupported)
        return {FileValidationResult::UnsupportedFormat{QFileInfo(filename).suffix().toLower()}};
    if (isMedia(category) && !isAIPlusMode)
        return {FileValidationResult::MediaRequiresAIPlus{}};
    const qint64 maxSize = isMedia(category) ? maxMediaSize : maxFileSize;
    if (fileSize > maxSize)
        return {FileValidationResult::FileTooLarge{.maxSize = maxSize, .actualSize = fileSize}};
    return {FileValidationResult::Valid{category}};
}

QString preferredMIMEType(const QString& extension) {
    const QString lower = extension.toLower();
    if (!lower.isEmpty()) {
        const QMimeType known = QMimeDatabase().mimeTypeForFile(u"x."_s + lower, QMimeDatabase::MatchExtension);
        if (known.isValid() && !known.isDefault())
            return known.name();
    }
    const auto* row =
        std::find_if(typeRows.begin(), typeRows.end(), [&](const TypeRow& each) { return each.extension == lower; });
    return row == typeRows.end() ? QString(anyType) : QString(row->type);
}

QStringList nameFilters(bool includeMedia) {
    struct Kind {
        FileTypeCategory category;
        QStringView title;
    };
    constexpr std::array kinds{
        Kind{FileTypeCategory::image, u"Изображения"},
        Kind{FileTypeCategory::document, u"Документы"},
        Kind{FileTypeCategory::code, u"Тексты и код"},
        Kind{FileTypeCategory::video, u"Видео"},
        Kind{FileTypeCategory::audio, u"Аудио"},
    };
    QStringList filters;
    QStringList all;
    for (const Kind& kind : kinds) {
        if (isMedia(kind.category) && !includeMedia)
            continue;
        QStringList patterns;
        for (const Set& set : sets) {
            if (set.category != kind.category)
                continue;
            for (const QString& extension : set.extensions.toString().split(u' ', Qt::SkipEmptyParts))
                patterns.append(u"*."_s + extension);
        }
        all += patterns;
        filters.append(u"%1 (%2)"_s.arg(kind.title, patterns.join(u' ')));
    }
    filters.prepend(u"Все поддерживаемые (%1)"_s.arg(all.join(u' ')));
    filters.append(u"Все файлы (*)"_s);
    return filters;
}

QString byteCount(qint64 bytes) {
    struct Unit {
        qint64 size;
        QStringView name;
        int decimals;
    };
    constexpr std::array units{
        Unit{1'000'000'000, u"ГБ", 2},
        Unit{1'000'000, u"МБ", 1},
        Unit{1'000, u"КБ", 0},
    };
    const QLocale russian(QLocale::Russian);
    for (const Unit& unit : units) {
        if (bytes < unit.size)
            continue;
        QString number =
            russian.toString(static_cast<double>(bytes) / static_cast<double>(unit.size), 'f', unit.decimals);
        while (unit.decimals > 0 && number.endsWith(u'0'))
            number.chop(1);
        if (number.endsWith(russian.decimalPoint()))
            number.chop(1);
        return number + u' ' + unit.name.toString();
    }
    return QString::number(bytes) + u" байт"_s;
}

}
