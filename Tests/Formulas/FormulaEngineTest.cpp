#include "Markdown/FormulaEngine.h"
#include "Linux/QtScheduler.h"
#include "ProcessTree.h"
#include "Samples.h"
#include "VirtualScheduler.h"
#include "WaitFor.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>

#include <csignal>
#include <gmock/gmock.h>

namespace Korvi::Test {

using namespace Qt::Literals;
using namespace std::chrono_literals;

namespace {

constexpr auto longEnough = 60s;

class FormulaEngineTest : public testing::Test {
protected:
    FormulaEngine::Formula formula(FormulaEngine& from, const QString& tex, bool isBlock = true) {
        std::optional<FormulaEngine::Formula> result;
        from.requestFormula(tex, isBlock, &context, [&](const FormulaEngine::Formula& came) { result = came; });
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }, longEnough));
        return result.value_or(nullptr);
    }
    FormulaEngine::Picture diagram(FormulaEngine& from, const DiagramRequest& request) {
        std::optional<FormulaEngine::Picture> result;
        from.requestDiagram(request, &context, [&](const FormulaEngine::Picture& came) { result = came; });
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }, longEnough));
        return result.value_or(nullptr);
    }

    QtScheduler scheduler;
    QObject context;
    FormulaEngine engine{QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler};
};

QImage painted(FormulaEngine& engine, const FormulaDrawing& drawing, qreal size, const QColor& color) {
    QImage image(400, 200, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(20, 100);
    drawing.paint(painter, engine.fonts(), size, color, Qt::magenta);
    return image;
}

QRect inked(const QImage& image) {
    QRect all;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).lightness() < 160)
                all |= QRect(x, y, 1, 1);
    return all;
}

}

TEST_F(FormulaEngineTest, ManyFormulasAndDiagramsTakeAtMostTwoRenderers) {
    int formulas = 0;
    int diagrams = 0;
    for (int i = 0; i < 200; ++i) {
        engine.requestFormula(u"\\int_0^{%1} x\\,dx"_s.arg(i), i % 2, &context,
            [&](const FormulaEngine::Formula& came) { formulas += came && came->error().isEmpty(); });
    }
    for (int i = 0; i < 10; ++i) {
        engine.requestDiagram({u"flowchart LR\n A%1 --> B"_s.arg(i), i >= 5, 700, 1, 1}, &context,
            [&](const FormulaEngine::Picture& came) { diagrams += came && !came->image.isNull(); });
    }
    int most = 0;
    EXPECT_TRUE(waitFor(
        [&] {
            most = std::max(most, countRenderers(engine.process().processId()));
            return formulas == 200 && diagrams == 10;
        },
        longEnough))
        << formulas << ' ' << diagrams;
    EXPECT_GE(most, 1);
    EXPECT_LE(most, 2);
    EXPECT_TRUE(engine.cachedFormula(u"\\int_0^{7} x\\,dx"_s, true));
    EXPECT_FALSE(engine.cachedFormula(u"\\int_0^{7} x\\,dx"_s, false));
}

TEST_F(FormulaEngineTest, WhatNobodyWaitsForIsLeftOut) {
    int calls = 0;
    {
        QObject passing; // a row that was scrolled past
        for (int i = 0; i < 50; ++i)
            engine.requestFormula(u"%1"_s.arg(i), false, &passing, [&](const FormulaEngine::Formula&) { ++calls; });
    }
    EXPECT_TRUE(formula(engine, u"x"_s));
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(engine.cachedFormula(u"7"_s, false));
}

