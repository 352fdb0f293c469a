#include "AuthTokenStore.h"

#include "Log.h"

namespace Korvi {

using namespace Qt::Literals;

namespace {

const QString service = QStringView(AuthTokenStore::keychainService).toString();
const QString account = QStringView(AuthTokenStore::keychainAccount).toString();
const QString currentKey = QStringView(AuthTokenStore::defaultsKey).toString();
const QString oldKey = QStringView(AuthTokenStore::legacyKey).toString();
const QString sharedKey = QStringView(AuthTokenStore::groupKey).toString();

}

AuthTokenStore::AuthTokenStore(Keychain& keychain, Defaults& defaults, Defaults* group)
    : m_keychain(keychain)
    , m_defaults(defaults)
    , m_group(group) {}

Task<Secret> AuthTokenStore::read() {
    // A copy by name: QCoro 0.8 moves out of any lvalue that is co_returned.
    if (m_known)
        co_return Secret(*m_known);
    Secret token = co_await m_keychain.read(service, account);
    if (m_known) // written while the keychain was being asked
        co_return Secret(*m_known);
    if (!token.isEmpty()) {
        m_known = token;
        co_return token;
    }
    token = Secret(m_defaults.data(currentKey).value_or(QByteArray()));
    if (token.isEmpty()) {
        token = Secret(m_defaults.data(oldKey).value_or(QByteArray()));
        if (!token.isEmpty()) {
            // The new key first: a crash in between must not lose the token.
            m_defaults.setData(currentKey, token.reveal());
            m_defaults.remove(oldKey);
        }
    }
    m_known = token;
    if (!token.isEmpty())
        co_await saveToKeychain(token);
    co_return token;
}

Task<void> AuthTokenStore::write(Secret token) {
    m_known = token;
    if (token.isEmpty()) {
        m_defaults.remove(currentKey);
        if (m_group)
            m_group->remove(sharedKey);
        co_await m_keychain.remove(service, account);
        co_return;
    }
    // The defaults first: they do not suspend, so the token survives whatever happens to this task.
    m_defaults.setData(currentKey, token.reveal());
    if (m_group)
        m_group->setData(sharedKey, token.reveal());
    co_await saveToKeychain(token);
}

Task<bool> AuthTokenStore::wipe(Secret refused) {
    if (m_known && m_known->reveal() != refused.reveal())
        co_return false;
    co_await write(Secret());
    co_return true;
}

Task<void> AuthTokenStore::saveToKeychain(Secret token) {
    co_await m_keychain.remove(service, account);
    // Signed out or signed in anew meanwhile: that write is behind this one in the keychain's queue.
    if (!m_known || m_known->reveal() != token.reveal())
        co_return;
    const Keychain::Outcome outcome = co_await m_keychain.write(service, account, token);
    if (!outcome.ok)
        qCWarning(lcPlatform).noquote() << "⚠️ [APIClient] Keychain save failed:" << outcome.status
                                        << "— token stored in UserDefaults only";
}

}
