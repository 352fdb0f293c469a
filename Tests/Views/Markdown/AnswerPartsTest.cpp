#include "Markdown/AnswerParts.h"
#include "Markdown/CodeParts.h"
#include "Markdown/MarkdownTable.h"
#include "Markdown/ParagraphDocument.h"
#include "Markdown/Pipeline/TableText.h"

#include "Chat/MessageListModel.h"
#include "Printing.h"

#include <QAbstractItemModelTester>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTextBlock>
#include <QTextDocument>

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;

// Everything that a view can learn of a part.
QString described(const AnswerParts& parts, int row) {
    QStringList lines;
    const QHash<int, QByteArray> roles = parts.roleNames();
    for (auto role = roles.begin(); role != roles.end(); ++role) {
        const QVariant value = parts.data(parts.index(row), role.key());
        if (role.key() == AnswerParts::RevisionRole || !value.isValid())
            continue;
        QString text = value.toString();
        if (role.key() == AnswerParts::TableRole)
            text = Markdown::tableAsTsv(value.value<MarkdownTable>().content());
        lines.append(QString::fromLatin1(role.value()) + u'=' + text);
    }
    lines.sort();
    for (const Paragraph& paragraph : parts.paragraphs(row)) {
        QString line = QString::number(static_cast<int>(paragraph.kind)) + (paragraph.continues ? u"+"_s : u""_s);
        for (const Paragraph::Piece& piece : paragraph.pieces)
            line += u" [%1 %2]"_s.arg(static_cast<int>(piece.style)).arg(piece.text);
        lines.append(line);
    }
    return lines.join(u'\n');
}

QStringList described(const AnswerParts& parts) {
    QStringList rows;
    for (int row = 0; row < parts.count(); ++row)
        rows.append(described(parts, row));
    return rows;
}

// What a view knows that looks at nothing but what it is told has changed.
class Mirror {
public:
    explicit Mirror(AnswerParts& parts)
        : rows(described(parts))
        , m_tester(&parts, QAbstractItemModelTester::FailureReportingMode::Fatal) {
        QObject::connect(&parts, &AnswerParts::rowsInserted, &m_context, [&](const QModelIndex&, int first, int last) {
            for (int row = first; row <= last; ++row)
                rows.insert(row, described(parts, row));
        });
        QObject::connect(&parts, &AnswerParts::rowsRemoved, &m_context,
            [&](const QModelIndex&, int first, int last) { rows.remove(first, last - first + 1); });
        QObject::connect(
            &parts, &AnswerParts::dataChanged, &m_context, [&](const QModelIndex& first, const QModelIndex& last) {
                for (int row = first.row(); row <= last.row(); ++row)
                    rows[row] = described(parts, row);
                changed += last.row() - first.row() + 1;
            });
    }

    QStringList rows;
    int changed = 0;

private:
    QAbstractItemModelTester m_tester;
    QObject m_context;
};

// A text item's document, filled as in the view.
class Shown {
public:
    Shown(AnswerParts& parts, int row)
        : m_row(row) {
        QQmlComponent component(&m_engine);
        component.setData("import QtQuick\nTextEdit { width: 400 }", {});
        m_item.reset(qobject_cast<QQuickItem*>(component.create()));
        m_paragraphs.setStyle(&m_style);
        m_paragraphs.setDocument(m_item->property("textDocument").value<QQuickTextDocument*>());
        m_paragraphs.setProperty("parts", QVariant::fromValue(&parts));
        m_paragraphs.setProperty("row", row);
        m_paragraphs.componentComplete();
        m_parts = &parts;
    }

    void update() { m_paragraphs.setRevision(m_parts->data(m_parts->index(m_row), AnswerParts::RevisionRole).toInt()); }

    QString described() const {
        QString all;
        const QTextDocument* document = m_paragraphs.document()->textDocument();
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
            const QTextBlockFormat format = block.blockFormat();
            all += u"\n%1 %2 %3 %4:"_s.arg(format.topMargin())
                       .arg(format.leftMargin())
                       .arg(format.textIndent())
                       .arg(format.lineHeight());
            for (auto each = block.begin(); !each.atEnd(); ++each) {
                const QTextCharFormat characters = each.fragment().charFormat();
                all += u" [%1 %2 %3 %4 %5 %6]"_s.arg(each.fragment().text(), characters.fontFamilies().toString(),
                    characters.property(QTextFormat::FontPixelSize).toString(),
                    QString::number(characters.fontWeight()), QString::number(characters.fontItalic()),
                    characters.foreground().color().name(QColor::HexArgb));
            }
        }
        return all;
    }

    TextStyle& style() { return m_style; }
    ParagraphDocument& paragraphs() { return m_paragraphs; }

