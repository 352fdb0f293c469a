// What an artifact costs that is written in small pieces while it is looked at: each frame is parsed and taken in, and
// every so often, as by the clock of the client, the artifact is brought up to date and shown. One such step by itself
// costs the same at any length. Beside it the floor: the same frames parsed, the text just appended.
#include "Chat/ArtifactSelection.h"
#include "Chat/MessageListModel.h"
#include "Chat/SocketFrame.h"
#include "Chat/ToolEvents.h"
#include "Linux/SystemClock.h"
#include "Markdown/AnswerParts.h"
#include "Markdown/CodeParts.h"

#include <QJsonDocument>

#include <algorithm>
#include <chrono>
#include <cstdio>

using namespace Korvi;
using Stopwatch = std::chrono::steady_clock;

namespace {

constexpr qsizetype pieceLength = 16;
constexpr int lastSteps = 51;
constexpr int piecesAStep = 40; // 500 pieces in a second, 80 ms a step

QByteArray frame(const char* event, const QJsonObject& data) {
    return QJsonDocument(QJsonObject{{"event", event}, {"data", data}}).toJson(QJsonDocument::Compact);
}

std::vector<QByteArray> framesOf(qsizetype characters) {
    std::vector<QByteArray> frames;
    for (qsizetype made = 0; made < characters; made += pieceLength) {
        const QString text = QStringLiteral("строка %1\n").arg(made, pieceLength - 8, 10, QChar(u'0'));
        frames.push_back(frame("tool_call_args", {{"tool", "artifact"}, {"args", QJsonObject{{"text", text}}}}));
    }
    return frames;
}

double milliseconds(Stopwatch::time_point since) {
    return std::chrono::duration<double, std::milli>(Stopwatch::now() - since).count();
}

struct Spent {
    double whole = 0; // milliseconds
    double step = 0;  // microseconds, a median of the last steps
};

// As the client does it, without drawing: the card in the answer and the text of the open panel follow each step.
Spent stream(const std::vector<QByteArray>& frames) {
    SystemRandom random;
    MessageListModel messages;
    ArtifactSelection selection(messages);
    ChatMessage answer;
    answer.role = ChatMessage::Role::ai;
    messages.append({answer});
    AnswerParts card;
    CodeParts panel;
    panel.setOpen(true);
    panel.setLanguage(QStringLiteral("python"));
    QObject::connect(&messages, &QAbstractItemModel::dataChanged,
        [&] { card.setContent(messages.index(0).data(MessageListModel::ContentRole)); });
    QObject::connect(&selection, &ArtifactSelection::changed, [&] { panel.setCode(selection.text()); });
    ToolWork work;
    const auto take = [&](const ToolFrame& received) {
        if (!work.replay.isRepeat(received))
            messages.update(
                0, [&](ChatMessage& message) { return ToolEvents::take(work, message, received, random).isChanged; });
    };
    take({ToolFrame::Kind::start, QStringLiteral("artifact"), std::nullopt});
    selection.select(messages.messages().front().content->front().as<Artifact>()->id, -1);
    const auto start = Stopwatch::now();
    int pieces = 0;
    std::vector<double> steps;
    for (const QByteArray& each : frames) {
        const std::vector<SocketEvent> events = SocketFrame::parse(each);
        const auto& chunk = std::get<SocketEvent::ArtifactChunk>(events.front().value);
        take({ToolFrame::Kind::args, chunk.tool, chunk.args});
        if (++pieces % piecesAStep != 0)
            continue;
        const auto stepStart = Stopwatch::now();
        messages.update(0, [&](ChatMessage& message) { return ToolEvents::applyArtifact(work, message); });
        steps.push_back(1000 * milliseconds(stepStart));
    }
    const double whole = milliseconds(start);
    if (panel.text().size() < pieces / piecesAStep * piecesAStep * pieceLength || card.count() != 1)
        std::puts("not all of it was shown");
    const auto last = steps.end() - std::min<std::ptrdiff_t>(lastSteps, std::ssize(steps));
    std::nth_element(last, last + (steps.end() - last) / 2, steps.end());
    return {whole, *(last + (steps.end() - last) / 2)};
}

double floorOf(const std::vector<QByteArray>& frames) {
    QString text;
    const auto start = Stopwatch::now();
    for (const QByteArray& each : frames) {
        const std::vector<SocketEvent> events = SocketFrame::parse(each);
        text += std::get<SocketEvent::ArtifactChunk>(events.front().value).args.value(QLatin1String("text")).toString();
    }
    return milliseconds(start);
}

}

int main() {
    std::printf("%12s %12s %12s %8s %14s %14s\n", "characters", "client, ms", "floor, ms", "ratio", "us per piece",
        "us, last steps");
    for (const qsizetype size : {65'536, 262'144, 1'048'576, 4'194'304}) {
        const auto frames = framesOf(size);
        const double floor = floorOf(frames);
        const auto [spent, step] = stream(frames);
        std::printf("%12lld %12.1f %12.1f %8.2f %14.2f %14.1f\n", static_cast<long long>(size), spent, floor,
            spent / floor, 1000 * spent / static_cast<double>(frames.size()), step);
    }
    return 0;
}
