#include "LineForms.h"

#include "Characters.h"

#include <algorithm>

namespace Korvi::Markdown {

namespace {

constexpr QStringView imageStart = u"![";
constexpr QStringView imageMiddle = u"](";

// Where each character of a text has its line's end.
class LineEnds {
public:
    explicit LineEnds(QStringView searched)
        : text(searched) {}

    // From places that only ever grow.
    qsizetype after(qsizetype from) {
        if (from > end || !begun) {
            begun = true;
            end = std::find_if(text.begin() + from, text.end(), [](QChar c) { return isLineTerminator(c.unicode()); }) -
                text.begin();
        }
        return end;
    }

private:
    QStringView text;
    qsizetype end = 0;
    bool begun = false;
};

}

std::optional<HeaderForm> headerForm(QStringView trimmed) {
    qsizetype level = 0;
    while (level < trimmed.size() && trimmed[level] == u'#')
        ++level;
    if (level < 1 || level > 6 || level == trimmed.size() || trimmed[level] != u' ')
        return {};
    const QStringView content = trimmedBlanks(trimmed.sliced(level));
    return content.isEmpty() ? std::nullopt : std::optional<HeaderForm>({int(level), content});
}

std::optional<QStringView> listItemForm(QStringView trimmed) {
    if (trimmed.size() < 2 || !QStringView(u"*-•").contains(trimmed[0]) || trimmed[1] != u' ')
        return {};
    const QStringView content = trimmedBlanks(trimmed.sliced(2));
    return content.isEmpty() ? std::nullopt : std::optional(content);
}

// ^(\d+)\.\s+(.+)$
std::optional<NumberedForm> numberedForm(QStringView trimmed) {
    qsizetype digits = 0;
    while (digits < trimmed.size() && trimmed[digits] >= u'0' && trimmed[digits] <= u'9')
        ++digits;
    if (digits == 0 || digits + 2 > trimmed.size() || trimmed[digits] != u'.' || !trimmed[digits + 1].isSpace())
        return {};
    const QStringView content = trimmed.sliced(digits + 1).trimmed();
    bool isNumber = false;
    const qint64 number = trimmed.first(digits).toLongLong(&isNumber);
    if (!isNumber || content.isEmpty() || LineEnds(content).after(0) < content.size())
        return {};
    return {{number, content}};
}

Block::Image ImageForm::toImage() const {
    return {url.toString(), alt.isEmpty() ? std::nullopt : std::optional(alt.toString())};
}

// ^\s*!\[(.*?)\]\((.*?)\)\s*$
std::optional<ImageForm> imageForm(QStringView trimmed) {
    const QStringView image = trimmed.trimmed();
    if (!image.startsWith(imageStart) || !image.endsWith(u')'))
        return {};
    const qsizetype middle = image.indexOf(imageMiddle, imageStart.size());
    if (middle < 0 || middle + imageMiddle.size() >= image.size() || LineEnds(image).after(0) < image.size())
        return {};
    const qsizetype url = middle + imageMiddle.size();
    return {{image.sliced(imageStart.size(), middle - imageStart.size()), image.sliced(url, image.size() - url - 1)}};
}

std::optional<BlockPlace::Kind> kindOfLine(QStringView trimmed) {
    using Kind = BlockPlace::Kind;
    if (imageForm(trimmed))
        return Kind::image;
    if (headerForm(trimmed))
        return Kind::header;
    if (listItemForm(trimmed))
        return Kind::listItem;
    if (numberedForm(trimmed))
        return Kind::numberedListItem;
    if (startsWithEmoji(trimmed))
        return Kind::emojiItem;
    return {};
}

void appendParagraph(const QString& content, std::vector<Block>& blocks) {
    if (content.isEmpty())
        return;
    if (const auto image = imageForm(content)) {
        blocks.push_back({image->toImage()});
        return;
    }
    const QStringView text = content;
    qsizetype written = 0;
    const auto addText = [&](qsizetype to) {
        const QStringView piece = text.sliced(written, to - written).trimmed();
        if (!piece.isEmpty())
            blocks.push_back({Block::Paragraph{piece.toString()}});
    };
    // !\[(.*?)\]\((.*?)\)
    NextFinder middles(text, imageMiddle);
    NextFinder closes(text, u')');
    LineEnds lines(text);
    for (qsizetype at = text.indexOf(imageStart); at >= 0; at = text.indexOf(imageStart, at)) {
        const qsizetype middle = middles.find(at + imageStart.size());
        if (middle < 0)
            break;
        const qsizetype close = closes.find(middle + imageMiddle.size());
        if (close < 0)
            break;
        const qsizetype lineEnd = lines.after(at);
        if (close > lineEnd) {
            at = lineEnd;
            continue;
        }
        addText(at);
        const qsizetype alt = at + imageStart.size();
        const qsizetype url = middle + imageMiddle.size();
        blocks.push_back({ImageForm{text.sliced(alt, middle - alt), text.sliced(url, close - url)}.toImage()});
        at = written = close + 1;
    }
    addText(text.size());
}

}