// The drawing, by its pixels: on the baseline, as large as asked, in the colours of the formula.
TEST_F(FormulaEngineTest, ADrawingStandsOnItsBaselineInItsSizeAndColour) {
    const auto x = formula(engine, u"\\mathrm{x}"_s, false);
    ASSERT_TRUE(x);
    const QRect small = inked(painted(engine, *x, 20, Qt::black));
    EXPECT_NEAR(small.bottom(), 99, 1);
    const QRect large = inked(painted(engine, *x, 60, Qt::black));
    EXPECT_NEAR(large.height(), 3 * small.height(), 3);
    EXPECT_NEAR(large.width(), 3 * small.width(), 3);

    const auto colored = formula(engine, u"\\textcolor{blue}{\\rule{1em}{1em}}\\rule{1em}{1em}\\nonsense"_s, false);
    ASSERT_TRUE(colored);
    const QImage image = painted(engine, *colored, 40, Qt::darkGreen);
    EXPECT_EQ(image.pixelColor(30, 90), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(90, 90), QColor(Qt::darkGreen));
    int wrong = 0;
    for (int at = 120; at < 400; ++at)
        wrong += image.pixelColor(at, 90) == QColor(Qt::magenta);
    EXPECT_GT(wrong, 0); // what TeX does not know

    // A fraction's line is there, however small.
    const auto fraction = formula(engine, u"\\frac{1}{1}"_s, false);
    const QImage tiny = painted(engine, *fraction, 6, Qt::black);
    int darkest = 255;
    for (int y = 90; y < 100; ++y)
        darkest = std::min(darkest, tiny.pixelColor(22, y).lightness());
    EXPECT_LT(darkest, 60);
}

