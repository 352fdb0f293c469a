#include "TableText.h"

namespace Korvi::Markdown {

QStringList parseTableRow(QStringView line) {
    return {line.toString()};
}
std::vector<Alignment> parseTableAlignments(QStringView) {
    return {Alignment::leading};
}
QString cleanLatex(QString text) {
    return text;
}
QString tableAsTsv(const Block::Table& table) {
    return table.headers.join('\t');
}

}
