#include "Parser/EscapeSequenceParser.h"

#include <gtest/gtest.h>
#include <string>

namespace termcore::test {
namespace {

/// Writes down what the parser tells of.
struct Log : ParserTarget {
    std::string text;

    struct Dcs : DcsHandler {
        std::string& text;
        explicit Dcs(std::string& out)
            : text(out) {}
        void hook(std::span<const std::uint8_t>, std::span<const std::int64_t> parameters, std::uint8_t flag) override {
            text += "hook" + std::to_string(parameters[0]) + static_cast<char>(flag) + "(";
        }
        void put(std::span<const std::uint8_t> data) override { text.append(data.begin(), data.end()); }
        void unhook() override { text += ")"; }
    };

    void handlePrint(std::span<const std::uint8_t> data) override { text.append(data.begin(), data.end()); }
    void printStateReset() override {}
    void dispatchExecute(std::uint8_t code) override { text += "<" + std::to_string(code) + ">"; }
    void dispatchEsc(std::string_view collect, std::uint8_t final) override {
        text += "<ESC " + std::string(collect) + static_cast<char>(final) + ">";
    }
    void dispatchCsi(const ControlSequence& sequence) override {
        text += "<CSI " + std::string(sequence.collect);
        for (std::size_t i = 0; i < sequence.parameters.size(); ++i)
            text += (i > 0 ? std::string(1, sequence.separators[i - 1]) : "") + std::to_string(sequence.parameters[i]);
        text += static_cast<char>(sequence.final) + std::string(">");
    }
    void dispatchOsc(std::int64_t code, std::span<const std::uint8_t> data) override {
        text += "<OSC " + std::to_string(code) + ":" + std::string(data.begin(), data.end()) + ">";
    }
    void dispatchApc(std::uint8_t code, std::span<const std::uint8_t> data) override {
        text += std::string("<APC ") + static_cast<char>(code) + ":" + std::string(data.begin(), data.end()) + ">";
    }
    std::unique_ptr<DcsHandler> dcsHandler(std::string_view collect, std::uint8_t final) override {
        return collect == "$" && final == 'q' ? std::make_unique<Dcs>(text) : nullptr;
    }
};

struct Example {
    std::string bytes;
    std::string expected;
};

const Example examples[] = {
    {"a\x1b[1;;3mb", "a<CSI 1;0;3m>b"},
    {"\x1b[m\x1b[;H\x1b[4:3m", "<CSI 0m><CSI 0;0H><CSI 4:3m>"},
    {"\x1b[?25h\x1b[>1;2c\x1b[!p\x1b[2$p\x1b[?1$p", "<CSI ?25h><CSI >1;2c><CSI !0p><CSI $2p><CSI ?$1p>"},
    {"\x1b[12345678901234567m", "<CSI 12345678901234567m>"},
    {"\x1b[922337203685477571m\x1b[9223372036854775700m", "<CSI 0m><CSI 0m>"},
    {"\x1b]0;ab\x07\x1b]52\x1b\\\x1b];x\x07\x1b]\x07", "<OSC 0:ab><OSC 52:><ESC \\><OSC 0:x>"},
    {"\x1b]2;a\x9c"
     "b\rc\x07",
        "<OSC 2:a\x9c"
        "bc>"},
    {"\x1b]2;x\x18y\x1b]2;x\x1a\x07", "y<OSC 2:x>"},
    {"\x1b_Gabc\x1b\\", "<APC G:abc><ESC \\>"},
    {"\x1bP3$qab\rc\x7f"
     "d\x1b\\",
        "hook3q(ab\rcd)<ESC \\>"},
    {"\x1bP3$q\xd0\xb0\x1b\\", "hook3q(\xd0\xb0)<ESC \\>"},
    {"\x1bPqdrop\x1b\\ok", "<ESC \\>ok"},
    {"\x1bXdrop\x1b\\ok", "<ESC \\>ok"},
    {"\x1b#8\x1b(0\x1b%G\x1b  F", "<ESC #8><ESC (0><ESC %G><ESC   F>"},
    {"a\x9b"
     "1m\x85\x1b[1\x9b"
     "2m",
        "a\x9b"
        "1m\x85<CSI 2m>"},
    {"\x1b[1\x85m", "<133>m"},
    {"\x19\x1az", "<26>z"},
    // DEL and the controls wait within every state, or act.
    {"\x1b\x7f\nQ\x1bZ\x1b(\x7f\rB", "<10><ESC Q><ESC Z><13><ESC (B>"},
    {"\x1b[\x7f;5\x7f \x7fq\x1b[1?\x7f\n5\xe9m.", "<CSI  0;5q><10>."},
    {"\x1bP\x7f\r;5\x7f\r$\x7f\rqz\x1b\\", "hook0q(z)<ESC \\>"},
    {"\x1bXa\rb\x18\x9c.\x1b]\r2;x\x07\x1b_\rGx\x07\x1b_Gx\x18.", ".<OSC 2:x><APC G:x>."},
    // C1 controls act in every state but the ground and within strings.
    {"\x1b\x9bm\x1b[1\x98"
     "a\x9c.\x1b[1\x9e"
     "a\x9c.\x1b[1\x99.\x1b[1\x91.\x1b[1\x9cm",
        "<CSI 0m>..<153>.<145>.m"},
    {"\x1b[1\x9d"
     "2;t\x07\x1b[1\x9fGx\x07\x1b[1\x90"
     "3$qx\x9c.",
        "<OSC 2:t><APC G:x>hook3q(x)."},
    {"\x1b]\xe9;x\x07\x1b_\xe9x\x07", "<OSC 0:x><APC \xe9:x>"},
    // Device control strings that nobody takes, or that are malformed.
    {"\x1bP>|x\x9c.\x1bP1:x\r\xe9y\x9c.\x1bP1?x\x9c.\x1bP$$x\x9c.\x1bP$1x\x9c.\x1bP:x\x9c.", "......"},
};

TEST(Parser, DispatchesEachFormOfSequence) {
    for (const Example& each : examples) {
        Log log;
        EscapeSequenceParser parser(log);
        parser.parse({reinterpret_cast<const std::uint8_t*>(each.bytes.data()), each.bytes.size()});
        EXPECT_EQ(log.text, each.expected) << testing::PrintToString(each.bytes);
    }
}

/// The short way through common sequences and the transition table must agree, so a cut at any byte changes nothing. A
/// title that holds 0x9C or SUB at a cut is the exception: there the byte is seen alone and ends the string.
TEST(Parser, IsTheSameWhereverItIsCut) {
    for (const Example& each : examples) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(each.bytes.data());
        for (std::size_t cut = 1; cut < each.bytes.size(); ++cut) {
            if (each.bytes[cut] == '\x9c' || each.bytes[cut] == '\x1a')
                continue;
            Log log;
            EscapeSequenceParser parser(log);
            parser.parse({bytes, cut});
            parser.parse({bytes + cut, each.bytes.size() - cut});
            EXPECT_EQ(log.text, each.expected) << testing::PrintToString(each.bytes) << " cut at " << cut;
        }
    }
}

TEST(Parser, ErrorHandlerMayAbort) {
    Log log;
    EscapeSequenceParser parser(log);
    parser.errorHandler = [](ParsingState state) {
        EXPECT_EQ(state.currentState, ParserState::csiParam);
        EXPECT_EQ(state.code, 0xE9);
        EXPECT_EQ(state.position, 4U);
        EXPECT_EQ(state.parameters, std::vector<std::int64_t>{7});
        state.abort = true;
        return state;
    };
    const std::string bytes = "x\x1b[7\xe9tail";
    parser.parse({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    EXPECT_EQ(log.text, "x");
}

TEST(Parser, ResetForgetsAnOpenSequence) {
    Log log;
    EscapeSequenceParser parser(log);
    const std::string open = "\x1bP1$qab";
    parser.parse({reinterpret_cast<const std::uint8_t*>(open.data()), open.size()});
    parser.reset();
    const std::string rest = "cd\x1b[m";
    parser.parse({reinterpret_cast<const std::uint8_t*>(rest.data()), rest.size()});
    EXPECT_EQ(log.text, "hook1q(abcd<CSI 0m>");
}

TEST(Parser, ParseIntStopsAtTheFirstNonDigit) {
    const auto parse = [](std::string_view text) {
        return EscapeSequenceParser::parseInt({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    };
    EXPECT_EQ(parse("12a3"), 12);
    EXPECT_EQ(parse("x1"), 0);
    EXPECT_EQ(parse(""), 0);
    EXPECT_EQ(parse("99999999999999999999999"), 0);
}

}
}
