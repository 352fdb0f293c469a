#include "Renderer.h"
#include "LaTeXWebView.h"
#include "MermaidWebView.h"
#include "WaitFor.h"
#include "WebPage.h"

#include <QImage>
#include <QJsonDocument>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

#include <gmock/gmock.h>

namespace Korvi::Test {

using namespace Qt::Literals;
using namespace std::chrono_literals;

namespace {

constexpr auto longEnough = 20s;

// Counts who comes, and answers everything with a script that would be seen.
class Listener : public QObject {
public:
    Listener() {
        server.listen(QHostAddress::LocalHost);
        connect(&server, &QTcpServer::newConnection, this, [this] {
            ++connections;
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
                    socket->disconnectFromHost();
                });
            }
        });
    }
    QString url(const QString& scheme = u"http"_s) const {
        return u"%1://127.0.0.1:%2/"_s.arg(scheme).arg(server.serverPort());
    }

    QTcpServer server;
    int connections = 0;
};

// A page as the client would see it whose web view shows it: with a message handler.
class ShownPage : public QWebEnginePage {
public:
    ShownPage(Renderer& renderer, const QString& name, const QString& html)
        : QWebEnginePage(&renderer.profile()) {
        QWebEngineScript handler;
        handler.setInjectionPoint(QWebEngineScript::DocumentCreation);
        handler.setWorldId(QWebEngineScript::MainWorld);
        handler.setSourceCode(u"window.posted = [];"
                              "window.webkit = { messageHandlers: { heightHandler: {"
                              "    postMessage: body => { window.posted.push(body) } } } };"_s);
        scripts().insert(handler);
        connect(this, &QWebEnginePage::loadFinished, this, [this] { isLoaded = true; });
        setVisible(true);
        load(renderer.bundle().addPage(name, html));
    }

    QVariant value(const QString& expression) {
        std::optional<QVariant> result;
        runJavaScript(expression, QWebEngineScript::MainWorld, [&](const QVariant& came) { result = came; });
        waitFor([&] { return result.has_value(); }, longEnough);
        return result.value_or(QVariant());
    }

    // The first height that the page posts.
    double height() {
        waitFor([&] { return isLoaded && !value(u"window.posted"_s).toList().isEmpty(); }, longEnough);
        return value(u"window.posted"_s).toList().value(0).toDouble();
    }

    bool isLoaded = false;
};

class RendererTest : public testing::Test {
protected:
    QJsonDocument run(const QJsonObject& request) {
        std::optional<QByteArray> answer;
        renderer.run(request, [&](const QByteArray& came) { answer = came; });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }, longEnough));
        return QJsonDocument::fromJson(answer.value_or(QByteArray()));
    }
    QJsonObject formula(const QString& tex, bool isBlock = true) {
        return run({{u"formulas"_s, QJsonArray{QJsonObject{{u"tex"_s, tex}, {u"block"_s, isBlock}}}}})
            .array()
            .at(0)
            .toObject();
    }
    QJsonObject diagram(const QString& code, bool isDark = false, double ratio = 1) {
        return run({{u"code"_s, code}, {u"dark"_s, isDark}, {u"width"_s, 700}, {u"scale"_s, 1}, {u"ratio"_s, ratio}})
            .object();
    }
    // All text that a drawing shows.
    static QString text(const QJsonObject& drawing) {
        QString all;
        for (const QJsonValue& item : drawing.value("items"_L1).toArray())
            all += item["t"_L1].toString();
        return all;
    }
    static QImage picture(const QJsonObject& diagram) {
        return QImage::fromData(QByteArray::fromBase64(diagram.value("png"_L1).toString().toLatin1()), "PNG");
    }

    Renderer renderer{QStringLiteral(KORVI_BUNDLE)};
};

}

// Formula and code stand in a script: whatever they hold, it is this text and no other that the library gets.
TEST_F(RendererTest, PagesHoldAnyTextUnchanged) {
    const QString hostile =
        u"it's \\text{a\\\\b}\n</script><script>window.ran=1</script><!--<script>\u2028\u2029 %1 ${x}"_s;
    for (const bool isBlock : {true, false}) {
        ShownPage page(renderer, u"formula.html"_s, LaTeXWebView::generateLaTeXHTML(hostile, isBlock));
        EXPECT_GT(page.height(), 10);
        EXPECT_EQ(page.value(u"formula"_s).toString(), hostile);
        EXPECT_FALSE(page.value(u"window.ran"_s).isValid());
    }
    ShownPage page(renderer, u"diagram.html"_s, MermaidWebView::generateMermaidHTML(hostile, false));
    EXPECT_GT(page.height(), 32);
    EXPECT_EQ(page.value(u"code"_s).toString(), hostile);
    EXPECT_EQ(page.value(u"document.getElementById('fallback').textContent"_s).toString(), hostile);
    EXPECT_FALSE(page.value(u"window.ran"_s).isValid());
}

