#pragma once

#include "Markdown/MarkdownTable.h"
#include "Markdown/Pipeline/BlockParser.h"

#include <QVariant>

namespace Korvi {

// Makes the values that views are given, for QML that is not given any.
class MarkdownValues : public QObject {
    Q_OBJECT

public:
    // The table that the text begins with.
    Q_INVOKABLE QVariant table(const QString& text) const {
        for (const Markdown::Block& block : Markdown::parseBlocks(text)) {
            if (const auto* content = block.as<Markdown::Block::Table>())
                return QVariant::fromValue(MarkdownTable(*content));
        }
        return QVariant::fromValue(MarkdownTable());
    }
};

}
