#include "BlockParser.h"

#include "CleaningMachines.h"
#include "LineParser.h"

namespace Korvi::Markdown {

std::vector<Block> parseBlocks(QStringView text, bool* isTailOpen) {
    QString unixLines;
    if (text.contains(u'\r')) {
        ReturnDropper().read(text, 0, text.size(), unixLines);
        text = unixLines;
    }
    std::vector<BlockPlace> places;
    std::vector<Place> codeParts;
    LineParser parser(places, codeParts);
    for (qsizetype from = 0; from <= text.size();) {
        const qsizetype newLine = text.indexOf(u'\n', from);
        const qsizetype to = newLine < 0 ? text.size() : newLine;
        parser.read(text, {from, to});
        from = to + 1;
    }
    if (isTailOpen)
        *isTailOpen = parser.isOpen();
    parser.finish();

    std::vector<Block> blocks;
    for (const BlockPlace& place : places)
        appendBlocks(text, place, codeParts, blocks);
    return blocks;
}

}
