#include "FileNames.h"

#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <array>

namespace Korvi {

using namespace Qt::Literals;

namespace {

constexpr qsizetype longestName = 200; // bytes; file systems allow 255, and a number or a prefix may be added

// In lower case.
constexpr QStringView starters[] = {u"appimage", u"apk", u"bat", u"bin", u"cmd", u"com", u"deb", u"desktop", u"elf",
    u"exe", u"flatpakref", u"jar", u"jnlp", u"js", u"lnk", u"msi", u"out", u"php", u"pl", u"ps1", u"py", u"pyw", u"rb",
    u"rpm", u"run", u"scr", u"sh", u"so", u"vbs", u"wsf"};

struct KindRow {
    QStringView extension;
    QStringView kind;
};

constexpr std::array kinds{
    KindRow{u"txt", u"Текст"},
    KindRow{u"md", u"Markdown"},
    KindRow{u"doc", u"Документ Word"},
    KindRow{u"docx", u"Документ Word"},
    KindRow{u"odt", u"Документ"},
    KindRow{u"rtf", u"Документ"},
    KindRow{u"xls", u"Таблица Excel"},
    KindRow{u"xlsx", u"Таблица Excel"},
    KindRow{u"ods", u"Таблица"},
    KindRow{u"csv", u"Таблица CSV"},
    KindRow{u"ppt", u"Презентация"},
    KindRow{u"pptx", u"Презентация"},
    KindRow{u"odp", u"Презентация"},
    KindRow{u"html", u"Веб-страница"},
    KindRow{u"htm", u"Веб-страница"},
    KindRow{u"zip", u"Архив ZIP"},
};

struct TypeRow {
    QStringView prefix;
    QStringView kind;
};

constexpr std::array types{
    TypeRow{u"application/pdf", u"PDF"},
    TypeRow{u"text/", u"Текст"},
    TypeRow{u"image/", u"Изображение"},
    TypeRow{u"video/", u"Видео"},
    TypeRow{u"audio/", u"Аудио"},
    TypeRow{u"application/zip", u"Архив ZIP"},
};

// Whole characters, as many as have room.
QString firstBytes(const QString& text, qsizetype count) {
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= count)
        return text;
    const auto isInside = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    while (count > 0 && isInside(bytes.at(count)))
        --count;
    bytes.truncate(count);
    return QString::fromUtf8(bytes);
}

QString extensionOf(const QString& name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    const QString extension = dot > 0 ? name.mid(dot + 1) : QString();
    return extension.size() <= 12 ? extension : QString();
}

}

QString safeFileName(const QString& name, const QString& fallback) {
    QString safe;
    for (const QChar character : name) {
        const QChar::Category category = character.category();
        // Marks of direction can make "exe.pdf" of "fdp.exe".
        if (category == QChar::Other_Control || category == QChar::Other_Format)
            continue;
        safe += character == u'/' || character == u'\\' || character == u':' ? u'_' : character;
    }
    safe = safe.simplified();
    const auto isEdge = [](QChar character) { return character == u'.' || character == u' '; };
    safe.truncate(std::find_if_not(safe.crbegin(), safe.crend(), isEdge).base() - safe.cbegin());
    safe.remove(0, std::find_if_not(safe.cbegin(), safe.cend(), isEdge) - safe.cbegin());
    const QString extension = extensionOf(safe);
    const QString end = extension.isEmpty() ? QString() : u'.' + extension;
    safe = firstBytes(safe.chopped(end.size()), longestName - end.toUtf8().size()) + end;
    return safe.isEmpty() ? fallback : safe;
}

QString freePath(const QString& folder, const QString& name) {
    QString path = folder + u'/' + name;
    const QString extension = extensionOf(name);
    const QString base = extension.isEmpty() ? name : name.chopped(extension.size() + 1);
    for (int number = 2; QFileInfo::exists(path); ++number) {
        path = u"%1/%2 (%3)"_s.arg(folder, base, QString::number(number)); // at once: a name may hold "%1"
        if (!extension.isEmpty())
            path += u'.' + extension;
    }
    return path;
}

bool mayStartSomething(const QString& name) {
    return std::ranges::find(starters, QStringView(extensionOf(name).toLower())) != std::end(starters);
}

QString fileKind(const QString& name, const QString& mimetype) {
    const QString extension = extensionOf(name).toLower();
    const auto* row = std::ranges::find(kinds, QStringView(extension), &KindRow::extension);
    if (row != kinds.end())
        return row->kind.toString();
    if (!extension.isEmpty())
        return extension.toUpper();
    const auto* type =
        std::ranges::find_if(types, [&](const TypeRow& candidate) { return mimetype.startsWith(candidate.prefix); });
    return type != types.end() ? type->kind.toString() : u"Файл"_s;
}

}
