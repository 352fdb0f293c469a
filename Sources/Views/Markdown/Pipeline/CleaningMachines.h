#pragma once

#include "Cleaners.h"
#include "Pattern.h"
#include "Stage.h"

#include <QSet>

namespace Korvi::Markdown {

// The sources of a text's citations, which come and, when the text's end changes, go in the order of the text.
class CitationList {
public:
    qsizetype size() const { return qsizetype(matches.size()); }
    void append(int index, const QString& url);
    void truncate(qsizetype size);
    std::vector<CitationSource> sorted() const;  // by index, one for each URL
    quint64 revision() const { return changes; } // another one after each change of the sources

private:
    struct Match {
        int index;
        bool isFirst; // of its URL
        QString url;
    };
    std::vector<Match> matches;
    QSet<QString> urls;
    quint64 changes = 0;
    std::array<std::vector<CitationSource>, 100> byIndex;
};

// Copies the input but for the matches of a pattern.
class MatchRemover {
public:
    explicit MatchRemover(const Pattern& pattern)
        : matcher(pattern) {}
    void wentBack() {}
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output) {
        return read(input, from, to, output, [](const PatternMatcher::Found&) {});
    }

protected:
    // `onFound` may append to the output in a match's place.
    template <class OnFound>
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output, OnFound onFound) {
        Written written{output.size(), from};
        qsizetype copied = from;
        matcher.read(input, from, to, [&](const PatternMatcher::Found& found) {
            written.since = std::min(written.since, found.from);
            if (found.from < copied) {
                output.truncate(found.from + shift);
                written.kept = std::min(written.kept, output.size());
            } else {
                output.append(input.sliced(copied, found.from - copied));
            }
            onFound(found);
            copied = found.to;
            shift = output.size() - found.to;
        });
        output.append(input.sliced(copied, to - copied));
        return written;
    }

private:
    PatternMatcher matcher;
    qsizetype shift = 0; // of the output against the input since the last match
};

class VideoTagReplacer : public MatchRemover {
public:
    VideoTagReplacer();
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output);
};

class CitationRemover : public MatchRemover {
public:
    explicit CitationRemover(CitationList& collected);
    void wentBack() { list->truncate(count); }
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output);

private:
    CitationList* list;
    qsizetype count = 0;
};

class FileLinkRemover : public MatchRemover {
public:
    FileLinkRemover();
};

// No carriage returns in front of a new line. Those at the end wait for what follows them.
class ReturnDropper {
public:
    void wentBack() {}
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output);

private:
    qsizetype waiting = 0; // how many
};

// At most two new lines in a row.
class GapCloser {
public:
    void wentBack() {}
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output);

private:
    int newLines = 0; // the output ends with, up to 2
};

// No white space at the ends: what comes at the end waits for something that follows it.
class Trimmer {
public:
    void wentBack() {}
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output);

private:
    bool begun = false;
    qsizetype waiting = 0; // where the white space begins that is not written yet
};

// Drops the lines that only say that something is being made.
class StatusDropper {
public:
    void wentBack() {}
    Written read(QStringView input, qsizetype from, qsizetype to, QString& output);

private:
    enum class Line { undecided, ordinary };
    void readLine(QStringView input, qsizetype from, qsizetype to, QString& output, Written& written);
    void showLine(QStringView text, QString& output);

    Line line = Line::undecided; // an ordinary line cannot become a status any more
    bool shown = false;          // the open line stands in the output
    bool anyBefore = false;      // a line before it does
    qsizetype lineFrom = 0;      // in the input
    qsizetype outputFrom = 0;    // the output's length without the open line
};

}
