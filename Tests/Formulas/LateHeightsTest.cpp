// Formulas, diagrams and images get their heights long after the text around them is read.
#include "Chat/MessageListModel.h"
#include "Linux/QtScheduler.h"
#include "Markdown/FormulaEngine.h"
#include "Samples.h"
#include "WaitFor.h"

#include <QBuffer>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickTextDocument>
#include <QQuickWindow>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextBlock>
#include <QTextDocument>

#include <gmock/gmock.h>

#include <cmath>
#include <random>

namespace Korvi::Test {

using namespace Qt::Literals;
using namespace std::chrono_literals;

namespace {

constexpr char chatQml[] = R"(
import QtQuick
import Korvi.Views
Window {
    property alias messages: list.messages
    property alias column: list.column
    visible: true; width: 800; height: 600
    MessageList { id: list; anchors.fill: parent; columnWidth: 744 }
}
)";

// Images of all heights, each sent when it is told to.
class SlowImages {
public:
    SlowImages() {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    if (socket->readAll().contains("\r\n\r\n"))
                        m_waiting.append(socket);
                });
        });
        m_server.listen(QHostAddress::LocalHost);
    }
    QString address(int number) const { return u"http://127.0.0.1:%1/%2.png"_s.arg(m_server.serverPort()).arg(number); }
    void sendOne(int height) {
        while (!m_waiting.isEmpty()) {
            const QPointer<QTcpSocket> socket = m_waiting.takeFirst();
            if (!socket || socket->state() != QTcpSocket::ConnectedState)
                continue; // scrolled away
            QImage image(300, height, QImage::Format_RGB32);
            image.fill(Qt::gray);
            QBuffer png;
            image.save(&png, "PNG");
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nConnection: close\r\nContent-Length: " +
                QByteArray::number(png.data().size()) + "\r\n\r\n" + png.data());
            socket->disconnectFromHost();
            ++sent;
            return;
        }
    }

    int sent = 0;

private:
    QTcpServer m_server;
    QList<QPointer<QTcpSocket>> m_waiting;
};

// Where a line of a text stands in the window.
struct ReadLine {
    QPointer<QQuickItem> text;
    int position = -1;

    explicit operator bool() const { return text && position >= 0; }
    double baseline() const {
        const auto* document = text->property("textDocument").value<QQuickTextDocument*>();
        const QTextBlock block = document->textDocument()->findBlock(position);
        const QTextLine line = block.layout()->lineForTextPosition(position - block.position());
        return text->mapToScene({0, block.layout()->position().y() + line.y() + line.ascent()}).y();
    }
};

// The first whole line of text below that height and in the window.
ReadLine lineBelow(QQuickItem& item, double y) {
    ReadLine best;
    double bestTop = std::numeric_limits<double>::max();
    QList<QQuickItem*> left{&item};
    while (!left.isEmpty()) {
        QQuickItem* next = left.takeFirst();
        if (!next->isVisible())
            continue;
        left += next->childItems();
        const auto* document = next->property("textDocument").value<QQuickTextDocument*>();
        if (!document)
            continue;
        const double top = next->mapToScene({}).y();
        for (QTextBlock block = document->textDocument()->begin(); block.isValid(); block = block.next()) {
            for (int i = 0; i < block.layout()->lineCount(); ++i) {
                const QTextLine line = block.layout()->lineAt(i);
                const double lineTop = top + block.layout()->position().y() + line.y();
                if (lineTop >= y && lineTop + line.height() < item.height() && lineTop < bestTop) {
                    bestTop = lineTop;
                    best = {next, block.position() + line.textStart()};
                }
            }
        }
    }
    return best;
}

constexpr double edge = 16; // of the view, where reading begins

