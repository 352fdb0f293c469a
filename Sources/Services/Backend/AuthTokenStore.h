#pragma once

#include "Defaults.h"
#include "Keychain.h"

namespace Korvi {

// Where the session token lives: the keychain, with a copy in the defaults for the day on which the keychain
// refuses, and one in the defaults of the application group. An empty Secret means that there is no token.
// The token is read from the stores once and kept in memory from then on. The keychain is written behind: a user
// whose keychain asks for a password need not wait for it.
class AuthTokenStore {
public:
    static constexpr auto keychainService = u"com.korvihub.app.auth";
    static constexpr auto keychainAccount = u"authToken";
    static constexpr auto defaultsKey = u"com.korvihub.authToken";
    static constexpr auto legacyKey = u"authToken"; // read only to migrate
    static constexpr auto groupKey = u"authToken";

    // `group` may be null: the store of the application group could not be opened.
    AuthTokenStore(Keychain& keychain, Defaults& defaults, Defaults* group);

    Task<Secret> read();
    Task<void> write(Secret token); // an empty one clears
    // Removes the token everywhere, unless another one has taken its place since `refused` was read. Says
    // whether it did.
    Task<bool> wipe(Secret refused);

private:
    void saveLater(Secret token);
    Task<void> save();

    Keychain& m_keychain;
    Defaults& m_defaults;
    Defaults* m_group;
    std::optional<Secret> m_known;
    std::optional<Secret> m_toSave; // what the keychain is to hold next
    bool m_isSaving = false;
    TaskScope m_scope; // last: its tasks end before anything they use
};

}
