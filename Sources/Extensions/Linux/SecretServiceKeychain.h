#pragma once

#include "Keychain.h"

namespace Korvi {

// The desktop's Secret Service, through QtKeychain.
class SecretServiceKeychain : public Keychain {
public:
    Async<Secret> read(const QString& service, const QString& account) override;
    Async<Outcome> write(const QString& service, const QString& account, const Secret& value) override;
    Async<Outcome> remove(const QString& service, const QString& account) override;
};

}