class LateHeightsTest : public testing::TestWithParam<unsigned> {
protected:
    LateHeightsTest()
        : dice(GetParam()) {
        QObject::connect(&scenes, &QQmlEngine::warnings, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                ADD_FAILURE() << qPrintable(warning.toString());
        });
        engine.serve(scenes);
        std::vector<ChatMessage> messages;
        for (int i = 0; i < 40; ++i) {
            ChatMessage message;
            message.id = i + 1;
            message.role = i % 2 ? ChatMessage::Role::ai : ChatMessage::Role::user;
            message.content = std::vector<MessageContent>{{MessageContent::Text{i % 2 ? answer() : words(12)}}};
            messages.push_back(std::move(message));
        }
        model.append(std::move(messages));
        QQmlComponent component(&scenes);
        component.setData(chatQml, {});
        window.reset(qobject_cast<QQuickWindow*>(
            component.createWithInitialProperties({{u"messages"_s, QVariant::fromValue<QObject*>(&model)}})));
        if (!window)
            qFatal("%s", qUtf8Printable(component.errorString()));
        column = window->property("column").value<QQuickItem*>();
        QObject::connect(window.get(), &QQuickWindow::beforeRendering, window.get(), [this] { drawn(); });
    }

    unsigned below(unsigned bound) { return static_cast<unsigned>(dice()) % bound; }
    QString words(unsigned count) {
        QStringList all;
        for (unsigned i = 0; i < count; ++i)
            all.append(QStringList{u"слово"_s, u"и"_s, u"предложение"_s, u"текст"_s}.at(below(4)));
        return all.join(u' ');
    }
    // No formula and no diagram comes twice, so that each is late.
    QString formula() { return sampleFormulas().at(below(10)) + u" + %1"_s.arg(++number); }
    QString answer() {
        QStringList blocks;
        for (unsigned i = 0; i < 4 + below(6); ++i) {
            switch (below(7)) {
            case 0: blocks += u"$$\n"_s + formula() + u"\n$$"_s; break;
            case 1:
                if (below(3) == 0) {
                    blocks += u"```mermaid\n"_s + sampleDiagrams().at(below(7)) + u"\n%% %1\n```"_s.arg(++number);
                    break;
                }
                [[fallthrough]];
            case 2: blocks += u"![рисунок]("_s + images.address(++number) + u")"_s; break;
            case 3:
                ++number;
                blocks += words(20) + u" $\\frac{a_%1}{\\frac{b}{c}}$ "_s.arg(number) + words(20) +
                    u" $x^{%1}$ "_s.arg(number) + words(10);
                break;
            default: blocks += words(20 + below(60));
            }
        }
        return blocks.join(u"\n\n"_s);
    }

    bool following() const { return column->property("following").toBool(); }
    double distanceToEnd() const { return column->property("distanceToEnd").toDouble(); }
    bool isAtBound() const { return distanceToEnd() == 0 || column->property("position").toDouble() == 0; }
    void scrollBy(double pixels) {
        QMetaObject::invokeMethod(column, "scrollBy", Q_ARG(qreal, pixels));
        QMetaObject::invokeMethod(column, "forceLayout");
    }

    // In every frame.
    void drawn() {
        ++frames;
        if (!line)
            return;
        const double now = line.baseline();
        if (isAtBound()) {
            expected = now; // there is nothing to hold on to: the content became shorter
        } else if (std::abs(now - expected) > 1) {
            ADD_FAILURE() << "what was read at " << expected << " is at " << now << ", step " << step << ", "
                          << qPrintable(line.text->property("text").toString().mid(line.position, 40));
            line = {};
        }
        EXPECT_EQ(following(), follows) << "step " << step;
    }
    // Reads on, while some of what is late comes.
    void read() {
        line = lineBelow(*window->contentItem(), edge);
        if (line)
            expected = line.baseline();
        seen += line ? 1 : 0;
        follows = following();
        const unsigned turns = below(8);
        for (unsigned turn = 0; turn < turns; ++turn) {
            if (below(3) == 0)
                images.sendOne(20 + static_cast<int>(below(500)));
            settle(3);
        }
    }

    std::minstd_rand dice;
    int number = 0;
    SlowImages images;
    QtScheduler scheduler;
    FormulaEngine engine{QStringLiteral(KORVI_RENDERER), QStringLiteral(KORVI_BUNDLE), scheduler};
    MessageListModel model;
    QQmlEngine scenes;
    std::unique_ptr<QQuickWindow> window;
    QQuickItem* column = nullptr;
    ReadLine line;
    double expected = 0;
    bool follows = true;
    int step = 0;
    int frames = 0;
    int seen = 0;
};

}

TEST_P(LateHeightsTest, LeaveWhatIsReadInItsPlace) {
    settle();
    EXPECT_TRUE(following());
    for (step = 0; step < 150 && !HasFailure(); ++step) {
        QMetaObject::invokeMethod(column, "forceLayout");
        const double wanted = static_cast<double>(below(500)) - 330;
        if (line && !isAtBound()) {
            EXPECT_NEAR(line.baseline(), expected, 1) << "step " << step;
        }
        line = {};
        const ReadLine held = lineBelow(*window->contentItem(), edge);
        const double was = held ? held.baseline() : 0;
        const bool isClamped = column->property("position").toDouble() + wanted < 0 || distanceToEnd() < wanted;
        scrollBy(wanted);
        if (held && !isClamped && !isAtBound()) {
            EXPECT_NEAR(held.baseline() - was, -wanted, 1) << "step " << step;
        }
        read();
    }
    line = {};
    EXPECT_GT(seen, 100) << "steps with something to read";
    EXPECT_GT(frames, 100);
    EXPECT_GT(images.sent, 5);
    QMetaObject::invokeMethod(column, "showEnd");
    settle();
    for (int i = 0; i < 30; ++i) {
        images.sendOne(20 + static_cast<int>(below(500)));
        settle(3);
        EXPECT_TRUE(following());
        EXPECT_EQ(distanceToEnd(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, LateHeightsTest, testing::Range(1U, 7U));

}
