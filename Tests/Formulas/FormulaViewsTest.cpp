#include "Linux/QtScheduler.h"
#include "Markdown/FormulaEngine.h"
#include "WaitFor.h"

#include <QColor>
#include <QImage>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>

namespace Korvi::Test {

using namespace Qt::Literals;
using namespace std::chrono_literals;

namespace {

// One view in a window, without and with a renderer.
class FormulaViewsTest : public testing::Test {
protected:
    FormulaViewsTest() {
        QObject::connect(&scenes, &QQmlEngine::warnings, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                ADD_FAILURE() << qPrintable(warning.toString());
        });
    }

    QQuickItem* show(const QByteArray& qml) {
        QQmlComponent component(&scenes);
        component.setData(
            "import QtQuick\nimport Korvi.Views\nWindow { visible: true; width: 600; height: 600\n" + qml + "}", {});
        window.reset(qobject_cast<QQuickWindow*>(component.create()));
        EXPECT_TRUE(window) << qPrintable(component.errorString());
        return window ? window->contentItem()->childItems().value(0) : nullptr;
    }
    static QQuickItem* part(QQuickItem* view, const char* name) {
        return view->findChild<QQuickItem*>(QString::fromLatin1(name));
    }
    // Also of what a model has made.
    static QList<QQuickItem*> parts(const QQuickItem* view, const QString& name) {
        QList<QQuickItem*> found;
        for (QQuickItem* child : view->childItems()) {
            if (child->objectName() == name)
                found.append(child);
            found += parts(child, name);
        }
        return found;
    }
    static bool isReady(QQuickItem* view) {
        return waitFor([&] { return view->property("isReady").toBool(); }, 60s);
    }

    QtScheduler scheduler;
    FormulaEngine engine{QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler};
    QQmlEngine scenes;
    std::unique_ptr<QQuickWindow> window;
};

}

TEST_F(FormulaViewsTest, AFormulaIsFortyHighUntilItIsKnownAndAtOnceWhenItWas) {
    engine.serve(scenes);
    const QByteArray qml = "LaTeXView { formula: 'E = mc^2'; width: 500 }";
    QQuickItem* view = show(qml);
    EXPECT_EQ(view->implicitHeight(), 40);
    EXPECT_FALSE(part(view, "formulaSource")->isVisible());
    ASSERT_TRUE(isReady(view));
    const qreal page = part(view, "formulaDrawing")->property("pageHeight").toReal();
    EXPECT_GT(page, 10);
    EXPECT_EQ(view->implicitHeight(), page + 8);

    view = show(qml);
    EXPECT_TRUE(view->property("isReady").toBool());
    EXPECT_EQ(view->implicitHeight(), page + 8);
}

TEST_F(FormulaViewsTest, AFormulaIsOneCharacterThatCopiesAsItsSource) {
    engine.serve(scenes);
    QQuickItem* view = show("LaTeXView { formula: 'a_1'; isBlock: false }");
    ASSERT_TRUE(isReady(view));
    EXPECT_EQ(view->property("length"), 1);
    EXPECT_EQ(view->property("selectedText"), u""_s);
    QMetaObject::invokeMethod(view, "select", Q_ARG(int, 0), Q_ARG(int, 1));
    EXPECT_EQ(view->property("selectedText"), u"$a_1$"_s);
    view->setProperty("isBlock", true);
    EXPECT_EQ(view->property("selectedText"), u"$$a_1$$"_s);
    QMetaObject::invokeMethod(view, "deselect");
    EXPECT_EQ(view->property("selectedText"), u""_s);
}

// Among words: on their baseline, no higher than it needs to be, and growing with the text.
TEST_F(FormulaViewsTest, ASmallFormulaHasItsBaselineAndGrowsWithItsSize) {
    engine.serve(scenes);
    QQuickItem* view = show("LaTeXView { formula: 'x_1'; isBlock: false; fontSize: 20 }");
    ASSERT_TRUE(isReady(view));
    EXPECT_EQ(view->implicitHeight(), part(view, "formulaDrawing")->implicitHeight());
    EXPECT_GT(view->baselineOffset(), 10);
    EXPECT_LT(view->baselineOffset(), view->implicitHeight());
    const qreal width = view->implicitWidth();
    view->setProperty("fontSize", 40);
    EXPECT_NEAR(view->implicitWidth(), 2 * width, 2);
}

