#pragma once

#include <QJsonObject>
#include <QObject>
#include <QProcess>

#include <functional>
#include <memory>

namespace Korvi {

// The program that shows and prints artifacts, as a child of this one; it ends with this object. Messages go and come
// as JSON, see PreviewSession.
class PreviewProcess : public QObject {
    Q_OBJECT

public:
    explicit PreviewProcess(QObject* parent = nullptr);
    ~PreviewProcess() override;

    // Beside the client, unless the environment names another one.
    static QString program();

    bool start();
    void send(const QJsonObject& message);
    qint64 processId() const { return m_process.processId(); } // 0 while it does not run

signals:
    void received(const QJsonObject& message);
    void ended(); // by itself

private:
    void read();

    QProcess m_process;
    QByteArray m_line; // what has come of the next one
};

}
