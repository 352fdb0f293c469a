// What hostile answers cost the message list, drawn and all: opened whole at half a megabyte and at one, and grown to
// 16 and to 32 K in pieces of 256 characters. Twice the length should cost about twice the time.
#include "Chat/MessageListModel.h"
#include "Stage.h"
#include "Texts.h"

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

double open(const QString& text) {
    MessageListModel model;
    Stage stage(listQml, &model);
    stage.frame([] {});
    double total = 0;
    const auto count = [&](const Stage::Frame& frame) { total += frame.update + frame.draw; };
    count(stage.frame([&] {
        model.append({message(ChatMessage::Role::user, 1, "?"), message(ChatMessage::Role::ai, 2, text)});
    }));
    for (int i = 0; i < 3; ++i) {
        stage.rest();
        count(stage.frame([] {}));
    }
    return total;
}

struct Grown {
    double total = 0;
    double p99 = 0;
};

Grown grow(const QString& text) {
    constexpr qsizetype piece = 256;
    MessageListModel model;
    Stage stage(listQml, &model);
    model.append({message(ChatMessage::Role::user, 1, "?"), message(ChatMessage::Role::ai, 2, "")});
    model.setStreaming(true);
    stage.frame([] {});
    std::vector<double> frames;
    for (qsizetype length = 0; length < text.size(); length += piece) {
        const Stage::Frame frame = stage.frame([&] {
            model.update(1, [&](ChatMessage& answer) {
                std::get<MessageContent::Text>(answer.content->front().value).text +=
                    QStringView(text).mid(length, piece);
                return true;
            });
        });
        frames.push_back(frame.update + frame.draw);
        stage.rest();
    }
    Grown grown;
    for (const double frame : frames)
        grown.total += frame;
    grown.p99 = quantile(frames, 0.99);
    return grown;
}

}

int main(int argc, char** argv) {
    useOffscreen();
    QGuiApplication application(argc, argv);
    std::printf("%-22s %12s %12s %6s %12s %12s %6s %9s\n", "", "512 K, ms", "1024 K, ms", "x", "16 K, ms", "32 K, ms",
        "x", "p99, ms");
    for (const HostileText& hostile : hostileTexts()) {
        if (argc > 1 && QByteArray(hostile.name) != argv[1])
            continue;
        const double half = open(hostile.ofLength(512 * 1024));
        const double whole = open(hostile.ofLength(1024 * 1024));
        const Grown small = grow(hostile.ofLength(16 * 1024));
        const Grown large = grow(hostile.ofLength(32 * 1024));
        std::printf("%-22s %12.0f %12.0f %6.1f %12.0f %12.0f %6.1f %9.1f\n", hostile.name, half, whole, whole / half,
            small.total, large.total, large.total / small.total, large.p99);
        std::fflush(stdout);
    }
}
