#pragma once

#include "Pipeline/Block.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace Korvi {

// A table on its way from a model to its view: passing it on copies no cell.
struct MarkdownTable {
    Q_GADGET
    QML_VALUE_TYPE(markdownTable)

public:
    MarkdownTable() = default;
    explicit MarkdownTable(Markdown::Block::Table content)
        : m_content(std::make_shared<const Markdown::Block::Table>(std::move(content))) {}

    const Markdown::Block::Table& content() const {
        static const Markdown::Block::Table empty;
        return m_content ? *m_content : empty;
    }
    bool operator==(const MarkdownTable& other) const = default; // the same one, not one with the same cells

private:
    std::shared_ptr<const Markdown::Block::Table> m_content;
};

}
