#include "Components/SafeSvg.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

constexpr QSize bounds(1024, 1024);

QByteArray drawing(const QByteArray& content, const QByteArray& attributes = "width='40' height='20'") {
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' " + attributes + ">" +
        content + "</svg>";
}

QImage rendered(const QByteArray& svg) {
    QSize natural;
    return SafeSvg::rendered(svg, bounds, natural);
}

constexpr char badge[] =
    R"badge(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" width="90" height="20"
        role="img" aria-label="build: passing"><title>build: passing</title>
      <linearGradient id="s" x2="0" y2="100%"><stop offset="0" stop-color="#bbb" stop-opacity=".1"/>
        <stop offset="1" stop-opacity=".1"/></linearGradient>
      <clipPath id="r"><rect width="90" height="20" rx="3" fill="#fff"/></clipPath>
      <g clip-path="url(#r)"><rect width="37" height="20" fill="#555"/><rect x="37" width="53" height="20" fill="#4c1"/>
        <rect width="90" height="20" fill="url(#s)"/></g>
      <g fill="#fff" text-anchor="middle" font-family="Verdana,Geneva,sans-serif" font-size="110">
        <text x="195" y="140" transform="scale(.1)" fill="#fff" textLength="270">build</text></g></svg>)badge";

TEST(SafeSvg, DrawsABadge) {
    QSize natural;
    const QImage image = SafeSvg::rendered(badge, bounds, natural);
    EXPECT_EQ(natural, QSize(90, 20));
    ASSERT_EQ(image.size(), QSize(180, 40)); // sharp on a dense screen
    const QColor left = image.pixelColor(4, 4);
    const QColor right = image.pixelColor(170, 30);
    EXPECT_NEAR(left.red(), left.green(), 8);
    EXPECT_GT(right.green(), right.red() + 60);
    int white = 0;
    for (int x = 0; x < 74; ++x)
        white += image.pixelColor(x, 20).lightness() > 180;
    EXPECT_GT(white, 3) << "the word";
}

// What is not allowed is left out, and the rest drawn.
TEST(SafeSvg, LeavesOutWhatReachesOutside) {
    QTemporaryDir folder;
    const QByteArray pipe = (folder.path() + "/pipe"_L1).toUtf8(); // a reader of it would wait for ever
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const QByteArray contents[] = {
        "<image width='9' height='9' xlink:href='" + pipe + "'/>",
        "<image width='9' height='9' href='file://" + pipe + "'/>",
        "<g><image width='9' height='9' xlink:href='data:image/svg+xml;base64,PHN2Zy8+'/></g>",
        "<style>@import url(" + pipe + ");</style>",
        "<style>rect { fill: url('" + pipe + "') } /* */ .a { stroke: u\\72l(" + pipe + ") }</style>",
        "<font-face><font-face-src><font-face-uri xlink:href='" + pipe + "'/></font-face-src></font-face>",
        "<use xlink:href='" + pipe + "#a'/><use href='http://127.0.0.1/" + pipe + "'/>",
        "<rect fill='url(" + pipe + ")' style='stroke:url(" + pipe + ");stroke-dasharray:.001' width='1' height='1'/>",
        "<script>read('" + pipe + "')</script><foreignObject><iframe src='" + pipe + "'/></foreignObject>",
        "<animate attributeName='href' to='" + pipe + "'/><set attributeName='fill' to='url(" + pipe + ")'/>",
        "<video xlink:href='" + pipe + "'/><audio xlink:href='" + pipe + "'/><handler>" + pipe + "</handler>",
        "<?xml-stylesheet href='" + pipe + "'?><a xlink:href='" + pipe + "'/>",
    };
    for (const QByteArray& content : contents) {
        const QByteArray svg = drawing(content + "<rect x='20' width='20' height='20' fill='#f00'/>");
        const auto drawn = SafeSvg::sanitized(svg);
        ASSERT_TRUE(drawn) << svg.constData();
        EXPECT_FALSE(drawn->svg.contains("pipe") || drawn->svg.contains("base64") || drawn->svg.contains("dash"))
            << drawn->svg.constData();
        EXPECT_EQ(rendered(svg).pixelColor(60, 20), QColor(Qt::red)) << svg.constData();
    }
}

