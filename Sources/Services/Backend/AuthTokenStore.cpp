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
    // As values: QCoro moves out of an lvalue that is returned.
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
        saveLater(token);
    co_return token;
}

Task<void> AuthTokenStore::write(Secret token) {
    m_known = token;
    if (token.isEmpty()) {
        m_defaults.remove(currentKey);
        if (m_group)
            m_group->remove(sharedKey);
    } else {
        m_defaults.setData(currentKey, token.reveal());
        if (m_group)
            m_group->setData(sharedKey, token.reveal());
    }
    saveLater(std::move(token));
    co_return;
}

Task<bool> AuthTokenStore::wipe(Secret refused) {
    if (m_known && m_known->reveal() != refused.reveal())
        co_return false;
    co_await write(Secret());
    co_return true;
}

void AuthTokenStore::saveLater(Secret token) {
    m_toSave = std::move(token);
    // One writer at a time, so that an older token never overtakes a newer one.
    if (!std::exchange(m_isSaving, true))
        m_scope.start([this] { return save(); });
}

Task<void> AuthTokenStore::save() {
    while (m_toSave) {
        const Secret token = *std::exchange(m_toSave, std::nullopt);
        co_await m_keychain.remove(service, account);
        // A newer one has come: an older token has no business in the keychain any more.
        if (token.isEmpty() || m_toSave)
            continue;
        const Keychain::Outcome outcome = co_await m_keychain.write(service, account, token);
        if (!outcome.ok)
            qCWarning(lcPlatform).noquote() << "⚠️ [APIClient] Keychain save failed:" << outcome.status
                                            << "— token stored in UserDefaults only";
    }
    m_isSaving = false;
}

}
