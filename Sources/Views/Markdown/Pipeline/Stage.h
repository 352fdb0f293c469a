#pragma once

#include <QString>

#include <algorithm>
#include <vector>

namespace Korvi::Markdown {

// What one reading did to a machine's output.
struct Written {
    qsizetype kept;  // the output's units that are as they were
    qsizetype since; // the input's place from which on bookmarks do not hold any more
};

// One step of cleaning a text that grows, and whose end may still change. A Machine reads the input once and writes the
// output; it may take back what it has written. Its state is a small value: copies of it, taken every so often, are
// bookmarks to which the stage goes back when the input's end changes.
template <class Machine>
class Stage {
public:
    explicit Stage(Machine start)
        : machine(start)
        , bookmarks{{0, 0, start}} {}

    const QString& output() const { return written; }

    // `input` is as at the last call in its first `kept` units. Returns the same of the output.
    qsizetype update(QStringView input, qsizetype kept) {
        QString before;
        qsizetype lowest = written.size();
        const bool goesBack = kept < consumed;
        if (goesBack) {
            dropBookmarks(kept);
            lowest = bookmarks.back().produced;
            before = written.sliced(lowest);
            written.truncate(lowest);
            consumed = bookmarks.back().consumed;
            machine = bookmarks.back().machine;
            machine.wentBack();
        }
        const qsizetype again = lowest;
        while (consumed < input.size()) {
            const qsizetype upTo =
                std::min(input.size(), std::max(consumed + 1, bookmarks.back().consumed + bookmarkDistance));
            const Written step = machine.read(input, consumed, upTo, written);
            lowest = std::min(lowest, step.kept);
            dropBookmarks(step.since);
            consumed = upTo;
            if (consumed - bookmarks.back().consumed >= bookmarkDistance)
                bookmarks.push_back({consumed, written.size(), machine});
        }
        // What was read again mostly became the same again.
        if (goesBack && lowest == again) {
            const qsizetype same = std::min(before.size(), written.size() - again);
            lowest += std::mismatch(before.cbegin(), before.cbegin() + same, written.cbegin() + again).first -
                before.cbegin();
        }
        return lowest;
    }

private:
    static constexpr qsizetype bookmarkDistance = 1024;
    struct Bookmark {
        qsizetype consumed;
        qsizetype produced;
        Machine machine;
    };

    void dropBookmarks(qsizetype behind) {
        while (bookmarks.back().consumed > behind)
            bookmarks.pop_back();
    }

    Machine machine;
    QString written;
    qsizetype consumed = 0;
    std::vector<Bookmark> bookmarks; // the first one, of the beginning, stays
};

}
