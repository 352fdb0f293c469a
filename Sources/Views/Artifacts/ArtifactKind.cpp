#include "ArtifactKind.h"

#include "Chat/ArtifactFinder.h"

#include <algorithm>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct Row {
    QStringView kind;
    ArtifactKind::Preview preview;
    QStringView language;
    QStringView extension;
    QStringView symbol;
};

constexpr QStringView codeSymbol = u"chevron.left.forwardslash.chevron.right";
constexpr QStringView textSymbol = u"doc.text";

constexpr Row rows[] = {
    {u"python", ArtifactKind::NoPreview, u"python", u"py", codeSymbol},
    {u"javascript", ArtifactKind::NoPreview, u"javascript", u"js", codeSymbol},
    {u"typescript", ArtifactKind::NoPreview, u"typescript", u"ts", codeSymbol},
    {u"swift", ArtifactKind::NoPreview, u"swift", u"swift", codeSymbol},
    {u"html", ArtifactKind::Page, u"html", u"html", u"globe"},
    {u"react", ArtifactKind::NoPreview, u"javascript", u"jsx", codeSymbol},
    {u"vue", ArtifactKind::NoPreview, u"html", u"vue", codeSymbol},
    {u"svelte", ArtifactKind::NoPreview, u"html", u"svelte", codeSymbol},
    {u"svg", ArtifactKind::Page, u"html", u"svg", u"photo"},
    {u"mermaid", ArtifactKind::Diagram, u"", u"mmd", u"arrow.triangle.branch"},
    {u"markdown", ArtifactKind::Document, u"", u"md", textSymbol},
    {u"code", ArtifactKind::NoPreview, u"", u"txt", codeSymbol},
    {u"loading", ArtifactKind::NoPreview, u"", u"txt", textSymbol}, // nobody has told yet
    {u"latex", ArtifactKind::NoPreview, u"", u"tex", textSymbol},
};

const Row* find(const QString& kind) {
    const QString lower = kind.toLower();
    const Row* row = std::ranges::find(rows, QStringView(lower), &Row::kind);
    return row == std::end(rows) ? nullptr : row;
}

}

QString ArtifactKind::extensionOf(const QString& kind) {
    const Row* row = find(kind);
    return row ? row->extension.toString() : u"txt"_s;
}

QString ArtifactKind::label() const {
    return ArtifactFinder::labelOf(m_name);
}

QString ArtifactKind::details(const QString& label, qint64 version, bool isGenerating) {
    if (label.isEmpty())
        return isGenerating ? u"Готовлю…"_s : QString();
    QStringList details{label};
    if (version > 1)
        details.append(u"версия %1"_s.arg(version));
    if (isGenerating)
        details.append(u"пишу…"_s);
    return details.join(u" · "_s);
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