private:
    QQmlEngine m_engine;
    std::unique_ptr<QQuickItem> m_item;
    TextStyle m_style;
    ParagraphDocument m_paragraphs;
    AnswerParts* m_parts = nullptr;
    int m_row;
};

QString randomText(std::mt19937& dice, int pieces) {
    static const QStringList fragments{u"# Заголовок\n"_s, u"## Ещё **один**\n\n"_s, u"Слово "_s, u"**жирно** "_s,
        u"*курсив* "_s, u"`код` "_s, u"**"_s, u"`"_s, u"\n"_s, u"\n\n"_s, u"- пункт\n"_s, u"3. третий\n"_s,
        u"```cpp\nint x;\n"_s, u"```\n"_s, u"$a_1$ "_s, u"$$x^2$$\n"_s, u"$"_s, u"| а | б |\n|---|:-:|\n"_s,
        u"| 1 | 2 |\n"_s, u"![вид](https://example.org/1.png)\n"_s, u"[[1]](https://example.org/a) "_s,
        u"длинный текст, который всё не кончается, "_s.repeated(30), u"😀"_s, u"→ "_s, u"\u2029"_s};
    QString text;
    for (int i = 0; i < pieces; ++i)
        text += fragments.at(static_cast<qsizetype>(dice() % static_cast<unsigned>(fragments.size())));
    return text;
}

TEST(AnswerParts, GrowthGivesTheRowsOfAFreshOneAndTellsAllOfIt) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::mt19937 dice(seed);
        const QString text = randomText(dice, 40);
        AnswerParts parts;
        parts.setStreaming(true);
        Mirror mirror(parts);
        const bool isShared = seed % 2 == 0; // with who writes it
        SharedText shared;
        for (qsizetype to = 0; to < text.size();) {
            const qsizetype from = to;
            to = std::min<qsizetype>(text.size(), to + 1 + static_cast<qsizetype>(dice() % 60));
            shared.append(QStringView(text).sliced(from, to - from));
            parts.setContent(isShared ? QVariant::fromValue(shared) : QVariant(text.first(to)));
            AnswerParts fresh;
            fresh.setStreaming(true);
            fresh.setContent(text.first(to));
            ASSERT_EQ(described(parts), described(fresh)) << "seed " << seed << " at " << to;
            ASSERT_EQ(mirror.rows, described(parts)) << "seed " << seed << " at " << to;
            ASSERT_EQ(parts.citations(), fresh.citations());
        }
        parts.setContent(randomText(dice, 10)); // another one
        parts.setStreaming(false);
        ASSERT_EQ(mirror.rows, described(parts)) << "seed " << seed;
    }
}

// The model may rest before it goes on.
TEST(AnswerParts, WhatIsClosedIsNotOpenAnyMoreAtTheEnd) {
    AnswerParts parts;
    parts.setStreaming(true);
    Mirror mirror(parts);
    QString text;
    const auto openAfter = [&](const QString& piece) {
        parts.setContent(text += piece);
        EXPECT_EQ(mirror.rows, described(parts)) << text.toStdString();
        return parts.data(parts.index(parts.count() - 1), AnswerParts::IsOpenRole).toBool();
    };
    EXPECT_TRUE(openAfter(u"$$x^2$"_s));
    EXPECT_FALSE(openAfter(u"$"_s));
    EXPECT_TRUE(openAfter(u"\n\nи"_s)); // words never close
    EXPECT_TRUE(openAfter(u"\n```mermaid\nflowchart TD\n A --> B\n"_s));
    EXPECT_FALSE(openAfter(u"```"_s));
    EXPECT_FALSE(openAfter(u"\n"_s));
    EXPECT_TRUE(openAfter(u"$$\ny"_s));
    EXPECT_FALSE(openAfter(u"\n$$"_s));
    EXPECT_TRUE(openAfter(u"\n```py\na = 1\n``"_s));
    EXPECT_FALSE(openAfter(u"`"_s));
}

