// Runs the tst_*.qml files beside it. A warning of the QML engine, a binding loop among them, ends the run.
#include <QQmlEngine>
#include <QtPlugin>
#include <QtQuickTest>

Q_IMPORT_PLUGIN(Korvi_ViewsPlugin)

class Setup : public QObject {
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine* engine) {
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                qFatal("QML warning: %s", qUtf8Printable(warning.toString()));
        });
    }
};

QUICK_TEST_MAIN_WITH_SETUP(views, Setup)

#include "ViewsTest.moc"
