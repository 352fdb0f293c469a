#include "Person.h"

#include "WaitFor.h"

#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QTest>
#include <QtQuickTest>

namespace Korvi::Test {

using namespace Qt::Literals;
using namespace std::chrono_literals;

Person::Person(quint16 port, QJsonObject info, Acquaintance acquaintance) {
    qputenv("XDG_DATA_HOME", m_home.path().toUtf8());
    qputenv("XDG_CACHE_HOME", m_home.filePath(u"cache"_s).toUtf8());
    qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
    QFile folders(m_home.filePath(u"user-dirs.dirs"_s));
    folders.open(QIODevice::WriteOnly);
    folders.write("XDG_DOWNLOAD_DIR=\"" + downloads().toUtf8() + "\"\n");
    folders.close();
    info.insert("KorviAPIBaseURL"_L1, u"http://127.0.0.1:%1/api/v1"_s.arg(port));
    QFile file(m_home.filePath(u"Info.json"_s));
    file.open(QIODevice::WriteOnly);
    file.write(QJsonDocument(info).toJson());
    qputenv("KORVI_INFO", file.fileName().toUtf8());
    if (acquaintance == Acquaintance::isOld) {
        Defaults defaults(m_home.filePath(u"korvi/defaults.sqlite"_s));
        for (const QString& key : {u"aiDataConsentGiven"_s, u"hasSeenAppOnboarding"_s, u"hasSeenAgentOnboarding"_s})
            defaults.setBoolean(key, true);
    }
}

void Person::startClient() {
    auto paths = std::make_unique<FakePaths>();
    m_paths = paths.get();
    m_app = std::make_unique<KorviApp>(std::move(paths));
    if (!m_app->start())
        throw std::runtime_error("the window could not be made");
    waitFor([this] { return m_app->auth().isInitialCheckComplete() && window()->isExposed(); });
    window()->requestActivate();
    waitFor([this] { return window()->isActive(); });
}

void Person::setNetwork(bool isThere) {
    m_paths->change({.isSatisfied = isThere, .interfaces = {NetworkPath::Interface::wifi}});
}

void Person::quitClient() {
    m_app.reset();
}

bool Person::signIn(const QString& email, const std::function<QString()>& code, const QString& goal) {
    if (!waitFor([this] { return see(u"emailField"_s) && see(u"emailField"_s)->hasActiveFocus(); }))
        return false;
    // Over the address that may still stand there.
    QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
    type(email);
    press(Qt::Key_Return);
    QString digits;
    if (!waitFor([&] {
            digits = code();
            return !digits.isEmpty() && see(u"codeField"_s) && see(u"codeField"_s)->hasActiveFocus();
        }))
        return false;
    type(digits);
    return waitFor([&] { return focus() == goal; });
}

void Person::type(const QString& text) {
    for (const QChar character : text)
        QTest::sendKeyEvent(QTest::Click, window(), Qt::Key_unknown, QString(character), Qt::NoModifier);
}

void Person::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window(), key, modifiers);
}

void Person::pressCharacter(QChar character, Qt::KeyboardModifiers modifiers) {
    const auto key = static_cast<Qt::Key>(character.toUpper().unicode());
    QTest::sendKeyEvent(QTest::Click, window(), key, QString(character), modifiers);
}

bool Person::tabTo(const QString& objectName) {
    for (int presses = 0; presses < 40; ++presses) {
        if (focus() == objectName)
            return true;
        const QQuickItem* before = window()->activeFocusItem();
        press(Qt::Key_Tab);
        waitFor([&] { return window()->activeFocusItem() != before; }, 500ms); // a page passes it on in its own time
    }
    return false;
}

QString Person::focus() const {
    const QQuickItem* item = window()->activeFocusItem();
    return item ? item->objectName() : QString();
}

void Person::click(const QString& objectName) {
    const QQuickItem* item = see(objectName);
    if (!item)
        throw std::runtime_error("not on the screen: " + objectName.toStdString());
    click(item);
}

void Person::click(const QQuickItem* item) {
    // A screen that has just come is laid out with its first frame.
    waitFor([item] {
        const QQuickItem* each = item;
        while (each && !QQuickTest::qIsPolishScheduled(each))
            each = each->parentItem();
        return each == nullptr;
    });
    const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
    QTest::mouseClick(window(), Qt::LeftButton, Qt::NoModifier, middle.toPoint());
}

void Person::ask(const QString& question) {
    type(question);
    press(Qt::Key_Return);
}

bool Person::saveAs(const QString& name) {
    const QString field = u"fileNameTextField"_s;
    if (!waitToSee(field) || !waitFor([&] { return see(field)->hasActiveFocus(); }))
        return false;
    press(Qt::Key_A, Qt::ControlModifier);
    type(name);
    press(Qt::Key_Return);
    return waitToLose(field);
}

QQuickWindow* Person::window() const {
    QWindow* front = QGuiApplication::focusWindow();
    return qobject_cast<QQuickWindow*>(front ? front : m_app->scenes().mainWindow());
}

namespace {

void collect(const QQuickItem* item, const QString& objectName, QList<QQuickItem*>& found) {
    for (QQuickItem* child : item->childItems()) {
        if (!child->isVisible())
            continue;
        if (child->objectName() == objectName)
            found.append(child);
        collect(child, objectName, found);
    }
}

}

QQuickItem* Person::see(const QString& objectName) const {
    QList<QQuickItem*> found;
    collect(window()->contentItem(), objectName, found);
    return found.value(0);
}

bool Person::waitToSee(const QString& objectName, std::chrono::milliseconds bound) const {
    return waitFor([&] { return see(objectName) != nullptr; }, bound);
}

bool Person::waitToLose(const QString& objectName) const {
    return waitFor([&] { return see(objectName) == nullptr; });
}

QString Person::read(const QString& objectName) const {
    const QQuickItem* item = see(objectName);
    return item ? item->property("text").toString() : u"(not there)"_s;
}

QList<QQuickItem*> Person::seeAll(const QString& objectName) const {
    QList<QQuickItem*> found;
    collect(window()->contentItem(), objectName, found);
    std::sort(found.begin(), found.end(),
        [](const QQuickItem* a, const QQuickItem* b) { return a->mapToScene({}).y() < b->mapToScene({}).y(); });
    return found;
}

QStringList Person::readQuestions() const {
    QStringList texts;
    for (const QQuickItem* item : seeAll(u"userText"_s))
        texts.append(item->property("text").toString());
    return texts;
}

QStringList Person::readAnswers() const {
    QStringList texts;
    for (const QQuickItem* item : seeAll(u"answerText"_s)) {
        QString text;
        QMetaObject::invokeMethod(item->property("model").value<QObject*>(), "markdown", Q_RETURN_ARG(QString, text));
        texts.append(text);
    }
    return texts;
}

}
