// What one streamed piece costs the message list: the model announces the grown answer, the view takes it over and
// settles, the frame is drawn. Plain paragraphs and lists, and an answer of everything that there is. Beside it the floor:
// the whole text set into a text item each time, which draws no Markdown at all, at a sample of the updates. An answer
// that is one huge paragraph is grown at its end only. With a display the long mixed answer is streamed once more in a
// window there, with OpenGL.
#include "Chat/MessageListModel.h"
#include "Memory.h"
#include "RealWindow.h"
#include "SampleText.h"

#include <QProcess>
#include <QtPlugin>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

using namespace Korvi;

namespace {

constexpr double goal = 4; // milliseconds, p99 of an update
constexpr int floorUpdates = 24;
constexpr qsizetype piece = 16;  // characters
constexpr double mostGrowth = 6; // of the total from 64 to 256 KB, where linear is 4

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
    double total = 0; // update and draw
};

QString sample(bool mixed, qsizetype kilobytes) {
    // As sent: two bytes for a Cyrillic letter.
    SampleText text;
    return mixed ? text.mixed(kilobytes * 1024 / 2) : text.text(kilobytes * 1024 / 2);
}

// The first `begin` characters are there at once.
template <class Scene>
Series stream(Scene& stage, MessageListModel& model, const QString& text, qsizetype begin = 0) {
    model.append({message(ChatMessage::Role::user, 1, "Расскажи о сортировке"),
        message(ChatMessage::Role::ai, 2, text.first(begin))});
    model.setStreaming(true);
    stage.frame([] {});
    Series series;
    for (qsizetype length = begin; length < text.size(); length += piece) {
        const Stage::Frame frame = stage.frame([&] {
            model.update(1, [&](ChatMessage& answer) {
                std::get<MessageContent::Text>(answer.content->front().value).text +=
                    QStringView(text).mid(length, piece);
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

// What all updates would cost.
template <class Scene>
double wholeText(const QString& text) {
    QObject none;
    Scene stage(wholeQml, &none);
    QQuickItem* edit = stage.find("edit");
    double sum = 0;
    for (int i = 1; i <= floorUpdates; ++i) {
        const QString whole = text.first(text.size() * i / floorUpdates);
        const Stage::Frame frame = stage.frame([&] { edit->setProperty("text", whole); });
        sum += frame.update + frame.draw;
        stage.rest();
    }
    return sum / floorUpdates * static_cast<double>(text.size() / piece);
}

// What updates cost at the end, not on the way there.
std::vector<double> late(const std::vector<double>& all) {
    return {all.end() - static_cast<std::ptrdiff_t>(std::min<std::size_t>(all.size(), 1000)), all.end()};
}

void printRow(const char* kind, qsizetype kilobytes, const Series& series) {
    std::printf("%-9s %6lld KB %8zu %9.3f %9.3f %9.3f %9.3f %9.3f %10.0f", kind, static_cast<long long>(kilobytes),
        series.update.size(), quantile(late(series.update), 0.5), quantile(late(series.update), 0.99),
        quantile(series.update, 1), quantile(late(series.draw), 0.5), quantile(late(series.draw), 0.99), series.total);
    std::fflush(stdout);
}

bool growParagraph() {
    constexpr qsizetype kilobytes = 256;
    SampleText sample;
    const QString text = sample.paragraph(kilobytes * 1024 / 2 + 1000 * piece);
    MessageListModel model;
    Stage stage(listQml, &model);
    const Series series = stream(stage, model, text, kilobytes * 1024 / 2);
    printRow("paragraph", kilobytes, series);
    std::puts("");
    std::fflush(stdout); // the next row may be another process's
    return quantile(series.update, 0.99) < goal;
}

bool streamInWindow() {
    constexpr qsizetype kilobytes = 256;
    const QString text = sample(true, kilobytes);
    MessageListModel model;
    RealWindow window(listQml, &model);
    const Series series = stream(window, model, text);
    printRow("window", kilobytes, series);
    const double memory = ownMegabytes();
    std::printf(" %15.0f %8.1f   %s\n", wholeText<RealWindow>(text), memory, window.renderer().constData());
    return quantile(late(series.update), 0.99) < goal;
}

}

int main(int argc, char** argv) {
    const QByteArray only = argc > 1 ? argv[1] : "";
    if (only == "--window")
        useWindow();
    else
        useOffscreen();
    QGuiApplication application(argc, argv);
    if (only == "--window")
        return streamInWindow() ? 0 : 1;
    if (only == "--paragraph")
        return growParagraph() ? 0 : 1;
    std::printf("%-9s %9s %8s %9s %9s %9s %9s %9s %10s %15s %8s\n", "", "answer", "updates", "p50, ms", "p99, ms",
        "worst", "draw p50", "draw p99", "total, ms", "whole text, ms", "PSS, MB");
    bool met = true;
    for (const bool mixed : {false, true}) {
        double before = 0;
        for (const qsizetype kilobytes : {1, 64, 256}) {
            const QString text = sample(mixed, kilobytes);
            MessageListModel model;
            Stage stage(listQml, &model);
            const Series series = stream(stage, model, text);
            const double p99 = quantile(late(series.update), 0.99);
            met = met && p99 < goal && (kilobytes < 256 || series.total < mostGrowth * before);
            before = series.total;
            printRow(mixed ? "mixed" : "plain", kilobytes, series);
            const double memory = ownMegabytes();
            std::printf(" %15.0f %8.1f\n", wholeText<Stage>(text), memory);
            std::fflush(stdout);
        }
    }
    met = growParagraph() && met;
    if (qEnvironmentVariableIsSet("DISPLAY"))
        met = QProcess::execute(QCoreApplication::applicationFilePath(), {QStringLiteral("--window")}) == 0 && met;
    return met ? 0 : 1;
}
