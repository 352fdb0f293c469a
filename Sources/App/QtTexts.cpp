#include "QtTexts.h"

#include <QLibraryInfo>

namespace Korvi {

using namespace Qt::Literals;

namespace {

// What the translation that comes with Qt leaves out.
struct Row {
    QLatin1StringView context;
    QLatin1StringView source;
    QStringView text;
};

constexpr Row rows[] = {
    {"FileDialog"_L1, "File name"_L1, u"Имя файла"},
    {"FileDialog"_L1, "Filter"_L1, u"Тип файлов"},
};

}

QtTexts::QtTexts(QObject* parent)
    : QTranslator(parent) {
    // Not everywhere installed: then only the table is there.
    (void)load(u"qtbase_ru"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}

QString QtTexts::translate(const char* context, const char* source, const char* disambiguation, int n) const {
    for (const Row& row : rows) {
        if (row.context == QLatin1StringView(context) && row.source == QLatin1StringView(source))
            return row.text.toString();
    }
    return QTranslator::translate(context, source, disambiguation, n);
}

}
