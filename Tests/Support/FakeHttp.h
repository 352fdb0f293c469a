#pragma once

#include "HttpTransport.h"

#include <QStringList>

#include <memory>
#include <vector>

namespace Korvi::Test {

// The far side of HTTP. `answer` and `fail` script a path once and for all; a request to a path without a script
// stays open until the test answers it: `http.open("/user").answer(R"({...})")`.
class FakeHttp : public HttpTransport {
public:
    // One exchange. Stays valid for the life of the FakeHttp.
    class Exchange {
    public:
        explicit Exchange(HttpRequest sent)
            : request(std::move(sent)) {
            m_resolver.onCancel([this] { isCancelled = true; });
        }

        void answer(const QByteArray& body, int status = 200, const QByteArray& contentType = "application/json") {
            isAnswered = true;
            m_resolver.resolve(HttpResponse{status, {{"Content-Type", contentType}}, body});
        }
        void fail(URLError::Code code, const QString& text = QStringLiteral("Сеть недоступна.")) {
            isAnswered = true;
            m_resolver.fail(URLError(code, text));
        }

        bool isOpen() const { return !isAnswered && !isCancelled; }
        // "GET /chats?org=1": the path behind the base address.
        QString line() const {
            const QString path = request.url.path(QUrl::FullyEncoded).remove(QStringLiteral("/api/v1"));
            return QString::fromLatin1(request.method) + u' ' + path +
                (request.url.hasQuery() ? u'?' + request.url.query(QUrl::FullyEncoded) : QString());
        }
        // Empty without one.
        QByteArray header(const QByteArray& name) const { return HttpResponse{0, request.headers, {}}.header(name); }

        const HttpRequest request;
        bool isAnswered = false;
        bool isCancelled = false;

    private:
        friend class FakeHttp;
        Resolver<HttpResponse> m_resolver;
    };

    void answer(const QString& path, const QByteArray& body, int status = 200,
        const QByteArray& contentType = "application/json") {
        script(path, [=](Exchange& exchange) { exchange.answer(body, status, contentType); });
    }
    void fail(const QString& path, URLError::Code code, const QString& text = QStringLiteral("Сеть недоступна.")) {
        script(path, [=](Exchange& exchange) { exchange.fail(code, text); });
    }
    // Requests to the path stay open again.
    void hold(const QString& path) {
        std::erase_if(m_rows, [&](const Row& row) { return row.path == path; });
    }

    // Every request so far, as "GET /path?query".
    QStringList requests() const {
        QStringList lines;
        for (const auto& exchange : m_exchanges)
            lines.append(exchange->line());
        return lines;
    }
    Exchange& last() { return *m_exchanges.back(); }
    Exchange& at(std::size_t index) { return *m_exchanges.at(index); }
    std::size_t count() const { return m_exchanges.size(); }
    // The oldest open exchange of that path (without the query); throws when there is none.
    Exchange& open(const QString& path) {
        for (const auto& exchange : m_exchanges) {
            if (exchange->isOpen() && pathOf(*exchange) == path)
                return *exchange;
        }
        throw std::runtime_error("no open request to " + path.toStdString() +
            " among: " + requests().join(QStringLiteral(", ")).toStdString());
    }
    bool hasOpen(const QString& path) const {
        return std::any_of(m_exchanges.begin(), m_exchanges.end(),
            [&](const auto& exchange) { return exchange->isOpen() && pathOf(*exchange) == path; });
    }

    QByteArray cookies; // what cookieHeader() gives

    Async<HttpResponse> send(HttpRequest request) override {
        m_exchanges.push_back(std::make_unique<Exchange>(std::move(request)));
        Exchange& exchange = *m_exchanges.back();
        for (const Row& row : m_rows) {
            if (row.path == pathOf(exchange)) {
                row.answer(exchange);
                break;
            }
        }
        return exchange.m_resolver.async();
    }
    QByteArray cookieHeader(const QUrl&) const override { return cookies; }

private:
    struct Row {
        QString path;
        std::function<void(Exchange&)> answer;
    };

    static QString pathOf(const Exchange& exchange) { return exchange.line().section(u' ', 1).section(u'?', 0, 0); }
    void script(const QString& path, std::function<void(Exchange&)> answerNow) {
        hold(path);
        m_rows.push_back({path, std::move(answerNow)});
    }

    std::vector<Row> m_rows;
    std::vector<std::unique_ptr<Exchange>> m_exchanges;
};

}
