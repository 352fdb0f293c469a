#include "../Formulas/ProcessTree.h"
#include "Artifacts/ArtifactPreview.h"
#include "WaitFor.h"

#include <QDir>
#include <QFile>
#include <QNetworkDatagram>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

#include <gmock/gmock.h>

#include <memory>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

const QColor green(0, 160, 0);
const QColor red(200, 0, 0);

// Hears whoever reaches this machine.
class Listener {
public:
    Listener() {
        EXPECT_TRUE(m_tcp.listen(QHostAddress::LocalHost));
        EXPECT_TRUE(m_udp.bind(QHostAddress::LocalHost));
        QObject::connect(&m_tcp, &QTcpServer::newConnection, &m_tcp, [this] {
            ++heard;
            m_tcp.nextPendingConnection()->abort();
        });
        QObject::connect(&m_udp, &QUdpSocket::readyRead, &m_udp, [this] {
            ++heard;
            m_udp.receiveDatagram();
        });
    }

    // Fills in where it listens.
    QString pointed(QString page) const {
        return page.replace(u"HOST"_s, u"127.0.0.1:%1"_s.arg(m_tcp.serverPort()))
            .replace(u"STUN"_s, u"127.0.0.1:%1"_s.arg(m_udp.localPort()));
    }
    quint16 port() const { return m_tcp.serverPort(); }

    int heard = 0;

private:
    QTcpServer m_tcp;
    QUdpSocket m_udp;
};

// A preview in a window, of a page that turns green or red when it is done with what it tries.
class Shown {
public:
    Shown(const QString& kind, const QString& text) {
        m_window.resize(400, 300);
        m_preview = std::make_unique<ArtifactPreview>();
        m_preview->setProperty("kind", kind);
        m_preview->setText(text);
        m_preview->setSize({400, 300});
        m_preview->setParentItem(m_window.contentItem());
        m_window.show();
        // What QML does for an item that it has made.
        static_cast<QQmlParserStatus*>(m_preview.get())->classBegin();
        static_cast<QQmlParserStatus*>(m_preview.get())->componentComplete();
    }