TEST_F(FormulaViewsTest, FormulasAmongWordsStandOnWholePixels) {
    engine.serve(scenes);
    QQuickItem* view =
        show("AdvancedMarkdownText { text: 'Если $D > 0$, то так, если $x_1$ или $y^2$, то иначе.'; width: 500 }");
    const auto drawings = [&] { return parts(view, u"formulaDrawing"_s); };
    ASSERT_TRUE(waitFor(
        [&] {
            const auto all = drawings();
            return all.size() == 3 && std::ranges::all_of(all, [](QQuickItem* item) {
                return item->property("isReady").toBool() && item->mapToScene({}).x() > 0;
            });
        },
        60s));
    settle();
    for (QQuickItem* drawing : drawings()) {
        const QPointF at = drawing->mapToScene({});
        EXPECT_EQ(at, QPointF(at.toPoint())) << qPrintable(drawing->property("formula").toString());
    }
}

TEST_F(FormulaViewsTest, AWideFormulaIsMadeSmallerAndThenScrolls) {
    engine.serve(scenes);
    QString terms;
    for (int i = 0; i < 12; ++i)
        terms += u"a_{%1} + "_s.arg(i);
    QQuickItem* view = show("LaTeXView { formula: '" + terms.toUtf8() + "b'; width: 500 }");
    ASSERT_TRUE(isReady(view));
    EXPECT_LT(view->property("fit").toReal(), 1);
    EXPECT_LE(part(view, "formulaDrawing")->width(), 501);
    EXPECT_FALSE(part(view, "formulaBar")->isVisible());
    view->setWidth(200);
    EXPECT_EQ(view->property("fit").toReal(), 0.75);
    EXPECT_GT(part(view, "formulaDrawing")->width(), 300);
    EXPECT_TRUE(part(view, "formulaBar")->isVisible());
}

TEST_F(FormulaViewsTest, WhatIsStillBeingWrittenIsShownAsItIsWritten) {
    engine.serve(scenes);
    QQuickItem* view = show("LaTeXView { formula: '\\\\frac{1'; isOpen: true; width: 500 }");
    EXPECT_TRUE(part(view, "formulaSource")->isVisible());
    view->setProperty("formula", u"\\frac{1}{2}"_s);
    settle();
    EXPECT_FALSE(engine.process().isRunning()); // nothing was asked for
    view->setProperty("isOpen", false);
    EXPECT_TRUE(part(view, "formulaSource")->isVisible()); // until there is something better
    ASSERT_TRUE(isReady(view));
    EXPECT_FALSE(part(view, "formulaSource")->isVisible());
}

