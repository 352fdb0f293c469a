// What a code block costs: each streamed piece of one of 64 KB, and to open one of 10,000 lines in the message list's
// column and scroll through it.
#include "Stage.h"

#include <QtPlugin>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

using namespace Korvi;

namespace {

constexpr double goal = 4; // milliseconds, p99 of an update

constexpr char blockQml[] = R"(
import QtQuick
import Korvi.Views
Flickable {
    id: page
    property var messages
    property string code
    property bool isOpen: true
    property alias column: column
    function showEnd() { column.showEnd(VirtualColumn.AtOnce) }
    function scrollTo(y: real) { column.scrollTo(y) }
    contentWidth: width
    VirtualColumn {
        id: column
        objectName: "column"
        flickable: page
        model: ListModel { ListElement { name: "one" } }
        width: page.width
        delegate: CodeBlockView { code: page.code; isOpen: page.isOpen; language: "python" }
    }
}
)";

QString codeLine(int number) {
    return QStringLiteral("    value_%1 = merge(\"часть %1\", 'две', %1.5)  # строка %1\n").arg(number);
}

void report(const char* name, const std::vector<double>& update, const std::vector<double>& draw) {
    std::printf("%-28s %7zu %9.3f %9.3f %9.3f %9.3f\n", name, update.size(), quantile(update, 0.5),
        quantile(update, 0.99), quantile(draw, 0.5), quantile(draw, 0.99));
    std::fflush(stdout);
}

double stream() {
    QObject none;
    Stage stage(blockQml, &none);
    QQuickItem* page = stage.find("");
    QString whole;
    for (int line = 0; whole.size() < 64 * 1024; ++line)
        whole += codeLine(line);
    std::vector<double> updates;
    std::vector<double> draws;
    stage.frame([] {});
    for (qsizetype length = 16; length <= whole.size(); length += 16) {
        const QString code = whole.first(length);
        const Stage::Frame frame = stage.frame([&] { page->setProperty("code", code); });
        updates.push_back(frame.update);
        draws.push_back(frame.draw);
        stage.rest();
    }
    report("64 KB, 16 characters each", updates, draws);
    return quantile(updates, 0.99);
}

void open() {
    QObject none;
    Stage stage(blockQml, &none);
    QQuickItem* page = stage.find("");
    QString whole;
    for (int line = 0; line < 10'000; ++line)
        whole += codeLine(line);
    stage.frame([] {});
    page->setProperty("isOpen", false);
    const Stage::Frame opened = stage.frame([&] { page->setProperty("code", whole); });
    report("10,000 lines: open", {opened.update}, {opened.draw});
    std::vector<double> updates;
    std::vector<double> draws;
    for (int step = 0; step < 400; ++step) {
        const Stage::Frame frame =
            stage.frame([&] { QMetaObject::invokeMethod(page, "scrollTo", Q_ARG(double, step * 400.0)); });
        updates.push_back(frame.update);
        draws.push_back(frame.draw);
        stage.rest();
    }
    report("10,000 lines: scroll 400 px", updates, draws);
}

}

int main(int argc, char** argv) {
    useOffscreen();
    QGuiApplication application(argc, argv);
    std::printf("%-28s %7s %9s %9s %9s %9s\n", "", "frames", "p50, ms", "p99, ms", "draw p50", "draw p99");
    const double p99 = stream();
    open();
    return p99 < goal ? 0 : 1;
}
