#include "Session.h"

#include "Renderer.h"

#include <QJsonDocument>

namespace Korvi {

Session::Session(Renderer& renderer, int input, int output)
    : m_renderer(renderer)
    , m_client(input, output, [this](const QByteArray& line) { take(line); }) {}

void Session::take(const QByteArray& line) {
    QJsonObject request = QJsonDocument::fromJson(line).object();
    const int id = request.take(QLatin1StringView("id")).toInt();
    m_renderer.run(request, [this, id](const QByteArray& answer) {
        m_client.send(
            "{\"id\":" + QByteArray::number(id) + ",\"answer\":" + (answer.isEmpty() ? "null" : answer) + "}");
    });
}

}