// A formula that is never closed takes the rest of an answer with it.
TEST_F(FormulaViewsTest, ALongSourceIsShownToItsEndAndGrows) {
    const QString lines = u"x = 1\n"_s.repeated(1000);
    for (const QByteArray& kind : {"LaTeXView { formula: ''"_ba, "MermaidView { code: ''"_ba}) {
        QQuickItem* view = show(kind + "; isOpen: true; width: 500 }");
        const char* content = kind.startsWith('L') ? "formula" : "code";
        view->setProperty(content, lines);
        EXPECT_TRUE(waitFor([&] { return view->implicitHeight() > 10'000; })) << view->implicitHeight();
        const qreal height = view->implicitHeight();
        view->setProperty(content, QString(lines + u"y\ny"_s));
        EXPECT_GT(view->implicitHeight(), height);
        view->setProperty("isOpen", false);
        EXPECT_GT(view->implicitHeight(), 10'000); // there is no renderer
        window.reset();
    }
}

TEST_F(FormulaViewsTest, WhatCannotBeDrawnIsShownAsItsSource) {
    // No renderer at all.
    QQuickItem* view = show("LaTeXView { formula: 'x'; width: 500 }");
    EXPECT_TRUE(part(view, "formulaSource")->isVisible());
    EXPECT_EQ(part(view, "formulaSource")->property("text"), u"$$x$$"_s);
    view = show("MermaidView { code: 'flowchart TD'; width: 500 }");
    EXPECT_TRUE(waitFor([&] { return part(view, "diagramSource")->isVisible(); }));
    const qreal height = view->implicitHeight();
    EXPECT_GT(height, 20);
    view->setProperty("showsSource", true); // as after some time
    view->setProperty("code", u"flowchart LR"_s);
    EXPECT_EQ(view->implicitHeight(), height);

    // One that does not understand it.
    engine.serve(scenes);
    view = show("LaTeXView { formula: '\\\\frac{1'; width: 500 }");
    EXPECT_TRUE(waitFor([&] { return part(view, "formulaSource")->isVisible(); }, 60s));
    view = show("MermaidView { code: 'не диаграмма'; width: 500 }");
    EXPECT_TRUE(waitFor([&] { return part(view, "diagramSource")->isVisible(); }, 60s));
    EXPECT_EQ(part(view, "diagramSource")->property("text"), u"не диаграмма"_s);
}

TEST_F(FormulaViewsTest, ADiagramGrowsAndNeverShrinks) {
    engine.serve(scenes);
    QQuickItem* view = show("MermaidView { code: 'flowchart TD\\n A --> B --> C'; width: 500 }");
    EXPECT_EQ(view->implicitHeight(), 1);
    ASSERT_TRUE(isReady(view));
    const qreal grown = view->implicitHeight();
    EXPECT_NEAR(grown, part(view, "diagramDrawing")->height() + 52, 1);
    view->setWidth(80);
    EXPECT_TRUE(waitFor([&] { return part(view, "diagramDrawing")->height() < grown - 60; }, 60s));
    EXPECT_EQ(view->implicitHeight(), grown);
    EXPECT_EQ(view->property("selectedText"), u""_s);
    QMetaObject::invokeMethod(view, "selectAll");
    EXPECT_EQ(view->property("selectedText"), u"```mermaid\nflowchart TD\n A --> B --> C\n```"_s);
}

TEST_F(FormulaViewsTest, ADiagramIsShownLargerOverTheWholeWindowAndSharp) {
    engine.serve(scenes);
    QQuickItem* page = show(R"(Item {
        property string copied
        width: 600; height: 600
        AdvancedMarkdownText {
            id: answer
            objectName: 'answer'
            width: 500
            text: '```mermaid\nflowchart TD\n A --> B --> C\n```'
            onDiagramWanted: code => viewers.showDiagram(code)
        }
        AnswerViewers { id: viewers; onCopyWanted: text => parent.copied = text }
    })");
    auto* diagram = part(page, "diagramDrawing")->parentItem()->parentItem();
    ASSERT_TRUE(isReady(diagram));
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(window.get(), &down);
    };
    window->requestActivate();
    ASSERT_TRUE(waitFor([&] { return window->isActive(); }));
    press(Qt::Key_Tab);
    ASSERT_EQ(window->activeFocusItem(), diagram);
    EXPECT_TRUE(part(page, "diagramRing")->isVisible());
    const auto pointer = [&](QEvent::Type type, double shift = 0) {
        const QPointF at = diagram->mapToScene({diagram->width() / 2 + shift, diagram->height() / 2});
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, at, window->mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &event);
    };
    const auto isOpen = [&] { return window->findChild<QQuickItem*>(u"viewerDiagram"_s) != nullptr; };
    pointer(QEvent::MouseButtonPress);
    pointer(QEvent::MouseMove, 40);
    pointer(QEvent::MouseButtonRelease, 40);
    EXPECT_FALSE(waitFor(isOpen, 300ms));
    EXPECT_EQ(diagram->property("selectedText"), u"```mermaid\nflowchart TD\n A --> B --> C\n```"_s);
    pointer(QEvent::MouseButtonPress);
    pointer(QEvent::MouseButtonRelease);
    EXPECT_FALSE(part(page, "diagramRing")->isVisible());
    EXPECT_TRUE(waitFor(isOpen));
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return !isOpen(); }));
    QMetaObject::invokeMethod(diagram, "takeFocus");
    press(Qt::Key_Return);
    QQuickItem* large = nullptr;
    ASSERT_TRUE(waitFor([&] {
        large = window->findChild<QQuickItem*>(u"viewerDiagram"_s);
        return large && large->property("isReady").toBool();
    }));
    settle();
    EXPECT_GT(large->width(), part(page, "diagramDrawing")->width());
    EXPECT_LE(large->height(), 600);

    press(Qt::Key_Plus);
    press(Qt::Key_Plus);
    press(Qt::Key_Plus);
    const qreal pixels = large->implicitWidth() * large->property("magnification").toReal();
    EXPECT_GE(pixels, large->width());
    const QTemporaryDir folder;
    const QUrl file = QUrl::fromLocalFile(folder.filePath(u"diagram.png"_s));
    EXPECT_TRUE(waitFor([&] {
        bool isSaved = false;
        QMetaObject::invokeMethod(
            large, "savePng", Q_RETURN_ARG(bool, isSaved), Q_ARG(QUrl, file), Q_ARG(QColor, Qt::white));
        return isSaved && QImage(file.toLocalFile()).width() >= static_cast<int>(pixels);
    }));
    EXPECT_EQ(QImage(file.toLocalFile()).pixelColor(0, 0), QColor(Qt::white));

    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(page->property("copied"), u"flowchart TD\n A --> B --> C"_s);
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return !window->findChild<QQuickItem*>(u"viewerDiagram"_s); }));
}

}