TEST(AnswerParts, GrowthTouchesTheEndOnly) {
    AnswerParts parts;
    parts.setStreaming(true);
    QString text = u"Предложение на пару строк, чтобы было что читать.\n\n"_s.repeated(2000);
    parts.setContent(text);
    ASSERT_GT(parts.count(), 20);
    Mirror mirror(parts);
    for (int i = 0; i < 100; ++i)
        parts.setContent(text += u"ещё слово "_s);
    EXPECT_LE(mirror.changed, 200);
}

// Nothing in it is finished as long as no line ends, but most of it cannot become anything else.
TEST(AnswerParts, AHugeOpenParagraphIsTouchedAtItsEndOnly) {
    std::mt19937 dice(5);
    const QStringList fragments{u"слово "_s, u"и ещё одно слово, "_s, u"**жирно** "_s, u"`код` "_s, u"*курсив* "_s,
        u"**"_s, u"`"_s, u"два "_s, u"слов"_s, u"слитно"_s.repeated(100)};
    QString text;
    AnswerParts parts;
    parts.setStreaming(true);
    Mirror mirror(parts);
    while (text.size() < 60'000) {
        for (unsigned i = 0; i < 1 + dice() % 30; ++i)
            text += fragments.at(static_cast<qsizetype>(dice() % static_cast<unsigned>(fragments.size())));
        parts.setContent(text);
        AnswerParts fresh;
        fresh.setStreaming(true);
        fresh.setContent(text);
        ASSERT_EQ(described(parts), described(fresh)) << text.size();
        ASSERT_EQ(mirror.rows, described(parts)) << text.size();
    }
    text = u"**жирно** и `код` "_s.repeated(4000);
    parts.setContent(text);
    mirror.changed = 0;
    for (int i = 0; i < 100; ++i)
        parts.setContent(text += u"**ещё** слово "_s);
    EXPECT_LE(mirror.changed, 300);
}

// Each part of it is found without making all the others again.
TEST(AnswerParts, AHugeParagraphThatGrowsIsAsAFreshOneAndTouchesItsEndOnly) {
    const QStringList fragments{u"слово и ещё "_s.repeated(40), u"**жирно** "_s, u"*курсив* "_s,
        u"`код` "_s.repeated(90), u"$a_1$ "_s.repeated(30), u"😀 "_s};
    for (unsigned seed = 1; seed <= 6; ++seed) {
        std::mt19937 dice(seed);
        AnswerParts parts;
        parts.setStreaming(true);
        QString text = u"слово и "_s.repeated(6000);
        parts.setContent(text);
        Mirror mirror(parts);
        const auto grow = [&](const QString& piece) {
            parts.setContent(text += piece);
            AnswerParts fresh;
            fresh.setStreaming(true);
            fresh.setContent(text);
            ASSERT_EQ(mirror.rows, described(fresh)) << "seed " << seed << " at " << text.size();
        };
        grow(fragments.at(4)); // it becomes one of another kind
        mirror.changed = 0;
        for (int i = 0; i < 40; ++i)
            grow(fragments.at(static_cast<qsizetype>(dice() % static_cast<unsigned>(fragments.size()))));
        EXPECT_LE(mirror.changed, 80);
        for (const QString& marker : {u"`"_s, u"**"_s, u"$"_s, u"x"_s, u"$"_s, u"**"_s, u"`"_s, u"\n\nконец"_s})
            grow(marker);
    }
}

TEST(AnswerParts, APartHasNoMoreFormulasThanCanBeMadeAtOnce) {
    AnswerParts parts;
    parts.setContent(u"$x$ "_s.repeated(1500));
    qsizetype formulas = 0;
    for (int row = 0; row < parts.count(); ++row) {
        const std::vector<Paragraph::Piece> pieces = parts.paragraphs(row).front().pieces;
        const auto own = std::ranges::count(pieces, Paragraph::Style::formula, &Paragraph::Piece::style);
        EXPECT_LE(own, mostFormulas);
        formulas += own;
    }
    EXPECT_EQ(formulas, 1500);
}

TEST(AnswerParts, APartIsNeverLongAndAHugeParagraphIsCutBetweenWords) {
    AnswerParts parts;
    parts.setContent(u"слово "_s.repeated(10000));
    ASSERT_GT(parts.count(), 5);
    QString whole;
    for (int row = 0; row < parts.count(); ++row) {
        EXPECT_LE(parts.lengthOf(row), longestPart);
        EXPECT_TRUE(parts.between(row, 0, row, parts.lengthOf(row)).startsWith(u"слово"));
        EXPECT_EQ(parts.data(parts.index(row), AnswerParts::GapRole).toDouble(), 0);
    }
    EXPECT_EQ(parts.plainText(), u"слово "_s.repeated(10000).trimmed());
}

