// What hostile answers cost the message list, drawn and all: opened whole at half a megabyte and at one, and grown by
// pieces of 16 characters behind as much. Twice the length should cost about twice the time, a piece about the same:
// exit status 1 if it costs more than three times as much.
#include "Chat/MessageListModel.h"
#include "Stage.h"
#include "Texts.h"

#include <QFile>
#include <QtPlugin>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

using namespace Korvi;

namespace {

constexpr char listQml[] = R"(
import QtQuick
import Korvi.Views
MessageList { required messages; columnWidth: Theme.readingWidth; width: 1200; height: 800 }
)";

ChatMessage message(ChatMessage::Role role, qint64 id, const QString& text) {
    ChatMessage made;
    made.id = id;
    made.role = role;
    made.content = std::vector<MessageContent>{{MessageContent::Text{text}}};
    return made;
}

double megabytesInUse() {
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').at(1).toDouble() * 4096 / 1e6 : 0;
}

constexpr double mostGrowth = 3; // of the time, for twice the text

struct Cost {
    double open = 0;    // milliseconds until all is still
    double worst = 0;   // of these, the longest time for which the window stood
    double memory = 0;  // megabytes
    double piece = 0;   // milliseconds
    double slowest = 0; // of the pieces
};

Cost costOf(const HostileText& hostile, qsizetype length) {
    constexpr int pieces = 100;
    constexpr qsizetype pieceLength = 16;
    const QString text = hostile.ofLength(length);
    MessageListModel model;
    Stage stage(listQml, &model);
    stage.frame([] {});
    Cost cost;
    const auto count = [&](const Stage::Frame& frame) {
        cost.open += frame.update + frame.draw;
        cost.worst = std::max(cost.worst, frame.update + frame.draw);
    };
    const double before = megabytesInUse();
    model.setStreaming(true);
    count(stage.frame([&] {
        model.append(
            {message(ChatMessage::Role::user, 1, QStringLiteral("?")), message(ChatMessage::Role::ai, 2, text)});
    }));
    for (int i = 0; i < 3; ++i) {
        stage.rest();
        count(stage.frame([] {}));
    }
    cost.memory = megabytesInUse() - before;
    const QString more = hostile.repeated.repeated(pieces * pieceLength / hostile.repeated.size() + 1);
    std::vector<double> frames;
    for (int i = 0; i < pieces; ++i) {
        const Stage::Frame frame = stage.frame([&] {
            model.update(1, [&](ChatMessage& answer) {
                std::get<MessageContent::Text>(answer.content->front().value).text +=
                    QStringView(more).mid(i * pieceLength, pieceLength);
                return true;
            });
        });
        frames.push_back(frame.update + frame.draw);
        stage.rest();
    }
    cost.piece = quantile(frames, 0.5);
    cost.slowest = quantile(frames, 1);
    return cost;
}

}

int main(int argc, char** argv) {
    useOffscreen();
    QGuiApplication application(argc, argv);
    std::printf("%-22s %10s %10s %5s %8s %7s | %9s %9s %9s\n", "milliseconds", "512 K", "1024 K", "x", "longest", "MB",
        "16: 512 K", "1024 K", "slowest");
    bool isMissed = false;
    for (const HostileText& hostile : hostileTexts()) {
        if (argc > 1 && QByteArray(hostile.name) != argv[1])
            continue;
        Cost half = costOf(hostile, 512 * 1024);
        Cost whole = costOf(hostile, 1024 * 1024);
        if (whole.open > mostGrowth * half.open) { // something else may have run
            half = costOf(hostile, 512 * 1024);
            whole = costOf(hostile, 1024 * 1024);
        }
        isMissed = isMissed || whole.open > mostGrowth * half.open;
        std::printf("%-22s %10.0f %10.0f %5.1f %8.0f %7.0f | %9.2f %9.2f %9.1f\n", hostile.name, half.open, whole.open,
            whole.open / half.open, whole.worst, whole.memory, half.piece, whole.piece, whole.slowest);
        std::fflush(stdout);
    }
    return isMissed ? 1 : 0;
}
