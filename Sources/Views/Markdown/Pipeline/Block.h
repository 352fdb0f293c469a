#pragma once

#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

namespace Korvi::Markdown {

enum class Alignment { leading, center, trailing };

// One block of a Markdown text. Contents are Markdown still: inline markers and formulas are in them.
struct Block {
    struct Header {
        int level = 1; // 1 to 6
        QString content;
        bool operator==(const Header&) const = default;
    };
    struct ListItem {
        QString content; // without its marker
        bool operator==(const ListItem&) const = default;
    };
    struct NumberedListItem {
        qint64 number = 0;
        QString content;
        bool operator==(const NumberedListItem&) const = default;
    };
    struct CodeBlock {
        std::optional<QString> language;
        QString code; // without line feeds at its ends
        bool operator==(const CodeBlock&) const = default;
    };
    struct MermaidBlock {
        QString code;
        bool operator==(const MermaidBlock&) const = default;
    };
    struct LatexBlock {
        QString formula; // without its dollar signs
        bool operator==(const LatexBlock&) const = default;
    };
    struct Paragraph {
        QString content; // its lines joined by spaces
        bool operator==(const Paragraph&) const = default;
    };
    struct Table {
        QStringList headers;
        std::vector<QStringList> rows;     // each as long as it was written, whatever the header's length
        std::vector<Alignment> alignments; // as many as the separator line has cells
        bool operator==(const Table&) const = default;
    };
    struct Image {
        QString url; // anything that stood in the brackets, unchecked
        std::optional<QString> alt;
        bool operator==(const Image&) const = default;
    };
    using Value =
        std::variant<Header, ListItem, NumberedListItem, CodeBlock, MermaidBlock, LatexBlock, Paragraph, Table, Image>;

    Value value;

    template <class T>
    const T* as() const {
        return std::get_if<T>(&value);
    }
    template <class T>
    T* as() {
        return std::get_if<T>(&value);
    }

    bool operator==(const Block&) const = default;
};

}