TEST_F(RendererTest, TheFormulaPageIsDrawnAsToldAndAsHighAsItsDrawingSays) {
    const QString tex = u"\\frac{f'(x)}{\n\\sqrt{y}}"_s; // does not wrap: nobody has given the page a width
    for (const bool isBlock : {true, false}) {
        ShownPage page(renderer, u"formula.html"_s, LaTeXWebView::generateLaTeXHTML(tex, isBlock));
        const int size = isBlock ? LaTeXWebView::blockSize : LaTeXWebView::inlineSize;
        const int padding = isBlock ? LaTeXWebView::blockPadding : LaTeXWebView::inlinePadding;
        const double drawn = formula(tex, isBlock).value("page"_L1).toDouble() * size + 2 * padding;
        EXPECT_NEAR(page.height(), drawn, 1.5) << isBlock;
        EXPECT_EQ(page.value(u"getComputedStyle(document.querySelector('.mord')).color"_s), u"rgb(255, 255, 255)"_s);
        EXPECT_EQ(page.value(u"document.querySelectorAll('.katex-display').length"_s).toInt(), isBlock ? 1 : 0);
    }
}

TEST_F(RendererTest, TheDiagramPageDrawsInTheColoursOfItsSchemeAndReportsItsHeight) {
    for (const bool isDark : {false, true}) {
        ShownPage page(renderer, u"diagram.html"_s,
            MermaidWebView::generateMermaidHTML(u"flowchart TD\r\n A[Один] --> B['x']"_s, isDark));
        EXPECT_EQ(page.height(), 32); // a page without a width shows nothing yet, and posts nothing of 50 or less
        page.value(u"document.body.style.width = '600px'; reportHeight()"_s);
        EXPECT_GT(page.value(u"window.posted.at(-1)"_s).toDouble(), 50);
        EXPECT_NEAR(page.value(u"window.posted.at(-1)"_s).toDouble(),
            page.value(u"document.querySelector('#diagram svg').getBoundingClientRect().height"_s).toDouble() + 32, 1);
        EXPECT_EQ(page.value(u"getComputedStyle(document.querySelector('.node rect')).fill"_s).toString(),
            isDark ? u"rgb(45, 45, 45)"_s : u"rgb(255, 255, 255)"_s);
        EXPECT_EQ(page.value(u"getComputedStyle(document.getElementById('fallback')).display"_s), u"none"_s);
    }
}

TEST_F(RendererTest, ADrawingHasTheSameTextForBothKindsAndItsBaseline) {
    const QString tex = u"a'_1 = \\text{it's}\n\\backslash \\frac{x}{y}"_s;
    const auto block = formula(tex, true);
    const auto inlined = formula(tex, false);
    EXPECT_EQ(text(block), text(inlined));
    EXPECT_TRUE(text(block).contains(u"it’s"_s)) << qPrintable(text(block));
    EXPECT_GT(block["ascent"_L1].toDouble(), inlined["ascent"_L1].toDouble()); // a display fraction is higher

    const auto x = formula(u"x"_s, false);
    const QJsonObject glyph = x["items"_L1].toArray().at(0).toObject();
    EXPECT_EQ(glyph["f"_L1], u"KaTeX_Math-Italic"_s);
    EXPECT_NEAR(glyph["y"_L1].toDouble(), 0, 0.01); // on the baseline
    EXPECT_NEAR(glyph["s"_L1].toDouble(), 1.21, 0.001);
}