TEST(AnswerParts, AFormulaBringsTheRoomAroundItAlong) {
    AnswerParts parts;
    parts.setContent(u"Сначала:\n\n$$y$$\n\nзатем\n\n```\na\n```"_s);
    ASSERT_EQ(parts.count(), 4);
    const auto gap = [&](int row) { return parts.data(parts.index(row), AnswerParts::GapRole).toDouble(); };
    EXPECT_EQ(gap(1), 0);
    EXPECT_EQ(gap(2), 0);
    EXPECT_GT(gap(3), 0);
}

TEST(AnswerParts, ReadsAsItIsShown) {
    AnswerParts parts;
    parts.setContent(u"# Итог\nСлово **жирно** и `код`, где $x_1$ мало.\n\n- раз\n- два\n\n```py\na = 1\n\nb\n```\n| А "
                     u"| Б |\n|---|---|\n"
                     u"| 1 | **2** |\n\n$$y$$"_s);
    EXPECT_EQ(parts.plainText(),
        u"Итог\n\nСлово жирно и код, где $x_1$ мало.\n\n• раз\n• два\n\na = 1\n\nb\n\nА\tБ\n1\t2\n\n$$y$$"_s);
    // From the middle of a paragraph, where a formula is one character, into the code.
    EXPECT_EQ(parts.between(1, 23, 3, 3), u"$x_1$ мало.\n\n• раз\n• два\n\na ="_s);
    EXPECT_EQ(parts.beginning(), u"Итог"_s);
    QStringList kinds;
    for (int row = 0; row < parts.count(); ++row)
        kinds.append(parts.data(parts.index(row), AnswerParts::KindRole).toString());
    EXPECT_THAT(kinds, ElementsAre("text", "text", "text", "code", "table", "latex"));
}

TEST(AnswerParts, ShowsTheBlocksOfAMessageAsTheyComeAndGo) {
    MessageListModel list;
    ChatMessage message;
    message.id = 7;
    message.role = ChatMessage::Role::ai;
    message.content = std::vector<MessageContent>{{MessageContent::Thinking{u"мысль"_s}},
        {MessageContent::Text{u"До"_s}}, {MessageContent::SearchInProgress{u"погода"_s}}};
    list.append({message});
    AnswerParts parts;
    Mirror mirror(parts);
    const auto take = [&] { parts.setContent(list.data(list.index(0), MessageListModel::ContentRole)); };
    const auto kinds = [&] {
        take();
        QStringList all;
        for (int row = 0; row < parts.count(); ++row)
            all.append(parts.data(parts.index(row), AnswerParts::KindRole).toString());
        EXPECT_EQ(mirror.rows, described(parts));
        return all.join(u' ');
    };
    EXPECT_EQ(kinds(), u"text searching"_s);
    EXPECT_EQ(parts.data(parts.index(1), AnswerParts::QueryRole), u"погода"_s);
    list.update(0, [](ChatMessage& shown) {
        shown.content->pop_back();
        shown.content->push_back({MessageContent::Image{u"https://example.org/1.png"_s}});
        shown.content->push_back({MessageContent::Unknown{}});
        shown.content->push_back({MessageContent::Text{u"После"_s}});
        return true;
    });
    EXPECT_EQ(kinds(), u"text image text"_s);
    list.update(0, [](ChatMessage& shown) {
        shown.content->at(1).as<MessageContent::Text>()->text += u"\n\n$$x$$"_s;
        return true;
    });
    EXPECT_EQ(kinds(), u"text latex image text"_s);
    EXPECT_EQ(parts.markdown(), u"До\n\n$$x$$\nПосле"_s);
    list.update(0, [](ChatMessage& shown) {
        shown.content = std::vector<MessageContent>{{MessageContent::Music{u"https://example.org/a/песня.ogg?x=1"_s}}};
        return true;
    });
    EXPECT_EQ(kinds(), u"music"_s);
    EXPECT_EQ(parts.data(parts.index(0), AnswerParts::FilenameRole), u"песня.ogg"_s);
}

