#pragma once

#include "Async.h"
#include "Secret.h"

#include <QString>

namespace Korvi {

// The user's secret store. `service` and `account` name an item. Nothing here throws: a store that refuses, or
// is not there, reads as empty and fails to write, and the caller has a copy elsewhere.
class Keychain {
public:
    struct Outcome {
        bool ok = false;
        QString status; // the store's own words, for the log
    };

    virtual ~Keychain() = default;

    virtual Async<Secret> read(const QString& service, const QString& account) = 0; // empty when there is none
    virtual Async<Outcome> write(const QString& service, const QString& account, const Secret& value) = 0;
    virtual Async<Outcome> remove(const QString& service, const QString& account) = 0;
};

}
