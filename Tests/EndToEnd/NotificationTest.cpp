// An answer that ends while the window is put away: the desktop's notification server tells of it and leads back to it.
#include "LocalService.h"
#include "Person.h"
#include "WaitFor.h"

#include <QGuiApplication>
#include <QProcess>

#include <gtest/gtest.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

QByteArray control(const QStringList& arguments) {
    QProcess process;
    process.start(u"dunstctl"_s, arguments);
    EXPECT_TRUE(process.waitForFinished());
    return process.readAllStandardOutput().trimmed();
}

TEST(Notification, TellsOfAnAnswerAndLeadsToIt) {
    QProcess manager; // a window can be put away only where somebody manages windows
    const QTemporaryDir folder;
    const QString ready = folder.filePath(u"ready"_s);
    manager.start(u"openbox"_s, {u"--sm-disable"_s, u"--startup"_s, u"touch "_s + ready});
    ASSERT_TRUE(waitFor([&] { return QFile::exists(ready); }));
    LocalService service;
    service.start({u"--demo-delay-ms"_s, u"5"_s});
    Person person(service.port());
    person.startClient();
    ASSERT_TRUE(person.signIn(u"user@example.com"_s, [&] { return service.code(); }));
    ASSERT_TRUE(waitFor([&] { return person.chat().isConnected(); }));

    // While the window is in front nobody is told.
    QWindow* window = person.app().scenes().mainWindow();
    ASSERT_TRUE(window->isActive());
    person.ask(u"Нарисуй море"_s);
    ASSERT_TRUE(person.waitToSee(u"imageTarget"_s));
    ASSERT_TRUE(waitFor([&] { return !person.chat().isGenerating(); }));
    settle();
    EXPECT_EQ(control({u"count"_s, u"displayed"_s}), "0");

    person.press(Qt::Key_N, Qt::ControlModifier);
    person.ask(u"Нарисуй горы"_s);
    ASSERT_TRUE(waitFor([&] { return person.chat().activeChatId() > 0; }));
    const qint64 chat = person.chat().activeChatId();
    person.press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_NE(person.chat().activeChatId(), chat);
    window->showMinimized();
    ASSERT_TRUE(waitFor([] { return QGuiApplication::applicationState() != Qt::ApplicationActive; }));
    ASSERT_TRUE(waitFor([] { return control({u"count"_s, u"displayed"_s}) == "1"; }, std::chrono::seconds(30)));
    const QByteArray history = control({u"history"_s});
    EXPECT_FALSE(history.contains("Картинк")); // nothing of what was said

    settle(); // its number may reach the client after it is seen
    control({u"action"_s, u"0"_s});
    ASSERT_TRUE(waitFor([&] { return person.chat().activeChatId() == chat; }));
    EXPECT_TRUE(waitFor([&] { return window->isActive() && window->isExposed(); }));
    EXPECT_TRUE(person.waitToSee(u"imageTarget"_s));
    EXPECT_EQ(person.readQuestions(), QStringList{u"Нарисуй горы"_s});

    person.quitClient();
    manager.terminate();
    manager.waitForFinished();
}

}
}
