// What formulas, diagrams and images look like on different screens, in both schemes and while they come.
#include "Linux/QtScheduler.h"
#include "Markdown/FormulaEngine.h"
#include "WaitFor.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <QTcpServer>
#include <QTcpSocket>

#include <gmock/gmock.h>

#include <cmath>

namespace Korvi::Test {

using namespace Qt::Literals;
using namespace std::chrono_literals;

namespace {

constexpr QSize screenSize(600, 400);

// A window on a screen with so many pixels for each of its own.
class Screen {
public:
    Screen(QQmlEngine& engine, double ratio, const QByteArray& qml)
        : m_window(&m_control)
        , m_image(screenSize * ratio, QImage::Format_ARGB32_Premultiplied) {
        m_image.setDevicePixelRatio(ratio);
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport Korvi.Views\n" + qml, {});
        m_item.reset(qobject_cast<QQuickItem*>(component.create()));
        EXPECT_TRUE(m_item) << qPrintable(component.errorString());
        QQuickRenderTarget target = QQuickRenderTarget::fromPaintDevice(&m_image);
        target.setDevicePixelRatio(ratio);
        m_window.setRenderTarget(target);
        m_window.setGeometry(QRect({}, screenSize));
        m_item->setParentItem(m_window.contentItem());
    }

    QQuickItem& item() { return *m_item; }
    bool isReady() {
        return waitFor([&] { return m_item->property("isReady").toBool(); }, 60s);
    }
    QImage picture() {
        m_window.setColor(Qt::white);
        m_control.polishItems();
        m_control.beginFrame();
        m_control.sync();
        m_control.render();
        m_control.endFrame();
        QImage copy = m_image.convertToFormat(QImage::Format_Grayscale8);
        copy.setDevicePixelRatio(1);
        return copy;
    }

private:
    QQuickRenderControl m_control;
    QQuickWindow m_window;
    QImage m_image;
    std::unique_ptr<QQuickItem> m_item;
};

// Of all pixels, on average.
double difference(const QImage& a, const QImage& b) {
    EXPECT_EQ(a.size(), b.size());
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    return sum / a.width() / a.height();
}

int darkest(const QImage& image) {
    int found = 255;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            found = std::min(found, qGray(image.pixel(x, y)));
    return found;
}

class LooksTest : public testing::Test {
protected:
    LooksTest() { engine.serve(scenes); }

    QQuickItem* show(const QByteArray& qml) {
        QQmlComponent component(&scenes);
        component.setData(
            "import QtQuick\nimport Korvi.Views\nWindow { visible: true; width: 600; height: 600\n" + qml + "}", {});
        window.reset(qobject_cast<QQuickWindow*>(component.create()));
        EXPECT_TRUE(window) << qPrintable(component.errorString());
        return window ? window->contentItem()->childItems().value(0) : nullptr;
    }
    void setTheme(const char* property, const QVariant& value) {
        QQmlComponent component(&scenes);
        component.setData("import QtQml\nimport Korvi.Views\nQtObject { property QtObject theme: Theme }", {});
        const std::unique_ptr<QObject> holder(component.create());
        ASSERT_TRUE(holder) << qPrintable(component.errorString());
        holder->property("theme").value<QObject*>()->setProperty(property, value);
    }

