// What one streamed piece costs the message list: the model announces the grown answer, the view takes it over and
// settles, the frame is drawn. Plain paragraphs and lists, and an answer of everything that there is. Beside it the floor:
// the whole text set into a text item each time, which draws no Markdown at all.
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

QString sample(bool mixed, qsizetype characters) {
    SampleText text;
    return mixed ? text.mixed(characters) : text.text(characters);
}

Series stream(const QString& text) {
    MessageListModel model;
    Stage stage(listQml, &model);
    model.append({message(ChatMessage::Role::user, 1, "Расскажи о сортировке"), message(ChatMessage::Role::ai, 2, "")});
    model.setStreaming(true);
    stage.frame([] {});
    Series series;
    for (qsizetype length = 0; length < text.size(); length += 16) {
        const QStringView piece = QStringView(text).mid(length, 16);
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

double wholeText(QString whole) {
    QObject none;
    Stage stage(wholeQml, &none);
    QQuickItem* edit = stage.find("edit");
    std::vector<double> updates;
    for (int i = 0; i < floorUpdates; ++i) {
        whole += u"слово ";
        updates.push_back(stage.frame([&] { edit->setProperty("text", whole); }).update);
    }
    return quantile(updates, 0.5);
}

}

int main(int argc, char** argv) {
    useOffscreen();
    QGuiApplication application(argc, argv);
    std::printf("%-6s %9s %8s %9s %9s %9s %9s %9s %10s %15s\n", "", "answer", "updates", "p50, ms", "p99, ms", "worst",
        "draw p50", "draw p99", "total, ms", "whole text, ms");
    bool met = true;
    for (const bool mixed : {false, true}) {
        for (const qsizetype kilobytes : {1, 64, 256}) {
            // Kilobytes as sent: two bytes for a Cyrillic letter.
            const QString text = sample(mixed, kilobytes * 1024 / 2);
            const Series series = stream(text);
            // What updates cost at this length, not on the way there.
            const auto late = [](const std::vector<double>& all) {
                return std::vector<double>(
                    all.end() - static_cast<std::ptrdiff_t>(std::min<std::size_t>(all.size(), 1000)), all.end());
            };
            const double p99 = quantile(late(series.update), 0.99);
            met = met && p99 < goal;
            std::printf("%-6s %6lld KB %8zu %9.3f %9.3f %9.3f %9.3f %9.3f %10.0f %15.2f\n", mixed ? "mixed" : "plain",
                static_cast<long long>(kilobytes), series.update.size(), quantile(late(series.update), 0.5), p99,
                quantile(series.update, 1), quantile(late(series.draw), 0.5), quantile(late(series.draw), 0.99),
                series.total, wholeText(text));
            std::fflush(stdout);
        }
    }
    return met ? 0 : 1;
}
