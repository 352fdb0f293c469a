#include "Chat/ChatDirectory.h"
#include "Backend.h"
#include "Cache/DataCacheManager.h"
#include "Chat/ChatService.h"
#include "FakeRandom.h"
#include "FakeSocket.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;

class ChatDirectoryTest : public testing::Test, public Backend {
protected:
    static QByteArray chat(qint64 id, const QString& name, const QString& rest = {}) {
        return u"{\"id\":%1,\"name\":\"%2\",\"mode\":\"aiplus\",\"createdAt\":\"c\",\"updatedAt\":\"%3\",\"userId\":\"u\"%4}"_s
            .arg(id)
            .arg(name)
            .arg(100 - id) // the lower the number, the more recent
            .arg(rest)
            .toUtf8();
    }
    static QByteArray list(const QByteArrayList& chats) { return "{\"data\":[" + chats.join(',') + "]}"; }
    static QByteArray messages(qint64 chatId) {
        return u"{\"data\":[{\"id\":%1,\"createdAt\":\"c\",\"chatId\":%1,\"role\":\"user\",\"usageTokens\":0}]}"_s
            .arg(chatId)
            .toUtf8();
    }

    void load(const QByteArrayList& chats) {
        http.answer(u"/chats"_s, list(chats));
        run([this] { return directory.load(); });
    }
    void run(std::function<Task<void>()> task) { tasks.push_back(std::make_unique<Running<void>>(std::move(task))); }
    QStringList shown() {
        QStringList names;
        for (const Chat& each : directory.model()->chats())
            names.append(each.name + (each.isFavorite.value_or(false) ? u" ★"_s : QString()));
        return names;
    }
    QStringList cached() {
        QStringList names;
        for (const Chat& each : cache.getCachedChats().value_or(std::vector<Chat>()))
            names.append(each.name);
        return names;
    }

    FakeRandom random;
    FakeWebSocketTransport sockets;
    ChatService chatService{{client, sockets, virtualTime, random}};
    DataCacheManager cache{defaults, virtualTime};
    ChatDirectory directory{{chatService, cache, notifications}};
    std::vector<std::unique_ptr<Running<void>>> tasks;
};

TEST_F(ChatDirectoryTest, ChatsAreThereBeforeTheServiceHasAnsweredAndStayWhenItDoesNot) {
    load({chat(2, u"Два"_s), chat(1, u"Один"_s), chat(3, u"Три"_s, u",\"isFavorite\":true"_s)});
    EXPECT_THAT(shown(), ElementsAre(u"Три ★"_s, u"Один"_s, u"Два"_s));
    EXPECT_THAT(cached(), ElementsAre(u"Три"_s, u"Один"_s, u"Два"_s));
    http.answer(u"/chats"_s, "{}", 500);
    run([this] { return directory.load(); });
    EXPECT_EQ(shown().size(), 3);

    ChatDirectory next({chatService, cache, notifications});
    next.loadCached();
    EXPECT_EQ(next.model()->chats(), directory.model()->chats());
}

TEST_F(ChatDirectoryTest, NothingChangesBeforeTheServiceHasAgreed) {
    load({chat(1, u"Один"_s), chat(2, u"Два"_s)});
    QSignalSpy changed(&directory, &ChatDirectory::chatChanged);

    run([this] { return directory.toggleFavorite(2); });
    EXPECT_EQ(http.last().line(), u"PUT /chats/2/favorite?isFavorite=true"_s) << "absent counts as not";
    EXPECT_THAT(shown(), ElementsAre(u"Один"_s, u"Два"_s));
    http.last().answer(chat(2, u"Два"_s, u",\"isFavorite\":true"_s));
    EXPECT_THAT(shown(), ElementsAre(u"Два ★"_s, u"Один"_s));

    run([this] { return directory.rename(1, u"Раз"_s); });
    EXPECT_EQ(http.last().request.body, R"({"name":"Раз"})");
    http.last().answer(chat(1, u"Раз."_s)); // as the service has it
    EXPECT_THAT(shown(), ElementsAre(u"Два ★"_s, u"Раз."_s));
    EXPECT_THAT(cached(), ElementsAre(u"Два"_s, u"Раз."_s));
    EXPECT_EQ(changed.count(), 2);

    http.answer(u"/chats/1"_s, "{}", 500);
    http.answer(u"/chats/2/favorite"_s, "{}", 500);
    run([this] { return directory.rename(1, u"Другое"_s); });
    run([this] { return directory.toggleFavorite(2); });
    run([this] { return directory.remove(1); });
    EXPECT_THAT(shown(), ElementsAre(u"Два ★"_s, u"Раз."_s));
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(ChatDirectoryTest, ADeletedChatIsGoneAndDoesNotComeBack) {
    load({chat(1, u"Один"_s), chat(2, u"Два"_s)});
    QSignalSpy removed(&directory, &ChatDirectory::chatRemoved);
    QSignalSpy told(&notifications, &NotificationCenter::projectChatDeleted);
    run([this] { return directory.rename(1, u"Раз"_s); });
    FakeHttp::Exchange& renaming = http.last();

    run([this] { return directory.remove(1); });
    EXPECT_EQ(removed.count(), 0);
    http.last().answer(R"({"success":false})"); // that it is an answer is enough
    EXPECT_THAT(shown(), ElementsAre(u"Два"_s));
    EXPECT_THAT(cached(), ElementsAre(u"Два"_s));
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(told.count(), 1);

    renaming.answer(chat(1, u"Раз"_s));
    EXPECT_THAT(shown(), ElementsAre(u"Два"_s));
}

TEST_F(ChatDirectoryTest, AnswersForTheFormerOrganizationAreNotTakenForThisOnes) {
    load({chat(1, u"Свой"_s)});
    http.hold(u"/chats"_s);
    run([this] { return directory.load(); });
    FakeHttp::Exchange& formerList = http.last();
    run([this] { return directory.toggleFavorite(1); });
    FakeHttp::Exchange& formerFavorite = http.last();

    defaults.setString(u"currentOrganizationId"_s, u"org"_s);
    directory.clear();
    load({chat(7, u"Общий"_s)});
    formerList.answer(list({chat(1, u"Свой"_s)}));
    formerFavorite.answer(chat(1, u"Свой"_s, u",\"isFavorite\":true"_s));
    EXPECT_THAT(shown(), ElementsAre(u"Общий"_s));
    EXPECT_THAT(cached(), ElementsAre(u"Общий"_s));
}

}
}
