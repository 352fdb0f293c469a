#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace Korvi::Test {

// The real service, in a folder of its own that outlives its restarts.
class LocalService {
public:
    ~LocalService();

    // Throws when it does not come up. Options as on its command line.
    void start(const QStringList& options = {});
    void freeze(); // SIGSTOP: it hears and says nothing more
    void kill();   // SIGKILL
    void stop();   // SIGTERM

    quint16 port() const { return m_port; }
    // The newest sign-in code on its console.
    QString code() const;

    // What the database holds, read by a connection of the test's own.
    struct Message {
        QString chat;
        QString role;
        QString text;
        QString thinking;
    };
    std::vector<Message> messages() const;
    // Every token is dead from now on.
    void forgetSessions();
    // Empty ones, "Беседа 1" and so on, of the only user.
    void addChats(int count);

private:
    void readConsole();
    void execute(const QString& statement);

    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_process;
    QString m_console;
    quint16 m_port = 0;
};

}
