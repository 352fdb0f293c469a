#pragma once

#include "KorviApp.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>

namespace Korvi::Test {

// Somebody at the client: sees the window's items and has a keyboard. The client's files are in a folder that
// outlives it, so that it can be started again.
class Person {
public:
    // `info` is added to what the client reads about its installation.
    explicit Person(quint16 port, QJsonObject info = {});

    void startClient();
    void quitClient();

    // Signs in with the code that `code` gives; false when the main screen does not come.
    bool signIn(const QString& email, const std::function<QString()>& code);
    void type(const QString& text);
    void press(Qt::Key key);
    void click(const QString& objectName); // in its middle
    void ask(const QString& question);     // types it and presses Return

    QQuickItem* see(const QString& objectName) const; // null when it is not on the screen
    QStringList readQuestions() const;                // the bubbles on the screen, from the top
    QStringList readAnswers() const;

    KorviApp& app() { return *m_app; }
    ChatViewModel& chat() { return m_app->chat(); }

private:
    QStringList read(const QString& objectName) const;
    QQuickWindow* window() const;

    QTemporaryDir m_home;
    std::unique_ptr<KorviApp> m_app;
};

}