    ArtifactPreview& preview() { return *m_preview; }
    void press(int key) {
        QKeyEvent event(QEvent::KeyPress, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        QCoreApplication::sendEvent(m_preview.get(), &event);
    }
    QColor colour(const QPoint& at = {200, 280}) const {
        return m_preview->frame().isNull() ? QColor() : m_preview->frame().pixelColor(at);
    }
    bool turns(const QColor& expected, std::chrono::milliseconds bound = 30s) {
        return waitFor([&] { return colour() == expected; }, bound);
    }
    void close() { m_preview.reset(); }

private:
    QQuickWindow m_window;
    std::unique_ptr<ArtifactPreview> m_preview;
};

// Each of these would reach the network, leave the page or disturb the user. What a page can see for itself of them, it
// checks; what reaches the listener, that counts.
const QString hostile = uR"(<!doctype html>
<html><head>
<link rel="stylesheet" href="http://HOST/style.css">
<link rel="dns-prefetch" href="//HOST"><link rel="preconnect" href="http://HOST">
<link rel="prefetch" href="http://HOST/prefetch"><link rel="preload" as="script" href="http://HOST/preload.js">
<script src="http://HOST/script.js"></script>
<style>@import url(http://HOST/import.css); body { background: url(http://HOST/background.png) }
@font-face { font-family: f; src: url(http://HOST/font.woff2) } p { font-family: f }</style>
</head><body>
<p>text</p><img src="http://HOST/image.png"><iframe src="http://HOST/frame"></iframe>
<object data="http://HOST/object"></object><embed src="http://HOST/embed"><video src="http://HOST/video.mp4"></video>
<a id="link" href="http://HOST/link" target="_top">link</a><a id="save" href="data:text/plain,x" download="x">save</a>
<script>
const wrong = []
const must = (what, holds) => { if (!holds) wrong.push(what) }
const attempt = action => { try { return action() } catch (error) { return undefined } }
async function tryAll() {
    must('fetch', await fetch('http://HOST/fetch').then(() => false, () => true))
    must('fetch of a file', await fetch('file:///etc/passwd').then(() => false, () => true))
    must('XMLHttpRequest', await new Promise(done => {
        const request = new XMLHttpRequest()
        request.onload = () => done(false)
        request.onerror = () => done(true)
        attempt(() => { request.open('GET', 'http://HOST/xhr'); request.send() })
        setTimeout(() => done(true), 1000)
    }))
    must('WebSocket', await new Promise(done => {
        const socket = attempt(() => new WebSocket('ws://HOST/socket'))
        if (!socket) return done(true)
        socket.onopen = () => done(false)
        socket.onerror = () => done(true)
        setTimeout(() => done(true), 1000)
    }))
    attempt(() => new EventSource('http://HOST/events'))
    attempt(() => navigator.sendBeacon('http://HOST/beacon', 'x'))
    attempt(() => import('http://HOST/module.js').catch(() => {}))
    attempt(() => new Worker('http://HOST/worker.js'))
    attempt(() => { new Image().src = 'http://HOST/late.png' })
    must('window.open', !attempt(() => window.open('http://HOST/popup')))
    must('confirm', attempt(() => confirm('?')) !== true)
    attempt(() => alert('!'))
    attempt(() => prompt('?'))
    must('storage', attempt(() => { localStorage.a = 1; return true }) !== true)
    must('cookies', !attempt(() => { document.cookie = 'a=1'; return document.cookie }))
    must('the frame around', attempt(() => window.top.document.body) === undefined)
    attempt(() => document.getElementById('link').click())
    attempt(() => document.getElementById('save').click())
    attempt(() => { window.top.location = 'http://HOST/top' })
    must('geolocation', await new Promise(done => {
        attempt(() => navigator.geolocation.getCurrentPosition(() => done(false), () => done(true)))
        setTimeout(() => done(true), 1000)
    }))
    // WebRTC reaches out by ways of its own: from here, and from a frame that has a fresh copy of everything.
    const frame = document.createElement('iframe')
    document.body.append(frame)
    for (const Peer of [RTCPeerConnection, attempt(() => frame.contentWindow.RTCPeerConnection)].filter(Boolean)) {
        await attempt(async () => {
            const peer = new Peer({ iceServers: [{ urls: 'stun:STUN' },
                { urls: 'turn:HOST?transport=tcp', username: 'a', credential: 'b' }] })
            peer.createDataChannel('x')
            await peer.setLocalDescription(await peer.createOffer())
        })
    }
    await new Promise(done => setTimeout(done, 2500))
    document.body.innerHTML = ''
    document.body.style.background = wrong.length ? 'rgb(200,0,0)' : 'rgb(0,160,0)'
    document.body.textContent = wrong.join(', ')
}
tryAll()
</script></body></html>)"_s;

// Each leaves the page by itself. It says so when it is still there after a while; otherwise the engine has put an empty
// page into its place.
const QString leaving = uR"html(<!doctype html><body style="background:rgb(1,2,3)">
<form id="form" action="http://HOST/form" method="post" target="_self"><input name="a"></form><script>
setTimeout(() => { document.body.style.background = 'rgb(0,160,0)' }, 2500)
setTimeout(() => { WAY }, 300)
</script>)html"_s;

const QStringList ways{
    u"location = 'http://HOST/location'"_s,
    u"document.getElementById('form').submit()"_s,
    u"document.head.innerHTML = '<meta http-equiv=\"refresh\" content=\"0;url=http://HOST/refresh\">'"_s,
    u"window.open('http://HOST/self', '_self')"_s,
    u"location = 'file:///etc/passwd'"_s,
};

class SandboxTest : public testing::Test {
protected:
    // The fences inside of the process, without the one around it.
    void keepNetwork() { qputenv("KORVI_PREVIEW_OPTIONS", "--keep-network"); }
    void TearDown() override { qunsetenv("KORVI_PREVIEW_OPTIONS"); }
};

TEST_F(SandboxTest, NothingOfAPageReachesTheNetworkOrTheUserEvenWithoutTheNamespace) {
    keepNetwork();
    Listener listener;
    Shown shown(u"html"_s, listener.pointed(hostile));
    EXPECT_TRUE(shown.turns(green)) << "status " << shown.preview().status() << ", colour "
                                    << qPrintable(shown.colour().name());
    settle();
    EXPECT_EQ(listener.heard, 0);
    EXPECT_EQ(countRenderers(shown.preview().processId()), 1);

    // The listener does hear.
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, listener.port());
    EXPECT_TRUE(waitFor([&] { return listener.heard == 1; }));
}

TEST_F(SandboxTest, APageThatLeavesGetsNowhere) {
    keepNetwork();
    Listener listener;
    for (const QString& way : ways) {
        Shown shown(u"html"_s, listener.pointed(QString(leaving).replace(u"WAY"_s, way)));
        ASSERT_TRUE(shown.turns(QColor(1, 2, 3))) << qPrintable(way);
        EXPECT_TRUE(shown.turns(green, 5s) || shown.colour() == QColor(Qt::white)) << qPrintable(way);
        settle();
        EXPECT_EQ(listener.heard, 0) << qPrintable(way);
    }
}

TEST_F(SandboxTest, TheProcessHasNoNetworkWhereTheKernelGrantsThat) {
    Listener listener;
    Shown shown(u"html"_s, listener.pointed(hostile));
    EXPECT_TRUE(shown.turns(green));
    settle();
    EXPECT_EQ(listener.heard, 0);

    QFile own(u"/proc/self/net/dev"_s);
    QFile others(u"/proc/%1/net/dev"_s.arg(shown.preview().processId()));
    ASSERT_TRUE(own.open(QIODevice::ReadOnly) && others.open(QIODevice::ReadOnly));
    const QByteArray devices = others.readAll();
    EXPECT_EQ(devices.count(':'), 1) << devices.constData(); // the loopback device, which is down
}

const QString responsive = uR"html(<!doctype html><body style="margin:0">
<div id="area" style="width:400px;height:300px;background:rgb(1,2,3)" tabindex="0"></div><script>
area.onclick = event => { area.style.background = event.clientX === 50 ? 'rgb(4,5,6)' : 'rgb(200,0,0)'; area.focus() }
area.onkeydown = event => { if (event.key === 'ж') area.style.background = 'rgb(0,160,0)' }
</script>)html"_s;

