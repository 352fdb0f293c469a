#include "MarkdownAsHtml.h"

#include "BlockParser.h"
#include "Cleaners.h"
#include "Inline.h"
#include "Match.h"
#include "TableText.h"
#include "WebPage.h"

namespace Korvi {

using namespace Qt::Literals;
using Markdown::Alignment;
using Markdown::Block;
using Markdown::Style;

namespace {

const QString style = u"body{font:11pt/1.55 Inter,sans-serif;color:#1f1f1d;margin:0}"
                      "h1{font-size:20pt}h2{font-size:16pt}h3{font-size:13pt}h4,h5,h6{font-size:11pt}"
                      "h1,h2,h3,h4,h5,h6{line-height:1.25;margin:1.2em 0 .4em;break-after:avoid}"
                      "p,ul,ol{margin:.5em 0}li{margin:.2em 0}"
                      "pre,code{font-family:'JetBrains Mono',monospace;font-size:9.5pt;font-variant-ligatures:none}"
                      "pre{background:#f6f6f3;border-radius:6px;padding:10px 12px;white-space:pre-wrap;"
                      "overflow-wrap:anywhere}code{background:#f3f1ee;border-radius:3px;padding:0 3px}"
                      "pre code{background:none;padding:0}"
                      "table{border-collapse:collapse;margin:.8em 0;break-inside:avoid}"
                      "th,td{border-bottom:1px solid #d9d9d4;padding:4px 10px 4px 0;text-align:left;vertical-align:top}"
                      ".block{text-align:center;margin:.8em 0}.mermaid{text-align:center;break-inside:avoid}\n"_s;

// Formulas and diagrams stand in the page as text; what cannot be drawn stays that.
const QString script = uR"(
(async () => {
    for (const place of document.querySelectorAll('[data-tex]')) {
        try {
            katex.render(place.dataset.tex, place,
                { displayMode: place.classList.contains('block'), throwOnError: false, trust: false })
        } catch (error) {}
    }
    if (window.mermaid) {
        mermaid.initialize({ startOnLoad: false, securityLevel: 'strict', theme: 'default' })
        let number = 0
        for (const place of document.querySelectorAll('.mermaid')) {
            try {
                place.innerHTML = (await mermaid.render('diagram' + ++number, place.textContent)).svg
            } catch (error) {}
        }
    }
    await document.fonts.ready
    document.body.dataset.ready = '1'
})()
)"_s;

QString formula(const QString& tex, bool isBlock) {
    const QString escaped = tex.toHtmlEscaped();
    return isBlock ? u"<div class=\"block\" data-tex=\"%1\">%1</div>\n"_s.replace(u"%1"_s, escaped)
                   : u"<span data-tex=\"%1\">%1</span>"_s.replace(u"%1"_s, escaped);
}

QString styled(const QString& text) {
    QString html;
    for (const Markdown::Run& run : Markdown::parseInlineMarkdown(text)) {
        const QString escaped = run.text.toHtmlEscaped();
        switch (run.style) {
        case Style::base: html += escaped; break;
        case Style::bold: html += u"<b>"_s + escaped + u"</b>"_s; break;
        case Style::italic: html += u"<i>"_s + escaped + u"</i>"_s; break;
        case Style::code: html += u"<code>"_s + escaped + u"</code>"_s; break;
        }
    }
    return html;
}

QString inlined(const QString& text) {
    QString html;
    for (const Markdown::TextPart& part : Markdown::parseInlineLatex(text))
        html += part.isLatex ? formula(part.content, false) : styled(part.content);
    return html;
}

QString cell(const QString& tag, const QString& text, Alignment alignment) {
    const QString align = alignment == Alignment::center ? u" style=\"text-align:center\""_s
        : alignment == Alignment::trailing               ? u" style=\"text-align:right\""_s
                                                         : QString();
    return u'<' + tag + align + u'>' + styled(Markdown::cleanLatex(text)) + u"</"_s + tag + u'>';
}

QString table(const Block::Table& table) {
    const auto row = [&](const QString& tag, const QStringList& cells) {
        QString html = u"<tr>"_s;
        for (qsizetype column = 0; column < cells.size(); ++column) {
            const auto at = static_cast<std::size_t>(column);
            html += cell(tag, cells[column], at < table.alignments.size() ? table.alignments[at] : Alignment::leading);
        }
        return html + u"</tr>\n"_s;
    };
    QString html = u"<table>\n"_s + row(u"th"_s, table.headers);
    for (const QStringList& cells : table.rows)
        html += row(u"td"_s, cells);
    return html + u"</table>\n"_s;
}

// The list that a block is an item of; empty for what is none.
QString listOf(const Block& block) {
    return block.as<Block::ListItem>() ? u"ul"_s : block.as<Block::NumberedListItem>() ? u"ol"_s : QString();
}

QString htmlOf(const Block& block) {
    return match(
        block.value,
        [](const Block::Header& header) {
            return u"<h%1>%2</h%1>\n"_s.arg(QString::number(header.level), inlined(header.content));
        },
        [](const Block::ListItem& item) { return u"<li>"_s + inlined(item.content) + u"</li>\n"_s; },
        [](const Block::NumberedListItem& item) {
            return u"<li value=\"%1\">"_s.arg(item.number) + inlined(item.content) + u"</li>\n"_s;
        },
        [](const Block::CodeBlock& code) {
            return u"<pre><code>"_s + code.code.toHtmlEscaped() + u"</code></pre>\n"_s;
        },
        [](const Block::MermaidBlock& diagram) {
            return u"<div class=\"mermaid\">"_s + diagram.code.toHtmlEscaped() + u"</div>\n"_s;
        },
        [](const Block::LatexBlock& latex) { return formula(latex.formula, true); },
        [](const Block::Paragraph& paragraph) { return u"<p>"_s + inlined(paragraph.content) + u"</p>\n"_s; },
        [](const Block::Table& rows) { return table(rows); },
        // Nothing is fetched for paper either.
        [](const Block::Image& image) {
            return u"<p>"_s + image.alt.value_or(image.url).toHtmlEscaped() + u"</p>\n"_s;
        });
}

}

QString markdownAsHtml(const QString& title, const QString& markdown) {
    QString body = u"<title>"_s + title.toHtmlEscaped() + u"</title>\n"_s;
    QString list;
    bool hasDiagram = false;
    for (const Block& block : Markdown::parseBlocks(Markdown::clean(markdown).text)) {
        if (const QString next = listOf(block); next != list) {
            if (!list.isEmpty())
                body += u"</"_s + list + u">\n"_s;
            if (!next.isEmpty())
                body += u'<' + next + u">\n"_s;
            list = next;
        }
        hasDiagram = hasDiagram || block.as<Block::MermaidBlock>();
        body += htmlOf(block);
    }
    if (!list.isEmpty())
        body += u"</"_s + list + u">\n"_s;

    const QString npm = QLatin1StringView(WebPage::origin) + u"/npm/"_s;
    QString libraries = u"<link rel=\"stylesheet\" href=\"%1katex@0.16.9/dist/katex.min.css\">\n"
                        "<script src=\"%1katex@0.16.9/dist/katex.min.js\"></script>\n"_s.arg(npm);
    if (hasDiagram)
        libraries += u"<script src=\"%1mermaid@11/dist/mermaid.min.js\"></script>\n"_s.arg(npm);
    return WebPage::assemble(libraries, style, body, script);
}

}
