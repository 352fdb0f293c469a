// What an artifact costs that is written in small pieces while it is looked at: each frame is parsed and taken in, and
// every so often, as by the clock of the client, the artifact is brought up to date and read. Beside it the floor: the
// same frames parsed, the text just appended.
#include "Chat/ArtifactSelection.h"
#include "Chat/MessageListModel.h"
#include "Chat/SocketFrame.h"
#include "Chat/ToolEvents.h"
#include "Linux/SystemClock.h"

#include <QJsonDocument>

#include <chrono>
#include <cstdio>

using namespace Korvi;
using Stopwatch = std::chrono::steady_clock;

namespace {

constexpr qsizetype pieceLength = 16;
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

double stream(const std::vector<QByteArray>& frames) {
    SystemRandom random;
    MessageListModel messages;
    ArtifactSelection selection(messages);
    ChatMessage answer;
    answer.role = ChatMessage::Role::ai;
    messages.append({answer});
    ToolWork work;
    const auto take = [&](const ToolFrame& received) {
        if (!work.replay.isRepeat(received))
            messages.update(
                0, [&](ChatMessage& message) { return ToolEvents::take(work, message, received, random).isChanged; });
    };
    take({ToolFrame::Kind::start, QStringLiteral("artifact"), std::nullopt});
    selection.select(messages.messages().front().content->front().as<Artifact>()->id);
    qsizetype read = 0;
    QObject::connect(&selection, &ArtifactSelection::changed, [&] { read += selection.text().size() > 0 ? 1 : 0; });
    const auto start = Stopwatch::now();
    int pieces = 0;
    for (const QByteArray& each : frames) {
        const std::vector<SocketEvent> events = SocketFrame::parse(each);
        const auto& chunk = std::get<SocketEvent::ArtifactChunk>(events.front().value);
        take({ToolFrame::Kind::args, chunk.tool, chunk.args});
        if (++pieces % piecesAStep == 0)
            messages.update(0, [&](ChatMessage& message) { return ToolEvents::applyArtifact(work, message); });
    }
    const double spent = milliseconds(start);
    if (read == 0)
        std::puts("nothing was read");
    return spent;
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
    std::printf("%12s %12s %12s %8s %14s\n", "characters", "client, ms", "floor, ms", "ratio", "us per piece");
    for (const qsizetype size : {65'536, 262'144, 1'048'576, 4'194'304}) {
        const auto frames = framesOf(size);
        const double floor = floorOf(frames);
        const double spent = stream(frames);
        std::printf("%12lld %12.1f %12.1f %8.2f %14.2f\n", static_cast<long long>(size), spent, floor, spent / floor,
            1000 * spent / static_cast<double>(frames.size()));
    }
    return 0;
}