// Commands of formulas and diagrams that reach outside, and markup in both, are data.
TEST_F(RendererTest, HostileInputDrawsAsTextOrNotAtAll) {
    Listener listener;
    const QString url = listener.url();
    const QStringList formulas{
        u"\\href{javascript:document.title='ran'}{x}"_s,
        u"\\url{%1}"_s.arg(url),
        u"\\includegraphics{%1a.png}"_s.arg(url),
        u"\\htmlData{x=1}{y} \\htmlStyle{background:url(%1)}{z}"_s.arg(url),
        u"\\text{<img src=x onerror=\"document.title='ran'\"></script><script>document.title='ran'</script>}"_s,
        u"x'); document.title='ran'; //"_s,
        u"\\def\\x{\\x\\x}\\x"_s,
        u"\\rule{9999999em}{9999999em}"_s,
        u"\\frac{1}{"_s.repeated(2000),
        u"\\frac{1}{"_s.repeated(900) + u"x"_s + u"}"_s.repeated(900),
        u"x^{"_s.repeated(5000),
        u"\u2028\u2029\\unknown{"_s,
    };
    for (const QString& tex : formulas)
        EXPECT_FALSE(formula(tex).isEmpty()) << qPrintable(tex);

    const QStringList codes{
        u"flowchart TD\n A[\"<img src='%1' onerror='document.title=1'>\"] --> B[\"<script>document.title='ran'</script>\"]"_s
            .arg(url),
        u"flowchart TD\n A --> B\n click A href \"javascript:document.title='ran'\"\n click B call steal()"_s,
        u"%%{init: {\"securityLevel\": \"loose\", \"themeCSS\": \"* { background: url(%1) }\"}}%%\nflowchart TD\n A[<b onclick=\"document.title=1\">x</b>] --> B"_s
            .arg(url),
        u"%%{init: {\"themeCSS\": \"@import url(%1);\", \"fontFamily\": \"x;} @font-face{src:url(%1)}\"}}%%\nflowchart TD\n A --> B"_s
            .arg(url),
        u"flowchart TD\n A@{ img: \"%1a.png\", label: \"x\" }"_s.arg(url),
        u"</script><script>document.title='ran'</script>"_s,
    };
    for (const QString& code : codes) {
        const QJsonObject drawn = diagram(code);
        EXPECT_TRUE(drawn.contains("png"_L1) || drawn.contains("error"_L1)) << qPrintable(code);
    }
    // Each in a page of its own as well, which can be looked into.
    const auto expectQuiet = [&](const QString& html, const QString& what) {
        ShownPage page(renderer, u"quiet.html"_s, html);
        EXPECT_GT(page.height(), 0) << qPrintable(what);
        EXPECT_EQ(page.value(u"document.title"_s), u""_s) << qPrintable(what);
        EXPECT_FALSE(page.value(u"window.ran"_s).isValid()) << qPrintable(what);
    };
    for (const QString& tex : formulas)
        expectQuiet(LaTeXWebView::generateLaTeXHTML(tex, true), tex);
    for (const QString& code : codes)
        expectQuiet(MermaidWebView::generateMermaidHTML(code, false), code);
    settle();
    EXPECT_EQ(listener.connections, 0);
    // And the pages still work, with nothing run in them.
    EXPECT_EQ(text(formula(u"y"_s)), u"y"_s);
    EXPECT_FALSE(picture(diagram(u"flowchart TD\n A --> B"_s)).isNull());
}

