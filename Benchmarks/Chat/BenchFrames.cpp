// How fast frames of the chat socket become events. The median of several runs; the last line is for programs.
#include "Chat/SocketFrame.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

using namespace Korvi;

namespace {

constexpr int runs = 9;
constexpr int framesPerRun = 20'000;

struct Kind {
    const char* name;
    QByteArray frame;
};

const std::array kinds{
    Kind{"chunk", R"({"event":"chunk","data":{"content":"Ответ приходит по кускам: "}})"},
    Kind{"thinking", R"({"event":"thinking","data":{"content":"Сначала посмотрим, что спросили."}})"},
    Kind{"tool_end",
        R"({"event":"tool_end","data":{"tool":"webSearch","content":{"type":"web_search","query":"погода","results":[)"
        R"({"title":"Погода","url":"https://example.org/1","content":"Завтра ясно, ветер слабый."},)"
        R"({"title":"Прогноз","url":"https://example.org/2","content":"К вечеру облачно."}],"responseTime":0.8}}})"},
    Kind{"create",
        R"({"event":"create","data":{"id":1201,"name":"Новый чат","description":null,"language":"ru","mode":"auto",)"
        R"("createdAt":"2030-01-01T12:00:00.000Z","updatedAt":"2030-01-01T12:00:00.000Z","userId":"u-1",)"
        R"("organizationId":null,"projectId":null,"isFavorite":false}})"},
};

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

// Nanoseconds for one frame.
double measure(const QByteArray& frame) {
    std::vector<double> perFrame;
    for (int run = 0; run < runs; ++run) {
        std::size_t events = 0;
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < framesPerRun; ++i)
            events += SocketFrame::parse(frame).size();
        const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
        if (events != framesPerRun)
            std::abort();
        perFrame.push_back(taken.count() / framesPerRun);
    }
    return median(std::move(perFrame));
}

}

int main() {
    std::printf("%-10s %8s %12s %12s %8s\n", "frame", "bytes", "ns/frame", "frames/s", "MB/s");
    QByteArray summary = "bench-frames";
    for (const Kind& kind : kinds) {
        const double ns = measure(kind.frame);
        const auto bytes = static_cast<double>(kind.frame.size());
        std::printf("%-10s %8.0f %12.0f %12.0f %8.1f\n", kind.name, bytes, ns, 1e9 / ns, bytes * 1e3 / ns);
        summary += QByteArray(" ") + kind.name + "_ns=" + QByteArray::number(ns, 'f', 0) + " " + kind.name +
            "_per_s=" + QByteArray::number(1e9 / ns, 'f', 0);
    }
    std::printf("%s\n", summary.constData());
}
