#include "Cleaners.h"

namespace Korvi::Markdown {

QString stripEmojis(const QString& text) {
    return text;
}
QString cleanVideoTags(const QString& text) {
    return text;
}
Cleaned cleanCitations(const QString& text) {
    return {text, {}};
}
QString cleanFileDownloadLinks(const QString& text) {
    return text;
}
QString cleanGenerationStatus(const QString& text) {
    return text;
}
Cleaned clean(const QString& text) {
    return {text, {}};
}

}
