#include "ArtifactPages.h"

#include "MarkdownAsHtml.h"
#include "MermaidWebView.h"
#include "WebPage.h"

#include <QRegularExpression>

namespace Korvi::ArtifactPages {

using namespace Qt::Literals;

namespace {

const QString head = u"<!doctype html>\n<meta charset=\"utf-8\">\n"
                     "<meta http-equiv=\"Content-Security-Policy\" content=\"%1\">\n<title>%2</title>\n"_s;

QString pictureOf(const QString& svg) {
    return u"<img alt=\"\" src=\"data:image/svg+xml;base64,"_s + QString::fromLatin1(svg.toUtf8().toBase64()) +
        u"\">"_s;
}

// The policy has to come before anything of the page, and behind the document type, without which the page would be
// drawn by the rules of old browsers.
QString guarded(const QString& page) {
    static const QRegularExpression begin(
        u"^\\s*(?:<!--(?:[^-]|-(?!->))*+-->\\s*)*<!doctype[^>]*>"_s, QRegularExpression::CaseInsensitiveOption);
    const qsizetype at = begin.match(page).capturedEnd();
    const QString meta = u"<meta charset=\"utf-8\"><meta http-equiv=\"Content-Security-Policy\" content=\"%1\">"_s;
    return page.left(at) + meta.arg(policy()) + page.mid(at);
}

}

QString policy() {
    return u"default-src 'none'; script-src 'unsafe-inline' 'unsafe-eval' data: blob:; style-src 'unsafe-inline' "
           u"data:; "
           "img-src data: blob:; media-src data: blob:; font-src data:; worker-src blob: data:; connect-src 'none'; "
           "frame-src 'none'; object-src 'none'; form-action 'none'; base-uri 'none'"_s;
}

QString previewPage(const QString& kind, const QString& text) {
    const QString begin = head.arg(policy(), QString());
    if (kind == "html"_L1) {
        return begin +
            u"<style>html,body{margin:0;height:100%;overflow:hidden}"
            "iframe{display:block;border:0;width:100%;height:100%}</style>\n"
            "<iframe sandbox=\"allow-scripts\" srcdoc=\""_s +
            text.toHtmlEscaped() + u"\"></iframe>\n"_s;
    }
    if (kind == "svg"_L1) {
        return begin +
            u"<style>html,body{margin:0;height:100%}"
            "body{display:flex;align-items:center;justify-content:center}"
            "img{max-width:calc(100% - 48px);max-height:calc(100% - 48px);min-width:25%}</style>\n"_s +
            pictureOf(text) + u'\n';
    }
    return {};
}

Printable printPage(const QString& kind, const QString& title, const QString& text) {
    if (kind == "html"_L1)
        return {guarded(text), {}};
    if (kind == "svg"_L1) {
        return {head.arg(policy(), title.toHtmlEscaped()) +
                u"<style>body{margin:0;text-align:center}img{max-width:100%;max-height:240mm}</style>\n"_s +
                pictureOf(text) + u'\n',
            {}};
    }
    if (kind == "mermaid"_L1)
        return {MermaidWebView::generateMermaidHTML(text, false), u"!!document.querySelector('svg, pre')"_s};
    if (kind == "markdown"_L1)
        return {markdownAsHtml(title, text), u"document.body.dataset.ready === '1'"_s};
    return {};
}

}
