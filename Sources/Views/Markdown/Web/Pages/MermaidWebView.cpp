#include "MermaidWebView.h"

#include "WebPage.h"

#include <QStringList>

namespace Korvi {

using namespace Qt::Literals;

namespace {

struct Colors {
    const char* name; // what the page calls it
    const char* light;
    const char* dark;
};

constexpr Colors colors[] = {
    {"fallbackText", "#666", "#aaa"},
    {"fallbackBackground", "#e8e8e8", "#2d2d2d"},
    {"nodeFill", "#ffffff", "#2d2d2d"},
    {"nodeStroke", "#bbb", "#888"},
    {"labelText", "#1a1a1a", "#fff"},
    {"edgeLine", "#aaa", "#888"},
    {"secondary", "#f0f0f0", "#3a3a3a"},
    {"clusterBorder", "#ccc", "#666"},
    {"edgeLabelBackground", "#f2f2f2", "#2d2d2d"},
    {"themeName", "default", "dark"},
    // Slices, branches: what the library derives from the colours above cannot be told apart.
    {"series1", "#a9c9f0", "#2f5f96"},
    {"series2", "#b4dcc3", "#2f7450"},
    {"series3", "#f2d6a2", "#86622a"},
    {"series4", "#ebbdb8", "#8e4743"},
    {"series5", "#d0c3f2", "#5f4d9e"},
    {"series6", "#b9dbe0", "#2f6e77"},
};

constexpr int seriesCount = 6;

// The settings of as many slices and branches as the library counts, our colours again and again.
QString series() {
    QStringList settings;
    for (int i = 0; i < 12; ++i) {
        settings << u"pie%1: '{series%2}'"_s.arg(i + 1).arg(i % seriesCount + 1)
                 << u"cScale%1: '{series%2}'"_s.arg(i).arg(i % seriesCount + 1)
                 << u"cScaleLabel%1: '{labelText}'"_s.arg(i);
    }
    return settings.join(u", "_s);
}

// Replaces each {name} by that colour of the scheme.
QString colored(QString text, bool isDark) {
    text.replace(u"{series}"_s, series());
    for (const Colors& color : colors)
        text.replace(u'{' + QLatin1StringView(color.name) + u'}', QLatin1StringView(isDark ? color.dark : color.light));
    return text;
}

const auto style = uR"(* { margin: 0; padding: 0; box-sizing: border-box; }
body { background: transparent; display: flex; justify-content: center; align-items: center; padding: 16px; overflow: hidden; }
#diagram { max-width: 100%; }
#diagram svg { max-width: 100%; height: auto; }
#fallback {
    display: none;
    font-family: 'SF Mono', Menlo, monospace;
    font-size: 12px;
    white-space: pre-wrap;
    word-wrap: break-word;
    padding: 12px;
    border-radius: 8px;
    width: 100%;
    color: {fallbackText};
    background: {fallbackBackground};
}
.node rect, .node circle, .node ellipse, .node polygon { fill: {nodeFill} !important; stroke: {nodeStroke} !important; }
.nodeLabel, .edgeLabel { color: {labelText} !important; fill: {labelText} !important; }
.edgePath path { stroke: {edgeLine} !important; }
marker path { fill: {edgeLine} !important; }
)";

const auto configuration = uR"(
mermaid.initialize({
    startOnLoad: false,
    securityLevel: 'strict',
    suppressErrorRendering: true,
    fontFamily: 'Inter, sans-serif',
    theme: '{themeName}',
    themeVariables: {
        primaryColor: '{nodeFill}',
        tertiaryColor: '{nodeFill}',
        mainBkg: '{nodeFill}',
        primaryTextColor: '{labelText}',
        titleColor: '{labelText}',
        primaryBorderColor: '{nodeStroke}',
        nodeBorder: '{nodeStroke}',
        lineColor: '{edgeLine}',
        secondaryColor: '{secondary}',
        clusterBkg: '{secondary}',
        background: 'transparent',
        clusterBorder: '{clusterBorder}',
        edgeLabelBackground: '{edgeLabelBackground}',
        git0: '{secondary}',
        gitBranchLabel0: '{labelText}',
        pieTitleTextColor: '{labelText}',
        pieLegendTextColor: '{labelText}',
        pieSectionTextColor: '{labelText}',
        pieStrokeColor: '{nodeStroke}',
        pieOuterStrokeColor: '{nodeStroke}',
        pieOpacity: '1',
        {series}
    },
    flowchart: { useMaxWidth: true, htmlLabels: true }
});
)";

const auto drawing = uR"(
const diagram = document.getElementById('diagram');
const fallback = document.getElementById('fallback');
function post(height) {
    window.webkit?.messageHandlers?.heightHandler?.postMessage(height);
}
function reportHeight() {
    post((document.querySelector('#diagram svg') || fallback).getBoundingClientRect().height + 32);
}
const observer = new ResizeObserver(entries => {
    for (const entry of entries) {
        const height = entry.contentRect.height + 32;
        if (height > 50)
            post(height);
    }
});
mermaid.render('mermaid-svg', code).then(({ svg }) => {
    diagram.innerHTML = svg;
    observer.observe(diagram.querySelector('svg'));
    reportHeight();
}).catch(() => {
    diagram.style.display = 'none';
    fallback.textContent = code;
    fallback.style.display = 'block';
    reportHeight();
});
)";

}

QString MermaidWebView::generateMermaidHTML(const QString& code, bool isDark) {
    const QString library =
        u"<script src=\"%1/npm/mermaid@11/dist/mermaid.min.js\"></script>\n"_s.arg(QLatin1StringView(WebPage::origin));
    const QString body = u"<div id=\"diagram\"></div>\n<pre id=\"fallback\"></pre>\n"_s;
    const QString literal = WebPage::escapedForScript(QString(code).remove(u'\r'));
    return WebPage::assemble(library, colored(QString::fromUtf16(style), isDark), body,
        u"\nconst code = '"_s + literal + u"';"_s + colored(QString::fromUtf16(configuration), isDark) +
            QString::fromUtf16(drawing));
}

}
