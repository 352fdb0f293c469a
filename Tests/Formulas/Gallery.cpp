// Draws formulas and diagrams of every kind into pictures, to be looked at:
//   formula-gallery FOLDER [light|dark] [TEXT SIZE] [formulas|words|diagrams]
// The scale factor is Qt's own (QT_SCALE_FACTOR).
#include "Linux/QtScheduler.h"
#include "Markdown/FormulaEngine.h"
#include "Samples.h"
#include "WaitFor.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtPlugin>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

namespace {

constexpr char scene[] = R"(
import QtQuick
import Korvi.Views

Window {
    id: window

    required property var formulas
    required property var diagrams
    required property string scheme
    required property real textSize
    required property string kind
    readonly property bool ready: {
        for (let i = 0; i < column.children.length; ++i) {
            const child = column.children[i]
            if (child.isReady === false && !child.implicitHeight)
                return false
        }
        return true
    }

    color: Theme.bg
    height: column.height + 40
    visible: true
    width: 760

    Component.onCompleted: {
        Theme.scheme = scheme
        Theme.textSize = textSize
    }

    Column {
        id: column

        objectName: "column"
        spacing: 8
        width: parent.width - 40
        x: 20
        y: 20

        Repeater {
            model: window.kind === "formulas" ? window.formulas : []

            LaTeXView {
                required property string modelData

                formula: modelData
                width: column.width
            }
        }
        Repeater {
            model: window.kind === "words" ? window.formulas : []

            Row {
                required property string modelData

                Label { anchors.baseline: inline.baseline; text: "Среди слов " }
                LaTeXView {
                    id: inline

                    formula: parent.modelData
                    isBlock: false
                }
                Label { anchors.baseline: inline.baseline; text: " на той же строке." }
            }
        }
        Repeater {
            model: window.kind === "diagrams" ? window.diagrams : []

            MermaidView {
                required property string modelData

                code: modelData
                width: column.width
            }
        }
    }
}
)";

}

int main(int argc, char* argv[]) {
    using namespace Korvi;
    QGuiApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 2)
        return EXIT_FAILURE;
    const QString scheme = arguments.value(2, QStringLiteral("light"));
    const QString size = arguments.value(3, QStringLiteral("13"));
    const QString kind = arguments.value(4, QStringLiteral("formulas"));
    QtScheduler scheduler;
    FormulaEngine formulas(QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler);
    QQmlApplicationEngine engine;
    formulas.serve(engine);
    engine.setInitialProperties({{QStringLiteral("formulas"), Test::sampleFormulas()},
        {QStringLiteral("diagrams"), Test::sampleDiagrams()}, {QStringLiteral("scheme"), scheme},
        {QStringLiteral("textSize"), size.toDouble()}, {QStringLiteral("kind"), kind}});
    engine.loadData(scene);
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    if (!window)
        return EXIT_FAILURE;
    // Everything has its place when nothing has grown for a while.
    qreal height = -1;
    int calm = 0;
    Test::waitFor(
        [&] {
            calm = window->height() == height ? calm + 1 : 0;
            height = window->height();
            return calm > 1500;
        },
        std::chrono::seconds(30));
    const QString path = arguments[1] +
        QStringLiteral("/%1-%2-%3-%4.png").arg(kind, scheme, size, QString::number(window->devicePixelRatio()));
    return window->grabWindow().save(path) ? EXIT_SUCCESS : EXIT_FAILURE;
}