    QtScheduler scheduler;
    FormulaEngine engine{QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler};
    QQmlEngine scenes;
    std::unique_ptr<QQuickWindow> window;
};

}

// Not a picture for another screen that was made larger.
TEST_F(LooksTest, AFormulaIsDrawnInThePixelsOfItsScreen) {
    const QString tex = u"\\frac{a}{b} + \\sqrt{x}"_s;
    const QByteArray qml = "LaTeXView { color: 'black'; fontSize: 30; formula: '\\\\frac{a}{b} + \\\\sqrt{x}'; "
                           "isBlock: false; x: 20; y: 30 }";
    QImage once;
    for (const double ratio : {1.0, 1.5, 2.0}) {
        Screen screen(scenes, ratio, qml);
        ASSERT_TRUE(screen.isReady());
        const QImage shown = screen.picture();
        ASSERT_LT(darkest(shown), 40) << ratio;

        QImage drawn(screenSize * ratio, QImage::Format_ARGB32_Premultiplied);
        drawn.setDevicePixelRatio(ratio);
        drawn.fill(Qt::white);
        QPainter painter(&drawn);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const auto drawing = engine.cachedFormula(tex, false);
        ASSERT_TRUE(drawing);
        painter.translate(20 - drawing->inkRect().left() * 30, 30 + screen.item().baselineOffset());
        drawing->paint(painter, engine.fonts(), 30, Qt::black, Qt::red);
        painter.end();
        drawn.setDevicePixelRatio(1);

        if (ratio == 1)
            once = shown;
        const double fromOwn = difference(shown, drawn);
        const double fromOther =
            difference(shown, once.scaled(shown.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        if (ratio != 1) {
            EXPECT_GT(fromOther, 4 * fromOwn) << ratio << ": " << fromOwn << " and " << fromOther;
        }
    }
}

TEST_F(LooksTest, AFormulaFollowsTheSchemeAndTheSizeOfTheText) {
    setTheme("scheme", u"light"_s);
    Screen screen(scenes, 1, "LaTeXView { formula: 'x^2'; width: 500 }");
    ASSERT_TRUE(screen.isReady());
    EXPECT_LT(darkest(screen.picture()), 100);
    const qreal height = screen.item().implicitHeight();
    setTheme("scheme", u"dark"_s);
    EXPECT_GT(darkest(screen.picture()), 150); // on white
    setTheme("textSize", 20);
    EXPECT_NEAR(screen.item().implicitHeight() - 8, (height - 8) * 20 / 13, 2);
    EXPECT_TRUE(screen.item().property("isReady").toBool()); // drawn anew, not asked for again
}

// A page of no more than ten pixels has nothing in it yet.
TEST_F(LooksTest, AFormulaTakesTheHeightOfItsPage) {
    Screen screen(scenes, 1, "LaTeXView { formula: 'x'; width: 500 }");
    ASSERT_TRUE(screen.isReady());
    const qreal perPixel = (screen.item().implicitHeight() - 8) / screen.item().property("fontSize").toReal();
    screen.item().setProperty("fontSize", 9.99 / perPixel);
    EXPECT_EQ(screen.item().implicitHeight(), 40);
    screen.item().setProperty("fontSize", 10.5 / perPixel);
    EXPECT_NEAR(screen.item().implicitHeight(), 18.5, 0.001);
}

TEST_F(LooksTest, ADiagramKeepsItsHeightWhenTheSchemeChanges) {
    setTheme("scheme", u"light"_s);
    QQuickItem* view = show("MermaidView { code: 'flowchart TD\\n A --> B'; width: 500 }");
    ASSERT_TRUE(waitFor([&] { return view->property("isReady").toBool(); }, 60s));
    settle();
    const qreal height = view->implicitHeight();
    EXPECT_GT(height, 50);
    const QImage light = window->grabWindow();
    qreal lowest = height;
    QObject::connect(
        view, &QQuickItem::implicitHeightChanged, [&] { lowest = std::min(lowest, view->implicitHeight()); });
    setTheme("scheme", u"dark"_s);
    EXPECT_TRUE(view->property("isReady").toBool()); // the old picture stays until there is the other one
    const auto drawing = view->findChild<QQuickItem*>(u"diagramDrawing"_s);
    const DiagramRequest dark{u"flowchart TD\n A --> B"_s, true,
        static_cast<int>(drawing->property("availableWidth").toReal()), drawing->property("drawingScale").toReal(), 1};
    ASSERT_TRUE(waitFor([&] { return engine.cachedDiagram(dark) != nullptr; }, 60s));
    settle();
    EXPECT_EQ(lowest, height);
    EXPECT_NEAR(view->implicitHeight(), height, 2);
    const QPoint middle = drawing->mapToScene({drawing->width() / 2, 8}).toPoint(); // in the first node
    EXPECT_GT(qGray(light.pixel(middle)), 200);
    EXPECT_LT(qGray(window->grabWindow().pixel(middle)), 100);
}

TEST_F(LooksTest, FormulasAndDiagramsAreReadAsTheyAreWritten) {
    QQuickItem* view =
        show("Item { property string formula: a.Accessible.name; property string inlined: b.Accessible.name\n"
             "property string diagram: c.Accessible.name + ': ' + c.Accessible.description\n"
             "LaTeXView { id: a; formula: 'x^2' }\n LaTeXView { id: b; formula: 'y'; isBlock: false }\n"
             "MermaidView { id: c; code: 'flowchart TD' } }");
    EXPECT_EQ(view->property("formula"), u"$$x^2$$"_s);
    EXPECT_EQ(view->property("inlined"), u"$y$"_s);
    EXPECT_EQ(view->property("diagram"), u"Диаграмма: flowchart TD"_s);
}

TEST_F(LooksTest, AnImageShowsHowMuchOfItHasCome) {
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QBuffer png;
    image.save(&png, "PNG");
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QQuickItem* view =
        show("ImageAttachmentView { width: 500; url: 'http://127.0.0.1:" + QByteArray::number(server.serverPort()) +
            "/a.png' }");
    auto* bar = view->findChild<QQuickItem*>(u"imageProgress"_s);
    ASSERT_TRUE(bar);
    EXPECT_FALSE(bar->isVisible());
    ASSERT_TRUE(waitFor([&] { return server.hasPendingConnections(); }));
    QTcpSocket* socket = server.nextPendingConnection();
    const QByteArray all = png.data();
    socket->write("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Length: " + QByteArray::number(all.size()) +
        "\r\n\r\n" + all.first(all.size() / 4));
    waitFor([] { return false; }, 200ms); // what comes quickly is not told piece by piece
    socket->write(all.sliced(all.size() / 4, all.size() / 4));
    EXPECT_TRUE(waitFor([&] { return bar->isVisible(); }));
    EXPECT_TRUE(waitFor([&] { return std::abs(bar->width() - view->width() / 2) < 20; })) << bar->width();
    socket->write(all.sliced(2 * (all.size() / 4)));
    EXPECT_TRUE(waitFor([&] { return view->property("isShown").toBool(); }));
    EXPECT_FALSE(bar->isVisible());
}

}
