#pragma once

#include "FakePaths.h"
#include "KorviApp.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>

namespace Korvi::Test {

// Somebody at the client: sees the items of the window in front and has a keyboard. The client's files are in a folder that
// outlives it, so that it can be started again.
class Person {
public:
    // Somebody new meets the consent and the guide; everybody else has them behind them.
    enum class Acquaintance { isNew, isOld };

    // `info` is added to what the client reads about its installation.
    explicit Person(quint16 port, QJsonObject info = {}, Acquaintance acquaintance = Acquaintance::isOld);

    void startClient();
    // The machine's network, as far as the client knows.
    void setNetwork(bool isThere);
    void quitClient();

    // Signs in with the code that `code` gives; false when the keyboard does not get to the item that the main screen
    // gives it to.
    bool signIn(
        const QString& email, const std::function<QString()>& code, const QString& goal = QStringLiteral("composer"));
    void type(const QString& text);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    // A key of another alphabet, as a keyboard of its country sends it.
    void pressCharacter(QChar character, Qt::KeyboardModifiers modifiers);
    // Presses Tab until the item has the keyboard; false when it never does.
    bool tabTo(const QString& objectName);
    void click(const QString& objectName); // in its middle
    void click(const QQuickItem* item);
    void ask(const QString& question); // types it and presses Return
    // Gives the dialog that saves another name, in the folder that it proposes; false when there is no dialog.
    bool saveAs(const QString& name);

    QQuickItem* see(const QString& objectName) const;           // null when it is not on the screen
    QList<QQuickItem*> seeAll(const QString& objectName) const; // from the top
    bool waitToSee(const QString& objectName, std::chrono::milliseconds bound = std::chrono::seconds(10)) const;
    bool waitToLose(const QString& objectName) const;
    // What the property `text` of an item on the screen says.
    QString read(const QString& objectName) const;
    // What the item that has the keyboard is called; empty without one.
    QString focus() const;
    QStringList readQuestions() const; // the bubbles on the screen, from the top
    QStringList readAnswers() const;   // as they were written

    // Where the desktop keeps what is downloaded.
    QString downloads() const { return m_home.filePath(QStringLiteral("downloads")); }

    KorviApp& app() { return *m_app; }
    ChatViewModel& chat() { return m_app->chat(); }

private:
    QQuickWindow* window() const; // the one in front

    QTemporaryDir m_home;
    FakePaths* m_paths = nullptr; // the client's
    std::unique_ptr<KorviApp> m_app;
};

}
