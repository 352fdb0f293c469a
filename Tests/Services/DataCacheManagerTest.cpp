#include "Cache/DataCacheManager.h"
#include "Printing.h"
#include "VirtualScheduler.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

Chat chat(qint64 id, const QString& name = u"Имя"_s) {
    Chat result;
    result.id = id;
    result.name = name;
    result.mode = u"aiplus"_s;
    return result;
}

std::vector<ChatMessage> talk(const QString& text) {
    return {{.id = 1,
        .createdAt = u"c"_s,
        .chatId = 7,
        .role = ChatMessage::Role::user,
        .content = std::vector<MessageContent>{{MessageContent::Text{text}}},
        .providerId = std::nullopt,
        .usageTokens = 0}};
}

class DataCacheManagerTest : public testing::Test {
protected:
    static std::vector<qint64> ids(const std::optional<std::vector<Chat>>& chats) {
        std::vector<qint64> result;
        for (const Chat& each : chats.value_or(std::vector<Chat>()))
            result.push_back(each.id);
        return result;
    }
    void enter(const QString& organization) { defaults.setString(u"currentOrganizationId"_s, organization); }

    QTemporaryDir folder;
    VirtualScheduler virtualTime;
    Defaults defaults{folder.filePath(u"defaults.sqlite"_s)};
    DataCacheManager cache{defaults, virtualTime};
};

TEST_F(DataCacheManagerTest, WhatWasCachedIsThereAfterAStartUnderTheKeysOfItsOrganization) {
    EXPECT_EQ(cache.getCachedChats(), std::nullopt);
    cache.cacheChats({chat(1), chat(2)});
    cache.cacheMessages(talk(u"личное"_s), 7);
    Project project;
    project.id = 3;
    project.name = u"Ремонт"_s;
    project.documents.emplace().resize(1);
    project.documents->front().size = 12;
    project.notes.emplace().resize(1);
    project.notes->front().content = u"Заметка"_s;
    project.integrations.emplace();
    cache.cacheProjects({project});
    enter(u"org"_s);
    EXPECT_EQ(cache.getCachedMessages(7), std::nullopt);
    cache.cacheMessages(talk(u"рабочее"_s), 7);
    cache.cacheProjectChats({chat(5)}, 3);

    DataCacheManager again{defaults, virtualTime};
    EXPECT_EQ(again.getCachedMessages(7), talk(u"рабочее"_s));
    EXPECT_EQ(ids(again.getCachedProjectChats(3)), (std::vector<qint64>{5}));
    defaults.remove(u"currentOrganizationId"_s);
    EXPECT_EQ(ids(again.getCachedChats()), (std::vector<qint64>{1, 2}));
    EXPECT_EQ(again.getCachedMessages(7), talk(u"личное"_s));
    EXPECT_EQ(again.getCachedProjects(), std::vector{project});
    EXPECT_FALSE(again.chatsLastFetch); // counts as never fetched
    for (const QString& key : {u"cached_chats_personal"_s, u"cached_messages_personal_7"_s, u"cached_messages_org_7"_s,
             u"cached_projects_personal"_s, u"cached_project_chats_org_3"_s})
        EXPECT_TRUE(defaults.data(key)) << key.toStdString();
}

TEST_F(DataCacheManagerTest, MoreListsThanMemoryHoldsComeBackFromDisk) {
    for (qint64 id = 1; id <= 60; ++id)
        cache.cacheMessages(talk(QString::number(id)), id);
    defaults.setData(u"cached_messages_personal_60"_s, "[]"); // memory answers first
    EXPECT_EQ(cache.getCachedMessages(60), talk(u"60"_s));
    for (qint64 id = 1; id < 60; ++id)
        EXPECT_EQ(cache.getCachedMessages(id), talk(QString::number(id)));
}

TEST_F(DataCacheManagerTest, SingleChatsAreAddedInFrontAndRemoved) {
    cache.removeChat(1); // of an empty cache
    EXPECT_EQ(cache.getCachedChats(), std::vector<Chat>());
    cache.cacheChats({chat(1), chat(2), chat(1)});
    virtualTime.advance(10s);
    cache.removeChat(1);
    EXPECT_EQ(ids(cache.getCachedChats()), (std::vector<qint64>{2}));
    EXPECT_EQ(cache.chatsLastFetch, virtualTime.now());

    cache.addProjectChat(chat(1), 9);
    cache.addProjectChat(chat(2), 9);
    cache.addProjectChat(chat(1, u"Новое"_s), 9);
    EXPECT_EQ(cache.getCachedProjectChats(9), (std::vector{chat(1, u"Новое"_s), chat(2)}));
    cache.removeProjectChat(2, 9);
    EXPECT_EQ(ids(cache.getCachedProjectChats(9)), (std::vector<qint64>{1}));
}

TEST_F(DataCacheManagerTest, WhatDoesNotDecodeIsAbsentAndWaitsToBeOverwritten) {
    for (const QByteArray& damaged : {QByteArray("{"), QByteArray("{}"), QByteArray(R"([{"id":1}])"), QByteArray()}) {
        defaults.setData(u"cached_chats_personal"_s, damaged);
        EXPECT_EQ(DataCacheManager(defaults, virtualTime).getCachedChats(), std::nullopt) << damaged.toStdString();
        EXPECT_EQ(defaults.data(u"cached_chats_personal"_s), damaged);
    }
    defaults.setData(u"cached_media_images_personal"_s, R"(["a",1])");
    EXPECT_EQ(cache.loadStringsFromDisk(u"cached_media_images_personal"_s), std::nullopt);
}

TEST_F(DataCacheManagerTest, ClearingForgetsAllOrganizationsAndNothingElse) {
    cache.cacheMediaImages({u"a"_s, u"b"_s});
    EXPECT_EQ(cache.loadStringsFromDisk(u"cached_media_images_personal"_s), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(cache.diskCacheSize(), 9);
    enter(u"org"_s);
    cache.cacheChats({chat(1)});
    cache.cacheProjectChats({chat(1)}, 3);
    defaults.setString(u"appTheme"_s, u"Темная"_s);
    cache.clearAll();
    EXPECT_EQ(cache.diskCacheSize(), 0);
    EXPECT_EQ(cache.getCachedChats(), std::nullopt);
    EXPECT_EQ(cache.getCachedProjectChats(3), std::nullopt);
    EXPECT_FALSE(cache.chatsLastFetch);
    EXPECT_EQ(defaults.string(u"appTheme"_s), u"Темная"_s);
    EXPECT_EQ(defaults.string(u"currentOrganizationId"_s), u"org"_s);
}

}
}
