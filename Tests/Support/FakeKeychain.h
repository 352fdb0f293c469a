#pragma once

#include "Keychain.h"

#include <QMap>

#include <deque>

namespace Korvi::Test {

// A secret store that works, refuses, or answers late: then in the order of the calls, as answerNext() says.
class FakeKeychain : public Keychain {
public:
    enum class Manner { works, refuses, answersLate };

    Manner manner = Manner::works;
    QMap<QString, QByteArray> items; // by "service/account"
    int reads = 0;

    Async<Secret> read(const QString& service, const QString& account) override {
        ++reads;
        Resolver<Secret> resolver;
        perform([this, resolver, key = service + u'/' + account]() mutable {
            resolver.resolve(manner == Manner::refuses ? Secret() : Secret(items.value(key)));
        });
        return resolver.async();
    }
    Async<Outcome> write(const QString& service, const QString& account, const Secret& value) override {
        Resolver<Outcome> resolver;
        perform([this, resolver, key = service + u'/' + account, value]() mutable {
            if (manner != Manner::refuses)
                items.insert(key, value.reveal());
            resolver.resolve(outcome());
        });
        return resolver.async();
    }
    Async<Outcome> remove(const QString& service, const QString& account) override {
        Resolver<Outcome> resolver;
        perform([this, resolver, key = service + u'/' + account]() mutable {
            if (manner != Manner::refuses)
                items.remove(key);
            resolver.resolve(outcome());
        });
        return resolver.async();
    }

    bool isAsked() const { return !m_waiting.empty(); }
    void answerNext() {
        const auto work = std::move(m_waiting.front());
        m_waiting.pop_front();
        work();
    }
    void answerAll() {
        while (isAsked())
            answerNext();
    }

private:
    Outcome outcome() const {
        return {.ok = manner != Manner::refuses, .status = QStringLiteral("7 Cannot autolaunch D-Bus")};
    }
    void perform(std::function<void()> work) {
        if (manner == Manner::answersLate)
            m_waiting.push_back(std::move(work));
        else
            work();
    }

    std::deque<std::function<void()>> m_waiting;
};

}
