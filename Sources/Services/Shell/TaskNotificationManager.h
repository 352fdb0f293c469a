#pragma once

#include "TaskScope.h"

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <optional>

namespace Korvi {

class Clock;
class Defaults;
class NotificationCenter;
class UserNotifications;
struct UserNotification;

// A long task that the user may want to be told of when it is done.
struct PendingTask {
    qint64 chatId = -1;
    QString type; // "image", "video", "search" or "file"
    QString chatName;
    QDateTime startedAt; // UTC
};

// Tracks long tasks, tells of answers that came while the user looked elsewhere, and is the way from a notification
// back into the application. Logs name chats by their numbers only.
class TaskNotificationManager : public QObject {
    Q_OBJECT

public:
    static constexpr auto pendingTaskKey = "com.korvihub.pendingTask";
    static constexpr auto permissionRequestedKey = "com.korvihub.notificationPermissionRequested";
    static constexpr auto bgTaskIdentifier = "com.korvihub.app.generationCheck"; // nothing is registered under it
    // What took less than that is not worth a word to one who looked away for a moment.
    static constexpr auto worthTelling = std::chrono::seconds(20);

    TaskNotificationManager(
        UserNotifications& platform, Defaults& defaults, Clock& clock, NotificationCenter& notifications);
    ~TaskNotificationManager() override;

    void trackGeneration(qint64 chatId, const QString& type, const QString& chatName);
    void clearGeneration();
    std::optional<PendingTask> pendingTask() const;

    // The user is asked once per installation, whatever the answer was.
    Task<void> requestPermissionsIfNeeded();

    // Whether one of the application's windows is in front. Then nobody has to be told.
    void setInFront(bool isInFront);
    // An answer is there. Call before clearGeneration(): a tracked one is told of however short it took.
    void answerCompleted(qint64 chatId, const QString& chatName, const QDateTime& askedAt);

signals:
    // The user wants to see that chat.
    void chatRequested(qint64 chatId, const QString& activationToken);

private:
    void respond(const UserNotification& notification, const QString& activationToken);

    UserNotifications& m_platform;
    Defaults& m_defaults;
    Clock& m_clock;
    NotificationCenter& m_notifications;
    bool m_isInFront = true;
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
