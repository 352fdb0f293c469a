// The Markdown pipeline: whole texts (beside md4c, which parses another dialect into callbacks), growing ones in
// pieces of 16 characters (beside parsing the whole at each piece), and hostile ones of a length and of twice that.
#include "Segments.h"
#include "StreamingDocument.h"
#include "Texts.h"

#include <md4c.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

using namespace Korvi;
using namespace Korvi::Markdown;
using Clock = std::chrono::steady_clock;

namespace {

constexpr qsizetype pieceLength = 16;
constexpr double mostGrowth = 3; // of the time, for twice the text

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::size_t parseWhole(const QString& text) {
    return groupBlocksIntoSegments(clean(text).text).size();
}

std::size_t parseWithPeer(const QByteArray& text) {
    std::size_t blocks = 0;
    MD_PARSER parser{};
    parser.flags = MD_FLAG_TABLES | MD_FLAG_LATEXMATHSPANS;
    parser.enter_block = [](MD_BLOCKTYPE, void*, void* count) { return ++*static_cast<std::size_t*>(count), 0; };
    parser.leave_block = [](MD_BLOCKTYPE, void*, void*) { return 0; };
    parser.enter_span = [](MD_SPANTYPE, void*, void*) { return 0; };
    parser.leave_span = [](MD_SPANTYPE, void*, void*) { return 0; };
    parser.text = [](MD_TEXTTYPE, const MD_CHAR*, MD_SIZE, void*) { return 0; };
    md_parse(text.constData(), MD_SIZE(text.size()), &parser, &blocks);
    return blocks;
}

template <class Run>
double median(Run run) {
    std::vector<double> times;
    for (int i = 0; i < 7; ++i) {
        const auto start = Clock::now();
        if (run() == 0)
            std::abort();
        times.push_back(secondsSince(start));
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

struct Streamed {
    double total = 0; // seconds
    double p50 = 0;   // microseconds
    double p99 = 0;
    double worst = 0;
};

Streamed stream(const QString& text) {
    std::vector<double> times;
    StreamingDocument document;
    for (qsizetype at = 0; at < text.size(); at += pieceLength) {
        const auto start = Clock::now();
        document.append(QStringView(text).sliced(at, std::min(pieceLength, text.size() - at)));
        times.push_back(secondsSince(start));
    }
    Streamed streamed;
    for (const double time : times)
        streamed.total += time;
    std::sort(times.begin(), times.end());
    streamed.p50 = times[times.size() / 2] * 1e6;
    streamed.p99 = times[times.size() * 99 / 100] * 1e6;
    streamed.worst = times.back() * 1e6;
    return streamed;
}

// Every `step`th piece is parsed with all before it, and counts `step` times.
double reparse(const QString& text, qsizetype step) {
    double total = 0;
    for (qsizetype end = pieceLength; end <= text.size(); end += pieceLength * step) {
        const QString whole = text.first(end);
        const auto start = Clock::now();
        parseWhole(whole);
        total += secondsSince(start) * double(step);
    }
    return total;
}

}

int main() {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    QByteArray summary = "bench-markdown";
    const QString answer = mixedAnswer(1024 * 1024);
    const QByteArray utf8 = answer.toUtf8();
    const double megabytes = double(utf8.size()) / 1e6;
    const double ours = megabytes / median([&] { return parseWhole(answer); });
    const double peer = megabytes / median([&] { return parseWithPeer(utf8); });
    std::printf("whole text of %.1f MB: %.0f MB/s; md4c %.0f MB/s\n", megabytes, ours, peer);
    summary += " whole_mb_s=" + QByteArray::number(ours, 'f', 0) + " md4c_mb_s=" + QByteArray::number(peer, 'f', 0);

    std::printf(
        "\n%-12s %8s %8s %8s %10s %18s\n", "streamed", "p50, us", "p99, us", "worst", "total, ms", "parsed anew, ms");
    bool isMissed = false;
    for (const qsizetype kilobytes : {1, 64, 256, 1024}) {
        const QString text = mixedAnswer(kilobytes * 1024);
        const Streamed streamed = stream(text);
        // From 64 K on a sample of the pieces is enough.
        const double anew = reparse(text, kilobytes < 64 ? 1 : kilobytes);
        std::printf("%6lld K %11.1f %8.1f %8.0f %10.1f %18.0f\n", static_cast<long long>(kilobytes), streamed.p50,
            streamed.p99, streamed.worst, streamed.total * 1e3, anew * 1e3);
        summary += " stream_" + QByteArray::number(kilobytes) + "k_p99_us=" + QByteArray::number(streamed.p99, 'f', 1);
        isMissed = isMissed || streamed.p99 > 4000;
    }

    constexpr qsizetype length = 512 * 1024;
    constexpr qsizetype streamedLength = 32 * 1024;
    std::printf("\n%-22s %12s %8s %14s %8s %10s\n", "hostile", "512 K, ms", "x2", "pieces, 32 K", "x2", "p99, us");
    for (const HostileText& hostile : hostileTexts()) {
        const auto whole = [&](qsizetype size) {
            const QString text = hostile.ofLength(size);
            const auto start = Clock::now();
            parseWhole(text);
            return secondsSince(start) * 1e3;
        };
        double once = whole(length);
        double twice = whole(2 * length);
        for (int again = 0; again < 3 && twice > mostGrowth * once; ++again) { // something else may have run
            once = whole(length);
            twice = whole(2 * length);
        }
        isMissed = isMissed || twice > mostGrowth * once;
        const Streamed pieces = stream(hostile.ofLength(streamedLength));
        const Streamed more = stream(hostile.ofLength(2 * streamedLength));
        std::printf("%-22s %12.1f %8.1f %11.1f ms %8.1f %10.0f\n", hostile.name, once, twice / once, pieces.total * 1e3,
            more.total / pieces.total, more.p99);
    }
    std::printf("%s\n", summary.constData());
    return isMissed ? 1 : 0;
}