// The gate by itself, without the policy of our own pages before it.
TEST_F(RendererTest, NoPageReachesAnythingButTheBundle) {
    Listener listener;
    const QString url = listener.url();
    const QString html = uR"(<!doctype html><html><head>
<link rel="stylesheet" href="%1a.css"><link rel="prefetch" href="%1b"><link rel="preload" as="script" href="%1c.js">
<link rel="dns-prefetch" href="%1"><link rel="preconnect" href="%1"><link rel="icon" href="%1favicon.ico">
<script src="%1d.js"></script></head><body background="%1e.png">
<img src="%1f.png"><iframe src="%1g.html"></iframe><object data="%1h.html"></object><video src="%1i.mp4"></video>
<form id="form" action="%1j" target="_blank"></form><a id="link" href="%1k" download ping="%1l">x</a>
<script>
window.tried = [];
const attempt = (name, work) => Promise.resolve().then(work).then(() => tried.push(name + ' done'), () => tried.push(name));
attempt('fetch', () => fetch('%1m', { mode: 'no-cors' }));
attempt('file', () => fetch('file:///etc/passwd'));
attempt('xhr', () => new Promise((resolve, reject) => {
    const request = new XMLHttpRequest(); request.onload = resolve; request.onerror = reject;
    request.open('GET', '%1n'); request.send() }));
attempt('socket', () => new Promise((resolve, reject) => {
    const socket = new WebSocket('%2'); socket.onopen = resolve; socket.onerror = reject }));
attempt('events', () => new Promise((resolve, reject) => {
    const source = new EventSource('%1o'); source.onopen = resolve; source.onerror = reject }));
attempt('worker', () => new Promise((resolve, reject) => {
    const worker = new Worker('%1p.js'); worker.onmessage = resolve; worker.onerror = reject }));
attempt('import', () => import('%1q.js'));
attempt('beacon', () => { if (!navigator.sendBeacon('%1r', 'x')) throw 0; throw 0 });
attempt('popup', () => { if (!window.open('%1s')) throw 0 });
attempt('form', () => { document.getElementById('form').submit(); throw 0 });
attempt('download', () => { document.getElementById('link').click(); throw 0 });
attempt('place', () => { location.href = '%1t'; throw 0 });
</script></body></html>)"_s.arg(url, listener.url(u"ws"_s));
    RenderPage page(&renderer.profile(), renderer.bundle().addPage(u"reach.html"_s, html), {});
    QStringList tried;
    bool isAsking = false;
    const auto done = [&] {
        if (!std::exchange(isAsking, true)) {
            page.runJavaScript(u"window.tried?.join()"_s, QWebEngineScript::MainWorld, [&](const QVariant& came) {
                tried = came.toString().split(u',');
                isAsking = false;
            });
        }
        return tried.size() >= 12;
    };
    EXPECT_TRUE(waitFor(done, longEnough)) << qPrintable(tried.join(u", "_s));
    EXPECT_TRUE(waitFor([&] { return !isAsking; }, longEnough));
    EXPECT_TRUE(tried.filter(u"done"_s).isEmpty()) << qPrintable(tried.join(u", "_s));
    settle(100);
    EXPECT_EQ(listener.connections, 0);

    // Nor is anything served that is not in the bundle.
    for (const char* path :
        {"/npm/../../korvi-formulas", "/npm/%2e%2e/%2e%2e/Info.json", "/etc/passwd", "/npm/none.js"}) {
        std::optional<bool> isComplete;
        QWebEnginePage other(&renderer.profile());
        QObject::connect(&other, &QWebEnginePage::loadFinished, [&](bool ok) { isComplete = ok; });
        other.load(QUrl(QLatin1StringView(WebPage::origin) + QLatin1StringView(path)));
        EXPECT_TRUE(waitFor([&] { return isComplete.has_value(); }, longEnough));
        EXPECT_FALSE(isComplete.value_or(true)) << path;
    }
}

TEST_F(RendererTest, APictureIsSharpAtItsScaleFactorAndFollowsTheScheme) {
    const QString code = u"flowchart LR\n A[Раз] --> B[Два]"_s;
    const auto once = diagram(code, false, 1);
    const auto twice = diagram(code, false, 2);
    EXPECT_EQ(once["width"_L1], twice["width"_L1]);
    EXPECT_NEAR(picture(twice).width(), 2 * once["width"_L1].toDouble(), 2);
    const QImage light = picture(once).convertToFormat(QImage::Format_ARGB32);
    const QImage dark = picture(diagram(code, true, 1)).convertToFormat(QImage::Format_ARGB32);
    const auto count = [](const QImage& image, QRgb color) {
        int found = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                found += image.pixel(x, y) == color;
        return found;
    };
    EXPECT_GT(count(light, qRgb(255, 255, 255)), 1000); // nodes
    EXPECT_GT(count(dark, qRgb(0x2d, 0x2d, 0x2d)), 1000);
    EXPECT_EQ(count(dark, qRgb(255, 255, 255)) > 1000, false);
    EXPECT_TRUE(diagram(u"это не диаграмма"_s).contains("error"_L1));
}

TEST_F(RendererTest, WithoutItsLibrariesItAnswersWithNothing) {
    Renderer bare(u"/nonexistent"_s);
    int answers = 0;
    QByteArray all;
    const auto take = [&](const QByteArray& answer) {
        ++answers;
        all += answer;
    };
    bare.run({{u"formulas"_s, QJsonArray{QJsonObject{{u"tex"_s, u"x"_s}}}}}, take);
    bare.run({{u"code"_s, u"flowchart TD\n A --> B"_s}, {u"width"_s, 100}}, take);
    EXPECT_TRUE(waitFor([&] { return answers == 2; }, longEnough));
    EXPECT_TRUE(all.isEmpty());
}

}
