#include "ParagraphDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QImage>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QTextLayout>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace Korvi {

namespace {

const QString formulaImage = QStringLiteral("korvi:formula");
constexpr std::size_t mostCodePlaces = 500; // of one text; where there are more, font and colour tell them

}

ParagraphDocument::ParagraphDocument(QObject* parent)
    : QObject(parent) {}

void ParagraphDocument::setDocument(QQuickTextDocument* document) {
    if (document == m_document)
        return;
    m_document = document;
    if (m_document) {
        m_document->textDocument()->setUndoRedoEnabled(false);
        QImage nothing(1, 1, QImage::Format_ARGB32_Premultiplied);
        nothing.fill(Qt::transparent);
        m_document->textDocument()->addResource(QTextDocument::ImageResource, QUrl(formulaImage), nothing);
    }
    setAll();
    emit documentChanged();
}

void ParagraphDocument::setRevision(int revision) {
    if (revision == m_revision)
        return;
    m_revision = revision;
    update();
    emit revisionChanged();
}

void ParagraphDocument::setStyle(TextStyle* style) {
    if (style == m_style)
        return;
    if (m_style)
        m_style->disconnect(this);
    m_style = style;
    if (m_style)
        connect(m_style, &TextStyle::changed, this, &ParagraphDocument::setAll);
    setAll();
    emit styleChanged();
}

void ParagraphDocument::componentComplete() {
    m_complete = true;
    setAll();
}

void ParagraphDocument::setAll() {
    if (!m_complete || !m_document || !m_style || !m_parts)
        return;
    const std::vector<Paragraph> paragraphs = m_parts->paragraphs(m_row);
    if (paragraphs.empty() && m_paragraphs.empty())
        return;
    emit aboutToChange();
    rewrite(paragraphs, 0, 0);
    emit changed();
}

void ParagraphDocument::update() {
    if (!m_complete || !m_document || !m_style || !m_parts)
        return;
    const std::vector<Paragraph> paragraphs = m_parts->paragraphs(m_row);
    const auto [old, now] =
        std::mismatch(m_paragraphs.begin(), m_paragraphs.end(), paragraphs.begin(), paragraphs.end());
    if (old == m_paragraphs.end() && now == paragraphs.end())
        return;
    auto first = static_cast<std::size_t>(now - paragraphs.begin());
    qsizetype from = 0;
    if (now == paragraphs.end() && first > 0) { // shorter by some
        --first;
        from = paragraphs[first].length();
    } else if (old != m_paragraphs.end() && now != paragraphs.end() && old->kind == now->kind &&
        old->continues == now->continues) {
        from = commonLength(*old, *now);
    }
    emit aboutToChange();
    rewrite(paragraphs, first, from);
    emit changed();
}

// Everything behind that character of that paragraph.
void ParagraphDocument::rewrite(const std::vector<Paragraph>& paragraphs, std::size_t first, qsizetype from) {
    const QScopedValueRollback guard(m_rewriting, true);
    QTextDocument* document = m_document->textDocument();
    QTextCursor cursor(document);
    cursor.beginEditBlock();
    std::size_t next = first;
    if (first < m_paragraphs.size() || first == 0) {
        cursor.setPosition(document->findBlockByNumber(static_cast<int>(first)).position() + static_cast<int>(from));
        cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        if (first < paragraphs.size()) {
            if (from == 0)
                cursor.setBlockFormat(blockFormat(paragraphs, first));
            insert(cursor, paragraphs[first], from);
        }
        ++next;
    } else {
        cursor.movePosition(QTextCursor::End);
    }
    for (; next < paragraphs.size(); ++next) {
        cursor.insertBlock(blockFormat(paragraphs, next));
        insert(cursor, paragraphs[next], 0);
    }
    cursor.endEditBlock();
    m_paragraphs = paragraphs;
    findFormulas();
    m_rewriting = false;
    findPlaces();
}

QTextBlockFormat ParagraphDocument::blockFormat(const std::vector<Paragraph>& paragraphs, std::size_t number) const {
    return m_style->blockFormat(paragraphs[number], number > 0 ? &paragraphs[number - 1] : nullptr);
}

void ParagraphDocument::insert(QTextCursor& cursor, const Paragraph& paragraph, qsizetype from) const {
    for (const Paragraph::Piece& piece : paragraph.pieces) {
        const qsizetype length = piece.length();
        if (from >= length) {
            from -= length;
            continue;
        }
        if (piece.style == Paragraph::Style::formula) {
            cursor.insertText(QString(QChar::ObjectReplacementCharacter), formulaFormat(sizeOf(piece.text)));
        } else if (piece.style == Paragraph::Style::marker && from == 0) {
            cursor.insertText(piece.text.chopped(1), m_style->charFormat(paragraph.kind, piece.style));
            cursor.insertText(piece.text.last(1), m_style->markerEndFormat(paragraph.kind, piece.text));
        } else {
            cursor.insertText(piece.text.sliced(from), m_style->charFormat(paragraph.kind, piece.style));
        }
        from = 0;
    }
}

// Equal formulas are equally large; one that was never seen is taken to be as wide as its text.
ParagraphDocument::Size ParagraphDocument::sizeOf(const QString& formula) const {
    if (const auto known = m_sizes.constFind(formula); known != m_sizes.constEnd())
        return *known;
    const QFontMetricsF metrics(m_style->charFormat(Paragraph::Kind::body, Paragraph::Style::base).font());
    return {metrics.horizontalAdvance(formula), metrics.ascent(), metrics.descent()};
}