TEST(SafeSvg, KeepsStylesAndWhatIsRepeated) {
    const QByteArray svg = drawing("<defs><style type='text/css'>.a{fill:#00f;stroke-dasharray:1}</style>"
                                   "<rect id='r' width='20' height='20'/></defs><use xlink:href='#r' class='a'/>"
                                   "<use href='#r' x='20' style='fill: #0f0; behavior: url(x)'/>");
    const QImage image = rendered(svg);
    EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(60, 20), QColor(Qt::green));
}

TEST(SafeSvg, RefusesWhatMultiplies) {
    QByteArray doubled = "<g id='a0'><rect width='1' height='1'/></g>";
    for (int i = 1; i < 40; ++i)
        doubled += "<g id='a" + QByteArray::number(i) + "'>" +
            QByteArray("<use xlink:href='#a" + QByteArray::number(i - 1) + "'/>").repeated(2) + "</g>";
    const auto harmless = SafeSvg::sanitized(drawing(doubled));
    ASSERT_TRUE(harmless);
    EXPECT_LE(harmless->cost, 2000); // only the first repetition is left

    const auto circle = SafeSvg::sanitized(drawing("<g id='a'><use href='#b'/></g><g id='b'><use href='#a'/></g>"));
    ASSERT_TRUE(circle);
    EXPECT_FALSE(circle->svg.contains("use"));

    const QByteArray shapes = QByteArray("<rect/>").repeated(2000);
    const QByteArray refused[] = {
        drawing("<g id='a'>" + shapes + "</g>" + QByteArray("<use href='#a'/>").repeated(2000)),
        // The first one of a name is meant.
        drawing("<g id='a'>" + shapes + "</g><g id='a'/>" + QByteArray("<use href='#a'/>").repeated(2000)),
        drawing("<path id='a' d='" + QByteArray("M0 0L9 9").repeated(10'000) + "'/>" +
            QByteArray("<use href='#a'/>").repeated(2000)),
        drawing(QByteArray("<rect/>").repeated(6000)),
        drawing(QByteArray(600'000, ' ')),
        "<!DOCTYPE svg [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;'>]>" + drawing("<text>&b;</text>"),
        drawing("<text>" + QByteArray("W").repeated(30'000) + "</text>"),
        drawing("<rect>"),
        "<html/>",
        "",
    };
    for (const QByteArray& svg : refused)
        EXPECT_FALSE(SafeSvg::sanitized(svg)) << svg.left(200).constData();
    EXPECT_TRUE(SafeSvg::sanitized("<!DOCTYPE svg PUBLIC '-//W3C//DTD SVG 1.1//EN' 'x.dtd'>" + drawing("<rect/>")));
    const QByteArray deep = QByteArray("<g>").repeated(4000) + QByteArray("</g>").repeated(4000);
    EXPECT_TRUE(SafeSvg::sanitized(drawing(deep))); // as deep as it may be
}

TEST(SafeSvg, DrawsWithinBoundsOfSizeAndTime) {
    const QByteArray everything = "<rect width='100%' height='100%'/>";
    const QByteArray crossing =
        "<path stroke='red' stroke-width='900' d='M0 0" + QByteArray("L999 1L0 998L999 997L1 0").repeated(2000) + "'/>";
    const QByteArray svgs[] = {
        drawing("<rect width='9' height='9'/>", "width='999999' height='999999'"),
        drawing("<rect width='9' height='9'/>", "width='1e30' height='12345678901'"),
        drawing("<rect width='9' height='9'/>", "width='5' height='5' viewBox='0 0 0 0'"),
        drawing("<rect width='9' height='9' transform='scale(1e30) rotate(99999999)'/>", "viewBox='0 0 1 999999'"),
        drawing(everything.repeated(2000), "width='2000' height='2000'"),
        drawing(crossing, "width='1000' height='1000'"),
        drawing("<text font-size='999' stroke='red' stroke-width='999'>" + QByteArray("W").repeated(100) + "</text>",
            "width='1000' height='1000'"),
    };
    for (const QByteArray& svg : svgs) {
        QElapsedTimer timer;
        timer.start();
        const QImage image = rendered(svg);
        EXPECT_LE(image.width(), bounds.width());
        EXPECT_LE(image.height(), bounds.height());
        EXPECT_LT(timer.elapsed(), 20'000) << svg.left(200).constData();
    }
}

}
}
