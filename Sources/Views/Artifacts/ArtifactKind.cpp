#include "ArtifactKind.h"

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct Row {
    QStringView kind;
    QStringView label;
    ArtifactKind::Preview preview;
    QStringView language;
    QStringView extension;
    QStringView symbol;
};

constexpr QStringView codeSymbol = u"chevron.left.forwardslash.chevron.right";
constexpr QStringView textSymbol = u"doc.text";

constexpr Row rows[] = {
    {u"python", u"Python", ArtifactKind::NoPreview, u"python", u"py", codeSymbol},
    {u"javascript", u"JavaScript", ArtifactKind::NoPreview, u"javascript", u"js", codeSymbol},
    {u"typescript", u"TypeScript", ArtifactKind::NoPreview, u"typescript", u"ts", codeSymbol},
    {u"swift", u"Swift", ArtifactKind::NoPreview, u"swift", u"swift", codeSymbol},
    {u"html", u"HTML", ArtifactKind::Page, u"html", u"html", u"globe"},
    {u"react", u"React", ArtifactKind::NoPreview, u"javascript", u"jsx", codeSymbol},
    {u"vue", u"Vue", ArtifactKind::NoPreview, u"html", u"vue", codeSymbol},
    {u"svelte", u"Svelte", ArtifactKind::NoPreview, u"html", u"svelte", codeSymbol},
    {u"svg", u"SVG", ArtifactKind::Page, u"html", u"svg", u"photo"},
    {u"mermaid", u"Diagram", ArtifactKind::Diagram, u"", u"mmd", u"arrow.triangle.branch"},
    {u"markdown", u"Markdown", ArtifactKind::Document, u"", u"md", textSymbol},
    {u"code", u"Code", ArtifactKind::NoPreview, u"", u"txt", codeSymbol},
    // Not in the table of labels: their names say enough.
    {u"latex", u"", ArtifactKind::NoPreview, u"", u"tex", textSymbol},
};

const Row* find(const QString& kind) {
    const QString lower = kind.toLower();
    const Row* row = std::ranges::find(rows, QStringView(lower), &Row::kind);
    return row == std::end(rows) ? nullptr : row;
}

QString withCapitals(const QString& kind) {
    QString label = kind.toLower();
    bool begins = true;
    for (QChar& character : label) {
        if (begins)
            character = character.toUpper();
        begins = !character.isLetterOrNumber();
    }
    return label;
}

}

QString ArtifactKind::labelOf(const QString& kind) {
    const Row* row = find(kind);
    return row && !row->label.isEmpty() ? row->label.toString() : withCapitals(kind);
}

QString ArtifactKind::extensionOf(const QString& kind) {
    const Row* row = find(kind);
    return row ? row->extension.toString() : u"txt"_s;
}

void ArtifactKind::setName(const QString& name) {
    if (name == m_name)
        return;
    m_name = name;
    emit nameChanged();
}

ArtifactKind::Preview ArtifactKind::preview() const {
    const Row* row = find(m_name);
    return row ? row->preview : NoPreview;
}

QString ArtifactKind::language() const {
    const Row* row = find(m_name);
    return row ? row->language.toString() : m_name.toLower();
}

QString ArtifactKind::symbol() const {
    const Row* row = find(m_name);
    return (row ? row->symbol : textSymbol).toString();
}

}
