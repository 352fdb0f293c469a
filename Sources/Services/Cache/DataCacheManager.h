#pragma once

#include "Cache/MemoryCache.h"
#include "Chat.h"
#include "ChatMessage.h"
#include "Defaults.h"
#include "MusicTrack.h"
#include "Project.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QMap>

namespace Korvi {

class Clock;

// Lets lists appear before the service has answered: from memory, or from the settings store, where each list is one
// value under a key that names the current organization ("personal" without one), so that saving one list costs one
// list. Enforces no age and trims nothing. A value that does not decode counts as absent. One instance; main thread.
class DataCacheManager {
public:
    static constexpr auto cacheTTL = std::chrono::seconds(300);

    DataCacheManager(Defaults& defaults, Clock& clock);

    // Absent when neither memory nor disk has it.
    std::optional<std::vector<Project>> getCachedProjects();
    std::optional<std::vector<Chat>> getCachedChats();
    std::optional<std::vector<ChatMessage>> getCachedMessages(qint64 chatId);
    std::optional<std::vector<Chat>> getCachedProjectChats(qint64 projectId);

    // Each replaces the whole list, in memory and on disk, and counts as fetched now.
    void cacheProjects(const std::vector<Project>& projects);
    void cacheChats(const std::vector<Chat>& chats);
    void cacheMessages(const std::vector<ChatMessage>& messages, qint64 chatId);
    void cacheProjectChats(const std::vector<Chat>& chats, qint64 projectId);

    // On disk only.
    void cacheMediaImages(const QStringList& urls);
    void cacheMediaVideos(const QStringList& urls);
    void cacheMusicTracks(const std::vector<MusicTrack>& tracks);

    void removeChat(qint64 id);
    void addProjectChat(const Chat& chat, qint64 projectId); // to the front
    void removeProjectChat(qint64 chatId, qint64 projectId);

    // Absent when the key has no value or the value does not decode. T has `static T fromJson(const JsonReader&)`.
    template <class T>
    std::optional<std::vector<T>> loadFromDisk(const QString& key) const {
        try {
            const auto bytes = m_defaults.data(key);
            return bytes ? std::optional(decodeJsonArray<T>(*bytes)) : std::nullopt;
        } catch (const DecodingError&) {
            return std::nullopt;
        }
    }
    std::optional<QStringList> loadStringsFromDisk(const QString& key) const;
    void saveToDisk(const QJsonArray& values, const QString& key);

    // Forgets everything, of all organizations.
    void clearAll();
    qint64 diskCacheSize() const; // bytes
    QString currentOrgSuffix() const;

    // When a list was fetched last; absent after a start. UTC.
    std::optional<QDateTime> projectsLastFetch;
    std::optional<QDateTime> chatsLastFetch;
    QMap<qint64, QDateTime> messagesLastFetch;
    QMap<qint64, QDateTime> projectChatsLastFetch;

private:
    Defaults& m_defaults;
    Clock& m_clock;
    MemoryCache<QString, std::vector<Project>> m_projects{1};
    MemoryCache<QString, std::vector<Chat>> m_chats{1};
    MemoryCache<QString, std::vector<ChatMessage>> m_messages{50};
    // By the project alone: a change of organization clears all caches first.
    MemoryCache<qint64, std::vector<Chat>> m_projectChats{20};
};

}
