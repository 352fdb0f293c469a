#include "PartData.h"

#include "AnswerParts.h"
#include "MarkdownTable.h"
#include "Match.h"

#include <QUrl>

namespace Korvi {

std::optional<AnswerPartKind> partKind(const MessageContent& block) {
    using Kind = std::optional<AnswerPartKind>;
    return match(
        block.value, [](const MessageContent::Text&) -> Kind { return AnswerPartKind::text; },
        [](const MessageContent::Image&) -> Kind { return AnswerPartKind::image; },
        [](const MessageContent::Video&) -> Kind { return AnswerPartKind::video; },
        [](const MessageContent::Music&) -> Kind { return AnswerPartKind::music; },
        [](const MessageContent::File&) -> Kind { return AnswerPartKind::file; },
        [](const Artifact&) -> Kind { return AnswerPartKind::artifact; },
        [](const MessageContent::Thinking&) -> Kind { return std::nullopt; }, // shown folded, above
        [](const MessageContent::Generating&) -> Kind { return AnswerPartKind::generating; },
        [](const WebSearchContent&) -> Kind { return AnswerPartKind::search; },
        [](const MessageContent::SearchInProgress&) -> Kind { return AnswerPartKind::searching; },
        [](const MessageContent::Unknown&) -> Kind { return std::nullopt; });
}

AnswerPartKind partKind(const Markdown::Segment& segment) {
    using Markdown::Block;
    const auto* special = std::get_if<Markdown::SpecialSegment>(&segment);
    if (!special)
        return AnswerPartKind::text;
    return match(
        special->block.value, [](const Block::CodeBlock&) { return AnswerPartKind::code; },
        [](const Block::MermaidBlock&) { return AnswerPartKind::mermaid; },
        [](const Block::LatexBlock&) { return AnswerPartKind::latex; },
        [](const Block::Table&) { return AnswerPartKind::table; },
        [](const Block::Image&) { return AnswerPartKind::image; }, [](const auto&) { return AnswerPartKind::text; });
}

QVariant partData(const Markdown::Block& block, int role) {
    using Markdown::Block;
    if (const auto* code = block.as<Block::CodeBlock>()) {
        if (role == AnswerParts::LanguageRole)
            return code->language.value_or(QString());
        if (role == AnswerParts::CodeRole)
            return code->code;
    } else if (const auto* diagram = block.as<Block::MermaidBlock>()) {
        if (role == AnswerParts::CodeRole)
            return diagram->code;
    } else if (const auto* formula = block.as<Block::LatexBlock>()) {
        if (role == AnswerParts::FormulaRole)
            return formula->formula;
    } else if (const auto* table = block.as<Block::Table>()) {
        if (role == AnswerParts::TableRole)
            return QVariant::fromValue(MarkdownTable(*table));
    } else if (const auto* image = block.as<Block::Image>()) {
        if (role == AnswerParts::UrlRole)
            return image->url;
        if (role == AnswerParts::AltRole)
            return image->alt.value_or(QString());
    }
    return {};
}

QVariant partData(const MessageContent& block, int role) {
    if (role == AnswerParts::BlockRole)
        return QVariant::fromValue(block);
    if (const auto* image = block.as<MessageContent::Image>())
        return role == AnswerParts::UrlRole ? QVariant(image->url)
            : role == AnswerParts::AltRole  ? QVariant(QString())
                                            : QVariant();
    if (const auto* video = block.as<MessageContent::Video>())
        return role == AnswerParts::UrlRole ? QVariant(video->url) : QVariant();
    // A file that nobody has named.
    if (const auto* music = block.as<MessageContent::Music>()) {
        const QString name = QUrl(music->url).fileName();
        switch (role) {
        case AnswerParts::UrlRole: return music->url;
        case AnswerParts::FilenameRole: return name.isEmpty() ? QStringLiteral("Музыка") : name;
        case AnswerParts::MimetypeRole: return QStringLiteral("audio/mpeg");
        default: return {};
        }
    }
    if (const auto* file = block.as<MessageContent::File>()) {
        switch (role) {
        case AnswerParts::UrlRole: return file->url;
        case AnswerParts::FilenameRole: return file->filename;
        case AnswerParts::MimetypeRole: return file->mimetype;
        default: return {};
        }
    }
    if (const auto* search = block.as<MessageContent::SearchInProgress>())
        return role == AnswerParts::QueryRole ? QVariant(search->query) : QVariant();
    if (const auto* generating = block.as<MessageContent::Generating>())
        return role == AnswerParts::WhatRole ? QVariant(generating->kind) : QVariant();
    return {};
}

}
