// How long formulas and diagrams take from being asked for to being there, what it costs around them, and what the
// drawing of one formula costs.
#include "Linux/QtScheduler.h"
#include "Markdown/FormulaEngine.h"
#include "ProcessTree.h"
#include "Samples.h"
#include "WaitFor.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>

#include <cstdio>
#include <unistd.h>

using namespace Korvi;

namespace {

// Milliseconds until the first and until the last of so many answers.
template <class Ask>
std::pair<double, double> timed(int count, Ask ask) {
    QElapsedTimer timer;
    timer.start();
    double first = 0;
    int came = 0;
    const auto done = [&](bool isThere) {
        if (!isThere)
            qFatal("bench-formulas: not drawn");
        if (++came == 1)
            first = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    };
    for (int i = 0; i < count; ++i)
        ask(i, done);
    Test::waitFor([&] { return came == count; }, std::chrono::seconds(60));
    return {first, static_cast<double>(timer.nsecsElapsed()) / 1e6};
}

}

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    QGuiApplication application(argc, argv);
    QtScheduler scheduler;
    QObject context;
    FormulaEngine engine(QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler);

    const auto askFormula = [&](const QString& tex, const auto& done) {
        engine.requestFormula(tex, true, &context, [done](const auto& came) { done(came && came->error().isEmpty()); });
    };
    const auto askDiagram = [&](const QString& code, const auto& done) {
        engine.requestDiagram(
            {code, false, 700, 1, 2}, &context, [done](const auto& came) { done(came && !came->image.isNull()); });
    };
    const auto cold = timed(1, [&](int, auto done) { askFormula(QStringLiteral("x"), done); });
    const auto samples = Test::sampleFormulas();
    const auto many = timed(
        200, [&](int i, auto done) { askFormula(samples[i % samples.size()] + QStringLiteral(" + %1").arg(i), done); });
    const auto codes = Test::sampleDiagrams();
    const auto diagrams =
        timed(10, [&](int i, auto done) { askDiagram(codes[i % 7] + QStringLiteral("\n%% %1").arg(i), done); });

    double memory = 0;
    for (const auto& process : Test::processTree(engine.process().processId()))
        memory += process.resident;

    qsizetype bytes = 0;
    QImage image(1600, 400, QImage::Format_ARGB32_Premultiplied);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 200; ++i) {
        const auto drawing = engine.cachedFormula(samples[i % samples.size()] + QStringLiteral(" + %1").arg(i), true);
        if (!drawing)
            qFatal("bench-formulas: not kept");
        bytes += drawing->cost();
        QPainter painter(&image);
        painter.scale(2, 2);
        painter.translate(10, 100);
        drawing->paint(painter, engine.fonts(), 18, Qt::black, Qt::red);
    }
    const double drawn = static_cast<double>(timer.nsecsElapsed()) / 1e6 / 200;

    std::printf("first formula, from nothing  %7.0f ms\n", cold.second);
    std::printf("200 formulas                 %7.0f ms, the first of them after %.0f ms\n", many.second, many.first);
    std::printf(
        "10 diagrams                  %7.0f ms, the first of them after %.0f ms\n", diagrams.second, diagrams.first);
    std::printf("renderers                    %7d\n", Test::countRenderers(engine.process().processId()));
    std::printf("memory of all its processes  %7.0f MB, resident; what they share is counted for each\n", memory);
    std::printf("a formula kept               %7.1f KB\n", static_cast<double>(bytes) / 200 / 1024);
    std::printf("a formula drawn at ratio 2   %7.3f ms\n", drawn);
    return Test::countRenderers(engine.process().processId()) <= 2 && drawn < 4 ? EXIT_SUCCESS : EXIT_FAILURE;
}
