#include "BlockParser.h"

#include "LineParser.h"

namespace Korvi::Markdown {

using namespace Qt::Literals;

std::vector<Block> parseBlocks(QStringView text) {
    QString unixLines;
    if (text.contains(QStringView(u"\r\n"))) {
        unixLines = text.toString().replace("\r\n"_L1, "\n"_L1);
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
    parser.finish();

    std::vector<Block> blocks;
    for (const BlockPlace& place : places)
        appendBlocks(text, place, codeParts, blocks);
    return blocks;
}

}
