#pragma once

#include <stdexcept>

namespace korvi::service {

/// The database could not do what was asked; `what()` says so in words for the user.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}
