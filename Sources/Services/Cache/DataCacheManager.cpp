#include "Cache/DataCacheManager.h"

#include "Clock.h"

#include <QLoggingCategory>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcDataCache, "korvi.cache", QtInfoMsg)

namespace {

// Every key of this store begins so, and clearAll() removes what does.
const auto keyPrefix = u"cached_"_s;

QString key(const char16_t* kind, const QString& organization) {
    return keyPrefix + QString::fromUtf16(kind) + u'_' + organization;
}

QString key(const char16_t* kind, const QString& organization, qint64 id) {
    return key(kind, organization) + u'_' + QString::number(id);
}

template <class Value>
std::optional<Value> found(const Value* inMemory) {
    return inMemory ? std::optional(*inMemory) : std::nullopt;
}

}

DataCacheManager::DataCacheManager(Defaults& defaults, Clock& clock)
    : m_defaults(defaults)
    , m_clock(clock) {}

QString DataCacheManager::currentOrgSuffix() const {
    return m_defaults.string(u"currentOrganizationId"_s).value_or(u"personal"_s);
}

std::optional<std::vector<Project>> DataCacheManager::getCachedProjects() {
    const QString name = key(u"projects", currentOrgSuffix());
    const auto inMemory = found(m_projects.find(name));
    return inMemory ? inMemory : loadFromDisk<Project>(name);
}

std::optional<std::vector<Chat>> DataCacheManager::getCachedChats() {
    const QString name = key(u"chats", currentOrgSuffix());
    const auto inMemory = found(m_chats.find(name));
    return inMemory ? inMemory : loadFromDisk<Chat>(name);
}

std::optional<std::vector<ChatMessage>> DataCacheManager::getCachedMessages(qint64 chatId) {
    const QString name = key(u"messages", currentOrgSuffix(), chatId);
    const auto inMemory = found(m_messages.find(name));
    return inMemory ? inMemory : loadFromDisk<ChatMessage>(name);
}

std::optional<std::vector<Chat>> DataCacheManager::getCachedProjectChats(qint64 projectId) {
    const auto inMemory = found(m_projectChats.find(projectId));
    return inMemory ? inMemory : loadFromDisk<Chat>(key(u"project_chats", currentOrgSuffix(), projectId));
}

void DataCacheManager::cacheProjects(const std::vector<Project>& projects) {
    const QString name = key(u"projects", currentOrgSuffix());
    m_projects.insert(name, projects);
    projectsLastFetch = m_clock.now();
    saveToDisk(toJsonArray(projects), name);
    qCInfo(lcDataCache) << "📦 [DataCacheManager] Cached" << projects.size() << "projects";
}

void DataCacheManager::cacheChats(const std::vector<Chat>& chats) {
    const QString name = key(u"chats", currentOrgSuffix());
    m_chats.insert(name, chats);
    chatsLastFetch = m_clock.now();
    saveToDisk(toJsonArray(chats), name);
    qCInfo(lcDataCache) << "📦 [DataCacheManager] Cached" << chats.size() << "chats";
}

void DataCacheManager::cacheMessages(const std::vector<ChatMessage>& messages, qint64 chatId) {
    const QString name = key(u"messages", currentOrgSuffix(), chatId);
    m_messages.insert(name, messages);
    messagesLastFetch.insert(chatId, m_clock.now());
    saveToDisk(toJsonArray(messages), name);
    qCInfo(lcDataCache) << "📦 [DataCacheManager] Cached" << messages.size() << "messages for chat" << chatId;
}

void DataCacheManager::cacheProjectChats(const std::vector<Chat>& chats, qint64 projectId) {
    m_projectChats.insert(projectId, chats);
    projectChatsLastFetch.insert(projectId, m_clock.now());
    saveToDisk(toJsonArray(chats), key(u"project_chats", currentOrgSuffix(), projectId));
    qCInfo(lcDataCache) << "📦 [DataCacheManager] Cached" << chats.size() << "chats for project" << projectId;
}

void DataCacheManager::cacheMediaImages(const QStringList& urls) {
    saveToDisk(QJsonArray::fromStringList(urls), key(u"media_images", currentOrgSuffix()));
}

void DataCacheManager::cacheMediaVideos(const QStringList& urls) {
    saveToDisk(QJsonArray::fromStringList(urls), key(u"media_videos", currentOrgSuffix()));
}

void DataCacheManager::cacheMusicTracks(const std::vector<MusicTrack>& tracks) {
    saveToDisk(toJsonArray(tracks), key(u"media_music", currentOrgSuffix()));
}

void DataCacheManager::removeChat(qint64 id) {
    std::vector<Chat> chats = getCachedChats().value_or(std::vector<Chat>());
    std::erase_if(chats, [id](const Chat& chat) { return chat.id == id; });
    cacheChats(chats);
}

void DataCacheManager::addProjectChat(const Chat& chat, qint64 projectId) {
    std::vector<Chat> chats = getCachedProjectChats(projectId).value_or(std::vector<Chat>());
    std::erase_if(chats, [&](const Chat& known) { return known.id == chat.id; });
    chats.insert(chats.begin(), chat);
    cacheProjectChats(chats, projectId);
}

void DataCacheManager::removeProjectChat(qint64 chatId, qint64 projectId) {
    std::vector<Chat> chats = getCachedProjectChats(projectId).value_or(std::vector<Chat>());
    std::erase_if(chats, [chatId](const Chat& chat) { return chat.id == chatId; });
    cacheProjectChats(chats, projectId);
}

std::optional<QStringList> DataCacheManager::loadStringsFromDisk(const QString& name) const {
    const QJsonDocument document = QJsonDocument::fromJson(m_defaults.data(name).value_or(QByteArray()));
    if (!document.isArray())
        return std::nullopt;
    QStringList strings;
    for (const QJsonValue value : document.array()) {
        if (!value.isString())
            return std::nullopt;
        strings.append(value.toString());
    }
    return strings;
}

void DataCacheManager::saveToDisk(const QJsonArray& values, const QString& name) {
    m_defaults.setData(name, QJsonDocument(values).toJson(QJsonDocument::Compact));
}

void DataCacheManager::clearAll() {
    m_projects.clear();
    m_chats.clear();
    m_messages.clear();
    m_projectChats.clear();
    m_defaults.removeAll(keyPrefix);
    projectsLastFetch.reset();
    chatsLastFetch.reset();
    messagesLastFetch.clear();
    projectChatsLastFetch.clear();
    qCInfo(lcDataCache) << "🗑️ [DataCacheManager] Cleared all caches";
}

qint64 DataCacheManager::diskCacheSize() const {
    return m_defaults.size(keyPrefix);
}

}