// An image that stands in the middle reaches half its height and a quarter of its font's x-height above the baseline.
QTextCharFormat ParagraphDocument::formulaFormat(const Size& formula) const {
    QTextImageFormat format;
    format.merge(m_style->charFormat(Paragraph::Kind::body, Paragraph::Style::formula));
    format.setName(formulaImage);
    format.setWidth(std::max(1.0, std::round(formula.width)));
    format.setHeight(std::max(1.0, std::round(formula.ascent + formula.descent)));
    format.setVerticalAlignment(QTextCharFormat::AlignMiddle);
    QFont font = format.font();
    font.setPixelSize(100);
    const double size = std::round(2 * (formula.ascent - formula.descent) * 100 / QFontMetricsF(font).xHeight());
    format.setProperty(QTextFormat::FontPixelSize, static_cast<int>(std::clamp(size, 1.0, 400.0)));
    return format;
}

void ParagraphDocument::setFormulaSize(int formula, qreal width, qreal ascent, qreal descent) {
    if (formula < 0 || formula >= static_cast<int>(m_found.size()) || width <= 0)
        return;
    Formula& known = m_found[static_cast<std::size_t>(formula)];
    const Size size{width, ascent, descent};
    m_sizes.insert(known.text, size);
    if (known.size == size)
        return;
    known.size = size;
    known.isNew = true;
    if (m_rewriting) // those that come while formulas are given their places are looked at right after that
        return;
    if (!m_placesOld)
        QMetaObject::invokeMethod(this, &ParagraphDocument::findPlaces, Qt::QueuedConnection);
    m_placesOld = true;
}

// All at once: each change lays the whole paragraph out.
bool ParagraphDocument::applySizes() {
    const auto isNew = [](const Formula& formula) { return formula.isNew; };
    if (std::none_of(m_found.begin(), m_found.end(), isNew))
        return false;
    QTextCursor cursor(m_document->textDocument());
    cursor.beginEditBlock();
    for (Formula& formula : m_found) {
        if (!std::exchange(formula.isNew, false))
            continue;
        cursor.setPosition(formula.position);
        cursor.setPosition(formula.position + 1, QTextCursor::KeepAnchor);
        cursor.setCharFormat(formulaFormat(formula.size));
    }
    cursor.endEditBlock();
    return true;
}

void ParagraphDocument::findFormulas() {
    std::vector<Formula> found;
    m_hasCode = false;
    QTextBlock block = m_document->textDocument()->firstBlock();
    for (const Paragraph& paragraph : m_paragraphs) {
        int position = block.position();
        for (const Paragraph::Piece& piece : paragraph.pieces) {
            m_hasCode = m_hasCode || piece.style == Paragraph::Style::code;
            if (piece.style == Paragraph::Style::formula) {
                found.push_back({piece.text, position, sizeOf(piece.text)});
            }
            position += static_cast<int>(piece.length());
        }
        block = block.next();
    }
    m_found = std::move(found);
}

void ParagraphDocument::findPlaces() {
    if (m_rewriting) // the text item has another height, and says so in the midst of it
        return;
    const QScopedValueRollback guard(m_rewriting, true);
    m_placesOld = false;
    applySizes();
    tellPlaces();
    if (applySizes())
        tellPlaces();
}

void ParagraphDocument::tellPlaces() {
    std::vector<PlaceListModel::Place> formulas;
    std::vector<PlaceListModel::Place> codes;
    if (m_document && m_style && (!m_found.empty() || m_hasCode)) {
        QTextDocument* document = m_document->textDocument();
        QAbstractTextDocumentLayout* layout = document->documentLayout();
        std::size_t formula = 0;
        QTextBlock block = document->firstBlock();
        for (const Paragraph& paragraph : m_paragraphs) {
            const QPointF origin = layout->blockBoundingRect(block).topLeft();
            std::optional<QFontMetricsF> metrics; // of code
            int begin = 0;
            for (const Paragraph::Piece& piece : paragraph.pieces) {
                const int end = begin + static_cast<int>(piece.length());
                if (piece.style == Paragraph::Style::formula && formula < m_found.size()) {
                    const Formula& known = m_found[formula++];
                    const QTextLine line = block.layout()->lineForTextPosition(begin);
                    if (line.isValid()) {
                        const double x = std::min(line.cursorToX(begin), line.cursorToX(end));
                        const double baseline = origin.y() + line.y() + line.ascent();
                        formulas.push_back({known.text,
                            QRectF(origin.x() + x, baseline - known.size.ascent, known.size.width, known.size.ascent)});
                    }
                } else if (piece.style == Paragraph::Style::code) {
                    if (!metrics)
                        metrics.emplace(m_style->charFormat(paragraph.kind, piece.style).font());
                    for (int at = begin; at < end;) {
                        const QTextLine line = block.layout()->lineForTextPosition(at);
                        if (!line.isValid())
                            break;
                        const int to = std::min(end, line.textStart() + line.textLength());
                        const double x1 = line.cursorToX(at);
                        const double x2 = line.cursorToX(to);
                        codes.push_back({{},
                            QRectF(origin.x() + std::min(x1, x2),
                                origin.y() + line.y() + line.ascent() - metrics->ascent(), std::abs(x2 - x1),
                                metrics->height())});
                        if (to <= at)
                            break;
                        at = to;
                    }
                }
                begin = end;
            }
            block = block.next();
        }
    }
    m_formulas.assign(std::move(formulas));
    m_codePlaces.assign(codes.size() <= mostCodePlaces ? std::move(codes) : std::vector<PlaceListModel::Place>());
}

}
