#include "Chat/MessageListModel.h"
#include "Chat/ChatListModel.h"
#include "Printing.h"

#include <QAbstractItemModelTester>

#include <gmock/gmock.h>

#include <random>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;

ChatMessage message(qint64 id, const QString& text) {
    ChatMessage made;
    made.id = id;
    made.content = std::vector<MessageContent>{{MessageContent::Text{text}}};
    return made;
}

// "insert 0-1", "change 1", "remove 2-2" in the order in which they came.
class Changes {
public:
    explicit Changes(QAbstractItemModel& model)
        : m_tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal) {
        const auto range = [this](const QString& what) {
            return [this, what](const QModelIndex&, int first, int last) {
                lines.append(u"%1 %2-%3"_s.arg(what).arg(first).arg(last));
            };
        };
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, &m_context, range(u"insert"_s));
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &m_context, range(u"remove"_s));
        QObject::connect(&model, &QAbstractItemModel::rowsMoved, &m_context,
            [this](const QModelIndex&, int from, int, const QModelIndex&, int before) {
                lines.append(u"move %1 to before %2"_s.arg(from).arg(before));
            });
        QObject::connect(&model, &QAbstractItemModel::dataChanged, &m_context,
            [this](const QModelIndex& first, const QModelIndex& last) {
                lines.append(u"change %1-%2"_s.arg(first.row()).arg(last.row()));
            });
        QObject::connect(&model, &QAbstractItemModel::modelReset, &m_context, [this] { lines.append(u"reset"_s); });
    }

    QStringList lines;

private:
    QAbstractItemModelTester m_tester;
    QObject m_context;
};

// What the reader unfolded stays so when the service's ids come.
TEST(MessageListModel, KeepsTheKeyOfAMessageThatIsStoredUnderAnotherId) {
    MessageListModel model;
    const auto keys = [&] {
        QList<qint64> all;
        for (int row = 0; row < model.count(); ++row)
            all.append(model.index(row).data(MessageListModel::KeyRole).toLongLong());
        return all;
    };
    model.append({message(1, u"a"_s), message(7001, u"question"_s), message(7002, u"answ"_s)});
    EXPECT_THAT(keys(), ElementsAre(1, 7001, 7002));
    const std::vector<ChatMessage> stored{message(1, u"a"_s), message(2, u"question"_s), message(3, u"answer"_s)};
    model.setMessages(stored);
    EXPECT_THAT(keys(), ElementsAre(1, 7001, 7002));

    model.reset({message(4, u"another chat's"_s)});
    model.reset(stored); // from the cache
    EXPECT_THAT(keys(), ElementsAre(1, 7001, 7002));

    model.setMessages({message(2, u"question"_s), message(5, u"something else"_s)}); // one was deleted meanwhile
    EXPECT_THAT(keys(), ElementsAre(7001, 5));
}

TEST(MessageListModel, AnnouncesTheRowsThatChangedAndNoOthers) {
    MessageListModel model;
    Changes changes(model);
    model.append({message(1, u"a"_s), message(2, u"b"_s)});
    model.replace(1, message(2, u"b"_s)); // equal
    model.replace(1, message(2, u"bc"_s));
    model.setMessages({message(1, u"a"_s), message(2, u"bc"_s), message(3, u"c"_s)});
    model.setMessages({message(1, u"a"_s), message(2, u"x"_s)});
    model.setMessages({message(1, u"a"_s), message(2, u"x"_s)}); // equal
    model.remove(0);
    EXPECT_THAT(changes.lines,
        ElementsAre(
            u"insert 0-1"_s, u"change 1-1"_s, u"insert 2-2"_s, u"change 1-1"_s, u"remove 2-2"_s, u"remove 0-0"_s));
}

TEST(MessageListModel, OnlyTheLastRowStreams) {
    MessageListModel model;
    model.append({message(1, u"a"_s), message(2, u"b"_s)});
    model.setStreaming(true);
    EXPECT_FALSE(model.data(model.index(0), MessageListModel::IsStreamingRole).toBool());
    EXPECT_TRUE(model.data(model.index(1), MessageListModel::IsStreamingRole).toBool());
}

Chat chat(qint64 id, const QString& updatedAt, bool favorite = false) {
    Chat made;
    made.id = id;
    made.updatedAt = updatedAt;
    made.isFavorite = favorite;
    return made;
}

TEST(ChatListModel, FavouritesStandFirstThenTheMostRecent) {
    ChatListModel model;
    Changes changes(model);
    const auto ids = [&] {
        std::vector<qint64> all;
        for (const Chat& each : model.chats())
            all.push_back(each.id);
        return all;
    };
    model.setChats({chat(1, u"2026-01-01"_s), chat(2, u"2026-01-03"_s), chat(3, u"2025-01-01"_s, true)});
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    model.upsert(chat(4, u"2026-01-02"_s));
    EXPECT_THAT(ids(), ElementsAre(3, 2, 4, 1));
    model.upsert(chat(1, u"2026-01-04"_s)); // known: moves, is not doubled
    EXPECT_THAT(ids(), ElementsAre(3, 1, 2, 4));
    EXPECT_THAT(changes.lines, ElementsAre(u"reset"_s, u"insert 2-2"_s, u"move 3 to before 1"_s, u"change 1-1"_s));
    model.upsert(chat(3, u"2024-01-01"_s)); // a favourite no longer
    EXPECT_THAT(ids(), ElementsAre(1, 2, 4, 3));

    changes.lines.clear();
    model.setChats(
        {chat(1, u"2026-01-04"_s), chat(2, u"2026-01-05"_s), chat(5, u"2026-01-01"_s), chat(3, u"2024-01-01"_s)});
    EXPECT_THAT(ids(), ElementsAre(2, 1, 5, 3));
    EXPECT_THAT(changes.lines, ElementsAre(u"remove 2-2"_s, u"move 1 to before 0"_s, u"change 0-0"_s, u"insert 2-2"_s));
    model.setGenerating({1, 3});
    changes.lines.clear();
    model.setGenerating({3});
    EXPECT_THAT(changes.lines, ElementsAre(u"change 1-1"_s));
    EXPECT_TRUE(model.data(model.index(3), ChatListModel::IsGeneratingRole).toBool());
}

// Any list becomes any other, doubles included, and views that follow the announcements agree (the tester checks).
TEST(ChatListModel, BecomesAnyOtherList) {
    std::mt19937 chance(1); // NOLINT: repeatable
    ChatListModel model;
    const Changes changes(model);
    for (int round = 0; round < 300; ++round) {
        std::vector<Chat> next;
        const auto size = chance() % 12;
        for (auto i = size; i > 0; --i)
            next.push_back(chat(static_cast<qint64>(chance() % 15), QString::number(chance() % 9), chance() % 4 == 0));
        model.setChats(next);
        std::stable_sort(next.begin(), next.end(), [](const Chat& a, const Chat& b) {
            return std::pair(!*a.isFavorite, b.updatedAt) < std::pair(!*b.isFavorite, a.updatedAt);
        });
        ASSERT_EQ(model.chats(), next) << round;
    }
}

}
}