// Each would run, or reach the network, in a picture that is a page of its own.
const QString hostilePicture = uR"svg(<svg xmlns="http://www.w3.org/2000/svg" xmlns:x="http://www.w3.org/1999/xlink"
viewBox="0 0 100 100" width="300" height="300" onload="document.getElementById('r').setAttribute('fill', 'rgb(200,0,0)')">
<style>@import url(http://HOST/style.css); @font-face { font-family: f; src: url(http://HOST/font.woff2) }
text { font-family: f; fill: url(http://HOST/fill.svg#a) }</style>
<rect id="r" width="100" height="100" fill="rgb(0,160,0)" onbegin="setAttribute('fill', 'rgb(200,0,0)')"/>
<image href="http://HOST/image.png" x:href="http://HOST/old.png" width="1" height="1"/><use href="http://HOST/use.svg#a"/>
<foreignObject width="9" height="9"><iframe xmlns="http://www.w3.org/1999/xhtml" src="http://HOST/frame"></iframe>
<img xmlns="http://www.w3.org/1999/xhtml" src="http://HOST/none.png" onerror="r.setAttribute('fill', 'rgb(200,0,0)')"/>
</foreignObject><a href="javascript:r.setAttribute('fill', 'rgb(200,0,0)')"><text y="9">x</text></a>
<script href="http://HOST/script.js"/><script>document.getElementById('r').setAttribute('fill', 'rgb(200,0,0)')
fetch('http://HOST/fetch')</script></svg>)svg"_s;

TEST_F(SandboxTest, ScriptRunsAndHearsThePointerAndTheKeyboard) {
    Shown shown(u"html"_s, responsive);
    ASSERT_TRUE(shown.turns(QColor(1, 2, 3)));
    ASSERT_TRUE(waitFor([&] { return shown.preview().status() == ArtifactPreview::Ready; }));
    const QPointF place(50, 60);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto buttons = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, place, place, Qt::LeftButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&shown.preview(), &event);
    }
    EXPECT_TRUE(shown.turns(QColor(4, 5, 6)));
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, 0x0416, Qt::NoModifier, u"ж"_s);
        QCoreApplication::sendEvent(&shown.preview(), &event);
    }
    EXPECT_TRUE(shown.turns(green));
}

