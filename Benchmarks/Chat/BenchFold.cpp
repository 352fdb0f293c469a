// What a streamed answer costs the client without its drawing: each frame is parsed, folded into the answer and put
// into the list that the view shows. Beside it the floor: the same frames parsed, the text just appended.
#include "Chat/AnswerFold.h"
#include "Chat/MessageListModel.h"
#include "Chat/SocketFrame.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>

using namespace Korvi;
using Clock = std::chrono::steady_clock;

namespace {

std::vector<QByteArray> framesOf(qsizetype characters, qsizetype pieceLength) {
    static const QStringList words{"слияние", "массив", "половина", "сортирует", "затем", "и", "в", "порядок", "каждую",
        "быстрее", "память", "рекурсия", "элемент", "сравнение"};
    std::mt19937 dice(1);
    std::vector<QByteArray> frames;
    QString piece;
    for (qsizetype made = 0; made < characters;) {
        piece += words.at(static_cast<qsizetype>(dice() % words.size())) + ' ';
        if (piece.size() < pieceLength)
            continue;
        made += piece.size();
        const QJsonObject frame{{"event", "chunk"}, {"data", QJsonObject{{"content", piece}}}};
        frames.push_back(QJsonDocument(frame).toJson(QJsonDocument::Compact));
        piece.clear();
    }
    return frames;
}

QString textOf(const QByteArray& frame) {
    const std::vector<SocketEvent> events = SocketFrame::parse(frame);
    return std::get<SocketEvent::TextChunk>(events.front().value).content;
}

struct Cost {
    double p50 = 0; // microseconds
    double p99 = 0;
    double total = 0; // milliseconds
};

template <class Step>
Cost measure(const std::vector<QByteArray>& frames, Step step) {
    std::vector<double> each;
    each.reserve(frames.size());
    const auto start = Clock::now();
    for (const QByteArray& frame : frames) {
        const auto before = Clock::now();
        step(frame);
        each.push_back(std::chrono::duration<double, std::micro>(Clock::now() - before).count());
    }
    Cost cost;
    cost.total = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    std::sort(each.begin(), each.end());
    cost.p50 = each[each.size() / 2];
    cost.p99 = each[each.size() * 99 / 100];
    return cost;
}

}

int main() {
    std::printf("%-9s %8s %10s %10s %12s %12s %14s\n", "answer", "frames", "p50, us", "p99, us", "total, ms",
        "frames/s", "floor, ms");
    for (const qsizetype kilobytes : {1, 64, 256}) {
        const auto frames = framesOf(kilobytes * 1024, 16);
        MessageListModel model;
        ChatMessage answer;
        answer.role = ChatMessage::Role::ai;
        answer.content = std::vector<MessageContent>{{MessageContent::Text{}}};
        model.append({answer});
        AnswerFold fold;
        const Cost cost = measure(frames, [&](const QByteArray& frame) {
            model.update(0, [&](ChatMessage& message) {
                return fold.fold(*message.content, {textOf(frame)}, AnswerFold::Kind::text).changed;
            });
        });
        QString whole;
        const Cost floor = measure(frames, [&](const QByteArray& frame) { whole += textOf(frame); });
        std::printf("%6lld KB %8zu %10.1f %10.1f %12.1f %12.0f %14.1f\n", static_cast<long long>(kilobytes),
            frames.size(), cost.p50, cost.p99, cost.total, static_cast<double>(frames.size()) / cost.total * 1000,
            floor.total);
    }
    return 0;
}
