#include "CleaningMachines.h"

#include "Characters.h"

namespace Korvi::Markdown {

using namespace Qt::Literals;

namespace {

using Set = Pattern::Set;

// <video[^>]*>.*?<source\s+src="([^"]+)"[^>]*/?>.*?</video>
const Pattern& videoTagPattern() {
    static const Pattern pattern = Pattern(u"<")
                                       .text(u"<video")
                                       .any(Set::notCharacter, u'>')
                                       .text(u">")
                                       .any(Set::inLine, 0, Pattern::Loop::lazy)
                                       .text(u"<source")
                                       .some(Set::space)
                                       .text(u"src=\"")
                                       .place(0)
                                       .some(Set::notCharacter, u'"')
                                       .place(1)
                                       .text(u"\"")
                                       .any(Set::notCharacter, u'>')
                                       .text(u">")
                                       .any(Set::inLine, 0, Pattern::Loop::lazy)
                                       .text(u"</video>")
                                       .end();
    return pattern;
}

// \[?\[(\d{1,2})\]\]?\((https?://[^)]+)\)
const Pattern& citationPattern() {
    static const Pattern pattern = Pattern(u"[")
                                       .maybe(Set::character, u'[')
                                       .text(u"[")
                                       .place(0)
                                       .one(Set::digit)
                                       .maybe(Set::digit)
                                       .place(1)
                                       .text(u"]")
                                       .maybe(Set::character, u']')
                                       .text(u"(")
                                       .place(2)
                                       .text(u"http")
                                       .maybe(Set::character, u's')
                                       .text(u"://")
                                       .some(Set::notCharacter, u')')
                                       .place(3)
                                       .text(u")")
                                       .end();
    return pattern;
}

// (?:Файл готов к скачиванию:?\s*\n?)?\[([^\]]+)\]\((https?://[^\)]*korvihub[^\)]*)\)
const Pattern& fileLinkPattern() {
    static const Pattern pattern =
        Pattern(u"[Ф")
            .maybe([](Pattern& lead) {
                lead.text(u"Файл готов к скачиванию").maybe(Set::character, u':').any(Set::space);
            })
            .text(u"[")
            .some(Set::notCharacter, u']')
            .text(u"](http")
            .maybe(Set::character, u's')
            .text(u"://")
            .any(Set::notCharacter, u')')
            .text(u"korvihub")
            .any(Set::notCharacter, u')')
            .text(u")")
            .end();
    return pattern;
}

constexpr QStringView statusMarkers[] = {u"Генерирую видео", u"Генерирую изображение", u"Generating video",
    u"Generating image", u"Создаю видео", u"Создаю изображение", u"⏳ Генерирую", u"⏳ Создаю"};

bool isStatus(QStringView trimmedLine) {
    return trimmedLine.endsWith("..."_L1) &&
        std::any_of(std::begin(statusMarkers), std::end(statusMarkers),
            [&](QStringView marker) { return trimmedLine.startsWith(marker); });
}

bool canBecomeStatus(QStringView trimmedLine) {
    return std::any_of(std::begin(statusMarkers), std::end(statusMarkers),
        [&](QStringView marker) { return trimmedLine.startsWith(marker) || marker.startsWith(trimmedLine); });
}

}

void CitationList::append(int index, const QString& url) {
    const bool isFirst = !urls.contains(url);
    matches.push_back({index, isFirst, url});
    if (!isFirst)
        return;
    urls.insert(url);
    ++changes;
    byIndex[std::size_t(index)].push_back({.index = index, .url = url, .domain = domainOf(url)});
}

void CitationList::truncate(qsizetype size) {
    while (qsizetype(matches.size()) > size) {
        const Match& last = matches.back();
        if (last.isFirst) {
            urls.remove(last.url);
            ++changes;
            byIndex[std::size_t(last.index)].pop_back();
        }
        matches.pop_back();
    }
}

std::vector<CitationSource> CitationList::sorted() const {
    std::vector<CitationSource> all;
    for (const auto& sources : byIndex)
        all.insert(all.end(), sources.begin(), sources.end());
    return all;
}

VideoTagReplacer::VideoTagReplacer()
    : MatchRemover(videoTagPattern()) {}

Written VideoTagReplacer::read(QStringView input, qsizetype from, qsizetype to, QString& output) {
    return MatchRemover::read(input, from, to, output, [&](const PatternMatcher::Found& found) {
        const QStringView url = input.sliced(found.places[0], found.places[1] - found.places[0]);
        output.append(u"\n\n[Видео]("_s).append(url).append(u")\n\n"_s);
    });
}

CitationRemover::CitationRemover(CitationList& collected)
    : MatchRemover(citationPattern())
    , list(&collected) {}

Written CitationRemover::read(QStringView input, qsizetype from, qsizetype to, QString& output) {
    return MatchRemover::read(input, from, to, output, [&](const PatternMatcher::Found& found) {
        list->append(input.sliced(found.places[0], found.places[1] - found.places[0]).toInt(),
            input.sliced(found.places[2], found.places[3] - found.places[2]).toString());
        ++count;
    });
}

FileLinkRemover::FileLinkRemover()
    : MatchRemover(fileLinkPattern()) {}

Written ReturnDropper::read(QStringView input, qsizetype from, qsizetype to, QString& output) {
    const Written written{output.size(), from};
    while (from < to) {
        if (input[from] == u'\r') {
            ++waiting;
            ++from;
            continue;
        }
        if (input[from] != u'\n')
            output.resize(output.size() + waiting, u'\r');
        waiting = 0;
        const qsizetype next = input.first(to).indexOf(u'\r', from);
        const qsizetype end = next < 0 ? to : next;
        output.append(input.sliced(from, end - from));
        from = end;
    }
    return written;
}

Written GapCloser::read(QStringView input, qsizetype from, qsizetype to, QString& output) {
    const Written written{output.size(), from};
    qsizetype copied = from;
    for (qsizetype i = from; i < to; ++i) {
        if (input[i] != u'\n') {
            newLines = 0;
        } else if (newLines < 2) {
            ++newLines;
        } else {
            output.append(input.sliced(copied, i - copied));
            copied = i + 1;
        }
    }
    output.append(input.sliced(copied, to - copied));
    return written;
}

Written Trimmer::read(QStringView input, qsizetype from, qsizetype to, QString& output) {
    const Written written{output.size(), from};
    if (!begun) {
        while (from < to && input[from].isSpace())
            ++from;
        if (from == to)
            return written;
        begun = true;
        waiting = from;
    }
    qsizetype end = to;
    while (end > from && input[end - 1].isSpace())
        --end;
    if (end > from) {
        output.append(input.sliced(waiting, end - waiting));
        waiting = end;
    }
    return written;
}

void StatusDropper::showLine(QStringView text, QString& output) {
    if (anyBefore)
        output.append(u'\n');
    output.append(text);
    shown = true;
}

void StatusDropper::readLine(QStringView input, qsizetype from, qsizetype to, QString& output, Written& written) {
    if (line == Line::ordinary) {
        output.append(input.sliced(from, to - from));
        return;
    }
    const QStringView whole = input.sliced(lineFrom, to - lineFrom);
    const QStringView trimmed = trimmedBlanks(whole);
    if (isStatus(trimmed)) {
        written.kept = std::min(written.kept, outputFrom);
        // The bookmark at the line's beginning has its new line in the output.
        written.since = std::min(written.since, std::max<qsizetype>(lineFrom - 1, 0));
        output.truncate(outputFrom);
        shown = false;
    } else if (shown) {
        output.append(input.sliced(from, to - from));
    } else {
        showLine(whole, output);
    }
    if (!canBecomeStatus(trimmed))
        line = Line::ordinary;
}

Written StatusDropper::read(QStringView input, qsizetype from, qsizetype to, QString& output) {
    Written written{output.size(), from};
    while (from < to) {
        const qsizetype newLine = input.first(to).indexOf(u'\n', from);
        readLine(input, from, newLine < 0 ? to : newLine, output, written);
        if (newLine < 0)
            break;
        from = newLine + 1;
        anyBefore = anyBefore || shown;
        line = Line::undecided;
        lineFrom = from;
        outputFrom = output.size();
        showLine({}, output);
    }
    return written;
}

}
