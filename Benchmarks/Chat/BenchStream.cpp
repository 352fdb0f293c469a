// What one streamed piece costs the message list: the model announces the grown answer, the view takes it over and
// settles, the frame is drawn. Beside it the floor: the whole text set into a text item each time.
#include "Chat/MessageListModel.h"
#include "SampleText.h"
#include "Stage.h"

#include <QtPlugin>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

using namespace Korvi;

namespace {

constexpr double goal = 4; // milliseconds, p99 of an update
constexpr int floorUpdates = 12;

constexpr char listQml[] = R"(
import QtQuick
import Korvi.Views
MessageList { required messages; columnWidth: Theme.readingWidth; width: 1200; height: 800 }
)";

constexpr char wholeQml[] = R"(
import QtQuick
Item {
    required property var messages
    Flickable {
        anchors.fill: parent; clip: true; contentHeight: edit.height; contentY: Math.max(0, edit.height - height)
        TextEdit {
            id: edit
            objectName: "edit"; width: 744; wrapMode: TextEdit.Wrap; readOnly: true; font.family: "Inter"; font.pixelSize: 13
        }
    }
}
)";

ChatMessage message(ChatMessage::Role role, qint64 id, const QString& text) {
    ChatMessage made;
    made.id = id;
    made.role = role;
    made.content = std::vector<MessageContent>{{MessageContent::Text{text}}};
    return made;
}

struct Series {
    std::vector<double> update;
    std::vector<double> draw;
    double total = 0;
};

Series stream(qsizetype characters) {
    MessageListModel model;
    Stage stage(listQml, &model);
    model.append({message(ChatMessage::Role::user, 1, "Расскажи о сортировке"), message(ChatMessage::Role::ai, 2, "")});
    model.setStreaming(true);
    stage.frame([] {});
    SampleText text;
    Series series;
    for (qsizetype length = 0; length < characters;) {
        QString piece;
        while (piece.size() < 16)
            piece += text.word();
        length += piece.size();
        const Stage::Frame frame = stage.frame([&] {
            model.update(1, [&](ChatMessage& answer) {
                std::get<MessageContent::Text>(answer.content->front().value).text += piece;
                return true;
            });
        });
        series.update.push_back(frame.update);
        series.draw.push_back(frame.draw);
        series.total += frame.update + frame.draw;
        stage.rest();
    }
    return series;
}

double wholeText(qsizetype characters) {
    QObject none;
    Stage stage(wholeQml, &none);
    QQuickItem* edit = stage.find("edit");
    SampleText text;
    QString whole = text.text(characters);
    std::vector<double> updates;
    for (int i = 0; i < floorUpdates; ++i) {
        whole += text.word();
        updates.push_back(stage.frame([&] { edit->setProperty("text", whole); }).update);
    }
    return quantile(updates, 0.5);
}

}

int main(int argc, char** argv) {
    useOffscreen();
    QGuiApplication application(argc, argv);
    std::printf("%-9s %8s %11s %11s %11s %11s %12s %15s\n", "answer", "updates", "p50, ms", "p99, ms", "draw p50",
        "draw p99", "total, ms", "whole text, ms");
    bool met = true;
    for (const qsizetype kilobytes : {1, 64, 256}) {
        // Kilobytes as sent: two bytes for a Cyrillic letter.
        const qsizetype characters = kilobytes * 1024 / 2;
        const Series series = stream(characters);
        // What updates cost at this length, not on the way there.
        const auto late = [](const std::vector<double>& all) {
            return std::vector<double>(
                all.end() - static_cast<std::ptrdiff_t>(std::min<std::size_t>(all.size(), 1000)), all.end());
        };
        const double p99 = quantile(late(series.update), 0.99);
        met = met && p99 < goal;
        std::printf("%6lld KB %8zu %11.3f %11.3f %11.3f %11.3f %12.0f %15.2f\n", static_cast<long long>(kilobytes),
            series.update.size(), quantile(late(series.update), 0.5), p99, quantile(late(series.draw), 0.5),
            quantile(late(series.draw), 0.99), series.total, wholeText(characters));
        std::fflush(stdout);
    }
    return met ? 0 : 1;
}