TEST_F(FormulaEngineTest, EverySampleIsDrawnInsideOfWhatItSays) {
    for (const QString& tex : sampleFormulas()) {
        const auto drawing = formula(engine, tex);
        ASSERT_TRUE(drawing);
        EXPECT_EQ(drawing->error(), QString()) << qPrintable(tex);
        EXPECT_TRUE(drawing->inkRect().contains(drawing->rect()));
        EXPECT_LT(drawing->inkRect().height(), drawing->rect().height() + 0.6) << qPrintable(tex);
        EXPECT_LT(drawing->cost(), 40'000) << qPrintable(tex);
        QImage image(static_cast<int>(drawing->inkRect().width() * 18) + 40, 240, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.translate(20, 120);
        drawing->paint(painter, engine.fonts(), 18, Qt::black, Qt::red);
        const QRectF ink = inked(image).translated(-20, -120);
        EXPECT_GE(ink.left(), drawing->inkRect().left() * 18 - 1.5) << qPrintable(tex);
        EXPECT_LE(ink.right(), drawing->inkRect().right() * 18 + 1.5) << qPrintable(tex);
        EXPECT_GE(ink.top(), drawing->inkRect().top() * 18 - 1.5) << qPrintable(tex);
        EXPECT_LE(ink.bottom(), drawing->inkRect().bottom() * 18 + 1.5) << qPrintable(tex);
    }
}

TEST_F(FormulaEngineTest, WhatCannotBeDrawnSaysSoOnce) {
    const auto wrong = formula(engine, u"\\frac{1"_s);
    ASSERT_TRUE(wrong);
    EXPECT_NE(wrong->error(), QString());
    const auto longOne = formula(engine, QString(FormulaEngine::longestFormula + 1, u'x'));
    ASSERT_TRUE(longOne);
    EXPECT_NE(longOne->error(), QString());
    const auto prose = diagram(engine, {u"это не диаграмма"_s, false, 700, 1, 1});
    ASSERT_TRUE(prose);
    EXPECT_NE(prose->error, QString());
    EXPECT_EQ(engine.cachedDiagram({u"это не диаграмма"_s, false, 700, 1, 1}), prose);
}

TEST_F(FormulaEngineTest, AProcessThatDiesIsStartedAgainAndItsWorkDoneAgain) {
    ASSERT_TRUE(formula(engine, u"a"_s));
    const qint64 first = engine.process().processId();
    ASSERT_EQ(kill(static_cast<pid_t>(first), SIGSTOP), 0); // it must not be done before it dies
    int came = 0;
    for (int i = 0; i < 3; ++i) {
        engine.requestFormula(u"b_%1"_s.arg(i), true, &context,
            [&](const FormulaEngine::Formula& drawing) { came += drawing && drawing->error().isEmpty(); });
    }
    settle();
    EXPECT_EQ(came, 0);
    ASSERT_EQ(kill(static_cast<pid_t>(first), SIGKILL), 0);
    EXPECT_TRUE(waitFor([&] { return came == 3; }, longEnough));
    EXPECT_NE(engine.process().processId(), first);
}

TEST_F(FormulaEngineTest, WithoutARendererEverythingIsAnsweredWithNothing) {
    for (const QString& program : {u"/nonexistent"_s, u"/bin/true"_s}) {
        FormulaEngine none(program, u"/nonexistent"_s, scheduler);
        EXPECT_FALSE(formula(none, u"x"_s)) << qPrintable(program);
        EXPECT_FALSE(diagram(none, {u"flowchart TD\n A --> B"_s, false, 100, 1, 1})) << qPrintable(program);
    }
    FormulaEngine bare(QStringLiteral(KORVI_RENDERER), u"/nonexistent"_s, scheduler);
    const auto x = formula(bare, u"x"_s);
    EXPECT_TRUE(!x || !x->error().isEmpty());
}

// By virtual time: a process that is silent is given up, one that nobody needs ends.
TEST_F(FormulaEngineTest, SilenceAndIdlenessEndTheProcess) {
    VirtualScheduler time;
    RenderProcess silent(u"/bin/cat"_s, u"/dev/zero"_s, time); // answers, but never a line
    int answers = 0;
    silent.request({{u"x"_s, 1}}, [&](const QJsonValue& answer) { answers += answer.isNull(); });
    EXPECT_TRUE(silent.isRunning());
    time.advance(RenderProcess::patience - 1ms);
    EXPECT_EQ(answers, 0);
    time.advance(1ms);
    EXPECT_EQ(answers, 1);
    EXPECT_FALSE(silent.isRunning());

    RenderProcess idle(QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), time);
    const QJsonObject request{{u"formulas"_s, QJsonArray{QJsonObject{{u"tex"_s, u"x"_s}}}}};
    idle.request(request, [&](const QJsonValue& answer) { answers += answer.isArray(); });
    EXPECT_TRUE(waitFor([&] { return answers == 2; }, longEnough));
    const qint64 id = idle.processId();
    time.advance(RenderProcess::idleTime - 1ms);
    EXPECT_TRUE(idle.isRunning());
    time.advance(1ms);
    EXPECT_FALSE(idle.isRunning());
    EXPECT_TRUE(waitFor([&] { return processTree(id).isEmpty(); }));
    EXPECT_TRUE(time.dueIn().empty());
}

// The process's words are outside input.
TEST(FormulaDrawing, NonsenseIsLeftOut) {
    FormulaFonts fonts(QStringLiteral(KORVI_BUNDLE) + u"/npm/katex@0.16.9/dist/fonts"_s);
    const auto json = QJsonDocument::fromJson(R"json({"width": 1e300, "ascent": "x", "descent": -1, "page": null,
        "items": [7, {"t": "ab", "x": [1], "f": "KaTeX_Main-Regular", "s": 1},
        {"t": "a", "x": [1], "f": "../../etc/passwd", "s": 1, "y": 0},
        {"t": "a", "x": [1], "f": "KaTeX_Main-Regular", "s": -4}, {"r": [1, 2]}, {"r": [0, 0, 1e99, -1e99]},
        {"p": ["M", 1, "C", 1, 2, 3, "L"], "clip": [1], "c": "rgb(999, 0, 0)"}, {"p": "M"},
        {"p": ["X", 1], "w": 1e99}]})json");
    ASSERT_TRUE(json.isObject());
    const FormulaDrawing drawing = FormulaDrawing::fromJson(json.object(), fonts);
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    drawing.paint(painter, fonts, 10, Qt::black, Qt::red);
    EXPECT_LE(drawing.inkRect().width(), 4100);
}

}
