#pragma once

#include <QByteArray>

#include <cstring>

namespace Korvi {

// A token or key. It has no way into a stream or a log, compares only by itself, and wipes its bytes at its end.
class Secret {
public:
    Secret() = default;
    explicit Secret(QByteArray value)
        : m_value(std::move(value)) {}
    Secret(const Secret&) = default;
    Secret(Secret&&) = default;
    Secret& operator=(Secret other) noexcept { // the old bytes end, wiped, with `other`
        m_value.swap(other.m_value);
        return *this;
    }
    ~Secret() {
        if (m_value.isDetached() && !m_value.isEmpty())
            explicit_bzero(m_value.data(), static_cast<std::size_t>(m_value.size()));
    }

    bool isEmpty() const { return m_value.isEmpty(); }
    // The one way out. Only for what goes to the keychain or onto the wire.
    const QByteArray& reveal() const { return m_value; }

private:
    QByteArray m_value;
};

}
