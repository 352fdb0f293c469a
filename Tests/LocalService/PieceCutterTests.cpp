#include "Chat/PieceCutter.h"

#include "Core/Text.h"

#include <gmock/gmock.h>
#include <random>
#include <utf8proc.h>

namespace korvi::service {
namespace {

using testing::ElementsAre;

std::size_t clusters(const std::string& text) {
    std::size_t count = 0;
    std::int32_t previous = -1;
    std::int32_t state = 0;
    for (std::size_t i = 0; i < text.size();) {
        std::int32_t point = 0;
        i += static_cast<std::size_t>(utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + i),
            static_cast<utf8proc_ssize_t>(text.size() - i), &point));
        if (previous < 0 || utf8proc_grapheme_break_stateful(previous, point, &state))
            ++count;
        previous = point;
    }
    return count;
}

/// The far side's fold of one frame into its answer, counting characters in grapheme clusters or in UTF-16 units.
struct Reader {
    bool countsClusters = true;
    std::string text;
    std::string thinking;

    void take(const Piece& piece) {
        const std::string shown = asShown(piece.body);
        const std::size_t length = countsClusters ? clusters(shown) : utf16Length(shown);
        if (piece.kind == PieceKind::thinking) {
            if (!(length > 9 && !thinking.empty() && thinking.ends_with(shown)))
                thinking += shown;
        } else if (!(length >= 10 && !text.empty() && text.find(shown) != std::string::npos)) {
            text += shown;
        }
    }
};

std::vector<Piece> cut(PieceCutter& cutter, PieceKind kind, const std::string& text, std::mt19937& random) {
    std::vector<Piece> pieces;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = std::min<std::size_t>(text.size(), at + 1 + random() % 12);
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            ++end;
        for (auto& piece : cutter.add(kind, text.substr(at, end - at)))
            pieces.push_back(std::move(piece));
        at = end;
    }
    return pieces;
}

std::string randomText(std::mt19937& random) {
    static const std::vector<std::string> words{"да ", "слово ", "повторение — ", "the same line\n", "| --- | --- |\n",
        "👨‍👩‍👧‍👦", "🇷🇺", "e\u0301", "क्षि", "한국어 ", "----------------", "\\n", "\\134n", "\\134\"",
        "\\", "aaaaaaaaaaaaaaaaaaaa", "ё", "\r\n", "Одна и та же строка повторяется.\n", "👍🏽", " "};
    std::string text;
    for (auto count = random() % 120; count > 0; --count) {
        const auto& word = words[random() % words.size()];
        for (auto times = random() % 8 == 0 ? random() % 12 : 1; times > 0; --times)
            text += word;
    }
    return text;
}

TEST(PieceCutter, WhateverComesAReaderShowsExactlyItEvenIfAllComesAgain) {
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        PieceCutter cutter;
        const std::string thinking = seed % 3 == 0 ? randomText(random) : "";
        const std::string text = randomText(random);
        auto pieces = cut(cutter, PieceKind::thinking, thinking, random);
        for (auto& piece : cut(cutter, PieceKind::text, text, random))
            pieces.push_back(std::move(piece));
        for (auto& piece : cutter.finish())
            pieces.push_back(std::move(piece));

        std::string whole[2];
        for (const Piece& piece : pieces)
            whole[piece.kind == PieceKind::text ? 0 : 1] += piece.body;
        ASSERT_EQ(whole[0], text) << "seed " << seed;
        ASSERT_EQ(whole[1], thinking) << "seed " << seed;

        for (const bool countsClusters : {true, false}) {
            Reader reader{countsClusters, {}, {}};
            std::string expected;
            std::string expectedThinking;
            for (const Piece& piece : pieces) {
                reader.take(piece);
                (piece.kind == PieceKind::text ? expected : expectedThinking) += asShown(piece.body);
            }
            ASSERT_EQ(reader.text, expected) << "seed " << seed;
            ASSERT_EQ(reader.thinking, expectedThinking) << "seed " << seed;

            // The connection is lost somewhere and the text comes again from its beginning. Only text that is so short
            // that the reader cannot recognise it may double: an answer of a few characters, a repetition at the end.
            bool recognisable = true;
            for (const Piece& piece : pieces)
                recognisable = recognisable && clusters(asShown(piece.body)) >= 10;
            if (!recognisable)
                continue;
            Reader again{countsClusters, {}, {}};
            const std::size_t lost = pieces.empty() ? 0 : random() % (pieces.size() + 1);
            for (std::size_t i = 0; i < lost; ++i)
                again.take(pieces[i]);
            for (const Piece& piece : pieces)
                if (piece.kind == PieceKind::text)
                    again.take(piece);
            ASSERT_EQ(again.text, expected) << "seed " << seed;
        }
    }
}

TEST(PieceCutter, OnlyAnswersOfAFewCharactersHavePiecesThatCannotBeRecognised) {
    for (unsigned seed = 0; seed < 500; ++seed) {
        std::mt19937 random(seed);
        PieceCutter cutter;
        // No repetitions: each word is a number of its own.
        std::string text;
        for (unsigned i = 0; i < 5 + random() % 60; ++i)
            text += "слово" + std::to_string(seed * 1000 + i) + " ";
        auto pieces = cut(cutter, PieceKind::text, text, random);
        for (auto& piece : cutter.finish())
            pieces.push_back(std::move(piece));
        for (const Piece& piece : pieces)
            ASSERT_GE(clusters(piece.body), PieceCutter::minimumClusters) << piece.body;
    }
}

TEST(PieceCutter, ARepetitionAtTheEndGoesOutInPartsThatAReaderAlwaysAppends) {
    PieceCutter cutter;
    const std::string line = "Строка, которая повторится целиком.";
    std::vector<Piece> pieces = cutter.add(PieceKind::text, line);
    // A change of kind ends the run: what follows has no piece in front that it could join.
    for (auto& piece : cutter.add(PieceKind::thinking, "мысль"))
        pieces.push_back(std::move(piece));
    EXPECT_THAT(pieces, ElementsAre(Piece{PieceKind::text, line}));
    pieces = cutter.add(PieceKind::text, line);
    EXPECT_THAT(pieces, ElementsAre(Piece{PieceKind::thinking, "мысль"}));
    std::string rest;
    for (const auto& piece : cutter.finish()) {
        EXPECT_LE(utf16Length(piece.body), PieceCutter::alwaysAppended);
        rest += piece.body;
    }
    EXPECT_EQ(rest, line);
}

TEST(PieceCutter, AnAnswerThatRepeatsItselfForLongIsCutInProportionateTime) {
    PieceCutter cutter;
    std::size_t bytes = 0;
    for (int i = 0; i < 40'000; ++i)
        for (const auto& piece : cutter.add(PieceKind::text, "снова "))
            bytes += piece.body.size();
    for (const auto& piece : cutter.finish())
        bytes += piece.body.size();
    EXPECT_EQ(bytes, 40'000 * std::string("снова ").size());
}

}
}
