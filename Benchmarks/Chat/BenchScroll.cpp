// A chat of 200 formulas and 10 diagrams, read back to its beginning by steps as of a wheel while nothing is laid out yet,
// and forth again with everything known. What a frame costs, how many are too late for a display of 60 Hz,
// and how many web renderers there are.
#include "Chat/MessageListModel.h"
#include "Linux/QtScheduler.h"
#include "Markdown/FormulaEngine.h"
#include "ProcessTree.h"
#include "SampleText.h"
#include "Samples.h"
#include "Stage.h"

#include <QElapsedTimer>
#include <QThread>
#include <QtPlugin>

#include <unistd.h>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

using namespace Korvi;

namespace {

constexpr int formulas = 200;
constexpr int diagrams = 10;
constexpr double frameTime = 1000.0 / 60; // milliseconds
constexpr int mostFrames = 5000;
constexpr double turn = 72;      // pixels that the wheel moves,
constexpr int framesPerTurn = 3; // in so many frames
constexpr double goal = 8;       // milliseconds, p99 of a frame: half of what there is
constexpr int mostRenderers = 2;

constexpr char listQml[] = R"(
import QtQuick
import Korvi.Views
MessageList { required messages; columnWidth: Theme.readingWidth; width: 1200; height: 800 }
)";

std::vector<ChatMessage> conversation() {
    SampleText text;
    const QStringList tex = Test::sampleFormulas();
    const QStringList codes = Test::sampleDiagrams();
    std::vector<ChatMessage> messages;
    for (int i = 0; i < formulas; ++i) {
        // Ten formulas and a diagram in two answers; no two are the same.
        if (i % 5 == 0) {
            for (const bool isAnswer : {false, true}) {
                ChatMessage message;
                message.id = static_cast<qint64>(messages.size()) + 1;
                message.role = isAnswer ? ChatMessage::Role::ai : ChatMessage::Role::user;
                message.content =
                    std::vector<MessageContent>{{MessageContent::Text{isAnswer ? QString() : text.text(60)}}};
                messages.push_back(std::move(message));
            }
        }
        QString& answer = std::get<MessageContent::Text>(messages.back().content->front().value).text;
        answer += text.text(150).trimmed();
        answer += i % 2
            ? QStringLiteral("\n\nПусть $x_{%1} = \\frac{a_%1}{b}$, тогда ").arg(i) + text.text(80).trimmed()
            : QStringLiteral("\n\n$$\n%1 + %2\n$$").arg(tex.at(i % tex.size())).arg(i);
        if (i % (formulas / diagrams) == 0)
            answer += QStringLiteral("\n\n```mermaid\n%1\n%% %2\n```").arg(codes.at(i / 20 % 7)).arg(i);
        answer += QStringLiteral("\n\n");
    }
    return messages;
}

struct Way {
    std::vector<double> frames;
    int late = 0;
    int pending = 0; // frames with a formula or diagram in view that was not there yet
};

bool isPending(QQuickItem& item, double height) {
    const QVariant ready = item.property("isReady");
    const double top = item.mapToScene({}).y();
    return item.isVisible() && ready.isValid() && !ready.toBool() && top < height && top + item.height() > 0;
}

class Reader {
public:
    explicit Reader(Stage& stage)
        : m_stage(stage)
        , m_list(*stage.find(""))
        , m_column(*m_list.property("column").value<QQuickItem*>()) {}

    // Up to the beginning (1) or down to the end (-1).
    Way scroll(int direction) {
        Way way;
        const char* left = direction > 0 ? "position" : "distanceToEnd";
        for (int frame = 0; frame < mostFrames && m_column.property(left).toDouble() > 0; ++frame) {
            const Stage::Frame cost = m_stage.frame([&] {
                QMetaObject::invokeMethod(&m_column, "scrollBy", Q_ARG(qreal, -direction * turn / framesPerTurn));
            });
            way.frames.push_back(cost.update + cost.draw);
            way.late += way.frames.back() > frameTime;
            way.pending += anyPending();
            waitForNext();
        }
        return way;
    }

private:
    bool anyPending() const {
        const QList<QQuickItem*> items = m_list.findChildren<QQuickItem*>();
        return std::any_of(
            items.begin(), items.end(), [&](QQuickItem* item) { return isPending(*item, m_list.height()); });
    }
    void waitForNext() {
        do {
            m_stage.rest();
            QThread::msleep(1);
        } while (m_clock.isValid() && static_cast<double>(m_clock.nsecsElapsed()) / 1e6 < frameTime);
        m_clock.start();
    }

    Stage& m_stage;
    QQuickItem& m_list;
    QQuickItem& m_column;
    QElapsedTimer m_clock;
};

}

int main(int argc, char** argv) {
    useOffscreen();
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    QGuiApplication application(argc, argv);
    QtScheduler scheduler;
    FormulaEngine engine(QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler);
    MessageListModel model;
    model.append(conversation());
    Stage stage(listQml, &model, [&](QQmlEngine& scenes) { engine.serve(scenes); });
    stage.frame([] {});
    Reader reader(stage);
    std::printf("%-22s %8s %9s %9s %9s %9s %9s\n", "", "frames", "p50, ms", "p99, ms", "worst", "> 16.7 ms", "pending");
    bool met = true;
    for (const int direction : {1, -1}) {
        const Way way = reader.scroll(direction);
        const double p99 = quantile(way.frames, 0.99);
        met = met && p99 < goal && way.frames.size() < mostFrames;
        std::printf("%-22s %8zu %9.2f %9.2f %9.2f %9d %9d\n", direction > 0 ? "up, for the first time" : "down again",
            way.frames.size(), quantile(way.frames, 0.5), p99, quantile(way.frames, 1), way.late, way.pending);
        std::fflush(stdout);
    }
    const int renderers = Test::countRenderers(engine.process().processId());
    std::printf("%d formulas, %d diagrams: %d renderer processes\n", formulas, diagrams, renderers);
    return met && renderers > 0 && renderers <= mostRenderers ? 0 : 1;
}
