// Opening a chat of 1,000 messages of all lengths and with all kinds of parts: time until a frame shows its end, items
// made, memory of the process. Beside it a plain ListView with the same rows, each in a process of its own. Then scrolling
// through it from the end.
#include "Chat/MessageListModel.h"
#include "Memory.h"
#include "SampleText.h"
#include "Stage.h"

#include <QProcess>
#include <QtPlugin>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

using namespace Korvi;

namespace {

constexpr int messageCount = 1000;
constexpr int rounds = 100;
constexpr double goal = 50;        // milliseconds, three frames
constexpr double memoryGoal = 150; // megabytes

constexpr char columnQml[] = R"(
import QtQuick
import Korvi.Views
MessageList {
    required messages
    columnWidth: Theme.readingWidth
    function open() { showEnd() }
    function back(pixels) { column.scrollBy(-pixels) }
    function rows() { return column.liveRows() }
    function missing() { return column.distanceToEnd }
}
)";

constexpr char listViewQml[] = R"(
import QtQuick
import Korvi.Views
ListView {
    id: list
    required property var messages
    clip: true
    model: messages
    spacing: Theme.gap3
    delegate: MessageRow {
        width: list.width
        columnWidth: Theme.readingWidth
        canRetry: false; holdsFocus: false; isLast: false; tabStop: false; thinkingOpen: false
    }
    function open() { forceLayout(); positionViewAtEnd() }
    function back(pixels) { contentY -= pixels }
    function rows() { return contentItem.children.length }
    function missing() { return contentHeight + originY - contentY - height }
}
)";

std::vector<ChatMessage> conversation(int count, unsigned seed) {
    SampleText text(seed);
    std::vector<ChatMessage> messages;
    for (int i = 0; i < count; ++i) {
        ChatMessage message;
        message.id = static_cast<qint64>(seed) * 100000 + i;
        message.role = i % 2 ? ChatMessage::Role::ai : ChatMessage::Role::user;
        // Questions are short; answers go from a line to some screens.
        const unsigned length = i % 2 == 0 ? 10 + text.dice(200)
            : text.dice(10) == 0           ? 4000 + text.dice(8000)
                                           : 40 + text.dice(1500);
        message.content =
            std::vector<MessageContent>{{MessageContent::Text{i % 2 ? text.mixed(length) : text.text(length)}}};
        messages.push_back(std::move(message));
    }
    return messages;
}

QVariant call(QQuickItem& item, const char* function) {
    QVariant result;
    QMetaObject::invokeMethod(&item, function, Q_RETURN_ARG(QVariant, result));
    return result;
}

// Prints one line; says whether the goals are met.
bool measure(const char* name, const char* qml) {
    MessageListModel model;
    const std::vector<ChatMessage> few = conversation(4, 7);
    const std::vector<ChatMessage> many = conversation(messageCount, 1);
    model.setMessages(few);
    Stage stage(qml, &model);
    QQuickItem& list = *stage.find("");
    stage.frame([&] { call(list, "open"); });
    const double before = ownMegabytes();
    std::vector<double> times;
    int rows = 0;
    double missing = 0;
    double open = 0;
    for (int round = 0; round < rounds; ++round) {
        std::vector<ChatMessage> messages = many;
        const Stage::Frame frame = stage.frame([&] {
            model.setMessages(std::move(messages));
            call(list, "open");
        });
        times.push_back(frame.update + frame.draw);
        rows = std::max(rows, call(list, "rows").toInt());
        missing = std::max(missing, call(list, "missing").toDouble());
        if (round == 0) {
            for (int i = 0; i < 30; ++i) {
                stage.rest();
                stage.frame([] {});
            }
            open = ownMegabytes();
        }
        stage.frame([&] {
            model.setMessages(few);
            call(list, "open");
        });
        stage.rest();
    }
    model.setMessages(many);
    stage.frame([&] { call(list, "open"); });
    std::vector<double> scrolled;
    for (int i = 0; i < 600; ++i) {
        const Stage::Frame frame = stage.frame([&] { QMetaObject::invokeMethod(&list, "back", Q_ARG(QVariant, 60)); });
        scrolled.push_back(frame.update + frame.draw);
        stage.rest();
    }
    const double median = quantile(times, 0.5);
    std::printf("%-9s %12.1f %12.1f %7d %12.0f %8.1f %8.1f %12.2f %12.2f\n", name, median, quantile(times, 0.99), rows,
        missing, open, open - before, quantile(scrolled, 0.5), quantile(scrolled, 0.99));
    std::fflush(stdout);
    return median < goal && open < memoryGoal;
}

}

int main(int argc, char** argv) {
    useOffscreen();
    QGuiApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.contains("--column"))
        return measure("column", columnQml) ? 0 : 1;
    if (arguments.contains("--listview")) {
        measure("ListView", listViewQml);
        return 0;
    }
    std::printf("%-9s %12s %12s %7s %12s %8s %8s %12s %12s\n", "1,000", "open p50, ms", "p99, ms", "rows", "to end, px",
        "PSS, MB", "of it", "scroll p50", "scroll p99");
    std::fflush(stdout);
    QProcess::execute(application.applicationFilePath(), {"--listview"});
    return QProcess::execute(application.applicationFilePath(), {"--column"});
}