// Whatever ends its lines: what is shown is never made anew.
TEST(CodeParts, GrowsWithTheTextThatItShares) {
    SharedText code;
    CodeParts parts;
    parts.setOpen(true);
    int resets = 0;
    QObject::connect(&parts, &CodeParts::modelReset, [&] { ++resets; });
    QString shown;
    for (int line = 0; line < 600; ++line) {
        const bool hasReturns = line > 300;
        code.append(u"let a = %1;"_s.arg(line) + (hasReturns ? u"\r"_s : u""_s));
        parts.setCode(QVariant::fromValue(code));
        code.append(u"\n");
        parts.setCode(QVariant::fromValue(code));
        shown += u"let a = %1;\n"_s.arg(line);
    }
    EXPECT_EQ(parts.text(), shown);
    EXPECT_EQ(resets, 1);
    EXPECT_GT(parts.count(), 1);
    EXPECT_EQ(parts.between(0, 0, parts.count() - 1, parts.lengthOf(parts.count() - 1)), shown);
    EXPECT_EQ(parts.slice(4, 5), u"a"_s);
    EXPECT_EQ(parts.code().toString(), code.toString());
    parts.setCode(u"let a = 0;"_s);
    EXPECT_EQ(parts.text(), u"let a = 0;"_s);
}

TEST(ParagraphDocument, GrownInAnyPiecesIsAsWrittenAtOnce) {
    for (unsigned seed = 1; seed <= 15; ++seed) {
        std::mt19937 dice(seed);
        const QString text = u"Начало. "_s + randomText(dice, 30);
        AnswerParts parts;
        parts.setContent(text.first(1));
        Shown grown(parts, 0);
        for (qsizetype to = 1; to < text.size();) {
            to = std::min<qsizetype>(text.size(), to + 1 + static_cast<qsizetype>(dice() % 40));
            parts.setContent(text.first(to));
            grown.update();
            const Shown fresh(parts, 0);
            ASSERT_EQ(grown.described(), fresh.described()) << "seed " << seed << " at " << to;
        }
        // A place for each formula, on a line of the text.
        qsizetype formulas = 0;
        for (const Paragraph& paragraph : parts.paragraphs(0)) {
            for (const Paragraph::Piece& piece : paragraph.pieces)
                formulas += piece.style == Paragraph::Style::formula;
        }
        EXPECT_EQ(grown.paragraphs().formulas()->rowCount(), formulas);
    }
}

TEST(ParagraphDocument, KeepsRoomForAFormulaAboveAndBelowTheBaseline) {
    AnswerParts parts;
    parts.setContent(u"Слово и $x$ в строке"_s);
    Shown shown(parts, 0);
    ParagraphDocument& paragraphs = shown.paragraphs();
    const QTextDocument* document = paragraphs.document()->textDocument();
    paragraphs.setFormulaSize(0, 40, 30, 4);
    paragraphs.findPlaces();
    const PlaceListModel::Place place = paragraphs.formulas()->places().front();
    const QTextLine line = document->firstBlock().layout()->lineAt(0);
    EXPECT_EQ(place.rect.width(), 40);
    EXPECT_NEAR(line.ascent(), 30, 1);
    EXPECT_NEAR(place.rect.bottom(), line.ascent(), 1);
    paragraphs.setFormulaSize(0, 40, 20, 18);
    paragraphs.findPlaces();
    EXPECT_NEAR(document->firstBlock().layout()->lineAt(0).descent(), 18, 2);
    // A piece that follows leaves it as large.
    parts.setContent(u"Слово и $x$ в строке дальше"_s);
    shown.update();
    EXPECT_EQ(paragraphs.formulas()->places().front().rect.width(), 40);
}

TEST(ParagraphDocument, TakesTheSizesOfManyFormulasAtOnce) {
    AnswerParts parts;
    parts.setContent(u"$x$ и "_s.repeated(200));
    Shown shown(parts, 0);
    ParagraphDocument& paragraphs = shown.paragraphs();
    int changes = 0;
    QObject::connect(paragraphs.document()->textDocument(), &QTextDocument::contentsChanged, [&] { ++changes; });
    for (int i = 0; i < 200; ++i)
        paragraphs.setFormulaSize(i, 40, 30, 4);
    QCoreApplication::processEvents();
    EXPECT_EQ(changes, 1); // each lays the paragraph out anew
    for (const PlaceListModel::Place& place : paragraphs.formulas()->places())
        ASSERT_EQ(place.rect.width(), 40);
}

}
}
