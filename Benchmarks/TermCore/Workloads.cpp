#include "Workloads.h"

#include <array>
#include <cstdio>
#include <random>
#include <span>
#include <string_view>

namespace bench {
namespace {

using Random = std::minstd_rand;

template <std::size_t size>
std::string_view pick(Random& random, const std::array<std::string_view, size>& from) {
    return from[random() % size];
}

int number(Random& random, int below) {
    return static_cast<int>(random() % static_cast<unsigned>(below));
}

template <typename Piece>
std::string repeat(std::size_t size, Piece piece) {
    Random random(20240229);
    std::string out;
    out.reserve(size + 4096);
    while (out.size() < size)
        piece(out, random);
    return out;
}

template <std::size_t size>
void sentence(std::string& out, Random& random, const std::array<std::string_view, size>& words, int count) {
    for (int i = 0; i < count; ++i) {
        out += pick(random, words);
        out += i + 1 < count ? " " : "";
    }
}

constexpr std::array<std::string_view, 16> english{"request", "served", "in", "GET", "/api/v1/chats", "cache", "miss",
    "user", "of", "connection", "closed", "retrying", "with", "timeout", "200", "bytes"};
constexpr std::array<std::string_view, 12> russian{
    "запрос", "выполнен", "за", "сервер", "ответил", "ошибка", "в", "строке", "файл", "не", "найден", "пользователь"};
constexpr std::array<std::string_view, 8> chinese{"终端", "引擎", "字符", "渲染", "很快", "世界", "数据", "测试结果"};
constexpr std::array<std::string_view, 12> emoji{
    "😀", "🚀", "🎉", "👍🏽", "❤️", "👩‍💻", "🇩🇪", "🔥", "✅", "🐧", "☕", "🧪"};

void asciiLog(std::string& out, Random& random) {
    char head[64];
    std::snprintf(head, sizeof head, "2024-02-29 12:%02d:%02d.%03d INFO [worker-%d] ", number(random, 60),
        number(random, 60), number(random, 1000), number(random, 16));
    out += head;
    sentence(out, random, english, 8 + number(random, 8));
    out += "\r\n";
}

void colouredLog(std::string& out, Random& random) {
    constexpr std::array<std::string_view, 3> levels{
        "\x1b[32mINFO\x1b[0m", "\x1b[1;33mWARN\x1b[0m", "\x1b[31mERROR\x1b[0m"};
    char head[96];
    std::snprintf(head, sizeof head, "\x1b[90m2024-02-29 12:%02d:%02d\x1b[0m ", number(random, 60), number(random, 60));
    out += head;
    out += pick(random, levels);
    out += " \x1b[36mworker\x1b[0m ";
    sentence(out, random, english, 6 + number(random, 6));
    out += " \x1b[38;5;208m";
    sentence(out, random, english, 2);
    out += "\x1b[m\r\n";
}

void cyrillic(std::string& out, Random& random) {
    sentence(out, random, russian, 8 + number(random, 8));
    out += ".\r\n";
}

void cjk(std::string& out, Random& random) {
    for (int i = 8 + number(random, 20); i > 0; --i)
        out += pick(random, chinese);
    out += "\r\n";
}

void emojiLines(std::string& out, Random& random) {
    for (int i = 10 + number(random, 20); i > 0; --i)
        out += pick(random, emoji);
    out += "\r\n";
}

/// Every cell with attributes of its own.
void denseCells(std::string& out, Random& random) {
    char cell[64];
    out += "\x1b[H";
    for (int i = 0; i < rows * cols; ++i) {
        std::snprintf(cell, sizeof cell, "\x1b[38;5;%d;48;5;%d;1;3;4m%c", number(random, 256), number(random, 256),
            'A' + number(random, 26));
        out += cell;
    }
}

/// Text all over the screen, without attributes.
void lightCells(std::string& out, Random& random) {
    out += "\x1b[H";
    for (int i = 0; i < rows * cols; ++i)
        out += static_cast<char>('A' + number(random, 26));
}

/// As an editor draws: a run of coloured words, some placed by the cursor.
void mediumCells(std::string& out, Random& random) {
    char head[64];
    std::snprintf(head, sizeof head, "\x1b[%d;%dH", 1 + number(random, rows), 1 + number(random, 60));
    out += head;
    for (int i = 0; i < 8; ++i) {
        std::snprintf(
            head, sizeof head, "\x1b[38;2;%d;%d;%dm", number(random, 256), number(random, 256), number(random, 256));
        out += head;
        out += pick(random, english);
        out += "\x1b[m ";
    }
    out += "\x1b[K";
}

void scrolling(std::string& out, Random&) {
    out += "y\r\n";
}

void scrollingRegion(std::string& out, Random&) {
    if (out.empty())
        out += "\x1b[2;49r\x1b[49;1H";
    out += "y\r\n";
}

void cursorMotion(std::string& out, Random& random) {
    char text[32];
    std::snprintf(text, sizeof text, "\x1b[%d;%dHA", 1 + number(random, rows), 1 + number(random, cols));
    out += text;
}

}

std::vector<Workload> workloads(std::size_t size, std::string_view only) {
    static constexpr struct {
        const char* name;
        void (*piece)(std::string& out, Random& random);
        double goal;
    } all[] = {
        {"ascii log", asciiLog, 3},
        {"coloured log", colouredLog, 3},
        {"cyrillic", cyrillic, 3},
        {"cjk", cjk, 3},
        {"emoji", emojiLines, 1.2},
        {"dense cells", denseCells, 1.2},
        {"light cells", lightCells, 1.2},
        {"medium cells", mediumCells, 1.2},
        {"scrolling", scrolling, 1.2},
        {"scrolling in a region", scrollingRegion, 1.2},
        {"cursor motion", cursorMotion, 1.2},
    };
    std::vector<Workload> result;
    for (const auto& [name, piece, goal] : all) {
        if (only.empty() || only == name)
            result.push_back({name, repeat(size, piece), goal});
    }
    return result;
}

std::string lines(std::size_t count, int length) {
    std::string out;
    for (std::size_t i = 0; i < count; ++i) {
        std::string line = std::to_string(i) + " ";
        while (static_cast<int>(line.size()) < length)
            line += static_cast<char>('a' + line.size() % 26);
        out += line + "\r\n";
    }
    return out;
}

}
