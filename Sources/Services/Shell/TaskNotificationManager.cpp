#include "Shell/TaskNotificationManager.h"

#include "Chat/StoredDate.h"
#include "Clock.h"
#include "Defaults.h"
#include "JsonReader.h"
#include "NotificationCenter.h"
#include "UserNotifications.h"

#include <QLoggingCategory>

#include <algorithm>
#include <array>

namespace Korvi {

using namespace Qt::Literals;

Q_LOGGING_CATEGORY(lcTaskNotification, "korvi.notification", QtInfoMsg)

namespace {

const auto taskKey = QString::fromLatin1(TaskNotificationManager::pendingTaskKey);
const auto askedKey = QString::fromLatin1(TaskNotificationManager::permissionRequestedKey);

// What takes so long that one looks elsewhere.
constexpr std::array longTypes{"image"_L1, "video"_L1, "search"_L1};

QString notificationId(qint64 chatId) {
    return u"answer-"_s + QString::number(chatId);
}

}

TaskNotificationManager::TaskNotificationManager(
    UserNotifications& platform, Defaults& defaults, Clock& clock, NotificationCenter& notifications)
    : m_platform(platform)
    , m_defaults(defaults)
    , m_clock(clock)
    , m_notifications(notifications) {
    connect(&m_platform, &UserNotifications::activated, this, &TaskNotificationManager::respond);
}

TaskNotificationManager::~TaskNotificationManager() = default;

void TaskNotificationManager::trackGeneration(qint64 chatId, const QString& type, const QString& chatName) {
    const QJsonObject record{{"chatId"_L1, chatId}, {"type"_L1, type}, {"chatName"_L1, chatName},
        {"startedAt"_L1, StoredDate::toSeconds(m_clock.now())}};
    m_defaults.setData(taskKey, QJsonDocument(record).toJson(QJsonDocument::Compact));
    qCInfo(lcTaskNotification).noquote().nospace()
        << "🔔 [TaskNotification] Tracking generation: chatId=" << chatId << ", type=" << type;
    if (std::any_of(longTypes.begin(), longTypes.end(), [&](QLatin1String each) { return each == type; }))
        m_scope.start([this] { return requestPermissionsIfNeeded(); });
}

void TaskNotificationManager::clearGeneration() {
    if (!m_defaults.data(taskKey))
        return;
    m_defaults.remove(taskKey);
    qCInfo(lcTaskNotification) << "🔔 [TaskNotification] Cleared generation tracking";
}

std::optional<PendingTask> TaskNotificationManager::pendingTask() const {
    const auto bytes = m_defaults.data(taskKey);
    if (!bytes)
        return std::nullopt;
    try {
        const JsonReader json(QJsonDocument::fromJson(*bytes).object());
        return PendingTask{.chatId = json.integer("chatId"_L1),
            .type = json.string("type"_L1),
            .chatName = json.string("chatName"_L1),
            .startedAt = StoredDate::fromSeconds(json.number("startedAt"_L1))};
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

Task<void> TaskNotificationManager::requestPermissionsIfNeeded() {
    if (m_defaults.boolean(askedKey).value_or(false)) {
        co_await m_platform.isAuthorized();
        co_return;
    }
    m_defaults.setBoolean(askedKey, true);
    const bool isGranted = co_await m_platform.requestAuthorization();
    qCInfo(lcTaskNotification) << "🔔 [TaskNotification] Permission" << (isGranted ? "granted" : "denied");
}

void TaskNotificationManager::setInFront(bool isInFront) {
    m_isInFront = isInFront;
}

void TaskNotificationManager::answerCompleted(qint64 chatId, const QString& chatName, const QDateTime& askedAt) {
    if (m_isInFront || chatId <= 0)
        return;
    const auto task = pendingTask();
    const bool isTracked = task && task->chatId == chatId;
    const bool tookLong = askedAt.isValid() && std::chrono::milliseconds(askedAt.msecsTo(m_clock.now())) > worthTelling;
    if (!isTracked && !tookLong)
        return;
    qCInfo(lcTaskNotification) << "🔔 [TaskNotification] Telling of an answer in chat" << chatId;
    m_platform.show({.id = notificationId(chatId),
        .title = u"Ответ готов"_s,
        .body = chatName,
        .userInfo = {{"chatId"_L1, chatId}}});
}

void TaskNotificationManager::respond(const UserNotification& notification, const QString& activationToken) {
    const QJsonValue session = notification.userInfo.value("sessionId"_L1);
    const QJsonValue chat = notification.userInfo.value("chatId"_L1);
    if (session.isString()) {
        qCInfo(lcTaskNotification).noquote()
            << "🔔 [TaskNotification] Agent notification tapped, session=" + session.toString();
        emit m_notifications.agentSessionCompleted(session.toString(), true);
    } else if (const qint64 chatId = chat.toInteger(-1); chatId > 0) {
        qCInfo(lcTaskNotification) << "🔔 [TaskNotification] Notification tapped, navigating to chatId=" << chatId;
        emit chatRequested(chatId, activationToken);
    }
}

}