const QString twoButtons = uR"html(<!doctype html><body style="margin:0;background:rgb(1,2,3)">
<button onfocus="document.body.style.background='rgb(4,5,6)'">1</button>
<button onfocus="document.body.style.background='rgb(0,160,0)'">2</button>)html"_s;

TEST_F(SandboxTest, TabGoesThroughThePageAndOutOfIt) {
    Shown shown(u"html"_s, twoButtons);
    ASSERT_TRUE(shown.turns(QColor(1, 2, 3)));
    ASSERT_TRUE(waitFor([&] { return shown.preview().status() == ArtifactPreview::Ready; }));
    QQuickItem before(shown.preview().parentItem());
    QQuickItem behind(shown.preview().parentItem());
    before.stackBefore(&shown.preview());
    before.setActiveFocusOnTab(true);
    behind.setActiveFocusOnTab(true);
    shown.preview().forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(shown.turns(QColor(4, 5, 6)));
    shown.press(Qt::Key_Tab);
    EXPECT_TRUE(shown.turns(green));
    shown.press(Qt::Key_Tab);
    EXPECT_TRUE(waitFor([&] { return behind.hasActiveFocus(); }));
    shown.preview().forceActiveFocus(Qt::BacktabFocusReason);
    settle(50);
    EXPECT_EQ(shown.colour(), green);
    shown.press(Qt::Key_Backtab);
    EXPECT_TRUE(shown.turns(QColor(4, 5, 6)));
    shown.press(Qt::Key_Backtab);
    EXPECT_TRUE(waitFor([&] { return before.hasActiveFocus(); }));
}

TEST_F(SandboxTest, APictureIsShownAndNothingInItRunsOrReachesTheNetwork) {
    keepNetwork();
    Listener listener;
    Shown shown(u"svg"_s, listener.pointed(hostilePicture));
    EXPECT_TRUE(waitFor([&] { return shown.colour({200, 150}) == green; }, 20s));
    EXPECT_FALSE(waitFor([&] { return listener.heard > 0 || shown.colour({200, 150}) != green; }, 1500ms));
}

TEST_F(SandboxTest, AnotherTextAndAnotherSizeAreShownByTheSameProcess) {
    Shown shown(u"html"_s, u"<body style='background:rgb(200,0,0)'>"_s);
    ASSERT_TRUE(shown.turns(red));
    const qint64 process = shown.preview().processId();
    shown.preview().setText(u"<body style='background:rgb(0,160,0)'>"_s);
    EXPECT_TRUE(shown.turns(green));
    shown.preview().setSize({300, 500});
    EXPECT_TRUE(waitFor([&] {
        return shown.preview().frame().size() == QSize(300, 500) && shown.colour({150, 480}) == green;
    }));
    EXPECT_EQ(shown.preview().processId(), process);
}

TEST_F(SandboxTest, AllOfItEndsWithThePreview) {
    Shown shown(u"html"_s, u"<body style='background:rgb(0,160,0)'><script>for(;;);</script>"_s);
    ASSERT_TRUE(waitFor([&] { return countRenderers(shown.preview().processId()) == 1; }, 20s));
    const qint64 process = shown.preview().processId();
    shown.close();
    EXPECT_TRUE(waitFor([&] { return countRenderers(process) == 0 && !QFile::exists(u"/proc/%1"_s.arg(process)); }));
}

TEST_F(SandboxTest, WithoutTheProgramThePreviewSaysSo) {
    const QByteArray program = qgetenv("KORVI_PREVIEW");
    qputenv("KORVI_PREVIEW", "/nonexistent/korvi-preview");
    Shown shown(u"html"_s, u"<p>"_s);
    EXPECT_EQ(shown.preview().status(), ArtifactPreview::Failed);
    qputenv("KORVI_PREVIEW", program);
    shown.preview().restart();
    EXPECT_TRUE(waitFor([&] { return shown.preview().status() == ArtifactPreview::Ready; }, 20s));
}

}
}
